// The main window and the log as start-up opens them, for tests that need no more of it.
#pragma once

#include "qt/qt_toolkit.h"
#include "shell/main_window.h"
#include "shell/shell_state.h"

namespace kaldena::testing {

inline void OpenMainAndLog(QtToolkit& toolkit, ShellState& state) {
  toolkit.WindowOpen(kMainWindowStyle, 20, 20, 800, 500, kMainMenuResource, "KALDENA");
  state.logWindow = toolkit.WindowOpenChild(kLogWindowStyle, 20, 600, 800, 250, "KALDENA Log");
  toolkit.WindowSelect(state.logWindow);
  toolkit.WEditFile(kLogEditOption, kLogFontType, 10);
  toolkit.WindowSelect(kMainWindow);
}

}  // namespace kaldena::testing
