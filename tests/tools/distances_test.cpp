// DISTAN: distances and angles against an independent computation, standard deviations worked
// by hand, symmetry codes, the limits and failures, and the list file of the refined example
// project byte for byte (KALDENA_UPDATE_GOLDEN=1 rewrites the golden files).
#include "tools/distances.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/run_engine.h"
#include "support/refined_example.h"
#include "support/test_files.h"
#include "util/text.h"
#include "util/report.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ExpectGolden;
using testing::ReadBytes;
using testing::ScratchDir;
using testing::TestData;

struct TestAtom {
  std::string label;
  float x, y, z;
  float sx = 0, sy = 0, sz = 0;
};

// A label in its field of columns 11 to 20.
std::string Padded(std::string label) {
  label.resize(10, ' ');
  return label;
}

// A one-phase project of the records DISTAN reads.
std::string Project(const std::string& cell, const std::string& symbol,
                    const std::vector<TestAtom>& atoms, const std::string& extra = "",
                    const std::string& cellSd = "") {
  std::string text =
      "TITL      Test structure\nJOBT          2    4    1   -1    0    1    0    1\n";
  text += "PHTI      Test phase\n";
  text += "PHNA      " + std::to_string(atoms.size()) + "\n";
  text += "SPGR      " + symbol + "\n";
  text += "CELL      " + cell + "\n";
  if (!cellSd.empty()) text += "SDCE      " + cellSd + "\n";
  for (const TestAtom& a : atoms) {
    text += "XYZ       " + Padded(a.label) + " 1 " + std::to_string(a.x) + " " +
            std::to_string(a.y) + " " + std::to_string(a.z) + " 1.0 0.5\n";
  }
  for (const TestAtom& a : atoms) {
    text += "SDXY      " + Padded(a.label) + " " + std::to_string(a.sx) + " " +
            std::to_string(a.sy) + " " + std::to_string(a.sz) + "\n";
  }
  return text + extra;
}

const std::vector<TestAtom> kCorundum = {{"Al", 0.0f, 0.0f, 0.35216f},
                                         {"O", 0.30624f, 0.0f, 0.25f}};

std::vector<float> Lengths(const std::vector<DistanceRecord>& records) {
  std::vector<float> d;
  for (const DistanceRecord& r : records) d.push_back(r.d);
  std::sort(d.begin(), d.end());
  return d;
}

const DistanceRecord* WithCode(const std::vector<DistanceRecord>& records, int code,
                               const std::string& label) {
  for (const DistanceRecord& r : records) {
    if (r.code == code && LabelText(r.neighbourLabel) == label) return &r;
  }
  return nullptr;
}

std::vector<std::string> Lines(const std::string& text) {
  const std::vector<std::string_view> views = SplitLines(text);
  return std::vector<std::string>(views.begin(), views.end());
}

