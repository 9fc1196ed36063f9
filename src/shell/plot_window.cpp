// The plots in the main window: redraw, zoom and the status read-out.
#include "shell/plot_window.h"

#include <algorithm>
#include <cmath>

#include "shell/pattern_plot.h"
#include "shell/pattern_plot_contours.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {
namespace {

void ClearZoom(ZoomState& zoom) {
  zoom.xLow = zoom.xHigh = zoom.yLow = zoom.yHigh = 0;
  zoom.selectX1 = zoom.selectX2 = zoom.selectY1 = zoom.selectY2 = 0;
  zoom.dragging = false;
}

void DrawPattern(ShellState& state, Toolkit& toolkit, Canvas& canvas) {
  PlotState& plot = state.plot;
  if (!plot.data.allocated) {
    ShellReporter reporter(state, toolkit);
    ReadSummary(state, plot.data, reporter);
  }
  PlotLibrary library(canvas, kPageLeft, kPageBottom, kPageRight, kPageTop, PageFit::kFill);
  DrawPatternPlot(library, plot.data, plot.view, state.projectBaseName, DateTimeText(toolkit, 18));
}

void DrawHalfwidths(ShellState& state, Toolkit& toolkit, Canvas& canvas) {
  ShellReporter reporter(state, toolkit);
  PlotLibrary library(canvas, kPageLeft, kPageBottom, kPageRight, kPageTop, PageFit::kFill);
  DrawHalfwidthPlot(library, InProjectDir(state, state.parameterFileName), state.projectBaseName,
                    DateTimeText(toolkit, 18), reporter);
}

void DrawFourier(ShellState& state, Toolkit& toolkit, Canvas& canvas) {
  FourierView& fourier = state.plot.fourier;
  if (!fourier.loaded) return;
  ShellReporter reporter(state, toolkit);
  PlotLibrary library(canvas, 0, 0, 1000, 1000);
  DrawFourierSection(library, fourier.map, fourier.axis, fourier.section, fourier.doublings,
                     reporter);
}

bool OnPattern(const ShellState& state) {
  const ZoomState& zoom = state.plot.view.zoom;
  return state.plotMode == 1 && state.plot.data.PointCount() >= 2 && zoom.unitsPerPixelX > 0 &&
         zoom.unitsPerPixelY > 0;
}

// The data position of a pixel, held inside the shown range.
void ClampedPosition(const ZoomState& zoom, const Message& message, float& x, float& y) {
  PixelToData(zoom, message.x, message.y, x, y);
  x = std::clamp(x, zoom.xLow, zoom.xHigh);
  y = std::clamp(y, zoom.yLow, zoom.yHigh);
}

// The band from the anchor to the free corner, over the plot as drawn.
void DrawRubberBand(const ZoomState& zoom, Canvas& canvas) {
  auto px = [&](float x) { return zoom.originPixelX + (x - zoom.xLow) / zoom.unitsPerPixelX; };
  auto py = [&](float y) { return zoom.originPixelY - (y - zoom.yLow) / zoom.unitsPerPixelY; };
  const double x1 = px(zoom.anchorX), x2 = px(zoom.cornerX);
  const double y1 = py(zoom.anchorY), y2 = py(zoom.cornerY);
  canvas.SetColour(kRubberBandColour);
  canvas.SetLineStyle(LineStyle::kSolid, 1.0);
  canvas.MoveTo(x1, y1);
  canvas.LineTo(x2, y1);
  canvas.LineTo(x2, y2);
  canvas.LineTo(x1, y2);
  canvas.LineTo(x1, y1);
}

}  // namespace

void Redraw(ShellState& state, Toolkit& toolkit, int reset) {
  if (TrimmedLength(state.projectFileName) == 0 || state.plotMode == 0) return;
  toolkit.WindowSelect(kMainWindow);
  if (reset == 1) ClearZoom(state.plot.view.zoom);
  Canvas& canvas = toolkit.WindowCanvas();
  canvas.Clear();
  switch (state.plotMode) {
    case 1:
      DrawPattern(state, toolkit, canvas);
      break;
    case 2:
      DrawHalfwidths(state, toolkit, canvas);
      break;
    case 3:
      DrawFourier(state, toolkit, canvas);
      break;
    default:
      break;
  }
}

void ShowFullPattern(ShellState& state, Toolkit& toolkit) {
  ShellReporter reporter(state, toolkit);
  ReadSummary(state, state.plot.data, reporter);
  Redraw(state, toolkit, 1);
}

