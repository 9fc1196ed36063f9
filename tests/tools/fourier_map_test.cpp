// The Fourier map: grid rule, cosine table, index operators, the expansion's filters and
// symmetry, and the summation against closed forms.
#include "tools/fourier_map.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "util/column_format.h"

namespace kaldena {
namespace {

constexpr float kPi = 3.14159265f;

TEST(FourierGrid, StepIsATwentySeventhRoundedUpToAHundredth) {
  const GridAxis full = MakeGridAxis(-0.04f, 1.04f);
  EXPECT_FLOAT_EQ(full.step, 0.04f);
  EXPECT_EQ(full.points, 28);

  const GridAxis cell = MakeGridAxis(0.0f, 1.0f);  // 1/27 = 0.037 rounds up to 0.04
  EXPECT_FLOAT_EQ(cell.step, 0.04f);
  EXPECT_EQ(cell.points, 26);

  const GridAxis small = MakeGridAxis(0.27f, 0.35f);
  EXPECT_FLOAT_EQ(small.step, 0.01f);
  EXPECT_EQ(small.points, 9);

  for (const auto& [lo, hi] : {std::pair{0.0f, 0.0f}, std::pair{0.5f, 0.2f}}) {
    const GridAxis flat = MakeGridAxis(lo, hi);
    EXPECT_FLOAT_EQ(flat.step, 1.0f);
    EXPECT_EQ(flat.points, 1);
  }
  // No box length gives more than 28 points.
  for (float length = 0.01f; length < 40.0f; length *= 1.37f) {
    const GridAxis axis = MakeGridAxis(-0.3f, -0.3f + length);
    EXPECT_LE(axis.points, kMaxGridPoints) << length;
    EXPECT_GE(axis.points, 2) << length;
    EXPECT_LE((axis.points - 1) * axis.step, length * 1.0001f) << length;
  }
}

TEST(FourierCosineTable, EntriesAndValues) {
  EXPECT_EQ(CosineTable::Entry(0.0f), 1);
  EXPECT_EQ(CosineTable::Entry(0.25f), 251);
  EXPECT_EQ(CosineTable::Entry(1.0f), 1001);
  EXPECT_EQ(CosineTable::Entry(1.0012f), 2);
  EXPECT_EQ(CosineTable::Entry(37.25f), 251);
  // Truncation toward zero: a negative angle lands one entry above its nearest.
  EXPECT_EQ(CosineTable::Entry(-0.002f), 1000);
  EXPECT_EQ(CosineTable::Entry(-3.75f), 252);

  const CosineTable table;
  EXPECT_EQ(table.Value(1), 1.0f);
  EXPECT_EQ(table.Value(251), 0.0f);
  EXPECT_EQ(table.Value(501), -1.0f);
  EXPECT_EQ(table.Value(751), 0.0f);
  EXPECT_EQ(table.Value(1001), 1.0f);
  for (float u = -2.0f; u < 3.0f; u += 0.0173f) {
    float c = 0, s = 0;
    table.CosSin(u, c, s);
    // Half a table step from the true angle, one and a half for negative angles.
    const float tolerance = (u < 0 ? 1.5f : 0.5f) * 2 * kPi / 1000 + 2e-4f;
    EXPECT_NEAR(c, std::cos(2 * kPi * u), tolerance) << u;
    EXPECT_NEAR(s, std::sin(2 * kPi * u), tolerance) << u;
  }
}

// The index operator must be the transposed inverse of the coordinate rotation, for the
// hexagonal axes as well as for the orthogonal ones, with the translation in twelfths.
TEST(FourierIndexOperators, AreTheTransposedInverseOfEachRotation) {
  for (std::string symbol : {"P 6/M M M", "R -3 C", "P 43 3 2", "P 1 21/C 1"}) {
    RecordingReporter reporter;
    const SpaceGroupInfo group = GetSpaceGroupOperators(symbol, reporter);
    ASSERT_FALSE(group.operators.empty()) << symbol;
    for (const SymmetryOperator& op : group.operators) {
      const IndexOperator index = IndexOperatorOf(op);
      // R^T times the index matrix must be the unit matrix.
      for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
          float sum = 0;
          for (int m = 0; m < 3; ++m) sum += op[4 * m + i] * static_cast<float>(index.r[m][j]);
          EXPECT_EQ(sum, i == j ? 1.0f : 0.0f) << symbol << " " << OperatorText(op);
        }
        EXPECT_EQ(index.twelfths[i], static_cast<int>(12 * op[4 * i + 3] + 0.1f));
      }
    }
  }
}

