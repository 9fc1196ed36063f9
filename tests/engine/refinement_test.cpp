// Whole runs of the engine: a pattern calculated from a model, then refined from a perturbed
// start, must give back the model it was made with.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "engine/run_engine.h"
#include "store/record_store.h"
#include "support/ceria_project.h"
#include "support/test_files.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::CeriaProject;
using testing::ReadBytes;
using testing::RecordValue;
using testing::ScratchDir;
using testing::SummaryToPattern;

TEST(Refinement, RecoversTheModelOfASimulatedPattern) {
  ScratchDir dir;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  testing::SimulateCeriaPattern(dir, reporter);

  dir.Write("start.rec", CeriaProject(0, " 0.1700E-02", "  5.405000", "   0.02500", "   0.03000"));
  const EngineResult refined = RunEngine({"start.rec", false, nullptr}, reporter);
  fs::current_path(old);
  ASSERT_EQ(refined.status, 0) << ReadBytes(dir.Path() / "%start.out");

  const fs::path par = dir.Path() / "%start.par";
  EXPECT_NEAR(RecordValue(par, "SCAL", "(2F15.0)", 0), 0.002f, 0.002f * 2e-3f);
  EXPECT_NEAR(RecordValue(par, "CELL", "(6F10.0)", 0), 5.411f, 2e-4f);
  EXPECT_NEAR(RecordValue(par, "CELL", "(6F10.0)", 2), 5.411f, 2e-4f);  // tied by the class
  EXPECT_NEAR(RecordValue(par, "HWTH", "(6F10.0)", 2), 0.015f, 0.015f * 0.02f);
  EXPECT_NEAR(RecordValue(par, "ZETT", "(6F10.0)", 0), 0.0f, 2e-3f);
  EXPECT_NEAR(RecordValue(par, "BKGR", "(5F10.0)", 0), 50.0f, 1.0f);
  const std::string list = ReadBytes(dir.Path() / "%start.out");
  EXPECT_NE(list.find("DERIVED BRAGG R-FACTOR"), std::string::npos);
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
  text.replace(text.find(from), from.size(), to);
  return text;
}

TEST(Refinement, AValueGoingBelowItsLimitBlocksAnotherParameter) {
  ScratchDir dir;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  testing::SimulateCeriaPattern(dir, reporter);
  // The scale (group 1) starts above 0.0022 and falls below it: W (group 2) is held from then.
  std::string start = CeriaProject(0, " 0.2600E-02", "  5.411000", "   0.02500", "   0.00000");
  start = Replaced(start, "CSCA           1.000", "CSCA          11.000");
  start = Replaced(start, "CHWT           0.000     0.000     1.000",
                   "CHWT           0.000     0.000    21.000");
  start += "BLOK          1    0.0022    2\n";
  dir.Write("start.rec", start);
  const EngineResult refined = RunEngine({"start.rec", false, nullptr}, reporter);
  fs::current_path(old);
  ASSERT_EQ(refined.status, 0);
  const std::string list = ReadBytes(dir.Path() / "%start.out");
  const size_t blocked = list.find("    Parameter    2 blocked");
  ASSERT_NE(blocked, std::string::npos) << list;
  EXPECT_NE(list.find("*** Parameter    1 below  0.0022 ***"), std::string::npos);
  // W stands still in every cycle after the block.
  const std::string after = list.substr(blocked);
  const size_t w = after.find("CYCLE");
  ASSERT_NE(w, std::string::npos);
  const float held = RecordValue(dir.Path() / "%start.par", "HWTH", "(6F10.0)", 2);
  EXPECT_LT(std::abs(held - 0.015f), 0.0099f);            // moved in the cycles before the block
  EXPECT_EQ(after.find("W PHASE 1"), std::string::npos);  // never the largest shift again
}

