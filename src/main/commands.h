// The commands of kalden beside the built-in ones: each takes the arguments behind its name
// and returns the exit code (0 success, 1 failure).
#pragma once

#include <string>
#include <vector>

namespace kaldena {

int ElementCommand(const std::vector<std::string>& args);
int SpaceGroupCommand(const std::vector<std::string>& args);
int RawDataCommand(const std::vector<std::string>& args);
int RunCommand(const std::vector<std::string>& args);
int UpdateCommand(const std::vector<std::string>& args);
int TableCommand(const std::vector<std::string>& args);
int CrystallinityCommand(const std::vector<std::string>& args);

}  // namespace kaldena
