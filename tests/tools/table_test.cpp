// The result table: the value(esd) notation, a golden table of the refined corundum example,
// and what a missing record does.
#include "tools/table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "store/record_store.h"
#include "support/refined_example.h"
#include "support/test_files.h"
#include "util/column_format.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;

TEST(Table, ValuesAndEsdsShareOneScale) {
  EXPECT_EQ(ScaleWithEsd(0.35216, 0.00012, 4).value, 3522);
  EXPECT_EQ(ScaleWithEsd(0.35216, 0.00012, 4).esd, 1);
  // Halves go away from zero; esds below half a unit show as 0.
  EXPECT_EQ(ScaleWithEsd(-0.125, 0.004, 2).value, -13);
  EXPECT_EQ(ScaleWithEsd(-0.125, 0.004, 2).esd, 0);
  EXPECT_EQ(ScaleWithEsd(2.5, 0.5, 0).value, 3);
}

// The corundum example refined in a scratch directory, its parameter file as the project.
class RefinedExample : public ::testing::Test {
 protected:
  void SetUp() override {
    ok = testing::RefineExample(dir);
  }
  testing::ScratchDir dir;
  bool ok = false;
};

TEST_F(RefinedExample, TableMatchesItsGoldenFile) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  const std::string project = (dir.Path() / "%corundum.par").string();
  const std::string table = RunTable(project, "2026-11-23", reporter);
  ASSERT_FALSE(table.empty());
  EXPECT_EQ(reporter.log.front(), "Starting TABLE");
  std::string text = ReadBytes(table);
  // The parameter file's directory is the scratch one: made neutral for the comparison.
  for (size_t at; (at = text.find(dir.Path().string() + "/")) != std::string::npos;) {
    text.erase(at, dir.Path().string().size() + 1);
  }
  testing::ExpectGolden(text, testing::TestData("tools/corundum.tab"));
  // One phase: no quantitative analysis; isotropic atoms: no expression line.
  EXPECT_EQ(text.find("Quantitative analysis"), std::string::npos);
  EXPECT_EQ(text.find("Temperature factor expression"), std::string::npos);
  EXPECT_NE(text.find("Extracted Bragg intensities"), std::string::npos);
}

TEST_F(RefinedExample, MissingRecordsAreToldAndTheTableGoesOn) {
  ASSERT_TRUE(ok);
  std::string text = ReadBytes(dir.Path() / "%corundum.par");
  const size_t cell = text.find("\nCELL");
  text.erase(cell + 1, text.find('\n', cell + 1) - cell);
  const fs::path project = dir.Write("nocell.rec", text);
  RecordingReporter reporter;
  EXPECT_EQ(WriteTable(project.string(), (dir.Path() / "nocell.tab").string(), "2026-11-23", reporter),
            TableStatus::kOk);
  EXPECT_NE(std::find(reporter.log.begin(), reporter.log.end(), "CELL record missing"),
            reporter.log.end());
  EXPECT_NE(ReadBytes(dir.Path() / "nocell.tab").find("Phase no.  1"), std::string::npos);

  EXPECT_EQ(WriteTable((dir.Path() / "none.mlt").string(), (dir.Path() / "x.tab").string(),
                       "2026-11-23", reporter),
            TableStatus::kFailed);
  EXPECT_EQ(reporter.log.back(), "Error opening mlt file");
}

// Pyrite, whose iron is a type given by table named `iron`, beside periclase; `job` 2 makes
// the pattern, 0 refines both scales against it from a start 20 % off.
std::string PyritePericlase(int job, std::string_view iron) {
  const bool refine = job == 0;
  std::ostringstream p;
  p << "TITL      pyrite and periclase\nFRMT          5\nPWDT      pattern.xy\n"
    << "JOBT          " << job << "    1    2   -1    0    4    0    1\n"
    << "ELAM        1.540560  0.000000  0.000000\n"
    << "RLIM         8.00000   0.90000   0.00000   0.00000   0.00000   0.00000   0.00000"
    << "   0.00000\n"
    << "RELX          3 0.01 1.00 1.00 1.00 1.00  20.00000   0.02000  80.00000\n"
    // The iron row of the form factors, as a table type carries it.
    << "ANOM      " << iron << "          -1.13360   3.19740\n"
    << "AXTB      " << iron << "          11.76950   7.35730   3.52220   2.30450\n"
    << "BXTB      " << iron << "           4.76110   0.30720  15.35350  76.88050\n"
    << "CXTB      " << iron << "           1.03690\n"
    << "ANOM      S            0.31910   0.55690\nANOM      Mg           0.16500   0.17700\n"
    << "ANOM      O            0.04920   0.03220\n"
    << "ZETT         0.00000   0.00000   0.00000\nCZET           0.000     0.000     0.000\n"
    << "BKGR            50.0\nCBKG           0.000\n";
  const std::string scale = refine ? "1.000" : "0.000";
  p << "PHTI      pyrite\nPHNA          2  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
    << "PHTI      periclase\nPHNA          2  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
    << "SPGR      P A -3\nSPGR      F M -3 M\n"
    << FormatLine("('SCAL      ',e12.5,f10.3)", refine ? 0.0012 : 0.001, 0.0) << "\n"
    << FormatLine("('SCAL      ',e12.5,f10.3)", refine ? 0.0016 : 0.002, 0.0) << "\n"
    << "CSCA           " << scale << "     0.000\nCSCA           " << scale << "     0.000\n"
    << "CELL        5.417000  5.417000  5.417000  90.00000  90.00000  90.00000\n"
    << "CELL        4.211000  4.211000  4.211000  90.00000  90.00000  90.00000\n"
    << "HWTH         0.00000   0.00000   0.01000\nHWTH         0.00000   0.00000   0.01000\n"
    << "PKSH         0.50000   0.00000   0.00000\nPKSH         0.50000   0.00000   0.00000\n"
    << "XYZ       Fe     1  0.00000  0.00000  0.00000  1.00000  0.30000  6  0  0  0\n"
    << "XYZ       S      2  0.38500  0.38500  0.38500  1.00000  0.40000  3  0  0  0\n"
    << "XYZ       Mg     3  0.00000  0.00000  0.00000  1.00000  0.30000 48  0  0  0\n"
    << "XYZ       O      4  0.50000  0.50000  0.50000  1.00000  0.50000 48  0  0  0\n";
  return p.str();
}

