// Long jobs (the engine's runs, the Fourier calculation) as toolkit jobs: on screen they run
// beside the message loop, which keeps repainting and takes Stop; their log lines and boxes
// reach the loop's thread; after each refinement cycle the pattern plot shows the cycle's
// calculated pattern and the status bar its cycle, Rwp and elapsed time.
#pragma once

#include <atomic>
#include <functional>

#include "engine/run_engine.h"
#include "shell/shell_state.h"
#include "toolkit/toolkit.h"
#include "util/report.h"

namespace kaldena {

// The engine's stop flag of the shell's runs: Stop sets it, each run clears it first.
std::atomic<bool>& RunStopFlag();

// Runs `job` through the toolkit with a reporter that speaks on the loop's thread. Meanwhile
// the menus that would touch the project are grey and Stop is on; repaints and resizes
// redraw, Stop (menu, toolbar, Esc) sets the stop flag, and closing the main window stops the
// job and ends the program after it.
void RunShellJob(ShellState& state, Toolkit& toolkit, const std::function<void(Reporter&)>& job);

// The engine on `request` as such a job, with the stop flag and the live plot.
EngineResult RunEngineJob(ShellState& state, Toolkit& toolkit, EngineRequest request);

}  // namespace kaldena
