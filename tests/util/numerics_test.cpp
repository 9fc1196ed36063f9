#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "util/cell.h"
#include "util/limits.h"
#include "util/sort.h"
#include "util/spline.h"

namespace kaldena {
namespace {

TEST(SortIndexed, OrdersKeysAndCarriesTheCompanion) {
  std::vector<float> keys = {5.0f, -1.0f, 3.5f, 0.0f, 9.0f, 3.5f, -7.0f, 2.0f, 8.0f};
  const std::vector<float> original = keys;
  std::vector<int> index(keys.size());
  std::iota(index.begin(), index.end(), 0);
  SortIndexed(keys, index, 1);
  EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
  for (std::size_t i = 0; i < keys.size(); ++i) EXPECT_EQ(original[index[i]], keys[i]);

  std::vector<float> values = {0.3f, 2.0f, -1.0f, 7.0f};
  std::vector<float> companion = {3.0f, 20.0f, -10.0f, 70.0f};
  SortIndexed(values, companion, -1);
  EXPECT_EQ(values, std::vector<float>({7.0f, 2.0f, 0.3f, -1.0f}));
  EXPECT_EQ(companion, std::vector<float>({70.0f, 20.0f, 3.0f, -10.0f}));
}

float Cubic(float x) { return 0.5f * x * x * x - 2.0f * x * x + x - 3.0f; }
float CubicSlope(float x) { return 1.5f * x * x - 4.0f * x + 1.0f; }

TEST(Spline, ReproducesACubicGivenItsEndSlopes) {
  const std::vector<float> x = {-2.0f, -1.2f, 0.0f, 0.5f, 1.7f, 3.0f, 4.1f};
  std::vector<float> y;
  for (const float v : x) y.push_back(Cubic(v));
  const std::vector<float> second = SplineSetup(x, y, CubicSlope(x.front()), CubicSlope(x.back()));
  ASSERT_EQ(second.size(), x.size());
  for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(second[i], 3.0f * x[i] - 4.0f, 1e-3f);
  // Unordered points make the resumed interval search walk both ways.
  const std::vector<float> at = {-2.0f, 3.9f, -0.4f, 0.5f, 4.1f, 1.0f, -1.9f, 2.2f};
  const std::vector<float> values = SplineValue(x, y, second, at);
  ASSERT_EQ(values.size(), at.size());
  for (std::size_t i = 0; i < at.size(); ++i) EXPECT_NEAR(values[i], Cubic(at[i]), 1e-4f);
}

TEST(Spline, NaturalEndsAreStraightAndTheSlopeHasNoKinks) {
  const std::vector<float> x = {0.0f, 1.0f, 2.5f, 3.0f, 4.0f};
  const std::vector<float> y = {1.0f, 3.0f, -2.0f, 0.5f, 4.0f};
  const std::vector<float> second = SplineSetup(x, y, 1.0e30f, 1.0e30f);
  ASSERT_EQ(second.size(), x.size());
  EXPECT_EQ(second.front(), 0.0f);
  EXPECT_EQ(second.back(), 0.0f);
  const std::vector<float> values = SplineValue(x, y, second, x);
  for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(values[i], y[i], 1e-5f);
  // One-sided slopes at an inner point differ by the curvature times the step, not by a kink.
  const float h = 1e-2f;
  for (std::size_t i = 1; i + 1 < x.size(); ++i) {
    const std::vector<float> v =
        SplineValue(x, y, second, std::vector<float>{x[i] - h, x[i], x[i] + h});
    EXPECT_NEAR((v[2] - 2.0f * v[1] + v[0]) / h, second[i] * h, 0.01f) << "at x = " << x[i];
  }
  // Through a line the natural spline is the line, continued outside the table.
  const std::vector<float> lineX = {1.0f, 2.0f, 4.0f};
  const std::vector<float> lineY = {3.0f, 5.0f, 9.0f};
  const std::vector<float> flat = SplineSetup(lineX, lineY, 1.0e30f, 1.0e30f);
  EXPECT_EQ(SplineValue(lineX, lineY, flat, std::vector<float>{0.0f, 5.0f}),
            std::vector<float>({1.0f, 11.0f}));
}

TEST(Spline, RefusesTablesItCannotUse) {
  const std::vector<float> x = {1.0f, 2.0f, 3.0f};
  const std::vector<float> two = {1.0f, 2.0f};
  EXPECT_TRUE(SplineSetup(std::vector<float>{1.0f}, std::vector<float>{1.0f}, 0, 0).empty());
  EXPECT_TRUE(SplineSetup(x, two, 0.0f, 0.0f).empty());
  EXPECT_TRUE(SplineValue(x, x, two, x).empty());
  std::vector<float> most(kMaxPoints + 1);
  std::iota(most.begin(), most.end(), 0.0f);
  EXPECT_TRUE(SplineSetup(most, most, 1.0f, 1.0f).empty());
  most.pop_back();
  EXPECT_EQ(SplineSetup(most, most, 1.0f, 1.0f).size(), most.size());
}

TEST(CellVolume, KnownCells) {
  EXPECT_NEAR(CellVolume({5.431f, 5.431f, 5.431f, 90.0f, 90.0f, 90.0f}), 160.19f, 0.01f);
  // Hexagonal: a^2 c sqrt(3)/2.
  EXPECT_NEAR(CellVolume({4.9134f, 4.9134f, 5.4052f, 90.0f, 90.0f, 120.0f}), 113.01f, 0.01f);
  // Rhombohedral: a^3 sqrt(1 - 3 cos^2 al + 2 cos^3 al).
  const float ca = std::cos(55.0f / kDegreesPerRadian);
  EXPECT_NEAR(CellVolume({3.0f, 3.0f, 3.0f, 55.0f, 55.0f, 55.0f}),
              27.0f * std::sqrt(1.0f - 3.0f * ca * ca + 2.0f * ca * ca * ca), 1e-3f);
  EXPECT_EQ(CellVolume({1.0f, 1.0f, 1.0f, 120.0f, 120.0f, 120.0f}), 0.0f);  // closes no cell
}

TEST(ReciprocalCell, IsTheInverseCell) {
  const UnitCell direct = {5.1f, 7.3f, 9.2f, 83.0f, 101.5f, 112.0f};
  const std::optional<UnitCell> reciprocal = ReciprocalCell(direct);
  ASSERT_TRUE(reciprocal.has_value());
  EXPECT_NEAR(CellVolume(direct) * CellVolume(*reciprocal), 1.0f, 1e-5f);
  const std::optional<UnitCell> back = ReciprocalCell(*reciprocal);
  ASSERT_TRUE(back.has_value());
  EXPECT_NEAR(back->a, direct.a, 1e-4f);
  EXPECT_NEAR(back->b, direct.b, 1e-4f);
  EXPECT_NEAR(back->c, direct.c, 1e-4f);
  EXPECT_NEAR(back->alpha, direct.alpha, 1e-3f);
  EXPECT_NEAR(back->beta, direct.beta, 1e-3f);
  EXPECT_NEAR(back->gamma, direct.gamma, 1e-3f);
}

TEST(ReciprocalCell, MonoclinicAndDegenerateCells) {
  // b unique: b* = 1/b, beta* = 180 - beta, a* = 1 / (a sin beta).
  const std::optional<UnitCell> mono = ReciprocalCell({6.0f, 8.0f, 10.0f, 90.0f, 100.0f, 90.0f});
  ASSERT_TRUE(mono.has_value());
  EXPECT_NEAR(mono->b, 0.125f, 1e-6f);
  EXPECT_NEAR(mono->beta, 80.0f, 1e-3f);
  EXPECT_NEAR(mono->a, 1.0f / (6.0f * std::sin(100.0f / kDegreesPerRadian)), 1e-6f);
  EXPECT_NEAR(mono->gamma, 90.0f, 1e-3f);
  EXPECT_FALSE(ReciprocalCell({1.0f, 1.0f, 1.0f, 120.0f, 120.0f, 120.0f}).has_value());
  EXPECT_FALSE(ReciprocalCell({0.0f, 1.0f, 1.0f, 90.0f, 90.0f, 90.0f}).has_value());
}

}  // namespace
}  // namespace kaldena
