// The Files, Controls and Globals dialogs on the corundum example, opened from the menu on the
// checked scripted toolkit: what OK writes, what Cancel and bad values leave, the codeword
// rule, the round trip of an unchanged OK, and undo and redo of the edits.
#include "shell/edit_dialogs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "shell/phase_dialog.h"
#include "shell/project_lifecycle.h"
#include "shell/tool_routines.h"
#include "support/checked_toolkit.h"
#include "support/test_files.h"
#include "util/text.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using Answer = ScriptedToolkit::DialogAnswer;

// The corundum example with its output file records, opened, not run: its parameter file is
// the project's copy.
struct EditSession {
  EditSession() {
    const fs::path example = testing::TestData("../../examples/corundum");
    dir.Write("corundum.rec", testing::ReadBytes(example / "corundum.rec") +
                                  "PWPR      corundum.par\nPWUT      corundum.out\n"
                                  "PWSM      corundum.sum\nPWFO      corundum.fou\n");
    fs::copy_file(example / "corundum.xy", dir.Path() / "corundum.xy");
    toolkit.WindowOpen(39, 20, 20, 800, 500, 30001, "KALDENA");
    state.logWindow = toolkit.WindowOpenChild(256, 20, 600, 800, 250, "KALDENA Log");
    state.recentProjects[0] = (dir.Path() / "corundum.rec").string();
    InstallToolHooks(state);
    OpenProject(state, toolkit, 1);
  }
  std::string Par() const { return testing::ReadBytes(dir.Path() / "corundum.par"); }
  void Write(const std::string& par) const { dir.Write("corundum.par", par); }
  // The lines of a key, trailing blanks cut.
  Lines Key(std::string_view key) const {
    Lines lines;
    std::istringstream in(Par());
    for (std::string line; std::getline(in, line);) {
      if (line.compare(0, key.size(), key) == 0) lines.push_back(StrippedText(line));
    }
    return lines;
  }
  Lines Log() const { return toolkit.WindowText(state.logWindow); }
  void Menu(Answer answer, int id) {
    toolkit.QueueDialog(std::move(answer));
    DispatchMenu(shell, id);
  }
  const ScriptedToolkit::Box* LastBox() const {
    return toolkit.Boxes().empty() ? nullptr : &toolkit.Boxes().back();
  }

  testing::ScratchDir dir;
  testing::CheckedToolkit toolkit;
  ShellState state;
  ShellRoutines routines = ToolRoutines();
  ShellContext shell{state, toolkit, routines};
};

// Every line of a text by its key (the key field, columns 1 to 4), in file order.
std::map<std::string, Lines> ByKey(const std::string& text) {
  std::map<std::string, Lines> keys;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!StrippedText(line).empty()) keys[line.substr(0, 4)].push_back(StrippedText(line));
  }
  return keys;
}

// The values of a line behind its key: words and numbers, numbers compared as numbers.
std::vector<std::string> Values(const std::string& line) {
  std::vector<std::string> values;
  std::istringstream in(line.size() > 4 ? line.substr(4) : "");
  for (std::string word; in >> word;) {
    char* end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    values.push_back(*end == '\0' ? std::to_string(number) : word);
  }
  return values;
}

// An unchanged OK keeps every value of every key. Keys whose lines were laid out anew are
// returned, and so are the keys that came into being.
struct RoundTrip {
  std::set<std::string> relaidOut;
  std::set<std::string> added;
};
RoundTrip CompareValues(const std::string& before, const std::string& after) {
  RoundTrip trip;
  const auto old = ByKey(before);
  const auto now = ByKey(after);
  for (const auto& [key, lines] : now) {
    const auto was = old.find(key);
    if (was == old.end()) {
      trip.added.insert(key);
      continue;
    }
    EXPECT_EQ(was->second.size(), lines.size()) << key;
    for (std::size_t i = 0; i < std::min(lines.size(), was->second.size()); ++i) {
      EXPECT_EQ(Values(was->second[i]), Values(lines[i])) << key;
      if (was->second[i] != lines[i]) trip.relaidOut.insert(key);
    }
  }
  for (const auto& [key, lines] : old) EXPECT_TRUE(now.contains(key)) << key << " is gone";
  return trip;
}

