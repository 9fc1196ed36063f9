// Opening, loading, updating, backing up, restoring and saving projects through the
// scripted toolkit; the log, boxes, menus and files are what the user would see.
#include "shell/project_lifecycle.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "shell/default_project.h"
#include "shell/shell_fixture.h"
#include "shell/shell_services.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ShellFixture;
using Lines = std::vector<std::string>;

constexpr const char* kProject =
    "TITL      Corundum test\n"
    "JOBT          2    4    3   -1    0    1    0    1\n"
    "PWDT      data.xy\n"
    "PWPR      work.par\n";

class LifecycleTest : public ::testing::Test, public ShellFixture {
 protected:
  void Open(const std::string& name) {
    state.recentProjects[0] = Path(name);
    OpenProject(state, toolkit, 1);
  }
};

TEST_F(LifecycleTest, LoadReadsTheNamesAndCopiesTheProjectInTwoPasses) {
  dir.Write("sample.rec", kProject);
  Open("sample.rec");

  EXPECT_EQ(Log(), (Lines{"Started project: Corundum test",
                                 "Started project: Corundum test"}));
  EXPECT_EQ(Read("work.par"), kProject);
  EXPECT_EQ(toolkit.StatusField(2), "Corundum test");
  EXPECT_EQ(state.projectBaseName, "sample");
  EXPECT_EQ(state.parameterFileName, "work.par");
  EXPECT_EQ(state.listFileName, "sample.out");
  EXPECT_EQ(state.fourierFileName, "sample.fou");
  EXPECT_TRUE(state.rawDataDefined);
  EXPECT_EQ(state.rawDataFileName, "data.xy");
  EXPECT_EQ(state.job.values[0], 2);
  EXPECT_EQ(state.job.Phases(), 3);
  EXPECT_EQ(state.plot.view.content, 29);
  EXPECT_EQ(state.fileType, 0);
  EXPECT_EQ(state.recentProjects[0], Path("sample.rec"));
  // Project menus on; phase menus up to phase 3; "More phases" needs four.
  EXPECT_EQ(toolkit.MenuState(menu::kRun, kMenuItemEnabled), 1);
  EXPECT_EQ(toolkit.MenuState(menu::kEditPhase3, kMenuItemEnabled), 1);
  EXPECT_EQ(toolkit.MenuState(menu::kMorePhases, kMenuItemEnabled), 0);
  EXPECT_EQ(toolkit.MenuState(menu::kDeletePhase1 + 2, kMenuItemEnabled), 1);
  EXPECT_EQ(toolkit.MenuState(menu::kDeletePhase1 + 3, kMenuItemEnabled), 0);
}

TEST_F(LifecycleTest, AnEmptyRecentSlotFailsLikeAMissingFileButLeavesTheMenusOn) {
  state.recentProjects[1] = "empty";
  OpenProject(state, toolkit, 2);
  EXPECT_EQ(Log(), (Lines{" Error opening project file.", "empty"}));
  EXPECT_TRUE(state.projectFileName.empty());
  EXPECT_EQ(toolkit.MenuState(menu::kEditProject, kMenuItemEnabled), 1);

  // A slot out of range and a cancelled selection are boxes, not log lines.
  toolkit.ClearRecords();
  OpenProject(state, toolkit, 5);
  OpenProject(state, toolkit, 0);  // nothing queued: the selection is cancelled
  ASSERT_EQ(toolkit.Boxes().size(), 2u);
  EXPECT_EQ(toolkit.Boxes()[1].title, "Error");
  EXPECT_EQ(toolkit.Boxes()[1].text, "Invalid file selection");
  EXPECT_EQ(toolkit.Selections()[0].flags, 136);
  EXPECT_EQ(toolkit.Selections()[0].title, "Open pattern file");
}

