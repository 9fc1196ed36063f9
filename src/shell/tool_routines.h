// The tools' commands as the menus start them, for the routine slots of the menu table, and
// the CIF import of "New project from CIF".
#pragma once

#include "shell/menu_dispatch.h"

namespace kaldena {

// The plots on screen, CIF, CIF raw data report, the crystallinity dialog, the peak grid of
// "Add atoms", the structure viewer's CIF and the edit dialogs of files, controls and globals.
ShellRoutines ToolRoutines();

// The hooks of the lifecycle that the tools serve: the CIF import of a new project, its edit
// dialogs, and the pattern shown after a load or a run.
void InstallToolHooks(ShellState& state);

}  // namespace kaldena
