// The commands of kalden that write CIF files of a refined project: each takes the arguments
// behind its name and returns the exit code as those of main/commands.h do.
#pragma once

#include <string>
#include <vector>

namespace kaldena {

// kalden cif PROJECT [--date YYYY-MM-DD]: the CIF beside the project (base + ".cif").
int CifCommand(const std::vector<std::string>& args);

// kalden cif-raw PROJECT: the raw data report beside the project (base + ".rcf").
int CifRawCommand(const std::vector<std::string>& args);

}  // namespace kaldena