// Makes the pattern from the model, refines the scales and writes the table of the result.
// The table's text, empty when a run failed.
std::string RefinedPyritePericlaseTable(const testing::ScratchDir& dir, std::string_view iron) {
  dir.Write("model.rec", PyritePericlase(2, iron));
  if (!testing::RunEngineIn(dir, "model.rec")) return {};
  {
    std::ifstream summary(dir.Path() / "%model.sum");
    std::ofstream pattern(dir.Path() / "pattern.xy");
    for (std::string line; std::getline(summary, line);) {
      float x = 0, total = 0;
      Read(line, "(F7.3,12x,F12.1)", x, total);
      pattern << FormatLine("(f8.3,f12.1)", x, total) << "\n";
    }
  }
  dir.Write("refine.rec", PyritePericlase(0, iron));
  if (!testing::RunEngineIn(dir, "refine.rec")) return {};
  const std::string project = (dir.Path() / "%refine.par").string();
  const fs::path table = dir.Path() / "refined.tab";
  RecordingReporter reporter;
  if (WriteTable(project, table.string(), "2026-11-23", reporter) != TableStatus::kOk) return {};
  return ReadBytes(table);
}

// Each phase's fraction of a quantity in the table's quantitative lines: (wgt%, vol%) by
// phase, with a "?" weight read as -1.
std::vector<std::pair<float, float>> QuantitativeLines(const std::string& table) {
  std::vector<std::pair<float, float>> fractions;
  std::istringstream in(table);
  for (std::string line; std::getline(in, line);) {
    const size_t phase = line.find("Phase ");
    if (phase == std::string::npos || line.find(" vol%") == std::string::npos) continue;
    const std::string fields = line.substr(phase + 11);
    float weight = -1, volume = 0;
    if (fields.find('?') == std::string::npos) std::sscanf(fields.c_str(), "%f", &weight);
    std::sscanf(fields.c_str() + fields.find("wgt%;") + 5, "%f", &volume);
    fractions.emplace_back(weight, volume);
  }
  return fractions;
}

// Per phase: the refined scale and the cell edge of the parameter file.
std::vector<std::pair<double, double>> ScalesAndEdges(const fs::path& par) {
  RecordingReporter reporter;
  RecordStore store(reporter);
  EXPECT_GT(store.jReadRecFile(par.string()), 0);
  std::vector<std::pair<double, double>> phases(2);
  std::string data;
  for (auto& [scale, edge] : phases) {
    float s = 0, a = 0;
    EXPECT_EQ(store.jFindRec("SCAL", data), 1);
    Read(data, "(F15.0)", s);
    EXPECT_EQ(store.jFindRec("CELL", data), 1);
    Read(data, "(F10.0)", a);
    scale = s;
    edge = a;
  }
  return phases;
}

TEST(TableQuantities, ATypeGivenByTableWeighsAsTheElementItNames) {
  testing::ScratchDir dir;
  const std::string table = RefinedPyritePericlaseTable(dir, "FE");
  ASSERT_FALSE(table.empty()) << ReadBytes(dir.Path() / "%refine.out");
  // Hill and Howard: W_p = S_p (Z M V)_p / sum over the phases, with the standard masses.
  const double zm[2] = {4 * (55.847 + 2 * 32.066), 4 * (24.305 + 15.999)};
  const auto phases = ScalesAndEdges(dir.Path() / "%refine.par");
  double weight[2], total = 0;
  for (int p = 0; p < 2; ++p) {
    const double volume = std::pow(phases[p].second, 3);
    weight[p] = phases[p].first * zm[p] * volume;
    total += weight[p];
  }
  const auto fractions = QuantitativeLines(table);
  ASSERT_EQ(fractions.size(), 2u) << table;
  for (int p = 0; p < 2; ++p) {
    EXPECT_NEAR(fractions[p].first, 100 * weight[p] / total, 0.02) << "phase " << p + 1;
  }
  EXPECT_EQ(table.find("cannot be computed"), std::string::npos);
}

TEST(TableQuantities, ATypeOfNoKnownElementLeavesEveryWeightFractionUnknown) {
  testing::ScratchDir dir;
  const std::string table = RefinedPyritePericlaseTable(dir, "X1");
  ASSERT_FALSE(table.empty()) << ReadBytes(dir.Path() / "%refine.out");
  const auto fractions = QuantitativeLines(table);
  ASSERT_EQ(fractions.size(), 2u) << table;
  EXPECT_EQ(fractions[0].first, -1) << table;
  EXPECT_EQ(fractions[1].first, -1) << table;
  EXPECT_NEAR(fractions[0].second + fractions[1].second, 100, 0.02);
  EXPECT_NE(table.find(" Phase  1 : weight fraction cannot be computed (no atomic mass for an "
                       "atom type)\n"),
            std::string::npos)
      << table;
  EXPECT_EQ(table.find(" Phase  2 : weight fraction"), std::string::npos);
}

}  // namespace
}  // namespace kaldena
