// New parameter values from the solved shifts: limits, tied values, the cell from the metric,
// the cycle's listing, and the result records that replace those behind the temporary file's
// marker.
#pragma once

#include <vector>

#include "engine/engine_state.h"
#include "engine/result_records.h"
#include "store/record_store.h"

namespace kaldena {

// Applies state.shifts (solved, relaxed) to every numbered value, with esds from the
// covariance in state.work.normal. Writes the cycle's lines to the list file and returns the
// result records of the new values, in the order the parameter file takes them.
std::vector<Record> ApplyShifts(EngineState& state, int cycle);

// Mass, electrons and absorption of a phase's cell contents at the current values.
PhaseContents ContentsOf(const EngineState& state, const Phase& phase);

}  // namespace kaldena