TEST_F(LifecycleTest, WithoutPwprTheWorkingCopyIsNamedFromTheBaseWithoutItsLastExtension) {
  dir.Write("quartz.run2.final.rec", "TITL      Quartz\n");
  Open("quartz.run2.final.rec");
  EXPECT_EQ(state.projectBaseName, "quartz.run2.final");
  EXPECT_EQ(state.parameterFileName, "quartz.run2.final.par");
  EXPECT_TRUE(Exists("quartz.run2.final.par"));
  EXPECT_FALSE(state.rawDataDefined);
  // JOBT absent: the shell's own defaults, one phase.
  EXPECT_EQ(state.job.values, (std::array<int, 8>{0, 1, 1, -1, 0, 1, 0, 1}));
  EXPECT_EQ(state.plot.view.content, 31);
  EXPECT_EQ(toolkit.MenuState(menu::kEditPhase2, kMenuItemEnabled), 0);
}

TEST_F(LifecycleTest, AReadOnlyWorkingCopyFailsTheLoadAfterTheNamesWereRead) {
  dir.Write("sample.rec", kProject);
  dir.Write("work.par", "old working copy\n");
  fs::permissions(Path("work.par"), fs::perms::owner_read, fs::perm_options::replace);
  state.projectFileName = Path("sample.rec");
  EXPECT_EQ(LoadProject(state, toolkit), -1);
  EXPECT_EQ(Log(), (Lines{"Error initializing project 1"}));
  EXPECT_EQ(state.parameterFileName, "work.par");
  EXPECT_EQ(state.projectTitle, "Corundum test");
  EXPECT_EQ(Read("work.par"), "old working copy\n");
  fs::permissions(Path("work.par"), fs::perms::owner_all, fs::perm_options::replace);
}

TEST_F(LifecycleTest, BackupHoldsTheWorkingCopyAndASecondOneReplacesIt) {
  dir.Write("sample.rec", kProject);
  Open("sample.rec");
  dir.Write("work.par", "first edit\n");
  EXPECT_TRUE(BackupProject(state, toolkit));
  dir.Write("work.par", "second edit\n");
  EXPECT_TRUE(BackupProject(state, toolkit));
  EXPECT_EQ(Read("sample.bck"), "second edit\n");
  EXPECT_EQ(Log().back(), "Project backed up");

  // Restore puts the backup over the working copy; the project file stays as it was.
  dir.Write("work.par", "lost edit\n");
  toolkit.QueueSelection(Path("sample.bck"));
  EXPECT_TRUE(RestoreProject(state, toolkit));
  EXPECT_EQ(Log().back(), "Project restored");
  EXPECT_EQ(Read("work.par"), "second edit\n");
  EXPECT_EQ(Read("sample.rec"), kProject);
  EXPECT_EQ(toolkit.Selections().back().flags, 128);

  // Opening again makes the project file win over the restored copy, without a question.
  OpenProject(state, toolkit, 1);
  EXPECT_EQ(Read("work.par"), kProject);
  EXPECT_TRUE(toolkit.Boxes().empty());

  // A backup that is not there.
  toolkit.QueueSelection(Path("missing.bck"));
  EXPECT_FALSE(RestoreProject(state, toolkit));
  EXPECT_EQ(Log().back(), "Error restoring project");
}

TEST_F(LifecycleTest, UpdateCopiesTheWorkingCopyBackAndUpdateAndRunStopsOnFailure) {
  dir.Write("sample.rec", kProject);
  Open("sample.rec");
  dir.Write("work.par", "edited\n");
  EXPECT_TRUE(UpdateProject(state, toolkit));
  EXPECT_EQ(Read("sample.rec"), "edited\n");

  fs::permissions(Path("sample.rec"), fs::perms::owner_read, fs::perm_options::replace);
  const std::size_t before = Log().size();
  UpdateAndRun(state, toolkit);
  fs::permissions(Path("sample.rec"), fs::perms::owner_all, fs::perm_options::replace);
  // Nothing runs after a failed update: no engine lines, no "interupted".
  const Lines log = Log();
  EXPECT_EQ(Lines(log.begin() + static_cast<long>(before), log.end()),
            (Lines{"Error updating project"}));
}

