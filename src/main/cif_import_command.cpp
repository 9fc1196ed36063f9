// The CIF importer in the shell's terms: its phase as the new-project command's NewPhase, and
// "kalden new --from-cif", which drives the shell's own "New project from CIF".
#include <cstdio>
#include <string>
#include <vector>

#include "main/cif_import_commands.h"
#include "shell/default_project.h"
#include "store/record_catalogue.h"
#include "util/file_names.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "shell/shell_state.h"
#include "toolkit/headless_toolkit.h"
#include "tools/cif_import.h"

namespace kaldena {

namespace {

// The shell's reporter, with the import's stages as "Progress" boxes in debug mode.
class ImportReporter : public ShellReporter {
 public:
  ImportReporter(ShellState& state, Toolkit& toolkit)
      : ShellReporter(state, toolkit), state_(state), toolkit_(toolkit) {}
  void Progress(std::string_view stage) override {
    if (state_.debugMode != 0) kaldena::ShowMessage(toolkit_, "Progress", stage);
  }

 private:
  ShellState& state_;
  Toolkit& toolkit_;
};

// NewAtom has no site factor, and the line that the new-project command writes has none, so
// the engine reads a site factor of 1. The occupancy per operator is what it needs: dividing
// by the site factor here gives an atom on a special position its right weight.
NewPhase ToNewPhase(const CifPhase& cif) {
  NewPhase phase;
  phase.title = "Phase no. 1";
  phase.spaceGroup = cif.spaceGroup;
  phase.cell = cif.cell;
  phase.cellSd = cif.cellSd;
  phase.fromCif = true;
  for (const CifAtom& source : cif.atoms) {
    NewAtom atom;
    atom.name = source.label.substr(0, 4);
    atom.type = source.type;
    atom.values = source.values;
    atom.valueSd = source.valueSd;
    atom.siteFactor = source.siteFactor;
    if (source.type >= 1 && source.type <= static_cast<int>(cif.elements.size())) {
      atom.element = cif.elements[source.type - 1];
    }
    atom.beta = source.beta;
    atom.betaSd = source.betaSd;
    phase.atoms.push_back(atom);
  }
  return phase;
}

// Phases in a project file, 0 when it does not open.
int PhaseCount(const std::string& file) {
  RecordingReporter quiet;
  RecordStore store(quiet);
  if (store.jReadRecFile(file) < 1) return 0;
  const int count = static_cast<int>(FindRecords(store, "PHNA").size());
  store.jCloseRec();
  return count;
}

int Usage() {
  std::fprintf(stderr, "usage: kalden new PROJECT.rec --from-cif FILE.cif [--use-existing]\n");
  return 1;
}

}  // namespace

bool ImportCifPhase(ShellState& state, Toolkit& toolkit, const std::string& cif,
                    NewPhase& phase) {
  ImportReporter reporter(state, toolkit);
  const CifPhase imported = ImportCif(cif, reporter);
  if (imported.status != CifImportStatus::kOk) return false;
  phase = ToNewPhase(imported);
  return true;
}

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
      return Usage();
    }
  }
  if (project.empty() || cif.empty()) return Usage();

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
