// The shift of each value from the solved parameters: esds from the covariance, the ratio's
// clip, background coefficients that vanish, and the records that carry the new values.
#include "engine/parameter_shifts.h"

#include <gtest/gtest.h>

namespace kaldena {
namespace {

// One cubic phase with one atom; parameter 1 drives the atom's x, parameter 2 the first
// background coefficient.
EngineState Model() {
  EngineState state;
  Phase phase;
  phase.atoms = 1;
  phase.cell = {4, 4, 4, 90, 90, 90};
  phase.values[kMetricA].value = phase.values[kMetricA + 1].value = phase.values[kMetricA + 2].value =
      1.0f / 16;
  phase.values[kScale].value = 1;
  state.phases = {phase};
  Atom atom;
  atom.label = "Fe  ";  // as read by a4
  atom.values[kAtomX] = {0.1f, 1.0f, 1};
  state.atoms = {atom};
  state.atomTypes = {AtomType{"Fe"}};
  state.globals[kFirstBackground] = {0.05f, 1.0f, 2};
  state.globals[kWavelength].value = 1.54f;
  state.parameters = 2;
  state.work.normal.assign(static_cast<size_t>(kMaxParameters) * kMaxParameters, 0.0f);
  state.work.normal[0] = 1e-4f;                   // esd of x: 0.01
  state.work.normal[kMaxParameters + 1] = 1e-4f;  // esd of the background term: 0.01
  return state;
}

TEST(ParameterShifts, RatioIsClippedAndSmallBackgroundVanishes) {
  EngineState state = Model();
  state.shifts[0] = 1.5f;  // 150 esds
  state.shifts[1] = 0.001f;
  const std::vector<Record> records = ApplyShifts(state, 1);
  EXPECT_FLOAT_EQ(state.atoms[0].values[kAtomX].value, 1.6f);
  bool clipped = false;
  for (const std::string& line : state.list.Lines()) {
    clipped = clipped || (line.starts_with(" Fe") && line.find("99.99") != std::string::npos);
  }
  EXPECT_TRUE(clipped);
  // 0.051 is below 0.1: exactly 0, and written as such.
  EXPECT_EQ(state.globals[kFirstBackground].value, 0.0f);
  bool written = false;
  for (const Record& r : records) {
    if (r.starts_with("BKGR")) {
      written = true;
      EXPECT_EQ(r.substr(10, 10), "       0.0");
      break;
    }
  }
  EXPECT_TRUE(written);
}

TEST(ParameterShifts, NegativeRatiosClipToo) {
  EngineState state = Model();
  state.shifts[0] = -2.0f;
  ApplyShifts(state, 1);
  bool clipped = false;
  for (const std::string& line : state.list.Lines()) {
    clipped = clipped || (line.starts_with(" Fe") && line.find("-99.99") != std::string::npos);
  }
  EXPECT_TRUE(clipped);
}

}  // namespace
}  // namespace kaldena