// --- Files

TEST(EditFiles, OkWritesTheRecordsOfTheDialogAndCancelNothing) {
  EditSession s;
  const std::string par = s.Par();
  s.Menu({kFilesDialog, {{kFilesTitle, "Changed"}}, {kIdCancel}}, menu::kEditFiles);
  EXPECT_EQ(s.Par(), par);

  s.Menu({kFilesDialog,
          {{kFilesTitle, "Corundum again"},
           {kFilesWeights, "w.dat"},
           {kFilesList, "other.out"},
           {kFilesDefaultFirst, "0"},
           {kFilesDefaultFirst + 2, "1"},
           {kFilesList + 2, "ignored.sum"},
           {kFilesBackgroundFactor, "0.75"},
           {kFilesEnvironment, "293.5"},
           {kFilesFormatFirst + 1, "1"}}},
         menu::kEditFiles);
  EXPECT_EQ(s.Key("TITL"), Lines{"TITL      Corundum again"});
  EXPECT_EQ(s.Key("FRMT"), Lines{"FRMT          2"});
  EXPECT_EQ(s.Key("JOBT"), Lines{"JOBT          0    4    1   -1    0    2    0    1"});
  EXPECT_EQ(s.Key("PWDT"), Lines{"PWDT      corundum.xy"});
  EXPECT_EQ(s.Key("PWWG"), Lines{"PWWG      w.dat"});
  EXPECT_EQ(s.Key("PWBG"), Lines{"PWBG"});
  EXPECT_EQ(s.Key("PWUT"), Lines{"PWUT      other.out"});
  EXPECT_EQ(s.Key("PWPR"), Lines{"PWPR      corundum.par"});
  EXPECT_EQ(s.Key("PWSM"), Lines{"PWSM      corundum.sum"});  // "Def." wins over the field
  EXPECT_EQ(s.Key("PWFO"), Lines{"PWFO      corundum.fou"});
  EXPECT_EQ(s.Key("BGSC"), Lines{"BGSC        0.750000  0.000000"});
  EXPECT_EQ(s.Key("CBGS"), Lines{"CBGS           0.000"});
  EXPECT_EQ(s.Key("ENVI"), Lines{"ENVI            293.50000"});
}

TEST(EditFiles, TheRefineBoxFollowsTheCodewordRule) {
  EditSession s;
  // The file's highest group is 1 (CCEL 11.0): a new code takes group 2.
  s.Menu({kFilesDialog, {{kFilesRefineFactor, "1"}}}, menu::kEditFiles);
  EXPECT_EQ(s.Key("CBGS"), Lines{"CBGS          21.000"});
  s.Menu({kFilesDialog, {}}, menu::kEditFiles);  // on stays on with its code
  EXPECT_EQ(s.Key("CBGS"), Lines{"CBGS          21.000"});
  s.Menu({kFilesDialog, {{kFilesRefineFactor, "0"}}}, menu::kEditFiles);
  EXPECT_EQ(s.Key("CBGS"), Lines{"CBGS           0.000"});
}

TEST(EditFiles, AnEpfProjectKeepsItsFormatAndAFormatRadioChangesIt) {
  EditSession s;
  std::string par = s.Par();
  par.replace(par.find("FRMT          5"), 15, "FRMT          9");
  s.Write(par);
  s.Menu({kFilesDialog, {}}, menu::kEditFiles);
  EXPECT_EQ(s.toolkit.DialogField(kFilesDialog, kFilesFormatEpf), "1");
  EXPECT_EQ(s.Key("FRMT"), Lines{"FRMT          9"});
  s.Menu({kFilesDialog, {{kFilesFormatFirst + 4, "1"}}}, menu::kEditFiles);
  EXPECT_EQ(s.Key("FRMT"), Lines{"FRMT          5"});
}