TEST_F(LifecycleTest, ARunThatFailsIsReportedAsInterrupted) {
  dir.Write("broken.rec", "TITL      No job records at all\n");
  Open("broken.rec");
  state.plotMode = 3;
  EXPECT_NE(RunProject(state, toolkit), 0);
  EXPECT_EQ(Log().back(), "Refinement interupted");
  EXPECT_EQ(state.plotMode, 3);  // only a good run resets the plot
  EXPECT_EQ(Read("broken.rec"), "TITL      No job records at all\n");
}

TEST_F(LifecycleTest, SaveAsStartsTheNewProjectFromTheLastUpdate) {
  dir.Write("sample.rec", kProject);
  Open("sample.rec");
  dir.Write("work.par", "unsaved edit\n");
  toolkit.QueueSelection(Path("copy"));
  SaveProjectAs(state, toolkit);
  EXPECT_EQ(state.projectFileName, Path("copy.rec"));
  EXPECT_EQ(state.projectBaseName, "copy");
  EXPECT_EQ(Read("copy.rec"), kProject);
  EXPECT_EQ(Read("work.par"), kProject);  // the unsaved edit is gone, as designed
  EXPECT_EQ(state.recentProjects[0], Path("copy.rec"));
  EXPECT_EQ(toolkit.Selections().back().offered, Path("sample.rec"));

  // A copy that fails leaves no project open, without a word.
  fs::create_directory(Path("blocked.rec"));
  const std::size_t lines = Log().size();
  toolkit.QueueSelection(Path("blocked.rec"));
  SaveProjectAs(state, toolkit);
  EXPECT_TRUE(state.projectFileName.empty());
  EXPECT_EQ(Log().size(), lines);
  EXPECT_TRUE(toolkit.Boxes().empty());
}

TEST_F(LifecycleTest, RecentProjectsShiftDownAndMayStandTwice) {
  state.recentProjects = {"a.rec", "b.rec", "c.rec", "d.rec"};
  state.projectFileName = "b.rec";
  PushRecentProject(state, toolkit);
  EXPECT_EQ(state.recentProjects, (std::array<std::string, 4>{"b.rec", "a.rec", "b.rec", "c.rec"}));
  state.projectFileName = "b.rec";  // already on top: nothing moves
  PushRecentProject(state, toolkit);
  EXPECT_EQ(state.recentProjects[1], "a.rec");
  state.projectFileName.clear();
  state.recentProjects[3].clear();
  PushRecentProject(state, toolkit);
  EXPECT_EQ(toolkit.MenuString(menu::kRecentFirst), "b.rec");
  EXPECT_EQ(toolkit.MenuString(menu::kRecentFirst + 3), "empty");
}

TEST_F(LifecycleTest, FileTypeFollowsTheExtensionInOneCase) {
  EXPECT_EQ(FileTypeOf("x.MLT", 0), 1);
  EXPECT_EQ(FileTypeOf("x.exp", 0), 2);
  EXPECT_EQ(FileTypeOf("x.edt", 0), 3);
  EXPECT_EQ(FileTypeOf("x.Rec", 2), 2);  // mixed case is no type: the last one stays
  EXPECT_EQ(FileTypeOf("x.rec   ", 3), 0);
}

TEST_F(LifecycleTest, DateTextGrowsWithItsField) {
  toolkit.SetDateTime(DateTime{2016, 7, 8, 14, 5, 59});
  EXPECT_EQ(DateTimeText(toolkit, 9), std::string(9, ' '));
  EXPECT_EQ(DateTimeText(toolkit, 12), "2016-07-08  ");
  EXPECT_EQ(DateTimeText(toolkit, 17), "2016-07-08       ");
  EXPECT_EQ(DateTimeText(toolkit, 20), "2016-07-08   14:05  ");
}

}  // namespace
}  // namespace kaldena
