#include "engine/restraints.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kaldena {
namespace {

// A cubic cell of 5 A with x,y,z and -x,-y,-z.
Phase CubicPhase() {
  Phase phase;
  phase.cell = {5, 5, 5, 90, 90, 90};
  phase.group.operators = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0},
                           {-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0}};
  return phase;
}

TEST(Restraints, DistancesThroughOperatorsAndTranslations) {
  const Phase phase = CubicPhase();
  EXPECT_NEAR(DistanceTo(phase, {0, 0, 0}, {0.5f, 0, 0}, 1555).d, 2.5f, 1e-5);
  EXPECT_NEAR(DistanceTo(phase, {0.1f, 0, 0}, {0.8f, 0, 0}, 1455).d, 1.5f, 1e-5);
  // -x of 0.3 is -0.3; one cell up is 0.7, 0.6 from 0.1.
  EXPECT_NEAR(DistanceTo(phase, {0.1f, 0, 0}, {0.3f, 0, 0}, 2655).d, 3.0f, 1e-5);
}

TEST(Restraints, GradientsAgreeWithDifferences) {
  Phase phase = CubicPhase();
  phase.cell = {5, 6, 7, 80, 95, 105};
  const std::array<float, 3> x1 = {0.1f, 0.2f, 0.3f}, x2 = {0.35f, 0.15f, 0.42f};
  for (int code : {1555, 2546}) {
    const RestrainedDistance r = DistanceTo(phase, x1, x2, code);
    const float h = 1e-3f;
    for (int j = 0; j < 3; ++j) {
      std::array<float, 3> up = x1, down = x1;
      up[j] += h;
      down[j] -= h;
      const float g1 = (DistanceTo(phase, up, x2, code).d - DistanceTo(phase, down, x2, code).d) / (2 * h);
      EXPECT_NEAR(r.g1[j], g1, 2e-3f * std::abs(g1) + 1e-3f) << code << " x1 " << j;
      up = x2;
      down = x2;
      up[j] += h;
      down[j] -= h;
      const float g2 = (DistanceTo(phase, x1, up, code).d - DistanceTo(phase, x1, down, code).d) / (2 * h);
      EXPECT_NEAR(r.g2[j], g2, 2e-3f * std::abs(g2) + 1e-3f) << code << " x2 " << j;
    }
  }
}

TEST(Restraints, OneStepMovesTheDistanceOntoItsTarget) {
  EngineState state;
  Phase phase = CubicPhase();
  phase.atoms = 2;
  state.phases = {phase};
  Atom central, partner;
  central.label = "Si";
  partner.label = "O1";
  partner.values[kAtomX] = {0.3f, 1.0f, 1};  // parameter 1
  state.atoms = {central, partner};
  state.parameters = 1;
  state.controls.restraintWeight = 2.0f;
  state.restraints = {{"Si", 1.6f, 5.0f, {{"O1", 1555}}}};
  state.work.normal.assign(static_cast<size_t>(kMaxParameters) * kMaxParameters, 0.0f);
  const RestraintSums sums = AddRestraints(state);
  ASSERT_EQ(sums.count, 1);
  EXPECT_NEAR(sums.absResidual, 0.1, 1e-5);  // 1.5 against 1.6
  EXPECT_NEAR(sums.weightedResidual2, 10.0 * 0.01, 1e-5);
  // The distance is linear in x here: the Newton step lands on the target.
  const float shift = state.shifts[0] / state.work.normal[0];
  EXPECT_NEAR(5.0f * (0.3f + shift), 1.6f, 1e-5);
  // An unknown partner is passed over.
  state.restraints[0].partners = {{"Xx", 1555}};
  EXPECT_EQ(AddRestraints(state).count, 0);
}

}  // namespace
}  // namespace kaldena
