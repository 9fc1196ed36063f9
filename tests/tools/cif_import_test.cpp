// CIF import: the scanner's words, loops and numbers; the phase read from classic, newer and
// messy CIFs; refusals and messages; the records, and a run of the engine on the result.
#include "tools/cif_import.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "crystal/space_group_settings.h"
#include "engine/run_engine.h"
#include "store/record_catalogue.h"
#include "support/test_files.h"
#include "tools/cif_scanner.h"
#include "util/column_format.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScratchDir;
using testing::SharedData;
using testing::TestData;
using Lines = std::vector<std::string>;

std::string Data(const char* name) {
  return TestData(std::string("tools/cif_import/") + name).string();
}

bool Has(const Lines& lines, std::string_view text) {
  return std::any_of(lines.begin(), lines.end(),
                     [&](const std::string& l) { return l.find(text) != std::string::npos; });
}

const CifAtom* AtomOf(const CifPhase& phase, std::string_view label) {
  for (const CifAtom& atom : phase.atoms) {
    if (atom.label == label) return &atom;
  }
  return nullptr;
}

// --- Scanner -------------------------------------------------------------------------------

TEST(CifScanner, WordsKeepQuotedTextWholeAndStopAtComments) {
  EXPECT_EQ(CifWords("  _name   'P 21/c'  # note"), (Lines{"_name", "P 21/c"}));
  EXPECT_EQ(CifWords("\"R -3 c :H\""), (Lines{"R -3 c :H"}));
  // An inner apostrophe does not close the quote; only one followed by a blank does.
  EXPECT_EQ(CifWords("'O'Brien' x"), (Lines{"O'Brien", "x"}));
  EXPECT_EQ(CifWords("a\tb  c"), (Lines{"a", "b", "c"}));
  // A quoted label with a blank does not shift the words behind it.
  EXPECT_EQ(ColumnWord("'Fe 1' Fe 0.25", 3), "0.25");
  EXPECT_EQ(ColumnWord("a b", 3), "");
  EXPECT_EQ(ColumnWord("a b", 0), "");
}

TEST(CifScanner, NumbersWithEsdUnknownsAndBadText) {
  CifNumber n = ReadCifNumber("1.234(5)");
  ASSERT_EQ(n.kind, CifNumber::Kind::kValue);
  EXPECT_FLOAT_EQ(n.value.value, 1.234f);
  EXPECT_FLOAT_EQ(n.value.esd, 0.005f);
  n = ReadCifNumber("12(3)");
  EXPECT_FLOAT_EQ(n.value.value, 12.0f);
  EXPECT_FLOAT_EQ(n.value.esd, 3.0f);
  n = ReadCifNumber("-.5");
  EXPECT_FLOAT_EQ(n.value.value, -0.5f);
  EXPECT_FLOAT_EQ(n.value.esd, 0.0f);
  EXPECT_EQ(ReadCifNumber("?").kind, CifNumber::Kind::kUnknown);
  EXPECT_EQ(ReadCifNumber(".").kind, CifNumber::Kind::kUnknown);
  EXPECT_EQ(ReadCifNumber("Uiso").kind, CifNumber::Kind::kBad);
  EXPECT_EQ(ReadCifNumber("0.1(").kind, CifNumber::Kind::kBad);
}

TEST(CifScanner, LoopsJoinWrappedRowsAndEndWhereTheClassicLayoutEnds) {
  const CifText text = CifTextOf("t.cif",
                                 "data_t\n"
                                 "loop_ _a _b\n"
                                 "_c\n"
                                 "1 2\n"
                                 "  3\n"
                                 "4 5 6 7\n"
                                 "8 9\n"
                                 "# a comment ends the loop\n"
                                 "10 11 12\n"
                                 "loop_\n"
                                 "_d\n"
                                 "x\n");
  const auto loop = FindCifLoop(text, [](const Lines& n) { return n.front() == "_a"; });
  ASSERT_TRUE(loop);
  EXPECT_EQ(loop->names, (Lines{"_a", "_b", "_c"}));
  ASSERT_EQ(loop->rows.size(), 3u);
  EXPECT_EQ(loop->rows[0], (Lines{"1", "2", "3"}));
  EXPECT_EQ(loop->rows[1], (Lines{"4", "5", "6"}));
  EXPECT_EQ(loop->rows[2], (Lines{"7", "8", "9"}));
  EXPECT_EQ(loop->rowLines, (std::vector<int>{3, 5, 5}));
  EXPECT_EQ(loop->incompleteLine, -1);
  EXPECT_EQ(loop->Column("_C"), 2);
  EXPECT_EQ(loop->Column("_e"), -1);
  const auto second = FindCifLoop(text, [](const Lines& n) { return n.front() == "_d"; });
  ASSERT_TRUE(second);
  EXPECT_EQ(second->rows, (std::vector<Lines>{{"x"}}));
  EXPECT_FALSE(FindCifLoop(text, [](const Lines& n) { return n.front() == "_z"; }));
  EXPECT_EQ(text.Where(3), "t.cif:4");
}

