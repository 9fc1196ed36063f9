// The plot library beneath the pattern, halfwidth and Fourier plots: a pen and an origin in
// plot units, drawn through a Canvas. Plot units have y upwards; a page box of them is fitted
// into the canvas with its shape kept.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "toolkit/canvas.h"

namespace kaldena {

// The scaling of one axis: lower and upper limit and data units per plot unit. A factor of 0
// means that nothing could be scaled (all values zero, or none).
struct AxisScale {
  float lower = 0.0f;
  float factor = 0.0f;
  float upper = 0.0f;
};

// Limits rounded outwards to the order of magnitude below the larger value's, and the
// factor that spreads them over `size` plot units. Equal limits are widened by one such unit
// on each side.
AxisScale AutoScale(std::span<const float> values, float size);

// A number as text with `decimals` decimals, without blanks.
std::string PlotNumber(float value, int decimals);

// Text heights below are in plot units; angles in degrees counterclockwise.
// How a page box meets its canvas: at one scale, centred (files, maps), or stretched to fill
// it (the pattern and halfwidth plots in a window of any shape).
enum class PageFit { kUniform, kFill };

class PlotLibrary {
 public:
  PlotLibrary(Canvas& canvas, float left, float bottom, float right, float top,
              PageFit fit = PageFit::kUniform);

  Canvas& canvas() { return canvas_; }

  // Scale 1, origin 0, text height 15, angle 0, default factor 0.02, line style 1.
  void PlotInit();
  // Styles 1 to 5: solid, dashed, dotted, dot-dash, dot-dot-dash. Width in device units.
  void PlotPen(int style, float width, int colour);
  // Values of 0 or below keep the stored ones.
  void PlotDefaults(float height, int style, float length, int option);
  void PlotOrigin(float dx, float dy);
  // A coordinate of 9999.0 keeps the pen's.
  void PlotMove(float x, float y);
  void PlotDraw(float x, float y);
  void PlotVector(float x, float y, float length, float angle);
  // A polyline through data values, each axis mapped by its scale from its lower limit.
  void PlotLine(std::span<const float> x, std::span<const float> y, const AxisScale& xScale,
                const AxisScale& yScale);
  // Justification 1 to 9: left, centre, right of the bottom (1-3), middle (4-6), top (7-9).
  void PlotText(float x, float y, std::string_view text, float height, float angle,
                int justification);
  // Text in the plain font at the default height, padded or cut to `field` characters when
  // `field` is above 0.
  void PlotTextFont(float x, float y, std::string_view text, int justification, int field);
  void PlotRect(float x, float y, float width, float height, float angle);
  // An axis of `length` from (x, y) along 0 or 90 degrees with ticks and numbers from the
  // scale and the label beside it; numbers and label lie below a horizontal axis, numbers left
  // of a vertical one and its label over its end.
  void PlotAxis(float x, float y, std::string_view label, float length, float angle,
                const AxisScale& scale);
  // Lines are cut to the rectangle until PlotUnclip.
  void PlotClip(float x, float y, float width, float height);
  void PlotUnclip();

  // Device position of a point in plot units from the current origin.
  double DeviceX(float x) const;
  double DeviceY(float y) const;
  float OriginX() const { return originX_; }
  float OriginY() const { return originY_; }
  // Device units per plot unit along x and y.
  float DeviceScaleX() const { return static_cast<float>(kx_); }
  float DeviceScaleY() const { return static_cast<float>(ky_); }
  float TextHeight() const { return textHeight_; }

 private:
  Canvas& canvas_;
  float left_, top_;
  double kx_ = 1.0, ky_ = 1.0;  // device units per plot unit
  double k_ = 1.0;              // the smaller of the two, for text
  double offsetX_ = 0.0, offsetY_ = 0.0;
  float scale_ = 1.0f;
  float originX_ = 0.0f, originY_ = 0.0f;
  float penX_ = 0.0f, penY_ = 0.0f;
  float textHeight_ = 15.0f;
  float angle_ = 0.0f;
  float factor_ = 0.02f;
  int style_ = 1;
  int option_ = 0;
};

}  // namespace kaldena