TEST(EditFiles, BrowseButtonsPutTheChosenNameAndTheRawDataFilterFollowsTheFormat) {
  EditSession s;
  s.toolkit.QueueSelection((s.dir.Path() / "new.xy").string());
  s.toolkit.QueueSelection("/elsewhere/bg.dat");
  s.toolkit.QueueSelection("*.par");  // cancelled
  s.Menu({kFilesDialog,
          {},
          {kFilesBrowseRawData, kFilesBrowseRawData + 2, kFilesBrowseList + 1, kIdOk}},
         menu::kEditFiles);
  const auto& selections = s.toolkit.Selections();
  ASSERT_EQ(selections.size(), 3u);
  EXPECT_EQ(selections[0].title, "Select raw data file");
  EXPECT_EQ(selections[0].filter, "Raw data|*.xy|All files|*.*|");
  EXPECT_EQ(selections[0].offered, "corundum.xy");
  EXPECT_EQ(selections[1].title, "Select background file");
  EXPECT_EQ(selections[2].title, "Select parameter file");
  EXPECT_EQ(selections[2].filter, "Parameter file|*.par|");
  EXPECT_EQ(s.Key("PWDT"), Lines{"PWDT      new.xy"});  // in the project's folder: no folder
  EXPECT_EQ(s.Key("PWBG"), Lines{"PWBG      /elsewhere/bg.dat"});
  EXPECT_EQ(s.Key("PWPR"), Lines{"PWPR      corundum.par"});
}

TEST(EditFiles, ANewParameterFileNameCopiesTheOldFileFirst) {
  EditSession s;
  s.Menu({kFilesDialog, {{kFilesDefaultFirst + 1, "0"}, {kFilesList + 1, "work.par"}}},
         menu::kEditFiles);
  EXPECT_EQ(s.state.parameterFileName, "work.par");
  ASSERT_TRUE(fs::exists(s.dir.Path() / "work.par"));
  EXPECT_NE(testing::ReadBytes(s.dir.Path() / "work.par").find("PWPR      work.par"),
            std::string::npos);

  // A copy that fails writes nothing.
  const std::string par = testing::ReadBytes(s.dir.Path() / "work.par");
  s.Menu({kFilesDialog, {{kFilesList + 1, "no/such/dir/x.par"}, {kFilesTitle, "T"}}},
         menu::kEditFiles);
  EXPECT_EQ(s.Log().back(), "Error copying file. No file update.");
  EXPECT_EQ(testing::ReadBytes(s.dir.Path() / "work.par"), par);
}

TEST(EditFiles, RefineSetsTheJobAndUpdatesAndRuns) {
  EditSession s;
  std::string par = s.Par();
  par.replace(par.find("JOBT          0"), 15, "JOBT          4");  // a comparison
  s.Write(par);
  s.Menu({kFilesDialog, {}, {kFilesRefine}}, menu::kEditFiles);
  EXPECT_EQ(s.Key("JOBT").at(0).substr(0, 15), "JOBT          0");
  const Lines log = s.Log();
  EXPECT_NE(std::find(log.begin(), log.end(), "Project updated"), log.end());
  EXPECT_TRUE(fs::exists(s.dir.Path() / "corundum.sum"));
  EXPECT_NE(testing::ReadBytes(s.dir.Path() / "corundum.rec").find("JOBT          0"),
            std::string::npos);
}

TEST(EditFiles, AValueTooWideForItsFieldShowsItsBoxAndWritesNothing) {
  EditSession s;
  const std::string par = s.Par();
  s.Menu({kFilesDialog, {{kFilesBackgroundFactor, "12345"}, {kFilesTitle, "New"}}},
         menu::kEditFiles);
  ASSERT_NE(s.LastBox(), nullptr);
  EXPECT_EQ(s.LastBox()->title, "Error ");
  EXPECT_EQ(s.LastBox()->text, "Background factor: 12345 does not fit the format (f10.6)");
  EXPECT_EQ(s.Par(), par);
}

// --- Controls

