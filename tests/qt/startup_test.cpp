// Start-up on the Qt toolkit: the order of its steps, and what stands on screen after it, with
// and without a project on the command line.
#include "shell/startup.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <algorithm>
#include <filesystem>

#include "modal_answerer.h"
#include "qt/qt_toolkit.h"
#include "shell/main_window.h"
#include "shell/shell_services.h"
#include "shell/tool_routines.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

// The Qt toolkit, noting the start-up's steps in order; the program's file lies in a scratch
// directory, so that its preferences are written there.
class StepToolkit : public QtToolkit {
 public:
  StepToolkit(std::vector<std::string> arguments, std::string program)
      : QtToolkit(std::move(arguments)), program_(std::move(program)) {}
  std::vector<std::string> steps;

  std::string Argument(int number) override {
    return number == 0 ? program_ : QtToolkit::Argument(number);
  }
  void Initialise() override { Step("initialise"), QtToolkit::Initialise(); }
  void WindowOpen(int style, int x, int y, int w, int h, int menu, std::string_view t) override {
    Step("main window");
    QtToolkit::WindowOpen(style, x, y, w, h, menu, t);
  }
  void WindowStatusBarParts(std::span<const int> widths) override {
    Step("status parts");
    QtToolkit::WindowStatusBarParts(widths);
  }
  void IOsDirChange(std::string_view directory) override {
    Step("cd " + std::string(directory));
    QtToolkit::IOsDirChange(directory);
  }
  void WMenuSetString(int item, std::string_view text) override {
    if (item == menu::kRecentFirst) Step("recent " + std::string(text));
    QtToolkit::WMenuSetString(item, text);
  }
  int WindowOpenChild(int style, int x, int y, int w, int h, std::string_view t) override {
    Step("child " + std::string(t));
    return QtToolkit::WindowOpenChild(style, x, y, w, h, t);
  }
  void WEditLinePut(int line, std::string_view text) override {
    Step("log " + std::string(text));
    QtToolkit::WEditLinePut(line, text);
  }
  void WMessageEnable(int type, bool on) override {
    Step("enable " + std::to_string(type));
    QtToolkit::WMessageEnable(type, on);
  }

 private:
  void Step(std::string step) {
    if (steps.empty() || steps.back() != step) steps.push_back(std::move(step));
  }
  std::string program_;
};

std::vector<std::string> ProgramArguments(std::vector<std::string> projectArguments) {
  projectArguments.insert(projectArguments.begin(), "kaldena");
  return projectArguments;
}

struct StartedProgram {
  explicit StartedProgram(std::vector<std::string> projectArguments)
      : toolkit(ProgramArguments(std::move(projectArguments)), (dir.Path() / "kaldena").string()) {
    StartUp(shell);
  }
  ~StartedProgram() {
    ShutDown(shell);
    fs::current_path(start);
  }
  std::size_t At(std::string_view step) const {
    const auto& s = toolkit.steps;
    return static_cast<std::size_t>(std::find(s.begin(), s.end(), step) - s.begin());
  }
  QString Log() const { return toolkit.Window(state.logWindow)->Editor()->toPlainText(); }

  fs::path start = fs::current_path();
  testing::ScratchDir dir;
  StepToolkit toolkit;
  ShellState state;
  ShellRoutines routines = ToolRoutines();
  ShellContext shell{state, toolkit, routines};
};

