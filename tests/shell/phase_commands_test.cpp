// Phase add and delete from the menus, on the refined corundum example.
#include "shell/phase_commands.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "shell/menu_session.h"
#include "shell/phase_checks.h"
#include "shell/phase_dialog.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ExpectSamePhase;
using testing::Session;

// The lines of a key in the parameter file, trailing blanks cut.
std::vector<std::string> Lines(const Session& s, std::string_view key) {
  std::vector<std::string> lines;
  for (std::string& line : testing::TextLines(s.Read("corundum.par"))) {
    if (line.starts_with(key)) lines.push_back(line);
  }
  return lines;
}

ProjectPhases Phases(const Session& s) {
  return testing::ReadPhases((s.dir.Path() / "corundum.par").string());
}

void AddFrom(Session& s, int source, const std::string& file = "") {
  s.toolkit.QueueDialog({kAddPhaseDialog, {{source, "1"}, {kAddPhaseFile, file}}, {kIdOk}});
  DispatchMenu(s.shell, menu::kAddPhase);
}

TEST(PhaseCommands, CancelChangesNothingAndDefaultsMakeASecondPhase) {
  Session s;
  const std::string par = s.Read("corundum.par");
  s.toolkit.QueueDialog({kAddPhaseDialog, {{kAddPhaseDefaults, "1"}}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kAddPhase);
  EXPECT_EQ(s.Read("corundum.par"), par);
  const PhaseRecords corundum = Phases(s).phases.at(0);

  AddFrom(s, kAddPhaseDefaults);
  EXPECT_EQ(Lines(s, "JOBT"),
            std::vector<std::string>{"JOBT          0    4    2   -1    0    2    0    1"});
  EXPECT_EQ(Lines(s, "PHTI"),
            (std::vector<std::string>{"PHTI      Corundum", "PHTI      Default phase"}));
  EXPECT_EQ(Lines(s, "PHNA").at(1), "PHNA          1  0.0  0.0  1.0  0.0  0.0  1.0  0.0  1.0  0.0");
  EXPECT_EQ(Lines(s, "SPGR").at(1), "SPGR      P 1");
  EXPECT_EQ(Lines(s, "SCAL").at(1), "SCAL        0.1000E-01     0.000");
  EXPECT_EQ(Lines(s, "CELL").at(1),
            "CELL        10.00000  10.00000  10.00000  90.00000  90.00000  90.00000");
  EXPECT_EQ(Lines(s, "ASYM").at(1), "ASYM         1.00000   0.00000   1.00000");
  EXPECT_EQ(Lines(s, "HWTH").at(1),
            "HWTH         0.00000   0.00000   0.02000   0.00000   0.00000   0.00000");
  EXPECT_EQ(Lines(s, "PKSH").at(1),
            "PKSH         0.50000   0.00000   0.00000   0.00000   0.00000   0.00000");
  EXPECT_EQ(Lines(s, "XYZ ").at(2),
            "XYZ       H        1  0.00000  0.00000  0.00000  1.00000  1.00000  1");
  EXPECT_EQ(Lines(s, "CXYZ").at(2), "CXYZ H         0.000     0.000     0.000     0.000     0.000");
  EXPECT_EQ(s.state.job.Phases(), 2);
  // The first phase keeps its values and codewords; the project took the change.
  const ProjectPhases after = Phases(s);
  ExpectSamePhase(after.phases.at(0), corundum);
  EXPECT_EQ(after.phases.at(0).cellCodes, corundum.cellCodes);
  EXPECT_EQ(s.Read("corundum.rec"), s.Read("corundum.par"));
  EXPECT_EQ(s.state.addPhaseSource, 1);
  // The phase dialog follows for the new phase.
  EXPECT_EQ(s.toolkit.DialogsShown().back(), kPhaseDialog);
  EXPECT_EQ(s.state.currentPhase, 2);
}

TEST(PhaseCommands, AddFromAProjectTakesItsFirstPhaseWithoutCodewords) {
  Session s;
  s.dir.Write("other.rec", s.Read("corundum.par"));
  const PhaseRecords corundum = Phases(s).phases.at(0);
  AddFrom(s, kAddPhaseProject, "other.rec");
  const ProjectPhases after = Phases(s);
  ASSERT_EQ(after.phases.size(), 2u);
  ExpectSamePhase(after.phases.at(1), corundum);
  EXPECT_EQ(after.phases.at(1).cellCodes, (std::array<float, 6>{}));
  EXPECT_EQ(Lines(s, "CCEL").at(1),
            "CCEL           0.000     0.000     0.000     0.000     0.000     0.000");

  // A file that does not open ends the command with its line and nothing written.
  const std::string par = s.Read("corundum.par");
  AddFrom(s, kAddPhaseProject, "missing.rec");
  EXPECT_TRUE(s.Logged(" Error opening rec-file missing.rec"));
  EXPECT_EQ(s.Read("corundum.par"), par);
}

TEST(PhaseCommands, AddFromACifAppendsItsNewAtomTypes) {
  const fs::path cif = "/work/shared/validation/iucr-cpd-qpa-round-robin/ZnO.cif";
  if (!fs::exists(cif)) GTEST_SKIP() << "no validation data at " << cif;
  Session s;
  AddFrom(s, kAddPhaseCif, cif.string());
  const ProjectPhases after = Phases(s);
  ASSERT_EQ(after.phases.size(), 2u);
  const PhaseRecords& zno = after.phases.at(1);
  EXPECT_EQ(zno.title, "CIF phase");
  EXPECT_EQ(zno.spaceGroup, "P 63 M C");
  EXPECT_NEAR(zno.cell[0], 3.25, 0.01);
  ASSERT_EQ(zno.atoms.size(), 2u);
  // Zn is new and takes type 3 behind Al and O; O keeps its line.
  EXPECT_EQ(Lines(s, "ANOM").size(), 3u);
  EXPECT_TRUE(Lines(s, "ANOM").at(2).starts_with("ANOM      Zn"));
  EXPECT_EQ(Lines(s, "JOBT").at(0), "JOBT          0    4    2   -1    0    3    0    1");
  for (const PhaseAtom& atom : zno.atoms) {
    EXPECT_EQ(atom.type, atom.label.starts_with("Zn") ? 3 : 2) << atom.label;
    EXPECT_EQ(atom.siteFactor, 6) << atom.label;  // 3m sites of P 63 m c
  }
  // Every atom has its BETA line, so that the lines pair with the atoms.
  EXPECT_EQ(Lines(s, "BETA").size(), 4u);
}

TEST(PhaseCommands, DeletingPhaseOneRenumbersPhaseTwoAndDropsSixVectorValues) {
  Session s;
  AddFrom(s, kAddPhaseDefaults);
  DispatchMenu(s.shell, menu::kDeletePhase1);
  EXPECT_TRUE(s.Logged("Phase no.  1 has been deleted"));
  EXPECT_EQ(s.state.job.Phases(), 1);
  EXPECT_EQ(Lines(s, "PHTI"), std::vector<std::string>{"PHTI      Default phase"});
  EXPECT_EQ(Lines(s, "PHNA"), std::vector<std::string>{"PHNA          1  0.0  0.0  1.0"});
  EXPECT_EQ(Lines(s, "XYZ "),
            std::vector<std::string>{
                "XYZ       H        1  0.00000  0.00000  0.00000  1.00000  1.00000  1"});
  EXPECT_EQ(Lines(s, "CXYZ").size(), 1u);
  EXPECT_EQ(Lines(s, "JOBT").at(0), "JOBT          0    4    1   -1    0    2    0    1");
}

TEST(PhaseCommands, EachAddAndDeleteIsOneUndoStep) {
  Session s;
  const std::string one = s.Read("corundum.par");
  AddFrom(s, kAddPhaseDefaults);
  const std::string two = s.Read("corundum.par");
  DispatchMenu(s.shell, menu::kDeletePhase1);
  DispatchMenu(s.shell, menu::kUndo);
  EXPECT_EQ(s.Read("corundum.par"), two);
  DispatchMenu(s.shell, menu::kUndo);
  EXPECT_EQ(s.Read("corundum.par"), one);
}

TEST(PhaseCommands, AddStopsAtTenPhases) {
  Session s;
  for (int phase = 2; phase <= 10; ++phase) AddFrom(s, kAddPhaseDefaults);
  ASSERT_EQ(Lines(s, "PHTI").size(), 10u);
  const std::string par = s.Read("corundum.par");
  AddFrom(s, kAddPhaseDefaults);
  EXPECT_TRUE(s.Logged("No phase added: the project holds 10 phases already"));
  EXPECT_EQ(s.Read("corundum.par"), par);
}

}  // namespace
}  // namespace kaldena