TEST(EditControls, OkWritesItsRecordsWithTheDialogsValues) {
  EditSession s;
  const std::string par = s.Par();
  s.Menu({kControlsDialog, {{kControlsCycles, "9"}}, {kIdCancel}}, menu::kEditControls);
  EXPECT_EQ(s.Par(), par);

  s.Menu({kControlsDialog,
          {{kControlsNeutrons, "1"},
           {kControlsComparison, "1"},
           {kControlsProfileLast, "1"},
           {kControlsAsymmetryFirst + 1, "1"},
           {kControlsPolynomial, "1"},
           {kControlsWeightingLast, "1"},
           {kControlsEveryPoint, "2"},
           {kControlsCycles, "12"},
           {kControlsShiftLimit, "0.5"},
           {kControlsDamping, "2"},
           {kControlsRestraintsWeight, "10"},
           {kControlsStart, "10"},
           {kControlsStop, "100"},
           {kControlsStep, "0.05"},
           {kControlsAsymmetryLimit, "30"},
           {kControlsReflections, "-2"},
           {kControlsCorrelation, "80"},
           {kControlsCalibrationKind, "2"}}},
         menu::kEditControls);
  EXPECT_EQ(s.Key("JOBT"), Lines{"JOBT          5    5    1    0    0    2    2    2"});
  EXPECT_EQ(s.Key("UTPT"), Lines{"UTPT         -2   80"});
  EXPECT_EQ(s.Key("ELAM"), Lines{"ELAM        1.540510  1.544330  0.500000"});
  EXPECT_EQ(s.Key("RLIM"), Lines{"RLIM        10.00000   0.90000   0.00000  30.00000   0.00000   "
                                 "0.00000   0.00000   0.00000"});
  EXPECT_EQ(s.Key("RELX"), Lines{"RELX         12 0.50 1.00 1.00 1.00 1.00  10.00000   0.05000 "
                                 "100.00000"});
  EXPECT_EQ(s.Key("DAMP"), Lines{"DAMP         2.00000"});
  EXPECT_EQ(s.Key("WRES"), Lines{"WRES           10.00"});
  EXPECT_EQ(s.Key("ICLT"), Lines{"ICLT          2"});
  EXPECT_EQ(s.Key("POLY"), (Lines{"POLY        0.000000E+00  0.000000E+00  0.000000E+00  "
                                  "0.000000E+00  0.000000E+00",
                                  "POLY        0.000000E+00  0.000000E+00  0.000000E+00  "
                                  "0.000000E+00  0.000000E+00"}));
  // The atom types were not opened: their lines stay as they were.
  EXPECT_EQ(s.Key("ANOM"), (Lines{"ANOM      Al           0.21300   0.24550",
                                  "ANOM      O            0.04920   0.03220"}));
}

TEST(EditControls, ProfileAndAsymmetryShowAndWriteTheFunctionNumber) {
  EditSession s;
  // Profile 6 (split) shows on the third button and comes back as 6.
  for (const auto& [number, button, asymmetry] :
       std::vector<std::tuple<int, int, int>>{{6, 3, 3}, {9, 3, 5}, {2, 2, 1}, {7, 1, 4}}) {
    std::string par = s.Par();
    par.replace(par.find("JOBT          0    "), 20,
                "JOBT          0" + std::string(5 - std::to_string(number).size(), ' ') +
                    std::to_string(number));
    s.Write(par);
    s.Menu({kControlsDialog, {}}, menu::kEditControls);
    EXPECT_EQ(s.toolkit.DialogField(kControlsDialog, kControlsProfileFirst + button - 1), "1");
    EXPECT_EQ(s.toolkit.DialogField(kControlsDialog, kControlsAsymmetryFirst + asymmetry - 1), "1");
    EXPECT_EQ(s.Key("JOBT").at(0).substr(15, 5),
              std::string(5 - std::to_string(number).size(), ' ') + std::to_string(number));
  }
}

