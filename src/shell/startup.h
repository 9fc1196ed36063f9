// Start of the application: toolkit, main window, preferences, log window, one optional
// project from the command line; then the message loop and the way down.
#pragma once

#include "shell/menu_dispatch.h"

namespace kaldena {

// Size of the main window: eight and five tenths of the screen, in whole pixels.
struct WindowSize {
  int width = 0;
  int height = 0;
};
WindowSize MainWindowSize(int screenWidth, int screenHeight);

// Everything up to the message loop. Argument 0 names the program, whose directory holds the
// preferences; argument 1, when given, is opened as a project through the fourth recent slot,
// so that it replaces the oldest entry and rises to the top. Further arguments are not used.
void StartUp(ShellContext& shell);

// Start-up, message loop and way down; the process's exit code.
int RunApplication(ShellState& state, Toolkit& toolkit, const ShellRoutines& routines);

}  // namespace kaldena