TEST(CifScanner, ItemsAreFoundByTheirFirstWordOnly) {
  const CifText text = CifTextOf("t.cif",
                                 "_cod_original_cell_length_a 1.0\n"
                                 "  _CELL_LENGTH_A   4.0(1)  \n"
                                 "_cell_length_a 9.9\n");
  const auto item = FindCifItem(text, "_cell_length_a");
  ASSERT_TRUE(item);
  EXPECT_EQ(item->line, 1);
  EXPECT_EQ(item->rest, "4.0(1)");
}

// --- Import ---------------------------------------------------------------------------------

TEST(CifImport, ClassicLayoutGivesSymbolCellAndAtoms) {
  RecordingReporter reporter;
  const CifPhase phase = ImportCif(Data("classic.cif"), reporter);
  ASSERT_EQ(phase.status, CifImportStatus::kOk);
  EXPECT_EQ(phase.spaceGroup, "P 21/C");
  EXPECT_FLOAT_EQ(phase.cell[0], 5.4321f);
  EXPECT_FLOAT_EQ(phase.cellSd[0], 0.0003f);
  EXPECT_FLOAT_EQ(phase.cellSd[1], 0.0012f);
  EXPECT_FLOAT_EQ(phase.cell[4], 105.23f);
  EXPECT_FLOAT_EQ(phase.cellSd[4], 0.02f);
  EXPECT_FLOAT_EQ(phase.cellSd[2], 0.0f);
  ASSERT_EQ(phase.atoms.size(), 3u);

  const CifAtom& fe = phase.atoms[0];
  EXPECT_EQ(fe.label, "Fe1");
  EXPECT_EQ(fe.element, "Fe");
  EXPECT_FLOAT_EQ(fe.values[0], 0.1234f);
  EXPECT_FLOAT_EQ(fe.valueSd[0], 0.0005f);
  EXPECT_FLOAT_EQ(fe.valueSd[2], 0.0012f);
  EXPECT_FLOAT_EQ(fe.values[4], 0.85f);
  EXPECT_FLOAT_EQ(fe.valueSd[4], 0.03f);
  EXPECT_EQ(fe.siteFactor, 1);  // general position

  const CifAtom& o = phase.atoms[1];
  EXPECT_EQ(o.element, "O ");  // "O2-": the charge is no second letter
  EXPECT_FLOAT_EQ(o.values[3], 0.5f);
  EXPECT_EQ(o.siteFactor, 2);  // a centre of symmetry at 1/2,0,0

  // "?" and "." keep the defaults without a word: coordinates 0, occupancy 1.
  const CifAtom& na = phase.atoms[2];
  EXPECT_EQ(na.element, "Na");
  EXPECT_FLOAT_EQ(na.values[0], 0.0f);
  EXPECT_FLOAT_EQ(na.values[1], 0.0f);
  EXPECT_FLOAT_EQ(na.values[3], 1.0f);
  EXPECT_EQ((std::array<int, 3>{fe.type, o.type, na.type}), (std::array<int, 3>{1, 2, 3}));
  EXPECT_EQ(phase.elements, (Lines{"Fe", "O ", "Na"}));

  EXPECT_EQ(reporter.log, (Lines{"Thermal parameters not found"}));
  EXPECT_EQ(reporter.stages,
            (Lines{"ImportCIF started", "ImportCIF file ready", "ImportCIF cell ready",
                   "ImportCIF atoms localized", "ImportCIF coordinates ready", "ImportCIF no aniso",
                   "ImportCIF done"}));
}

