// "kalden new PROJECT.rec --from-cif FILE.cif".
#pragma once

#include <string>
#include <vector>

namespace kaldena {

// kalden new PROJECT.rec --from-cif FILE.cif [--use-existing]: the "New project from CIF"
// command without its dialog. 0 when the project stands, 1 or kBadArguments otherwise.
int NewFromCifCommand(const std::vector<std::string>& args);

}  // namespace kaldena
