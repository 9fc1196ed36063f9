// Contours of Fourier sections: levels, interpolation limits, crossings at node values and
// the closed lines of a peak.
#include "tools/contour.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kaldena {
namespace {

// A map of n x n x 2 points with a Gaussian peak of 900 at the centre of section 1 and a
// flat section 2.
ContourMap GaussianMap(int n) {
  ContourMap map;
  PlotFile& f = map.file;
  f.cell = {10, 10, 10, 90, 90, 120};
  f.title = "GAUSS     ";
  f.points = {n, n, 2};
  f.steps = {1.0f / (n - 1), 1.0f / (n - 1), 0.5f};
  f.limits = {0, 1, 0, 1, 0, 0.5f};
  f.rmax = 2.0f;
  const float mid = (n - 1) / 2.0f;
  for (int z = 0; z < 2; ++z) {
    for (int y = 0; y < n; ++y) {
      for (int x = 0; x < n; ++x) {
        const float d2 = (x - mid) * (x - mid) + (y - mid) * (y - mid);
        f.values.push_back(z == 0 ? static_cast<int>(900 * std::exp(-d2 / (0.1f * n * n))) - 50
                                  : 7);
      }
    }
  }
  for (int v : f.values) {
    map.highest = std::max(map.highest, v);
    map.lowest = std::min(map.lowest, v);
  }
  map.scale = f.rmax / 1000;
  return map;
}

TEST(Contour, LevelStepHasOneFigureAndFewerThan21Levels) {
  // 2.0 * 950 / 1000 / 20 = 0.095 -> 0.1; 19 positive + 0 negative + 1 = 20 levels.
  EXPECT_FLOAT_EQ(LevelStep(0.002f, 900, -50), 0.1f);
  // 800 / 20 = 40, then 400 / 40 + 400 / 40 + 1 = 21 levels: doubled to 80.
  EXPECT_FLOAT_EQ(LevelStep(1.0f, 400, -400), 80.0f);
  // 740 / 20 = 37 -> 40, and 10 + 8 + 1 levels stay below 21.
  EXPECT_FLOAT_EQ(LevelStep(1.0f, 400, -340), 40.0f);
  EXPECT_EQ(LevelStep(1.0f, 5, 5), 0.0f);  // a flat map has no step
  const std::vector<float> levels = ContourLevels(0.1f, 0.002f, 900, -50);
  ASSERT_FALSE(levels.empty());
  EXPECT_LE(levels.size(), 20u);
  EXPECT_NE(std::find(levels.begin(), levels.end(), 0.0f), levels.end());
  EXPECT_TRUE(ContourLevels(0.0f, 1.0f, 5, 5).empty());
}

TEST(Contour, PlanesSectionsAndStepping) {
  const ContourMap map = GaussianMap(9);
  RecordingReporter reporter;
  SectionPlane plane;
  EXPECT_EQ(TakePlane(map, 1, 1, 1, plane, reporter), 1);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"Coordinate error"});
  ASSERT_EQ(TakePlane(map, 1, 2, 2, plane, reporter), 0);
  EXPECT_FLOAT_EQ(plane.sectionValue, 0.5f);
  EXPECT_NEAR(plane.cosAngle, -0.5f, 1e-6);  // gamma between x and y
  // A section through x: rows along z, 2 of them.
  ASSERT_EQ(TakePlane(map, 2, 3, 5, plane, reporter), 0);
  EXPECT_EQ(plane.rows, 2);
  EXPECT_EQ(plane.columns, 9);
  EXPECT_EQ(TakePlane(map, 2, 3, 10, plane, reporter), 2);
  // Previous from 1 is the last, Next from the last is 1.
  EXPECT_EQ(StepSection(1, -1, 9), 9);
  EXPECT_EQ(StepSection(9, 1, 9), 1);
  EXPECT_EQ(StepSection(4, 1, 9), 5);
}

TEST(Contour, InterpolationKeepsNodesAndStopsAtTheGridLimit) {
  const ContourMap map = GaussianMap(9);
  RecordingReporter reporter;
  SectionPlane plane;
  ASSERT_EQ(TakePlane(map, 1, 2, 1, plane, reporter), 0);
  const float corner = plane.At(0, 0), centre = plane.At(4, 4);
  int times = 2;
  EXPECT_EQ(InterpolatePlane(plane, times, reporter), 2);
  EXPECT_EQ(plane.rows, 33);
  // Old nodes keep their (transformed) values; a level maps the same way.
  float level = 0;
  ASSERT_TRUE(LevelOnSurface(plane, corner, level));
  EXPECT_NEAR(plane.At(0, 0), level, 1e-4);
  ASSERT_TRUE(LevelOnSurface(plane, centre, level));
  EXPECT_NEAR(plane.At(16, 16), level, 1e-4);
  EXPECT_TRUE(reporter.log.empty());

  // 20 points double to 39, 77, then 153 would pass 151.
  const ContourMap big = GaussianMap(20);
  ASSERT_EQ(TakePlane(big, 1, 2, 1, plane, reporter), 0);
  times = 3;
  EXPECT_EQ(InterpolatePlane(plane, times, reporter), 2);
  EXPECT_EQ(times, 0);
  EXPECT_EQ(plane.rows, 77);
  EXPECT_EQ(reporter.log,
            (std::vector<std::string>{"Array too small for interpolation", "NINTE reset to 0"}));
}