// A .fou line as the engine writes it.
std::string FouLine(int h, int k, int l, int phase, float iObs, float sigma, float stl,
                    float iCalc, float angle, float twoTheta) {
  return Format("(4i4,2f12.1,f12.5,f12.1,2f12.5,6f12.4)", h, k, l, phase, iObs, sigma, stl, iCalc,
                angle, 10.0f, twoTheta);
}

std::vector<IndexOperator> Operators(std::string symbol) {
  RecordingReporter reporter;
  std::vector<IndexOperator> result;
  for (const auto& op : GetSpaceGroupOperators(symbol, reporter).operators) {
    result.push_back(IndexOperatorOf(op));
  }
  return result;
}

struct Expansion {
  FourierStatus status;
  ExpandedReflections out;
  RecordingReporter reporter;
};

void Expand(const std::string& fou, const FourierOptions& options, std::string symbol,
            Expansion& e, float volume = 2.0f) {
  std::istringstream in(fou);
  e.status = ExpandReflections(in, options, volume, Operators(symbol), e.out, e.reporter);
}

TEST(FourierExpansion, ScrewAxisShiftsThePhaseAndFriedelFoldsTheImage) {
  FourierOptions options;
  options.mapType = 5;
  options.f000 = 0;
  Expansion e;
  // F = 3 with phase 0; volume 2 makes the factor 2 / V = 1.
  Expand(FouLine(1, 1, 1, 1, 9, 1, 0.2f, 9, 0, 20) + " 999   0   0   0\n", options, "P 1 21 1",
         e);
  ASSERT_EQ(e.status, FourierStatus::kOk);
  ASSERT_EQ(e.out.Count(), 2);
  EXPECT_EQ(e.out.hkl[0], (std::array<int, 3>{1, 1, 1}));
  EXPECT_NEAR(e.out.a[0], 3.0f, 1e-5f);
  // -x, y+1/2, -z: image -1 1 -1 with phase k' / 2 turns = pi, folded to 1 -1 1.
  EXPECT_EQ(e.out.hkl[1], (std::array<int, 3>{1, -1, 1}));
  EXPECT_NEAR(e.out.a[1], -3.0f, 1e-5f);
  EXPECT_NEAR(e.out.b[1], 0.0f, 1e-6f);
  EXPECT_EQ(e.out.minimum, (std::array<int, 3>{0, -1, 0}));
  EXPECT_EQ(e.out.maximum, (std::array<int, 3>{1, 1, 1}));
  EXPECT_EQ(e.reporter.log, (std::vector<std::string>{"     1 reflections read",
                                                      "     2 expanded reflections"}));
}

TEST(FourierExpansion, CentreOfSymmetryGivesOneImageAndTheSineIsNeverNegative) {
  FourierOptions options;
  options.mapType = 4;
  options.f000 = 0;
  Expansion e;
  // Phase -pi/2: the sine is taken as +1, not -1.
  Expand(FouLine(0, 2, -1, 1, 16, 1, 0.2f, 4, -kPi / 2, 20), options, "P -1", e);
  ASSERT_EQ(e.status, FourierStatus::kOk);
  ASSERT_EQ(e.out.Count(), 1);
  EXPECT_EQ(e.out.hkl[0], (std::array<int, 3>{0, 2, -1}));
  EXPECT_NEAR(e.out.a[0], 0.0f, 1e-4f);
  EXPECT_NEAR(e.out.b[0], 4.0f, 1e-5f);
}

