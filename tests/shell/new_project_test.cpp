// New projects: from defaults they run at once as a calculation; on an existing file they
// add a phase behind what is there; the CIF route says that it is missing.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "engine/run_engine.h"
#include "shell/default_project.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_fixture.h"
#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "util/text.h"

namespace kaldena {
namespace {

using testing::ShellFixture;
using Lines = std::vector<std::string>;

class NewProjectTest : public ::testing::Test, public ShellFixture {
 protected:
  // The lines of a key as the record store gives them.
  Lines Records(const std::string& file, const std::string& key) {
    RecordingReporter reporter;
    RecordStore store(reporter);
    EXPECT_GE(store.jReadRecFile(Path(file)), 1);
    Lines lines;
    for (const std::string& data : FindRecords(store, key)) lines.emplace_back(Trimmed(data));
    store.jCloseRec();
    return lines;
  }
  int Count(const std::string& file, const std::string& key) {
    return static_cast<int>(Records(file, key).size());
  }
};

TEST_F(NewProjectTest, FromDefaultsRunsAtOnceAsAPatternCalculation) {
  state.newProjectMode = 1;
  toolkit.QueueSelection(Path("fresh"));
  NewProject(state, toolkit);

  EXPECT_EQ(toolkit.Selections()[0].flags, 11);
  EXPECT_EQ(toolkit.Selections()[0].title, "Create new project file");
  EXPECT_EQ(state.projectFileName, Path("fresh.rec"));
  EXPECT_EQ(Log().back(), "Project updated");
  EXPECT_TRUE(toolkit.Boxes().empty());
  // The project file holds what the working copy holds: title, phase, dialog defaults.
  EXPECT_EQ(Read("fresh.rec"), Read("fresh.par"));
  EXPECT_EQ(Records("fresh.rec", "TITL"), (Lines{"UNTITLED"}));
  EXPECT_EQ(Records("fresh.rec", "PHTI"), (Lines{"Phase no. 1"}));
  EXPECT_EQ(Records("fresh.rec", "SPGR"), (Lines{"P 1"}));
  EXPECT_EQ(Records("fresh.rec", "PWPR"), (Lines{"fresh.par"}));
  EXPECT_EQ(Count("fresh.rec", "ANOM"), 1);
  EXPECT_EQ(Count("fresh.rec", "PWDT"), 0);
  EXPECT_EQ(toolkit.MenuState(menu::kEditProject, kMenuItemEnabled), 1);

  // The engine takes it as it stands.
  RecordingReporter reporter;
  const EngineResult result = RunEngine(EngineRequest{Path("fresh.rec")}, reporter);
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(Exists("fresh.sum"));
  EXPECT_TRUE(Exists("fresh.out"));
  // A calculation leaves the project file alone.
  EXPECT_EQ(Records("fresh.rec", "PHTI"), (Lines{"Phase no. 1"}));

  // And so does the shell's own Run.
  const std::size_t before = Log().size();
  EXPECT_EQ(RunProject(state, toolkit), 0);
  EXPECT_NE(Log().back(), "Refinement interupted");
  EXPECT_GT(Log().size(), before);
  EXPECT_EQ(state.reloadPlotData, 1);
}

TEST_F(NewProjectTest, OnAnExistingFileYesAddsAFurtherPhaseAndNoChangesNothing) {
  ASSERT_TRUE(CreateProjectFromDefaults(state, toolkit, Path("two.rec")));
  // A hand-made change to the first phase and a record no dialog knows must survive.
  {
    std::ofstream out(Path("two.rec"), std::ios::app);
    out << "LIMP          3    0.5\n";
  }
  const std::string before = Read("two.rec");

  toolkit.QueueAnswer(false);
  EXPECT_FALSE(CreateProjectFromDefaults(state, toolkit, Path("two.rec")));
  EXPECT_EQ(Log().back(), "No active project");
  EXPECT_TRUE(state.projectFileName.empty());
  EXPECT_EQ(Read("two.rec"), before);
  EXPECT_EQ(toolkit.Boxes().back().title, "File already exists");
  EXPECT_EQ(toolkit.Boxes().back().text, Path("two.rec") + " already exists. Do you want to use it?");

  toolkit.QueueAnswer(true);
  ASSERT_TRUE(CreateProjectFromDefaults(state, toolkit, Path("two.rec")));
  EXPECT_EQ(Records("two.rec", "PHTI"), (Lines{"Phase no. 1", "Phase no. 2"}));
  EXPECT_EQ(Count("two.rec", "PHNA"), 2);
  EXPECT_EQ(Count("two.rec", "XYZ "), 2);
  EXPECT_EQ(Count("two.rec", "SCAL"), 2);
  EXPECT_EQ(Count("two.rec", "CXYZ"), 2);
  EXPECT_EQ(Count("two.rec", "ANOM"), 1);  // hydrogen is type 1 already
  EXPECT_EQ(Count("two.rec", "LIMP"), 1);
  EXPECT_EQ(Count("two.rec", "RELX"), 1);
  EXPECT_EQ(state.job.Phases(), 2);
  EXPECT_EQ(toolkit.MenuState(menu::kEditPhase2, kMenuItemEnabled), 1);

  // Two dense P 1 phases of 10 A overlap beyond the engine's capacity at higher angles; a
  // short range shows that the engine reads both phases' records in their places.
  RecordingReporter reporter;
  RecordStore store(reporter);
  const Record range[] = {
      MakeRecord("RELX", "(i5,5f5.2,3f10.5)", 6, 0.3f, 1.0f, 1.0f, 1.0f, 1.0f, 5.0f, 0.02f, 30.0f)};
  ASSERT_EQ(store.jUpdateRec(Path("two.rec"), range), 1);
  EXPECT_EQ(RunEngine(EngineRequest{Path("two.rec")}, reporter).status, 0) << Read("two.out");
}

TEST_F(NewProjectTest, AFileWithoutPhasesGetsTheDefaultsBehindItsOwnRecords) {
  dir.Write("own.rec",
            "TITL      My own title\n"
            "RELX          2 0.30 1.00 1.00 1.00 1.00  20.00000   0.05000  60.00000\n");
  toolkit.QueueAnswer(true);
  ASSERT_TRUE(CreateProjectFromDefaults(state, toolkit, Path("own.rec")));
  EXPECT_EQ(Records("own.rec", "TITL"), (Lines{"My own title"}));
  EXPECT_EQ(Count("own.rec", "RELX"), 1);
  EXPECT_NE(Records("own.rec", "RELX")[0].find("20"), std::string::npos);
  EXPECT_EQ(Records("own.rec", "PHTI"), (Lines{"Phase no. 1"}));
  EXPECT_EQ(Log()[0], "Started project: My own title");
}

TEST_F(NewProjectTest, SelectionsThatAreNoSelectionsEndTheCommand) {
  toolkit.QueueSelection("");
  NewProject(state, toolkit);
  toolkit.QueueSelection("*.rec");
  NewProject(state, toolkit);
  ASSERT_EQ(toolkit.Boxes().size(), 2u);
  EXPECT_EQ(toolkit.Boxes()[1].text, "Invalid project file selection");
  EXPECT_TRUE(state.projectFileName.empty());
  EXPECT_TRUE(std::filesystem::is_empty(dir.Path()));
}

TEST_F(NewProjectTest, TheCifRouteSaysOnceThatItIsMissingAndTouchesNothing) {
  state.newProjectMode = 2;
  NewProject(state, toolkit);
  EXPECT_EQ(Log(), (Lines{"New project from CIF is not available in this build"}));
  EXPECT_TRUE(toolkit.DialogsShown().empty());
  EXPECT_TRUE(toolkit.Boxes().empty());
  EXPECT_TRUE(std::filesystem::is_empty(dir.Path()));
}

TEST_F(NewProjectTest, CifRouteWithAnImporterAsksForBothNames) {
  state.newProjectMode = 2;
  bool imported = false;
  state.hooks.importCif = [&](ShellState&, Toolkit&, const std::string& cif, NewPhase& phase) {
    imported = cif == Path("in.cif");
    phase = DefaultPhase();
    phase.atoms[0].name = "Si1";
    phase.atoms[0].beta = {0.01f, 0.01f, 0.01f, 0, 0, 0};
    return true;
  };
  toolkit.QueueSelection(Path("in"));
  toolkit.QueueDialog({128, {{1383, Path("from_cif")}}, {1384, kIdOk}});
  NewProject(state, toolkit);
  EXPECT_TRUE(imported);
  EXPECT_EQ(toolkit.Selections()[0].title, "Select CIF");
  EXPECT_EQ(Count("from_cif.rec", "BETA"), 1);
  EXPECT_EQ(Count("from_cif.rec", "SDXY"), 1);
  EXPECT_EQ(Count("from_cif.rec", "SDCE"), 1);

  // Cancel leaves both names blank: the CIF is reported first.
  toolkit.QueueDialog({128, {}, {kIdCancel}});
  NewProject(state, toolkit);
  EXPECT_EQ(toolkit.Boxes().back().text, "Invalid CIF selection");
}

}  // namespace
}  // namespace kaldena
