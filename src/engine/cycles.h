// The least-squares cycles of a run: sweep, normal equations, solution, shifts, stop test.
#pragma once

#include <atomic>
#include <functional>

#include "engine/engine_state.h"
#include "engine/run_summary.h"
#include "util/report.h"

namespace kaldena {

enum class CycleStatus {
  kOk = 0,
  kFailed = 1,     // a zero derivative or an illegal profile, told in the list file
  kNonFinite = 2,  // the start model gives a non-finite pattern: no finite state to keep
};

// Ties every point to its reflections; false after " EXCESSIVE PEAK OVERLAP", "NO REFLECTIONS
// FOUND" or " ASYMMETRY PARAMETER USAGE INVALID" in the list file.
bool AssignSpans(EngineState& state);

// The work arrays of the cycles and the row factor of each parameter, for the model as it
// stands after the input.
void PrepareCycles(EngineState& state);

// One pass over the points: reflections as the points reach them, the pattern and, in a
// refinement, the normal equations. False when a point failed (told in the list file).
bool Sweep(EngineState& state);

using CycleHook = std::function<void(const CycleReport&)>;

// Runs the cycles of a refinement, or the one sweep of a calculation or comparison. A set
// `stop` ends the refinement after the current cycle, as if the shifts had converged.
// `onCycle`, when set, sees the figures and the pattern of every accepted cycle.
CycleStatus RunCycles(EngineState& state, Reporter& reporter, const std::atomic<bool>& stop,
                      const CycleHook& onCycle = {});

}  // namespace kaldena