TEST(EditControls, TheGridsWriteTheirRowsAndCountsWithoutEmptyRows) {
  EditSession s;
  s.toolkit.QueueDialog(
      {kControlsDialog,
       {},
       {kControlsExcludedButton, kControlsAtomTypesButton, kControlsCalibrationButton, kIdOk}});
  s.toolkit.QueueDialog({kExcludedDialog,
                         {},
                         {kIdOk},
                         {{{kExcludedGrid, 1, 1}, "10"},
                          {{kExcludedGrid, 2, 1}, "12.5"},
                          {{kExcludedGrid, 1, 3}, "60"},
                          {{kExcludedGrid, 2, 3}, "61"}}});
  s.toolkit.QueueDialog({kAtomTypesDialog,
                         {},
                         {kIdOk},
                         {{{kAtomTypesGrid, 1, 1}, ""},
                          {{kAtomTypesGrid, 2, 1}, "0"},
                          {{kAtomTypesGrid, 3, 1}, "0"},
                          {{kAtomTypesGrid, 1, 3}, "Fe"},
                          {{kAtomTypesGrid, 2, 3}, "-1.1336"},
                          {{kAtomTypesGrid, 3, 3}, "3.1974"}}});
  s.toolkit.QueueDialog({kCalibrationDialog, {}, {kIdOk}, {{{kCalibrationGrid, 1, 2}, "0.001"}}});
  DispatchMenu(s.shell, menu::kEditControls);
  EXPECT_EQ(s.Key("EXRG"),
            (Lines{"EXRG          10.000    12.500", "EXRG          60.000    61.000"}));
  EXPECT_EQ(s.Key("ANOM"), (Lines{"ANOM      O            0.04920   0.03220",
                                  "ANOM      Fe          -1.13360   3.19740"}));
  EXPECT_EQ(s.Key("JOBT"), Lines{"JOBT          0    4    1   -1    2    2    0    1"});
  EXPECT_EQ(s.Key("POLY").at(0),
            "POLY        0.000000E+00  0.100000E-02  0.000000E+00  "
            "0.000000E+00  0.000000E+00");
  EXPECT_EQ(s.toolkit.DialogField(kAtomTypesDialog, kAtomTypesGrid), "");

  // Emptied grids leave no lines and counts of 0.
  s.toolkit.QueueDialog({kControlsDialog, {}, {kControlsExcludedButton, kIdOk}});
  Answer empty{kExcludedDialog, {}, {kIdOk}};
  for (int row = 1; row <= 2; ++row) {
    for (int column = 1; column <= 2; ++column) empty.cells[{kExcludedGrid, column, row}] = "";
  }
  s.toolkit.QueueDialog(empty);
  DispatchMenu(s.shell, menu::kEditControls);
  EXPECT_TRUE(s.Key("EXRG").empty());
  EXPECT_EQ(s.Key("JOBT"), Lines{"JOBT          0    4    1   -1    0    2    0    1"});
}

TEST(EditControls, BadValuesInAFieldAndInAGridRowShowTheirBoxesAndWriteNothing) {
  EditSession s;
  const std::string par = s.Par();
  s.Menu({kControlsDialog, {{kControlsRelaxationFirst, "123.5"}}}, menu::kEditControls);
  ASSERT_NE(s.LastBox(), nullptr);
  EXPECT_EQ(s.LastBox()->text, "Atomic: 123.5 does not fit the format (f5.2)");
  EXPECT_EQ(s.Par(), par);

  // A bad row keeps the sub-dialog open; its Cancel and the dialog's Cancel write nothing.
  s.toolkit.QueueDialog({kControlsDialog, {}, {kControlsExcludedButton, kIdCancel}});
  s.toolkit.QueueDialog({kExcludedDialog,
                         {},
                         {kIdOk, kIdCancel},
                         {{{kExcludedGrid, 1, 2}, "20"}, {{kExcludedGrid, 2, 2}, "200"}}});
  DispatchMenu(s.shell, menu::kEditControls);
  EXPECT_EQ(s.LastBox()->title, "Error ");
  EXPECT_EQ(s.LastBox()->text, "row 2, End: 200 is outside 0 to 180");
  EXPECT_EQ(s.Par(), par);

  s.toolkit.QueueDialog({kControlsDialog, {}, {kControlsAtomTypesButton, kIdCancel}});
  s.toolkit.QueueDialog({kAtomTypesDialog, {}, {kIdOk}, {{{kAtomTypesGrid, 1, 2}, "Xx"}}});
  DispatchMenu(s.shell, menu::kEditControls);
  EXPECT_EQ(s.LastBox()->text, "row 2, Type: \"Xx\" is not an element symbol");
  EXPECT_EQ(s.Par(), par);
}

