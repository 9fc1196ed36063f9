// The words with which a log closes a run: how each project ended, and the process's exit code.
#pragma once

#include "engine/run_engine.h"
#include "util/report.h"

namespace kaldena {

// After "Refinement interupted" the reason lines of each failed run; for the others the
// summary's brief report (headed by the project in a batch). Returns the exit code of the
// worst outcome: 0 converged, cycle limit or stopped, 1 failed, 3 diverging.
int TellOutcome(const EngineResult& result, Reporter& reporter);

}  // namespace kaldena
