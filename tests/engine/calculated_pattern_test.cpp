// The whole pattern that a run calculates, point by point, against a model evaluated here on
// its own: nickel on neutrons, Gaussian peaks on a Chebyshev background, a range that ends on
// a data point and one excluded region.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "store/record_store.h"
#include "support/engine_run.h"
#include "util/column_format.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScratchDir;

constexpr double kStart = 15.0, kStep = 0.02, kStop = 140.0;
constexpr int kSteps = 6250;  // from the start to the stop
constexpr double kRegion[2] = {50.0, 52.0};
constexpr double kLambda = 1.54, kCell = 3.48, kWidth = 0.3, kB = 0.3, kScale = 0.5;
constexpr double kLength = 10.3;                         // Ni coherent length, fm
constexpr double kBackground[3] = {100.0, 20.0, -10.0};  // Chebyshev T0, T1, T2

// P m -3 m with Ni at the origin: F = b exp(-B s^2). With a = 3.48 the 411/330 pair lies at
// 139.6 degrees, so its peak reaches the stop point.
std::string Project(bool refine) {
  std::ostringstream p;
  p << "TITL      nickel to the stop point\nFRMT          5\nPWDT      pattern.xy\n"
    << "JOBT          " << (refine ? 1 : 3) << "    1    1   -1    1    1    0    1\n"
    << "ELAM        1.540000  0.000000  0.000000\n"
    << "RLIM         8.00000   0.00000   0.00000   0.00000   0.00000   0.00000   0.00000   "
       "0.00000\n"
    << FormatLine("('RELX          1 0.01 1.00 1.00 1.00 1.00',3f10.5)", kStart, kStep, kStop)
    << "\n"
    << FormatLine("('EXRG      ',2f10.5)", kRegion[0], kRegion[1]) << "\n"
    << "ANOM      Ni           0.00000   0.00000\n"
    << "ZETT         0.00000   0.00000   0.00000\nCZET           0.000     0.000     0.000\n"
    << FormatLine("('BKGR      ',3f10.3)", kBackground[0], kBackground[1], kBackground[2]) << "\n"
    << "CBKG           0.000     0.000     0.000\n"
    << "PHTI      nickel\nPHNA          1  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
    << "SPGR      P M -3 M\n"
    << FormatLine("('SCAL      ',e12.5,f10.3)", kScale, 0.0) << "\n"
    << "CSCA           " << (refine ? "1.000" : "0.000") << "     0.000\n"
    << FormatLine("('CELL      ',6f10.5)", kCell, kCell, kCell, 90.0, 90.0, 90.0) << "\n"
    << FormatLine("('HWTH      ',3f10.5)", 0.0, 0.0, kWidth * kWidth) << "\n"
    << "PKSH         0.00000   0.00000   0.00000\n"
    << FormatLine("('XYZ       Ni     1',5f9.5,' 48  0  0  0')", 0.0, 0.0, 0.0, 1.0, kB) << "\n";
  return p.str();
}

// Distinct index triples of the form of h >= k >= l >= 0.
int Multiplicity(int h, int k, int l) {
  std::set<std::array<int, 3>> form;
  std::array<int, 3> v = {l, k, h};
  do {
    for (int signs = 0; signs < 8; ++signs) {
      form.insert({signs & 1 ? -v[0] : v[0], signs & 2 ? -v[1] : v[1], signs & 4 ? -v[2] : v[2]});
    }
  } while (std::next_permutation(v.begin(), v.end()));
  return static_cast<int>(form.size());
}

double Background(double x) {
  const double u = -1 + 2 * (x - kStart) / (kStop - kStart);
  return kBackground[0] + kBackground[1] * u + kBackground[2] * (2 * u * u - 1);
}

