// The commands of kalden that run an analysis tool on a refined project: each takes the
// arguments behind its name and returns the exit code (0 success, 1 failure).
#pragma once

#include <string>
#include <vector>

namespace kaldena {

int DistancesCommand(const std::vector<std::string>& args);

}  // namespace kaldena
