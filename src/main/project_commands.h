// kalden new, backup and restore: the project lifecycle without a GUI.
#pragma once

#include <string>
#include <vector>

namespace kaldena {

// kalden new PROJECT.rec [--use-existing]
int NewCommand(const std::vector<std::string>& args);
// kalden backup PROJECT
int BackupCommand(const std::vector<std::string>& args);
// kalden restore PROJECT [BACKUP]
int RestoreCommand(const std::vector<std::string>& args);

}  // namespace kaldena
