// The CIF writer: the value(esd) rule and the quoting of values, golden files of the refined
// corundum example (.cif and .rcf), an independent parse of both with gemmi, and the
// failures that keep a partial file.
#include "tools/cif_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

#include "engine/run_engine.h"
#include "support/refined_example.h"
#include "support/test_files.h"
#include "tools/cif_raw_report.h"
#include "tools/cif_text.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;

constexpr const char* kDate = "2026-11-23";

TEST(CifText, ValueWithEsdKeepsOneOrTwoDigitsOfTheEsd) {
  // An esd that begins below 1.95 keeps two digits, others one; 0.0095 rounds up to 10.
  EXPECT_EQ(ValueWithEsdText(1.23456, 0.0019, 4), "1.2346(19)");
  EXPECT_EQ(ValueWithEsdText(1.23456, 0.0095, 4), "1.235(10)");
  EXPECT_EQ(ValueWithEsdText(1.23456, 0.003, 4), "1.235(3)");
  EXPECT_EQ(ValueWithEsdText(1.23456, 0.0015, 4), "1.2346(15)");
  // The two-digit test is on the esd itself: 0.00196 begins above 1.949 and keeps one.
  EXPECT_EQ(ValueWithEsdText(1.23456, 0.00196, 5), "1.235(2)");
  // No digit of the esd at the chosen decimals: the value alone, no brackets.
  EXPECT_EQ(ValueWithEsdText(1.23456, 0.0, 4), "1.2346");
  EXPECT_EQ(ValueWithEsdText(0.25, 0.0, 5), "0.25000");
  EXPECT_EQ(ValueWithEsdText(1.23456, 0.00004, 4), "1.2346");
  // An esd of 1 or more, or one just below 1 at one decimal: both as whole numbers.
  EXPECT_EQ(ValueWithEsdText(123.456, 4.2, 4), "123(4)");
  EXPECT_EQ(ValueWithEsdText(-123.5, 12.5, 2), "-124(13)");
  EXPECT_EQ(ValueWithEsdText(12.34, 0.96, 3), "12(1)");
  EXPECT_EQ(ValueWithEsdText(12.34, 0.94, 3), "12.3(9)");
  // With 2 decimals chosen the esd still decides the digits.
  EXPECT_EQ(ValueWithEsdText(0.35216, 0.00012, 2), "0.35");
  EXPECT_EQ(ValueWithEsdText(0.35216, 0.012, 2), "0.352(12)");
  EXPECT_EQ(ValueWithEsdText(0.35216, 0.0012, 5), "0.3522(12)");
  // Signs: the minus before the first digit, none for a value that rounds to zero; the esd's
  // sign and a broken esd do not matter.
  EXPECT_EQ(ValueWithEsdText(-0.0123, 0.0004, 4), "-0.0123(4)");
  EXPECT_EQ(ValueWithEsdText(-0.00001, 0.0, 4), "0.0000");
  EXPECT_EQ(ValueWithEsdText(0.5, -0.03, 4), "0.50(3)");
  EXPECT_EQ(ValueWithEsdText(0.5, std::nan(""), 3), "0.500");
}

TEST(CifText, NumbersAreDigitedOutWithOverflowShown) {
  EXPECT_EQ(CifNumberText(0.0019, 20, 4), "0.0019");
  EXPECT_EQ(CifNumberText(2.5, 20, 0), "3");
  EXPECT_EQ(CifNumberText(-2.5, 20, 0), "-3");
  EXPECT_EQ(CifNumberText(0.04995, 20, 3), "0.050");
  EXPECT_EQ(CifNumberText(12345.6, 6, 2), "***.**");
  EXPECT_EQ(CifNumberText(-99.9, 5, 1), "-99.9");
  EXPECT_EQ(CifNumberText(-99.9, 4, 1), "**.*");
  EXPECT_EQ(CifNumberText(INFINITY, 8, 2), "*****.**");
  // An esd too large for its field shows as overflow in the brackets, never as no esd.
  EXPECT_EQ(ValueWithEsdText(1.0, 1e30, 4).rfind("1(*", 0), 0u);
}

