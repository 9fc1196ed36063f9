// A point that as many reflections reach as one point may hold: its value and derivatives are
// the sums of the same reflections evaluated one by one.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "engine/point_terms.h"
#include "engine/reflection_terms.h"
#include "support/engine_project.h"

namespace kaldena {
namespace {

// A large triclinic cell of three light atoms: hundreds of reflections a degree whose structure
// factors differ from one to the next, broad Voigt peaks (their Lorentzian width follows
// tan theta), the scale and an x coordinate refined. With a base of about two halfwidths
// every reflection that reaches the point is strong there.
std::string Project() {
  std::ostringstream p;
  p << "TITL      full span\nFRMT          5\nPWDT      flat.xy\n"
    << "JOBT          0    3    1   -1    0    3    0    1\n"
    << "ELAM        1.540560  0.000000  0.000000\n"
    << "RLIM         0.30000   0.00000   0.00000   0.00000   0.00000   0.00000   0.00000   "
       "0.00000\n"
    << "RELX          1 0.01 1.00 1.00 1.00 1.00  34.00000   0.02000  46.00000\n"
    << "ANOM      C            0.01700   0.00900\nANOM      N            0.02900   0.01800\n"
    << "ANOM      O            0.04920   0.03220\n"
    << "ZETT         0.00000   0.00000   0.00000\nCZET           0.000     0.000     0.000\n"
    << "BKGR           100.0\nCBKG           0.000\n"
    << "PHTI      triclinic\nPHNA          3  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
    << "SPGR      P 1\n"
    << "SCAL       0.1000E-03     0.000\nCSCA           1.000     0.000\n"
    << "CELL       30.000000 31.000000 32.000000  88.00000  93.00000  95.00000\n"
    << "HWTH         0.00000   0.00000   7.30000\n"
    << "PKSH         1.00000   0.00000   0.00000\n"
    << "XYZ       C      1  0.11000  0.23000  0.37000  1.00000  1.00000  1  0  0  0\n"
    << "XYZ       N      2  0.61000  0.05000  0.82000  1.00000  1.00000  1  0  0  0\n"
    << "XYZ       O      3  0.29000  0.74000  0.53000  1.00000  1.00000  1  0  0  0\n"
    << "CXYZ C           1.000     0.000     0.000     0.000     0.000\n";
  return p.str();
}

std::string FlatPattern() {
  std::ostringstream flat;
  for (int i = 0; i <= 650; ++i) flat << 33.5 + 0.02 * i << " 100\n";
  return flat.str();
}

// The point with the most reflections and their count, over the points that are not excluded.
std::pair<int, int> WidestPoint(const EngineState& state) {
  std::pair<int, int> widest = {-1, 0};
  for (int i = 0; i < state.points.count; ++i) {
    const int count = static_cast<int>(state.work.reach.At(i).size());
    if (count > widest.second) widest = {i, count};
  }
  return widest;
}

// Sets the peak base (in halfwidths) so that the widest point holds exactly `count`
// reflections and returns that point; -1 when no base does. The count rises one reflection at
// a time with the base, as the peaks of a triclinic cell lie apart.
int PointWithReflections(EngineState& state, int count) {
  float low = 0.05f, high = 5.0f;
  for (int step = 0; step < 60; ++step) {
    state.controls.rlim[0] = (low + high) / 2;
    const std::pair<int, int> widest =
        AssignSpans(state) ? WidestPoint(state) : std::pair<int, int>{-1, count + 1};
    if (widest.second == count) return widest.first;
    (widest.second < count ? low : high) = state.controls.rlim[0];
  }
  return -1;
}

TEST(FullSpan, IsTheSumOfItsReflectionsOneByOne) {
  testing::EngineProject project(Project(), {{"flat.xy", FlatPattern()}});
  ASSERT_TRUE(project.ok) << project.ListFile();
  EngineState& state = project.state;
  ASSERT_EQ(state.parameters, 2);
  const int point = PointWithReflections(state, kMaxReflectionsAtPoint);
  ASSERT_GE(point, 0) << "no peak base gives a full point";
  const std::span<const int> reach = state.work.reach.At(point);
  ASSERT_EQ(reach.size(), static_cast<size_t>(kMaxReflectionsAtPoint));

  // As the sweep does it: the terms of every reflection that reaches the point, each in a row
  // slot of its own, then the point from all of them at once.
  FreeRowSlots(state.work, state.reflections.Count());
  for (const int r : reach) ReflectionTerms(state, r);
  std::vector<std::string> lines;
  PointValues whole;
  ASSERT_EQ(CalculatePoint(state, point, reach, whole, lines), PointStatus::kOk);

  float y = 0;
  std::vector<float> dy(state.parameters, 0.0f), size(state.parameters, 0.0f);
  for (const int r : reach) {
    PointValues one;
    ASSERT_EQ(CalculatePoint(state, point, std::span<const int>(&r, 1), one, lines),
              PointStatus::kOk);
    y += one.y;
    for (int q = 0; q < state.parameters; ++q) {
      dy[q] += one.dy[q];
      size[q] += std::abs(one.dy[q]);
    }
  }
  ASSERT_GT(y, 0);
  // The same products summed in the same order: only rounding may differ.
  EXPECT_NEAR(whole.y, y, 1e-6 * y);
  for (int q = 0; q < state.parameters; ++q) {
    EXPECT_NEAR(whole.dy[q], dy[q], 1e-6 * size[q]) << "parameter " << q + 1;
  }
}

}  // namespace
}  // namespace kaldena
