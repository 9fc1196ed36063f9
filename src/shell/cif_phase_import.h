// "New project from CIF": the CIF's phase in the terms of the new-project command.
#pragma once

#include <string>

#include "shell/default_project.h"
#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

// Fills the phase model of a new project from a CIF: the signature of ShellHooks::importCif.
// False, with nothing filled, when the file does not open or the group is given on
// rhombohedral axes. Messages go to the log; stages to "Progress" boxes in debug mode.
bool ImportCifPhase(ShellState& state, Toolkit& toolkit, const std::string& cif,
                    NewPhase& phase);

}  // namespace kaldena
