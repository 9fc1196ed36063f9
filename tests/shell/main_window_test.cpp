// Start-up, message loop, close handling and the way down, driven through the scripted
// toolkit; a recording layer over it keeps the order of the calls that start-up makes.
#include "shell/main_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "shell/startup.h"
#include "support/checked_toolkit.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

std::string Numbers(std::initializer_list<double> values) {
  std::string text;
  for (double v : values) text += " " + std::to_string(static_cast<long>(v));
  return text;
}

// Keeps, in order, the calls that the scripted toolkit does not record itself.
class RecordingToolkit : public testing::CheckedToolkit {
 public:
  Lines calls;

  void Initialise() override { calls.push_back("init"); }
  int ScreenInfo(int what) override {
    calls.push_back("screen " + std::to_string(what));
    return ScriptedToolkit::ScreenInfo(what);
  }
  void WindowOpen(int style, int x, int y, int w, int h, int menuId,
                  std::string_view title) override {
    calls.push_back(
        "open" +
        Numbers({double(style), double(x), double(y), double(w), double(h), double(menuId)}) + " " +
        std::string(title));
    ScriptedToolkit::WindowOpen(style, x, y, w, h, menuId, title);
  }
  int WindowOpenChild(int style, int x, int y, int w, int h, std::string_view title) override {
    const int id = ScriptedToolkit::WindowOpenChild(style, x, y, w, h, title);
    calls.push_back("child" + Numbers({double(style), double(x), double(y), double(w), double(h)}) +
                    " " + std::string(title) + " -> " + std::to_string(id));
    return id;
  }
  void WindowCloseChild(int window) override {
    calls.push_back("closechild " + std::to_string(window));
    ScriptedToolkit::WindowCloseChild(window);
  }
  void WindowClose() override {
    calls.push_back("close");
    ScriptedToolkit::WindowClose();
  }
  void WindowSelect(int window) override {
    calls.push_back("select " + std::to_string(window));
    ScriptedToolkit::WindowSelect(window);
  }
  void WindowStatusBarParts(std::span<const int> widths) override {
    std::string text = "statusfields";
    for (int w : widths) text += " " + std::to_string(w);
    calls.push_back(text);
  }
  void WindowStatusBar(int field, std::string_view text) override {
    calls.push_back("status " + std::to_string(field) + " " + std::string(text));
    ScriptedToolkit::WindowStatusBar(field, text);
  }
  void IGrSelect(int kind, int id) override {
    calls.push_back("grselect" + Numbers({double(kind), double(id)}));
  }
  void IGrArea(double x1, double y1, double x2, double y2) override {
    calls.push_back("area" + Numbers({x1, y1, x2, y2}));
  }
  void IGrUnits(double x1, double y1, double x2, double y2) override {
    calls.push_back("units" + Numbers({x1, y1, x2, y2}));
  }
  void WEditFile(int option, int font, int size) override {
    calls.push_back("editfile" + Numbers({double(option), double(font), double(size)}));
  }
  void WMessageEnable(int type, bool enable) override {
    calls.push_back("enable " + std::to_string(type) + (enable ? " on" : " off"));
    ScriptedToolkit::WMessageEnable(type, enable);
  }
  int ArgumentCount() override {
    calls.push_back("argcount");
    return ScriptedToolkit::ArgumentCount();
  }
  void IOsDirChange(std::string_view directory) override {
    calls.push_back("cd " + std::string(directory));
    ScriptedToolkit::IOsDirChange(directory);
  }
  void WMenuSetState(int item, int kind, int value) override {
    if (item == menu::kEditProject) calls.push_back("projectmenus " + std::to_string(value));
    ScriptedToolkit::WMenuSetState(item, kind, value);
  }
  void WMenuSetString(int item, std::string_view text) override {
    if (item == menu::kRecentFirst) calls.push_back("recent1 " + std::string(text));
    ScriptedToolkit::WMenuSetString(item, text);
  }

  // Index of the first call equal to `text`, or -1.
  int Find(std::string_view text) const {
    auto it = std::find(calls.begin(), calls.end(), text);
    return it == calls.end() ? -1 : static_cast<int>(it - calls.begin());
  }
};

class StartUpTest : public ::testing::Test {
 protected:
  StartUpTest() {
    fs::create_directories(dir.Path() / "bin");
    program = (dir.Path() / "bin" / "kaldena").string();
    fs::copy_file(testing::TestData("../../examples/corundum/corundum.rec"),
                  dir.Path() / "corundum.rec");
    fs::copy_file(testing::TestData("../../examples/corundum/corundum.xy"),
                  dir.Path() / "corundum.xy");
  }
  std::string Path(const std::string& name) const { return (dir.Path() / name).string(); }
  Lines Log() const { return toolkit.WindowText(state.logWindow); }
  void Start(Lines arguments) {
    toolkit.SetArguments(std::move(arguments));
    StartUp(shell);
  }
  void Run(Lines arguments) {
    toolkit.SetArguments(std::move(arguments));
    RunApplication(state, toolkit, routines);
  }