TEST(CifImport, NewerNamesQuotedSymbolUisoWithEsdAndAnisoLoopByLabel) {
  RecordingReporter reporter;
  const CifPhase phase = ImportCif(Data("messy.cif"), reporter);
  ASSERT_EQ(phase.status, CifImportStatus::kOk);
  EXPECT_EQ(phase.spaceGroup, "P 42/M N M");
  // Gamma is missing: its message, and the default stays.
  EXPECT_TRUE(Has(reporter.log, "Unit cell gamma not found"));
  EXPECT_FLOAT_EQ(phase.cell[5], 90.0f);

  // Rows that wrap over two lines are joined.
  ASSERT_EQ(phase.atoms.size(), 2u);
  const CifAtom* ti = AtomOf(phase, "Ti1");
  const CifAtom* o = AtomOf(phase, "O1");
  ASSERT_TRUE(ti && o);
  EXPECT_FLOAT_EQ(o->values[0], 0.30478f);
  EXPECT_FLOAT_EQ(o->values[1], 0.30478f);
  EXPECT_FLOAT_EQ(o->values[3], 1.0f);
  // B = 8 pi^2 U, the esd likewise.
  EXPECT_NEAR(ti->values[4], 0.0053 * 78.956711, 1e-5);
  EXPECT_NEAR(ti->valueSd[4], 0.0002 * 78.956711, 1e-6);
  EXPECT_NEAR(o->values[4], 0.0071 * 78.956711, 1e-5);

  // beta_ij = 2 pi^2 U_ij a*_i a*_j; for this tetragonal cell a* = 1/a, c* = 1/c.
  const double a = 4.5937, c = 2.9587, k = 19.739178;
  EXPECT_TRUE(ti->anisotropic);
  EXPECT_NEAR(ti->beta[0], k * 0.0060 / (a * a), 1e-7);
  EXPECT_NEAR(ti->beta[2], k * 0.0040 / (c * c), 1e-7);
  EXPECT_NEAR(ti->beta[3], k * -0.0003 / (a * a), 1e-8);
  EXPECT_NEAR(ti->betaSd[2], k * 0.0003 / (c * c), 1e-8);
  EXPECT_EQ(ti->beta[4], 0.0f);
  // An atom without an aniso line gets zeros; the line of Zr9, which is no atom, is dropped.
  EXPECT_FALSE(o->anisotropic);
  EXPECT_EQ(o->beta, (std::array<float, 6>{}));
  EXPECT_EQ(Has(reporter.log, "Thermal parameters not found"), false);
  EXPECT_TRUE(Has(reporter.log, "    1    2    3    4    5    6    7"));  // columns of the header

  // Rutile, 16 operators: Ti on 2a (site factor 8), O on 4f (site factor 4).
  EXPECT_EQ(ti->siteFactor, 8);
  EXPECT_EQ(o->siteFactor, 4);
}

TEST(CifImport, BWinsOverUAndMadeUpLabelsWhenTheLoopHasNone) {
  RecordingReporter reporter;
  const CifPhase phase = ImportCifText("both.cif",
                                       "_symmetry_space_group_name_H-M 'P 1'\n"
                                       "loop_\n"
                                       "_atom_site_type_symbol\n"
                                       "_atom_site_U_iso_or_equiv\n"
                                       "_atom_site_B_iso_or_equiv\n"
                                       "_atom_site_fract_x\n"
                                       "CU 0.02 1.5 0.1\n"
                                       "Xx 0.01 ? 0.2\n"
                                       "Ca 0.01 2 abc\n",
                                       reporter);
  ASSERT_EQ(phase.atoms.size(), 3u);
  EXPECT_FLOAT_EQ(phase.atoms[0].values[4], 1.5f);
  EXPECT_EQ(phase.atoms[0].element, "Cu");
  EXPECT_EQ(phase.atoms[0].label, "Cu1");
  // An unknown B falls back on U.
  EXPECT_NEAR(phase.atoms[1].values[4], 0.78956711f, 1e-6);
  EXPECT_EQ(phase.atoms[1].element, "H ");
  EXPECT_TRUE(Has(reporter.log, "both.cif:8: atom X2 type 'Xx' names no element, H used"));
  EXPECT_TRUE(Has(reporter.log, "both.cif:9: x 'abc' is not a number, default used"));
  EXPECT_FLOAT_EQ(phase.atoms[2].values[0], 0.0f);
}

