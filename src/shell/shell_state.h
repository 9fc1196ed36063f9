// What the shell's commands share between them, from start to exit. Everything else of a
// project is read from its parameter file by the command that needs it.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "shell/plot_state.h"

namespace kaldena {

class Toolkit;
struct ShellState;
struct NewPhase;

// Menu ids that the lifecycle touches.
namespace menu {
inline constexpr int kFile = 40001;
inline constexpr int kNewFromDefaults = 40002;
inline constexpr int kPlot = 40007;
inline constexpr int kDebug = 40013;
inline constexpr int kEditProject = 40014;
inline constexpr int kOpenProject = 40016;
inline constexpr int kNewProject = 40017;   // the popup
inline constexpr int kRecentFirst = 40018;  // to 40021
inline constexpr int kNewFromCif = 40023;
inline constexpr int kUpdateProject = 40024;
inline constexpr int kSaveProjectAs = 40025;
inline constexpr int kEditPhase2 = 40034;
inline constexpr int kEditPhase3 = 40035;
inline constexpr int kMorePhases = 40036;
inline constexpr int kEditPhase4 = 40037;
inline constexpr int kEditPhase5 = 40061;  // to 40066 for phase 10
inline constexpr int kRun = 40040;
inline constexpr int kRunProject = 40041;
inline constexpr int kUpdateAndRun = 40043;
inline constexpr int kFourier = 40048;
inline constexpr int kOutput = 40053;
inline constexpr int kBackupProject = 40059;
inline constexpr int kRestoreProject = 40060;
inline constexpr int kDeletePhase = 40067;
inline constexpr int kDeletePhase1 = 40068;  // to 40077 for phase 10
inline constexpr int kStopRun = 40086;       // ends a running job after its current cycle
}  // namespace menu

// The eight numbers of JOBT as the shell keeps them; defaults when the record is absent.
struct JobValues {
  std::array<int, 8> values{0, 1, 1, -1, 0, 1, 0, 1};
  int Phases() const { return values[2]; }
};

struct Preferences {
  std::string startingDir;
  std::string editorPath;
  std::string visualizerPath;
  double minimumU = 0.0;
  double minimumV = 0.0;
  double minimumW = 0.01;
};

// Parts of the shell that are not in this layer yet register here; an empty hook is skipped.
struct ShellHooks {
  // Reads the summary and redraws the pattern after a load or a run.
  std::function<void(ShellState&, Toolkit&)> showPattern;
  // The edit dialogs of a new project (files, controls, globals, each phase), run after the
  // default records stand in the parameter file.
  std::function<void(ShellState&, Toolkit&)> editNewProject;
  // Fills the phase model of a new project from a CIF; true on success.
  std::function<bool(ShellState&, Toolkit&, const std::string& cif, NewPhase& phase)> importCif;
  // Called on the job's thread after each refinement cycle has been shown: lets tests hold
  // the engine inside a run.
  std::function<void(int cycle)> afterCycleShown;
};

inline constexpr int kRecentSlots = 4;
inline constexpr int kMaxChildWindows = 50;

struct ShellState {
  // Project and its files. Names as the records give them; a name without a directory of
  // its own lies in projectDir.
  std::string projectFileName;  // blank: no project
  std::string projectDir;       // with its trailing separator, or blank
  std::string projectBaseName;  // name part up to the first point
  std::string parameterFileName;
  std::string listFileName;
  std::string summaryFileName;
  std::string fourierFileName;
  std::string rawDataFileName;
  bool rawDataDefined = false;
  std::string projectTitle;
  JobValues job;
  // 0 project, 1 .mlt, 2 .exp, 3 .edt: a batch that the engine takes apart itself.
  int fileType = 0;
  std::string cifFileName;

  // Program, preferences, recent projects.
  std::string programDir;
  std::string preferencesFile;  // programDir + "kalden.ini"
  Preferences preferences;
  std::array<std::string, kRecentSlots> recentProjects;  // slot 1 is the latest
  bool recentWritingAllowed = false;

  // Settings and commands.
  int debugMode = 0;
  int newProjectMode = 1;  // 1 from defaults, 2 from CIF
  int currentPhase = 1;
  int deletePhaseNumber = 1;
  bool exitRequested = false;

  // Windows.
  int logWindow = 0;
  int logLineCount = 0;
  std::vector<int> childWindows;
  int childWindowCount = 0;  // may fall to -1 when the log window is closed

  // Plot: its data, options (the frame colour among them), zoom and Fourier section.
  int plotMode = 0;  // 0 none, 1 pattern, 2 halfwidths, 3 Fourier map
  int reloadPlotData = 1;
  PlotState plot;
  int hardcopyInProgress = 0;
  int epsInProgress = 0;

  // Memory of the Add phase dialog: source 1 defaults, 2 project file, 3 CIF.
  std::string addPhaseFile;
  int addPhaseSource = 2;

  ShellHooks hooks;
};

}  // namespace kaldena