TEST(FourierExpansion, FiltersByTypeSigmaRangeAndPhase) {
  const std::string fou =
      FouLine(1, 0, 0, 1, 100, 10, 0.10f, 64, 0, 10) +   // taken
      FouLine(0, 1, 0, 1, -15, 10, 0.11f, 64, 0, 11) +   // weak negative, above -2 sigma
      FouLine(0, 0, 1, 1, -25, 10, 0.12f, 64, 0, 12) +   // below the cut-off
      FouLine(1, 1, 0, 1, 100, 0, 0.13f, 64, 0, 13) +    // no sigma
      FouLine(1, 0, 1, 1, 100, 10, 0.90f, 64, 0, 14) +   // beyond the data limit
      FouLine(0, 1, 1, 2, 100, 10, 0.14f, 64, 0, 15) +   // second phase
      FouLine(1, 1, 1, 1, 100, 10, 0.15f, 64, 0, 16) + " 999   0   0   0\n";
  FourierOptions options;
  options.maxSinThetaOverLambda = 0.5f;
  options.f000 = 0;

  options.mapType = 4;  // |I(obs)|: the weak negative one enters
  Expansion observed;
  Expand(fou, options, "P 1", observed);
  ASSERT_EQ(observed.status, FourierStatus::kOk);
  ASSERT_EQ(observed.out.Count(), 2);
  EXPECT_NEAR(observed.out.a[1], std::sqrt(15.0f), 1e-4f);

  options.mapType = 2;  // Patterson of I(obs): the file's other phases enter too
  Expansion patterson;
  Expand(fou, options, "P 1", patterson);
  ASSERT_EQ(patterson.out.Count(), 4);
  EXPECT_EQ(patterson.out.hkl[2], (std::array<int, 3>{0, 1, 1}));
  EXPECT_EQ(patterson.out.a[1], -15.0f);

  options.mapType = 6;  // Fo - Fc with Fo = Fc is no reflection at all
  Expansion difference;
  Expand(FouLine(1, 0, 0, 1, 64, 1, 0.1f, 64, 0, 10), options, "P 1", difference);
  EXPECT_EQ(difference.status, FourierStatus::kFailed);
  EXPECT_EQ(difference.reporter.log, std::vector<std::string>{"No expanded reflections"});
}

TEST(FourierExpansion, FallingTwoThetaEndsThePhase) {
  const std::string fou = FouLine(1, 0, 0, 1, 100, 10, 0.1f, 64, 0, 20.0f) +
                          FouLine(0, 1, 0, 1, 100, 10, 0.1f, 64, 0, 19.95f) +  // within 0.1
                          FouLine(0, 0, 1, 1, 100, 10, 0.1f, 64, 0, 12.0f) +   // next phase
                          FouLine(1, 1, 0, 1, 100, 10, 0.1f, 64, 0, 25.0f);
  FourierOptions options;
  options.mapType = 5;
  options.f000 = 0;
  Expansion e;
  Expand(fou, options, "P 1", e);
  EXPECT_EQ(e.out.Count(), 2);
}

TEST(FourierExpansion, OriginTermAndLegacyType) {
  FourierOptions options;
  options.f000 = 40;
  const std::string fou = FouLine(1, 0, 0, 1, 100, 10, 0.1f, 64, 0, 20.0f);
  for (int type : {2, 3, 4, 5, 6}) {
    options.mapType = type;
    Expansion e;
    Expand(fou, options, "P -1", e, 4.0f);
    ASSERT_EQ(e.status, FourierStatus::kOk) << type;
    const bool origin = type != 6;
    ASSERT_EQ(e.out.Count(), origin ? 2 : 1) << type;
    if (!origin) continue;
    EXPECT_EQ(e.out.hkl[0], (std::array<int, 3>{0, 0, 0}));
    // F(000) / 2 times 2 / V; the Patterson types take 2 (F(000) / 2)^2.
    EXPECT_FLOAT_EQ(e.out.a[0], type <= 3 ? 2 * 20.0f * 20.0f * 0.5f : 20.0f * 0.5f) << type;
  }
  options.mapType = 1;
  Expansion legacy;
  Expand(fou, options, "P -1", legacy);
  EXPECT_EQ(legacy.status, FourierStatus::kFailed);
  EXPECT_EQ(legacy.reporter.log, std::vector<std::string>{"No expanded reflections"});
}

