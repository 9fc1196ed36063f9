// The engine's point list: calibrations, binning, weights, the grid beyond the last point and
// the range held inside the pattern.
#include "engine/point_list.h"

#include <gtest/gtest.h>

#include "engine/raw_data.h"

namespace kaldena {
namespace {

// n points from `start` by `step`, intensity 100 + i and variance 4 (i from 0).
RawPattern Raw(int n, float start, float step, bool angles) {
  RawPattern raw;
  raw.points = n;
  raw.start = start;
  raw.step = step;
  raw.stop = start + step * static_cast<float>(n - 1);
  for (int i = 0; i < n; ++i) {
    raw.intensities.push_back(100.0f + static_cast<float>(i));
    raw.variances.push_back(4.0f);
    if (angles) raw.angles.push_back(start + step * static_cast<float>(i));
  }
  return raw;
}

RunControls Controls(float start, float stop, int format = 1) {
  RunControls c;
  c.start = start;
  c.stop = stop;
  c.step = 0.1f;
  c.format = format;
  c.job.background = 0;
  return c;
}

TEST(PointList, APlainPatternStartsOneStepAboveItsFileStart) {
  RunControls c = Controls(10.0f, 11.0f);
  PatternPoints p;
  std::vector<std::string> lines;
  ASSERT_EQ(BuildPointList(Raw(21, 10.0f, 0.1f, false), c, p, lines), PointListStatus::kOk);
  ASSERT_EQ(p.count, 10);  // 10.1 to 11.0
  EXPECT_NEAR(p.x[0], 10.1f, 1e-5);
  EXPECT_FLOAT_EQ(p.observed[0], 100.0f);  // the file's first value
  EXPECT_NEAR(p.x[9], 11.0f, 1e-5);
  EXPECT_NEAR(c.start, 10.1f, 1e-5);
  EXPECT_NEAR(c.step, 0.1f, 1e-6);
  EXPECT_FLOAT_EQ(p.weight[0], 0.25f);
  // The grid goes on for the tails, to 6/5 of the count, by the last step.
  ASSERT_EQ(p.x.size(), 12u);
  EXPECT_NEAR(p.x[11], 11.2f, 1e-5);
  EXPECT_NEAR(p.dx[11], 0.1f, 1e-5);
  EXPECT_TRUE(lines.empty());
}

TEST(PointList, ColumnFormatsKeepTheirOwnAngles) {
  RunControls c = Controls(10.0f, 11.0f, static_cast<int>(RawFormat::kXy));
  PatternPoints p;
  std::vector<std::string> lines;
  ASSERT_EQ(BuildPointList(Raw(21, 10.0f, 0.1f, true), c, p, lines), PointListStatus::kOk);
  EXPECT_NEAR(p.x[0], 10.0f, 1e-5);
  EXPECT_FLOAT_EQ(p.observed[0], 100.0f);
}

TEST(PointList, PolynomialCalibration) {
  RunControls c = Controls(10.0f, 12.0f);
  c.calibration = 3;
  c.polynomial = {9.9, 0.1, 0.001};  // t = 9.9 + 0.1 i + 0.001 i^2
  PatternPoints p;
  std::vector<std::string> lines;
  ASSERT_EQ(BuildPointList(Raw(30, 10.0f, 0.1f, false), c, p, lines), PointListStatus::kOk);
  EXPECT_NEAR(p.x[0], 10.001f, 1e-5);
  EXPECT_NEAR(p.x[1], 10.104f, 1e-5);
  EXPECT_NEAR(p.dx[1], 0.103f, 1e-5);
  EXPECT_NEAR(p.dx[0], p.dx[1], 1e-7);
}

TEST(PointList, SplineCalibrationScalesCountsToTheMeanStep) {
  // Slope 1 up to 50 degrees and slope 2 beyond: the points above are twice as wide.
  RunControls c = Controls(0.0f, 200.0f);
  c.calibration = -1;
  c.splinePoints = {{0, 0, 0}, {50, 50, 1e-30f}, {100, 150, 0}};
  PatternPoints p;
  std::vector<std::string> lines;
  ASSERT_EQ(BuildPointList(Raw(101, 0.0f, 1.0f, false), c, p, lines), PointListStatus::kOk);
  ASSERT_EQ(p.count, 101);
  EXPECT_NEAR(p.x[10], 10.0f, 1e-4);
  EXPECT_NEAR(p.x[60], 70.0f, 1e-4);
  float mean = 0;
  for (int k = 0; k < p.count; ++k) mean += p.dx[k];
  mean /= static_cast<float>(p.count);
  EXPECT_NEAR(p.observed[10], 110.0f * mean / 1.0f, 1e-3);
  EXPECT_NEAR(p.observed[60], 160.0f * mean / 2.0f, 1e-3);
}

TEST(PointList, BinningMergesGroupsOfPoints) {
  RunControls c = Controls(10.0f, 11.0f);
  c.job.mergePoints = 3;
  PatternPoints p;
  std::vector<std::string> lines;
  ASSERT_EQ(BuildPointList(Raw(21, 10.0f, 0.1f, false), c, p, lines), PointListStatus::kOk);
  // Ten points in groups of three: three whole groups and one of a single point.
  ASSERT_EQ(p.count, 4);
  EXPECT_NEAR(p.x[0], 10.1f + 0.5f * 2 * 0.3f / 3, 1e-5);
  EXPECT_NEAR(p.dx[0], 0.3f, 1e-5);
  EXPECT_FLOAT_EQ(p.observed[0], 101.0f);  // mean of 100, 101, 102
  EXPECT_FLOAT_EQ(p.weight[0], 0.75f);  // variance 12 / 9
  EXPECT_FLOAT_EQ(p.observed[3], 109.0f);
}

TEST(PointList, CalculationsTakeTheirPointsFromTheRange) {
  RunControls c = Controls(10.0f, 12.0f);
  c.calculation = true;
  PatternPoints p;
  std::vector<std::string> lines;
  ASSERT_EQ(BuildPointList(RawPattern{}, c, p, lines), PointListStatus::kOk);
  EXPECT_EQ(p.count, 20);  // 10.1 to 12.0
  EXPECT_FLOAT_EQ(p.weight[0], 1.0f);
}

TEST(PointList, RangeIsHeldInsideThePattern) {
  RunControls c = Controls(5.0f, 30.0f);
  std::vector<std::string> lines;
  HoldRangeInPattern(Raw(21, 10.0f, 0.1f, false), c, lines);
  EXPECT_FLOAT_EQ(c.start, 10.0f);
  EXPECT_FLOAT_EQ(c.stop, 12.0f);
  const std::vector<std::string> expected = {" Pattern start .gt. refinement start. Reset",
                                             " Pattern end .lt. refinement end. Reset"};
  EXPECT_EQ(lines, expected);

  PatternPoints p;
  RunControls outside = Controls(50.0f, 60.0f);
  lines.clear();
  EXPECT_EQ(BuildPointList(Raw(21, 10.0f, 0.1f, false), outside, p, lines),
            PointListStatus::kTooFew);
  EXPECT_EQ(lines.back(), " Fewer than two points in the range");
}

}  // namespace
}  // namespace kaldena