TEST(CifImport, MissingItemsGiveTheirMessagesAndDefaults) {
  RecordingReporter reporter;
  const CifPhase phase = ImportCifText("bare.cif", "data_bare\n_cell_length_b 7.5\n", reporter);
  EXPECT_EQ(phase.status, CifImportStatus::kOk);
  EXPECT_EQ(reporter.log,
            (Lines{"Spacegroup symbol not found", "bare.cif: no space group symbol, P 1 used",
                   "Unit cell a not found", "Unit cell c not found", "Unit cell alpha not found",
                   "Unit cell beta not found", "Unit cell gamma not found",
                   "Atomic parameters not found", "Thermal parameters not found"}));
  EXPECT_EQ(phase.spaceGroup, "P 1");
  EXPECT_EQ(phase.cell, (std::array<float, 6>{10, 7.5f, 10, 90, 90, 90}));
  EXPECT_TRUE(phase.atoms.empty());

  // A symbol on the line after its name fails, as does a symbol the reader cannot take.
  reporter.Clear();
  ImportCifText("next.cif", "_symmetry_space_group_name_H-M\n'P 21/c'\n", reporter);
  EXPECT_EQ(reporter.log[0], "Error in spacegroup symbol");
  EXPECT_EQ(reporter.log[1], "next.cif:1: no symbol on the line of its name, P 1 used");
  reporter.Clear();
  const CifPhase bad = ImportCifText("bad.cif", "_space_group_name_H-M_alt 'Q 9'\n", reporter);
  EXPECT_EQ(bad.spaceGroup, "P 1");
  EXPECT_EQ(reporter.log[1], "bad.cif:1: space group 'Q 9' is not understood, P 1 used");

  // A file that does not open imports nothing.
  reporter.Clear();
  const CifPhase none = ImportCif(Data("absent.cif"), reporter);
  EXPECT_EQ(none.status, CifImportStatus::kCannotOpen);
  EXPECT_EQ(reporter.log.front(), " Error opening CIF");
}

TEST(CifImport, RhombohedralAxesAreRefusedHexagonalAxesPass) {
  RecordingReporter reporter;
  const CifPhase phase = ImportCif(Data("rhombohedral.cif"), reporter);
  EXPECT_EQ(phase.status, CifImportStatus::kRhombohedralAxes);
  EXPECT_EQ(reporter.messages, (std::vector<RecordingReporter::Message>{
                                   {"Problem", "Please use rhomohedral in hexagonal setting"}}));
  EXPECT_TRUE(phase.atoms.empty());  // nothing further read
  EXPECT_FALSE(Has(reporter.stages, "ImportCIF done"));

  reporter.Clear();
  const CifPhase hexagonal =
      ImportCifText("hex.cif",
                    "_symmetry_space_group_name_H-M 'R -3 m'\n_cell_length_a 4.1\n"
                    "_cell_length_b 4.1\n_cell_length_c 28.6\n_cell_angle_alpha 90\n"
                    "_cell_angle_beta 90\n_cell_angle_gamma 120\n",
                    reporter);
  EXPECT_EQ(hexagonal.status, CifImportStatus::kOk);
  EXPECT_TRUE(reporter.messages.empty());
}

TEST(CifImport, AtomLimitCountsTheAtomsOfEarlierPhases) {
  std::string text = "loop_\n_atom_site_label\n_atom_site_fract_x\n";
  for (int i = 1; i <= 5; ++i) text += "C" + std::to_string(i) + " 0.1\n";
  RecordingReporter reporter;
  const CifPhase phase = ImportCifText("many.cif", text, reporter, kMaxAtoms - 3);
  EXPECT_EQ(phase.atoms.size(), 3u);
  EXPECT_TRUE(Has(reporter.log, "many.cif:7: more than 500 atoms"));
}

// --- Settings: origin choice 1, Hall symbols and numbers -----------------------------------

// An atom of the files in tests/data/tools/cif_import/settings where gemmi puts it in the
// setting the import must give.
struct ExpectedSite {
  std::string file, setting, label;
  std::array<float, 3> xyz;
  int multiplicity;
};

