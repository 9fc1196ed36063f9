// Lower and upper limits on parameters (LIMP), applied to each shift.
#pragma once

#include <vector>

#include "engine/engine_state.h"

namespace kaldena {

// Cuts `shift` so that value + shift stays inside the limit of parameter `number`, if it has
// one: a lower limit (negative entry) at or above the new value, or an upper limit (positive
// entry) at or below it, moves the value onto the limit and scales the esd with the shift.
// The entry is marked kLimitHit, or kLimitLooked when the shift passes; marked entries are
// passed over until ClearLimitMarks.
void ApplyLimit(std::vector<ParameterLimit>& limits, int number, float& shift, float& esd,
                float value);
void ClearLimitMarks(std::vector<ParameterLimit>& limits);

}  // namespace kaldena
