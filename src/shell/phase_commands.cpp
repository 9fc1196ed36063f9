// Phase add and delete over the block of all phases' records.
#include "shell/phase_commands.h"

#include <algorithm>
#include <fstream>

#include "shell/default_project.h"
#include "shell/edit_command.h"
#include "shell/phase_dialog.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "store/record_catalogue.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kSelectOpen = 136;
constexpr int kFormDefaults = 1, kFormProject = 2, kFormCif = 3;

// The name field and Browse serve the forms that read a file.
void ShowFormFields(Toolkit& toolkit, int form) {
  const int state = form == kFormDefaults ? 0 : 1;
  toolkit.WDialogFieldState(kAddPhaseFile, state);
  toolkit.WDialogFieldState(kAddPhaseBrowse, state);
}

// Dialog 119; the form and the name are remembered in `state`. False on Cancel.
bool AskAddPhase(ShellState& state, Toolkit& toolkit) {
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(kAddPhaseDialog);
  const int form = std::clamp(state.addPhaseSource, kFormDefaults, kFormCif);
  toolkit.WDialogPutRadioButton(kAddPhaseDefaults + form - 1);
  toolkit.WDialogPutString(kAddPhaseFile, state.addPhaseFile);
  ShowFormFields(toolkit, form);
  toolkit.WMessageEnable(kFieldChanged, true);
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  int button = 0;
  for (;;) {
    const Message message = toolkit.WMessageGet();
    const int chosen = toolkit.WDialogGetRadioButton(kAddPhaseDefaults, kAddPhaseCif);
    if (message.type == kFieldChanged) {
      ShowFormFields(toolkit, chosen);
    } else if (message.type == kCloseRequest) {
      break;
    } else if (message.type == kPushButton && message.value == kAddPhaseBrowse) {
      std::string name = chosen == kFormCif ? "*.cif" : "*.rec";
      toolkit.WSelectFile(chosen == kFormCif ? "CIF|*.cif|" : "Project file|*.rec|", kSelectOpen,
                          name, "Select raw data file");
      if (!NoSelection(name)) toolkit.WDialogPutString(kAddPhaseFile, StrippedText(name));
    } else if (message.type == kPushButton &&
               (message.value == kIdOk || message.value == kIdCancel)) {
      button = message.value;
      break;
    }
  }
  if (button == kIdOk) {
    state.addPhaseSource = toolkit.WDialogGetRadioButton(kAddPhaseDefaults, kAddPhaseCif);
    state.addPhaseFile = std::string(Trimmed(toolkit.WDialogGetString(kAddPhaseFile)));
  }
  toolkit.WMessageEnable(kFieldChanged, false);
  toolkit.WDialogUnload();
  return button == kIdOk;
}

// Opens the parameter file and reads every phase. On failure the project is closed as the
// add and delete commands say.
bool ReadAllPhases(ShellState& state, Toolkit& toolkit, ProjectPhases& project) {
  ShellReporter reporter(state, toolkit);
  RecordStore store(reporter);
  if (store.jReadRecFile(InProjectDir(state, state.parameterFileName)) < 1) {
    LogLine(state, toolkit, " Error opening project file.");
    state.projectFileName.clear();
    EnableProjectMenus(state, toolkit, 0);
    return false;
  }
  std::string error;
  const bool read = ReadProjectPhases(store, project, error);
  store.jCloseRec();
  if (!read) LogLine(state, toolkit, error);
  return read;
}

// A phase of another project: the records of its first phase, not its codewords.
bool ImportPhase(ShellState& state, Toolkit& toolkit, const std::string& file, PhaseRecords& phase,
                 bool& anisotropic) {
  ShellReporter reporter(state, toolkit);
  RecordStore store(reporter);
  if (store.jReadRecFile(InProjectDir(state, file)) < 1) {
    LogLine(state, toolkit, " Error opening rec-file " + file);
    return false;
  }
  const bool read = ReadFirstPhase(store, phase, anisotropic);
  store.jCloseRec();
  return read;
}

// Starting values of forms 1 and 3: a small scale, orientation factors of 1, a Lorentzian
// fraction of 0.5 and a narrow width.
void StartingValues(PhaseRecords& phase) {
  phase.scale[0] = 0.01f;
  phase.asym[0] = phase.asym[2] = 1.0f;
  phase.shape[0] = 0.5f;
  phase.widths[2] = 0.02f;
}

// The CIF's phase; each atom's type is the number of its element among `elements` (the
// symbols of the ANOM lines), where an element new to the project is appended.
bool CifPhase(ShellState& state, Toolkit& toolkit, const std::string& file,
              std::vector<std::string>& elements, PhaseRecords& phase) {
  NewPhase cif;
  const auto import = state.hooks.importCif;
  const bool imported = import && import(state, toolkit, InProjectDir(state, file), cif);
  if (state.debugMode != 0) ShowMessage(toolkit, "Progress", "ImportCIF return");
  if (!imported) return false;
  phase.title = "CIF phase";
  phase.spaceGroup = cif.spaceGroup;
  phase.cell = cif.cell;
  StartingValues(phase);
  for (const NewAtom& source : cif.atoms) {
    PhaseAtom atom;
    atom.label = source.name;
    const std::string element =
        source.element.empty() ? AtomTypeSymbol(source.name) : AtomTypeSymbol(source.element);
    auto known = std::find(elements.begin(), elements.end(), element);
    if (known == elements.end()) known = elements.insert(elements.end(), element);
    atom.type = static_cast<int>(known - elements.begin()) + 1;
    atom.values = source.values;
    atom.siteFactor = source.siteFactor;
    atom.beta = source.beta;
    phase.atoms.push_back(atom);
  }
  return true;
}