// The peaks alone at two-theta x: scale m LP F^2 G(x - 2 theta) summed over the forms.
double Peaks(double x) {
  const double pi = std::acos(-1.0);
  double y = 0;
  for (int h = 1; h < 8; ++h) {
    for (int k = 0; k <= h; ++k) {
      for (int l = 0; l <= k; ++l) {
        const double s2 = (h * h + k * k + l * l) / (4 * kCell * kCell);  // (sin theta / lambda)^2
        const double s = s2 * kLambda * kLambda;                          // sin^2 theta
        if (s >= 1) continue;
        const double twoTheta = 2 * std::asin(std::sqrt(s)) * 180 / pi;
        const double lp = 1 / (2 * s * std::sqrt(1 - s));
        const double f = kLength * std::exp(-kB * s2);
        const double d = x - twoTheta;
        const double g = 2 * std::sqrt(std::log(2.0) / pi) / kWidth *
                         std::exp(-4 * std::log(2.0) * d * d / (kWidth * kWidth));
        y += kScale * Multiplicity(h, k, l) * lp * f * f * g;
      }
    }
  }
  return y;
}

bool Excluded(double x) { return x >= kRegion[0] - 1e-4 && x <= kRegion[1] + 1e-4; }

struct SummaryPoint {
  float x = 0, observed = 0, total = 0, background = 0;
};

std::vector<SummaryPoint> ReadSummary(const fs::path& file) {
  std::vector<SummaryPoint> points;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) {
    SummaryPoint p;
    EXPECT_EQ(Read(line, "(F7.3,3F12.1)", p.x, p.observed, p.total, p.background), ReadStatus::kOk);
    points.push_back(p);
  }
  return points;
}

bool RunProject(const ScratchDir& dir, const std::string& project) {
  dir.Write("nickel.rec", project);
  return testing::RunEngineIn(dir, "nickel.rec");
}

TEST(CalculatedPattern, EveryPointUpToTheStopMatchesTheModel) {
  ScratchDir dir;
  ASSERT_TRUE(RunProject(dir, Project(false))) << ReadBytes(dir.Path() / "%nickel.out");
  const std::vector<SummaryPoint> points = ReadSummary(dir.Path() / "%nickel.sum");
  // The first point lies one step above the start.
  ASSERT_EQ(points.size(), static_cast<size_t>(kSteps));
  EXPECT_FLOAT_EQ(points.front().x, kStart + kStep);
  ASSERT_FLOAT_EQ(points.back().x, kStop);
  bool afterRegion = false;
  for (const SummaryPoint& p : points) {
    if (Excluded(p.x)) continue;
    const double peaks = Peaks(p.x), background = Background(p.x);
    // The summary's one decimal; on steep flanks the single precision of the peak positions.
    EXPECT_NEAR(p.background, background, 0.06) << "background at " << p.x;
    EXPECT_NEAR(p.total, peaks + background, 0.06 + 1e-3 * peaks) << "total at " << p.x;
    afterRegion = afterRegion || std::abs(p.x - (kRegion[1] + kStep)) < 1e-3;
  }
  EXPECT_TRUE(afterRegion);
  EXPECT_GT(Peaks(kStop), Background(kStop)) << "the stop point must lie on a peak's flank";
}

TEST(CalculatedPattern, ExactDataRefineToNoResidualWithEveryPointCounted) {
  ScratchDir dir;
  std::ostringstream pattern;
  int inRange = 0;
  for (int i = 0; i <= kSteps; ++i) {
    const double x = kStart + kStep * i;
    pattern << FormatLine("(f8.2,f14.4)", x, Peaks(x) + Background(x)) << "\n";
    // The file's first point stays out; the region's points are not fitted.
    if (i > 0 && !Excluded(x)) ++inRange;
  }
  dir.Write("pattern.xy", pattern.str());
  ASSERT_TRUE(RunProject(dir, Project(true))) << ReadBytes(dir.Path() / "%nickel.out");
  RecordingReporter reporter;
  RecordStore store(reporter);
  ASSERT_GT(store.jReadRecFile((dir.Path() / "%nickel.par").string()), 0);
  std::string rval;
  ASSERT_EQ(store.jFindRec("RVAL", rval), 1);
  int parameters = 0, observations = 0, reflections = 0;
  float rp = 0, rwp = 0;
  Read(rval, "(I4,I6,I5,2F10.0)", parameters, observations, reflections, rp, rwp);
  EXPECT_EQ(parameters, 1);
  EXPECT_EQ(observations, inRange);
  EXPECT_LT(rp, 0.02f) << rval;
  EXPECT_LT(rwp, 0.02f) << rval;
}

}  // namespace
}  // namespace kaldena
