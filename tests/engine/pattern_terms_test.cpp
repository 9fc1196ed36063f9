#include "engine/pattern_terms.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kaldena {
namespace {

TEST(BackgroundBasis, ChebyshevTermsAreCosinesOfMultipleAngles) {
  // T_n(cos t) = cos(n t): an identity the recurrence must reproduce to the last term.
  const BackgroundModel model{-1, 10.0, 110.0};
  for (float x : {10.0f, 23.5f, 60.0f, 97.25f, 110.0f}) {
    const double u = -1.0 + 2.0 * (x - 10.0) / 100.0;
    const double t = std::acos(u);
    const auto basis = BackgroundBasis(model, x);
    for (int n = 0; n < kBackgroundBasisSize; ++n) {
      EXPECT_NEAR(basis[n], std::cos(n * t), 2e-6) << "x " << x << " n " << n;
    }
  }
}

TEST(BackgroundBasis, PowerSeriesStartsWithTheInverse) {
  const auto basis = BackgroundBasis({0, 0, 1}, 2.0f);
  const float expected[] = {0.5f, 1, 2, 4, 8, 16, 32, 64, 128};
  for (int n = 0; n < 9; ++n) EXPECT_FLOAT_EQ(basis[n], expected[n]) << n;
  for (int n = 9; n < kBackgroundBasisSize; ++n) EXPECT_EQ(basis[n], 0.0f) << n;
}

TEST(StackingFaultShift, ClassesOfTheSortedIndices) {
  const float p = 60.0f;
  const float scale = 90.0f * std::sqrt(3.0f) / (M_PI * M_PI) * std::tan(30.0f * M_PI / 180.0f);
  EXPECT_NEAR(StackingFaultShift(p, 1, -1, 1), 0.25f * scale, 1e-5);
  EXPECT_NEAR(StackingFaultShift(p, 0, 0, -2), -0.5f * scale, 1e-5);
  EXPECT_NEAR(StackingFaultShift(p, 2, 0, 2), 0.25f * scale, 1e-5);
  EXPECT_NEAR(StackingFaultShift(p, 1, 3, 1), -scale / 11.0f, 1e-5);
  EXPECT_NEAR(StackingFaultShift(p, 2, 2, 2), -0.125f * scale, 1e-5);
  EXPECT_NEAR(StackingFaultShift(p, 0, 4, 0), 0.25f * scale, 1e-5);
  EXPECT_EQ(StackingFaultShift(p, 2, 1, 0), 0.0f);
  EXPECT_EQ(StackingFaultShift(p, 3, 3, 1), 0.0f);
}

}  // namespace
}  // namespace kaldena
