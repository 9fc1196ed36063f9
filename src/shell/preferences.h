// The preferences file "kalden.ini" beside the program: starting directory, editor,
// structure viewer, the Caglioti floors and the section of recent projects.
#pragma once

#include <string>
#include <vector>

#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

inline constexpr const char* kPreferencesFileName = "kalden.ini";

// What stands in memory when the file says nothing.
Preferences BuiltInPreferences();
// The lines of the file that the program writes when there is none.
std::vector<std::string> DefaultPreferencesLines();

// Reads the file in state.programDir, creating it first when it is missing; fills
// state.preferences and state.recentProjects, shows the recent projects in the menu and
// changes to the starting directory. Failures are boxes; memory keeps the defaults then.
void ReadPreferences(ShellState& state, Toolkit& toolkit);
// Rewrites the keyed lines of the file from state.preferences; other lines go back as they
// were. The W floor is written under the key "MINU=", so that a later start reads it as U
// and takes W from the default: kept as the program has always done it.
void WritePreferences(ShellState& state, Toolkit& toolkit);
// Rewrites the recent-projects section from state.recentProjects. Lines behind the section
// are dropped.
void WriteRecentProjects(ShellState& state, Toolkit& toolkit);
// Dialog 133: shows the preferences, and on OK keeps and writes them.
void PreferencesDialog(ShellState& state, Toolkit& toolkit);

}  // namespace kaldena
