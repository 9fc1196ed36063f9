// Every menu id against an open copy of the corundum example: each reaches its routine, or
// logs its one not-available line; a project opened, run and examined through the menus; the
// outside programs with their argument lists.
#include "shell/menu_dispatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <set>

#include "shell/engine_job.h"
#include "shell/main_window.h"
#include "shell/project_lifecycle.h"
#include "support/checked_toolkit.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using Command = std::vector<std::string>;

// The scripted toolkit, plus the calls on text windows and message switches that it does not
// keep, each with the window selected at the time.
class MenuToolkit : public testing::CheckedToolkit {
 public:
  Lines calls;
  bool hardcopyCancelled = false;

  void WindowSelect(int window) override {
    selected_ = window;
    ScriptedToolkit::WindowSelect(window);
  }
  void WEditSave(int mode) override { Note("editsave " + std::to_string(mode)); }
  void WEditFont(int type, int size) override {
    Note("editfont " + std::to_string(type) + " " + std::to_string(size));
  }
  void WEditPrint(std::string_view name) override { Note("editprint " + std::string(name)); }
  void WMessageEnable(int type, bool on) override {
    Note("enable " + std::to_string(type) + (on ? " on" : " off"));
    ScriptedToolkit::WMessageEnable(type, on);
  }
  void WHardcopyOptions(int what) override {
    ScriptedToolkit::WHardcopyOptions(what);
    cancelNext_ = hardcopyCancelled;
  }
  int InfoDialog(int what) override {
    if (cancelNext_) {
      cancelNext_ = false;
      return 0;
    }
    return ScriptedToolkit::InfoDialog(what);
  }

 private:
  void Note(std::string text) { calls.push_back(text + " @" + std::to_string(selected_)); }
  int selected_ = kMainWindow;
  bool cancelNext_ = false;
};

// One program's session with the corundum example open.
struct Session {
  Session() {
    // With its file records, as the Files dialog writes them: the engine then writes beside
    // the project, not in the current directory (which the scripted toolkit never changes).
    original = testing::ReadBytes(testing::TestData("../../examples/corundum/corundum.rec")) +
               "PWPR      corundum.par\nPWUT      corundum.out\nPWSM      corundum.sum\n"
               "PWFO      corundum.fou\n";
    dir.Write("corundum.rec", original);
    fs::copy_file(testing::TestData("../../examples/corundum/corundum.xy"),
                  dir.Path() / "corundum.xy");
    toolkit.WindowOpen(39, 20, 20, 800, 500, 30001, "KALDENA");
    state.logWindow = toolkit.WindowOpenChild(256, 20, 600, 800, 250, "KALDENA Log");
    state.preferences.editorPath = "editor";
    state.preferences.visualizerPath = "viewer";
    state.recentProjects[0] = Path("corundum.rec");
    OpenProject(state, toolkit, 1);
    toolkit.ClearRecords();
    opened = static_cast<std::size_t>(state.logLineCount);  // the records keep no older lines
  }
  std::string Path(const std::string& name) const { return (dir.Path() / name).string(); }
  bool Exists(const std::string& name) const { return fs::exists(dir.Path() / name); }
  Lines Log() const { return toolkit.WindowText(state.logWindow); }
  // Log lines since the project was opened.
  Lines NewLog() const {
    const Lines all = Log();
    if (all.size() <= opened) return {};
    return Lines(all.begin() + static_cast<std::ptrdiff_t>(opened), all.end());
  }
  bool Logged(std::string_view line) const {
    const Lines lines = NewLog();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }
  void Menu(int id) { DispatchMenu(shell, id); }

  testing::ScratchDir dir;
  MenuToolkit toolkit;
  ShellState state;
  ShellRoutines routines;
  ShellContext shell{state, toolkit, routines};
  std::size_t opened = 0;
  std::string original;
};

TEST(MenuTable, HoldsEachIdOnceWithARoutine) {
  std::set<int> ids;
  for (const MenuEntry& entry : MenuTable()) {
    EXPECT_TRUE(ids.insert(entry.id).second) << entry.id;
    EXPECT_NE(entry.routine, nullptr) << entry.id;
    EXPECT_EQ(FindMenuEntry(entry.id), &entry);
  }
  // The 72 of the menu resource and Stop.
  EXPECT_EQ(ids.size(), 73u);
  EXPECT_EQ(FindMenuEntry(menu::kFile), nullptr);  // a popup, not a command
  EXPECT_EQ(FindMenuEntry(0), nullptr);

  // One wording for every command whose routine is not in this build.
  EXPECT_EQ(NotAvailableText(*FindMenuEntry(menu::kEditPhase1)),
            "Edit project: Phase 1 is not available in this build");
  EXPECT_EQ(NotAvailableText(*FindMenuEntry(menu::kLogSize8)),
            "File, Log text size: 8 is not available in this build");
}