TEST(FourierExpansion, StoreHoldsTwentyThousandImages) {
  std::string fou;
  for (int h = 1; h <= kMaxExpandedReflections + 1; ++h) {
    fou += FouLine(h % 200, h / 200, 0, 1, 100, 10, 0.1f, 64, 0, 20.0f);
  }
  FourierOptions options;
  options.mapType = 5;
  options.f000 = 0;
  Expansion e;
  Expand(fou, options, "P 1", e);
  EXPECT_EQ(e.status, FourierStatus::kFailed);
  EXPECT_EQ(e.reporter.log.back(), "Too many expanded reflections");
}

TEST(FourierSummation, SingleReflectionsGiveTheirWaves) {
  // A = 1 at 1 0 0 gives cos(2 pi x); B = 1 at 0 1 0 gives sin(2 pi y); l = 2 with A = 1/2.
  ExpandedReflections r;
  r.hkl = {{1, 0, 0}, {0, 1, 0}, {0, 0, 2}};
  r.a = {1.0f, 0.0f, 0.5f};
  r.b = {0.0f, 1.0f, 0.0f};
  r.maximum = {1, 1, 2};
  FourierMap map;
  RecordingReporter reporter;
  ASSERT_EQ(SumFourierMap(r, {-0.04f, 1.04f, 0.0f, 1.0f, 0.1f, 0.6f}, map, reporter),
            FourierStatus::kOk);
  EXPECT_EQ(map.axes[0].points, 28);
  EXPECT_EQ(map.axes[1].points, 26);
  EXPECT_EQ(map.axes[2].points, 26);  // 0.5 / 27 rounds up to 0.02
  float largest = 0;
  for (int iz = 0; iz < map.axes[2].points; ++iz) {
    for (int iy = 0; iy < map.axes[1].points; ++iy) {
      for (int ix = 0; ix < map.axes[0].points; ++ix) {
        const float x = -0.04f + 0.04f * ix, y = 0.04f * iy, z = 0.1f + 0.02f * iz;
        const float expected = std::cos(2 * kPi * x) + std::sin(2 * kPi * y) +
                               0.5f * std::cos(4 * kPi * z);
        EXPECT_NEAR(map.At(ix, iy, iz), expected, 0.02f) << ix << " " << iy << " " << iz;
        largest = std::max(largest, std::fabs(map.At(ix, iy, iz)));
      }
    }
  }
  EXPECT_EQ(map.rmax, largest);
  EXPECT_EQ(reporter.log[0], "Fourier summation done");
  EXPECT_EQ(reporter.log[1], FormatLine("( 7X,'RMAX = ',F10.5)", largest));
}

TEST(FourierSummation, WorkspaceLimitsAndAnEmptyMap) {
  ExpandedReflections r;
  r.hkl = {{0, 0, 0}};
  r.a = {0.0f};
  r.b = {0.0f};
  FourierMap map;
  RecordingReporter reporter;
  ASSERT_EQ(SumFourierMap(r, {0, 1, 0, 1, 0, 1}, map, reporter), FourierStatus::kOk);
  for (float v : map.values) EXPECT_EQ(v, 0.0f);
  EXPECT_EQ(map.rmax, 10.0f);
  EXPECT_EQ(map.Scaled(3, 3, 3), 0);

  r.minimum = {-35, -35, 0};  // H = K = 71: 2 H K = 10082
  r.maximum = {35, 35, 0};
  reporter.Clear();
  EXPECT_EQ(SumFourierMap(r, {0, 1, 0, 1, 0, 1}, map, reporter), FourierStatus::kFailed);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"NRSTOR TO LARGE"});

  r.minimum = {0, 0, 0};  // H = 179 with 28 points along y: 2 Ny H = 10024
  r.maximum = {178, 0, 0};
  reporter.Clear();
  EXPECT_EQ(SumFourierMap(r, {0, 1, -0.04f, 1.04f, 0, 1}, map, reporter), FourierStatus::kFailed);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"NSSTOR TO LARGE"});
  r.maximum = {177, 0, 0};  // 2 x 28 x 178 = 9968 still fits
  reporter.Clear();
  EXPECT_EQ(SumFourierMap(r, {0, 1, -0.04f, 1.04f, 0, 0}, map, reporter), FourierStatus::kOk);
}

}  // namespace
}  // namespace kaldena