  testing::ScratchDir dir;
  std::string program;
  RecordingToolkit toolkit;
  ShellState state;
  ShellRoutines routines;
  ShellContext shell{state, toolkit, routines};
};

TEST_F(StartUpTest, WithoutArgumentsStartsInOrderAndWaitsWithNoProject) {
  toolkit.SetScreen(1601, 999);
  Start({program});

  const std::string bin = (dir.Path() / "bin").string() + "/";
  // Preferences come after the program's directory is known, the log before any project.
  const Lines expected{"init",
                       "screen 1",
                       "screen 2",
                       "open 39 20 20 1280 499 30001 KALDENA",
                       "area 0 0 1 1",
                       "units 0 0 1000 1000",
                       "statusfields 2000 2000 2000 2000 2000",
                       "argcount",
                       "cd " + bin,
                       "recent1 empty",
                       "projectmenus 0",
                       "child 256 20 599 1280 249 KALDENA Log -> 1",
                       "select 1",
                       "editfile 12582948 4 10",
                       "select 0",
                       "status 1 Start",
                       "grselect 1 0",
                       "area 0 0 1 1",
                       "units 0 0 1000 1000",
                       "enable 6 on",
                       "enable 5 on"};
  Lines seen;
  for (const std::string& call : toolkit.calls) {
    if (call.starts_with("cd ") && call != "cd " + bin) continue;  // the starting directory
    seen.push_back(call);
  }
  EXPECT_EQ(seen, expected);
  EXPECT_EQ(state.programDir, bin);
  EXPECT_TRUE(fs::exists(dir.Path() / "bin" / "kalden.ini"));
  EXPECT_EQ(state.logWindow, 1);
  EXPECT_TRUE(state.projectFileName.empty());
  EXPECT_TRUE(Log().empty());
  EXPECT_EQ(state.debugMode, 0);
  EXPECT_EQ(state.reloadPlotData, 1);
  EXPECT_EQ(toolkit.MenuState(menu::kRun, kMenuItemEnabled), 0);
}

TEST_F(StartUpTest, AFirstArgumentThatDoesNotExistLeavesNoProject) {
  Start({program, Path("missing.rec")});
  EXPECT_EQ(Log(), (Lines{" Error opening project file.", Path("missing.rec")}));
  EXPECT_TRUE(state.projectFileName.empty());
  EXPECT_FALSE(fs::exists(dir.Path() / "missing.par"));
  // The loop is still entered after the failed load: mouse messages were asked for.
  EXPECT_GT(toolkit.Find("enable 5 on"),
            toolkit.Find("child 256 20 600 1280 250 KALDENA Log -> 1"));
}

TEST_F(StartUpTest, OnlyTheFirstOfTwoArgumentsIsOpenedAndRisesToTheTop) {
  // Four recent projects: the command line's file takes the oldest slot and then the top.
  {
    std::string ini = "EDT=editor\nDIR=" + dir.Path().string() + "/\nOLD KALDEN FILES\n";
    for (const char* name : {"a.rec", "b.rec", "c.rec", "d.rec"}) ini += std::string(name) + "\n";
    ini += "END KALDEN FILES\n";
    std::ofstream(dir.Path() / "bin" / "kalden.ini") << ini;
  }
  Start({program, Path("corundum.rec"), Path("second.rec")});

  // Not refined yet: the pattern plot finds no summary.
  EXPECT_EQ(Log(), (Lines{"Started project: Corundum, Al2O3, Cu K-alpha",
                          "Started project: Corundum, Al2O3, Cu K-alpha",
                          "Error opening " + Path("corundum.sum")}));
  EXPECT_EQ(state.projectFileName, Path("corundum.rec"));
  EXPECT_TRUE(fs::exists(dir.Path() / "corundum.par"));
  EXPECT_EQ(state.recentProjects[0], Path("corundum.rec"));
  EXPECT_EQ(state.recentProjects[1], "a.rec");
  EXPECT_EQ(state.recentProjects[3], "c.rec");
  EXPECT_EQ(toolkit.MenuString(menu::kRecentFirst), Path("corundum.rec"));
  for (const auto& op : toolkit.FileOperations()) {
    EXPECT_EQ(op.from.find("second"), std::string::npos);
    EXPECT_EQ(op.to.find("second"), std::string::npos);
  }
  const std::string ini = testing::ReadBytes(dir.Path() / "bin" / "kalden.ini");
  EXPECT_NE(ini.find(Path("corundum.rec")), std::string::npos);
  EXPECT_EQ(ini.find("d.rec"), std::string::npos);
  EXPECT_EQ(toolkit.MenuState(menu::kRun, kMenuItemEnabled), 1);
}

