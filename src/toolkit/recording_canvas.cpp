// The recording canvas: each drawing call as one line of text.
#include "toolkit/recording_canvas.h"

#include <cstdio>

namespace kaldena {
namespace {

std::string Numbers(std::initializer_list<double> values) {
  std::string out;
  char buffer[32];
  for (double v : values) {
    std::snprintf(buffer, sizeof buffer, " %g", v);
    out += buffer;
  }
  return out;
}

}  // namespace

void RecordingCanvas::Clear() {
  operations_.clear();
  Add("clear");
}

void RecordingCanvas::SetColour(int colour) { Add("colour " + std::to_string(colour)); }

void RecordingCanvas::SetLineStyle(LineStyle style, double width) {
  Add("style" + Numbers({static_cast<double>(style), width}));
}

void RecordingCanvas::MoveTo(double x, double y) { Add("move" + Numbers({x, y})); }

void RecordingCanvas::LineTo(double x, double y) { Add("line" + Numbers({x, y})); }

void RecordingCanvas::Text(double x, double y, std::string_view text, double height,
                           double angle, int justification) {
  Add("text" + Numbers({x, y, height, angle, static_cast<double>(justification)}) + " " +
      std::string(text));
}

void RecordingCanvas::Clip(double x, double y, double width, double height) {
  Add("clip" + Numbers({x, y, width, height}));
}

void RecordingCanvas::Unclip() { Add("unclip"); }

}  // namespace kaldena