// An SO4 group in P 1 (S held at the cell's centre, the oxygens refined), with a restraint
// of the tetrahedron S-O 1.48 whose atoms stand in `partners`; `shift` moves the oxygens off
// the regular tetrahedron.
std::string Sulphate(int job, float shift, std::string_view partners) {
  const std::array<float, 3> cell = {6.0f, 6.5f, 7.0f};
  const float leg = 1.48f / std::sqrt(3.0f);
  const int signs[4][3] = {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}};
  std::string p = "TITL      Sulphate\nFRMT          5\n" +
                  Format("('JOBT      ',8i5)", job, 1, 1, -1, 0, 2, 0, 1) +
                  "PWDT      pattern.xy\n"
                  "ELAM        1.540560  0.000000  0.000000\n"
                  "RLIM        12.00000   0.00000   0.00000   0.00000   0.00000   0.00000\n"
                  "RELX          8 0.01 1.00 1.00 1.00 1.00  10.00000   0.02000 120.00000\n"
                  "ANOM      S            0.31900   0.55700\n"
                  "ANOM      O            0.04920   0.03220\n"
                  "BKGR            20.0       0.0\n"
                  "PHTI      SO4\nPHNA          5  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
                  "SPGR      P 1\nSCAL       0.5000E-01     0.000\n"
                  "CELL         6.00000   6.50000   7.00000  90.00000  90.00000  90.00000\n"
                  "HWTH         0.00000   0.00000   0.01500\nPKSH         0.50000\n"
                  "XYZ       S      1  0.50000  0.50000  0.50000  1.00000  1.00000  1  0  0  0\n"
                  "CXYZ S         0.000     0.000     0.000     0.000     0.000\n";
  for (int o = 0; o < 4; ++o) {
    std::array<float, 3> x{};
    for (int i = 0; i < 3; ++i) {
      x[i] = 0.5f + (signs[o][i] * leg + (i == o % 3 ? shift : -0.5f * shift)) / cell[i];
    }
    const std::string label = "O" + std::to_string(o + 1) + "  ";
    p += Format("('XYZ       ',a4,3x,i3,5f9.5,4i3)", label, 2, x[0], x[1], x[2], 1.0f, 1.5f, 1, 0,
                0, 0) +
         Format("('CXYZ ',a4,1x,5f10.3)", label, 1.0f, 1.0f, 1.0f, 0.0f, 0.0f);
  }
  return p + "WRES            1.00\nCRES      S            1.48   100.000\n" +
         std::string(partners);
}

// The tetrahedron's atoms by label, and by number with their symmetry codes.
class TetrahedronRestraint : public ::testing::TestWithParam<std::string_view> {};
INSTANTIATE_TEST_SUITE_P(
    Refinement, TetrahedronRestraint,
    ::testing::Values("LRES      O1    1555 O2    1555 O3    1555 O4    1555\n",
                      "ARES         1001555   2001555   3001555   4001555   5001555\n"));

TEST_P(TetrahedronRestraint, BringsADistortedTetrahedronBack) {
  ScratchDir dir;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  dir.Write("model.rec", Sulphate(2, 0, GetParam()));
  ASSERT_EQ(RunEngine({"model.rec", false, nullptr}, reporter).status, 0);
  SummaryToPattern(dir.Path() / "%model.sum", dir.Path() / "pattern.xy");
  dir.Write("start.rec", Sulphate(0, 0.12f, GetParam()));
  const EngineResult refined = RunEngine({"start.rec", false, nullptr}, reporter);
  fs::current_path(old);
  const std::string list = ReadBytes(dir.Path() / "%start.out");
  ASSERT_EQ(refined.status, 0) << list;
  EXPECT_NE(list.find(" RESTRAINTS RESIDUALS : R ="), std::string::npos) << list;

  // The four S-O legs and the six O-O edges of the regular tetrahedron.
  RecordingReporter quiet;
  RecordStore store(quiet);
  ASSERT_GT(store.jReadRecFile((dir.Path() / "%start.par").string()), 0);
  std::vector<std::array<float, 3>> x;
  std::string data, label;
  for (std::array<float, 3> v{}; store.jFindRec("XYZ ", data) == 1; x.push_back(v)) {
    int type = 0;
    Read(data, "(a4,6x,i4,3f9.0)", label, type, v[0], v[1], v[2]);
  }
  ASSERT_EQ(x.size(), 5u);
  // Ten distances restrained: four legs and six edges.
  int restraints = 0;
  std::array<float, 5> r{};
  int params = 0, points = 0, reflections = 0;
  ASSERT_EQ(store.jFindRec("RVAL", data), 1);
  Read(data, "(I4,I6,i5,5f10.0,i5)", params, points, reflections, r[0], r[1], r[2], r[3], r[4],
       restraints);
  EXPECT_EQ(restraints, 10);
  auto distance = [&](int a, int b) {
    const float dx = 6.0f * (x[a][0] - x[b][0]), dy = 6.5f * (x[a][1] - x[b][1]),
                dz = 7.0f * (x[a][2] - x[b][2]);
    return std::sqrt(dx * dx + dy * dy + dz * dz);
  };
  for (int o = 1; o <= 4; ++o) {
    EXPECT_NEAR(distance(0, o), 1.48f, 0.01f) << "S-O" << o;
    for (int p = o + 1; p <= 4; ++p) {
      EXPECT_NEAR(distance(o, p), 1.48f * std::sqrt(8.0f / 3.0f), 0.015f) << o << "-" << p;
    }
  }
}

}  // namespace
}  // namespace kaldena