// Commands whose routine belongs to work outside this build.
const std::set<int> kNotBuilt = {
    menu::kPrintGraphics,
    menu::kSaveJpg,
    menu::kSaveBmp,
    menu::kSaveEps,
    menu::kEditFiles,
    menu::kEditControls,
    menu::kEditGlobals,
    menu::kAddPhase,
    menu::kFullPattern,
    menu::kPlotOptions,
    menu::kPlotHalfwidths,
    menu::kPlotStructure,
    menu::kFourierOptions,
    menu::kAddAtoms,
    menu::kPlotFourierMaps,
    menu::kTablePlus,
    menu::kTableOptions,
    menu::kDistanceOptions,
    menu::kCif,
    menu::kCifRawReport,
    menu::kCrystallinity,
};

bool IsPhaseCommand(int id) {
  return (id >= menu::kEditPhase1 && id <= menu::kEditPhase3) || id == menu::kEditPhase4 ||
         (id >= menu::kEditPhase5 && id <= menu::kEditPhase5 + 5) ||
         (id >= menu::kDeletePhase1 && id <= menu::kDeletePhase1 + 9);
}

struct Expectation {
  std::function<void(Session&)> prepare;
  std::function<void(Session&)> check;
};

std::map<int, Expectation> BuiltCommands() {
  auto selectionTitled = [](std::string title, std::string box) {
    return Expectation{{}, [title, box](Session& s) {
                         ASSERT_FALSE(s.toolkit.Selections().empty());
                         EXPECT_EQ(s.toolkit.Selections().back().title, title);
                         ASSERT_FALSE(s.toolkit.Boxes().empty());
                         EXPECT_EQ(s.toolkit.Boxes().back().text, box);
                       }};
  };
  auto logIs = [](Lines lines) {
    return Expectation{{}, [lines](Session& s) { EXPECT_EQ(s.NewLog(), lines); }};
  };
  auto logSize = [](int size) {
    return Expectation{{}, [size](Session& s) {
                         EXPECT_EQ(s.toolkit.calls,
                                   (Lines{"editfont 4 " + std::to_string(size) + " @1"}));
                       }};
  };
  auto recentFails = Expectation{{}, [](Session& s) {
                                   ASSERT_FALSE(s.NewLog().empty());
                                   EXPECT_EQ(s.NewLog()[0], " Error opening project file.");
                                   EXPECT_TRUE(s.state.projectFileName.empty());
                                 }};
  auto ran = [](Session& s) {
    EXPECT_FALSE(s.Logged("Refinement interupted"));
    EXPECT_TRUE(s.Exists("corundum.out"));
    EXPECT_TRUE(s.Exists("corundum.sum"));
  };
  std::map<int, Expectation> e;
  e[menu::kNewFromDefaults] =
      selectionTitled("Create new project file", "Invalid project file selection");
  e[menu::kNewFromCif] = logIs({"New project from CIF is not available in this build"});
  e[menu::kOpenProject] = selectionTitled("Open pattern file", "Invalid file selection");
  e[menu::kUpdateProject] = logIs({"Project updated"});
  e[menu::kEditUpdateProject] = logIs({"Project updated"});
  e[menu::kSaveProjectAs] = selectionTitled("Save project as", "Invalid file selection");
  e[menu::kLogPrint] = {
      {}, [](Session& s) { EXPECT_EQ(s.toolkit.calls, (Lines{"editprint corundum @1"})); }};
  e[menu::kLogSave] = {{},
                       [](Session& s) { EXPECT_EQ(s.toolkit.calls, (Lines{"editsave 1 @1"})); }};
  e[menu::kLogSize8] = logSize(8);
  e[menu::kLogSize10] = logSize(10);
  e[menu::kLogSize12] = logSize(12);
  e[menu::kAbout] = {{}, [](Session& s) {
                       EXPECT_EQ(s.toolkit.DialogsShown(), (std::vector<int>{kAboutDialog}));
                       EXPECT_TRUE(s.toolkit.DialogField(kAboutDialog, kAboutTextField)
                                       .starts_with("KALDENA\nVersion 3.0  (2016-02-11)\n"
                                                    "Rietveld refinement framework"));
                     }};
  e[menu::kExit] = {{}, [](Session& s) { EXPECT_TRUE(s.state.exitRequested); }};
  e[menu::kRecentFirst] = {{}, [](Session& s) {
                             EXPECT_EQ(s.NewLog(),
                                       (Lines{"Started project: Corundum, Al2O3, Cu K-alpha",
                                              "Started project: Corundum, Al2O3, Cu K-alpha"}));
                           }};
  e[menu::kRecentFirst + 1] = recentFails;
  e[menu::kRecentFirst + 2] = recentFails;
  e[menu::kRecentFirst + 3] = recentFails;
  e[menu::kDebug] = {{}, [](Session& s) {
                       EXPECT_EQ(s.state.debugMode, 1);
                       EXPECT_EQ(s.toolkit.MenuState(menu::kDebug, kMenuItemChecked), 1);
                     }};
  e[menu::kFrameColour] = {[](Session& s) {
                             s.toolkit.QueueColour(0x102030);  // red 0x10, green 0x20, blue 0x30
                             s.state.reloadPlotData = 0;
                           },
                           [](Session& s) {
                             EXPECT_EQ(s.state.plot.view.colours.frame, 0x302010);
                             EXPECT_EQ(s.state.reloadPlotData, 1);
                           }};
  e[menu::kPreferences] = {
      {}, [](Session& s) { EXPECT_EQ(s.toolkit.DialogsShown(), (std::vector<int>{133})); }};
  e[menu::kEditAll] = {
      {}, [](Session& s) {
        EXPECT_EQ(s.toolkit.Commands(), (std::vector<Command>{{"editor", s.Path("corundum.par")}}));
      }};
  e[menu::kBackupProject] = {{}, [](Session& s) {
                               EXPECT_EQ(s.NewLog(), (Lines{"Project backed up"}));
                               EXPECT_TRUE(s.Exists("corundum.bck"));
                             }};
  e[menu::kRestoreProject] = selectionTitled("Open backup file", "Invalid file selection");
  e[menu::kViewRawData] = {{}, [](Session& s) {
                             EXPECT_EQ(
                                 s.toolkit.Commands(),
                                 (std::vector<Command>{{kRawDataViewer, s.Path("corundum.xy")}}));
                           }};
  e[menu::kRunProject] = {{}, ran};
  e[menu::kUpdateAndRun] = {{}, [ran](Session& s) {
                              ASSERT_FALSE(s.NewLog().empty());
                              EXPECT_EQ(s.NewLog()[0], "Project updated");
                              ran(s);
                            }};
  // Outside a job there is nothing to stop: the flag is set, and the next run clears it.
  e[menu::kStopRun] = {{}, [](Session& s) {
                         EXPECT_TRUE(s.NewLog().empty());
                         EXPECT_TRUE(RunStopFlag());
                       }};
  e[menu::kViewOutput] = {
      {}, [](Session& s) {
        EXPECT_EQ(s.toolkit.Commands(), (std::vector<Command>{{"editor", s.Path("corundum.out")}}));
      }};
  // Before any run there is no Fourier file and no peak file.
  e[menu::kFourierCalculation] = {{}, [](Session& s) {
                                    ASSERT_FALSE(s.NewLog().empty());
                                    EXPECT_EQ(s.NewLog().front(), "Starting Fourier calculation");
                                    EXPECT_EQ(s.NewLog().back(), "Fourier calculation interupted");
                                  }};
  e[menu::kAddPeaks] = {{}, [](Session& s) {
                          ASSERT_FALSE(s.NewLog().empty());
                          EXPECT_TRUE(s.NewLog()[0].starts_with("Error opening "));
                          EXPECT_TRUE(s.toolkit.Commands().empty());
                        }};
  e[menu::kTables] = {
      {}, [](Session& s) {
        ASSERT_FALSE(s.NewLog().empty());
        EXPECT_EQ(s.NewLog()[0], "Starting TABLE");
        EXPECT_TRUE(s.Exists("corundum.tab"));
        EXPECT_EQ(s.toolkit.Commands(), (std::vector<Command>{{"editor", s.Path("corundum.tab")}}));
      }};
  e[menu::kDistances] = {
      {}, [](Session& s) {
        ASSERT_FALSE(s.NewLog().empty());
        EXPECT_EQ(s.NewLog()[0], "Starting DISTAN");
        EXPECT_TRUE(s.Exists("corundum.dis"));
        EXPECT_EQ(s.toolkit.Commands(), (std::vector<Command>{{"editor", s.Path("corundum.dis")}}));
      }};
  return e;
}

