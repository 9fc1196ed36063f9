// The phase dialog on a small spinel parameter file of its own, and on the refined example.
#include "shell/phase_dialog.h"

#include <gtest/gtest.h>

#include "shell/menu_session.h"
#include "shell/phase_checks.h"
#include "shell/shell_fixture.h"
#include "util/text.h"

namespace kaldena {
namespace {

constexpr std::string_view kSpinel =
    "JOBT          0    4    1   -1    0    2    0    1\n"
    "PHTI      Spinel\n"
    "PHNA          2  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
    "PHMW          8    142.27\n"
    "SPGR      F D 3 M\n"
    "SCAL       0.1000E-02     0.000\n"
    "CSCA          11.000     0.000\n"
    "CELL         8.08000   8.08000   8.08000  90.00000  90.00000  90.00000\n"
    "HWTH         0.00000   0.00000   0.03000\n"
    "PKSH         0.50000   0.00000   0.00000\n"
    "XYZ       Mg     1  0.12500  0.12500  0.12500  1.00000  0.50000 12  0  0  0\n"
    "XYZ       O      2  0.26000  0.26000  0.26000  1.00000  0.80000  6  2  2  0\n"
    "CXYZ Mg         0.000     0.000     0.000     0.000     0.000\n"
    "CXYZ O         21.000    21.000    21.000     0.000     0.000\n"
    "LIMP        5      0.01\n";

struct PhaseFixture : testing::ShellFixture {
  PhaseFixture() {
    dir.Write("p.par", std::string(kSpinel));
    state.projectFileName = "p.rec";
    state.projectDir = dir.Path().string() + "/";
    state.parameterFileName = "p.par";
    state.currentPhase = 1;
  }
  // The file's lines without trailing blanks.
  std::string Text() const {
    std::string text;
    for (const std::string& line : testing::TextLines(Read("p.par"))) text += line + "\n";
    return text;
  }
  bool BoxShown(std::string_view title, std::string_view part) const {
    for (const auto& box : toolkit.Boxes()) {
      if (box.title == title && box.text.find(part) != std::string::npos) return true;
    }
    return false;
  }
};

TEST(PhaseDialog, CancelKeepsTheFileAndOkWritesThePhaseBlock) {
  PhaseFixture f;
  f.toolkit.QueueDialog({kPhaseDialog, {{kPhaseValueFirst + 5, "8.1"}}, {kIdCancel}});
  EditPhaseDialog(f.state, f.toolkit);
  EXPECT_EQ(f.Read("p.par"), kSpinel);
  // Shown: the values, the codes' boxes, the volume and density, the atoms by name.
  EXPECT_EQ(f.toolkit.DialogField(kPhaseDialog, kPhaseVolume), "    527.51");
  EXPECT_EQ(f.toolkit.DialogField(kPhaseDialog, kPhaseDensity), "    3.5828");
  EXPECT_EQ(f.toolkit.DialogField(kPhaseDialog, kPhaseRefineFirst), "1");
  EXPECT_EQ(f.toolkit.DialogField(kPhaseDialog, kPhaseRefineFirst + 1), "0");

  // OK with a new cell edge and the overall B switched on: a new group behind groups 1 and 2.
  f.toolkit.QueueDialog(
      {kPhaseDialog, {{kPhaseValueFirst + 5, "8.1"}, {kPhaseRefineFirst + 1, "1"}}, {kIdOk}});
  EditPhaseDialog(f.state, f.toolkit);
  EXPECT_EQ(f.Text(),
            "JOBT          0    4    1   -1    0    2    0    1\n"
            "PHTI      Spinel\n"
            "PHNA          2  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
            "PHMW          8    142.27    528.82      3.57\n"
            "SPGR      F D 3 M\n"
            "SCAL        0.1000E-02     0.000\n"
            "CSCA          11.000    31.000\n"
            "CELL         8.10000   8.08000   8.08000  90.00000  90.00000  90.00000\n"
            "HWTH         0.00000   0.00000   0.03000   0.00000   0.00000   0.00000\n"
            "PKSH         0.50000   0.00000   0.00000   0.00000   0.00000   0.00000\n"
            "XYZ       Mg       1  0.12500  0.12500  0.12500  1.00000  0.50000 12  0  0  0\n"
            "XYZ       O        2  0.26000  0.26000  0.26000  1.00000  0.80000  6  2  2  0\n"
            "CXYZ Mg        0.000     0.000     0.000     0.000     0.000\n"
            "CXYZ O        21.000    21.000    21.000     0.000     0.000\n"
            "LIMP        5      0.01\n"
            "CCEL           0.000     0.000     0.000     0.000     0.000     0.000\n"
            "CASY           0.000     0.000     0.000\n"
            "CHWT           0.000     0.000     0.000     0.000     0.000     0.000\n"
            "CSTS           0.000     0.000\n"
            "CPKS           0.000     0.000     0.000     0.000     0.000     0.000\n"
            "ASYM         0.00000   0.00000   0.00000\n"
            "STSZ         0.00000   0.00000\n");
}

TEST(PhaseDialog, ABadValueInAFieldInAGridRowOrTheSymbolGivesItsBoxAndWritesNothing) {
  PhaseFixture f;
  const auto refused = [&](testing::CheckedToolkit::DialogAnswer answer, std::string_view part) {
    f.toolkit.ClearRecords();
    answer.dialog = kPhaseDialog;
    answer.buttons = {kIdOk, kIdCancel};
    f.toolkit.QueueDialog(answer);
    EditPhaseDialog(f.state, f.toolkit);
    EXPECT_EQ(f.Read("p.par"), kSpinel) << part;
    EXPECT_TRUE(f.BoxShown("Error ", part)) << part;
  };
  refused({0, {{kPhaseValueFirst + 5, "123456789"}}}, "does not fit");
  refused({0, {}, {}, {{{kPhaseAtomGrid, 3, 2}, "12345"}}}, "row 2");
  refused({0, {{kPhaseSpaceGroup, "Q 9"}}}, "Spacegroup");
}

TEST(PhaseDialog, ChangeOfOriginMovesEveryAtomByTheShift) {
  PhaseFixture f;
  // Cancel after the shift: the file stays.
  f.toolkit.QueueDialog({kPhaseDialog, {}, {kPhaseOriginButton, kIdCancel}});
  f.toolkit.QueueDialog({kChangeOriginDialog, {{kOriginShiftFirst, "0.125"}}});
  EditPhaseDialog(f.state, f.toolkit);
  EXPECT_EQ(f.Read("p.par"), kSpinel);

  f.toolkit.QueueDialog({kPhaseDialog, {}, {kPhaseOriginButton, kIdOk}});
  f.toolkit.QueueDialog({kChangeOriginDialog,
                         {{kOriginShiftFirst, "0.125"},
                          {kOriginShiftFirst + 1, "0.125"},
                          {kOriginShiftFirst + 2, "-0.125"}}});
  EditPhaseDialog(f.state, f.toolkit);
  const std::string text = f.Text();
  EXPECT_NE(text.find("XYZ       Mg       1  0.25000  0.25000  0.00000"), std::string::npos)
      << text;
  EXPECT_NE(text.find("XYZ       O        2  0.38500  0.38500  0.13500"), std::string::npos)
      << text;
}

TEST(PhaseDialog, ANewAtomTakesItsTypeSiteFactorAndCodesFromItsSite) {
  PhaseFixture f;
  f.dir.Write("p.par", std::string(kSpinel) + "ANOM      Mg           0.16500   0.17700\n" +
                           "ANOM      O            0.04920   0.03220\n");
  const std::string before = f.Read("p.par");
  // An element without a type line is refused and the dialog stays.
  f.toolkit.QueueDialog({kPhaseDialog, {}, {kPhaseAddAtomButton, kIdCancel}});
  f.toolkit.QueueDialog({kAddAtomDialog, {{kAddAtomElement, "Fe"}}, {kIdOk, kIdCancel}});
  EditPhaseDialog(f.state, f.toolkit);
  EXPECT_TRUE(f.BoxShown("Error ", "Element: Fe has no atom type line"));
  EXPECT_EQ(f.Read("p.par"), before);

  f.toolkit.QueueDialog({kPhaseDialog, {}, {kPhaseAddAtomButton, kIdOk}});
  f.toolkit.QueueDialog({kAddAtomDialog,
                         {{kAddAtomElement, "O"},
                          {kAddAtomValueFirst, "0.3"},
                          {kAddAtomValueFirst + 1, "0.3"},
                          {kAddAtomValueFirst + 2, "0.3"}}});
  EditPhaseDialog(f.state, f.toolkit);
  const std::string text = f.Text();
  EXPECT_NE(text.find("PHNA          3"), std::string::npos) << text;
  // x, x, x of F d -3 m: 32e, site 3m of six operators; y and z follow x.
  EXPECT_NE(
      text.find("XYZ       O3       2  0.30000  0.30000  0.30000  1.00000  1.00000  6  2  2  2"),
      std::string::npos)
      << text;
  EXPECT_NE(text.find("CXYZ O3        1.000     0.000     0.000     0.000     0.000"),
            std::string::npos)
      << text;
}

TEST(PhaseDialog, DeletedAtomsLeaveTheirLinesAndTheOthersKeepTheirEdits) {
  PhaseFixture f;
  f.toolkit.QueueDialog(
      {kPhaseDialog, {}, {kPhaseDeleteAtomsButton, kIdOk}, {{{kPhaseAtomGrid, 3, 2}, "0.27"}}});
  f.toolkit.QueueDialog({kDeleteAtomsDialog, {}, {kIdOk}, {{{kDeleteAtomsGrid, 1, 1}, "1"}}});
  EditPhaseDialog(f.state, f.toolkit);
  const std::string text = f.Text();
  EXPECT_NE(text.find("PHNA          1"), std::string::npos) << text;
  EXPECT_EQ(text.find("XYZ       Mg"), std::string::npos) << text;
  EXPECT_EQ(text.find("CXYZ Mg"), std::string::npos) << text;
  EXPECT_NE(text.find("XYZ       O        2  0.27000  0.26000"), std::string::npos) << text;
}

TEST(PhaseDialog, OneAtomEditedWithItsCodesNumberedBeforeThePhases) {
  PhaseFixture f;
  f.toolkit.QueueDialog({kPhaseDialog,
                         {{kPhaseAtomNumber, "2"}, {kPhaseRefineFirst + 1, "1"}},
                         {kPhaseEditAtomButton, kIdOk}});
  f.toolkit.QueueDialog(
      {kAtomDialog, {{kAtomValueFirst, "0.265"}, {kAtomRefineFirst + 4, "1"}}, {kIdOk}});
  EditPhaseDialog(f.state, f.toolkit);
  const std::string text = f.Text();
  EXPECT_NE(
      text.find("XYZ       O        2  0.26500  0.26000  0.26000  1.00000  0.80000  6  2  2  0"),
      std::string::npos)
      << text;
  EXPECT_NE(text.find("CXYZ O        21.000    21.000    21.000     0.000    31.000"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("CSCA          11.000    41.000"), std::string::npos) << text;
}

TEST(PhaseDialog, AtomsMoveToTheEndOrAreCopiedToAnotherPhase) {
  PhaseFixture f;
  // Mg moved behind O within the phase.
  f.toolkit.QueueDialog({kPhaseDialog, {}, {kPhaseMoveAtomsButton, kIdOk}});
  f.toolkit.QueueDialog({kMoveAtomsDialog, {}, {kIdOk}, {{{kMoveAtomsGrid, 1, 1}, "1"}}});
  EditPhaseDialog(f.state, f.toolkit);
  std::string text = f.Text();
  EXPECT_LT(text.find("XYZ       O "), text.find("XYZ       Mg"));
  EXPECT_LT(text.find("CXYZ O "), text.find("CXYZ Mg"));

  // O copied to a second phase: it stays here and stands behind that phase's atom.
  std::string two(kSpinel);
  two.replace(0, two.find('\n'), "JOBT          0    4    2   -1    0    2    0    1");
  f.dir.Write("p.par", two +
                           "PHTI      Second\nPHNA          1\n"
                           "SPGR      P 1\nXYZ       H        1  0.1\n"
                           "CXYZ H\n");
  f.toolkit.QueueDialog({kPhaseDialog, {}, {kPhaseMoveAtomsButton, kIdOk}});
  f.toolkit.QueueDialog({kMoveAtomsDialog,
                         {{kCopyAtoms, "1"}, {kMoveAtomsTarget, "2"}},
                         {kIdOk},
                         {{{kMoveAtomsGrid, 1, 2}, "1"}}});
  EditPhaseDialog(f.state, f.toolkit);
  text = f.Text();
  EXPECT_NE(text.find("PHNA          2"), std::string::npos) << text;
  const size_t first = text.find("XYZ       O ");
  const size_t second = text.find("XYZ       O ", first + 1);
  EXPECT_LT(text.find("XYZ       H "), second) << text;
  EXPECT_NE(second, std::string::npos) << text;
}

TEST(PhaseDialog, MoreThanTwoHundredAtomsKeepTheRest) {
  PhaseFixture f;
  std::string par = "PHNA        201\nSPGR      P 1\nCELL        10.0 10.0 10.0 90.0 90.0 90.0\n";
  for (int i = 1; i <= 201; ++i) {
    par += Format("('XYZ       ',a4,3x,i3,5f9.5,4i3)", "C" + std::to_string(i), 1, 0.001f * i, 0.0f,
                  0.0f, 1.0f, 1.0f, 1, 0, 0, 0);
  }
  f.dir.Write("p.par", par);
  f.toolkit.QueueDialog({kPhaseDialog, {}, {kIdOk}});
  EditPhaseDialog(f.state, f.toolkit);
  EXPECT_TRUE(f.BoxShown("Atoms", "first 200"));
  EXPECT_NE(f.Text().find("XYZ       C201     1  0.20100"), std::string::npos);
}

TEST(PhaseDialog, OkWithoutAChangeKeepsEveryValueOfTheRefinedExample) {
  testing::Session s;
  const std::string par = (s.dir.Path() / "corundum.par").string();
  const PhaseRecords before = testing::ReadPhases(par).phases.at(0);
  s.toolkit.QueueDialog({kPhaseDialog, {}, {kIdOk}});
  DispatchMenu(s.shell, menu::kEditPhase1);
  const PhaseRecords after = testing::ReadPhases(par).phases.at(0);
  testing::ExpectSamePhase(after, before);
  EXPECT_EQ(after.vectors, before.vectors);
  EXPECT_EQ(after.cellCodes, before.cellCodes);
  EXPECT_EQ(after.scaleCodes, before.scaleCodes);
  for (size_t i = 0; i < after.atoms.size() && i < before.atoms.size(); ++i) {
    EXPECT_EQ(after.atoms[i].coupling, before.atoms[i].coupling);
    EXPECT_EQ(after.atoms[i].codes, before.atoms[i].codes);
  }
}

}  // namespace
}  // namespace kaldena