TEST_F(StartUpTest, ClosingTheLogWindowKeepsTheProgramRunning) {
  toolkit.QueueClose(1);  // the log window
  toolkit.QueueMenu(menu::kDebug);
  toolkit.QueueMessage({kMouseWheel, 3, 10, 10, 0});
  toolkit.QueueMenu(menu::kExit);
  toolkit.QueueMenu(menu::kDebug);  // never reached: Exit ends the loop
  Run({program});

  EXPECT_EQ(state.childWindowCount, -1);
  EXPECT_EQ(state.debugMode, 1);
  EXPECT_EQ(toolkit.MenuState(menu::kDebug, kMenuItemChecked), 1);
  EXPECT_FALSE(toolkit.QueueEmpty());
  // The log is closed once, by its close request; the way down closes only the main window.
  EXPECT_EQ(std::count(toolkit.calls.begin(), toolkit.calls.end(), "closechild 1"), 1);
  EXPECT_EQ(toolkit.calls.back(), "close");
}

TEST_F(StartUpTest, TheMainWindowsCloseEndsTheLoopWithoutAQuestion) {
  toolkit.QueueClose(kMainWindow);
  toolkit.QueueMenu(menu::kDebug);
  Run({program, Path("corundum.rec")});
  EXPECT_EQ(state.debugMode, 0);
  EXPECT_TRUE(toolkit.Boxes().empty());
  EXPECT_EQ(toolkit.calls.back(), "close");
  // Nothing is saved at exit: the project file is as it was.
  EXPECT_EQ(testing::ReadBytes(dir.Path() / "corundum.rec"),
            testing::ReadBytes(testing::TestData("../../examples/corundum/corundum.rec")));
}

TEST_F(StartUpTest, GraphicsChildrenStopAtFiftyAndCloseLastFirst) {
  Start({program});
  toolkit.calls.clear();
  std::vector<int> windows;
  for (int i = 0; i < kMaxChildWindows; ++i) windows.push_back(OpenGraphicsChild(shell));
  EXPECT_EQ(OpenGraphicsChild(shell), 0);
  ASSERT_EQ(toolkit.Boxes().size(), 1u);
  EXPECT_EQ(toolkit.Boxes()[0].title, "Window error");
  EXPECT_EQ(toolkit.Boxes()[0].text,
            "Maximum child windows created.\rPlease close one and try again.");

  // Closing one from the middle closes the gap; a window never in the table still counts.
  HandleCloseRequest(shell, windows[10]);
  EXPECT_EQ(state.childWindowCount, 49);
  EXPECT_EQ(std::count(state.childWindows.begin(), state.childWindows.end(), windows[10]), 0);
  EXPECT_NE(OpenGraphicsChild(shell), 0);
  EXPECT_EQ(state.childWindowCount, 50);

  toolkit.calls.clear();
  ShutDown(shell);
  ASSERT_EQ(toolkit.calls.size(), 51u);
  EXPECT_EQ(toolkit.calls.front(), "closechild " + std::to_string(state.childWindows.back()));
  EXPECT_EQ(toolkit.calls[49], "closechild " + std::to_string(windows[0]));
  EXPECT_EQ(toolkit.calls.back(), "close");
}

TEST_F(StartUpTest, MessagesReachThePlotRoutinesAndOthersChangeNothing) {
  Start({program});
  Lines plot;
  routines.redrawPlot = [&](ShellState&, Toolkit&, int argument) {
    plot.push_back("redraw " + std::to_string(argument));
  };
  routines.plotKey = [&](ShellState&, Toolkit&, const Message& m) {
    plot.push_back("key " + std::to_string(m.value));
  };
  routines.plotMouse = [&](ShellState&, Toolkit&, const Message& m) {
    plot.push_back("mouse " + std::to_string(m.type) + " " + std::to_string(m.x));
  };
  for (const Message& m : {Message{kKeyDown, kKeyPageUp}, Message{kMouseButtonDown, 1, 5, 6},
                           Message{kMouseWheel, 0, 7, 8}, Message{kExpose}, Message{kResize},
                           Message{kPushButton, 1}, Message{kFieldChanged, 4}, Message{99, 3}}) {
    HandleMessage(shell, m);
  }
  EXPECT_EQ(plot, (Lines{"key 262", "mouse 4 5", "mouse 16 7", "redraw 0", "redraw 0"}));
  EXPECT_FALSE(state.exitRequested);

  // Without plot routines the same messages do nothing at all, and ids outside the menu too.
  ShellRoutines none;
  ShellContext bare{state, toolkit, none};
  const ShellState before = state;
  for (const Message& m : {Message{kMouseWheel, 0, 7, 8}, Message{kExpose}, Message{kKeyDown, 1},
                           Message{kMenuSelect, 40001}, Message{kMenuSelect, 12345}}) {
    HandleMessage(bare, m);
  }
  EXPECT_TRUE(Log().empty());
  EXPECT_EQ(state.plotMode, before.plotMode);
  EXPECT_EQ(state.reloadPlotData, before.reloadPlotData);
  EXPECT_FALSE(state.exitRequested);
  EXPECT_TRUE(toolkit.Commands().empty());
}

}  // namespace
}  // namespace kaldena
