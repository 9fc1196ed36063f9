#include "engine/cell_from_metric.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kaldena {
namespace {

constexpr double kRad = 3.14159265358979 / 180;

// The reciprocal metric of a cell by inverting the direct metric tensor numerically: an
// independent route from the closed forms under test.
MetricValues MetricOf(const std::array<double, 6>& cell) {
  const double a = cell[0], b = cell[1], c = cell[2];
  const double ca = std::cos(cell[3] * kRad), cb = std::cos(cell[4] * kRad),
               cg = std::cos(cell[5] * kRad);
  double g[3][3] = {{a * a, a * b * cg, a * c * cb}, {a * b * cg, b * b, b * c * ca},
                    {a * c * cb, b * c * ca, c * c}};
  const double det = g[0][0] * (g[1][1] * g[2][2] - g[1][2] * g[2][1]) -
                     g[0][1] * (g[1][0] * g[2][2] - g[1][2] * g[2][0]) +
                     g[0][2] * (g[1][0] * g[2][1] - g[1][1] * g[2][0]);
  auto inv = [&](int i, int j) {
    const int i1 = (j + 1) % 3, i2 = (j + 2) % 3, j1 = (i + 1) % 3, j2 = (i + 2) % 3;
    return (g[i1][j1] * g[i2][j2] - g[i1][j2] * g[i2][j1]) / det;
  };
  return {static_cast<float>(inv(0, 0)),     static_cast<float>(inv(1, 1)),
          static_cast<float>(inv(2, 2)),     static_cast<float>(2 * inv(1, 2)),
          static_cast<float>(2 * inv(0, 2)), static_cast<float>(2 * inv(0, 1))};
}

TEST(CellFromMetric, RecoversTheCellOfItsMetric) {
  const std::array<std::array<double, 6>, 3> cells = {{{5.1, 6.3, 7.7, 81.5, 97.25, 103.0},
                                                       {4.7589, 4.7589, 12.991, 90, 90, 120},
                                                       {10.0, 10.0, 10.0, 60.5, 60.5, 60.5}}};
  for (const auto& cell : cells) {
    const CellWithEsds result = CellFromMetric(MetricOf(cell), {});
    ASSERT_TRUE(result.valid);
    for (int i = 0; i < 6; ++i) {
      EXPECT_NEAR(result.cell[i], cell[i], 2e-5 * cell[i]) << i;
      EXPECT_EQ(result.esds[i], 0.0f);
    }
  }
}

TEST(CellFromMetric, EsdsFollowTheGradient) {
  // Cubic cell refined through A alone: a = A^(-1/2), so esd(a) = 0.5 A^(-3/2) esd(A); with
  // B and C tied to A (fully correlated) the angles stay exactly 90.
  const double a = 4.0, sigma = 1e-5;
  const float metric = static_cast<float>(1 / (a * a));
  MetricCovariance cov{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) cov[i][j] = sigma * sigma;
  }
  const CellWithEsds result = CellFromMetric({metric, metric, metric, 0, 0, 0}, cov);
  const double expected = 0.5 * std::pow(static_cast<double>(metric), -1.5) * sigma;
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(result.esds[i], expected, 1e-3 * expected) << i;
  for (int i = 3; i < 6; ++i) {
    EXPECT_FLOAT_EQ(result.cell[i], 90.0f);
    EXPECT_LT(result.esds[i], 1e-6f);
  }
}

TEST(CellFromMetric, AMetricWithoutACellIsRefused) {
  EXPECT_FALSE(CellFromMetric({0.1f, 0.1f, 0.1f, 0.5f, 0.5f, 0.5f}, {}).valid);
  EXPECT_FALSE(CellFromMetric({0, 0, 0, 0, 0, 0}, {}).valid);
}

}  // namespace
}  // namespace kaldena