std::vector<ExpectedSite> ExpectedSites() {
  std::vector<ExpectedSite> sites;
  std::ifstream in(Data("settings/expected_sites.txt"));
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::vector<std::string> f;
    std::istringstream fields(line);
    for (std::string part; std::getline(fields, part, '|');) f.push_back(part);
    sites.push_back(
        {f[0], f[1], f[2], {std::stof(f[3]), std::stof(f[4]), std::stof(f[5])}, std::stoi(f[6])});
  }
  return sites;
}

// One of the operators maps `a` onto `b`, modulo whole cells.
bool SameSite(const SpaceGroupInfo& group, const std::array<float, 3>& a,
              const std::array<float, 3>& b) {
  for (const SymmetryOperator& op : group.operators) {
    bool same = true;
    for (int i = 0; i < 3; ++i) {
      float image = op[4 * i + 3];
      for (int j = 0; j < 3; ++j) image += op[4 * i + j] * a[j];
      const float d = image - b[i];
      same = same && std::fabs(d - std::round(d)) < 1e-4f;
    }
    if (same) return true;
  }
  return false;
}

// Spinel and a made-up Ce/O structure in F d -3 m origin choice 1 (told by the operators, by
// ":1", " :1" and the words), litharge by its Hall symbol of origin choice 1, files with a
// number only: every atom lands on its site of the setting, with its site factor.
TEST(CifImportSettings, AtomsLandOnTheSitesOfTheSetting) {
  const std::vector<ExpectedSite> sites = ExpectedSites();
  ASSERT_EQ(sites.size(), 15u);
  for (const ExpectedSite& site : sites) {
    SCOPED_TRACE(site.file + " " + site.label);
    RecordingReporter reporter;
    const CifPhase phase = ImportCif(Data(("settings/" + site.file).c_str()), reporter);
    ASSERT_EQ(phase.status, CifImportStatus::kOk);
    SpaceGroupInfo group;
    ASSERT_EQ(ParseSpaceGroupSymbol(phase.spaceGroup, group), SymbolStatus::kOk);
    ASSERT_EQ(ExpandOperators(group), ExpandStatus::kOk);
    const SpaceGroupSetting* setting = SettingOfOperators(group.operators);
    ASSERT_NE(setting, nullptr) << phase.spaceGroup;
    EXPECT_EQ(setting->printed, site.setting);
    const CifAtom* atom = AtomOf(phase, site.label);
    ASSERT_NE(atom, nullptr);
    const std::array<float, 3> xyz{atom->values[0], atom->values[1], atom->values[2]};
    EXPECT_TRUE(SameSite(group, xyz, site.xyz))
        << xyz[0] << " " << xyz[1] << " " << xyz[2] << " for " << site.xyz[0];
    EXPECT_EQ(atom->siteFactor * site.multiplicity, static_cast<int>(group.operators.size()));
    for (float c : xyz) {
      EXPECT_GE(c, 0.0f);
      EXPECT_LT(c, 1.0f);
    }
  }
}

