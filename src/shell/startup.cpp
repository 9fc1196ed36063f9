// Start-up in its fixed order: the preferences need the program's directory, the log window
// must stand before a project from the command line can log its load.
#include "shell/startup.h"

#include <array>

#include "shell/main_window.h"
#include "shell/preferences.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "shell/tool_routines.h"
#include "util/file_names.h"

namespace kaldena {

namespace {

constexpr int kWindowX = 20;
constexpr int kWindowY = 20;
constexpr int kLogGap = 100;  // below the main window

void DrawOnWholeWindow(Toolkit& toolkit) {
  toolkit.IGrArea(0.0, 0.0, 1.0, 1.0);
  toolkit.IGrUnits(0.0, 0.0, 1000.0, 1000.0);
}

}  // namespace

WindowSize MainWindowSize(int screenWidth, int screenHeight) {
  return {(8 * screenWidth) / 10, (5 * screenHeight) / 10};
}

void StartUp(ShellContext& shell) {
  ShellState& state = shell.state;
  Toolkit& toolkit = shell.toolkit;

  toolkit.Initialise();
  const int screenWidth = toolkit.ScreenInfo(1);
  const int screenHeight = toolkit.ScreenInfo(2);
  const WindowSize size = MainWindowSize(screenWidth, screenHeight);
  toolkit.WindowOpen(kMainWindowStyle, kWindowX, kWindowY, size.width, size.height,
                     kMainMenuResource, "KALDENA");
  DrawOnWholeWindow(toolkit);
  constexpr std::array<int, 5> kStatusParts{2000, 2000, 2000, 2000, 2000};
  toolkit.WindowStatusBarParts(kStatusParts);

  const int arguments = toolkit.ArgumentCount();
  state.programDir = DirectoryOf(toolkit.Argument(0));
  if (!state.programDir.empty()) toolkit.IOsDirChange(state.programDir);
  ReadPreferences(state, toolkit);

  InstallToolHooks(state);
  state.debugMode = 0;
  state.plot.view.colours.frame = 0;
  state.reloadPlotData = 1;
  // The recent list is written back only once a project was taken in this session.
  state.recentWritingAllowed = false;
  EnableProjectMenus(state, toolkit, 0);
  toolkit.WMenuSetState(menu::kStopRun, kMenuItemEnabled, 0);  // on while a job runs
  state.projectFileName.clear();
  state.projectTitle.clear();

  state.logWindow = toolkit.WindowOpenChild(kLogWindowStyle, kWindowX, size.height + kLogGap,
                                            size.width, size.height / 2, "KALDENA Log");
  toolkit.WindowSelect(state.logWindow);
  toolkit.WEditFile(kLogEditOption, kLogFontType, 10);
  toolkit.WindowSelect(kMainWindow);
  toolkit.WindowStatusBar(1, "Start");
  toolkit.IGrSelect(1, kMainWindow);
  DrawOnWholeWindow(toolkit);

  if (arguments >= 1) {
    state.recentProjects[kRecentSlots - 1] = toolkit.Argument(1);
    OpenProject(state, toolkit, kRecentSlots);
  }
  toolkit.WMessageEnable(kMouseMove, true);
  toolkit.WMessageEnable(kMouseButtonUp, true);
}

int RunApplication(ShellState& state, Toolkit& toolkit, const ShellRoutines& routines) {
  ShellContext shell{state, toolkit, routines};
  StartUp(shell);
  RunMessageLoop(shell);
  ShutDown(shell);
  return 0;
}

}  // namespace kaldena