TEST(CifText, TextStaysOneValue) {
  EXPECT_EQ(CifValue("Inet"), "Inet");
  EXPECT_EQ(CifValue(""), "?");
  EXPECT_EQ(CifValue("two words"), "'two words'");
  EXPECT_EQ(CifValue("_tag"), "'_tag'");
  EXPECT_EQ(CifValue("data_x"), "'data_x'");
  EXPECT_EQ(CifValue("?"), "'?'");
  EXPECT_EQ(CifQuoted("R -3 C"), "'R -3 C'");
  // An apostrophe followed by a blank would end the value early.
  // An apostrophe ends a quoted value only when a blank follows it.
  EXPECT_EQ(CifQuoted("Smith's sample"), "'Smith's sample'");
  EXPECT_EQ(CifQuoted("samples' mean"), "\"samples' mean\"");
  EXPECT_EQ(CifQuoted("samples' \"a\" mean"), "\n;samples' \"a\" mean\n;");
  EXPECT_EQ(CifValue("line one\n;line two"), "\n;line one\n ;line two\n;");
  EXPECT_EQ(CifBlockCode("Corundum, Al2O3 (1)"), "Corundum,Al2O3(1)");
  EXPECT_EQ(CifBlockCode("   "), "");
  EXPECT_EQ(CifBlockCode(std::string(90, 'x')).size(), 70u);
  EXPECT_EQ(SiteSymmetryText(1555), ".");
  EXPECT_EQ(SiteSymmetryText(12565), "12_565");
  EXPECT_EQ(SiteSymmetryText(3454), "3_454");
  EXPECT_EQ(CifLabel("O1  "), "O1");
  EXPECT_EQ(CifLabel("O 1 "), "O_1");
  EXPECT_EQ(CifLabel("    "), "?");
  EXPECT_EQ(CifLabel("#1  "), "'#1'");
}

// The corundum example refined in a scratch directory; its parameter file is the project.
class RefinedCorundum : public ::testing::Test {
 protected:
  void SetUp() override {
    ok = testing::RefineExample(dir);
    project = (dir.Path() / "%corundum.par").string();
  }

  // The project with the lines of `key` (the first `count`, all when 0) taken out.
  std::string Without(const std::string& key, const std::string& name) {
    std::istringstream in(ReadBytes(project));
    std::string line, text;
    while (std::getline(in, line)) {
      if (line.rfind(key, 0) != 0) text += line + "\n";
    }
    return dir.Write(name, text).string();
  }

  // The project with its SPGR line naming `symbol`.
  std::string WithSymbol(const std::string& symbol, const std::string& name) {
    std::string text = ReadBytes(project);
    const size_t at = text.find("\nSPGR") + 1;
    text.replace(at, text.find('\n', at) - at, "SPGR      " + symbol);
    return dir.Write(name, text).string();
  }

  // Two phases: a second of the same title, cell and atoms, in the group of `symbol`. The
  // lines of each per-phase key are appended, which is where the store looks for the second.
  std::string TwoPhases(const std::string& symbol, const std::string& name) {
    std::string text = ReadBytes(project);
    const size_t job = text.find("JOBT");
    text.replace(job + 10, 15, "    0    4    2");
    std::string extra;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
      if (line.rfind("SPGR", 0) == 0) line = "SPGR      " + symbol;
      for (const char* key : {"PHTI", "PHNA", "SPGR", "CELL", "XYZ "}) {
        if (line.rfind(key, 0) == 0) extra += line + "\n";
      }
    }
    return dir.Write(name, text + extra).string();
  }

  testing::ScratchDir dir;
  bool ok = false;
  std::string project;
};

