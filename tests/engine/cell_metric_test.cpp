#include "engine/cell_metric.h"

#include <gtest/gtest.h>

#include <cmath>

#include "engine/cell_from_metric.h"

namespace kaldena {
namespace {

MetricValues Slots(const CellMetric& m) { return {m.a, m.b, m.c, m.f, m.e, m.d}; }

TEST(MetricFromCell, RoundTripsThroughTheCellOfTheMetric) {
  // Triclinic and monoclinic cells in every setting: the metric must give back its cell.
  struct Case {
    std::array<float, 6> cell;
    int laue, axis;
  };
  const Case cases[] = {{{5.1f, 6.3f, 7.7f, 81.5f, 97.25f, 103.0f}, 1, 0},
                        {{9.5f, 5.2f, 11.1f, 90, 106.3f, 90}, 2, 2},
                        {{9.5f, 5.2f, 11.1f, 90, 90, 116.0f}, 2, 3},
                        {{9.5f, 5.2f, 11.1f, 96.0f, 90, 90}, 2, 1}};
  for (const Case& c : cases) {
    CellMetric m;
    ASSERT_EQ(MetricFromCell(c.cell, c.laue, c.axis, m), MetricStatus::kOk);
    const CellWithEsds back = CellFromMetric(Slots(m), {});
    ASSERT_TRUE(back.valid);
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(back.cell[i], c.cell[i], 1e-4f * c.cell[i]) << i;
  }
}

TEST(MetricFromCell, KnownSpacingsOfAMonoclinicCell) {
  // 1/d^2 of monoclinic (b unique): h^2/(a^2 sin^2 b) + k^2/b^2 + l^2/(c^2 sin^2 b)
  // - 2 h l cos b / (a c sin^2 b).
  CellMetric m;
  ASSERT_EQ(MetricFromCell({9.5f, 5.2f, 11.1f, 90, 106.3f, 90}, 2, 2, m), MetricStatus::kOk);
  const double sb = std::sin(106.3 / 57.29578), cb = std::cos(106.3 / 57.29578);
  const int h = 2, k = 1, l = 3;
  const double expected = h * h / (9.5 * 9.5 * sb * sb) + k * k / (5.2 * 5.2) +
                          l * l / (11.1 * 11.1 * sb * sb) - 2 * h * l * cb / (9.5 * 11.1 * sb * sb);
  const double q = m.a * h * h + m.b * k * k + m.c * l * l + m.d * h * k + m.e * h * l + m.f * k * l;
  EXPECT_NEAR(q, expected, 1e-5 * expected);
}

TEST(MetricFromCell, LaueClassesForceTheirCell) {
  const std::array<float, 6> loose = {4.1f, 4.3f, 6.0f, 89.0f, 91.0f, 118.0f};
  CellMetric m;
  ASSERT_EQ(MetricFromCell(loose, 12, 0, m), MetricStatus::kOk);  // hexagonal
  EXPECT_EQ(m.cell, (std::array<float, 6>{4.1f, 4.1f, 6.0f, 90, 90, 120}));
  EXPECT_EQ(m.laueFlag, 1);
  EXPECT_FLOAT_EQ(m.d, m.a);  // 2 a* b* cos 60 = a*^2
  EXPECT_FLOAT_EQ(m.b, m.a);

  ASSERT_EQ(MetricFromCell(loose, 14, 0, m), MetricStatus::kOk);  // cubic
  EXPECT_EQ(m.cell, (std::array<float, 6>{4.1f, 4.1f, 4.1f, 90, 90, 90}));
  EXPECT_EQ(m.laueFlag, 2);
  EXPECT_EQ(m.d, 0.0f);

  ASSERT_EQ(MetricFromCell(loose, 7, 0, m), MetricStatus::kOk);  // rhombohedral axes
  EXPECT_EQ(m.cell, (std::array<float, 6>{4.1f, 4.1f, 4.1f, 89.0f, 89.0f, 89.0f}));
  EXPECT_EQ(m.laueFlag, 2);
  EXPECT_FLOAT_EQ(m.c, m.a);

  ASSERT_EQ(MetricFromCell(loose, 5, 0, m), MetricStatus::kOk);  // tetragonal
  EXPECT_EQ(m.cell, (std::array<float, 6>{4.1f, 4.1f, 6.0f, 90, 90, 90}));
  EXPECT_EQ(m.laueFlag, 1);

  ASSERT_EQ(MetricFromCell(loose, 3, 0, m), MetricStatus::kOk);  // orthorhombic
  EXPECT_EQ(m.cell, (std::array<float, 6>{4.1f, 4.3f, 6.0f, 90, 90, 90}));
  EXPECT_EQ(m.laueFlag, 0);

  EXPECT_EQ(MetricFromCell(loose, 3, 4, m), MetricStatus::kBadAxis);
  EXPECT_EQ(MetricFromCell({0, 4, 5, 90, 90, 90}, 3, 0, m), MetricStatus::kNoCell);
  EXPECT_EQ(MetricFromCell({3, 4, 5, 10, 170, 90}, 1, 0, m), MetricStatus::kNoCell);
}

}  // namespace
}  // namespace kaldena
