// The menu table and the small routines behind its ids.
#include "shell/menu_dispatch.h"

#include <array>

#include "shell/engine_job.h"
#include "shell/main_window.h"
#include "shell/preferences.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "tools/distances.h"
#include "tools/fourier_add_peaks.h"
#include "tools/fourier_driver.h"
#include "tools/table.h"
#include "util/text.h"

namespace kaldena {

namespace {

using Entry = MenuEntry;
using Command = ShellRoutines::Command;

std::string ProjectFile(const ShellContext& shell) {
  return StrippedText(shell.state.projectFileName);
}

// A command of another part of the shell, or its not-available line.
void Run(ShellContext& shell, const Entry& entry, const Command& command) {
  if (command) {
    command(shell.state, shell.toolkit);
  } else {
    LogNotAvailable(shell, entry);
  }
}

// --- File
void NewFromDefaults(ShellContext& shell, const Entry&) {
  shell.state.newProjectMode = 1;
  NewProject(shell.state, shell.toolkit);
}
void NewFromCif(ShellContext& shell, const Entry&) {
  shell.state.newProjectMode = 2;
  NewProject(shell.state, shell.toolkit);
}
void Open(ShellContext& shell, const Entry& entry) {
  OpenProject(shell.state, shell.toolkit, entry.argument);
}
void Update(ShellContext& shell, const Entry&) { UpdateProject(shell.state, shell.toolkit); }
void SaveAs(ShellContext& shell, const Entry&) { SaveProjectAs(shell.state, shell.toolkit); }
void Print(ShellContext& shell, const Entry& entry) { PrintGraphics(shell, entry); }
void SaveJpg(ShellContext& shell, const Entry& entry) { SaveImage(shell, entry, "jpg"); }
void SaveBmp(ShellContext& shell, const Entry& entry) { SaveImage(shell, entry, "bmp"); }
void Eps(ShellContext& shell, const Entry& entry) { SaveEps(shell, entry); }
void LogPrint(ShellContext& shell, const Entry&) { PrintLog(shell); }
void LogSave(ShellContext& shell, const Entry&) { SaveLog(shell); }
void LogSize(ShellContext& shell, const Entry& entry) { SetLogTextSize(shell, entry.argument); }
void About(ShellContext& shell, const Entry&) { ShowAbout(shell); }
void Exit(ShellContext& shell, const Entry&) { shell.state.exitRequested = true; }

// --- Settings
void ToggleDebug(ShellContext& shell, const Entry& entry) {
  shell.state.debugMode = shell.state.debugMode != 0 ? 0 : 1;
  shell.toolkit.WMenuSetState(entry.id, kMenuItemChecked, shell.state.debugMode);
}

// The frame colour is kept as the graphics take it: blue, green, red from high to low byte.
void FrameColour(ShellContext& shell, const Entry&) {
  SelectColour(shell.toolkit, shell.state.plot.view.colours.frame);
  shell.state.reloadPlotData = 1;
  RedrawPlot(shell, 0);
}

void Preferences(ShellContext& shell, const Entry&) {
  PreferencesDialog(shell.state, shell.toolkit);
}

// --- Edit project
void EditFiles(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.editFiles);
}
void EditControls(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.editControls);
}
void EditGlobals(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.editGlobals);
}
void EditPhase(ShellContext& shell, const Entry& entry) {
  if (!shell.routines.editPhase) return LogNotAvailable(shell, entry);
  shell.state.currentPhase = entry.argument;
  shell.routines.editPhase(shell.state, shell.toolkit);
}
void AddPhase(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.addPhase);
}
void DeletePhase(ShellContext& shell, const Entry& entry) {
  if (!shell.routines.deletePhase) return LogNotAvailable(shell, entry);
  shell.state.deletePhaseNumber = entry.argument;
  shell.routines.deletePhase(shell.state, shell.toolkit);
}
void EditAll(ShellContext& shell, const Entry&) {
  if (TrimmedLength(shell.state.parameterFileName) == 0) return;
  StartEditor(shell, InProjectDir(shell.state, shell.state.parameterFileName));
}
void Backup(ShellContext& shell, const Entry&) { BackupProject(shell.state, shell.toolkit); }
void Restore(ShellContext& shell, const Entry&) { RestoreProject(shell.state, shell.toolkit); }
void RawData(ShellContext& shell, const Entry&) { ViewRawData(shell); }

