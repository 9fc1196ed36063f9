// The last stage of a run: the correlation list, the reflection tables, the Fourier file, the
// Bragg R values, the summary file and the result records RVAL, CIF1, CIF2 and CRYS.
#pragma once

#include <vector>

#include "engine/engine_state.h"
#include "store/record_store.h"
#include "util/report.h"

namespace kaldena {

enum class OutputStatus {
  kOk = 0,
  kFailed = 1,  // a file that does not open or values too large for it, told in the list file
};

// Writes the output files; in a refinement the result records of the last cycle, with RVAL,
// CIF1, CIF2 and CRYS behind them, replace those behind the temporary file's marker.
// The summary and Fourier files are written beside their targets and stay there until
// PublishEngineOutputs puts them in place, so that a failed or killed run leaves the old ones.
OutputStatus WriteEngineOutput(EngineState& state, Reporter& reporter);

// Puts the files of WriteEngineOutput in their places; false after logging "Error updating "
// and the name of one that could not be.
bool PublishEngineOutputs(EngineState& state, Reporter& reporter);

}  // namespace kaldena
