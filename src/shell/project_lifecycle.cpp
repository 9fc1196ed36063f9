// Project commands of the File, Edit project and Run menus.
#include "shell/project_lifecycle.h"

#include <filesystem>
#include <fstream>

#include "engine/run_engine.h"
#include "engine/run_report.h"
#include "shell/default_project.h"
#include "shell/engine_job.h"
#include "shell/preferences.h"
#include "shell/shell_services.h"
#include "store/record_catalogue.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/file_names.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::string_view kProjectFilter = "Project file|*.rec|";
constexpr int kSelectOpen = 136;
constexpr int kSelectOpenBackup = 128;
constexpr int kSelectSave = 11;

// A text record's value, or `fallback` when the record is absent or blank.
std::string NameRecord(RecordStore& store, std::string_view key, const std::string& fallback) {
  std::string value = FindText(store, key, "");
  return TrimmedLength(value) == 0 ? fallback : value;
}

// Steps shared by open and new: base name, directory, title, debug box, recent list.
void TakeProjectName(ShellState& state, Toolkit& toolkit) {
  state.projectBaseName = BaseNameOf(state.projectFileName);
  state.projectDir = DirectoryOf(state.projectFileName);
  if (!state.projectDir.empty()) toolkit.IOsDirChange(state.projectDir);
  state.projectTitle = state.projectBaseName.substr(0, 20);
  if (state.debugMode != 0) ShowMessage(toolkit, "Progress", Trimmed(state.projectFileName));
  state.recentWritingAllowed = true;
  PushRecentProject(state, toolkit);
}

void ShowPattern(ShellState& state, Toolkit& toolkit) {
  if (state.hooks.showPattern) state.hooks.showPattern(state, toolkit);
}

// Dialog 128: the CIF and the project file of a new project. False on Cancel.
bool AskCifProject(Toolkit& toolkit, std::string& cif, std::string& project) {
  constexpr int kDialog = 128, kCifField = 1382, kProjectField = 1383;
  constexpr int kBrowseCif = 1384, kBrowseProject = 1385;
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(kDialog);
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  bool accepted = false;
  while (const int button = NextDialogButton(toolkit)) {
    if (button == kBrowseCif || button == kBrowseProject) {
      const bool forCif = button == kBrowseCif;
      std::string name = forCif ? "*.cif" : "*.rec";
      toolkit.WSelectFile(forCif ? "CIF|*.cif|" : kProjectFilter,
                          forCif ? kSelectOpen : kSelectSave, name,
                          forCif ? "Select CIF" : "Select project file");
      if (!NoSelection(name)) {
        toolkit.WDialogPutString(forCif ? kCifField : kProjectField, StrippedText(name));
      }
    } else if (button == kIdOk || button == kIdCancel) {
      accepted = button == kIdOk;
      break;
    }
  }
  if (accepted) {
    cif = toolkit.WDialogGetString(kCifField);
    project = toolkit.WDialogGetString(kProjectField);
  }
  toolkit.WDialogUnload();
  return accepted;
}

// Steps 7 to 16 of a new project, once its file name stands in `state`.
bool BuildNewProject(ShellState& state, Toolkit& toolkit, const NewPhase* cifPhase) {
  ShellReporter reporter(state, toolkit);
  EnableProjectMenus(state, toolkit, 0);
  const std::string name(Trimmed(state.projectFileName));
  std::error_code error;
  if (!std::filesystem::exists(name, error)) {
    std::ofstream out(name, std::ios::binary);
    if (out) out << "TITL      UNTITLED\n";
    if (!out) {
      LogLine(state, toolkit, "Error opening new project file");
      state.projectFileName.clear();
      return false;
    }
  } else if (!AskYesNo(toolkit, "File already exists",
                       name + " already exists. Do you want to use it?")) {
    state.projectFileName.clear();
    LogLine(state, toolkit, "No active project");
    return false;
  }
  state.reloadPlotData = 0;
  if (LoadProject(state, toolkit) != 0) return false;

  NewPhase phase = cifPhase != nullptr ? *cifPhase : DefaultPhase();
  // A further phase of a project that holds some already is numbered by its place.
  phase.title = "Phase no. " + std::to_string(std::max(state.job.Phases(), 0) + 1);
  {
    RecordStore store(reporter);
    if (store.jReadRecFile(InProjectDir(state, state.parameterFileName)) >= 1) {
      if (FindRecords(store, "PHNA").empty()) phase.title = "Phase no. 1";
      store.jCloseRec();
    }
  }
  if (state.debugMode != 0) ShowMessage(toolkit, "Progress", "Ready for storing data");
  if (state.debugMode != 0) ShowMessage(toolkit, "Progress", "Ready for jAddRec");
  const std::string parameterFile = InProjectDir(state, state.parameterFileName);
  if (!AddNewProjectRecords(parameterFile, state.projectBaseName, phase, reporter)) {
    return false;
  }
  // The phase count and atom types just written steer the menus.
  {
    RecordStore store(reporter);
    if (store.jReadRecFile(parameterFile) >= 1) {
      ReadJobValues(store, state.job);
      store.jCloseRec();
    }
  }
  EnablePhaseMenus(state, toolkit);
  if (state.hooks.editNewProject) state.hooks.editNewProject(state, toolkit);
  UpdateProject(state, toolkit);
  PushRecentProject(state, toolkit);
  EnableProjectMenus(state, toolkit, 1);
  return true;
}

}  // namespace