// --- Run
void RunCommand(ShellContext& shell, const Entry&) { RunProject(shell.state, shell.toolkit); }
// After an EPS save the list file's name is the EPS file's, so this opens the EPS.
void ViewOutput(ShellContext& shell, const Entry&) {
  if (TrimmedLength(shell.state.listFileName) == 0) return;
  StartEditor(shell, InProjectDir(shell.state, shell.state.listFileName));
}
void UpdateRun(ShellContext& shell, const Entry&) { UpdateAndRun(shell.state, shell.toolkit); }
// Outside a job there is nothing to stop; during one the job's own loop takes the command.
void StopRun(ShellContext&, const Entry&) { RunStopFlag() = true; }

// --- Plot
void FullPattern(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.fullPattern);
}
void PlotOptions(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.plotOptions);
}
void Halfwidths(ShellContext& shell, const Entry& entry) {
  if (!shell.routines.redrawPlot) return LogNotAvailable(shell, entry);
  shell.state.plotMode = 2;
  RedrawPlot(shell, 1);
}
void Structure(ShellContext& shell, const Entry& entry) { PlotStructure(shell, entry); }

// --- Fourier
void FourierCalculation(ShellContext& shell, const Entry&) {
  if (!RequireProject(shell)) return;
  const std::string project = ProjectFile(shell);
  RunShellJob(shell.state, shell.toolkit, [&project](Reporter& reporter) {
    StartFourier(project, FourierFileOf(project, reporter), reporter);
  });
}
void FourierOptions(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.fourierOptions);
}
void AddPeaks(ShellContext& shell, const Entry&) {
  if (!RequireProject(shell)) return;
  ShellReporter reporter(shell.state, shell.toolkit);
  const DistanceListRunner distances = [](std::string_view project, std::string_view list,
                                          Reporter& r) {
    return RunDistan(project, list, r) ? 0 : 1;
  };
  const AddAllPeaksResult result = AddAllPeaks(ProjectFile(shell), distances, reporter);
  if (result.status == 0 && !result.distanceList.empty()) StartEditor(shell, result.distanceList);
}
void AddAtoms(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.addAtoms);
}
// Mouse moves would reach the plot under the contour dialog, so they are off meanwhile.
void PlotFourierMaps(ShellContext& shell, const Entry& entry) {
  if (!shell.routines.plotFourierMaps) return LogNotAvailable(shell, entry);
  shell.toolkit.WMessageEnable(kMouseMove, false);
  shell.routines.plotFourierMaps(shell.state, shell.toolkit);
  shell.toolkit.WMessageEnable(kMouseMove, true);
}

// --- Output
void Tables(ShellContext& shell, const Entry&) {
  if (!RequireProject(shell)) return;
  ShellReporter reporter(shell.state, shell.toolkit);
  const std::string table = RunTable(ProjectFile(shell), DateTimeText(shell.toolkit, 10), reporter);
  if (!table.empty()) StartEditor(shell, table);
}
void TablePlus(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.tablePlus);
}
void TableOptions(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.tableOptions);
}
void Distances(ShellContext& shell, const Entry&) {
  if (!RequireProject(shell)) return;
  ShellReporter reporter(shell.state, shell.toolkit);
  StartDistan(ProjectFile(shell), reporter,
              [&shell](const std::string& listFile) { StartEditor(shell, listFile); });
}
void DistanceOptions(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.distanceOptions);
}
void Cif(ShellContext& shell, const Entry& entry) { Run(shell, entry, shell.routines.cif); }
void CifRawReport(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.cifRawReport);
}
void Crystallinity(ShellContext& shell, const Entry& entry) {
  Run(shell, entry, shell.routines.crystallinity);
}

constexpr std::string_view kFile = "File";
constexpr std::string_view kNew = "File, New project";
constexpr std::string_view kSaveGraphics = "File, Save graphics";
constexpr std::string_view kLogTextSize = "File, Log text size";
constexpr std::string_view kSettings = "Settings";
constexpr std::string_view kEdit = "Edit project";
constexpr std::string_view kMore = "Edit project, More phases";
constexpr std::string_view kDelete = "Edit project, Delete phase";
constexpr std::string_view kRunMenu = "Run";
constexpr std::string_view kPlot = "Plot";
constexpr std::string_view kFourier = "Fourier";
constexpr std::string_view kOutput = "Output";

