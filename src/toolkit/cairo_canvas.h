// The file canvas of the plots: cairo draws PNG, SVG, PDF and EPS itself; "jpg" and "bmp"
// are written from the same image as PNG, through libjpeg and a small BMP writer.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "toolkit/canvas.h"

namespace kaldena {

enum class ImageFormat { kPng, kSvg, kPdf, kEps, kJpg, kBmp };

// The format of a file name by its extension, in either case; nothing for any other.
std::optional<ImageFormat> ImageFormatOf(std::string_view fileName);

// True for the formats drawn into a pixel image (PNG, JPG, BMP).
bool IsImageFormat(ImageFormat format);

class CairoCanvas : public Canvas {
 public:
  // A canvas of `width` by `height` device units (pixels for the image formats, points for
  // the vector ones) that is written to `fileName` by Finish. Nothing when the surface cannot
  // be made (for a vector file: the file cannot be opened).
  static std::unique_ptr<CairoCanvas> Open(const std::string& fileName, ImageFormat format,
                                           int width, int height);
  ~CairoCanvas() override;
  CairoCanvas(const CairoCanvas&) = delete;
  CairoCanvas& operator=(const CairoCanvas&) = delete;

  double Width() const override;
  double Height() const override;
  void Clear() override;
  void SetColour(int colour) override;
  void SetLineStyle(LineStyle style, double width) override;
  void MoveTo(double x, double y) override;
  void LineTo(double x, double y) override;
  void Text(double x, double y, std::string_view text, double height, double angle,
            int justification) override;
  void Clip(double x, double y, double width, double height) override;
  void Unclip() override;

  // Draws what is pending and writes the file. False when the file could not be written
  // (the reason is in `Error()`); a second call does nothing and returns the first result.
  bool Finish();
  const std::string& Error() const;

 private:
  struct Impl;
  explicit CairoCanvas(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> impl_;
};

}  // namespace kaldena