bool HasLine(const std::vector<std::string>& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

TEST(Distances, CorundumAgreesWithGemmi) {
  // Reference: gemmi 0.5.7 (python3-gemmi, Debian), all images of R -3 c within 3 A of Al at
  // (0, 0, 0.35216) with a = 4.7589, c = 12.991: Al-O 1.85466 x3, 1.97111 x3, Al-Al 2.65432,
  // 2.79076 x3; O-Al-O angles 79.629, 86.368, 90.788, 101.171, 164.221, three of each.
  ScratchDir dir;
  const fs::path file =
      dir.Write("c.rec", Project("4.7589 4.7589 12.991 90 90 120", "R -3 C", kCorundum));
  RecordingReporter reporter;
  const DistanceTable table = CalculateDistances(file.string(), reporter);
  ASSERT_TRUE(table.ok);
  ASSERT_EQ(table.phases.size(), 1u);
  const PhaseDistances& phase = table.phases[0];
  const std::vector<float> expected = {1.85466f, 1.85466f, 1.85466f, 1.97111f, 1.97111f,
                                       1.97111f, 2.65432f, 2.79076f, 2.79076f, 2.79076f};
  const std::vector<float> found = Lengths(phase.distances[0]);
  ASSERT_EQ(found.size(), expected.size());
  for (size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i], expected[i], 2e-4f) << i;
  int oxygen = 0;
  for (const DistanceRecord& r : phase.distances[0])
    oxygen += LabelText(r.neighbourLabel) == "O   ";
  EXPECT_EQ(oxygen, 6);

  // Angles only between distances up to 2 A: the octahedron of six O, 15 angles.
  std::vector<float> angles;
  for (const AngleRecord& a : phase.angles[0]) {
    EXPECT_EQ(a.labels[1], "Al  ");
    EXPECT_EQ(a.codes[1], kCentreCode);
    angles.push_back(a.angle);
  }
  std::sort(angles.begin(), angles.end());
  const float reference[] = {79.629f, 86.368f, 90.788f, 101.171f, 164.221f};
  ASSERT_EQ(angles.size(), 15u);
  for (size_t i = 0; i < angles.size(); ++i) EXPECT_NEAR(angles[i], reference[i / 3], 2e-3f) << i;

  // Each pair is found from both ends. Round O (gemmi as above): Al 1.85466 x2, 1.97111 x2;
  // O 2.52423 x2, 2.61949 x2, 2.72497 x4, 2.86575 x4.
  const std::vector<float> round = {1.85466f, 1.85466f, 1.97111f, 1.97111f, 2.52423f, 2.52423f,
                                    2.61949f, 2.61949f, 2.72497f, 2.72497f, 2.72497f, 2.72497f,
                                    2.86575f, 2.86575f, 2.86575f, 2.86575f};
  const std::vector<float> aroundO = Lengths(phase.distances[1]);
  ASSERT_EQ(aroundO.size(), round.size());
  for (size_t i = 0; i < round.size(); ++i) EXPECT_NEAR(aroundO[i], round[i], 2e-4f) << i;
}

TEST(Distances, SpecialPositionsAndDuplicates) {
  // Al on the three-fold axis of R -3 c has 12 distinct images of 36, O on the two-fold 18.
  SpaceGroupInfo group;
  std::string symbol = "R -3 C";
  RecordingReporter reporter;
  group = GetSpaceGroupOperators(symbol, reporter);
  ASSERT_EQ(group.operators.size(), 36u);
  std::vector<DistanceAtom> atoms(2);
  atoms[0].xyz = {0.0f, 0.0f, 0.35216f};
  atoms[1].xyz = {0.30624f, 0.0f, 0.25f};
  const PositionTable table = ExpandPositions(atoms, group.operators);
  ASSERT_TRUE(table.complete);
  for (int a = 0; a < 2; ++a) {
    int distinct = 0;
    for (int op = 1; op <= 36; ++op) {
      const ExpandedPosition& p = table.At(a, op);
      EXPECT_EQ(p.op, op);
      if (p.xyz[0] == kDuplicateMarker) continue;
      ++distinct;
      for (float v : p.xyz) {
        EXPECT_GE(v, 0.0f);
        EXPECT_LT(v, 1.0f);
      }
    }
    EXPECT_EQ(distinct, a == 0 ? 12 : 18);
  }
  EXPECT_NE(table.At(0, 1).xyz[0], kDuplicateMarker);

  // The duplicate test is a plain difference: 0.000001 and 0.999999 stay two positions.
  std::string centric = "P -1";
  const SpaceGroupInfo p1bar = GetSpaceGroupOperators(centric, reporter);
  std::vector<DistanceAtom> nearOrigin(2);
  nearOrigin[1].xyz = {0.000001f, 0.5f, 0.5f};
  const PositionTable two = ExpandPositions(nearOrigin, p1bar.operators);
  EXPECT_EQ(two.At(0, 2).xyz[0], kDuplicateMarker);
  EXPECT_NE(two.At(1, 2).xyz[0], kDuplicateMarker);
  EXPECT_EQ(two.At(1, 2).shift[0], 1);

  // An atom at the origin of a face-centred cell: no zero distance, 12 neighbours at a/sqrt 2.
  ScratchDir dir;
  const fs::path file = dir.Write(
      "f.rec", Project("4 4 4 90 90 90", "F M 3 M", {{"Cu", 0, 0, 0}}, "DIST           3.0\n"));
  const DistanceTable fcc = CalculateDistances(file.string(), reporter);
  ASSERT_TRUE(fcc.ok);
  const std::vector<float> d = Lengths(fcc.phases[0].distances[0]);
  ASSERT_EQ(d.size(), 12u);
  for (float v : d) EXPECT_NEAR(v, 2.828427f, 1e-4f);
}