// Recent projects show their names in place of a caption; the slot stands here.
constexpr std::array kMenu = {
    Entry{menu::kNewFromDefaults, kNew, "From defaults", "", NewFromDefaults},
    Entry{menu::kNewFromCif, kNew, "From CIF", "", NewFromCif},
    Entry{menu::kOpenProject, kFile, "Open project", "", Open, 0},
    Entry{menu::kUpdateProject, kFile, "Save (update) project", "", Update},
    Entry{menu::kSaveProjectAs, kFile, "Save project as", "", SaveAs},
    Entry{menu::kPrintGraphics, kFile, "Print graphics", "", Print},
    Entry{menu::kSaveJpg, kSaveGraphics, "jpg", "", SaveJpg},
    Entry{menu::kSaveBmp, kSaveGraphics, "bmp", "", SaveBmp},
    Entry{menu::kSaveEps, kSaveGraphics, "eps", "", Eps},
    Entry{menu::kLogPrint, kFile, "Log print", "", LogPrint},
    Entry{menu::kLogSave, kFile, "Log save", "", LogSave},
    Entry{menu::kLogSize8, kLogTextSize, "  8", "", LogSize, 8},
    Entry{menu::kLogSize10, kLogTextSize, "10", "", LogSize, 10},
    Entry{menu::kLogSize12, kLogTextSize, "12", "", LogSize, 12},
    Entry{menu::kAbout, kFile, "About KALDEN", "", About},
    Entry{menu::kExit, kFile, "E&xit", "", Exit},
    Entry{menu::kRecentFirst, kFile, "Recent project 1", "", Open, 1},
    Entry{menu::kRecentFirst + 1, kFile, "Recent project 2", "", Open, 2},
    Entry{menu::kRecentFirst + 2, kFile, "Recent project 3", "", Open, 3},
    Entry{menu::kRecentFirst + 3, kFile, "Recent project 4", "", Open, 4},
    Entry{menu::kDebug, kSettings, "Debug", "", ToggleDebug},
    Entry{menu::kFrameColour, kSettings, "Select frame colour", "", FrameColour},
    Entry{menu::kPreferences, kSettings, "Preferences", "", Preferences},
    Entry{menu::kEditFiles, kEdit, "Files", "F5", EditFiles},
    Entry{menu::kEditControls, kEdit, "Controls", "F6", EditControls},
    Entry{menu::kEditGlobals, kEdit, "Globals", "F7", EditGlobals},
    Entry{menu::kEditPhase1, kEdit, "Phase 1", "F8", EditPhase, 1},
    Entry{menu::kEditPhase2, kEdit, "Phase 2", "F9", EditPhase, 2},
    Entry{menu::kEditPhase3, kEdit, "Phase 3", "F10", EditPhase, 3},
    Entry{menu::kEditPhase4, kMore, "Phase 4", "Shift+F4", EditPhase, 4},
    Entry{menu::kEditPhase5, kMore, "Phase 5", "Shift+F5", EditPhase, 5},
    Entry{menu::kEditPhase5 + 1, kMore, "Phase 6", "Shift+F6", EditPhase, 6},
    Entry{menu::kEditPhase5 + 2, kMore, "Phase 7", "Shift+F7", EditPhase, 7},
    Entry{menu::kEditPhase5 + 3, kMore, "Phase 8", "Shift+F8", EditPhase, 8},
    Entry{menu::kEditPhase5 + 4, kMore, "Phase 9", "Shift+F9", EditPhase, 9},
    Entry{menu::kEditPhase5 + 5, kMore, "Phase 10", "Shift+F10", EditPhase, 10},
    Entry{menu::kAddPhase, kEdit, "Add phase", "", AddPhase},
    Entry{menu::kDeletePhase1, kDelete, "Phase 1", "", DeletePhase, 1},
    Entry{menu::kDeletePhase1 + 1, kDelete, "Phase 2", "", DeletePhase, 2},
    Entry{menu::kDeletePhase1 + 2, kDelete, "Phase 3", "", DeletePhase, 3},
    Entry{menu::kDeletePhase1 + 3, kDelete, "Phase 4", "", DeletePhase, 4},
    Entry{menu::kDeletePhase1 + 4, kDelete, "Phase 5", "", DeletePhase, 5},
    Entry{menu::kDeletePhase1 + 5, kDelete, "Phase 6", "", DeletePhase, 6},
    Entry{menu::kDeletePhase1 + 6, kDelete, "Phase 7", "", DeletePhase, 7},
    Entry{menu::kDeletePhase1 + 7, kDelete, "Phase 8", "", DeletePhase, 8},
    Entry{menu::kDeletePhase1 + 8, kDelete, "Phase 9", "", DeletePhase, 9},
    Entry{menu::kDeletePhase1 + 9, kDelete, "Phase 10", "", DeletePhase, 10},
    Entry{menu::kEditAll, kEdit, "Edit all (Notepad)", "", EditAll},
    Entry{menu::kEditUpdateProject, kEdit, "Update project", "", Update},
    Entry{menu::kBackupProject, kEdit, "Backup project", "Ctrl+B", Backup},
    Entry{menu::kRestoreProject, kEdit, "Restore project", "Ctrl+R", Restore},
    Entry{menu::kViewRawData, kEdit, "View rawdata", "", RawData},
    Entry{menu::kRunProject, kRunMenu, "Run", "", RunCommand},
    Entry{menu::kViewOutput, kRunMenu, "View output", "", ViewOutput},
    Entry{menu::kUpdateAndRun, kRunMenu, "Update and run", "Ctrl+U", UpdateRun},
    Entry{menu::kStopRun, kRunMenu, "Stop", "Esc", StopRun},
    Entry{menu::kFullPattern, kPlot, "Full pattern", "F1", FullPattern},
    Entry{menu::kPlotOptions, kPlot, "Plot options", "", PlotOptions},
    Entry{menu::kPlotHalfwidths, kPlot, "Plot halfwidths", "F2", Halfwidths},
    Entry{menu::kPlotStructure, kPlot, "Plot structure", "F3", Structure},
    Entry{menu::kFourierCalculation, kFourier, "Fourier calculation", "", FourierCalculation},
    Entry{menu::kFourierOptions, kFourier, "Fourier options", "", FourierOptions},
    Entry{menu::kAddPeaks, kFourier, "Add peaks and distances", "", AddPeaks},
    Entry{menu::kAddAtoms, kFourier, "Add atoms", "", AddAtoms},
    Entry{menu::kPlotFourierMaps, kFourier, "Plot Fourier maps", "", PlotFourierMaps},
    Entry{menu::kTables, kOutput, "Tables", "Ctrl+T", Tables, 1},
    Entry{menu::kTablePlus, kOutput, "Table+", "", TablePlus, 2},
    Entry{menu::kTableOptions, kOutput, "Table options", "", TableOptions},
    Entry{menu::kDistances, kOutput, "Distances and angles", "Ctrl+D", Distances},
    Entry{menu::kDistanceOptions, kOutput, "Distans options", "", DistanceOptions},
    Entry{menu::kCif, kOutput, "CIF", "", Cif},
    Entry{menu::kCifRawReport, kOutput, "CIF rawdata report", "", CifRawReport},
    Entry{menu::kCrystallinity, kOutput, "Crystallinity", "", Crystallinity},
};

}  // namespace

std::span<const MenuEntry> MenuTable() { return kMenu; }

const MenuEntry* FindMenuEntry(int id) {
  for (const MenuEntry& entry : kMenu) {
    if (entry.id == id) return &entry;
  }
  return nullptr;
}

bool DispatchMenu(ShellContext& shell, int id) {
  const MenuEntry* entry = FindMenuEntry(id);
  if (entry == nullptr) return false;
  entry->routine(shell, *entry);
  return true;
}

std::string NotAvailableText(const MenuEntry& entry) {
  return std::string(entry.menu) + ": " + StrippedText(entry.caption) +
         " is not available in this build";
}

void LogNotAvailable(ShellContext& shell, const MenuEntry& entry) {
  LogLine(shell.state, shell.toolkit, NotAvailableText(entry));
}

}  // namespace kaldena
