// The plot library over a Canvas.
#include "shell/plot_library.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "util/number_text.h"
#include "util/text.h"

namespace kaldena {
namespace {

constexpr LineStyle kStyles[5] = {LineStyle::kSolid, LineStyle::kDashed, LineStyle::kDotted,
                                  LineStyle::kDotDash, LineStyle::kDotDotDash};

float Radians(float degrees) { return degrees * static_cast<float>(std::numbers::pi / 180.0); }

// A tick step of 1, 2 or 5 times a power of ten giving about five intervals.
double TickStep(double range) {
  const double raw = range / 5.0;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  const double m = raw / power;
  return (m < 1.5 ? 1.0 : m < 3.5 ? 2.0 : m < 7.5 ? 5.0 : 10.0) * power;
}

}  // namespace

AxisScale AutoScale(std::span<const float> values, float size) {
  AxisScale s;
  if (values.empty()) return s;
  float low = values[0], high = values[0];
  for (float v : values) {
    low = std::min(low, v);
    high = std::max(high, v);
  }
  const bool highFar = std::fabs(high) >= std::fabs(low);
  const float far = highFar ? high : low;
  const float near = highFar ? low : high;
  const float magnitude = std::fabs(far);
  if (magnitude == 0.0f || !std::isfinite(magnitude)) return s;
  const float sign = far < 0 ? -1.0f : 1.0f;
  const float lg = std::log10(magnitude);
  float p = std::pow(10.0f, static_cast<float>(static_cast<int>(lg) - 1));
  if (lg < 0) p /= 10.0f;
  const float farLimit = sign * std::floor(magnitude / p + 0.99999f) * p;
  float nearLimit;
  if ((near < 0) == (far < 0) || near == 0.0f) {
    nearLimit = sign * std::floor(std::fabs(near) / p) * p;  // towards zero
  } else {
    nearLimit = -sign * std::floor(std::fabs(near) / p + 0.99999f) * p;  // away from zero
  }
  s.lower = std::min(farLimit, nearLimit);
  s.upper = std::max(farLimit, nearLimit);
  if (s.lower == s.upper) {
    s.lower -= p;
    s.upper += p;
  }
  s.factor = size > 0 ? (s.upper - s.lower) / size : 0.0f;
  return s;
}

std::string PlotNumber(float value, int decimals) {
  const std::string text = RealToText(value, 16, std::clamp(decimals, 0, 8));
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  std::string number(Trimmed(text.substr(first)));
  if (decimals <= 0 && number.size() > 1 && number.back() == '.') number.pop_back();
  return number;
}

PlotLibrary::PlotLibrary(Canvas& canvas, float left, float bottom, float right, float top,
                         PageFit fit)
    : canvas_(canvas), left_(left), top_(top) {
  const double w = std::max(1e-6f, right - left), h = std::max(1e-6f, top - bottom);
  k_ = std::min(canvas.Width() / w, canvas.Height() / h);
  kx_ = fit == PageFit::kFill ? canvas.Width() / w : k_;
  ky_ = fit == PageFit::kFill ? canvas.Height() / h : k_;
  offsetX_ = (canvas.Width() - kx_ * w) / 2;
  offsetY_ = (canvas.Height() - ky_ * h) / 2;
  PlotInit();
}

double PlotLibrary::DeviceX(float x) const {
  return offsetX_ + kx_ * (originX_ + scale_ * x - left_);
}
double PlotLibrary::DeviceY(float y) const {
  return offsetY_ + ky_ * (top_ - (originY_ + scale_ * y));
}

void PlotLibrary::PlotInit() {
  scale_ = 1.0f;
  originX_ = originY_ = 0.0f;
  penX_ = penY_ = 0.0f;
  textHeight_ = 15.0f;
  angle_ = 0.0f;
  factor_ = 0.02f;
  style_ = 1;
  canvas_.SetLineStyle(LineStyle::kSolid, 1.0);
}

void PlotLibrary::PlotPen(int style, float width, int colour) {
  style_ = std::clamp(style, 1, 5);
  canvas_.SetLineStyle(kStyles[style_ - 1], std::max(width, 1.0f));
  canvas_.SetColour(colour);
}

void PlotLibrary::PlotDefaults(float height, int style, float length, int option) {
  if (height > 0) textHeight_ = height;
  if (style > 0) style_ = std::clamp(style, 1, 5);
  if (length > 0) factor_ = length;
  if (option > 0) option_ = option;
}

void PlotLibrary::PlotOrigin(float dx, float dy) {
  originX_ += dx;
  originY_ += dy;
}

void PlotLibrary::PlotMove(float x, float y) {
  if (x != 9999.0f) penX_ = x;
  if (y != 9999.0f) penY_ = y;
  canvas_.MoveTo(DeviceX(penX_), DeviceY(penY_));
}

void PlotLibrary::PlotDraw(float x, float y) {
  if (x != 9999.0f) penX_ = x;
  if (y != 9999.0f) penY_ = y;
  canvas_.LineTo(DeviceX(penX_), DeviceY(penY_));
}

void PlotLibrary::PlotVector(float x, float y, float length, float angle) {
  PlotMove(x, y);
  PlotDraw(x + length * std::cos(Radians(angle)), y + length * std::sin(Radians(angle)));
}

void PlotLibrary::PlotLine(std::span<const float> x, std::span<const float> y,
                           const AxisScale& xScale, const AxisScale& yScale) {
  const size_t n = std::min(x.size(), y.size());
  if (n == 0 || xScale.factor == 0.0f || yScale.factor == 0.0f) return;
  for (size_t i = 0; i < n; ++i) {
    const float px = (x[i] - xScale.lower) / xScale.factor;
    const float py = (y[i] - yScale.lower) / yScale.factor;
    if (i == 0) {
      PlotMove(px, py);
    } else {
      PlotDraw(px, py);
    }
  }
}

void PlotLibrary::PlotText(float x, float y, std::string_view text, float height, float angle,
                           int justification) {
  const float h = height > 0 ? height : textHeight_;
  angle_ = angle;
  canvas_.Text(DeviceX(x), DeviceY(y), text, k_ * scale_ * h, angle, justification);
}

void PlotLibrary::PlotTextFont(float x, float y, std::string_view text, int justification,
                               int field) {
  std::string shown(text);
  if (field > 0) shown.resize(static_cast<size_t>(field), ' ');
  canvas_.Text(DeviceX(x), DeviceY(y), shown, k_ * scale_ * textHeight_, 0.0, justification);
}

void PlotLibrary::PlotRect(float x, float y, float width, float height, float angle) {
  const float c = std::cos(Radians(angle)), s = std::sin(Radians(angle));
  PlotMove(x, y);
  PlotDraw(x + width * c, y + width * s);
  PlotDraw(x + width * c - height * s, y + width * s + height * c);
  PlotDraw(x - height * s, y + height * c);
  PlotDraw(x, y);
}

void PlotLibrary::PlotAxis(float x, float y, std::string_view label, float length, float angle,
                           const AxisScale& scale) {
  const bool vertical = std::fabs(angle - 90.0f) < 1.0f;
  auto at = [&](float along, float across, float& px, float& py) {
    px = vertical ? x - across : x + along;
    py = vertical ? y + along : y - across;
  };
  float px, py, qx, qy;
  at(0, 0, px, py);
  at(length, 0, qx, qy);
  PlotMove(px, py);
  PlotDraw(qx, qy);
  const double range = scale.upper - scale.lower;
  const float tick = factor_ * 500.0f;  // 10 plot units at the default factor
  const float h = textHeight_;
  if (scale.factor != 0.0f && range > 0) {
    const double step = TickStep(range);
    const int decimals = step >= 1.0 ? 0 : static_cast<int>(std::ceil(-std::log10(step) - 1e-9));
    for (double v = std::ceil(scale.lower / step - 1e-6) * step; v <= scale.upper + step * 1e-6;
         v += step) {
      const float along = static_cast<float>((v - scale.lower) / scale.factor);
      at(along, 0, px, py);
      at(along, tick, qx, qy);
      PlotMove(px, py);
      PlotDraw(qx, qy);
      at(along, tick + 0.5f * h, qx, qy);
      PlotText(qx, qy,
               PlotNumber(static_cast<float>(std::fabs(v) < step * 1e-6 ? 0.0 : v), decimals), h,
               0.0f, vertical ? 6 : 8);
    }
  }
  if (vertical) {
    // Over the axis's end, level, so that numbers of any width leave it clear.
    at(length + 0.7f * h, 0, qx, qy);
    PlotText(qx, qy, label, h, 0.0f, 2);
  } else {
    at(length / 2, tick + 2.5f * h, qx, qy);
    PlotText(qx, qy, label, h, 0.0f, 8);
  }
}

void PlotLibrary::PlotClip(float x, float y, float width, float height) {
  const double x0 = DeviceX(x), x1 = DeviceX(x + width);
  const double y0 = DeviceY(y + height), y1 = DeviceY(y);
  canvas_.Clip(std::min(x0, x1), std::min(y0, y1), std::fabs(x1 - x0), std::fabs(y1 - y0));
}

void PlotLibrary::PlotUnclip() { canvas_.Unclip(); }

}  // namespace kaldena