TEST(Distances, SymmetryCodes) {
  // P -1, a = 5, b = 6, c = 7: A at (0.1, 0.2, 0.3); its inverse (-0.1, -0.2, -0.3) is
  // reduced into the cell with +1 on each axis, so the image at the inverse itself is 2555.
  ScratchDir dir;
  const fs::path file = dir.Write(
      "p.rec", Project("5 6 7 90 90 90", "P -1", {{"A", 0.1f, 0.2f, 0.3f}, {"B", 0.5f, 0.2f, 0.3f}},
                       "DIST           5.0\n"));
  RecordingReporter reporter;
  const DistanceTable table = CalculateDistances(file.string(), reporter);
  ASSERT_TRUE(table.ok);
  const std::vector<DistanceRecord>& a = table.phases[0].distances[0];
  const DistanceRecord* inverse = WithCode(a, 2555, "A   ");
  ASSERT_NE(inverse, nullptr);
  EXPECT_NEAR(inverse->d, std::sqrt(1.0f + 2.4f * 2.4f + 4.2f * 4.2f), 1e-4f);
  EXPECT_NEAR(inverse->neighbour[0], -0.1f, 1e-6f);
  EXPECT_NEAR(inverse->neighbour[2], -0.3f, 1e-6f);
  // B in the same cell by operator 1, and its translate one cell down along a.
  const DistanceRecord* same = WithCode(a, 1555, "B   ");
  ASSERT_NE(same, nullptr);
  EXPECT_EQ(LabelText(same->neighbourLabel), "B   ");
  EXPECT_NEAR(same->d, 2.0f, 1e-5f);
  const DistanceRecord* below = WithCode(a, 1455, "B   ");
  ASSERT_NE(below, nullptr);
  EXPECT_NEAR(below->d, 3.0f, 1e-5f);
  for (const DistanceRecord& r : a) {
    EXPECT_EQ(r.centreOp, 1);
    EXPECT_NEAR(r.centre[0], 0.1f, 1e-6f);
    // Each code's translation carries the operator's image onto the listed position.
    const SymmetryOperator op = r.neighbourOp == 1
                                    ? SymmetryOperator{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}
                                    : SymmetryOperator{-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, -1, 0};
    const float input[2][3] = {{0.1f, 0.2f, 0.3f}, {0.5f, 0.2f, 0.3f}};
    const int digits[3] = {r.code / 100 % 10, r.code / 10 % 10, r.code % 10};
    EXPECT_EQ(r.code / 1000, r.neighbourOp);
    for (int i = 0; i < 3; ++i) {
      const float* x = input[r.neighbourAtom];
      const float image = op[4 * i] * x[0] + op[4 * i + 1] * x[1] + op[4 * i + 2] * x[2];
      EXPECT_NEAR(image + digits[i] - 5, r.neighbour[i], 1e-5f) << r.code;
    }
  }
}

