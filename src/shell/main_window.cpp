// The main window's loop and the commands that act on windows, files of graphics and
// outside programs.
#include "shell/main_window.h"

#include <algorithm>

#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kPrinterDriver = 10;
constexpr int kPostScriptDriver = 2;
constexpr int kHardcopyOptionResolution = 9;
constexpr int kHardcopyOptionEps = 22;
constexpr int kHardcopyOptionsDialog = 3;
constexpr int kSaveByEditorDialog = 1;

// Starts a program; the error of an earlier operation is cleared first so that the caller's
// query sees this start only. True when it started.
bool StartProgram(Toolkit& toolkit, std::vector<std::string> arguments) {
  toolkit.InfoError(1);
  toolkit.IOsCommand(arguments, 0);
  return toolkit.InfoError(1) != kErrorOsCommand;
}

// Paper of the hardcopy in millimetres (A4 less margins), the screen in thousandths.
void ToHardcopy(Toolkit& toolkit) {
  toolkit.IGrPlotMode("H");
  toolkit.IGrUnits(0.0, 0.0, 180.0, 254.0);
  toolkit.IGrArea(0.0, 0.0, 1.0, 1.0);
}

void BackToScreen(Toolkit& toolkit) {
  toolkit.IGrPlotMode(" ");
  toolkit.IGrUnits(0.0, 0.0, 1000.0, 1000.0);
  toolkit.IGrArea(0.0, 0.0, 1.0, 1.0);
}

std::string GraphicsFileName(const ShellState& state, std::string_view extension) {
  return StrippedText(state.projectBaseName) + "." + std::string(extension);
}

}  // namespace

// --- Loop and windows

void RunMessageLoop(ShellContext& shell) {
  while (!shell.state.exitRequested) HandleMessage(shell, shell.toolkit.WMessageGet());
}

void HandleMessage(ShellContext& shell, const Message& message) {
  const ShellRoutines& routines = shell.routines;
  switch (message.type) {
    case kKeyDown:
      if (routines.plotKey) routines.plotKey(shell.state, shell.toolkit, message);
      break;
    case kMenuSelect:
      DispatchMenu(shell, message.value);
      break;
    case kMouseButtonDown:
    case kMouseButtonUp:
    case kMouseMove:
    case kMouseWheel:  // the plot's mouse routine passes the wheel over
      if (routines.plotMouse) routines.plotMouse(shell.state, shell.toolkit, message);
      break;
    case kExpose:
    case kResize:
      RedrawPlot(shell, 0);
      break;
    case kCloseRequest:
      HandleCloseRequest(shell, message.window);
      break;
    default:
      break;
  }
}

void HandleCloseRequest(ShellContext& shell, int window) {
  ShellState& state = shell.state;
  if (window == kMainWindow) {
    state.exitRequested = true;
    return;
  }
  auto& table = state.childWindows;
  table.erase(std::remove(table.begin(), table.end(), window), table.end());
  --state.childWindowCount;
  shell.toolkit.WindowCloseChild(window);
}

void ShutDown(ShellContext& shell) {
  ShellState& state = shell.state;
  const int count = std::min(state.childWindowCount, static_cast<int>(state.childWindows.size()));
  for (int i = count; i > 0; --i) {
    shell.toolkit.WindowCloseChild(state.childWindows[static_cast<std::size_t>(i - 1)]);
  }
  shell.toolkit.WindowClose();
}

int OpenGraphicsChild(ShellContext& shell) {
  ShellState& state = shell.state;
  if (state.childWindowCount >= kMaxChildWindows) {
    ShowMessage(shell.toolkit, "Window error",
                "Maximum child windows created.\rPlease close one and try again.");
    return 0;
  }
  const int window =
      shell.toolkit.WindowOpenChild(kGraphicsWindowStyle, 40, 40, 640, 480, "Graphics Window");
  state.childWindows.push_back(window);
  ++state.childWindowCount;
  return window;
}

bool RequireProject(ShellContext& shell) {
  if (TrimmedLength(shell.state.projectFileName) != 0) return true;
  LogLine(shell.state, shell.toolkit, "No active project");
  return false;
}

bool RedrawPlot(ShellContext& shell, int argument) {
  if (!shell.routines.redrawPlot) return false;
  shell.routines.redrawPlot(shell.state, shell.toolkit, argument);
  return true;
}

// --- Outside programs

void StartEditor(ShellContext& shell, const std::string& fileName) {
  StartEditor(shell.state, shell.toolkit, fileName);
}

void StartEditor(ShellState& state, Toolkit& toolkit, const std::string& fileName) {
  const std::string file = StrippedText(fileName);
  if (file.empty()) return;
  // A program that does not start is the toolkit's to report.
  StartProgram(toolkit, {StrippedText(state.preferences.editorPath), file});
}

void ViewRawData(ShellContext& shell) {
  const ShellState& state = shell.state;
  if (!state.rawDataDefined) return;
  const std::string file = InProjectDir(state, state.rawDataFileName);
  if (!StartProgram(shell.toolkit, {kRawDataViewer, file})) {
    StartProgram(shell.toolkit, {StrippedText(state.preferences.editorPath), file});
  }
}

