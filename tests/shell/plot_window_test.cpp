// The plots in the main window of the refined corundum example: redraw on expose and resize,
// zoom by a drag and by keys, and the status read-out under the mouse.
#include "shell/plot_window.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <sstream>

#include "shell/main_window.h"
#include "shell/menu_session.h"

namespace kaldena {
namespace {

using testing::Session;

// Line segments drawn in `colour`: the "line" operations after each "colour" of that value.
int LinesInColour(const RecordingCanvas& canvas, int colour) {
  int count = 0;
  bool in = false;
  for (const std::string& op : canvas.Operations()) {
    if (op.starts_with("colour ")) in = op == "colour " + std::to_string(colour);
    if (in && op.starts_with("line ")) ++count;
  }
  return count;
}

// The largest device x of any line.
double RightmostLine(const RecordingCanvas& canvas) {
  double right = 0;
  for (const std::string& op : canvas.Operations()) {
    if (!op.starts_with("line ")) continue;
    std::istringstream in(op.substr(5));
    double x = 0;
    in >> x;
    right = std::max(right, x);
  }
  return right;
}

constexpr int kSumColour = 65280, kBraggColour = 16711680;

TEST(PlotWindow, ARunShowsThePatternAndExposeAndResizeDrawItAgain) {
  Session s;
  RecordingCanvas& canvas = s.toolkit.RecordedCanvas();
  ASSERT_EQ(s.state.plotMode, 1);
  EXPECT_GT(LinesInColour(canvas, kSumColour), 500);   // the calculated curve
  EXPECT_GT(LinesInColour(canvas, kBraggColour), 10);  // a tick per reflection

  canvas.Clear();
  HandleMessage(s.shell, {kExpose});
  EXPECT_GT(LinesInColour(canvas, kSumColour), 500);
  EXPECT_LE(RightmostLine(canvas), 1280);

  canvas.Resize(640, 400);
  HandleMessage(s.shell, {kResize});
  EXPECT_GT(LinesInColour(canvas, kSumColour), 500);
  EXPECT_LE(RightmostLine(canvas), 640);
  EXPECT_GT(RightmostLine(canvas), 400);  // the plot fills the new width

  // A wide, low window: the plot takes its width too, not a column of the page's shape.
  canvas.Resize(1600, 400);
  HandleMessage(s.shell, {kResize});
  EXPECT_GT(RightmostLine(canvas), 1300);
}

// The pixel of a data position on the pattern as last drawn.
int PixelX(const ZoomState& zoom, float x) {
  return static_cast<int>(std::lround(zoom.originPixelX + (x - zoom.xLow) / zoom.unitsPerPixelX));
}
int PixelY(const ZoomState& zoom, float y) {
  return static_cast<int>(std::lround(zoom.originPixelY - (y - zoom.yLow) / zoom.unitsPerPixelY));
}

// A drag with button 1 from one data position to another, through the message loop.
void Drag(Session& s, float x1, float y1, float x2, float y2) {
  const ZoomState& zoom = s.state.plot.view.zoom;
  s.toolkit.WMessageEnable(kMouseMove, true);
  s.toolkit.WMessageEnable(kMouseButtonUp, true);
  const int px1 = PixelX(zoom, x1), py1 = PixelY(zoom, y1);
  const int px2 = PixelX(zoom, x2), py2 = PixelY(zoom, y2);
  s.toolkit.QueueMessage({kMouseButtonDown, 1, px1, py1});
  s.toolkit.QueueMessage({kMouseMove, 0, (px1 + px2) / 2, (py1 + py2) / 2});
  s.toolkit.QueueMessage({kMouseMove, 0, px2, py2});
  s.toolkit.QueueMessage({kMouseButtonUp, 1, px2, py2});
  RunMessageLoop(s.shell);  // the script's end closes the window
  s.state.exitRequested = false;
}

std::pair<float, float> Shown(const Session& s) {
  return {s.state.plot.view.zoom.xLow, s.state.plot.view.zoom.xHigh};
}
using Range = std::pair<float, float>;

TEST(PlotWindow, ADragZoomsToItsRectangleAndANarrowOneChangesNothing) {
  Session s;
  ASSERT_EQ(Shown(s), Range(5, 140));  // 5.02 to 139.98 in whole degrees
  const float top = s.state.plot.view.zoom.yHigh;
  // While the button is held the band is drawn in cyan over the plot.
  s.toolkit.WMessageEnable(kMouseMove, true);
  const ZoomState& zoom = s.state.plot.view.zoom;
  HandleMessage(s.shell, {kMouseButtonDown, 1, PixelX(zoom, 35.3f), PixelY(zoom, top * 0.8f)});
  HandleMessage(s.shell, {kMouseMove, 0, PixelX(zoom, 44.6f), PixelY(zoom, top * 0.1f)});
  EXPECT_EQ(LinesInColour(s.toolkit.RecordedCanvas(), kRubberBandColour), 4);
  HandleMessage(s.shell, {kMouseButtonUp, 1, PixelX(zoom, 44.6f), PixelY(zoom, top * 0.1f)});
  EXPECT_EQ(Shown(s), Range(35, 45));
  EXPECT_NEAR(zoom.yHigh, top * 0.8f, 2 * zoom.unitsPerPixelY);  // the band's y range stays
  EXPECT_NEAR(zoom.yLow, top * 0.1f, 2 * zoom.unitsPerPixelY);
  EXPECT_EQ(LinesInColour(s.toolkit.RecordedCanvas(), kRubberBandColour), 0);

  // Backwards, bottom right to top left, the corners are sorted.
  Drag(s, 44, zoom.yLow + 1, 40, zoom.yHigh - 1);
  EXPECT_EQ(Shown(s), Range(40, 44));
  // Five steps of 0.02 degrees are less than ten: the range stays.
  Drag(s, 42, zoom.yHigh - 1, 42.1f, zoom.yLow + 1);
  EXPECT_EQ(Shown(s), Range(40, 44));
  // A click is no selection either, and the right button draws no band.
  Drag(s, 42, zoom.yHigh - 1, 42, zoom.yHigh - 1);
  HandleMessage(s.shell, {kMouseButtonDown, 3, PixelX(zoom, 41), PixelY(zoom, zoom.yHigh)});
  HandleMessage(s.shell, {kMouseButtonUp, 3, PixelX(zoom, 43), PixelY(zoom, zoom.yLow)});
  EXPECT_EQ(Shown(s), Range(40, 44));
  // Full pattern starts over.
  DispatchMenu(s.shell, menu::kFullPattern);
  EXPECT_EQ(Shown(s), Range(5, 140));
}

TEST(PlotWindow, KeysMoveAndScaleTheShownRange) {
  Session s;
  auto key = [&](int code) {
    HandleMessage(s.shell, {kKeyDown, code});
    return Shown(s);
  };
  // Each range spans the points in the range the key asks for, out to whole degrees.
  EXPECT_EQ(key(kKeyArrowUp), Range(5, 140));      // full range already: nothing changes
  EXPECT_EQ(key(kKeyArrowRight), Range(5, 140));   // nothing right of the data: all of it
  EXPECT_EQ(key(kKeyArrowDown), Range(38, 107));   // half the width, 38.75 to 106.25
  EXPECT_EQ(key(kKeyArrowDown), Range(55, 90));    // 55.25 to 89.75
  EXPECT_EQ(key(kKeyArrowRight), Range(90, 125));  // one width right
  EXPECT_EQ(key(kKeyArrowLeft), Range(55, 90));
  EXPECT_EQ(key(kKeyPageUp), Range(72, 108));  // half a width up
  EXPECT_EQ(key(kKeyPageDown), Range(54, 90));
  // The same width at the end of the data, 139.98, and at their start, 5.02.
  EXPECT_EQ(key(kKeyEnd), Range(103, 140));
  EXPECT_EQ(key(kKeyHome), Range(5, 43));
  EXPECT_EQ(key(kKeyArrowLeft), Range(5, 140));  // nothing left of the data: all of it
  EXPECT_EQ(key(kKeyArrowUp), Range(5, 140));
  // Keys clear a mouse selection and its y range.
  Drag(s, 60.2f, s.state.plot.view.zoom.yHigh - 1, 79.6f, s.state.plot.view.zoom.yLow + 1);
  ASSERT_EQ(Shown(s), Range(60, 80));
  const float yHigh = s.state.plot.view.zoom.yHigh;
  EXPECT_EQ(key(kKeyArrowUp), Range(50, 90));
  // Scaled anew to the highest count, in whole hundreds.
  EXPECT_NE(s.state.plot.view.zoom.yHigh, yHigh);
  EXPECT_EQ(std::fmod(s.state.plot.view.zoom.yHigh, 100.0f), 0.0f);
  EXPECT_EQ(s.state.plot.view.zoom.selectX1, 0);
}

TEST(PlotWindow, TheStatusBarReadsTwoThetaCountsAndTheReflectionUnderTheMouse) {
  Session s;
  s.toolkit.WMessageEnable(kMouseMove, true);
  const ZoomState& zoom = s.state.plot.view.zoom;
  const PlotData& data = s.state.plot.data;
  // Corundum's (1 0 4), the strongest line, near 35.15 degrees.
  const auto at = std::find(data.braggLabels.begin(), data.braggLabels.end(), "(  1  0  4)");
  ASSERT_NE(at, data.braggLabels.end());
  const float position = data.braggPositions[at - data.braggLabels.begin()];
  EXPECT_NEAR(position, 35.15f, 0.02f);
  const int px = PixelX(zoom, position), py = PixelY(zoom, 1000);
  HandleMessage(s.shell, {kMouseMove, 0, px, py});
  float x, y;
  PixelToData(zoom, px, py, x, y);
  EXPECT_NEAR(x, position, zoom.unitsPerPixelX);
  EXPECT_NEAR(y, 1000, zoom.unitsPerPixelY);
  char expected[80];
  std::snprintf(expected, sizeof expected, "2Th%7.2f  Int %9.0f.   (  1  0  4)", x, y);
  EXPECT_EQ(s.toolkit.StatusField(1), expected);

  // Between reflections, in the difference band a sixth below the origin: no label.
  const int between = PixelX(zoom, 80.0f), low = PixelY(zoom, zoom.yLow - zoom.yHigh / 6);
  HandleMessage(s.shell, {kMouseMove, 0, between, low});
  PixelToData(zoom, between, low, x, y);
  std::snprintf(expected, sizeof expected, "2Th%7.2f  Int %9.0f.", x, y);
  EXPECT_EQ(s.toolkit.StatusField(1), expected);
  // Outside the frame, above it or right of it, the field keeps what it showed.
  HandleMessage(s.shell, {kMouseMove, 0, between, PixelY(zoom, zoom.yHigh * 1.1f)});
  HandleMessage(s.shell, {kMouseMove, 0, PixelX(zoom, 150), py});
  EXPECT_EQ(s.toolkit.StatusField(1), expected);
}

TEST(PlotWindow, TheHalfwidthPlotAndAProjectWithoutSummaryOnScreen) {
  Session s;
  RecordingCanvas& canvas = s.toolkit.RecordedCanvas();
  DispatchMenu(s.shell, menu::kPlotHalfwidths);
  EXPECT_EQ(s.state.plotMode, 2);
  EXPECT_EQ(LinesInColour(canvas, kSumColour), 2 * 200);  // width and shape, 201 points each
  canvas.Clear();
  HandleMessage(s.shell, {kExpose});
  EXPECT_EQ(LinesInColour(canvas, kSumColour), 2 * 200);

  // Loaded again without its summary: the old pattern is gone, not shown under its name.
  std::filesystem::remove(s.dir.Path() / "corundum.sum");
  OpenProject(s.state, s.toolkit, 1);
  EXPECT_TRUE(s.Logged("Error opening " + (s.dir.Path() / "corundum.sum").string()));
  EXPECT_EQ(s.state.plotMode, 1);
  EXPECT_EQ(LinesInColour(canvas, kSumColour), 0);
  EXPECT_EQ(LinesInColour(canvas, 0), 0);
}

TEST(PlotWindow, NothingIsDrawnWithoutAProjectOrAPlot) {
  Session s;
  RecordingCanvas& canvas = s.toolkit.RecordedCanvas();
  s.state.plotMode = 0;
  canvas.Clear();
  HandleMessage(s.shell, {kExpose});
  EXPECT_EQ(canvas.Operations(), std::vector<std::string>{"clear"});
  s.state.plotMode = 1;
  s.state.projectFileName.clear();
  HandleMessage(s.shell, {kExpose});
  EXPECT_EQ(canvas.Operations(), std::vector<std::string>{"clear"});
}

}  // namespace
}  // namespace kaldena