TEST(MenuDispatch, EveryIdReachesItsRoutineOrSaysItIsNotAvailable) {
  const std::map<int, Expectation> built = BuiltCommands();
  for (const MenuEntry& entry : MenuTable()) {
    SCOPED_TRACE(std::to_string(entry.id) + " " + std::string(entry.caption));
    const bool notBuilt = kNotBuilt.contains(entry.id) || IsPhaseCommand(entry.id);
    auto it = built.find(entry.id);
    ASSERT_NE(notBuilt, it != built.end()) << "each id needs exactly one expectation";

    Session s;
    if (!notBuilt && it->second.prepare) it->second.prepare(s);
    s.Menu(entry.id);
    if (notBuilt) {
      EXPECT_EQ(s.NewLog(), (Lines{NotAvailableText(entry)}));
      EXPECT_TRUE(s.toolkit.Commands().empty());
      EXPECT_TRUE(s.toolkit.FileOperations().empty());
      EXPECT_TRUE(s.toolkit.Drawing().empty());
      EXPECT_TRUE(s.toolkit.DialogsShown().empty());
    } else {
      it->second.check(s);
    }
  }
}

TEST(MenuDispatch, RegisteredRoutinesAreCalledWithTheirPhaseOrSlot) {
  Session s;
  Lines called;
  auto record = [&](std::string name) {
    return [&called, name](ShellState& state, Toolkit&) {
      called.push_back(name + " " + std::to_string(state.currentPhase) + " " +
                       std::to_string(state.deletePhaseNumber));
    };
  };
  ShellRoutines& r = s.routines;
  r.editFiles = record("files");
  r.editControls = record("controls");
  r.editGlobals = record("globals");
  r.editPhase = record("phase");
  r.addPhase = record("add");
  r.deletePhase = record("delete");
  r.fullPattern = record("pattern");
  r.plotOptions = record("plotoptions");
  r.fourierOptions = record("fourieroptions");
  r.addAtoms = record("addatoms");
  r.plotFourierMaps = [&](ShellState&, Toolkit& toolkit) {
    // The contour dialog runs with mouse moves off.
    auto& calls = static_cast<MenuToolkit&>(toolkit).calls;
    called.push_back("contours after " + calls.back());
  };
  r.tablePlus = record("table+");
  r.tableOptions = record("tableoptions");
  r.distanceOptions = record("distanceoptions");
  r.cif = record("cif");
  r.cifRawReport = record("cifraw");
  r.crystallinity = record("crystallinity");
  r.redrawPlot = [&](ShellState& state, Toolkit&, int argument) {
    called.push_back("redraw " + std::to_string(state.plotMode) + " " + std::to_string(argument));
  };

  for (int id :
       {menu::kEditFiles, menu::kEditControls, menu::kEditGlobals, menu::kEditPhase3,
        menu::kEditPhase5 + 5, menu::kAddPhase, menu::kDeletePhase1 + 6, menu::kFullPattern,
        menu::kPlotOptions, menu::kFourierOptions, menu::kAddAtoms, menu::kPlotFourierMaps,
        menu::kTablePlus, menu::kTableOptions, menu::kDistanceOptions, menu::kCif,
        menu::kCifRawReport, menu::kCrystallinity, menu::kPlotHalfwidths}) {
    s.Menu(id);
  }
  EXPECT_EQ(called, (Lines{"files 1 1", "controls 1 1", "globals 1 1", "phase 3 1", "phase 10 1",
                           "add 10 1", "delete 10 7", "pattern 10 7", "plotoptions 10 7",
                           "fourieroptions 10 7", "addatoms 10 7", "contours after enable 6 off @0",
                           "table+ 10 7", "tableoptions 10 7", "distanceoptions 10 7", "cif 10 7",
                           "cifraw 10 7", "crystallinity 10 7", "redraw 2 1"}));
  EXPECT_EQ(s.toolkit.calls.back(), "enable 6 on @0");
  EXPECT_TRUE(s.NewLog().empty());
}

