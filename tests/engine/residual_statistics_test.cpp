#include "engine/residual_statistics.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace kaldena {
namespace {

// Eight points, the fifth excluded; residuals D = obs - bg - calc of
// 2, -2, -3, 5, (excluded), 3, 2, -2 and weights 1 / obs.
struct SmallPattern {
  std::array<float, 8> observed = {120, 135, 160, 210, 180, 140, 125, 118};
  std::array<float, 8> background = {100, 100, 101, 101, 102, 102, 103, 103};
  std::array<float, 8> calculated = {18, 37, 62, 104, 80, 35, 20, 17};
  std::array<float, 8> weight{};
  std::array<bool, 8> takesPart = {true, true, true, true, false, true, true, true};
  SmallPattern() {
    for (size_t i = 0; i < weight.size(); ++i) weight[i] = 1.0f / observed[i];
  }
  ResidualPoints Points(int pointCount, int parameters) const {
    return {observed, calculated, background, weight, takesPart, {}, pointCount, parameters};
  }
};

TEST(ResidualStatistics, SmallPatternKnownValues) {
  const SmallPattern pattern;
  const ResidualFigures f = ResidualStatistics(pattern.Points(7, 2));
  // Reference: numpy 1.24.2 on the same float32 data, over the seven points that take part.
  EXPECT_EQ(f.sums.points, 7);
  EXPECT_DOUBLE_EQ(f.sums.absDiff, 19.0);
  EXPECT_NEAR(f.sums.weightedDiff2, 0.3684446099214256, 1e-12);
  EXPECT_DOUBLE_EQ(f.sums.calculated, 1003.0);
  EXPECT_DOUBLE_EQ(f.sums.observed, 1008.0);
  EXPECT_NEAR(f.sums.weightedObserved2, 1008.000021211803, 1e-9);
  EXPECT_DOUBLE_EQ(f.sums.net, 298.0);
  EXPECT_NEAR(f.rp, 1.8849206349206349, 1e-5);  // 100 * 19 / 1008
  EXPECT_NEAR(f.rwp, 1.9118588824984117, 1e-5);
  EXPECT_NEAR(f.rpBackground, 6.375838926174497, 1e-5);  // 100 * 19 / 298
  EXPECT_NEAR(f.chi2, 0.07368892198428512, 1e-7);        // over 7 - 2 degrees of freedom
  EXPECT_NEAR(f.durbinWatson, 1.728813559322034, 1e-6);  // 102 / 59
  EXPECT_NEAR(f.durbinWatsonWeighted, 1.6684223101078355, 1e-6);
}

TEST(ResidualStatistics, ValuesBeyondTheFieldAreCapped) {
  SmallPattern pattern;
  pattern.calculated.fill(5000.0f);  // every residual far beyond the observed counts
  const ResidualFigures f = ResidualStatistics(pattern.Points(7, 2));
  EXPECT_EQ(f.rp, kResidualCap);
  EXPECT_EQ(f.rwp, kResidualCap);
  EXPECT_EQ(f.rpBackground, kResidualCap);
  EXPECT_EQ(f.chi2, kResidualCap);
  // Durbin-Watson lies within 0 to 4 and is not capped: constant residuals give 0 here.
  EXPECT_GE(f.durbinWatson, 0.0f);
  EXPECT_LT(f.durbinWatson, 0.01f);

  // As many parameters as points leave no degrees of freedom.
  const SmallPattern good;
  EXPECT_EQ(ResidualStatistics(good.Points(7, 7)).chi2, kResidualCap);
  EXPECT_LT(ResidualStatistics(good.Points(7, 6)).chi2, 1.0f);  // 0.368 / 1
}

// Six points of 100 counts, bg 0, weight 1/100, the given residuals; each standardised
// residual is 2 in magnitude.
ResidualFigures SixPoints(const std::array<float, 6>& residuals,
                          const std::array<bool, 6>& correlationPart = {true, true, true, true,
                                                                        true, true}) {
  std::array<float, 6> observed, background, calculated, weight;
  std::array<bool, 6> all, part;
  for (int i = 0; i < 6; ++i) {
    observed[i] = 100;
    background[i] = 0;
    calculated[i] = 100 - residuals[i];
    weight[i] = 0.01f;
    all[i] = true;
    part[i] = correlationPart[i];
  }
  return ResidualStatistics({observed, calculated, background, weight, all, part, 6, 1});
}

TEST(ResidualStatistics, SerialCorrelationFactorGrowsWithRunsOfOneSign) {
  // Alternating signs: every point closes a run of one, so the total is the plain sum of
  // standardised squares except for the last point's, which no later point carries in:
  // sqrt(5 * 4 / (6 * 4)) = sqrt(5/6).
  const ResidualFigures alternating = SixPoints({20, -20, 20, -20, 20, -20});
  EXPECT_NEAR(alternating.esdFactor, std::sqrt(5.0 / 6.0), 1e-6);
  // Alternating residuals are the opposite of serial correlation: Durbin-Watson near 4.
  EXPECT_NEAR(alternating.durbinWatson, 20.0 / 6.0, 1e-5);  // 5 * 40^2 / (6 * 20^2)

  // One run of six: r = s / (2 + s) with s = sqrt(6.28318 * 8);
  // factor = sqrt((5 (1 - r^2) 4 + (5 * 2 r)^2) / 24). Evaluated in Python: 1.6915068171976018.
  const ResidualFigures run = SixPoints({20, 20, 20, 20, 20, 20});
  EXPECT_NEAR(run.esdFactor, 1.6915068171976018, 1e-6);
  EXPECT_GT(run.esdFactor, alternating.esdFactor);

  // A point left out of the correlation (but not of the sums) breaks the run in two.
  // Python transcription of the run rules: 1.1787430463558912.
  const ResidualFigures broken =
      SixPoints({20, 20, 20, 20, 20, 20}, {true, true, false, true, true, true});
  EXPECT_NEAR(broken.esdFactor, 1.1787430463558912, 1e-6);
  EXPECT_NEAR(broken.sums.weightedDiff2, 24.0, 1e-4);
}

TEST(ResidualStatistics, PerfectFitHasNoFactorAndNoDurbinWatson) {
  const ResidualFigures f = SixPoints({0, 0, 0, 0, 0, 0});
  EXPECT_EQ(f.rp, 0.0f);
  EXPECT_EQ(f.rwp, 0.0f);
  EXPECT_EQ(f.esdFactor, 0.0f);
  EXPECT_EQ(f.durbinWatson, 0.0f);
  EXPECT_EQ(f.durbinWatsonWeighted, 0.0f);
}

}  // namespace
}  // namespace kaldena
