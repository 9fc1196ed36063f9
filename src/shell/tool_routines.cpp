#include "shell/tool_routines.h"

#include "shell/cif_phase_import.h"
#include "shell/crystallinity_dialog.h"
#include "shell/edit_dialogs.h"
#include "shell/main_window.h"
#include "shell/option_dialogs.h"
#include "shell/peak_dialog.h"
#include "shell/phase_commands.h"
#include "shell/phase_dialog.h"
#include "shell/plot_dialogs.h"
#include "shell/plot_window.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "tools/cif_raw_report.h"
#include "tools/cif_writer.h"

namespace kaldena {

namespace {

std::string Project(const ShellState& state) { return InProjectDir(state, state.projectFileName); }

void CifOfProject(ShellState& state, Toolkit& toolkit) {
  ShellReporter reporter(state, toolkit);
  StartCif(Project(state), reporter, DateTimeText(toolkit, 10),
           [&](const std::string& file) { StartEditor(state, toolkit, file); });
}

void WriteRawReportOfProject(ShellState& state, Toolkit& toolkit) {
  ShellReporter reporter(state, toolkit);
  const std::string project = Project(state);
  const std::string report = RawReportFileName(project);
  if (WriteRawReport(project, report, reporter) == RawReportStatus::kOk) {
    StartEditor(state, toolkit, report);
  }
}

}  // namespace

ShellRoutines ToolRoutines() {
  ShellRoutines r;
  r.redrawPlot = Redraw;
  r.plotKey = PlotKey;
  r.plotMouse = PlotMouse;
  r.fullPattern = ShowFullPattern;
  r.plotOptions = PlotOptionsDialog;
  r.plotFourierMaps = FourierPlotDialog;
  r.distanceOptions = DistanceOptionsDialog;
  r.tableOptions = TableOptionsDialog;
  r.fourierOptions = FourierOptionsDialog;
  r.cif = CifOfProject;
  r.cifRawReport = WriteRawReportOfProject;
  r.crystallinity = CrystallinityDialog;
  r.addAtoms = AddAtomsDialog;
  AddEditRoutines(r);
  r.editPhase = EditPhaseDialog;
  r.addPhase = AddPhase;
  r.deletePhase = DeletePhase;
  r.writeStructureCif = [](ShellState& state, Toolkit& toolkit, const std::string& parameters,
                           const std::string& cif) {
    ShellReporter reporter(state, toolkit);
    return WriteCif(parameters, cif, reporter, DateTimeText(toolkit, 10)) == CifStatus::kOk;
  };
  return r;
}

void InstallToolHooks(ShellState& state) {
  if (!state.hooks.importCif) state.hooks.importCif = ImportCifPhase;
  if (!state.hooks.editNewProject) {
    state.hooks.editNewProject = [](ShellState& s, Toolkit& t) {
      EditNewProject(s, t, ToolRoutines());
    };
  }
  if (!state.hooks.showPattern) state.hooks.showPattern = ShowFullPattern;
}

}  // namespace kaldena