TEST_F(RefinedCorundum, CifMatchesItsGoldenFile) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  const std::string cif = StartCif(project, reporter, kDate);
  ASSERT_EQ(cif, (dir.Path() / "%corundum.cif").string());
  EXPECT_EQ(reporter.log.front(), "Starting CIF");
  EXPECT_TRUE(reporter.messages.empty());
  const std::string text = ReadBytes(cif);
  testing::ExpectGolden(text, testing::TestData("tools/corundum.cif"));
  // One phase: no plain-text phase heading; isotropic atoms: no aniso loop; both geometry
  // loops with the centre's own site as ".".
  EXPECT_EQ(text.find("* PHASE NO."), std::string::npos);
  EXPECT_EQ(text.find("_atom_site_aniso_label"), std::string::npos);
  EXPECT_NE(text.find("_geom_angle_publ_flag"), std::string::npos);
  EXPECT_NE(text.find("_geom_bond_publ_flag"), std::string::npos);
  EXPECT_NE(text.find("_audit_creation_date               2026-11-23"), std::string::npos);
}

TEST_F(RefinedCorundum, RawReportMatchesItsGoldenFileWithARowPerSummaryPoint) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  const std::string report = (dir.Path() / "%corundum.rcf").string();
  ASSERT_EQ(RawReportFileName(project), report);
  ASSERT_EQ(WriteRawReport(project, report, reporter), RawReportStatus::kOk);
  const std::string text = ReadBytes(report);
  testing::ExpectGolden(text, testing::TestData("tools/corundum.rcf"));
  std::istringstream summary(ReadBytes(SummaryFileOf(project, reporter)));
  int points = 0;
  for (std::string line; std::getline(summary, line);) points += !line.empty();
  ASSERT_GT(points, 100);
  std::istringstream rows(text);
  int last = 0;
  for (std::string line; std::getline(rows, line);) {
    int n = 0;
    if (std::sscanf(line.c_str(), "%6d", &n) == 1 && line.size() == 50) last = n;
  }
  EXPECT_EQ(last, points);
}

// A Python interpreter that imports `modules` (the system's, then the first on the path), or
// empty.
std::string Python(const std::string& modules) {
  for (const char* python : {"/usr/bin/python3", "python3"}) {
    const std::string probe = std::string(python) + " -c 'import " + modules + "' >/dev/null 2>&1";
    if (std::system(probe.c_str()) == 0) return python;
  }
  return {};
}

std::string Gemmi() { return Python("gemmi"); }

// Runs a Python script with its arguments and returns what it prints.
std::string RunPython(const std::string& python, const std::string& scriptAndArguments) {
  const std::string command = python + " " + scriptAndArguments + " 2>&1";
  std::string output;
  if (FILE* pipe = popen(command.c_str(), "r")) {
    char buffer[4096];
    while (size_t n = std::fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, n);
    pclose(pipe);
  }
  return output;
}

std::string RunPython(const fs::path& script, const std::string& file) {
  return RunPython(Gemmi(), "'" + script.string() + "' '" + file + "'");
}

// gemmi reads the CIF and reports what it found as "key value" lines; the symmetry
// operators are checked against gemmi's own table of the group.
constexpr const char* kReadCif = R"(
import sys, gemmi
doc = gemmi.cif.read_file(sys.argv[1])
print('blocks', len(doc))
b = doc[1]
print('name', b.name)
for tag in ['_cell_length_a', '_cell_length_b', '_cell_length_c', '_cell_angle_alpha',
            '_cell_angle_beta', '_cell_angle_gamma', '_cell_volume']:
    print(tag, gemmi.cif.as_number(b.find_value(tag)))
hm = gemmi.cif.as_string(b.find_value('_symmetry_space_group_name_H-M'))
print('symbol', hm.replace(' ', '_'))
ops = gemmi.GroupOps([gemmi.Op(gemmi.cif.as_string(t)) for t in b.find_loop('_symmetry_equiv_pos_as_xyz')])
ref = gemmi.find_spacegroup_by_name(hm).operations()
same = sorted(o.triplet() for o in ops) == sorted(o.triplet() for o in ref)
print('operators', len(list(ops)), 'same_as_gemmi', int(same))
for row in b.find('_atom_site_', ['label', 'fract_x', 'fract_y', 'fract_z', 'occupancy',
                                  'U_iso_or_equiv', 'type_symbol']):
    print('atom', row.str(0), *[gemmi.cif.as_number(row[i]) for i in range(1, 6)], row.str(6))