// --- Globals

TEST(EditGlobals, OkWritesValuesAndCodesByTheCodewordRule) {
  EditSession s;
  const std::string par = s.Par();
  s.Menu({kGlobalsDialog, {{kGlobalsZeroFirst, "0.1"}}, {kIdCancel}}, menu::kEditGlobals);
  EXPECT_EQ(s.Par(), par);

  Answer answer{kGlobalsDialog,
                {{kGlobalsZeroFirst, "0.012"},
                 {kGlobalsZeroFirst + 6, "0"},       // zero point fixed
                 {kGlobalsZeroFirst + 7, "1"},       // sample shift refined, new code
                 {kGlobalsAxialFirst + 5, "-21.5"},  // a code typed in
                 {kGlobalsAxialFirst + 8, "1"},
                 {kGlobalsWavelength + 2, "1"}}};
  answer.cells = {{{kGlobalsBackgroundGrid, 1, 7}, "3.5"},
                  {{kGlobalsBackgroundGrid, 3, 7}, "1"},
                  {{kGlobalsBackgroundGrid, 3, 2}, "0"}};
  s.Menu(answer, menu::kEditGlobals);
  EXPECT_EQ(s.Key("ZETT"), Lines{"ZETT         0.01200   0.00000   0.00000"});
  EXPECT_EQ(s.Key("CZET"), Lines{"CZET           0.000    21.000     0.000"});
  EXPECT_EQ(s.Key("AXID"), Lines{"AXID         0.00000   0.00000   0.00000"});
  EXPECT_EQ(s.Key("CAXI"), Lines{"CAXI           0.000     0.000   -21.500"});
  EXPECT_EQ(s.Key("WAVE"), Lines{"WAVE        1.540510  0.000000"});
  EXPECT_EQ(s.Key("CWAV"), Lines{"CWAV          31.000"});
  EXPECT_EQ(s.Key("BKGR"), (Lines{"BKGR           100.0       0.0       0.0       0.0       0.0",
                                  "BKGR             0.0       3.5       0.0       0.0       0.0"}));
  EXPECT_EQ(s.Key("CBKG"), (Lines{"CBKG           1.000     0.000     1.000     1.000     1.000",
                                  "CBKG           0.000    41.000     0.000     0.000     0.000"}));
}

TEST(EditGlobals, ABadValueInAGridRowOrAFieldShowsItsBoxAndWritesNothing) {
  EditSession s;
  const std::string par = s.Par();
  Answer answer{kGlobalsDialog, {{kGlobalsZeroFirst, "0.5"}}};
  answer.cells = {{{kGlobalsBackgroundGrid, 1, 4}, "123456789"}};
  s.Menu(answer, menu::kEditGlobals);
  ASSERT_NE(s.LastBox(), nullptr);
  EXPECT_EQ(s.LastBox()->text, "row 4, Coefficient: 123456789 does not fit the format (f10.1)");
  EXPECT_EQ(s.Par(), par);
  s.Menu({kGlobalsDialog, {{kGlobalsAxialFirst + 1, "-12345"}}}, menu::kEditGlobals);
  EXPECT_EQ(s.LastBox()->text, "Asymmetry, detector: -12345 does not fit the format (f10.5)");
  EXPECT_EQ(s.Par(), par);
}

// --- All three

