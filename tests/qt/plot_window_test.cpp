// The pattern plot on screen: a drag with the mouse and the keys zoom it, and the status bar
// reads the position under the mouse, through the window's real mouse and key events.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "corundum_program.h"
#include "shell/main_window.h"
#include "shell/plot_window.h"

namespace kaldena {
namespace {

class PlotOnScreen : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(RunProject(program.state, program.toolkit), 0);
    program.toolkit.WMessageEnable(kMouseMove, true);
    program.toolkit.WMessageEnable(kMouseButtonUp, true);
    ASSERT_EQ(program.state.plotMode, 1);
  }

  const ZoomState& Zoom() const { return program.state.plot.view.zoom; }
  QPoint Pixel(float x, float y) const {
    const ZoomState& z = Zoom();
    return {static_cast<int>(std::lround(z.originPixelX + (x - z.xLow) / z.unitsPerPixelX)),
            static_cast<int>(std::lround(z.originPixelY - (y - z.yLow) / z.unitsPerPixelY))};
  }

  // Sends the event to the plot and runs the loop's messages until the one it made is handled.
  void Send(QEvent& event, int messageType) {
    QApplication::sendEvent(&program.toolkit.Window(kMainWindow)->Plot(), &event);
    Message message;
    do {
      message = program.toolkit.WMessageGet();
      HandleMessage(shell, message);
    } while (message.type != messageType);
  }
  void Mouse(QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons held, QPoint at,
             int messageType) {
    QMouseEvent event(type, QPointF(at), QPointF(at), button, held, Qt::NoModifier);
    Send(event, messageType);
  }
  void Key(int key) {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    Send(event, kKeyDown);
  }

  testing::CorundumProgram program;
  ShellRoutines routines = ToolRoutines();
  ShellContext shell{program.state, program.toolkit, routines};
};

TEST_F(PlotOnScreen, ADragAndTheKeysZoomTheShownRange) {
  const float top = Zoom().yHigh;
  ASSERT_LT(Zoom().xLow, 10.0f);
  const QPoint from = Pixel(35.3f, top * 0.8f), to = Pixel(44.6f, top * 0.1f);
  Mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton, from, kMouseButtonDown);
  Mouse(QEvent::MouseMove, Qt::NoButton, Qt::LeftButton, to, kMouseMove);
  Mouse(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton, to, kMouseButtonUp);
  EXPECT_EQ(Zoom().xLow, 35.0f);
  EXPECT_EQ(Zoom().xHigh, 45.0f);

  // The right arrow shows the next width of the data, Home the same width at its start; the
  // ranges reach out to whole degrees.
  Key(Qt::Key_Right);
  EXPECT_EQ(Zoom().xLow, 45.0f);
  EXPECT_EQ(Zoom().xHigh, 55.0f);
  Key(Qt::Key_Home);  // from the first point, 5.02
  EXPECT_EQ(Zoom().xLow, 5.0f);
  EXPECT_EQ(Zoom().xHigh, 16.0f);
}

TEST_F(PlotOnScreen, TheStatusBarReadsTheReflectionUnderTheMouse) {
  const PlotData& data = program.state.plot.data;
  const auto at = std::find(data.braggLabels.begin(), data.braggLabels.end(), "(  1  0  4)");
  ASSERT_NE(at, data.braggLabels.end());
  const float position = data.braggPositions[at - data.braggLabels.begin()];
  const QPoint pixel = Pixel(position, 1000);
  Mouse(QEvent::MouseMove, Qt::NoButton, Qt::NoButton, pixel, kMouseMove);
  float x, y;
  PixelToData(Zoom(), pixel.x(), pixel.y(), x, y);
  char expected[80];
  std::snprintf(expected, sizeof expected, "2Th%7.2f  Int %9.0f.   (  1  0  4)", x, y);
  EXPECT_EQ(program.toolkit.Window(kMainWindow)->StatusText(1).toStdString(), expected);
  EXPECT_NEAR(x, 35.15f, 0.05f);
}

}  // namespace
}  // namespace kaldena
