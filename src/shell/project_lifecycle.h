// The life of a project: open, load, new, update, backup, restore, save as, run, and the
// recent-projects list and project menus. The project file (.rec) is the saved state, the
// parameter file (.par) the working copy that every edit and the engine change; a load
// copies the first over the second, an update the second over the first.
#pragma once

#include <string>
#include <string_view>

#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

class RecordStore;

// Slot 0 asks by file selection; 1 to 4 take that recent project as it stands.
void OpenProject(ShellState& state, Toolkit& toolkit, int slot);
// Reads the project's file names, title and JOBT into `state` without touching any file:
// the first half of a load. Returns 0, or -1 with the log lines of a failed load.
int ReadProjectNames(ShellState& state, Toolkit& toolkit);
// Reads the project's names, title and JOBT into `state` and makes the working copy.
// Returns 0 on success, -1 otherwise.
int LoadProject(ShellState& state, Toolkit& toolkit);
// By state.newProjectMode: 1 from defaults after a file selection, 2 from a CIF.
void NewProject(ShellState& state, Toolkit& toolkit);
// A new project from defaults in `fileName` (forced to ".rec"), without a selection: the
// second half of NewProject in mode 1. True when the project stands and is updated.
bool CreateProjectFromDefaults(ShellState& state, Toolkit& toolkit, std::string_view fileName);
bool UpdateProject(ShellState& state, Toolkit& toolkit);
bool BackupProject(ShellState& state, Toolkit& toolkit);
bool RestoreProject(ShellState& state, Toolkit& toolkit);
void SaveProjectAs(ShellState& state, Toolkit& toolkit);
// Runs the engine on the project file; returns the engine's status (0 good).
int RunProject(ShellState& state, Toolkit& toolkit);
void UpdateAndRun(ShellState& state, Toolkit& toolkit);
void PushRecentProject(ShellState& state, Toolkit& toolkit);
// Puts the recent projects into the menu items 40018 to 40021 ("empty" for a blank slot).
void ShowRecentProjects(const ShellState& state, Toolkit& toolkit);
void EnableProjectMenus(ShellState& state, Toolkit& toolkit, int flag);
void EnablePhaseMenus(ShellState& state, Toolkit& toolkit);

// Type of an opened file by its extension: "rec" 0, "mlt" 1, "exp" 2, "edt" 3, all upper or
// all lower case; any other gives `previous`.
int FileTypeOf(std::string_view fileName, int previous);
// A name of the project's records as a path: in the project's directory unless it has a
// directory of its own.
std::string InProjectDir(const ShellState& state, std::string_view name);
// The eight values of JOBT from the loaded store, in record order; the shell's defaults when
// the record is absent or does not read.
void ReadJobValues(RecordStore& store, JobValues& job);

}  // namespace kaldena
