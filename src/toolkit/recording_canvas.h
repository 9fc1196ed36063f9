// A canvas that keeps what is drawn on it as lines of text, for the scripted toolkit's window
// and for tests that check what a plot draws without rendering it.
#pragma once

#include <string>
#include <vector>

#include "toolkit/canvas.h"

namespace kaldena {

class RecordingCanvas : public Canvas {
 public:
  RecordingCanvas(double width, double height) : width_(width), height_(height) {}

  void Resize(double width, double height) {
    width_ = width;
    height_ = height;
  }
  // "clear", "colour 255", "style 0 1", "move 10 20", "line 30 40", "text 5 6 0 7 (1 0 4)",
  // "clip 0 0 100 50", "unclip"; numbers as with %g. Clear empties the list first.
  const std::vector<std::string>& Operations() const { return operations_; }

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
  void Add(std::string line) { operations_.push_back(std::move(line)); }

  double width_;
  double height_;
  std::vector<std::string> operations_;
};

}  // namespace kaldena