TEST(CifImportSettings, MessagesTellWhatStoodInForTheSymbolAndTheMove) {
  RecordingReporter reporter;
  ImportCif(Data("settings/spinel_operators.cif"), reporter);
  EXPECT_TRUE(Has(reporter.log,
                  "spinel_operators.cif:9: origin choice 1 (F d -3 m:1), "
                  "coordinates moved by -0.1250 -0.1250 -0.1250"));
  reporter.Clear();
  const std::string number = Data("settings/spinel_number.cif");
  ImportCif(number, reporter);
  EXPECT_EQ(Lines(reporter.log.begin(), reporter.log.begin() + 3),
            (Lines{"Spacegroup symbol not found", number + ": no space group symbol",
                   number + ":2: _space_group_IT_number read as F d -3 m:2"}));
  reporter.Clear();
  const CifPhase monoclinic = ImportCif(Data("settings/monoclinic_number.cif"), reporter);
  EXPECT_EQ(monoclinic.spaceGroup, "P 1 21/N 1");
  EXPECT_TRUE(Has(reporter.log,
                  "monoclinic_number.cif:9: the symmetry operators are those of "
                  "P 1 21/n 1, which is used"));

  // Operators of the symbol's origin choice 2 win over a ":1"; operators of another group
  // leave the symbol as it is; an operator that does not read leaves the operators aside.
  const std::string head =
      "_symmetry_space_group_name_H-M 'P n -3 :1'\nloop_\n_symmetry_equiv_pos_as_xyz\n";
  const std::string atoms = "\nloop_\n_atom_site_label\n_atom_site_fract_x\nC1 0.1\n";
  std::string centric;
  SpaceGroupInfo pn3;
  ASSERT_EQ(ParseSpaceGroupSymbol("P N 3", pn3), SymbolStatus::kOk);
  ASSERT_EQ(ExpandOperators(pn3), ExpandStatus::kOk);
  for (const SymmetryOperator& op : pn3.operators) centric += OperatorText(op) + "\n";
  reporter.Clear();
  CifPhase phase = ImportCifText("two.cif", head + centric + atoms, reporter);
  EXPECT_EQ(phase.spaceGroup, "P N -3");
  EXPECT_FLOAT_EQ(phase.atoms.at(0).values[0], 0.1f);
  EXPECT_FALSE(Has(reporter.log, "origin choice 1"));
  reporter.Clear();
  phase = ImportCifText("other.cif", head + "x,y,z\n-x,-y,-z\n" + atoms, reporter);
  EXPECT_EQ(phase.spaceGroup, "P N -3");
  EXPECT_TRUE(Has(reporter.log,
                  "other.cif:2: the symmetry operators are not those of P N -3, "
                  "the symbol's are used"));
  // The symbol's ":1" stands: P n -3 in origin choice 1 moves by 1/4 along each axis.
  EXPECT_FLOAT_EQ(phase.atoms.at(0).values[0], 0.35f);
  reporter.Clear();
  phase = ImportCifText("bad.cif", head + "x,y,z\nq,r,s\n" + atoms, reporter);
  EXPECT_TRUE(Has(reporter.log, "bad.cif:5: symmetry operator 'q,r,s' is not read"));
  EXPECT_FLOAT_EQ(phase.atoms.at(0).values[0], 0.35f);
}

// Many files list the operators of one lattice point only: origin choice 1 is told all the
// same.
TEST(CifImportSettings, OperatorsOfOneLatticePointTellTheOriginToo) {
  SpaceGroupInfo group;
  ASSERT_EQ(ParseSpaceGroupSymbol("F D 3 M", group), SymbolStatus::kOk);
  ASSERT_EQ(ExpandOperators(group), ExpandStatus::kOk);
  const SpaceGroupSetting* first = OriginChoiceOne(*SettingOfOperators(group.operators));
  ASSERT_NE(first, nullptr);
  std::string text =
      "_symmetry_space_group_name_H-M 'F d -3 m'\nloop_\n"
      "_symmetry_equiv_pos_as_xyz\n";
  std::vector<std::string> rotations;
  for (const SymmetryOperator& op : InOriginChoiceOne(group.operators, *first)) {
    const std::string rotation =
        OperatorText({op[0], op[1], op[2], 0, op[4], op[5], op[6], 0, op[8], op[9], op[10], 0});
    if (std::find(rotations.begin(), rotations.end(), rotation) != rotations.end()) continue;
    rotations.push_back(rotation);
    text += OperatorText(op) + "\n";
  }
  ASSERT_EQ(rotations.size(), 48u);
  text += "\nloop_\n_atom_site_label\n_atom_site_fract_x\nCe1 0\n";
  RecordingReporter reporter;
  const CifPhase phase = ImportCifText("lattice.cif", text, reporter);
  EXPECT_TRUE(Has(reporter.log, "lattice.cif:2: origin choice 1 (F d -3 m:1)"));
  EXPECT_FLOAT_EQ(phase.atoms.at(0).values[0], 0.875f);
  EXPECT_FALSE(Has(reporter.log, "not those of"));
}

// --- Records and a run ----------------------------------------------------------------------

