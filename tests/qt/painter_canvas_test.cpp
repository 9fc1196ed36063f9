// The QPainter canvas of the windows and the printer: colours in the plots' byte order,
// antialiased lines, clipping, text, and drawing at a high pixel ratio in logical pixels; the
// window's image saved as JPEG and BMP.
#include "qt/painter_canvas.h"

#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>

#include "qt/qt_toolkit.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

QImage WhiteImage(int width, int height, qreal ratio = 1.0) {
  QImage image(QSize(width, height) * ratio, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::white);
  return image;
}

int PaintedPixels(const QImage& image, QRect area) {
  int count = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x)
      count += image.pixel(x, y) != qRgb(255, 255, 255);
  }
  return count;
}

TEST(PainterCanvas, DrawsLinesInThePlotsColoursWithSmoothEdges) {
  QImage image = WhiteImage(100, 100);
  {
    PainterCanvas canvas(image, 100, 100);
    canvas.SetColour(255);  // red in the low byte
    canvas.SetLineStyle(LineStyle::kSolid, 2);
    canvas.MoveTo(10, 50);
    canvas.LineTo(90, 50);
    canvas.SetColour(0xFF0000);  // blue
    canvas.MoveTo(10, 10);
    canvas.LineTo(90, 30);  // a slanted line has blended edge pixels
  }
  EXPECT_EQ(image.pixel(50, 50), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(50, 80), qRgb(255, 255, 255));
  const QRgb edge = image.pixel(50, 19);
  bool blended = false;
  for (int y = 15; y <= 25; ++y) {
    const QRgb p = image.pixel(50, y);
    blended |= qBlue(p) == 255 && qRed(p) > 0 && qRed(p) < 255;
  }
  EXPECT_TRUE(blended) << std::hex << edge;
}

TEST(PainterCanvas, ClipsLinesAndDrawsText) {
  QImage image = WhiteImage(200, 100);
  PainterCanvas canvas(image, 200, 100);
  canvas.Clip(0, 0, 100, 100);
  canvas.MoveTo(10, 20);
  canvas.LineTo(190, 20);
  canvas.Unclip();
  canvas.Text(20, 80, "2|q", 20, 0, 1);
  canvas.End();
  EXPECT_GT(PaintedPixels(image, {10, 18, 80, 4}), 100);
  EXPECT_EQ(PaintedPixels(image, {110, 15, 80, 10}), 0);
  EXPECT_GT(PaintedPixels(image, {18, 55, 60, 27}), 20);
  // Right justification ends the text at the point.
  QImage right = WhiteImage(200, 100);
  PainterCanvas other(right, 200, 100);
  other.Text(100, 80, "Counts", 20, 0, 3);
  other.End();
  EXPECT_EQ(PaintedPixels(right, {102, 50, 90, 40}), 0);
  EXPECT_GT(PaintedPixels(right, {10, 50, 90, 40}), 50);
}

TEST(PainterCanvas, DrawsInLogicalPixelsAtAHighPixelRatio) {
  QImage image = WhiteImage(100, 50, 2.0);
  {
    PainterCanvas canvas(image, 100, 50);
    canvas.SetLineStyle(LineStyle::kSolid, 1);
    canvas.MoveTo(0, 25);
    canvas.LineTo(100, 25);
  }
  ASSERT_EQ(image.width(), 200);
  EXPECT_GT(PaintedPixels(image, {0, 48, 200, 4}), 300);  // device rows 49 and 50
  EXPECT_EQ(PaintedPixels(image, {0, 0, 200, 40}), 0);
}

TEST(PainterCanvas, DashedLinesLeaveGaps) {
  QImage image = WhiteImage(200, 20);
  {
    PainterCanvas canvas(image, 200, 20);
    canvas.SetLineStyle(LineStyle::kDashed, 2);
    canvas.MoveTo(0, 10);
    canvas.LineTo(200, 10);
  }
  const int painted = PaintedPixels(image, {0, 10, 200, 1});
  EXPECT_GT(painted, 80);
  EXPECT_LT(painted, 190);
}

TEST(QtToolkitImages, SaveTheWindowAsShownAsJpegAndBmp) {
  QtToolkit toolkit({"kaldena"});
  toolkit.WindowOpen(39, 20, 20, 640, 400, 30001, "KALDENA");
  Canvas& canvas = toolkit.WindowCanvas();
  canvas.Clear();
  canvas.SetColour(0);
  canvas.SetLineStyle(LineStyle::kSolid, 4);
  canvas.MoveTo(0, 0);
  canvas.LineTo(canvas.Width(), canvas.Height());
  testing::ScratchDir dir;
  for (const char* name : {"plot.jpg", "plot.bmp"}) {
    const std::string file = (dir.Path() / name).string();
    toolkit.IGrSaveImage(file);
    EXPECT_EQ(toolkit.InfoError(1), 0);
    QImage saved(QString::fromStdString(file));
    ASSERT_FALSE(saved.isNull()) << name;
    EXPECT_EQ(saved.size(), toolkit.Window(kMainWindow)->Plot().Shown().size());
    const QPoint middle(saved.width() / 2, saved.height() / 2);
    EXPECT_LT(qGray(saved.pixel(middle)), 80) << name;          // on the diagonal
    EXPECT_GT(qGray(saved.pixel(middle.x(), 5)), 200) << name;  // off it
  }
  toolkit.IGrSaveImage((dir.Path() / "missing" / "plot.bmp").string());
  EXPECT_EQ(toolkit.InfoError(1), kErrorOsCommand);
  toolkit.WindowClose();
}

TEST(QtToolkitImages, EpsGoesThroughTheFileCanvasWhileTheHardcopyIsOpen) {
  QtToolkit toolkit({"kaldena"});
  toolkit.WindowOpen(39, 20, 20, 640, 400, 30001, "KALDENA");
  testing::ScratchDir dir;
  const std::string eps = (dir.Path() / "plot.eps").string();
  Canvas& screen = toolkit.WindowCanvas();
  toolkit.IGrPlotMode("H");
  toolkit.IGrHardcopySelect(1, 2);
  toolkit.IGrHardcopy(eps);
  Canvas& page = toolkit.WindowCanvas();
  EXPECT_NE(&page, &screen);
  page.MoveTo(10, 10);
  page.LineTo(100, 100);
  toolkit.IGrHardcopy("S");
  toolkit.IGrPlotMode(" ");
  EXPECT_EQ(&toolkit.WindowCanvas(), &screen);
  EXPECT_EQ(testing::ReadBytes(eps).substr(0, 10), "%!PS-Adobe");
  EXPECT_NE(testing::ReadBytes(eps).find("EPSF"), std::string::npos);
  toolkit.WindowClose();
}

}  // namespace
}  // namespace kaldena