TEST(MenuDispatch, AProjectOpenedAndRunThroughTheMenusFeedsTheTools) {
  Session s;
  s.state.projectFileName.clear();
  s.toolkit.QueueSelection(s.Path("corundum.rec"));
  s.Menu(menu::kOpenProject);
  ASSERT_EQ(s.state.projectFileName, s.Path("corundum.rec"));
  const std::string before = testing::ReadBytes(s.dir.Path() / "corundum.par");

  s.Menu(menu::kRunProject);
  ASSERT_FALSE(s.Logged("Refinement interupted"));
  // A refinement leaves its result in the working copy, the project file as it was.
  EXPECT_NE(testing::ReadBytes(s.dir.Path() / "corundum.par"), before);
  EXPECT_EQ(testing::ReadBytes(s.dir.Path() / "corundum.rec"), s.original);

  s.Menu(menu::kFourierCalculation);
  EXPECT_FALSE(s.Logged("Fourier calculation interupted"));
  EXPECT_TRUE(s.Exists("corundum.plo"));
  EXPECT_TRUE(s.Exists("corundum.prm"));

  s.toolkit.ClearRecords();
  s.Menu(menu::kAddPeaks);
  EXPECT_TRUE(s.Exists("corundum.dis"));
  ASSERT_EQ(s.toolkit.Commands().size(), 1u);
  EXPECT_EQ(s.toolkit.Commands()[0][0], "editor");
  EXPECT_TRUE(s.toolkit.Commands()[0][1].ends_with("corundum.dis"));

  s.toolkit.ClearRecords();
  s.Menu(menu::kTables);
  s.Menu(menu::kUpdateProject);
  EXPECT_EQ(testing::ReadBytes(s.dir.Path() / "corundum.rec"),
            testing::ReadBytes(s.dir.Path() / "corundum.par"));
  EXPECT_EQ(s.toolkit.Commands(), (std::vector<Command>{{"editor", s.Path("corundum.tab")}}));
}