print('bonds', len(b.find_loop('_geom_bond_atom_site_label_1')))
print('angles', len(b.find_loop('_geom_angle_atom_site_label_1')))
print('R', gemmi.cif.as_number(doc[0].find_value('_pd_proc_ls_prof_R_factor')))
)";

TEST_F(RefinedCorundum, CifReadsAsCif11AndAgreesWithTheProject) {
  ASSERT_TRUE(ok);
  if (Gemmi().empty()) GTEST_SKIP() << "python3 with gemmi is not installed: no independent parse";
  RecordingReporter reporter;
  const std::string cif = StartCif(project, reporter, kDate);
  ASSERT_FALSE(cif.empty());
  const fs::path script = dir.Write("read_cif.py", kReadCif);
  const std::string output = RunPython(script, cif);
  std::map<std::string, std::string> found;
  std::vector<std::vector<std::string>> atoms;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string key, rest;
    words >> key;
    std::getline(words >> std::ws, rest);
    if (key == "atom") {
      std::istringstream fields(rest);
      atoms.emplace_back();
      for (std::string f; fields >> f;) atoms.back().push_back(f);
    } else {
      found[key] = rest;
    }
  }
  ASSERT_EQ(found["blocks"], "2") << output;
  EXPECT_EQ(found["name"], "Corundum");
  // The refined cell of the parameter file, within the esd digits written.
  std::istringstream par(ReadBytes(project));
  std::vector<double> cell;
  for (std::string line; std::getline(par, line);) {
    if (line.rfind("CELL", 0) == 0) {
      std::istringstream v(line.substr(10));
      for (double x; v >> x;) cell.push_back(x);
    }
  }
  ASSERT_EQ(cell.size(), 6u);
  const char* tags[] = {"_cell_length_a",    "_cell_length_b",   "_cell_length_c",
                        "_cell_angle_alpha", "_cell_angle_beta", "_cell_angle_gamma"};
  for (int i = 0; i < 6; ++i) {
    EXPECT_NEAR(std::stod(found[tags[i]]), cell[i], 6e-6) << tags[i];
  }
  const double volume = cell[0] * cell[1] * cell[2] * std::sqrt(3.0) / 2;
  EXPECT_NEAR(std::stod(found["_cell_volume"]), volume, 2e-3);
  EXPECT_EQ(found["symbol"], "R_-3_C");
  EXPECT_EQ(found["operators"], "36 same_as_gemmi 1");
  // Al on the three-fold axis at z about 0.352, O at x about 0.306, y 0, z 1/4; the
  // isotropic U is B/(8 pi^2) with B near the starting 0.3.
  ASSERT_EQ(atoms.size(), 2u) << output;
  EXPECT_EQ(atoms[0][0], "Al");
  EXPECT_EQ(atoms[0][6], "Al");
  EXPECT_NEAR(std::stod(atoms[0][1]), 0.0, 1e-9);
  EXPECT_NEAR(std::stod(atoms[0][3]), 0.352, 0.002);
  EXPECT_EQ(atoms[1][0], "O");
  EXPECT_EQ(atoms[1][6], "O");
  EXPECT_NEAR(std::stod(atoms[1][1]), 0.306, 0.002);
  EXPECT_NEAR(std::stod(atoms[1][3]), 0.25, 1e-9);
  EXPECT_NEAR(std::stod(atoms[1][4]), 1.0, 1e-9);
  EXPECT_GT(std::stod(atoms[0][5]), 0.0);
  EXPECT_LT(std::stod(atoms[0][5]), 0.05);
  EXPECT_GT(std::stoi(found["bonds"]), 0);
  EXPECT_GT(std::stoi(found["angles"]), 0);
  EXPECT_GT(std::stod(found["R"]), 0.0);
  EXPECT_LT(std::stod(found["R"]), 1.0);
}

