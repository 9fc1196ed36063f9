// The main window's menu: every command id with its menu, caption and key, and the routine
// that the message loop calls for it. Commands whose routine lives in work that is not part
// of this build (dialogs, plots, CIF) go through ShellRoutines; an empty slot there logs one
// "is not available in this build" line instead.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

// Menu ids beyond those the project lifecycle names in shell_state.h.
namespace menu {
inline constexpr int kSaveJpg = 40004;
inline constexpr int kPrintGraphics = 40005;
inline constexpr int kExit = 40006;
inline constexpr int kPreferences = 40008;
inline constexpr int kFrameColour = 40009;
inline constexpr int kLogSize8 = 40011;
inline constexpr int kEditAll = 40015;
inline constexpr int kLogPrint = 40022;
inline constexpr int kSaveBmp = 40026;
inline constexpr int kSaveEps = 40027;
inline constexpr int kAbout = 40028;
inline constexpr int kEditFiles = 40029;
inline constexpr int kEditUpdateProject = 40030;
inline constexpr int kEditControls = 40031;
inline constexpr int kEditGlobals = 40032;
inline constexpr int kEditPhase1 = 40033;
inline constexpr int kFullPattern = 40038;
inline constexpr int kPlotOptions = 40039;
inline constexpr int kViewOutput = 40042;
inline constexpr int kPlotHalfwidths = 40044;
inline constexpr int kPlotStructure = 40045;
inline constexpr int kDistances = 40046;
inline constexpr int kDistanceOptions = 40047;
inline constexpr int kFourierCalculation = 40049;
inline constexpr int kAddPeaks = 40050;
inline constexpr int kAddAtoms = 40051;
inline constexpr int kPlotFourierMaps = 40052;
inline constexpr int kTables = 40054;
inline constexpr int kTablePlus = 40055;
inline constexpr int kCif = 40056;
inline constexpr int kCifRawReport = 40057;
inline constexpr int kAddPhase = 40078;
inline constexpr int kCrystallinity = 40079;
inline constexpr int kTableOptions = 40080;
inline constexpr int kViewRawData = 40081;
inline constexpr int kLogSave = 40082;
inline constexpr int kLogSize10 = 40083;
inline constexpr int kLogSize12 = 40084;
inline constexpr int kFourierOptions = 40085;
// Undo and redo of edits (edit_history.h).
inline constexpr int kUndo = 40088;
inline constexpr int kRedo = 40089;
}  // namespace menu

// Routines that other parts of the shell provide. Each is optional: a menu command whose
// routine is empty logs that it is not available, and a message that would go to an empty
// plot routine is dropped, so the program runs with any subset registered.
struct ShellRoutines {
  using Command = std::function<void(ShellState&, Toolkit&)>;

  // Plots: redraw the current plot (argument 0 for the screen, as the repaint does), keys,
  // mouse and wheel messages, and the Plot menu's dialogs.
  std::function<void(ShellState&, Toolkit&, int argument)> redrawPlot;
  std::function<void(ShellState&, Toolkit&, const Message&)> plotKey;
  std::function<void(ShellState&, Toolkit&, const Message&)> plotMouse;
  Command fullPattern;
  Command plotOptions;

  // Edit dialogs; the phase dialog edits state.currentPhase.
  Command editFiles;
  Command editControls;
  Command editGlobals;
  Command editPhase;
  // Phase add and delete; delete takes state.deletePhaseNumber.
  Command addPhase;
  Command deletePhase;

  // Tools' dialogs and the parts of tools not in this build.
  Command fourierOptions;
  Command addAtoms;  // the peak grid of "Add atoms"
  Command plotFourierMaps;
  Command tableOptions;
  Command tablePlus;
  Command distanceOptions;
  Command cif;
  Command cifRawReport;
  Command crystallinity;
  // Writes the structure of `parameterFile` to `cifFile` for the structure viewer; true on
  // success. The writer reports its own failures.
  std::function<bool(ShellState&, Toolkit&, const std::string& parameterFile,
                     const std::string& cifFile)>
      writeStructureCif;
};

// What every command works on.
struct ShellContext {
  ShellState& state;
  Toolkit& toolkit;
  const ShellRoutines& routines;
};

struct MenuEntry;
using MenuRoutine = void (*)(ShellContext& shell, const MenuEntry& entry);

struct MenuEntry {
  int id = 0;
  std::string_view menu;     // "File", "Edit project, More phases", ...
  std::string_view caption;  // as the menu shows it
  std::string_view key;      // accelerator, blank when none
  MenuRoutine routine = nullptr;
  int argument = 0;  // the phase, recent slot, font size or table mode the routine takes
};

// The whole menu, in menu order.
std::span<const MenuEntry> MenuTable();
// The entry of an id, or nullptr for an id the menu does not have.
const MenuEntry* FindMenuEntry(int id);
// Runs the command of a menu selection; an id not in the table does nothing. True when the
// id was found.
bool DispatchMenu(ShellContext& shell, int id);

// The one line that stands for a command whose routine is not in this build.
std::string NotAvailableText(const MenuEntry& entry);
void LogNotAvailable(ShellContext& shell, const MenuEntry& entry);

}  // namespace kaldena
