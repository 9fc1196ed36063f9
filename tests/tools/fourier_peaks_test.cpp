// The peak search: the 18-neighbour rule, the quadratic refinement of the position, the
// interior of the box and the peak line.
#include "tools/fourier_peaks.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kaldena {
namespace {

Neighbourhood Filled(float value) {
  Neighbourhood v{};
  for (auto& plane : v)
    for (auto& row : plane) row.fill(value);
  return v;
}

float& At(Neighbourhood& v, int dx, int dy, int dz) { return v[dz + 1][dy + 1][dx + 1]; }

TEST(FourierPeakRule, EarlierNeighboursStrictlyLowerLaterOnesNotHigher) {
  Neighbourhood v = Filled(100);
  At(v, 0, 0, 0) = 600;
  EXPECT_TRUE(IsPeak(v, 500));
  EXPECT_FALSE(IsPeak(v, 600));  // the level must be exceeded

  // Equal to a neighbour that comes later: still the peak (the first point of a flat top).
  for (auto [dx, dy, dz] : {std::array{1, 0, 0}, {-1, 1, 0}, {1, 1, 0}, {0, 0, 1}, {0, -1, 1}}) {
    Neighbourhood w = v;
    At(w, dx, dy, dz) = 600;
    EXPECT_TRUE(IsPeak(w, 500)) << dx << dy << dz;
    At(w, dx, dy, dz) = 601;
    EXPECT_FALSE(IsPeak(w, 500)) << dx << dy << dz;
  }
  // Equal to a neighbour that came earlier: that one was the peak.
  for (auto [dx, dy, dz] : {std::array{-1, 0, 0}, {1, -1, 0}, {0, -1, 0}, {0, 0, -1}, {0, 1, -1}}) {
    Neighbourhood w = v;
    At(w, dx, dy, dz) = 600;
    EXPECT_FALSE(IsPeak(w, 500)) << dx << dy << dz;
  }
  // The corners of the adjoining layers are no neighbours.
  Neighbourhood w = v;
  At(w, 1, 1, 1) = 900;
  At(w, -1, -1, -1) = 900;
  EXPECT_TRUE(IsPeak(w, 500));
}

TEST(FourierPeakShift, RecoversTheCentreOfAGaussian) {
  // ln v is quadratic, so the fit is exact: centre (0.3, -0.2, 0.1), with an xy cross term.
  Neighbourhood v{};
  for (int dz = -1; dz <= 1; ++dz)
    for (int dy = -1; dy <= 1; ++dy)
      for (int dx = -1; dx <= 1; ++dx) {
        const float x = dx - 0.3f, y = dy + 0.2f, z = dz - 0.1f;
        At(v, dx, dy, dz) = 900 * std::exp(-(x * x / 2 + y * y / 3 + z * z / 1.5f + 0.2f * x * y));
      }
  const auto s = PeakShift(v);
  EXPECT_NEAR(s[0], 0.3f, 1e-4f);
  EXPECT_NEAR(s[1], -0.2f, 1e-4f);
  EXPECT_NEAR(s[2], 0.1f, 1e-4f);

  // A shift of more than one step in any axis is no shift at all.
  for (int dz = -1; dz <= 1; ++dz)
    for (int dy = -1; dy <= 1; ++dy)
      for (int dx = -1; dx <= 1; ++dx) {
        const float x = dx - 1.6f, y = dy, z = dz;
        At(v, dx, dy, dz) = 900 * std::exp(-(x * x + y * y + z * z) / 4);
      }
  EXPECT_EQ(PeakShift(v), (std::array<float, 3>{0, 0, 0}));
  // Nothing to fit on a flat top below 1.
  EXPECT_EQ(PeakShift(Filled(0.5f)), (std::array<float, 3>{0, 0, 0}));
}

PlotFile Plot(int nx, int ny, int nz) {
  PlotFile plot;
  plot.points = {nx, ny, nz};
  plot.limits = {0.1f, 0.0f, 0.2f, 0.0f, 0.3f, 0.0f};
  plot.steps = {0.05f, 0.1f, 0.2f};
  plot.values.assign(nx * ny * nz, 0);
  return plot;
}

int& Value(PlotFile& plot, int ix, int iy, int iz) {
  return plot.values[(iz * plot.points[1] + iy) * plot.points[0] + ix];
}

TEST(FourierPeakSearch, InteriorOnlyBothSignsAndPositions) {
  PlotFile plot = Plot(6, 5, 4);
  Value(plot, 2, 1, 1) = 800;  // interior: found
  Value(plot, 0, 3, 2) = 999;  // outer layer in x: never found
  Value(plot, 3, 3, 2) = -700;
  Value(plot, 4, 3, 2) = -700;  // flat bottom of two: the first counts
  const auto positive = SearchPeaks(plot, 500, false);
  ASSERT_EQ(positive.size(), 1u);
  EXPECT_EQ(positive[0].sign, 'P');
  EXPECT_EQ(positive[0].height, 800);
  // A lone spike gives no curvature to fit (ln 1 around), so the point stays on the grid.
  EXPECT_FLOAT_EQ(positive[0].x, 0.1f + 2 * 0.05f);
  EXPECT_FLOAT_EQ(positive[0].y, 0.2f + 1 * 0.1f);
  EXPECT_FLOAT_EQ(positive[0].z, 0.3f + 1 * 0.2f);

  const auto negative = SearchPeaks(plot, 500, true);
  ASSERT_EQ(negative.size(), 1u);
  EXPECT_EQ(negative[0].sign, 'N');
  EXPECT_EQ(negative[0].height, 700);
  EXPECT_FLOAT_EQ(negative[0].z, 0.3f + 2 * 0.2f);

  // One section only: no interior, no peak.
  PlotFile flat = Plot(6, 5, 1);
  Value(flat, 2, 2, 0) = 900;
  EXPECT_TRUE(SearchPeaks(flat, 500, false).empty());
}

TEST(FourierPeakSearch, LineAndReport) {
  FourierPeak peak{'P', 52, 0.25f, -0.0312f, 1.0f};
  EXPECT_EQ(PeakLine(peak),
            "XYZ       P 52     1    0.2500   -0.0312    1.0000    0.1000    1.0000");
}

}  // namespace
}  // namespace kaldena