// The element symbols of the ANOM lines, in order.
std::vector<std::string> AtomTypeSymbols(ShellState& state, Toolkit& toolkit) {
  ShellReporter reporter(state, toolkit);
  RecordStore store(reporter);
  std::vector<std::string> symbols;
  if (store.jReadRecFile(InProjectDir(state, state.parameterFileName)) < 1) return symbols;
  for (const std::string& data : FindRecords(store, "ANOM")) {
    symbols.push_back(AtomTypeSymbol(data.substr(0, 2)));
  }
  store.jCloseRec();
  return symbols;
}

// The lines of a key as the file holds them.
std::vector<Record> LinesOfKey(const std::string& file, std::string_view key) {
  std::ifstream in(file, std::ios::binary);
  std::vector<Record> lines;
  for (std::string line; ReadRecordLine(in, line);) {
    if (RecordKeyMatches(line, key)) lines.push_back(PadRecord(line));
  }
  return lines;
}

// JOBT and the phase block written back as one undo step, then the project updated.
bool WritePhases(ShellState& state, Toolkit& toolkit, const ProjectPhases& project,
                 PhaseBlockWriter writer, std::string_view stepName,
                 const std::vector<Record>& extra = {}) {
  std::vector<Record> records = {JobControlsRecord(project.job)};
  const std::vector<Record> block = PhaseRecordBlock(project, writer);
  records.insert(records.end(), extra.begin(), extra.end());
  records.insert(records.end(), block.begin(), block.end());
  if (!WriteParameterRecords(state, toolkit, records, stepName)) return false;
  state.job.values[2] = project.job.phases;
  state.job.values[5] = project.job.atomTypes;
  EnablePhaseMenus(state, toolkit);
  UpdateProject(state, toolkit);
  return true;
}

}  // namespace

PhaseRecords DefaultAddedPhase() {
  PhaseRecords phase;
  phase.title = "Default phase";
  phase.spaceGroup = "P 1";
  PhaseAtom atom;
  atom.label = "H";
  atom.values = {0.0f, 0.0f, 0.0f, 1.0f, 1.0f};
  phase.atoms.push_back(atom);
  StartingValues(phase);
  return phase;
}

void AddPhase(ShellState& state, Toolkit& toolkit) {
  if (!AskAddPhase(state, toolkit)) return;
  ProjectPhases project;
  if (!ReadAllPhases(state, toolkit, project)) return;
  const int phases = static_cast<int>(project.phases.size());
  if (phases >= kMaxPhases) {
    LogLine(state, toolkit,
            "No phase added: the project holds " + std::to_string(phases) + " phases already");
    return;
  }
  PhaseRecords added;
  std::vector<Record> typeLines;
  if (state.addPhaseSource == kFormDefaults) {
    added = DefaultAddedPhase();
  } else if (state.addPhaseSource == kFormProject) {
    bool anisotropic = false;
    if (!ImportPhase(state, toolkit, state.addPhaseFile, added, anisotropic)) return;
    project.anisotropic = project.anisotropic || anisotropic;
  } else {
    std::vector<std::string> elements = AtomTypeSymbols(state, toolkit);
    const size_t known = elements.size();
    if (!CifPhase(state, toolkit, state.addPhaseFile, elements, added)) return;
    if (elements.size() > static_cast<size_t>(kMaxAtomTypes)) {
      LogLine(state, toolkit, "No phase added: more than 100 atom types");
      return;
    }
    for (size_t i = known; i < elements.size(); ++i) typeLines.push_back(AtomTypeLine(elements[i]));
    project.job.atomTypes = static_cast<int>(elements.size());
    project.anisotropic = true;
  }
  project.phases.push_back(added);
  project.job.phases = phases + 1;
  if (!typeLines.empty()) {
    // The ANOM lines stand as they were, the new ones behind them.
    const std::vector<Record> lines =
        LinesOfKey(InProjectDir(state, state.parameterFileName), "ANOM");
    typeLines.insert(typeLines.begin(), lines.begin(), lines.end());
  }
  if (!WritePhases(state, toolkit, project, PhaseBlockWriter::kAdd, "Add phase", typeLines)) return;
  state.currentPhase = project.job.phases;
  EditPhaseDialog(state, toolkit);
}

void DeletePhase(ShellState& state, Toolkit& toolkit) {
  ProjectPhases project;
  if (!ReadAllPhases(state, toolkit, project)) return;
  const int number = state.deletePhaseNumber;
  if (project.phases.size() < 2 || number < 1 || number > static_cast<int>(project.phases.size())) {
    return;
  }
  project.phases.erase(project.phases.begin() + (number - 1));
  project.job.phases = static_cast<int>(project.phases.size());
  if (!WritePhases(state, toolkit, project, PhaseBlockWriter::kDelete,
                   "Delete phase " + std::to_string(number)))
    return;
  LogLine(state, toolkit, FormatLine("('Phase no. ',i2,' has been deleted')", number));
  state.currentPhase = std::min(state.currentPhase, project.job.phases);
}

}  // namespace kaldena