TEST(MenuDispatch, AnEpsSaveTurnsViewOutputToTheEpsFileUntilTheNextLoad) {
  Session s;
  int redraws = 0;
  s.routines.redrawPlot = [&](ShellState& state, Toolkit& toolkit, int) {
    ++redraws;
    toolkit.IGrMoveTo(state.hardcopyInProgress, state.epsInProgress);  // what the plot sees
  };
  s.Menu(menu::kSaveEps);
  EXPECT_EQ(s.toolkit.Drawing(),
            (Lines{"plotmode H", "units 0 0 180 254", "area 0 0 1 1", "hardcopy driver 2",
                   "hardcopy " + s.Path("corundum.eps"), "move 1 1", "hardcopy S", "plotmode  ",
                   "units 0 0 1000 1000", "area 0 0 1 1", "move 0 0"}));
  EXPECT_EQ(redraws, 2);
  EXPECT_EQ(s.state.listFileName, "corundum.eps");

  s.toolkit.ClearRecords();
  s.Menu(menu::kViewOutput);
  s.Menu(menu::kRecentFirst);  // a load puts the PWUT name back
  s.Menu(menu::kViewOutput);
  EXPECT_EQ(s.toolkit.Commands(), (std::vector<Command>{{"editor", s.Path("corundum.eps")},
                                                        {"editor", s.Path("corundum.out")}}));
}

TEST(MenuDispatch, PrintingStopsTheHardcopyEvenWhenTheDialogIsCancelled) {
  Session s;
  int redraws = 0;
  s.routines.redrawPlot = [&](ShellState& state, Toolkit&, int) {
    ++redraws;
    EXPECT_EQ(state.epsInProgress, 0);
  };
  s.Menu(menu::kPrintGraphics);
  EXPECT_EQ(s.toolkit.Drawing(), (Lines{"plotmode H", "units 0 0 180 254", "area 0 0 1 1",
                                        "hardcopy driver 10", "hardcopy corundum", "hardcopy S",
                                        "plotmode  ", "units 0 0 1000 1000", "area 0 0 1 1"}));
  EXPECT_EQ(redraws, 2);

  s.toolkit.ClearRecords();
  s.toolkit.hardcopyCancelled = true;
  s.Menu(menu::kPrintGraphics);
  EXPECT_EQ(s.toolkit.Drawing(),
            (Lines{"plotmode H", "units 0 0 180 254", "area 0 0 1 1", "hardcopy driver 10",
                   "hardcopy S", "plotmode  ", "units 0 0 1000 1000", "area 0 0 1 1"}));
  EXPECT_EQ(redraws, 3);
  EXPECT_EQ(s.state.hardcopyInProgress, 0);

  s.toolkit.ClearRecords();
  s.Menu(menu::kSaveJpg);
  s.Menu(menu::kSaveBmp);
  EXPECT_EQ(s.toolkit.Drawing(),
            (Lines{"save " + s.Path("corundum.jpg"), "save " + s.Path("corundum.bmp")}));
}