void PlotStructure(ShellContext& shell, const MenuEntry& entry) {
  ShellState& state = shell.state;
  if (!shell.routines.writeStructureCif) return LogNotAvailable(shell, entry);
  if (!RequireProject(shell)) return;
  const std::string cif = InProjectDir(state, GraphicsFileName(state, "cif"));
  const std::string parameters = InProjectDir(state, state.parameterFileName);
  if (!shell.routines.writeStructureCif(state, shell.toolkit, parameters, cif)) {
    LogLine(state, shell.toolkit, "Error in kd_cif");
    return;
  }
  StartProgram(shell.toolkit, {StrippedText(state.preferences.visualizerPath), cif});
}

// --- Graphics files and printing

void SaveImage(ShellContext& shell, const MenuEntry& entry, std::string_view extension) {
  if (!shell.routines.redrawPlot) return LogNotAvailable(shell, entry);
  if (!RequireProject(shell)) return;
  shell.toolkit.WindowSelect(kMainWindow);
  shell.toolkit.IGrSaveImage(InProjectDir(shell.state, GraphicsFileName(shell.state, extension)));
}

void PrintGraphics(ShellContext& shell, const MenuEntry& entry) {
  if (!shell.routines.redrawPlot) return LogNotAvailable(shell, entry);
  ShellState& state = shell.state;
  Toolkit& toolkit = shell.toolkit;
  state.hardcopyInProgress = 1;
  ToHardcopy(toolkit);
  toolkit.IGrHardcopySelect(1, kPrinterDriver);
  toolkit.IGrHardcopyOptions(kHardcopyOptionResolution, 10);
  toolkit.WHardcopyOptions(kHardcopyOptionsDialog);
  if (toolkit.InfoDialog(kInfoDialogAccepted) == 1) {
    toolkit.IGrHardcopy(StrippedText(state.projectBaseName));
    RedrawPlot(shell, 0);
  }
  // Stopped also after a cancel: the toolkit takes a stop without an open hardcopy.
  toolkit.IGrHardcopy("S");
  BackToScreen(toolkit);
  state.hardcopyInProgress = 0;
  RedrawPlot(shell, 0);
}

void SaveEps(ShellContext& shell, const MenuEntry& entry) {
  if (!shell.routines.redrawPlot) return LogNotAvailable(shell, entry);
  if (!RequireProject(shell)) return;
  ShellState& state = shell.state;
  Toolkit& toolkit = shell.toolkit;
  toolkit.WindowSelect(kMainWindow);
  state.hardcopyInProgress = 1;
  state.epsInProgress = 1;
  ToHardcopy(toolkit);
  toolkit.IGrHardcopySelect(1, kPostScriptDriver);
  toolkit.IGrHardcopyOptions(kHardcopyOptionResolution, 10);
  toolkit.IGrHardcopyOptions(kHardcopyOptionEps, 2);
  // "View output" shows the EPS from now on, until a load reads PWUT again.
  state.listFileName = GraphicsFileName(state, "eps");
  toolkit.IGrHardcopy(InProjectDir(state, state.listFileName));
  RedrawPlot(shell, 0);
  toolkit.IGrHardcopy("S");
  BackToScreen(toolkit);
  state.hardcopyInProgress = 0;
  state.epsInProgress = 0;
  RedrawPlot(shell, 0);
}

// --- Log window

void PrintLog(ShellContext& shell) {
  Toolkit& toolkit = shell.toolkit;
  toolkit.WindowSelect(shell.state.logWindow);
  toolkit.WPrintEditOptions();
  if (toolkit.InfoDialog(kInfoExitButton) == 1) {
    toolkit.WEditPrint(StrippedText(shell.state.projectBaseName));
  }
  toolkit.WindowSelect(kMainWindow);
}

void SaveLog(ShellContext& shell) {
  shell.toolkit.WindowSelect(shell.state.logWindow);
  shell.toolkit.WEditSave(kSaveByEditorDialog);
  shell.toolkit.WindowSelect(kMainWindow);
}

void SetLogTextSize(ShellContext& shell, int size) {
  shell.toolkit.WindowSelect(shell.state.logWindow);
  shell.toolkit.WEditFont(kLogFontType, size);
  shell.toolkit.WindowSelect(kMainWindow);
}

// --- About

std::vector<std::string> AboutLines() {
  return {"KALDENA", "Version 3.0  (2016-02-11)", "Rietveld refinement framework",
          "C++ edition with the KALDEN engine", "Single-threaded desktop shell, headless core"};
}

void ShowAbout(ShellContext& shell) {
  Toolkit& toolkit = shell.toolkit;
  std::string text;
  for (const std::string& line : AboutLines()) {
    if (!text.empty()) text += '\n';
    text += line;
  }
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(kAboutDialog);
  toolkit.WDialogPutString(kAboutTextField, text);
  toolkit.WDialogShow(-1, -1, 0, kDialogModal);
  toolkit.WDialogUnload();
}

}  // namespace kaldena