bool MoveShownRange(ZoomState& zoom, int key) {
  float low = zoom.xLow, high = zoom.xHigh;
  if (low == 0 && high == 0) {
    low = zoom.dataXLow;
    high = zoom.dataXHigh;
  }
  const float width = high - low;
  switch (key) {
    case kKeyArrowUp:
      low -= width / 2;
      high += width / 2;
      break;
    case kKeyArrowDown:
      low += width / 4;
      high -= width / 4;
      break;
    case kKeyArrowRight:
      low = high;
      high += width;
      break;
    case kKeyArrowLeft:
      high = low;
      low -= width;
      break;
    case kKeyPageUp:
      low += width / 2;
      high += width / 2;
      break;
    case kKeyPageDown:
      low -= width / 2;
      high -= width / 2;
      break;
    case kKeyHome:
      low = zoom.dataXLow;
      high = low + width;
      break;
    case kKeyEnd:
      high = zoom.dataXHigh;
      low = high - width;
      break;
    default:
      return false;
  }
  // A move that left nothing of the data in range starts over from the far data limit.
  if (low >= zoom.dataXHigh) low = zoom.dataXLow;
  if (high <= zoom.dataXLow) high = zoom.dataXHigh;
  zoom.xLow = std::max(low, zoom.dataXLow);
  zoom.xHigh = std::min(high, zoom.dataXHigh);
  zoom.yLow = zoom.yHigh = 0;
  zoom.selectX1 = zoom.selectX2 = zoom.selectY1 = zoom.selectY2 = 0;
  return true;
}

void PlotKey(ShellState& state, Toolkit& toolkit, const Message& message) {
  if (state.plotMode != 1 || state.plot.data.PointCount() < 2) return;
  if (MoveShownRange(state.plot.view.zoom, message.value)) Redraw(state, toolkit, 0);
}

void PixelToData(const ZoomState& zoom, int px, int py, float& x, float& y) {
  x = static_cast<float>((px - zoom.originPixelX) * zoom.unitsPerPixelX) + zoom.xLow;
  y = static_cast<float>((zoom.originPixelY - py) * zoom.unitsPerPixelY) + zoom.yLow;
}

std::optional<std::string> StatusReadOut(const PlotData& data, const ZoomState& zoom, int px,
                                         int py) {
  float x, y;
  PixelToData(zoom, px, py, x, y);
  const float below = zoom.yLow - (zoom.yHigh - zoom.yLow) / 3;
  if (x < zoom.xLow || x > zoom.xHigh || y < below || y > zoom.yHigh) return std::nullopt;
  // Positions are compared as stored, so that only the first phase's can match.
  for (size_t i = 0; i < data.braggPositions.size(); ++i) {
    if (std::fabs(data.braggPositions[i] - x) <= zoom.braggTolerance) {
      return FormatLine("(a,f7.2,a,f10.0,3x,a11)", "2Th", x, "  Int ", y, data.braggLabels[i]);
    }
  }
  return FormatLine("(a,f7.2,a,f10.0)", "2Th", x, "  Int ", y);
}

void PlotMouse(ShellState& state, Toolkit& toolkit, const Message& message) {
  if (!OnPattern(state)) return;
  ZoomState& zoom = state.plot.view.zoom;
  switch (message.type) {
    case kMouseButtonDown:
      if (message.value != 1) return;
      ClampedPosition(zoom, message, zoom.anchorX, zoom.anchorY);
      zoom.cornerX = zoom.anchorX;
      zoom.cornerY = zoom.anchorY;
      zoom.dragging = true;
      break;
    case kMouseMove:
      if (const auto text = StatusReadOut(state.plot.data, zoom, message.x, message.y)) {
        SetStatusField(toolkit, 1, *text);
      }
      if (zoom.dragging) {
        ClampedPosition(zoom, message, zoom.cornerX, zoom.cornerY);
        Redraw(state, toolkit, 0);
        DrawRubberBand(zoom, toolkit.WindowCanvas());
      }
      break;
    case kMouseButtonUp:
      if (message.value != 1 || !zoom.dragging) return;
      ClampedPosition(zoom, message, zoom.cornerX, zoom.cornerY);
      zoom.dragging = false;
      zoom.selectX1 = std::min(zoom.anchorX, zoom.cornerX);
      zoom.selectX2 = std::max(zoom.anchorX, zoom.cornerX);
      zoom.selectY1 = std::min(zoom.anchorY, zoom.cornerY);
      zoom.selectY2 = std::max(zoom.anchorY, zoom.cornerY);
      Redraw(state, toolkit, 0);
      break;
    default:  // the wheel does nothing
      break;
  }
}

}  // namespace kaldena