TEST_F(RefinedCorundum, RawReportReadsAsCif) {
  ASSERT_TRUE(ok);
  if (Gemmi().empty()) GTEST_SKIP() << "python3 with gemmi is not installed: no independent parse";
  RecordingReporter reporter;
  const std::string report = RawReportFileName(project);
  ASSERT_EQ(WriteRawReport(project, report, reporter), RawReportStatus::kOk);
  const fs::path script = dir.Write("read_rcf.py", R"(
import sys, gemmi
b = gemmi.cif.read_file(sys.argv[1]).sole_block()
t = b.find('_pd_proc_', ['point_id', '2theta_corrected', 'intensity_net', 'ls_weight'])
w = [gemmi.cif.as_number(r[3]) * gemmi.cif.as_number(r[2]) for r in t if gemmi.cif.as_number(r[2]) > 0]
print(len(t), gemmi.cif.as_int(t[len(t) - 1][0]), int(all(abs(x - 1) < 1e-3 for x in w)))
)");
  std::istringstream out(RunPython(script, report));
  int rows = 0, lastId = 0, weightsOk = 0;
  out >> rows >> lastId >> weightsOk;
  EXPECT_GT(rows, 100);
  EXPECT_EQ(lastId, rows);
  EXPECT_EQ(weightsOk, 1);  // weight = 1/observed for 1/Yobs weighting
}

// Anisotropic Al, a preferred orientation and a cylinder's absorption, edited into the
// refined project: the aniso loop in U, the Dollase note and the transmission range.
TEST_F(RefinedCorundum, AnisotropicAtomsPreferredOrientationAndAbsorption) {
  ASSERT_TRUE(ok);
  std::string text = ReadBytes(project);
  const auto replaceLine = [&](const std::string& key, const std::string& line) {
    const size_t at = text.find("\n" + key) + 1;
    text.replace(at, text.find('\n', at) - at, line);
  };
  replaceLine("ASYM", "ASYM        0.900000  0.000000  1.000000");
  replaceLine("RLIM", "RLIM        10.00000   0.90000   0.50000  40.00000");
  // b11 = b22 = 2 b12 on the three-fold axis.
  text += "BETA      Al         0.00500  0.00500  0.00100  0.00250  0.00000  0.00000\n";
  text += "SDBE      Al         0.00020  0.00020  0.00003  0.00010  0.00000  0.00000\n";
  const std::string edited = dir.Write("aniso.par", text).string();
  const std::string cif = (dir.Path() / "aniso.cif").string();
  RecordingReporter reporter;
  ASSERT_EQ(WriteCif(edited, cif, reporter, kDate), CifStatus::kOk);
  const std::string out = ReadBytes(cif);
  EXPECT_NE(out.find("_pd_proc_ls_pref_orient_corr\n;\nI~corr~ = I~obs~/"), std::string::npos);
  EXPECT_NE(out.find(" Uani  Al\n"), std::string::npos);
  EXPECT_NE(out.find(" Uiso   O\n"), std::string::npos);
  EXPECT_EQ(out.find("_exptl_absorpt_correction_T_min    ?"), std::string::npos);
  if (Gemmi().empty()) GTEST_SKIP() << "python3 with gemmi is not installed: no independent parse";
  const fs::path script = dir.Write("read_aniso.py", R"(
import sys, gemmi
b = gemmi.cif.read_file(sys.argv[1])[1]
n = gemmi.cif.as_number
a = n(b.find_value('_cell_length_a'))
t = b.find('_atom_site_aniso_', ['label', 'U_11', 'U_22', 'U_33', 'U_12', 'U_13', 'U_23'])
print(len(t), t[0].str(0), a, *[n(t[0][i]) for i in range(1, 7)])
print(n(b.find_value('_exptl_absorpt_correction_T_min')), n(b.find_value('_exptl_absorpt_correction_T_max')))
)");
  std::istringstream got(RunPython(script, cif));
  int rows = 0;
  std::string label;
  double a = 0, u[6] = {}, tMin = 0, tMax = 0;
  got >> rows >> label >> a >> u[0] >> u[1] >> u[2] >> u[3] >> u[4] >> u[5] >> tMin >> tMax;
  ASSERT_EQ(rows, 1);
  EXPECT_EQ(label, "Al");
  // Hexagonal cell: a* = 2 / (a sqrt 3), c* = 1 / c; U_ij = b_ij / (2 pi^2 a*_i a*_j).
  const double aStar = 2 / (a * std::sqrt(3.0)), twoPi2 = 2 * M_PI * M_PI;
  EXPECT_NEAR(u[0], 0.005 / (twoPi2 * aStar * aStar), 1e-4);
  EXPECT_NEAR(u[1], u[0], 1e-9);
  EXPECT_NEAR(u[3], u[0] / 2, 1e-4);
  EXPECT_EQ(u[4], 0.0);
  EXPECT_GT(u[2], 0.0);
  EXPECT_GT(tMin, 0.0);
  EXPECT_LE(tMin, tMax);
}