TEST(StartUp, OpensTheWindowsInOrderAndStandsWithoutAProject) {
  testing::ModalAnswerer answerer;
  StartedProgram program({});
  const auto& steps = program.toolkit.steps;
  ASSERT_GE(steps.size(), 6u);
  EXPECT_EQ(steps[0], "initialise");
  EXPECT_EQ(steps[1], "main window");
  EXPECT_EQ(steps[2], "status parts");
  // The program's directory before the preferences, which list the recent projects.
  EXPECT_EQ(steps[3], "cd " + program.dir.Path().string() + "/");
  EXPECT_LT(program.At("cd " + program.dir.Path().string() + "/"), program.At("recent empty"));
  EXPECT_LT(program.At("recent empty"), program.At("child KALDENA Log"));
  EXPECT_EQ(steps[steps.size() - 2], "enable 6");
  EXPECT_EQ(steps.back(), "enable 5");
  EXPECT_TRUE(fs::exists(program.dir.Path() / "kalden.ini"));

  ToolkitWindow* main = program.toolkit.Window(kMainWindow);
  ASSERT_NE(main, nullptr);
  const QSize screen = QGuiApplication::primaryScreen()->size();
  EXPECT_EQ(main->windowTitle(), "KALDENA");
  EXPECT_EQ(main->pos(), QPoint(20, 20));
  EXPECT_EQ(main->size(), QSize(8 * screen.width() / 10, 5 * screen.height() / 10));
  EXPECT_EQ(main->StatusText(1), "Start");
  EXPECT_EQ(main->StatusText(5), "");
  EXPECT_EQ(main->StatusText(6), "");  // five fields only

  ToolkitWindow* log = program.toolkit.Window(program.state.logWindow);
  ASSERT_NE(log, nullptr);
  EXPECT_EQ(log->windowTitle(), "KALDENA Log");
  EXPECT_EQ(log->pos(), QPoint(20, main->height() + 100));
  EXPECT_EQ(log->size(), QSize(main->width(), main->height() / 2));
  ASSERT_NE(log->Editor(), nullptr);
  EXPECT_TRUE(log->Editor()->isReadOnly());
  EXPECT_EQ(log->Editor()->font().pointSize(), 10);

  // No project: the project menus are grey, File is not.
  MenuBar& menu = *program.toolkit.Menu();
  EXPECT_FALSE(menu.Action(menu::kEditProject)->isEnabled());
  EXPECT_FALSE(menu.Action(menu::kRun)->isEnabled());
  EXPECT_TRUE(menu.Action(menu::kFile)->isEnabled());
  EXPECT_EQ(menu.Action(menu::kRecentFirst)->text(), "empty");
  EXPECT_TRUE(answerer.Seen().empty());
}

TEST(StartUp, OpensTheProjectOfTheCommandLineAfterTheLog) {
  testing::ModalAnswerer answerer;
  testing::ScratchDir projects;
  const fs::path project =
      projects.Write("corundum.rec",
                     testing::ReadBytes(testing::TestData("../../examples/corundum/corundum.rec")));
  StartedProgram program({project.string(), "second.rec"});
  const std::string recent = "recent " + project.string();
  // The log window stands before the load logs into it.
  EXPECT_LT(program.At("child KALDENA Log"), program.At("log Started project: Corundum, Al2O3, "
                                                        "Cu K-alpha"));
  EXPECT_LT(program.At("log Started project: Corundum, Al2O3, Cu K-alpha"), program.At("enable 6"));
  EXPECT_LT(program.At("child KALDENA Log"), program.At(recent));
  EXPECT_TRUE(fs::exists(projects.Path() / "corundum.par"));
  EXPECT_TRUE(program.Log().contains("Started project: Corundum, Al2O3, Cu K-alpha"))
      << program.Log().toStdString() << (answerer.Seen().empty() ? "" : answerer.Seen()[0]);
  EXPECT_FALSE(program.Log().contains("second"));  // only the first argument counts

  MenuBar& menu = *program.toolkit.Menu();
  EXPECT_EQ(menu.Action(menu::kRecentFirst)->text().toStdString(), project.string());
  EXPECT_TRUE(menu.Action(menu::kEditProject)->isEnabled());
  EXPECT_EQ(program.toolkit.Window(kMainWindow)->StatusText(2), "Corundum, Al2O3, Cu K-alpha");
  EXPECT_TRUE(answerer.Seen().empty());
}

TEST(StartUp, AMissingProjectLeavesTheProgramWithoutOne) {
  testing::ModalAnswerer answerer;
  StartedProgram program({"/nonexistent/missing.rec"});
  EXPECT_TRUE(program.Log().contains(" Error opening project file."));
  EXPECT_TRUE(program.Log().contains("/nonexistent/missing.rec"));
  EXPECT_TRUE(program.state.projectFileName.empty());
}

TEST(StartUp, ClosingTheLogLeavesTheProgramRunningAndLogLinesGoNowhere) {
  testing::ModalAnswerer answerer;
  StartedProgram program({});
  program.toolkit.Window(program.state.logWindow)->close();  // the window's close button
  Message message;
  do {
    message = program.toolkit.WMessageGet();
  } while (message.type != kCloseRequest);
  EXPECT_EQ(message.window, program.state.logWindow);
  HandleMessage(program.shell, message);
  EXPECT_FALSE(program.state.exitRequested);
  EXPECT_EQ(program.toolkit.Window(program.state.logWindow), nullptr);
  LogLine(program.state, program.toolkit, "after the log");
  EXPECT_NE(program.toolkit.Window(kMainWindow), nullptr);

  program.toolkit.Window(kMainWindow)->close();
  do {
    message = program.toolkit.WMessageGet();
  } while (message.type != kCloseRequest);
  HandleMessage(program.shell, message);
  EXPECT_TRUE(program.state.exitRequested);
  EXPECT_TRUE(program.toolkit.Window(kMainWindow)->isVisible());  // until the way down
}

}  // namespace
}  // namespace kaldena