void ReadJobValues(RecordStore& store, JobValues& job) {
  job = JobValues{};
  std::string data;
  if (store.jFindRec("JOBT", data) != 1) return;
  JobValues read;
  auto& v = read.values;
  if (Read(data, "(8I5)", v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7]) == ReadStatus::kOk) {
    job = read;
  }
}

int FileTypeOf(std::string_view fileName, int previous) {
  const std::string_view name = Trimmed(fileName);
  if (name.size() < 3) return previous;
  const std::string_view ext = name.substr(name.size() - 3);
  if (ext == "rec" || ext == "REC") return 0;
  if (ext == "mlt" || ext == "MLT") return 1;
  if (ext == "exp" || ext == "EXP") return 2;
  if (ext == "edt" || ext == "EDT") return 3;
  return previous;
}

std::string InProjectDir(const ShellState& state, std::string_view name) {
  if (state.projectDir.empty()) return std::string(Trimmed(name));
  return ReplaceDirectory(state.projectDir, Trimmed(name));
}

void OpenProject(ShellState& state, Toolkit& toolkit, int slot) {
  if (slot < 1) {
    std::string name = "*.rec";
    toolkit.WSelectFile(kProjectFilter, kSelectOpen, name, "Open pattern file");
    if (NoSelection(name)) {
      ShowMessage(toolkit, "Error", "Invalid file selection");
      return;
    }
    state.projectFileName = StrippedText(name);
  } else if (slot > kRecentSlots) {
    ShowMessage(toolkit, "Error", "Invalid file selection");
    return;
  } else {
    state.projectFileName = state.recentProjects[static_cast<std::size_t>(slot - 1)];
  }
  state.fileType = FileTypeOf(state.projectFileName, state.fileType);
  TakeProjectName(state, toolkit);
  state.reloadPlotData = 1;
  LoadProject(state, toolkit);
  // Enabled even after a failed load, which has just greyed them: the menus follow the
  // command, not its outcome.
  EnableProjectMenus(state, toolkit, 1);
}

int ReadProjectNames(ShellState& state, Toolkit& toolkit) {
  ShellReporter reporter(state, toolkit);
  RecordStore store(reporter);
  const std::string projectFile(Trimmed(state.projectFileName));
  if (projectFile.empty() || store.jReadRecFile(projectFile) < 1) {
    store.jCloseRec();
    LogLine(state, toolkit, " Error opening project file.");
    LogLine(state, toolkit, projectFile);
    state.projectFileName.clear();
    EnableProjectMenus(state, toolkit, 0);
    return -1;
  }
  state.projectBaseName = BaseNameOf(projectFile);
  state.projectDir = DirectoryOf(projectFile);
  const std::string& base = state.projectBaseName;
  state.parameterFileName = NameRecord(store, "PWPR", base + ".par");
  state.listFileName = NameRecord(store, "PWUT", base + ".out");
  state.summaryFileName = NameRecord(store, "PWSM", base + ".sum");
  state.fourierFileName = NameRecord(store, "PWFO", base + ".fou");
  std::string data;
  state.rawDataDefined = store.jFindRec("PWDT", data) == 1;
  state.rawDataFileName = state.rawDataDefined ? std::string(Trimmed(data)) : std::string();
  state.projectTitle = NameRecord(store, "TITL", "UNTITLED");
  ReadJobValues(store, state.job);
  store.jCloseRec();
  return 0;
}

