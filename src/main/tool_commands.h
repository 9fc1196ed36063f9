// The commands of kalden that run an analysis tool on a refined project: each takes the
// arguments behind its name and returns the exit code as those of main/commands.h do.
#pragma once

#include <string>
#include <vector>

namespace kaldena {

int DistancesCommand(const std::vector<std::string>& args);

}  // namespace kaldena
