// The plot options and the Fourier plot dialogs.
#include "shell/plot_dialogs.h"

#include "shell/main_window.h"
#include "shell/plot_window.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "store/record_store.h"
#include "tools/contour.h"

namespace kaldena {
namespace {

constexpr int kPlotBoxes = 15;  // five curves and ten phases

// The colour of each check box, in the order of their ids.
std::array<int*, kPlotBoxes> ColoursByBox(PlotColours& c) {
  std::array<int*, kPlotBoxes> colours{&c.raw, &c.difference, &c.background, &c.bragg, &c.sum};
  for (int p = 0; p < kMaxPhases; ++p) colours[5 + p] = &c.phases[p];
  return colours;
}

// The content bit of each curve's box.
constexpr std::array<std::pair<int, int>, 5> kCurveBoxes{{{kShowRawBox, kShowRaw},
                                                          {kShowSumBox, kShowSum},
                                                          {kShowDifferenceBox, kShowDifference},
                                                          {kShowBackgroundBox, kShowBackground},
                                                          {kShowBraggBox, kShowBragg}}};

// The number of phases of the parameter file; 0 with " Error opening project file " when it
// does not open.
int PhaseCount(ShellState& state, Toolkit& toolkit) {
  ShellReporter reporter(state, toolkit);
  RecordStore store(reporter);
  if (store.jReadRecFile(InProjectDir(state, state.parameterFileName)) < 1) {
    store.jCloseRec();
    LogLine(state, toolkit, " Error opening project file ");
    return 0;
  }
  ReadJobValues(store, state.job);
  store.jCloseRec();
  return std::clamp(state.job.Phases(), 1, kMaxPhases);
}

}  // namespace

void PlotOptionsDialog(ShellState& state, Toolkit& toolkit) {
  const int phases = PhaseCount(state, toolkit);
  if (phases == 0) return;
  PlotView& view = state.plot.view;
  PlotColours colours = view.colours;  // the working copy the colour buttons change
  const std::array<int*, kPlotBoxes> colourOf = ColoursByBox(colours);
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(kPlotOptionsDialog);
  for (const auto& [box, bit] : kCurveBoxes) {
    toolkit.WDialogPutCheckBox(box, (view.content & bit) != 0 ? 1 : 0);
  }
  for (int p = 0; p < kMaxPhases; ++p) {
    const int box = kShowPhaseFirstBox + p;
    toolkit.WDialogPutCheckBox(box, view.phaseShown[p] ? 1 : 0);
    // One phase has no curve of its own: its box goes grey with the others beyond the count.
    const int enabled = phases > 1 && p < phases ? 1 : 0;
    toolkit.WDialogFieldState(box, enabled);
    toolkit.WDialogFieldState(box + kColourButtonOffset, enabled);
  }
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  int button = 0;
  while ((button = NextDialogButton(toolkit)) != 0 && button != kIdOk && button != kIdCancel) {
    const int box = button - kColourButtonOffset;
    if (box >= kShowRawBox && box < kShowRawBox + kPlotBoxes) {
      SelectColour(toolkit, *colourOf[box - kShowRawBox]);
    }
  }
  if (button == kIdOk) {
    int content = 0;
    for (const auto& [box, bit] : kCurveBoxes) {
      if (toolkit.WDialogGetCheckBox(box) != 0) content |= bit;
    }
    view.content = content;
    for (int p = 0; p < kMaxPhases; ++p) {
      view.phaseShown[p] = toolkit.WDialogGetCheckBox(kShowPhaseFirstBox + p) != 0;
    }
    view.colours = colours;
  }
  toolkit.WDialogUnload();
  if (button == kIdOk) Redraw(state, toolkit, 0);
}

namespace {

// The section of the current axis on the window; the plot mode becomes the Fourier map.
void ShowSection(ShellState& state, Toolkit& toolkit) {
  state.plotMode = 3;
  Redraw(state, toolkit, 0);
}

// The hardcopy of the menu's "Print graphics", with the Fourier section as the plot.
void PrintSection(ShellState& state, Toolkit& toolkit) {
  ShellRoutines routines;
  routines.redrawPlot = Redraw;
  ShellContext shell{state, toolkit, routines};
  PrintGraphics(shell, *FindMenuEntry(menu::kPrintGraphics));
}

}  // namespace

void FourierPlotDialog(ShellState& state, Toolkit& toolkit) {
  FourierView& fourier = state.plot.fourier;
  ShellReporter reporter(state, toolkit);
  ContourMap map;
  if (ReadContourMap(InProjectDir(state, state.projectBaseName), map, reporter) != 0) return;
  fourier.map = std::move(map);
  fourier.loaded = true;
  fourier.doublings = 1;
  toolkit.WDialogParent(kMainWindow);
  toolkit.WDialogLoad(kFourierPlotDialog);
  toolkit.WDialogPutRadioButton(kFourierAxisX + fourier.axis - 1);
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  fourier.section = 1;
  ShowSection(state, toolkit);
  while (const int button = NextDialogButton(toolkit)) {
    if (button == kIdCancel || button == kIdOk) break;
    // A new axis starts at its first section; the step buttons act on the axis shown.
    const int axis = toolkit.WDialogGetRadioButton(kFourierAxisX, kFourierAxisZ);
    const int count = fourier.map.file.points[fourier.axis - 1];
    if (axis >= 1 && axis != fourier.axis) {
      fourier.axis = axis;
      fourier.section = 1;
    } else if (button == kFourierNext || button == kFourierPrevious) {
      fourier.section = StepSection(fourier.section, button == kFourierNext ? 1 : -1, count);
    } else if (button == kFourierPrint) {
      PrintSection(state, toolkit);
      continue;
    } else {
      continue;
    }
    ShowSection(state, toolkit);
  }
  toolkit.WDialogUnload();
}

}  // namespace kaldena
