#include "qt/painter_canvas.h"

#include <QFont>
#include <QFontMetricsF>
#include <QString>
#include <algorithm>

namespace kaldena {
namespace {

QColor ColourOf(int colour) {
  return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

}  // namespace

PainterCanvas::PainterCanvas(QPaintDevice& device, double width, double height)
    : device_(device), width_(width), height_(height) {
  pen_.setColor(Qt::black);
  pen_.setWidthF(1.0);
  pen_.setCapStyle(Qt::FlatCap);
  pen_.setJoinStyle(Qt::RoundJoin);
}

PainterCanvas::~PainterCanvas() { End(); }

QPainter& PainterCanvas::Painter() {
  if (!painter_.isActive()) {
    painter_.begin(&device_);
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setRenderHint(QPainter::TextAntialiasing);
    painter_.setPen(pen_);
    if (clipped_) painter_.setClipRect(clip_);
  }
  return painter_;
}

void PainterCanvas::StrokePath() {
  if (path_.size() >= 2) Painter().drawPolyline(path_);
  path_.clear();
  path_.append(current_);
}

void PainterCanvas::End() {
  if (path_.size() >= 2) StrokePath();
  if (painter_.isActive()) painter_.end();
}

void PainterCanvas::Clear() {
  StrokePath();
  QPainter& p = Painter();
  p.save();
  p.setClipping(false);
  p.fillRect(QRectF(0, 0, width_, height_), Qt::white);
  p.restore();
}

void PainterCanvas::SetColour(int colour) {
  StrokePath();
  pen_.setColor(ColourOf(colour));
  Painter().setPen(pen_);
}

void PainterCanvas::SetLineStyle(LineStyle style, double width) {
  StrokePath();
  pen_.setWidthF(std::max(width, 0.5));
  // Dash lengths in line widths, as the file canvas has them.
  switch (style) {
    case LineStyle::kSolid:
      pen_.setStyle(Qt::SolidLine);
      break;
    case LineStyle::kDotted:
      pen_.setDashPattern({1.5, 3});
      break;
    case LineStyle::kDashed:
      pen_.setDashPattern({8, 3});
      break;
    case LineStyle::kDotDash:
      pen_.setDashPattern({8, 3, 1.5, 3});
      break;
    case LineStyle::kDotDotDash:
      pen_.setDashPattern({8, 3, 1.5, 3, 1.5, 3});
      break;
  }
  Painter().setPen(pen_);
}

void PainterCanvas::MoveTo(double x, double y) {
  current_ = QPointF(x, y);
  StrokePath();
}

void PainterCanvas::LineTo(double x, double y) {
  current_ = QPointF(x, y);
  path_.append(current_);
}

void PainterCanvas::Text(double x, double y, std::string_view text, double height, double angle,
                         int justification) {
  if (text.empty() || height <= 0) return;
  StrokePath();
  QPainter& p = Painter();
  const QString shown = QString::fromStdString(CanvasTextToUtf8(text));
  QFont font("DejaVu Sans");
  // The height is that of a capital letter, as in the vector alphabet.
  font.setPixelSize(std::max(1, static_cast<int>(height / 0.73 + 0.5)));
  const QFontMetricsF metrics(font, &device_);
  const int j = std::clamp(justification, 1, 9) - 1;
  const double dx = -metrics.horizontalAdvance(shown) * (j % 3) / 2.0;
  const double dy = height * (j / 3) / 2.0;  // bottom row 1-3, top row 7-9
  p.save();
  p.setFont(font);
  p.translate(x, y);
  p.rotate(-angle);
  p.drawText(QPointF(dx, dy), shown);
  p.restore();
}

void PainterCanvas::Clip(double x, double y, double width, double height) {
  StrokePath();
  clipped_ = true;
  clip_ = QRectF(x, y, width, height);
  Painter().setClipRect(clip_);
}

void PainterCanvas::Unclip() {
  StrokePath();
  clipped_ = false;
  Painter().setClipping(false);
}

}  // namespace kaldena
