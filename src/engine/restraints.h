// Distance restraints in the least-squares cycles: each partner of a restraint gives one
// distance from the restraint's atom, pulled towards the target with the restraint's weight.
#pragma once

#include "engine/engine_state.h"

namespace kaldena {

struct RestraintSums {
  int count = 0;                // distances restrained
  double absResidual = 0;       // sum |target - d|
  double weightedResidual2 = 0; // sum w (target - d)^2
  double target = 0;            // sum target
  double weightedTarget2 = 0;   // sum w target^2
};

// The restraints at the current atoms, added to the normal equations in state.work.normal
// and state.shifts. A restraint whose atom or partner label is not found in the phase of its
// atom is passed over.
RestraintSums AddRestraints(EngineState& state);

// The distance from the atom at fractional x1 to the one at x2 moved by a symmetry code:
// operator number times 1000 plus the translations in 555 form (5 no translation).
struct RestrainedDistance {
  float d = 0;
  std::array<float, 3> g1{}, g2{};  // d d / d x1 and d d / d x2 (fractional)
};
RestrainedDistance DistanceTo(const Phase& phase, const std::array<float, 3>& x1,
                              const std::array<float, 3>& x2, int code);

}  // namespace kaldena
