// The dialogs behind the Plot, Fourier and Output menus on the refined corundum example: plot
// options with their colour buttons, the Fourier plot's sections, and the tools' options.
#include "shell/plot_dialogs.h"

#include <gtest/gtest.h>

#include "shell/main_window.h"
#include "shell/menu_session.h"
#include "shell/option_dialogs.h"

namespace kaldena {
namespace {

using testing::Session;

// Whether any line of the recorded window canvas was drawn in `colour`.
bool DrawnInColour(Session& s, int colour) {
  bool in = false;
  for (const std::string& op : s.toolkit.RecordedCanvas().Operations()) {
    if (op.starts_with("colour ")) in = op == "colour " + std::to_string(colour);
    if (in && op.starts_with("line ")) return true;
  }
  return false;
}

// The line of `key` in the parameter file, trailing blanks cut; blank when absent.
std::string RecordLine(const Session& s, std::string_view key) {
  const std::string par = s.Read("corundum.par");
  const size_t at = par.find("\n" + std::string(key));
  if (at == std::string::npos) return {};
  std::string line = par.substr(at + 1, par.find('\n', at + 1) - at - 1);
  line.erase(line.find_last_not_of(" \r") + 1);
  return line;
}

TEST(PlotDialogs, PlotOptionsKeepCurvesAndColoursOnOkAndNothingOnCancel) {
  Session s;
  const PlotView before = s.state.plot.view;
  // Cancel after a colour was chosen and a box cleared: nothing changes.
  s.toolkit.QueueColour(0x123456);
  s.toolkit.QueueDialog({kPlotOptionsDialog, {{kShowSumBox, "0"}}, {1386, kIdCancel}});
  DispatchMenu(s.shell, menu::kPlotOptions);
  EXPECT_EQ(s.state.plot.view.content, before.content);
  EXPECT_EQ(s.state.plot.view.colours.raw, before.colours.raw);

  // OK: the sum goes, raw data takes the chosen colour (red 0x12, green 0x34, blue 0x56), and
  // the plot is drawn again so.
  s.toolkit.QueueColour(0x123456);
  s.toolkit.QueueDialog(
      {kPlotOptionsDialog, {{kShowSumBox, "0"}, {kShowPhaseFirstBox + 1, "0"}}, {1386, kIdOk}});
  DispatchMenu(s.shell, menu::kPlotOptions);
  const PlotView& view = s.state.plot.view;
  EXPECT_EQ(view.content, kShowRaw | kShowDifference | kShowBackground | kShowBragg);
  EXPECT_EQ(view.colours.raw, 0x563412);
  EXPECT_EQ(view.colours.sum, before.colours.sum);
  EXPECT_FALSE(view.phaseShown[1]);
  EXPECT_TRUE(view.phaseShown[0]);
  EXPECT_TRUE(DrawnInColour(s, 0x563412));
  EXPECT_FALSE(DrawnInColour(s, before.colours.sum));
  // The dialog showed what was kept.
  s.toolkit.QueueDialog({kPlotOptionsDialog, {}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kPlotOptions);
  EXPECT_EQ(s.toolkit.DialogField(kPlotOptionsDialog, kShowSumBox), "0");
  EXPECT_EQ(s.toolkit.DialogField(kPlotOptionsDialog, kShowRawBox), "1");
}

TEST(PlotDialogs, TheFourierPlotStepsThroughTheSectionsOfItsAxis) {
  Session s;
  // Before a Fourier calculation there is no plot file: no dialog, and the pattern stays.
  DispatchMenu(s.shell, menu::kPlotFourierMaps);
  EXPECT_TRUE(s.Logged("Error opening plotfile"));
  EXPECT_TRUE(s.toolkit.DialogsShown().empty());
  EXPECT_EQ(s.state.plotMode, 1);

  DispatchMenu(s.shell, menu::kFourierCalculation);
  // Previous from the first section gives the last along Z.
  s.toolkit.QueueDialog({kFourierPlotDialog, {}, {kFourierPrevious, kIdCancel}});
  DispatchMenu(s.shell, menu::kPlotFourierMaps);
  const FourierView& fourier = s.state.plot.fourier;
  ASSERT_TRUE(fourier.loaded);
  EXPECT_EQ(s.state.plotMode, 3);
  EXPECT_EQ(fourier.axis, 3);
  EXPECT_EQ(fourier.section, fourier.map.file.points[2]);
  EXPECT_TRUE(s.Logged("pixels:   1280   800"));
  EXPECT_TRUE(DrawnInColour(s, 0));  // frame and contours

  // Turned to X: its first section, then Next.
  s.toolkit.QueueDialog({kFourierPlotDialog,
                         {{kFourierAxisZ, "0"}, {kFourierAxisX, "1"}},
                         {kFourierNext, kFourierNext, kIdCancel}});
  DispatchMenu(s.shell, menu::kPlotFourierMaps);
  EXPECT_EQ(fourier.axis, 1);
  EXPECT_EQ(fourier.section, 2);
  // A repaint draws the section again.
  s.toolkit.RecordedCanvas().Clear();
  HandleMessage(s.shell, {kExpose});
  EXPECT_TRUE(DrawnInColour(s, 0));

  // Print goes to the printer and back to the screen.
  s.toolkit.QueueDialog({kFourierPlotDialog, {}, {kFourierPrint, kIdCancel}});
  DispatchMenu(s.shell, menu::kPlotFourierMaps);
  const auto& drawing = s.toolkit.Drawing();
  EXPECT_NE(std::find(drawing.begin(), drawing.end(), "hardcopy driver 10"), drawing.end());
  EXPECT_EQ(s.state.hardcopyInProgress, 0);
}

TEST(OptionDialogs, DistanceOptionsWriteDistOnOkOnly) {
  Session s;
  const std::string par = s.Read("corundum.par");
  s.toolkit.QueueDialog({kDistanceOptionsDialog, {{kDistanceMaximum, "2.5"}}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kDistanceOptions);
  EXPECT_EQ(s.Read("corundum.par"), par);
  // Without a record the dialog shows the defaults.
  s.toolkit.QueueDialog({kDistanceOptionsDialog, {}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kDistanceOptions);
  EXPECT_EQ(s.toolkit.DialogField(kDistanceOptionsDialog, kDistanceMaximum), "3.00000");
  EXPECT_EQ(s.toolkit.DialogField(kDistanceOptionsDialog, kAngleMaximum), "2.00000");
  EXPECT_EQ(s.toolkit.DialogField(kDistanceOptionsDialog, kDistanceExtended), "0");

  s.toolkit.QueueDialog({kDistanceOptionsDialog,
                         {{kDistanceMinimum, "0.5"},
                          {kDistanceMaximum, "2.8"},
                          {kAngleMinimum, "1"},
                          {kAngleMaximum, "2.2"},
                          {kDistanceExtended, "1"}}});
  DispatchMenu(s.shell, menu::kDistanceOptions);
  EXPECT_EQ(RecordLine(s, "DIST"), "DIST         2.80000   2.20000   0.50000   1.00000    3");
  s.toolkit.QueueDialog({kDistanceOptionsDialog, {{kDistanceExtended, "0"}}});
  DispatchMenu(s.shell, menu::kDistanceOptions);
  EXPECT_EQ(RecordLine(s, "DIST"), "DIST         2.80000   2.20000   0.50000   1.00000    2");
}

TEST(OptionDialogs, TableOptionsWriteTablWithinItsRanges) {
  Session s;
  const std::string par = s.Read("corundum.par");
  s.toolkit.QueueDialog({kTableOptionsDialog, {{kTableDecimals, "3"}}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kTableOptions);
  EXPECT_EQ(s.Read("corundum.par"), par);
  s.toolkit.QueueDialog({kTableOptionsDialog, {}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kTableOptions);
  EXPECT_EQ(s.toolkit.DialogField(kTableOptionsDialog, kTableDecimals), "4");
  EXPECT_EQ(s.toolkit.DialogField(kTableOptionsDialog, kTableBeta), "1");

  s.toolkit.QueueDialog({kTableOptionsDialog,
                         {{kTableDecimals, "5"},
                          {kTableOccupancy, "2"},
                          {kTableAnisoDecimals, "3"},
                          {kTableBeta, "0"},
                          {kTableU, "1"}}});
  DispatchMenu(s.shell, menu::kTableOptions);
  EXPECT_EQ(RecordLine(s, "TABL"), "TABL          5    2    3    2");
}

TEST(OptionDialogs, FourierOptionsWriteTheirThreeRecordsOnOkOnly) {
  Session s;
  const std::string par = s.Read("corundum.par");
  s.toolkit.QueueDialog({kFourierOptionsDialog, {{kFourierPositiveLevel, "300"}}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kFourierOptions);
  EXPECT_EQ(s.Read("corundum.par"), par);
  s.toolkit.QueueDialog({kFourierOptionsDialog, {}, {kIdCancel}});
  DispatchMenu(s.shell, menu::kFourierOptions);
  EXPECT_EQ(s.toolkit.DialogField(kFourierOptionsDialog, kFourierMapLast), "1");  // Difference
  EXPECT_EQ(s.toolkit.DialogField(kFourierOptionsDialog, kFourierPositiveLevel), "500");

  s.toolkit.QueueDialog({kFourierOptionsDialog,
                         {{kFourierMapLast, "0"},
                          {kFourierMapFirst + 1, "1"},
                          {kFourierPositiveLevel, "400"},
                          {kFourierLimitsFirst, "0"},
                          {kFourierPlotTitle, "Al2O3 map"}}});
  DispatchMenu(s.shell, menu::kFourierOptions);
  EXPECT_EQ(RecordLine(s, "FORD"),
            "FORD          3  400    0     2000.      2.00      0.00     -2.00");
  EXPECT_EQ(RecordLine(s, "FLIM"),
            "FLIM            0.00      1.04     -0.04      1.04     -0.04      1.04");
  EXPECT_EQ(RecordLine(s, "PTIT"), "PTIT      Al2O3 map");
}

}  // namespace
}  // namespace kaldena
