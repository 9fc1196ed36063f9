// The plots in the main window of the refined corundum example: redraw on expose and resize,
// zoom by a drag and by keys, and the status read-out under the mouse.
#include "shell/plot_window.h"

#include <gtest/gtest.h>

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
