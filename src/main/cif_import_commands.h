// CIF import for the shell and the command line: the importer behind ShellState's importCif
// hook, and "kalden new PROJECT.rec --from-cif FILE.cif".
#pragma once

#include <string>
#include <vector>

namespace kaldena {

struct ShellState;
class Toolkit;
struct NewPhase;

// Fills the phase model of a new project from a CIF: the signature of ShellHooks::importCif.
// False, with nothing filled, when the file does not open or the group is given on
// rhombohedral axes. Messages go to the log; stages to "Progress" boxes in debug mode.
bool ImportCifPhase(ShellState& state, Toolkit& toolkit, const std::string& cif,
                    NewPhase& phase);

// kalden new PROJECT.rec --from-cif FILE.cif [--use-existing]: the "New project from CIF"
// command without its dialog. 0 when the project stands, 1 otherwise.
int NewFromCifCommand(const std::vector<std::string>& args);

}  // namespace kaldena