TEST(CifImport, RecordsOfThePhaseInTheirLayouts) {
  RecordingReporter reporter;
  const CifPhase phase = ImportCif(Data("messy.cif"), reporter);
  ASSERT_EQ(phase.status, CifImportStatus::kOk);
  const std::vector<Record> records = CifPhaseRecords(phase, "Rutile", 3);
  Lines keys;
  for (const Record& r : records) keys.push_back(r.substr(0, 4));
  EXPECT_EQ(keys, (Lines{"PHTI", "PHNA", "SPGR", "CELL", "SDCE", "XYZ ", "SDXY", "XYZ ", "SDXY",
                         "BETA", "SDBE", "BETA", "SDBE"}));
  auto text = [&](int i) { return std::string(Trimmed(records[i])); };
  EXPECT_EQ(text(0), "PHTI      Rutile");
  EXPECT_EQ(text(1), "PHNA          2  0.0  0.0  1.0  0.0  0.0  1.0  0.0  1.0  0.0");
  EXPECT_EQ(text(2), "SPGR      P 42/M N M");
  EXPECT_EQ(text(4), "SDCE         0.00020   0.00020   0.00010   0.00000   0.00000   0.00000");
  // Types behind the project's two earlier ones; the site factor closes the line.
  EXPECT_EQ(text(5), "XYZ       Ti1      3   0.00000   0.00000   0.00000   1.00000   0.41847  8");
  EXPECT_EQ(text(7), "XYZ       O1       4   0.30478   0.30478   0.00000   1.00000   0.56059  4");
  EXPECT_EQ(text(8), "SDXY      O1           0.00006   0.00006   0.00000   0.00000   0.02369");
  const std::vector<Record> types = CifAtomTypeRecords(phase);
  ASSERT_EQ(types.size(), 2u);
  EXPECT_EQ(types[0].substr(0, 12), "ANOM      Ti");
  EXPECT_EQ(types[1].substr(0, 12), "ANOM      O ");
}

// A project of the phase that the engine calculates: the phase's records with its atom types,
// and the few controls a calculation needs (those that a new project's dialogs write).
std::string CalculationProject(const CifPhase& phase) {
  std::string text = "TITL      UNTITLED\n";
  auto add = [&](const Record& r) { text += std::string(Trimmed(r)) + "\n"; };
  add(MakeRecord("JOBT", "(8i5)", 2, 4, 1, -1, 0, static_cast<int>(phase.elements.size()), 0, 1));
  add(MakeRecord("ELAM", "(3f10.6)", 1.54051f, 1.54433f, 0.5f));
  add(MakeRecord("RLIM", "(8f10.5)", 10.0f, 0.9f, 0.0f, 40.0f, 0.0f, 0.0f, 0.0f, 0.0f));
  add(MakeRecord("RELX", "(i5,5f5.2,3f10.5)", 6, 0.3f, 1.0f, 1.0f, 1.0f, 1.0f, 10.0f, 0.02f,
                 90.0f));
  add(MakeRecord("POLY", "(5e14.6)", 0.0f, 0.0f, 0.0f, 0.0f, 0.0f));
  add(MakeRecord("BKGR", "(5f10.1)", 10.0f, 0.0f, 0.0f, 0.0f, 0.0f));
  for (const Record& r : CifAtomTypeRecords(phase)) add(r);
  for (const Record& r : CifPhaseRecords(phase, "Phase no. 1")) add(r);
  add(MakeRecord("SCAL", "(e12.4,f10.3)", 0.01f, 0.0f));
  add(MakeRecord("ASYM", "(3f10.5)", 1.0f, 0.0f, 1.0f));
  add(MakeRecord("HWTH", "(6f10.5)", 0.0f, 0.0f, 0.02f, 0.0f, 0.0f, 0.02f));
  add(MakeRecord("PKSH", "(6f10.5)", 0.5f, 0.0f, 0.0f, 0.5f, 0.0f, 0.0f));
  return text;
}

// Runs the engine on the project in a scratch directory; the status and the list file.
int RunCalculation(const CifPhase& phase, std::string& list) {
  ScratchDir dir;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  dir.Write("fromcif.rec", CalculationProject(phase));
  RecordingReporter reporter;
  const EngineResult result = RunEngine({"fromcif.rec", false, nullptr}, reporter);
  for (const auto& entry : fs::directory_iterator(dir.Path())) {
    if (entry.path().extension() == ".out") list = ReadBytes(entry.path());
  }
  fs::current_path(old);
  return result.status;
}

