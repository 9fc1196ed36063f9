// Warnings for values no sample can have: each check on a model built for it, and a sound
// model that gives none.
#include "engine/model_warnings.h"

#include <gtest/gtest.h>

namespace kaldena {
namespace {

using Lines = std::vector<std::string>;

// One phase, one reflection at 2-theta 30 in a range of 20 to 90, one isotropic atom: all
// values sound; parameters 1 (scale) and 2 (zero point) with a covariance of unit variances.
EngineState SoundModel() {
  EngineState state;
  state.controls.jobType = 1;
  state.controls.job.profile = 1;
  state.controls.start = 20;
  state.controls.stop = 90;
  state.phases.resize(1);
  auto& v = state.phases[0].values;
  v[kScale] = {0.002f, 1, 1};
  v[kHalfwidthU] = {0.005f, 0, 0};
  v[kHalfwidthU + 1] = {-0.005f, 0, 0};
  v[kHalfwidthU + 2] = {0.015f, 0, 0};
  state.phases[0].atoms = 1;
  state.atoms.resize(1);
  state.atoms[0].label = "Ce  ";
  state.atoms[0].values[kAtomB].value = 0.3f;
  state.atoms[0].values[kAtomOccupation].value = 1.0f;
  state.globals[kZeroPoint].number = 2;
  state.parameters = 2;
  state.work.normal.assign(static_cast<size_t>(kMaxParameters) * kMaxParameters, 0.0f);
  state.work.normal[0] = state.work.normal[kMaxParameters + 1] = 1.0f;
  EXPECT_TRUE(state.reflections.Add(ReflectionStore::PackIndex(1, 1, 1, 1, 1), 8));
  state.reflections.Value(ReflectionStore::kPosition, 0) = 30.0f;
  state.reflections.Value(ReflectionStore::kShapeParameter, 0) = 0.5f;
  return state;
}

TEST(ModelWarnings, ASoundModelHasNone) {
  EngineState state = SoundModel();
  EXPECT_EQ(ModelWarnings(state), Lines{});
  EXPECT_EQ(CorrelationWarnings(state), Lines{});
  const size_t listed = state.list.Lines().size();
  EXPECT_EQ(ListWarnings(state), Lines{});
  EXPECT_EQ(state.list.Lines().size(), listed);  // no heading without warnings
}

TEST(ModelWarnings, NameEachValueNoSampleCanHave) {
  EngineState state = SoundModel();
  auto& v = state.phases[0].values;
  v[kScale].value = -0.002f;
  v[kHalfwidthU + 2].value = -0.001f;  // U t^2 + V t + W < 0 at 30 degrees (t = 0.268)
  state.reflections.Value(ReflectionStore::kShapeParameter, 0) = 1.2f;
  state.atoms[0].values[kAtomB].value = -0.1f;
  state.atoms[0].values[kAtomOccupation].value = 1.2f;
  const Lines expected = {"Phase  1: negative scale factor -0.2000E-02",
                          "Phase  1: U, V, W give a negative squared width at 2-theta  30.000",
                          "Phase  1: pseudo-Voigt mixing   1.200 outside 0 to 1 at 2-theta  30.000",
                          "Atom Ce: negative B  -0.1000",
                          "Atom Ce: occupation   1.2000 outside 0 to 1"};
  EXPECT_EQ(ModelWarnings(state), expected);
  // A Pearson VII exponent is no mixing value; a reflection beyond the range is not looked at.
  state.controls.job.profile = 2;
  state.reflections.Value(ReflectionStore::kPosition, 0) = 95.0f;
  EXPECT_EQ(ModelWarnings(state).size(), 3u);
}

TEST(ModelWarnings, AnAnisotropicBMustBePositiveDefinite) {
  EngineState state = SoundModel();
  Atom& atom = state.atoms[0];
  atom.anisotropic = true;
  atom.values[kAtomB].value = -1;  // not the isotropic value of an anisotropic atom
  const float beta[] = {0.01f, 0.01f, 0.01f, 0.005f, 0, 0};  // b11 b22 b33 b12 b13 b23
  for (int i = 0; i < 6; ++i) atom.values[kAtomBeta11 + i].value = beta[i];
  EXPECT_EQ(ModelWarnings(state), Lines{});
  atom.values[kAtomBeta11 + 3].value = 0.011f;  // b12^2 > b11 b22
  EXPECT_EQ(ModelWarnings(state), Lines{"Atom Ce: anisotropic B not positive definite"});
}

TEST(ModelWarnings, CorrelationsAboveTheLimitNameTheirPair) {
  EngineState state = SoundModel();
  state.work.normal[1] = state.work.normal[kMaxParameters] = -0.95f;  // at the limit: quiet
  EXPECT_EQ(CorrelationWarnings(state), Lines{});
  state.work.normal[1] = state.work.normal[kMaxParameters] = -0.97f;
  const Lines expected = {"Correlation -0.970 between SCALE PHASE 1 and ZEROPOINT"};
  EXPECT_EQ(CorrelationWarnings(state), expected);
  EXPECT_EQ(ListWarnings(state), expected);
  EXPECT_EQ(state.list.Lines().back(), " " + expected[0]);
}

}  // namespace
}  // namespace kaldena
