// The preferences file: defaults, keys in one case, the recent-projects section, and the
// rewrites of the dialog and of the recent list.
#include "shell/preferences.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "shell/project_lifecycle.h"
#include "shell/shell_fixture.h"

namespace kaldena {
namespace {

using testing::ShellFixture;
using Lines = std::vector<std::string>;

class PreferencesTest : public ::testing::Test, public ShellFixture {
 protected:
  PreferencesTest() { state.programDir = dir.Path().string() + "/"; }
  void Ini(const std::string& text) { dir.Write("kalden.ini", text); }
  Lines IniLines() {
    Lines lines;
    std::string text = Read("kalden.ini"), line;
    for (char c : text) {
      if (c == '\n') {
        lines.push_back(line);
        line.clear();
      } else {
        line += c;
      }
    }
    return lines;
  }
};

TEST_F(PreferencesTest, AMissingFileIsCreatedAndItsValuesWinOverTheBuiltInOnes) {
  ReadPreferences(state, toolkit);
  ASSERT_TRUE(Exists("kalden.ini"));
  EXPECT_EQ(IniLines(), DefaultPreferencesLines());
  const Preferences builtIn = BuiltInPreferences();
  EXPECT_NE(state.preferences.startingDir, builtIn.startingDir);
  EXPECT_EQ("DIR=" + state.preferences.startingDir, DefaultPreferencesLines()[4]);
  EXPECT_EQ("EDT=" + state.preferences.editorPath, DefaultPreferencesLines()[8]);
  EXPECT_EQ("VIS=" + state.preferences.visualizerPath, DefaultPreferencesLines()[12]);
  EXPECT_DOUBLE_EQ(state.preferences.minimumW, 0.01);
  EXPECT_EQ(toolkit.DirectoryChanges().back(), state.preferences.startingDir);
  EXPECT_EQ(toolkit.MenuString(menu::kRecentFirst), "empty");
  EXPECT_TRUE(toolkit.Boxes().empty());
}

TEST_F(PreferencesTest, KeysReadInOneCaseOnlyAndOnlyWhatTheFileSays) {
  Ini("minw=0.05\n"
      "Edt=/mixed/case/is/ignored\n"
      "DIR=C:\\Data\n"
      "vis\n"
      "MINU=.5e-2\n");
  ReadPreferences(state, toolkit);
  const Preferences builtIn = BuiltInPreferences();
  EXPECT_DOUBLE_EQ(state.preferences.minimumW, 0.05);
  EXPECT_DOUBLE_EQ(state.preferences.minimumU, 0.005);
  EXPECT_DOUBLE_EQ(state.preferences.minimumV, 0.0);
  EXPECT_EQ(state.preferences.editorPath, builtIn.editorPath);
  EXPECT_EQ(state.preferences.visualizerPath, builtIn.visualizerPath);  // no "=": unchanged
  EXPECT_EQ(state.preferences.startingDir, "C:\\Data\\");
  Ini("dir=/srv/patterns\n");
  ReadPreferences(state, toolkit);
  EXPECT_EQ(state.preferences.startingDir, "/srv/patterns/");
}

TEST_F(PreferencesTest, TheRecentSectionTakesFourEntriesAndEndsAtMarkers) {
  Ini("OLD KALDEN FILES\n"
      "/p/one.rec\n"
      "\n"
      " indented lines are skipped\n"
      "/p/two.rec\n"
      "/p/three.rec\n"
      "/p/four.rec\n"
      "/p/five.rec\n"
      "EDT=/after/the/fourth\n"
      "END KALDEN FILES\n");
  ReadPreferences(state, toolkit);
  EXPECT_EQ(state.recentProjects,
            (std::array<std::string, 4>{"/p/one.rec", "/p/two.rec", "/p/three.rec", "/p/four.rec"}));
  // The lines behind the fourth entry are read as ordinary lines.
  EXPECT_EQ(state.preferences.editorPath, "/after/the/fourth");
  EXPECT_EQ(toolkit.MenuString(menu::kRecentFirst + 3), "/p/four.rec");

  Ini("old kalden files\n/p/a.rec\n! comment ends it\n/p/not-an-entry.rec\n");
  ReadPreferences(state, toolkit);
  EXPECT_EQ(state.recentProjects[0], "/p/a.rec");
  EXPECT_EQ(state.recentProjects[1], "");
}

TEST_F(PreferencesTest, WritingKeepsOtherLinesAndTheWFloorComesBackAsDefault) {
  ReadPreferences(state, toolkit);
  state.preferences.editorPath = "/usr/bin/gedit";
  state.preferences.minimumU = 0.25;
  state.preferences.minimumV = -0.125;
  state.preferences.minimumW = 0.5;
  WritePreferences(state, toolkit);
  const Lines lines = IniLines();
  EXPECT_EQ(lines[0], "ini-file for kalden");
  EXPECT_EQ(lines[6], "! Editor");
  EXPECT_EQ(lines[8], "EDT=/usr/bin/gedit");
  EXPECT_EQ(lines[16], "MINU=.25000");
  EXPECT_EQ(lines[17], "MINV=-.12500");
  EXPECT_EQ(lines[18], "MINU=.50000");
  // At the next start the later MINU line carries W into U, and W falls back.
  ReadPreferences(state, toolkit);
  EXPECT_DOUBLE_EQ(state.preferences.minimumU, 0.5);
  EXPECT_DOUBLE_EQ(state.preferences.minimumW, 0.01);
  EXPECT_EQ(state.preferences.editorPath, "/usr/bin/gedit");
}

TEST_F(PreferencesTest, OpeningAProjectRewritesTheSectionAndDropsWhatFollowedIt) {
  Ini("DIR=/data/\n"
      "OLD KALDEN FILES\n"
      "/p/old.rec\n"
      "END KALDEN FILES\n"
      "! lost behind the section\n");
  ReadPreferences(state, toolkit);
  dir.Write("sample.rec", "TITL      Sample\n");
  state.recentProjects[3] = Path("sample.rec");
  OpenProject(state, toolkit, 4);
  // The command line's project stood in slot 4 and rises to the top.
  EXPECT_EQ(IniLines(), (Lines{"DIR=/data/", "OLD KALDEN FILES", Path("sample.rec"), "/p/old.rec",
                               "", "", "END KALDEN FILES"}));

  // Without a section the program starts one behind the last line.
  Ini("DIR=/data/\n");
  ReadPreferences(state, toolkit);
  state.projectFileName = "/p/x.rec";
  state.recentWritingAllowed = true;
  PushRecentProject(state, toolkit);
  EXPECT_EQ(IniLines(), (Lines{"DIR=/data/", "OLD KALDEN FILES", "/p/x.rec", "", "", "",
                               "END KALDEN FILES"}));
}

TEST_F(PreferencesTest, TheDialogWritesOnOkOnlyAndKeepsFieldsOnACancelledBrowse) {
  ReadPreferences(state, toolkit);
  const Preferences before = state.preferences;
  toolkit.QueueDialog({133, {{1426, "/bin/other"}}, {kIdCancel}});
  PreferencesDialog(state, toolkit);
  EXPECT_EQ(state.preferences.editorPath, before.editorPath);
  EXPECT_EQ(IniLines(), DefaultPreferencesLines());

  toolkit.QueueSelection("*.exe");  // the editor's browse is cancelled
  toolkit.QueueSelection("/opt/viewer");
  toolkit.QueueDialog({133, {{1434, "0.02"}}, {1429, 1430, kIdOk}});
  PreferencesDialog(state, toolkit);
  EXPECT_EQ(state.preferences.editorPath, before.editorPath);
  EXPECT_EQ(state.preferences.visualizerPath, "/opt/viewer");
  EXPECT_DOUBLE_EQ(state.preferences.minimumW, 0.02);
  EXPECT_EQ(IniLines()[12], "VIS=/opt/viewer");
}

TEST_F(PreferencesTest, AFileThatCannotBeCreatedIsABoxAndMemoryKeepsTheDefaults) {
  state.programDir = (dir.Path() / "no" / "such" / "dir").string() + "/";
  ReadPreferences(state, toolkit);
  ASSERT_EQ(toolkit.Boxes().size(), 1u);
  EXPECT_EQ(toolkit.Boxes()[0].text, "Error creating ini-file");
  EXPECT_EQ(state.preferences.editorPath, BuiltInPreferences().editorPath);
}

}  // namespace
}  // namespace kaldena