TEST(EditDialogs, AnUnchangedOkKeepsEveryValueOfTheExample) {
  EditSession s;
  struct Case {
    int dialog;
    int menu;
    std::set<std::string> relaidOut;
    std::set<std::string> added;
  };
  const std::vector<Case> cases = {
      // Every line the example has is written as it stood; the keys it lacks come into being.
      {kFilesDialog, menu::kEditFiles, {}, {"PWWG", "PWBG", "BGSC", "CBGS", "ENVI"}},
      {kControlsDialog, menu::kEditControls, {}, {"UTPT", "DAMP", "ICLT", "WRES", "POLY"}},
      {kGlobalsDialog, menu::kEditGlobals, {}, {"AXID", "CAXI", "WAVE", "CWAV"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.dialog);
    const std::string before = s.Par();
    s.Menu({c.dialog, {}}, c.menu);
    const RoundTrip trip = CompareValues(before, s.Par());
    EXPECT_EQ(trip.relaidOut, c.relaidOut);
    EXPECT_EQ(trip.added, c.added);
    EXPECT_TRUE(s.toolkit.Boxes().empty());
  }
}

TEST(EditDialogs, UndoAndRedoThroughTheMenuRestoreTheFileByteForByte) {
  EditSession s;
  const std::string original = s.Par();
  s.Menu({kControlsDialog, {{kControlsCycles, "3"}}}, menu::kEditControls);
  const std::string controls = s.Par();
  s.Menu({kGlobalsDialog, {{kGlobalsZeroFirst, "0.02"}}}, menu::kEditGlobals);
  const std::string globals = s.Par();
  EXPECT_EQ(s.toolkit.MenuString(menu::kUndo), "Undo Edit globals");

  DispatchMenu(s.shell, menu::kUndo);
  EXPECT_EQ(s.Par(), controls);
  DispatchMenu(s.shell, menu::kUndo);
  EXPECT_EQ(s.Par(), original);
  EXPECT_EQ(s.toolkit.MenuString(menu::kRedo), "Redo Edit controls");
  DispatchMenu(s.shell, menu::kRedo);
  DispatchMenu(s.shell, menu::kRedo);
  EXPECT_EQ(s.Par(), globals);

  // A refinement since the last edit: undo gives the file from before the edit back.
  DispatchMenu(s.shell, menu::kRunProject);
  ASSERT_NE(s.Par(), globals);
  DispatchMenu(s.shell, menu::kUndo);
  EXPECT_EQ(s.Par(), controls);
  EXPECT_EQ(s.Log().back(),
            " corundum.par is back as before Edit globals: what a run changed since is undone too");

  // Another project opened: nothing to undo.
  OpenProject(s.state, s.toolkit, 1);
  EXPECT_EQ(s.toolkit.MenuString(menu::kUndo), "Undo");
  EXPECT_EQ(s.toolkit.MenuState(menu::kUndo, kMenuItemEnabled), 0);
}

TEST(EditDialogs, ANewProjectRunsFilesControlsAndGlobalsInTurn) {
  EditSession s;
  s.toolkit.ClearRecords();
  s.toolkit.QueueSelection((s.dir.Path() / "fresh.rec").string());
  s.toolkit.QueueDialog({kFilesDialog, {{kFilesTitle, "Fresh sample"}}});
  s.toolkit.QueueDialog({kControlsDialog, {{kControlsCycles, "9"}}, {kIdCancel}});
  s.toolkit.QueueDialog({kGlobalsDialog, {{kGlobalsZeroFirst, "0.03"}}});
  DispatchMenu(s.shell, menu::kNewFromDefaults);
  // The phase dialog follows for the one phase: this build has one.
  EXPECT_EQ(s.toolkit.DialogsShown(),
            (std::vector<int>{kFilesDialog, kControlsDialog, kGlobalsDialog, kPhaseDialog}));
  const std::string project = testing::ReadBytes(s.dir.Path() / "fresh.rec");
  EXPECT_NE(project.find("TITL      Fresh sample"), std::string::npos);
  EXPECT_NE(project.find("ZETT         0.03000"), std::string::npos);
  EXPECT_EQ(project.find("RELX          9"), std::string::npos);
}

}  // namespace
}  // namespace kaldena