TEST(CifImport, ImportedPhasesRunAsACalculation) {
  for (const char* name : {"classic.cif", "messy.cif"}) {
    SCOPED_TRACE(name);
    RecordingReporter reporter;
    const CifPhase phase = ImportCif(Data(name), reporter);
    ASSERT_EQ(phase.status, CifImportStatus::kOk);
    std::string list;
    EXPECT_EQ(RunCalculation(phase, list), 0) << list;
  }
  // The bare file still gives a project: P 1, the default cell and no atom would leave
  // nothing to calculate, so one atom line stands in the CIF.
  RecordingReporter reporter;
  const CifPhase bare =
      ImportCifText("bare.cif", "loop_\n_atom_site_label\n_atom_site_fract_x\nC1 0.1\n", reporter);
  std::string list;
  EXPECT_EQ(RunCalculation(bare, list), 0) << list;
}

// --- Real files -----------------------------------------------------------------------------

TEST(CifImportRealFiles, PbSO4FromTheRoundRobin) {
  const fs::path file = SharedData("validation/pbso4-cpd-rietveld-round-robin/PbSO4-Wyckoff.cif");
  if (file.empty() || !fs::exists(file)) GTEST_SKIP() << "shared validation data absent";
  RecordingReporter reporter;
  const CifPhase phase = ImportCif(file.string(), reporter);
  ASSERT_EQ(phase.status, CifImportStatus::kOk);
  EXPECT_EQ(phase.spaceGroup, "P N M A");
  EXPECT_FLOAT_EQ(phase.cell[1], 5.398f);
  ASSERT_EQ(phase.atoms.size(), 5u);
  EXPECT_EQ(phase.atoms[2].label, "O1");
  EXPECT_FLOAT_EQ(phase.atoms[2].values[0], -0.095f);
  EXPECT_NEAR(phase.atoms[0].values[4], 0.78956711, 1e-5);
  // Multiplicity 4 of 8 on the mirror at y = 1/4, 8 for O3: the file's own column.
  for (const CifAtom& atom : phase.atoms) {
    EXPECT_EQ(atom.siteFactor, atom.label == "O3" ? 1 : 2) << atom.label;
  }
  EXPECT_EQ(phase.elements, (Lines{"Pb", "S ", "O "}));
  std::string list;
  EXPECT_EQ(RunCalculation(phase, list), 0) << list;
}

TEST(CifImportRealFiles, CodFilesOfTheQuantitativeRoundRobin) {
  const fs::path dir = SharedData("validation/iucr-cpd-qpa-round-robin");
  if (dir.empty() || !fs::exists(dir / "Al2O3.cif")) {
    GTEST_SKIP() << "shared validation data absent";
  }
  RecordingReporter reporter;
  const CifPhase corundum = ImportCif((dir / "Al2O3.cif").string(), reporter);
  ASSERT_EQ(corundum.status, CifImportStatus::kOk);
  EXPECT_EQ(corundum.spaceGroup.substr(0, 6), "R -3 C");
  ASSERT_EQ(corundum.atoms.size(), 2u);
  EXPECT_EQ(corundum.elements, (Lines{"Al", "O "}));
  // Al on 12c and O on 18e of 36 operators.
  EXPECT_EQ(corundum.atoms[0].siteFactor, 3);
  EXPECT_EQ(corundum.atoms[1].siteFactor, 2);
  EXPECT_FLOAT_EQ(corundum.atoms[0].values[2], 0.35216f);
  EXPECT_FLOAT_EQ(corundum.atoms[0].valueSd[2], 0.00003f);
  // The aniso loop stands before the atom loop and still matches; B stays at its default,
  // as the file has no isotropic value.
  EXPECT_TRUE(corundum.atoms[0].anisotropic);
  EXPECT_GT(corundum.atoms[0].beta[0], 0.0f);
  EXPECT_FLOAT_EQ(corundum.atoms[0].values[4], 3.0f);
  std::string list;
  EXPECT_EQ(RunCalculation(corundum, list), 0) << list;

  for (const char* name : {"CaF2.cif", "ZnO.cif"}) {
    SCOPED_TRACE(name);
    reporter.Clear();
    const CifPhase phase = ImportCif((dir / name).string(), reporter);
    ASSERT_EQ(phase.status, CifImportStatus::kOk);
    EXPECT_FALSE(phase.atoms.empty());
    EXPECT_NE(phase.spaceGroup, "P 1");
    EXPECT_FALSE(Has(reporter.log, "not found") && Has(reporter.log, "Unit cell"));
    EXPECT_EQ(RunCalculation(phase, list), 0) << list;
  }
}

}  // namespace
}  // namespace kaldena