int LoadProject(ShellState& state, Toolkit& toolkit) {
  if (ReadProjectNames(state, toolkit) != 0) return -1;
  const std::string projectFile(Trimmed(state.projectFileName));
  // Two passes by design: a normal load logs its line twice.
  const std::string parameterFile = InProjectDir(state, state.parameterFileName);
  for (int pass = 1; pass <= 2; ++pass) {
    if (CopyFileChecked(toolkit, projectFile, parameterFile)) {
      LogLine(state, toolkit, "Started project: " + std::string(Trimmed(state.projectTitle)));
      SetStatusField(toolkit, 2, state.projectTitle);
    } else if (pass == 2) {
      LogLine(state, toolkit, "Error initializing project 1");
      return -1;
    }
  }
  state.addPhaseFile.clear();
  state.addPhaseSource = 2;
  state.plot.view.content = state.job.Phases() > 1 ? 29 : 31;
  state.plot.view.phaseShown.fill(true);
  EnablePhaseMenus(state, toolkit);
  ShowPattern(state, toolkit);
  return 0;
}

void NewProject(ShellState& state, Toolkit& toolkit) {
  state.fileType = 0;
  state.cifFileName.clear();
  state.projectFileName.clear();
  if (state.newProjectMode == 2) {
    if (!state.hooks.importCif) {
      LogLine(state, toolkit, "New project from CIF is not available in this build");
      return;
    }
    std::string cif, project;
    AskCifProject(toolkit, cif, project);
    if (NoSelection(cif)) {
      ShowMessage(toolkit, "Error", "Invalid CIF selection");
      return;
    }
    if (NoSelection(project)) {
      ShowMessage(toolkit, "Error", "Invalid project file");
      return;
    }
    state.cifFileName = ForceExtension(StrippedText(cif), "cif");
    state.projectFileName = ForceExtension(StrippedText(project), "rec");
    TakeProjectName(state, toolkit);
    // The phase model is filled before any file is touched, so a CIF that does not read
    // leaves nothing behind.
    NewPhase phase;
    if (!state.hooks.importCif(state, toolkit, state.cifFileName, phase)) return;
    if (state.debugMode != 0) ShowMessage(toolkit, "Progress", "Returned from importCIF");
    phase.fromCif = true;
    BuildNewProject(state, toolkit, &phase);
    return;
  }
  std::string name = "*.rec";
  toolkit.WSelectFile(kProjectFilter, kSelectSave, name, "Create new project file");
  if (NoSelection(name)) {
    ShowMessage(toolkit, "Error", "Invalid project file selection");
    return;
  }
  CreateProjectFromDefaults(state, toolkit, StrippedText(name));
}

bool CreateProjectFromDefaults(ShellState& state, Toolkit& toolkit, std::string_view fileName) {
  state.fileType = 0;
  state.cifFileName.clear();
  state.projectFileName = ForceExtension(StrippedText(fileName), "rec");
  TakeProjectName(state, toolkit);
  return BuildNewProject(state, toolkit, nullptr);
}

bool UpdateProject(ShellState& state, Toolkit& toolkit) {
  const bool ok = CopyFileChecked(toolkit, InProjectDir(state, state.parameterFileName),
                                  Trimmed(state.projectFileName));
  LogLine(state, toolkit, ok ? "Project updated" : "Error updating project");
  return ok;
}

bool BackupProject(ShellState& state, Toolkit& toolkit) {
  const std::string backup = InProjectDir(state, StrippedText(state.projectBaseName) + ".bck");
  const bool ok =
      CopyFileChecked(toolkit, InProjectDir(state, state.parameterFileName), backup);
  LogLine(state, toolkit, ok ? "Project backed up" : "Error backing up project");
  return ok;
}

bool RestoreProject(ShellState& state, Toolkit& toolkit) {
  std::string name = "*.bck";
  toolkit.WSelectFile("Backup file|*.bck|", kSelectOpenBackup, name, "Open backup file");
  if (NoSelection(name)) {
    ShowMessage(toolkit, "Error", "Invalid file selection");
    return false;
  }
  const bool ok =
      CopyFileChecked(toolkit, StrippedText(name), InProjectDir(state, state.parameterFileName));
  LogLine(state, toolkit, ok ? "Project restored" : "Error restoring project");
  return ok;
}

