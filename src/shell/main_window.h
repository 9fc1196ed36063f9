// The main window: its message loop, the handling of close requests, the way down, the
// outside programs (editor, raw-data viewer, structure viewer), the graphics saves and
// printing, and the commands on the log window.
#pragma once

#include <string>
#include <vector>

#include "shell/menu_dispatch.h"

namespace kaldena {

// Window styles and resources of the main window, its log and graphics children.
inline constexpr int kMainWindowStyle = 39;
inline constexpr int kLogWindowStyle = 256;
inline constexpr int kGraphicsWindowStyle = 7;
inline constexpr int kMainMenuResource = 30001;
inline constexpr int kLogEditOption = 12582948;
inline constexpr int kLogFontType = 4;
inline constexpr int kAboutDialog = 102;
inline constexpr int kAboutTextField = 1001;
// Tried first for "View rawdata", found on the search path.
inline constexpr const char* kRawDataViewer = "CurveVista.exe";

// Takes messages until state.exitRequested is set.
void RunMessageLoop(ShellContext& shell);
// One message of the loop.
void HandleMessage(ShellContext& shell, const Message& message);
// Close request: the main window ends the loop, any other window is closed and leaves the
// table of graphics windows. The count falls even for a window that was not in the table (the
// log), which the way down relies on only while it is above zero.
void HandleCloseRequest(ShellContext& shell, int window);
// After the loop: graphics children last first, then the main window. Nothing is asked or
// saved.
void ShutDown(ShellContext& shell);
// A graphics child window, unless 50 are open already (then a box, and 0 is returned).
int OpenGraphicsChild(ShellContext& shell);

// Commands that name files after the project need one: without it they would write ".tab",
// ".jpg" and the like into the current directory. Their menus are grey then, but
// accelerators still arrive. Logs "No active project" and gives false.
bool RequireProject(ShellContext& shell);

// Redraws the current plot when a plot routine is registered; false otherwise.
bool RedrawPlot(ShellContext& shell, int argument);

// Outside programs, started without waiting and without a shell.
// The editor on a file; nothing for a blank name.
void StartEditor(ShellContext& shell, const std::string& fileName);
void StartEditor(ShellState& state, Toolkit& toolkit, const std::string& fileName);
// "View rawdata": the raw-data viewer, and the editor when the viewer does not start. Nothing
// without a PWDT record.
void ViewRawData(ShellContext& shell);
// "Plot structure": the project's CIF from the parameter file, then the structure viewer.
void PlotStructure(ShellContext& shell, const MenuEntry& entry);

// Graphics to files and the printer; all need the plot routine.
void SaveImage(ShellContext& shell, const MenuEntry& entry, std::string_view extension);
void PrintGraphics(ShellContext& shell, const MenuEntry& entry);
void SaveEps(ShellContext& shell, const MenuEntry& entry);

// The log window's commands.
void PrintLog(ShellContext& shell);
void SaveLog(ShellContext& shell);
void SetLogTextSize(ShellContext& shell, int size);

// The lines of the About box.
std::vector<std::string> AboutLines();
void ShowAbout(ShellContext& shell);

}  // namespace kaldena