TEST_F(RefinedCorundum, FailuresAreToldAndKeepWhatWasWritten) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  // Without CELL the write fails and the CIF of the last good write stays as it was.
  const std::string noCell = Without("CELL", "nocell.par");
  const std::string cif = (dir.Path() / "nocell.cif").string();
  const fs::path old = dir.Write("nocell.cif", "data_old\n");
  EXPECT_EQ(WriteCif(noCell, cif, reporter, kDate), CifStatus::kFailed);
  EXPECT_EQ(reporter.log.back(), " CELL record missing. Program terminated");
  EXPECT_EQ(ReadBytes(cif), "data_old\n");

  reporter.Clear();
  EXPECT_EQ(WriteCif(Without("SPGR", "nospgr.par"), cif, reporter, kDate), CifStatus::kFailed);
  EXPECT_EQ(reporter.log.back(), " SPGR record missing. Program terminated");

  // Fewer atom lines than PHNA asks for: the count is cut and told.
  reporter.Clear();
  const std::string oneAtom =
      dir.Write("oneatom.par",
                [&] {
                  std::string text = ReadBytes(project);
                  const size_t second = text.find("\nXYZ ", text.find("\nXYZ ") + 1);
                  text.erase(second + 1, text.find('\n', second + 1) - second);
                  return text;
                }())
          .string();
  EXPECT_EQ(WriteCif(oneAtom, cif, reporter, kDate), CifStatus::kOk);
  EXPECT_NE(std::find(reporter.log.begin(), reporter.log.end(), "    1 XYZ records read"),
            reporter.log.end());

  reporter.Clear();
  EXPECT_EQ(RunCif((dir.Path() / "absent.par").string(), reporter, kDate), "");
  EXPECT_EQ(reporter.log, (std::vector<std::string>{" Error opening parfile ", "Error in kd_cif"}));
  reporter.Clear();
  EXPECT_EQ(WriteCif(project, (dir.Path() / "no/such/dir.cif").string(), reporter, kDate),
            CifStatus::kFailed);
  EXPECT_EQ(reporter.log.back(), " Error opening ciffile ");

  // The raw report without a summary, and with a JOBT that does not read.
  reporter.Clear();
  fs::remove(SummaryFileOf(project, reporter));
  EXPECT_EQ(WriteRawReport(project, (dir.Path() / "x.rcf").string(), reporter),
            RawReportStatus::kFailed);
  EXPECT_EQ(reporter.log.back(), " Error opening sumfile ");
  reporter.Clear();
  const std::string badJob = dir.Write("badjob.par", "JOBT          x    4\n").string();
  EXPECT_EQ(WriteRawReport(badJob, (dir.Path() / "y.rcf").string(), reporter),
            RawReportStatus::kFailed);
  EXPECT_EQ(reporter.log.back(), " ios JOBT ");
}

TEST_F(RefinedCorundum, TwoPhasesGetBlocksOfTheirOwnAndHeadedGeometry) {
  ASSERT_TRUE(ok);
  const std::string two = TwoPhases("R -3 C", "two.par");
  RecordingReporter reporter;
  const std::string cif = (dir.Path() / "two.cif").string();
  ASSERT_EQ(WriteCif(two, cif, reporter, kDate), CifStatus::kOk);
  const std::string out = ReadBytes(cif);
  EXPECT_NE(out.find("\ndata_Corundum\n"), std::string::npos);
  EXPECT_NE(out.find("\ndata_Corundum_2\n"), std::string::npos);
  // The headings are comments, so that the file stays CIF.
  const size_t first = out.find("\n#  * PHASE NO.  1: Corundum *\n");
  const size_t second = out.find("\n#  * PHASE NO.  2: Corundum *\n");
  ASSERT_NE(first, std::string::npos);
  ASSERT_NE(second, std::string::npos);
  EXPECT_LT(out.find("_geom_angle_publ_flag", first), second);
  EXPECT_NE(out.find("_geom_angle_publ_flag", second), std::string::npos);
}