TEST(Distances, StandardDeviationsByHand) {
  // Orthorhombic P 1, a = 4, b = 5, c = 6; A at the origin, B at (0.5, 0, 0): d = 2.
  // s(a) = 0.01 gives 0.5 x 0.01 = 0.005; s(xB) = 0.002 gives 4 x 0.002 = 0.008; s(xA) =
  // 0.001 gives 0.004. Root of the sum of squares: sqrt(105) x 0.001.
  ScratchDir dir;
  RecordingReporter reporter;
  fs::path file = dir.Write(
      "o.rec", Project("4 5 6 90 90 90", "P 1",
                       {{"A", 0, 0, 0, 0.001f, 0.003f, 0.003f}, {"B", 0.5f, 0, 0, 0.002f, 0, 0}},
                       "DIST           2.5\n", "0.01 0.0 0.0 0.0 0.0 0.0"));
  DistanceTable table = CalculateDistances(file.string(), reporter);
  ASSERT_TRUE(table.ok);
  std::vector<DistanceRecord> ab;
  for (const DistanceRecord& r : table.phases[0].distances[0]) {
    if (LabelText(r.neighbourLabel) == "B   ") ab.push_back(r);
  }
  ASSERT_EQ(ab.size(), 2u);  // one on each side
  for (const DistanceRecord& r : ab) {
    EXPECT_NEAR(r.d, 2.0f, 1e-5f);
    EXPECT_NEAR(r.sd, std::sqrt(105.0f) * 0.001f, 2e-6f);
  }

  // Tetragonal a = b = 4, c = 6, B at (0.5, 0.5, 0): the a and b terms are one parameter,
  // s(d) = s(a) d / a = 0.01 x sqrt(8) / 4.
  file = dir.Write("t.rec", Project("4 4 6 90 90 90", "P 1", {{"A", 0, 0, 0}, {"B", 0.5f, 0.5f, 0}},
                                    "DIST           2.9\n", "0.01 0.01 0.02 0 0 0"));
  table = CalculateDistances(file.string(), reporter);
  ASSERT_TRUE(table.ok);
  for (const DistanceRecord& r : table.phases[0].distances[0]) {
    EXPECT_NEAR(r.d, std::sqrt(8.0f), 1e-5f);
    EXPECT_NEAR(r.sd, 0.01f * std::sqrt(8.0f) / 4, 1e-6f);
  }
  // ... and c is merged into a as well, so along (0.5, 0, 0.5) the two terms add before they
  // are squared: (0.01 x 2 x 0.5 + 0.02 x 3 x 0.5) / sqrt(13).
  file = dir.Write("u.rec", Project("4 4 6 90 90 90", "P 1", {{"A", 0, 0, 0}, {"B", 0.5f, 0, 0.5f}},
                                    "DIST           3.7\n", "0.01 0.01 0.02 0 0 0"));
  table = CalculateDistances(file.string(), reporter);
  ASSERT_TRUE(table.ok);
  ASSERT_FALSE(table.phases[0].distances[0].empty());
  for (const DistanceRecord& r : table.phases[0].distances[0]) {
    EXPECT_NEAR(r.d, std::sqrt(13.0f), 1e-5f);
    EXPECT_NEAR(r.sd, 0.04f / std::sqrt(13.0f), 1e-6f);
  }

  // All standard deviations zero or absent: every distance prints with 0.
  file = dir.Write("z.rec", Project("4.7589 4.7589 12.991 90 90 120", "R -3 C", kCorundum));
  table = CalculateDistances(file.string(), reporter);
  for (const auto& centre : table.phases[0].distances) {
    for (const DistanceRecord& r : centre) EXPECT_EQ(r.sd, 0.0f);
  }
}

TEST(Distances, AnglesAndTheirDeviations) {
  // P 1, a = 4, b = 5, c = 6: A at the origin with B at +-2 A along a and C at +-2.5 A along b.
  // B-A-C is 90 exactly; moving C by s(xC) = 0.005 along a turns it by 4 x 0.005 / 2.5 rad.
  ScratchDir dir;
  RecordingReporter reporter;
  const fs::path file = dir.Write(
      "a.rec", Project("4 5 6 90 90 90", "P 1",
                       {{"A", 0, 0, 0}, {"B", 0.5f, 0, 0}, {"C", 0, 0.5f, 0, 0.005f, 0, 0}},
                       "DIST           2.6       2.6       0.0       0.0    2\n"));
  const DistanceTable table = CalculateDistances(file.string(), reporter);
  ASSERT_TRUE(table.ok);
  const std::vector<AngleRecord>& angles = table.phases[0].angles[0];
  int right = 0, straight = 0;
  for (const AngleRecord& a : angles) {
    EXPECT_GT(a.angle, 0.0f);
    EXPECT_LE(a.angle, 180.0f);
    if (a.labels[0] != a.labels[2]) {
      EXPECT_EQ(a.angle, 90.0f);
      EXPECT_NEAR(a.sd, 0.008f * 57.29578f, 1e-4f);
      ++right;
    } else {
      EXPECT_FLOAT_EQ(a.angle, 180.0f);
      EXPECT_EQ(a.sd, 0.0f);  // a straight line: the sine is 0 and so is the derivative
      ++straight;
    }
    EXPECT_NEAR(a.d13 * a.d13,
                a.d12 * a.d12 + a.d23 * a.d23 - 2 * a.d12 * a.d23 * std::cos(a.angle / 57.29578f),
                1e-3f);
  }
  EXPECT_EQ(right, 4);
  EXPECT_EQ(straight, 2);
}

