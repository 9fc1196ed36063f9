#include "crystal/absorption.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace kaldena {
namespace {

constexpr int kPointsPerTableAngle = 50;  // 5 degrees in steps of 0.1

int MuRColumn(float muR) {
  for (int c = 0; c < kAbsorptionMuRCount; ++c) {
    if (kAbsorptionMuR[c] == muR) return c;
  }
  ADD_FAILURE() << "no column for mu R " << muR;
  return 0;
}

float TableValue(int thetaDegrees, float muR) {
  return kCylinderAbsorption[thetaDegrees / 5][MuRColumn(muR)];
}

// Simpson's rule over alpha from 0 to pi.
template <typename F>
double OverHalfTurn(F f) {
  constexpr int kIntervals = 20000;
  const double h = std::numbers::pi / kIntervals;
  double sum = f(0.0) + f(std::numbers::pi);
  for (int i = 1; i < kIntervals; ++i) sum += (i % 2 ? 4.0 : 2.0) * f(i * h);
  return sum * h / 3.0;
}

// A* where the area integral folds to one dimension (R = 1, chord y = cos alpha). At theta 0
// every point of a chord sees the whole chord; at 90 the beam returns the way it came.
double ForwardFactor(double muR) {
  const double transmission = 2.0 / std::numbers::pi * OverHalfTurn([muR](double alpha) {
                                const double s = std::sin(alpha);
                                return s * s * std::exp(-2.0 * muR * s);
                              });
  return 1.0 / transmission;
}

double BackFactor(double muR) {
  const double transmission = OverHalfTurn([muR](double alpha) {
                                const double s = std::sin(alpha);
                                return s * (1.0 - std::exp(-4.0 * muR * s));
                              }) /
                              (2.0 * std::numbers::pi * muR);
  return 1.0 / transmission;
}

// The parabola through three table columns in Lagrange's form, at mu R.
float Parabola(int theta, int first, float muR) {
  double sum = 0.0;
  for (int k = first; k < first + 3; ++k) {
    double term = kCylinderAbsorption[theta][k];
    for (int j = first; j < first + 3; ++j) {
      if (j != k) term *= (muR - kAbsorptionMuR[j]) / (kAbsorptionMuR[k] - kAbsorptionMuR[j]);
    }
    sum += term;
  }
  return static_cast<float>(sum);
}

TEST(AbsorptionTableTest, AgreesWithThePublishedTable) {
  for (int theta = 0; theta <= 90; theta += 5) EXPECT_EQ(TableValue(theta, 0.0f), 1.0f);
  struct Published {
    int theta;
    float muR;
    float factor;
  };
  const Published kPublished[] = {{0, 0.1f, 1.18f},     {0, 0.2f, 1.4f},     {0, 0.3f, 1.65f},
                                  {0, 20.0f, 25000.0f}, {45, 20.0f, 157.0f}, {90, 20.0f, 63.1f}};
  for (const Published& p : kPublished) {
    EXPECT_NEAR(TableValue(p.theta, p.muR) / p.factor, 1.0f, 0.005f)
        << "theta " << p.theta << " mu R " << p.muR;
  }
}

TEST(AbsorptionTableTest, AgreesWithOneDimensionalFormsAtZeroAndNinety) {
  for (float muR : {0.1f, 0.5f, 1.0f, 2.7f, 5.0f, 8.0f, 12.0f, 20.0f}) {
    EXPECT_NEAR(TableValue(0, muR) / ForwardFactor(muR), 1.0, 5e-6) << muR;
    EXPECT_NEAR(TableValue(90, muR) / BackFactor(muR), 1.0, 5e-6) << muR;
  }
}

TEST(AbsorptionTableTest, RisesWithMuRAndFallsWithTheta) {
  for (int t = 0; t < kAbsorptionThetaCount; ++t) {
    for (int c = 1; c < kAbsorptionMuRCount; ++c) {
      EXPECT_GT(kCylinderAbsorption[t][c], kCylinderAbsorption[t][c - 1]) << t << ' ' << c;
      if (t > 0) {
        EXPECT_LT(kCylinderAbsorption[t][c], kCylinderAbsorption[t - 1][c]) << t << ' ' << c;
      }
    }
  }
}

TEST(CylinderAbsorptionTest, ReproducesTheTableAtItsPoints) {
  RecordingReporter reporter;
  for (float muR : {0.0f, 0.2f, 1.5f, 8.0f, 15.0f, 20.0f}) {
    const std::vector<float> factors = CylinderAbsorptionTable(muR, reporter);
    ASSERT_EQ(factors.size(), static_cast<std::size_t>(kAbsorptionPointCount));
    for (int t = 0; t < kAbsorptionThetaCount; ++t) {
      EXPECT_NEAR(factors[t * kPointsPerTableAngle] * TableValue(5 * t, muR), 1.0f, 1e-5f)
          << "mu R " << muR << " theta " << 5 * t;
    }
  }
  EXPECT_TRUE(reporter.messages.empty());
  // Between the table angles as well, no absorption means no correction.
  for (float factor : CylinderAbsorptionTable(0.0f, reporter)) EXPECT_NEAR(factor, 1.0f, 1e-6f);
}

// Below, between and beyond the columns the quadratic takes the three columns that end at the
// first one not below mu R: never fewer than the first three, never past the last.
TEST(CylinderAbsorptionTest, InterpolatesThroughTheRightColumns) {
  struct Case {
    float muR;
    int firstColumn;
  };
  const Case kCases[] = {{0.05f, 0}, {0.15f, 0}, {0.25f, 1}, {3.33f, 32}, {8.5f, 79}, {19.5f, 90}};
  RecordingReporter reporter;
  for (const Case& c : kCases) {
    const std::vector<float> factors = CylinderAbsorptionTable(c.muR, reporter);
    for (int t = 0; t < kAbsorptionThetaCount; ++t) {
      EXPECT_NEAR(factors[t * kPointsPerTableAngle] * Parabola(t, c.firstColumn, c.muR), 1.0f,
                  1e-5f)
          << "mu R " << c.muR << " theta " << 5 * t;
    }
  }
  EXPECT_TRUE(reporter.messages.empty());
}

TEST(CylinderAbsorptionTest, WarnsAboveTheTableAndExtrapolates) {
  RecordingReporter reporter;
  CylinderAbsorptionTable(20.0f, reporter);
  EXPECT_TRUE(reporter.messages.empty());

  const std::vector<float> factors = CylinderAbsorptionTable(20.1f, reporter);
  const RecordingReporter::Message kWarning{"Warning", "mu*R above tabulated values"};
  EXPECT_EQ(reporter.messages, std::vector<RecordingReporter::Message>{kWarning});
  for (int t = 0; t < kAbsorptionThetaCount; ++t) {
    EXPECT_NEAR(factors[t * kPointsPerTableAngle] * Parabola(t, kAbsorptionMuRCount - 3, 20.1f),
                1.0f, 1e-5f)
        << "theta " << 5 * t;
  }
}

TEST(CylinderAbsorptionTest, FollowsTheIntegralBetweenColumns) {
  RecordingReporter reporter;
  for (float muR : {0.15f, 0.87f, 2.35f, 5.55f, 7.45f}) {
    const std::vector<float> factors = CylinderAbsorptionTable(muR, reporter);
    EXPECT_NEAR(factors.front() * ForwardFactor(muR), 1.0, 1e-3) << muR;
    EXPECT_NEAR(factors.back() * BackFactor(muR), 1.0, 1e-3) << muR;
  }
}

// Natural ends: the spline's curvature fades to nothing at theta 0 and 90, where a clamped end
// would keep it. Curvature of A* by second differences over 0.1 degree.
TEST(CylinderAbsorptionTest, SplineHasNaturalEnds) {
  RecordingReporter reporter;
  const std::vector<float> factors = CylinderAbsorptionTable(5.0f, reporter);
  const auto curvature = [&factors](int i) {
    return (1.0 / factors[i - 1] - 2.0 / factors[i] + 1.0 / factors[i + 1]) / 0.01;
  };
  const int last = kAbsorptionPointCount - 1;
  EXPECT_LT(std::fabs(curvature(1)), 0.1 * std::fabs(curvature(kPointsPerTableAngle - 1)));
  EXPECT_LT(std::fabs(curvature(last - 1)),
            0.1 * std::fabs(curvature(last - kPointsPerTableAngle + 1)));
}

}  // namespace
}  // namespace kaldena
