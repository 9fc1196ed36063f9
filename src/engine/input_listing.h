// Listings of the model that the input stage writes to the list file.
#pragma once

#include "engine/engine_state.h"

namespace kaldena {

// Each phase with its atoms and values as read.
void ListInitialParameters(const EngineState& state, ListFile& list);
// The same with the parameter multipliers in place of the values, after numbering.
void ListCoding(const EngineState& state, ListFile& list);
void ListSymmetryOperators(const Phase& phase, int number, ListFile& list);

}  // namespace kaldena