TEST(Distances, ListFileLimitsAndExtendedMode) {
  ScratchDir dir;
  RecordingReporter reporter;
  const fs::path project =
      dir.Write("c.rec", Project("4.7589 4.7589 12.991 90 90 120", "R -3 C", kCorundum));
  const fs::path list = dir.Path() / "c.dis";
  DistanceRunOptions options;
  options.date = "2024-01-02";
  ASSERT_TRUE(RunDistan(project.string(), list.string(), reporter, options));
  std::vector<std::string> lines = Lines(ReadBytes(list));
  // No DIST record: distances 0 to 3 A, angles 0 to 2 A.
  EXPECT_EQ(lines[0], std::string(52, ' ') + "DISTAN    2024-01-02");
  EXPECT_TRUE(HasLine(lines, "   Distances calculated within the range 0.00 - 3.00 A"));
  EXPECT_TRUE(HasLine(lines, "   Angles calculated within the range    0.00 - 2.00 A"));
  EXPECT_TRUE(HasLine(lines, "   Hexagonal"));
  EXPECT_FALSE(HasLine(lines, std::string(52, ' ') + "* Distances *"));
  // The closing list: Al's ten neighbours by rising length, then O's.
  const auto heading =
      std::find(lines.begin(), lines.end(), " atom1  atom2        distance       code1   code2");
  ASSERT_NE(heading, lines.end());
  EXPECT_EQ(heading[1].substr(0, 31), "   Al     O       1.8547 (0.000");
  EXPECT_EQ(heading[10].substr(0, 31), "   Al     Al      2.7908 (0.000");
  EXPECT_EQ(heading[11], "");

  // Option 3: the search listing by centre, the wide angle lines, and still the closing list.
  options.option = 3;
  ASSERT_TRUE(RunDistan(project.string(), list.string(), reporter, options));
  lines = Lines(ReadBytes(list));
  EXPECT_TRUE(HasLine(lines, std::string(52, ' ') + "* Distances *"));
  EXPECT_TRUE(HasLine(lines, std::string(17, ' ') + "* Distances *"));
  EXPECT_TRUE(HasLine(lines, std::string(54, ' ') + "* Angles *"));
  const int searchLines = static_cast<int>(std::count_if(lines.begin(), lines.end(), [](auto& l) {
    return l.size() == 85 && (l.starts_with(" Al ") || l.starts_with(" O  "));
  }));
  EXPECT_EQ(searchLines, 10 + 16);  // Al's ten and O's sixteen (4 Al, 12 O) within 3 A

  // Distances only: no angle block.
  options.option = 1;
  ASSERT_TRUE(RunDistan(project.string(), list.string(), reporter, options));
  const std::string plain = ReadBytes(list);
  EXPECT_EQ(plain.find("* Angles *"), std::string::npos);
  EXPECT_EQ(plain.find("Angles calculated"), std::string::npos);
  EXPECT_TRUE(reporter.log.empty());
}