TEST(MenuDispatch, OutsideProgramsGetTheirArgumentListsAndTheirFallBacks) {
  Session s;
  // A name with a blank stays one argument.
  s.state.preferences.editorPath = "  /opt/my editor/edit  ";
  s.toolkit.FailProgram(kRawDataViewer);
  s.Menu(menu::kViewRawData);
  EXPECT_EQ(s.toolkit.Commands(),
            (std::vector<Command>{{kRawDataViewer, s.Path("corundum.xy")},
                                  {"/opt/my editor/edit", s.Path("corundum.xy")}}));

  // Structure viewer: the CIF beside the project, written from the parameter file.
  s.toolkit.ClearRecords();
  std::vector<std::string> written;
  bool writerWorks = true;
  s.routines.writeStructureCif = [&](ShellState&, Toolkit&, const std::string& parameters,
                                     const std::string& cif) {
    written = {parameters, cif};
    return writerWorks;
  };
  s.Menu(menu::kPlotStructure);
  EXPECT_EQ(written, (Lines{s.Path("corundum.par"), s.Path("corundum.cif")}));
  EXPECT_EQ(s.toolkit.Commands(), (std::vector<Command>{{"viewer", s.Path("corundum.cif")}}));
  writerWorks = false;
  s.Menu(menu::kPlotStructure);
  EXPECT_EQ(s.NewLog(), (Lines{"Error in kd_cif"}));
  EXPECT_EQ(s.toolkit.Commands().size(), 1u);

  // Without PWDT "View rawdata" does nothing and says nothing; blank names start nothing.
  s.toolkit.ClearRecords();
  s.state.rawDataDefined = false;
  s.state.parameterFileName = "  ";
  s.state.listFileName.clear();
  s.Menu(menu::kViewRawData);
  s.Menu(menu::kEditAll);
  s.Menu(menu::kViewOutput);
  EXPECT_TRUE(s.toolkit.Commands().empty());
  EXPECT_TRUE(s.NewLog().empty());
}

}  // namespace
}  // namespace kaldena

namespace kaldena {
namespace {

// With no project open (the menus would be grey, but an accelerator still arrives) no command
// may crash or leave files behind in the current directory.
TEST(MenuDispatch, WithoutAProjectNoCommandWritesFiles) {
  testing::ScratchDir cwd;
  const fs::path previous = fs::current_path();
  fs::current_path(cwd.Path());
  testing::CheckedToolkit toolkit;
  ShellState state;
  state.logWindow = toolkit.WindowOpenChild(256, 20, 600, 800, 250, "KALDENA Log");
  ShellRoutines routines;
  routines.redrawPlot = [](ShellState&, Toolkit&, int) {};
  routines.writeStructureCif = [](ShellState&, Toolkit&, const std::string&,
                                  const std::string& cif) {
    std::ofstream(cif) << "data_\n";
    return true;
  };
  ShellContext shell{state, toolkit, routines};
  for (const MenuEntry& entry : MenuTable()) {
    if (entry.id == menu::kExit || entry.id == menu::kPreferences) continue;
    DispatchMenu(shell, entry.id);
  }
  std::vector<std::string> left;
  for (const auto& file : fs::directory_iterator(cwd.Path())) left.push_back(file.path().string());
  fs::current_path(previous);
  EXPECT_EQ(left, std::vector<std::string>{});
  EXPECT_FALSE(state.exitRequested);
  EXPECT_TRUE(state.projectFileName.empty());
  EXPECT_TRUE(toolkit.Commands().empty());
  const std::vector<std::string> log = toolkit.WindowText(state.logWindow);
  // Fourier, peaks, tables, distances, structure, jpg, bmp and eps.
  EXPECT_EQ(std::count(log.begin(), log.end(), "No active project"), 8);
}

}  // namespace
}  // namespace kaldena
