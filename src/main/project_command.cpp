// kalden new, backup and restore: the shell's project commands driven through the headless
// toolkit, which prints log lines to standard output and boxes to standard error.
#include <algorithm>
#include <string>
#include <vector>

#include "main/cif_import_commands.h"
#include "main/commands.h"
#include "main/project_commands.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_state.h"
#include "toolkit/headless_toolkit.h"
#include "util/file_names.h"

namespace kaldena {

namespace {

// A state for one command: no preferences file, so the recent list is not written anywhere.
struct CommandShell {
  ScriptedToolkit toolkit{true};
  ShellState state;
};

}  // namespace

int NewCommand(const std::vector<std::string>& args) {
  if (std::find(args.begin(), args.end(), "--from-cif") != args.end()) {
    return NewFromCifCommand(args);
  }
  std::string name;
  bool useExisting = false;
  for (const std::string& arg : args) {
    if (arg == "--use-existing") {
      useExisting = true;
    } else if (name.empty() && !arg.starts_with("--")) {
      name = arg;
    } else {
      return kBadArguments;
    }
  }
  if (name.empty()) return kBadArguments;
  CommandShell shell;
  // "File already exists ... Do you want to use it?" is answered by the option: without it
  // an existing file is left alone.
  shell.toolkit.QueueAnswer(useExisting);
  return CreateProjectFromDefaults(shell.state, shell.toolkit, name) ? 0 : 1;
}

int BackupCommand(const std::vector<std::string>& args) {
  if (args.size() != 1 || args[0].starts_with("--")) return kBadArguments;
  CommandShell shell;
  shell.state.projectFileName = args[0];
  if (ReadProjectNames(shell.state, shell.toolkit) != 0) return 1;
  return BackupProject(shell.state, shell.toolkit) ? 0 : 1;
}

int RestoreCommand(const std::vector<std::string>& args) {
  if (args.empty() || args.size() > 2 || args[0].starts_with("--")) return kBadArguments;
  CommandShell shell;
  shell.state.projectFileName = args[0];
  if (ReadProjectNames(shell.state, shell.toolkit) != 0) return 1;
  // The backup that "kalden backup" writes, unless another is named.
  const std::string backup =
      args.size() == 2 ? args[1]
                       : InProjectDir(shell.state, shell.state.projectBaseName + ".bck");
  shell.toolkit.QueueSelection(backup);
  return RestoreProject(shell.state, shell.toolkit) ? 0 : 1;
}

}  // namespace kaldena