TEST(Distances, Failures) {
  ScratchDir dir;
  RecordingReporter reporter;
  const std::string list = (dir.Path() / "x.dis").string();
  EXPECT_FALSE(RunDistan((dir.Path() / "none.rec").string(), list, reporter));
  EXPECT_EQ(reporter.log, std::vector<std::string>{" Error opening project file "});

  reporter.Clear();
  EXPECT_FALSE(RunDistan((dir.Path() / "none.mlt").string(), list, reporter));
  EXPECT_EQ(reporter.log, std::vector<std::string>{" Error opening mlt file"});

  const fs::path good = dir.Write("g.rec", Project("4 5 6 90 90 90", "P 1", {{"A", 0, 0, 0}}));
  reporter.Clear();
  EXPECT_FALSE(RunDistan(good.string(), (dir.Path() / "no/such/dir.dis").string(), reporter));
  EXPECT_EQ(reporter.log, std::vector<std::string>{" Error opening distan list file"});

  // No CELL: the list is kept with what was written, and the run fails.
  std::string text = Project("4 5 6 90 90 90", "P 1", {{"A", 0, 0, 0}});
  text.erase(text.find("CELL"), text.find('\n', text.find("CELL")) - text.find("CELL") + 1);
  const fs::path noCell = dir.Write("n.rec", text);
  reporter.Clear();
  EXPECT_FALSE(RunDistan(noCell.string(), list, reporter));
  EXPECT_EQ(reporter.log, std::vector<std::string>{" CELL record missing"});
  EXPECT_NE(ReadBytes(list).find("Test structure"), std::string::npos);
  reporter.Clear();
  EXPECT_FALSE(CalculateDistances(noCell.string(), reporter).ok);

  text = Project("4 5 6 90 90 90", "P 1", {{"A", 0, 0, 0}});
  text.erase(text.find("SPGR"), text.find('\n', text.find("SPGR")) - text.find("SPGR") + 1);
  const fs::path noSymbol = dir.Write("s.rec", text);
  reporter.Clear();
  EXPECT_FALSE(RunDistan(noSymbol.string(), list, reporter));
  EXPECT_EQ(reporter.log, std::vector<std::string>{"SPGR missing"});
  EXPECT_NE(ReadBytes(list).find("Cell volume =  120.000000"), std::string::npos);
  reporter.Clear();
  EXPECT_FALSE(CalculateDistances(noSymbol.string(), reporter).ok);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"SPGR record missing"});

  // An s(x) above 1 ends the reading of SDXY: that atom and those after it get none.
  const fs::path badSd = dir.Write("d.rec", Project("4 5 6 90 90 90", "P 1",
                                                    {{"A", 0, 0, 0, 0.001f, 0.002f, 0.003f},
                                                     {"B", 0.5f, 0, 0, 2.0f, 0.1f, 0.1f},
                                                     {"C", 0, 0.5f, 0, 0.004f, 0.004f, 0.004f}}));
  reporter.Clear();
  const DistanceTable sds = CalculateDistances(badSd.string(), reporter);
  ASSERT_TRUE(sds.ok);
  const auto& atoms = sds.phases[0].atoms;
  EXPECT_FLOAT_EQ(atoms[0].sd[1], 0.002f);
  EXPECT_EQ(atoms[1].sd, (std::array<float, 3>{0, 0, 0}));
  EXPECT_EQ(atoms[2].sd, (std::array<float, 3>{0, 0, 0}));
}

TEST(Distances, CapacityLimits) {
  // Ten atoms in a small cell with dmax 10: every one of the 64 trial images of each is in
  // range (dmax passes all edges: four trial cells a way), 639 for a centre, so the search stops at
  // 500 and says so for every image after.
  std::vector<TestAtom> atoms;
  for (int i = 0; i < 10; ++i)
    atoms.push_back({"A" + std::to_string(i), 0.1f * i, 0.05f, 0.02f * i});
  ScratchDir dir;
  RecordingReporter reporter;
  const fs::path file =
      dir.Write("m.rec", Project("2.6 2.7 2.8 90 90 90", "P 1", atoms,
                                 "DIST          10.0       1.0  0.0  0.0    1\n"));
  const fs::path list = dir.Path() / "m.dis";
  DistanceRunOptions options;
  options.date = "2024-01-02";
  ASSERT_TRUE(RunDistan(file.string(), list.string(), reporter, options));
  ASSERT_FALSE(reporter.log.empty());
  EXPECT_EQ(reporter.log.front(), "Too many distances to A0  ");
  const std::vector<std::string> lines = Lines(ReadBytes(list));
  EXPECT_EQ(std::count(lines.begin(), lines.end(), " **** Stopped at  500 distances to A0  "),
            std::count(reporter.log.begin(), reporter.log.end(), "Too many distances to A0  "));
  const auto first =
      std::find(lines.begin(), lines.end(), " atom1  atom2        distance       code1   code2");
  ASSERT_NE(first, lines.end());
  const auto blank = std::find(first, lines.end(), "");
  EXPECT_EQ(blank - first - 1, kMaxDistancesPerCentre);
  // Sorted by rising length.
  for (auto line = first + 2; line != blank; ++line) {
    EXPECT_LE(std::stof(line[-1].substr(14, 10)), std::stof(line->substr(14, 10)));
  }

  // 27 atoms by the 192 operators of F m -3 m pass 5000 positions: the expansion stops.
  std::vector<TestAtom> many;
  for (int i = 0; i < 27; ++i) many.push_back({"B" + std::to_string(i), 0.01f * i, 0.1f, 0.2f});
  const fs::path big =
      dir.Write("b.rec", Project("9 9 9 90 90 90", "F M 3 M", many, "DIST           1.0\n"));
  reporter.Clear();
  const DistanceTable table = CalculateDistances(big.string(), reporter);
  EXPECT_TRUE(table.ok);
  EXPECT_NE(std::find(reporter.log.begin(), reporter.log.end(), "Too many positions generated"),
            reporter.log.end());
}

