// Values that no sample can have, found in a model without stopping its run: one line each
// for the list file, the run summary and the console.
#pragma once

#include <string>
#include <vector>

#include "engine/engine_state.h"

namespace kaldena {

// Correlations above this magnitude between refined parameters are named.
inline constexpr float kCorrelationWarning = 0.95f;

// Negative scale factors; U, V, W (either side) whose squared width is negative at a
// reflection of the range; pseudo-Voigt mixing outside 0 to 1 at a reflection of the range;
// negative isotropic B; anisotropic B that is not positive definite; occupations outside 0 to 1.
// Reflections are taken as the last sweep left them (positions and shapes); without a sweep
// they are passed over.
std::vector<std::string> ModelWarnings(const EngineState& state);

// Reflections of the range at which U, V, W (either side) give a negative squared width, so
// that the width stands at its floor and no longer follows U, V and W.
int NegativeWidthCount(const EngineState& state);

// Pairs of refined parameters whose correlation exceeds kCorrelationWarning in magnitude, from
// the covariance in state.work.normal after the cycles.
std::vector<std::string> CorrelationWarnings(const EngineState& state);

// Both kinds, listed in the list file under " WARNINGS:" when there are any.
std::vector<std::string> ListWarnings(EngineState& state);

}  // namespace kaldena