// The symmetry items name the setting of the operators: a group of two origins with ":2",
// which is the origin of the operators; "?" where no setting of the tables has them.
TEST_F(RefinedCorundum, SymmetryItemsNameTheSettingOfTheOperators) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  const std::string cif = (dir.Path() / "fd3m.cif").string();
  ASSERT_EQ(WriteCif(WithSymbol("F D 3 M", "fd3m.par"), cif, reporter, kDate), CifStatus::kOk);
  const std::string out = ReadBytes(cif);
  EXPECT_NE(out.find("_symmetry_space_group_name_H-M     'F D 3 M'\n"
                     "_symmetry_int_tables_number        227\n"
                     "_symmetry_space_group_name_Hall    '-F 4vw 2vw 3'\n"
                     "_space_group_IT_number             227\n"
                     "_space_group_name_H-M_alt          'F d -3 m:2'\n"
                     "_space_group_name_Hall             '-F 4vw 2vw 3'\n"),
            std::string::npos)
      << out;
  ASSERT_EQ(WriteCif(WithSymbol("C -1", "c1.par"), cif, reporter, kDate), CifStatus::kOk);
  EXPECT_NE(ReadBytes(cif).find("_symmetry_int_tables_number        ?\n"
                                "_symmetry_space_group_name_Hall    ?\n"
                                "_space_group_IT_number             ?\n"
                                "_space_group_name_H-M_alt          ?\n"
                                "_space_group_name_Hall             ?\n"),
            std::string::npos);
}

// Every CIF the tools write reads in gemmi and PyCifRW, and gemmi's group of the printed
// symbol, of the Hall symbol and of the number is the group of the operators in the file:
// the refined project, the same in other settings, two phases, and the raw data report.
TEST_F(RefinedCorundum, WrittenCifsReadInOtherProgramsAsTheirGroups) {
  ASSERT_TRUE(ok);
  const std::string python = Python("gemmi, CifFile");
  if (python.empty()) GTEST_SKIP() << "python3 with gemmi and PyCifRW is not installed";
  RecordingReporter reporter;
  std::vector<std::string> files = {StartCif(project, reporter, kDate)};
  const char* symbols[] = {"P 21/C",   "C 1 N 1",    "P M -3 M",   "F D 3 M",
                           "P N N N",  "C C C B",    "I 41/A M D", "P 4/N M M",
                           "R -3 C R", "P 63/M M C", "P -4 21 C"};
  for (const std::string symbol : symbols) {
    const std::string name = "setting" + std::to_string(files.size());
    files.push_back((dir.Path() / (name + ".cif")).string());
    ASSERT_EQ(WriteCif(WithSymbol(symbol, name + ".par"), files.back(), reporter, kDate),
              CifStatus::kOk);
  }
  files.push_back((dir.Path() / "two.cif").string());
  ASSERT_EQ(WriteCif(TwoPhases("F D 3 M", "two.par"), files.back(), reporter, kDate),
            CifStatus::kOk);
  files.push_back(RawReportFileName(project));
  ASSERT_EQ(WriteRawReport(project, files.back(), reporter), RawReportStatus::kOk);

  std::string arguments;
  for (const std::string& file : files) arguments += " '" + file + "'";
  std::istringstream output(
      RunPython(python, testing::TestData("../tools/check_written_cif.py").string() + arguments));
  for (const std::string& file : files) {
    std::string line;
    std::getline(output, line);
    const std::string blocks = file.ends_with(".rcf") ? "1" : file.ends_with("two.cif") ? "3" : "2";
    EXPECT_EQ(line, "ok " + file + " " + blocks);
  }
}

}  // namespace
}  // namespace kaldena
