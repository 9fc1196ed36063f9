#include "shell/cif_phase_import.h"

#include "shell/shell_services.h"
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

// The CIF's phase as the new-project command's phase: its atoms keep their site factors and
// the element of their type, which names the atom type line.
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

}  // namespace

bool ImportCifPhase(ShellState& state, Toolkit& toolkit, const std::string& cif,
                    NewPhase& phase) {
  ImportReporter reporter(state, toolkit);
  const CifPhase imported = ImportCif(cif, reporter);
  if (imported.status != CifImportStatus::kOk) return false;
  phase = ToNewPhase(imported);
  return true;
}

}  // namespace kaldena
