// The input stage of a run: the records of the loaded project become the engine's model,
// and the list file gets its head.
#pragma once

#include "engine/engine_state.h"
#include "store/record_store.h"
#include "util/report.h"

namespace kaldena {

enum class InputStatus {
  kOk = 0,
  kFailed = 1,  // the reason stands in the list file (or in a box when there is no list file)
};

// Reads the project that SetUpRunFiles left in `store`, the pattern and each phase's symbol,
// numbers the parameters and generates the reflections.
InputStatus ReadEngineInput(EngineState& state, RecordStore& store, Reporter& reporter);

// True for the job types that refine (1 and 2).
inline bool IsRefinement(const RunControls& controls) { return controls.jobType < 3; }

}  // namespace kaldena