TEST(Contour, FlatSectionHasNoCrossingsAndNodeAtLevelCountsAbove) {
  const ContourMap map = GaussianMap(9);
  RecordingReporter reporter;
  SectionPlane plane;
  ASSERT_EQ(TakePlane(map, 1, 2, 2, plane, reporter), 0);
  const std::vector<float> levels =
      ContourLevels(LevelStep(map.scale, map.highest, map.lowest), map.scale, map.highest,
                    map.lowest);
  for (const ContourLevel& level : ContourPlane(plane, levels, map.scale, reporter)) {
    EXPECT_TRUE(level.lines.empty()) << level.level;
  }
  // One node exactly at the level: it is above, so the crossings lie on its far sides'
  // starts (tenths 0), and a node below the level is not crossed.
  SectionPlane small;
  small.rows = small.columns = 2;
  small.values = {5, 0, 0, 0};
  const std::vector<int> crossings = FindCrossings(small, 5.0f);
  EXPECT_EQ(crossings, (std::vector<int>{ContourCode(0, 0), ContourCode(0, 0)}));
  EXPECT_TRUE(FindCrossings(small, 5.5f).empty());
  small.values = {0, 10, 10, 10};
  EXPECT_EQ(FindCrossings(small, 5.0f),
            (std::vector<int>{ContourCode(0, 5), ContourCode(5, 0)}));
}

TEST(Contour, GaussianPeakGivesClosedLinesAroundItsCentre) {
  const ContourMap map = GaussianMap(15);
  RecordingReporter reporter;
  SectionPlane plane;
  ASSERT_EQ(TakePlane(map, 1, 2, 1, plane, reporter), 0);
  int times = 1;
  InterpolatePlane(plane, times, reporter);
  const float step = LevelStep(map.scale, map.highest, map.lowest);
  const auto levels = ContourPlane(plane, ContourLevels(step, map.scale, map.highest, map.lowest),
                                   map.scale, reporter);
  const float centre = 10.0f * (plane.rows - 1) / 2;
  int closed = 0;
  for (const ContourLevel& level : levels) {
    if (level.level < 0.3f) continue;  // the low ones reach the edge
    // A level that meets a node exactly leaves a piece of zero length there: not a line.
    std::vector<const std::vector<int>*> real;
    for (const auto& l : level.lines) {
      if (std::any_of(l.begin(), l.end(), [&](int c) { return c != l.front(); })) {
        real.push_back(&l);
      }
    }
    ASSERT_EQ(real.size(), 1u) << level.level;
    const std::vector<int>& line = *real.front();
    EXPECT_EQ(line.front(), line.back());
    // Every point at about the same distance from the centre, and the line goes round it.
    float rMin = 1e9f, rMax = 0, turn = 0;
    for (size_t i = 0; i < line.size(); ++i) {
      const float dr = ContourRow(line[i]) - centre, dc = ContourColumn(line[i]) - centre;
      const float r = std::hypot(dr, dc);
      rMin = std::min(rMin, r);
      rMax = std::max(rMax, r);
      if (i > 0) {
        const float a0 = std::atan2(ContourRow(line[i - 1]) - centre,
                                    ContourColumn(line[i - 1]) - centre);
        float d = std::atan2(dr, dc) - a0;
        if (d > M_PI) d -= 2 * M_PI;
        if (d < -M_PI) d += 2 * M_PI;
        turn += d;
      }
    }
    EXPECT_GT(rMin, 0.0f);
    EXPECT_LT(rMax - rMin, 0.25f * rMax + 10) << level.level;
    EXPECT_NEAR(std::fabs(turn), 2 * M_PI, 0.01);
    ++closed;
  }
  EXPECT_GE(closed, 3);
  EXPECT_TRUE(reporter.log.empty());
}

TEST(Contour, LinesFromTheEdgeEndAtTheEdge) {
  // A ramp across the plane: each level is one line from the bottom edge to the top edge.
  SectionPlane plane;
  plane.rows = 4;
  plane.columns = 5;
  for (int r = 0; r < 4; ++r) {
    for (int c = 0; c < 5; ++c) plane.values.push_back(static_cast<float>(c));
  }
  RecordingReporter reporter;
  const auto lines = LinkCrossings(FindCrossings(plane, 1.5f), 4, 5, reporter);
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].size(), 4u);
  EXPECT_EQ(ContourRow(lines[0].front()), 0);
  EXPECT_EQ(ContourRow(lines[0].back()), 30);
  for (int code : lines[0]) EXPECT_EQ(ContourColumn(code), 15);
}

}  // namespace
}  // namespace kaldena
