// Distance restraints in the least-squares cycles: each restraint expands into links between
// two atoms, each pulled towards its target length with the restraint's weight.
#pragma once

#include <string>
#include <vector>

#include "engine/engine_state.h"

namespace kaldena {

struct RestraintSums {
  int count = 0;                 // distances restrained
  double absResidual = 0;        // sum |target - d|
  double weightedResidual2 = 0;  // sum w (target - d)^2
  double target = 0;             // sum target
  double weightedTarget2 = 0;    // sum w target^2
};

// One restrained distance: two atoms by label with their symmetry codes, and the target.
struct RestraintLink {
  std::string label1, label2;
  int code1 = 1555, code2 = 1555;
  float target = 0;
};

// The links of a restraint: the central atom to each partner; for a tetrahedron (four
// partners) also the six edges of length d sqrt(8/3), for an octahedron (six partners) the
// twelve cis edges of length d sqrt(2), every partner pair but the opposite ones 1-2, 3-4, 5-6.
std::vector<RestraintLink> RestraintLinks(const Restraint& restraint);

// The restraints at the current atoms, added to the normal equations in state.work.normal
// and state.shifts. A link whose atom labels are not both found in the phase of the central
// atom is passed over.
RestraintSums AddRestraints(EngineState& state);

// The distance between two atoms at fractional x1 and x2, each moved by a symmetry code:
// operator number times 1000 plus the translations in 555 form (5 no translation).
struct RestrainedDistance {
  float d = 0;
  std::array<float, 3> g1{}, g2{};  // d d / d x1 and d d / d x2 (fractional)
};
RestrainedDistance DistanceBetween(const Phase& phase, const std::array<float, 3>& x1, int code1,
                                   const std::array<float, 3>& x2, int code2);

}  // namespace kaldena
