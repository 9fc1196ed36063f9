#include "engine/parameter_numbering.h"

#include <gtest/gtest.h>

#include "engine/parameter_limits.h"

namespace kaldena {
namespace {

Atom MakeAtom(std::initializer_list<float> codewords, int siteFactor = 1) {
  Atom atom;
  atom.label = "A";
  atom.siteFactor = siteFactor;
  int column = 1;
  for (float c : codewords) atom.values[column++].fraction = c;
  return atom;
}

// One phase holding `atoms`, relaxation factors all 1.
EngineState OnePhase(std::vector<Atom> atoms) {
  EngineState state;
  state.controls.relaxation = {0.5f, 0.6f, 0.7f, 0.8f};
  Phase phase;
  phase.atoms = static_cast<int>(atoms.size());
  state.phases.push_back(phase);
  state.atoms = std::move(atoms);
  return state;
}

TEST(ParameterNumbering, NumbersFollowFirstUse) {
  // x own, y group 2, z own, B group 2 with multiplier -0.5: numbers 1, 2, 3, 2.
  EngineState state = OnePhase({MakeAtom({1.0f, 21.0f, 1.0f, -20.5f})});
  state.phases[0].values[kScale].fraction = 1.0f;
  state.globals[kZeroPoint].fraction = 21.0f;  // group 2 again, after the phases
  RecordingReporter reporter;
  ASSERT_TRUE(NumberParameters(state, reporter));
  const auto& v = state.atoms[0].values;
  EXPECT_EQ(v[kAtomX].number, 1);
  EXPECT_EQ(v[kAtomY].number, 2);
  EXPECT_EQ(v[kAtomZ].number, 3);
  EXPECT_EQ(v[kAtomB].number, 2);
  EXPECT_FLOAT_EQ(v[kAtomB].fraction, -0.5f);
  EXPECT_EQ(v[kAtomOccupation].number, 0);
  EXPECT_EQ(state.phases[0].values[kScale].number, 4);
  EXPECT_EQ(state.globals[kZeroPoint].number, 2);
  EXPECT_EQ(state.parameters, 4);
  // The last value of a parameter decides its relaxation: B (thermal) then the zero point.
  EXPECT_FLOAT_EQ(state.relaxation[0], 0.5f);  // x: atomic
  EXPECT_FLOAT_EQ(state.relaxation[1], 0.8f);  // group 2 last used by a global: other
  EXPECT_FLOAT_EQ(state.relaxation[3], 0.8f);  // scale: other
}

TEST(ParameterNumbering, OccupationsKeepTheRatioOfTheirSiteFactors) {
  Atom first = MakeAtom({0, 0, 0, 0, 11.0f}, 2);
  Atom second = MakeAtom({0, 0, 0, 0, 11.0f}, 4);
  Atom negative = MakeAtom({0, 0, 0, 0, -11.0f}, 1);
  EngineState state = OnePhase({first, second, negative});
  RecordingReporter reporter;
  state.debug = true;
  ASSERT_TRUE(NumberParameters(state, reporter));
  EXPECT_FLOAT_EQ(state.atoms[0].values[kAtomOccupation].fraction, 1.0f);
  EXPECT_FLOAT_EQ(state.atoms[1].values[kAtomOccupation].fraction, 0.5f);
  EXPECT_FLOAT_EQ(state.atoms[2].values[kAtomOccupation].fraction, -2.0f);
  EXPECT_EQ(state.parameters, 1);
  // Debug lines: the first of a group records its site factor, the others their multiplier.
  std::vector<std::string> checks;
  for (const std::string& line : reporter.log) {
    if (line.starts_with("Multiplicity")) checks.push_back(line);
  }
  const std::vector<std::string> expected = {"Multiplicity check 1     2    1    1      2.00",
                                             "Multiplicity check 2     4    1    1      0.50",
                                             "Multiplicity check 2     1    1    1     -2.00"};
  EXPECT_EQ(checks, expected);
}

TEST(ParameterNumbering, SpecialPositionsCoupleToX) {
  // y follows x with the z-coupling code's multiplier; z follows y with the B-coupling code's.
  Atom atom = MakeAtom({1.0f, 1.0f, 1.0f}, 3);
  atom.yCoupling = 2;
  atom.zCoupling = 4;  // y = -x
  atom.bCoupling = 3;  // z = 2 y
  EngineState state = OnePhase({atom});
  RecordingReporter reporter;
  ASSERT_TRUE(NumberParameters(state, reporter));
  const auto& v = state.atoms[0].values;
  EXPECT_EQ(v[kAtomY].number, 1);
  EXPECT_FLOAT_EQ(v[kAtomY].fraction, -1.0f);
  EXPECT_EQ(v[kAtomZ].number, 1);
  EXPECT_FLOAT_EQ(v[kAtomZ].fraction, 2.0f);
  EXPECT_EQ(state.parameters, 1);  // the own codewords of y and z take no numbers

  // On a general position the codes do nothing.
  atom.siteFactor = 1;
  EngineState general = OnePhase({atom});
  ASSERT_TRUE(NumberParameters(general, reporter));
  EXPECT_EQ(general.parameters, 3);
}

TEST(ParameterNumbering, LaueClassTiesTheMetric) {
  EngineState state = OnePhase({});
  Phase& phase = state.phases[0];
  phase.laueFlag = 2;
  for (int slot = kMetricA; slot <= kMetricA + 2; ++slot) phase.values[slot].fraction = 1.0f;
  RecordingReporter reporter;
  ASSERT_TRUE(NumberParameters(state, reporter));
  EXPECT_EQ(state.parameters, 1);
  for (int slot = kMetricA; slot <= kMetricA + 2; ++slot) {
    EXPECT_EQ(phase.values[slot].number, 1) << slot;
    EXPECT_FLOAT_EQ(phase.values[slot].fraction, 1.0f);
  }
}

TEST(ParameterNumbering, TiesAboveFourHundredTakeTheValueOfTheirGroup) {
  Atom source = MakeAtom({31.0f});             // group 3
  Atom tied = MakeAtom({5032.0f, 0, 5099.0f});  // x: 2 times group 3; z: group 99, unused
  source.values[kAtomX].value = 0.125f;
  EngineState state = OnePhase({source, tied});
  state.globals[kZeroPoint].fraction = 5031.0f;  // a global cannot be tied
  RecordingReporter reporter;
  ASSERT_TRUE(NumberParameters(state, reporter));
  const auto& x = state.atoms[1].values[kAtomX];
  EXPECT_EQ(x.number, 1 + kTiedOffset);
  EXPECT_FLOAT_EQ(x.value, 0.25f);
  EXPECT_EQ(state.atoms[1].values[kAtomZ].number, 0);
  EXPECT_EQ(state.globals[kZeroPoint].number, 0);
  EXPECT_FLOAT_EQ(state.globals[kZeroPoint].fraction, 0.0f);

  ListFile list;
  EXPECT_FLOAT_EQ(ResetTied(state, kTiedOffset + 7, 1.0f, list), 0.0f);
  ASSERT_EQ(list.Lines().size(), 1u);
  EXPECT_EQ(list.Lines()[0], "  *** WARNING    Reset did not work   507 ***");
}

TEST(ParameterNumbering, MoreThanFourHundredParametersFail) {
  std::vector<Atom> atoms(40, MakeAtom({1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}));
  EngineState state = OnePhase(atoms);
  RecordingReporter reporter;
  EXPECT_FALSE(NumberParameters(state, reporter));
  ASSERT_FALSE(state.list.Lines().empty());
  EXPECT_EQ(state.list.Lines().back(), " Too many parameters: more than 400");
}

TEST(ParameterBlocks, AValueBelowItsLimitSwitchesAnotherGroupOff) {
  Atom watched = MakeAtom({0, 0, 0, 0, 11.0f});
  watched.values[kAtomOccupation].value = 0.02f;
  Atom blocked = MakeAtom({0, 0, 0, 21.0f});
  EngineState state = OnePhase({watched, blocked});
  state.phases[0].values[kOverallB].fraction = 21.0f;
  state.controls.blocks = {{1, 0.05f, 2}, {7, 1.0f, 1}};  // the second watches an unused group
  CheckBlocks(state);
  EXPECT_FLOAT_EQ(state.atoms[1].values[kAtomB].fraction, 0.0f);
  EXPECT_FLOAT_EQ(state.phases[0].values[kOverallB].fraction, 0.0f);
  EXPECT_FLOAT_EQ(state.atoms[0].values[kAtomOccupation].fraction, 11.0f);
  const std::vector<std::string> expected = {"*** Parameter    1 below  0.0500 ***",
                                             "    Parameter    2 blocked"};
  EXPECT_EQ(state.list.Lines(), expected);
}

TEST(ParameterLimits, StartValuesBeyondALimitMoveOntoIt) {
  Atom atom = MakeAtom({1.0f, 1.0f});
  atom.values[kAtomX].value = -0.2f;
  atom.values[kAtomY].value = 0.7f;
  EngineState state = OnePhase({atom});
  state.controls.limits = {{-1, 0.0f}, {2, 0.5f}};
  RecordingReporter reporter;
  ASSERT_TRUE(NumberParameters(state, reporter));
  ApplyInputLimits(state);
  EXPECT_FLOAT_EQ(state.atoms[0].values[kAtomX].value, 0.0f);
  EXPECT_FLOAT_EQ(state.atoms[0].values[kAtomY].value, 0.5f);
  for (const ParameterLimit& limit : state.controls.limits) EXPECT_EQ(limit.mark, 0);
}

TEST(ParameterLimits, ALimitCutsTheShiftAndMarksItsEntry) {
  std::vector<ParameterLimit> limits = {{-3, 1.0f}, {3, 2.0f}, {450, 0.0f}};
  float shift = -0.5f, esd = 0.25f;
  ApplyLimit(limits, 3, shift, esd, 1.2f);  // 0.7 would pass below the lower limit 1.0
  EXPECT_FLOAT_EQ(shift, -0.2f);
  EXPECT_FLOAT_EQ(esd, 0.1f);  // the ratio shift / esd stays
  EXPECT_EQ(limits[0].mark, kLimitHit);
  EXPECT_EQ(limits[1].mark, kLimitLooked);
  EXPECT_EQ(limits[2].mark, 0);
}

}  // namespace
}  // namespace kaldena
