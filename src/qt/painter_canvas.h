// The plots' canvas on screen and on the printer: QPainter on any paint device, antialiased.
// Coordinates are the device's logical pixels, so that a window's backing image of a high
// pixel ratio is drawn at full resolution without the plots knowing.
#pragma once

#include <QPainter>
#include <QPolygonF>

#include "toolkit/canvas.h"

namespace kaldena {

class PainterCanvas : public Canvas {
 public:
  // Paints on `device`, whose logical size is `width` by `height`; nothing is painted until
  // the first drawing call, and End finishes.
  PainterCanvas(QPaintDevice& device, double width, double height);
  ~PainterCanvas() override;
  PainterCanvas(const PainterCanvas&) = delete;
  PainterCanvas& operator=(const PainterCanvas&) = delete;

  // Draws what is pending and releases the device; the next drawing call takes it again.
  void End();
  bool Active() const { return painter_.isActive(); }

  double Width() const override { return width_; }
  double Height() const override { return height_; }
  void Clear() override;
  void SetColour(int colour) override;
  void SetLineStyle(LineStyle style, double width) override;
  void MoveTo(double x, double y) override;
  void LineTo(double x, double y) override;
  void Text(double x, double y, std::string_view text, double height, double angle,
            int justification) override;
  void Clip(double x, double y, double width, double height) override;
  void Unclip() override;

 private:
  QPainter& Painter();
  void StrokePath();

  QPaintDevice& device_;
  double width_;
  double height_;
  QPainter painter_;
  QPen pen_;
  QPolygonF path_;  // the polyline since the last move, drawn as one for clean joins
  QPointF current_;
  bool clipped_ = false;
  QRectF clip_;
};

}  // namespace kaldena
