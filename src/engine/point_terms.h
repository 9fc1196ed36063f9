// One pattern point per cycle: the sum of the reflections that reach it, the derivative of the
// calculated value to every parameter, and its share of the normal equations.
#pragma once

#include "engine/engine_state.h"

namespace kaldena {

enum class PointStatus {
  kOk = 0,
  kFailed = 1,  // an illegal profile number, told in the list file
};

// Point i (from 0) with the reflections first to last (from 0) of its span. The reflections'
// terms of this cycle must stand. Adds to the normal equations in a refinement.
PointStatus PointTerms(EngineState& state, int i, int first, int last);

// The background of every point from the coefficients and the background file.
void SetBackground(EngineState& state);

}  // namespace kaldena
