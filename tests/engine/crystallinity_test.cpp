#include "engine/crystallinity.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/test_files.h"
#include "util/column_format.h"

namespace kaldena {
namespace {

// A summary of points from 10 to 20 degrees by 1: observed 100 + 10 k, background 50.
std::string Summary() {
  std::string text;
  for (int k = 0; k <= 10; ++k) {
    text += Format("(F7.3,3f12.1,I2)", 10.0f + k, 100.0f + 10 * k, 100.0f, 50.0f, 0);
  }
  return text;
}

TEST(Crystallinity, SumsOfObservedAndBackgroundWithinTheLimits) {
  testing::ScratchDir dir;
  const std::string file = dir.Write("a.sum", Summary()).string();
  // Independent sums over 12 to 17, with 15 inside an excluded region and 17 on its edge.
  const float lambda = 1.5406f;
  double s1 = 0, s2 = 0, u1 = 0, u2 = 0;
  for (int k = 2; k <= 7; ++k) {
    if (k == 5) continue;
    const double t = 10 + k, s = 2 * std::sin(t / 114) / lambda;
    const double ds = s - 2 * std::sin((t - 1) / 114) / lambda;
    s1 += (100 + 10 * k) * ds * s * s;
    s2 += 50 * ds * s * s;
    u1 += 100 + 10 * k;
    u2 += 50;
  }
  const Crystallinity c = CalculateCrystallinity(file, {12, 17, {{14.5f, 15.5f}, {17, 18}}, lambda});
  ASSERT_EQ(c.status, CrystallinityStatus::kOk);
  EXPECT_NEAR(c.sWeighted, 100 * (s1 - s2) / s1, 1e-3);
  EXPECT_NEAR(c.unweighted, 100 * (u1 - u2) / u1, 1e-3);
}

TEST(Crystallinity, EdgeCases) {
  testing::ScratchDir dir;
  // Limits beyond the data take every line but the first, which only starts the s steps.
  const std::string file = dir.Write("a.sum", Summary()).string();
  const Crystallinity all = CalculateCrystallinity(file, {0, 90, {}, 1.5406f});
  EXPECT_NEAR(all.unweighted, 100.0 * (1550 - 500) / 1550, 1e-3);  // points 11 to 20
  // No observed counts: both 0. A background above the counts: negative, not clamped.
  std::string zero, high;
  for (int k = 0; k <= 4; ++k) {
    zero += Format("(F7.3,3f12.1,I2)", 10.0f + k, 0.0f, 0.0f, 5.0f, 0);
    high += Format("(F7.3,3f12.1,I2)", 10.0f + k, 10.0f, 0.0f, 20.0f, 0);
  }
  const Crystallinity none = CalculateCrystallinity(dir.Write("z.sum", zero).string(), {0, 90, {}, 1.5f});
  EXPECT_EQ(none.sWeighted, 0.0f);
  EXPECT_EQ(none.unweighted, 0.0f);
  EXPECT_FLOAT_EQ(CalculateCrystallinity(dir.Write("h.sum", high).string(), {0, 90, {}, 1.5f}).unweighted,
                  -100.0f);
  EXPECT_EQ(CalculateCrystallinity((dir.Path() / "absent.sum").string(), {}).status,
            CrystallinityStatus::kNoSummary);
  EXPECT_EQ(CalculateCrystallinity(dir.Write("bad.sum", "text\n").string(), {}).status,
            CrystallinityStatus::kNoFirstLine);
}

}  // namespace
}  // namespace kaldena