TEST(Distances, ProjectListAndPhases) {
  // A .mlt of two projects goes into one list; a project of two phases boxes each phase.
  ScratchDir dir;
  std::string two = Project("4 5 6 90 90 90", "P 1", {{"A", 0, 0, 0}});
  two.replace(two.find("JOBT          2    4    1"), 25, "JOBT          2    4    2");
  two +=
      "PHTI      Second\nPHNA          1\nSPGR      P 1\nCELL      3 3 3 90 90 90\n"
      "XYZ       Q          1 0.5 0.5 0.5 1.0 0.5\n";
  dir.Write("two.rec", two);
  dir.Write("one.rec", Project("4.7589 4.7589 12.991 90 90 120", "R -3 C", kCorundum));
  const fs::path batch = dir.Write(
      "all.mlt", (dir.Path() / "one").string() + "\n" + (dir.Path() / "two.rec").string() + "\n\n");
  RecordingReporter reporter;
  DistanceRunOptions options;
  options.date = "2024-01-02";
  ASSERT_TRUE(RunDistan(batch.string(), (dir.Path() / "all.dis").string(), reporter, options));
  const std::vector<std::string> lines = Lines(ReadBytes(dir.Path() / "all.dis"));
  EXPECT_EQ(std::count(lines.begin(), lines.end(), lines[0]), 2);
  EXPECT_TRUE(HasLine(lines, "   * PHASE NO.  1: Test phase *"));
  EXPECT_TRUE(HasLine(lines, "   * PHASE NO.  2: Second *"));
  EXPECT_TRUE(HasLine(lines, "   " + std::string(28, '*')));
  EXPECT_TRUE(HasLine(lines, "   Cubic"));
  EXPECT_TRUE(HasLine(lines, "   Orthorhombic"));
  // The second phase's atom is its own: Q alone at 3 A from its translates.
  EXPECT_TRUE(HasLine(lines, "   Q      Q       3.0000 (0.0000)    1555    1455"));

  // The menu's start names the list after the project and hands it to the viewer.
  std::string viewed;
  reporter.Clear();
  EXPECT_TRUE(StartDistan((dir.Path() / "one.rec").string(), reporter,
                          [&](const std::string& name) { viewed = name; }));
  EXPECT_EQ(viewed, (dir.Path() / "one.dis").string());
  EXPECT_EQ(reporter.log.front(), "Starting DISTAN");
  reporter.Clear();
  EXPECT_FALSE(StartDistan((dir.Path() / "gone.rec").string(), reporter));
  EXPECT_EQ(reporter.log.back(), "Error in DISTAN");
}

// The example project refined, taken over as the project, and listed as the menu would.
TEST(Distances, RefinedCorundumGolden) {
  ScratchDir dir;
  ASSERT_TRUE(testing::RefineExample(dir));
  RecordingReporter reporter;
  fs::copy_file(dir.Path() / "%corundum.par", dir.Path() / "corundum.rec",
                fs::copy_options::overwrite_existing);
  for (const auto& [name, option] :
       {std::pair{"corundum.dis", 2}, std::pair{"corundum_extended.dis", 3}}) {
    DistanceRunOptions options;
    options.date = "2024-01-02";
    options.option = option;
    const fs::path list = dir.Path() / name;
    reporter.Clear();
    ASSERT_TRUE(
        RunDistan((dir.Path() / "corundum.rec").string(), list.string(), reporter, options));
    EXPECT_TRUE(reporter.log.empty());
    ExpectGolden(ReadBytes(list), TestData(std::string("tools/") + name));
  }
}

}  // namespace
}  // namespace kaldena
