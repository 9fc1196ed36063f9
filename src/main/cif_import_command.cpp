// "kalden new --from-cif", which drives the shell's own "New project from CIF".
#include <string>
#include <vector>

#include "main/cif_import_commands.h"
#include "main/commands.h"
#include "shell/cif_phase_import.h"
#include "shell/default_project.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_state.h"
#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "toolkit/headless_toolkit.h"
#include "util/file_names.h"

namespace kaldena {

namespace {

// Phases in a project file, 0 when it does not open.
int PhaseCount(const std::string& file) {
  RecordingReporter quiet;
  RecordStore store(quiet);
  if (store.jReadRecFile(file) < 1) return 0;
  const int count = static_cast<int>(FindRecords(store, "PHNA").size());
  store.jCloseRec();
  return count;
}

}  // namespace

int NewFromCifCommand(const std::vector<std::string>& args) {
  std::string project, cif;
  bool useExisting = false;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--from-cif" && i + 1 < args.size() && cif.empty()) {
      cif = args[++i];
    } else if (args[i] == "--use-existing") {
      useExisting = true;
    } else if (project.empty() && !args[i].starts_with("--")) {
      project = args[i];
    } else {
      return kBadArguments;
    }
  }
  if (project.empty() || cif.empty()) return kBadArguments;

  ScriptedToolkit toolkit{true};
  ShellState state;
  state.newProjectMode = 2;
  bool imported = false;
  state.hooks.importCif = [&](ShellState& s, Toolkit& t, const std::string& name,
                              NewPhase& phase) {
    imported = ImportCifPhase(s, t, name, phase);
    return imported;
  };
  const std::string recFile = ForceExtension(project, "rec");
  const int phasesBefore = PhaseCount(recFile);
  // The dialog "New project from CIF" with both names filled in and OK.
  toolkit.QueueDialog({128, {{1382, cif}, {1383, project}}, {kIdOk}});
  toolkit.QueueAnswer(useExisting);
  NewProject(state, toolkit);
  // NewProject reports its failures itself; the project stands when a phase was added.
  if (!imported || state.projectFileName.empty()) return 1;
  return PhaseCount(recFile) > phasesBefore ? 0 : 1;
}

}  // namespace kaldena
