// The engine's one entry: a project, or a batch of projects, through the stages of a run.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/run_summary.h"
#include "util/report.h"

namespace kaldena {

// How the argument is taken, by its extension.
enum class BatchMode {
  kProject = 0,  // the argument is the project itself
  kList = 1,     // .mlt: one project name a line
  kChain = 2,    // .exp: each project starts from its predecessor's result
  kEdits = 3,    // .edt: each project with record lines applied before its run
};

BatchMode BatchModeOf(std::string_view fileName);

struct EngineRequest {
  EngineRequest() = default;
  EngineRequest(std::string file, bool debugMode = false,
                const std::atomic<bool>* stopFlag = nullptr)
      : fileName(std::move(file)), debug(debugMode), stop(stopFlag) {}

  std::string fileName;
  bool debug = false;
  // Set from another thread (a Stop button, Ctrl+C): the refinement ends after the current
  // cycle with its results written.
  const std::atomic<bool>* stop = nullptr;
  // Called on the engine's thread after every accepted cycle of a refinement.
  std::function<void(const CycleReport&)> onCycle;
};

struct EngineResult {
  int status = 0;              // 0 all runs ended well, 1 a stage failed
  std::string currentProject;  // the project the application should reopen after a batch
  std::vector<RunSummary> runs;  // one per project run, in order
  RunOutcome outcome = RunOutcome::kConverged;  // the worst of the runs
};

// Runs every project of the request. Log lines and questions go to `reporter`; the question
// "Do you want to update all project files?" after a list or edits batch is asked there.
EngineResult RunEngine(const EngineRequest& request, Reporter& reporter);

// Seconds between two clock readings of hours x 3600 + minutes x 60 + seconds, across one
// midnight.
int ElapsedSeconds(int start, int end);

}  // namespace kaldena