void SaveProjectAs(ShellState& state, Toolkit& toolkit) {
  std::string name = StrippedText(state.projectFileName);
  toolkit.WSelectFile(kProjectFilter, kSelectSave, name, "Save project as");
  if (NoSelection(name)) {
    ShowMessage(toolkit, "Error", "Invalid file selection");
    return;
  }
  const std::string target = ForceExtension(StrippedText(name), "rec");
  if (!CopyFileChecked(toolkit, state.projectFileName, target)) {
    state.projectFileName.clear();  // deliberately without a word: no project is open now
    return;
  }
  state.projectFileName = target;
  state.projectBaseName = BaseNameOf(target);
  if (LoadProject(state, toolkit) != 0) {
    LogLine(state, toolkit, "Error initializing project 2");
    return;
  }
  PushRecentProject(state, toolkit);
  ShowPattern(state, toolkit);
  EnableProjectMenus(state, toolkit, 1);
}

int RunProject(ShellState& state, Toolkit& toolkit) {
  ShellReporter reporter(state, toolkit);
  EngineRequest request;
  request.fileName = StrippedText(state.projectFileName);
  request.debug = state.debugMode != 0;
  const EngineResult result = RunEngineJob(state, toolkit, request);
  TellOutcome(result, reporter);
  if (result.status == 0) {
    if (state.plotMode > 2) state.plotMode = 1;
    state.reloadPlotData = 1;
    ShowPattern(state, toolkit);
  }
  return result.status;
}

void UpdateAndRun(ShellState& state, Toolkit& toolkit) {
  const bool ok = CopyFileChecked(toolkit, InProjectDir(state, state.parameterFileName),
                                  Trimmed(state.projectFileName));
  LogLine(state, toolkit, ok ? "Project updated" : "Error updating project");
  if (ok) RunProject(state, toolkit);
}

void PushRecentProject(ShellState& state, Toolkit& toolkit) {
  const std::string name = StrippedText(state.projectFileName);
  auto& slots = state.recentProjects;
  if (!name.empty() && name != StrippedText(slots[0])) {
    // A name lower in the list stays where it is, so it may stand twice.
    for (std::size_t i = slots.size() - 1; i > 0; --i) slots[i] = slots[i - 1];
    slots[0] = name;
  }
  ShowRecentProjects(state, toolkit);
  // Only a program that read its preferences has a file to keep the list in.
  if (state.recentWritingAllowed && !state.preferencesFile.empty()) {
    WriteRecentProjects(state, toolkit);
  }
}

void ShowRecentProjects(const ShellState& state, Toolkit& toolkit) {
  for (int i = 0; i < kRecentSlots; ++i) {
    const std::string& slot = state.recentProjects[static_cast<std::size_t>(i)];
    toolkit.WMenuSetString(menu::kRecentFirst + i,
                           TrimmedLength(slot) == 0 ? std::string_view("empty") : Trimmed(slot));
  }
}

void EnableProjectMenus(ShellState&, Toolkit& toolkit, int flag) {
  for (int popup : {menu::kEditProject, menu::kRun, menu::kPlot, menu::kFourier, menu::kOutput}) {
    toolkit.WMenuSetState(popup, kMenuItemEnabled, flag != 0 ? 1 : 0);
  }
}

void EnablePhaseMenus(ShellState& state, Toolkit& toolkit) {
  const int phases = state.job.Phases();
  auto set = [&](int item, bool on) { toolkit.WMenuSetState(item, kMenuItemEnabled, on ? 1 : 0); };
  set(menu::kEditPhase2, phases >= 2);
  set(menu::kEditPhase3, phases >= 3);
  set(menu::kMorePhases, phases >= 4);
  set(menu::kEditPhase4, phases >= 4);
  for (int phase = 5; phase <= 10; ++phase) set(menu::kEditPhase5 + phase - 5, phases >= phase);
  set(menu::kDeletePhase, phases >= 2);
  for (int phase = 2; phase <= 10; ++phase) set(menu::kDeletePhase1 + phase - 1, phases >= phase);
}

}  // namespace kaldena
