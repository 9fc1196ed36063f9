// Plot files through cairo. The image formats share one ARGB image; JPEG and BMP are encoded
// from its pixels here, because cairo writes only PNG of its own.
#include "toolkit/cairo_canvas.h"

#include <cairo-pdf.h>
#include <cairo-ps.h>
#include <cairo-svg.h>
#include <cairo.h>
#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <numbers>
#include <vector>

namespace kaldena {
namespace {

std::string LowerExtension(std::string_view fileName) {
  const size_t dot = fileName.rfind('.');
  const size_t slash = fileName.find_last_of("/\\");
  if (dot == std::string_view::npos || (slash != std::string_view::npos && dot < slash)) {
    return {};
  }
  std::string ext(fileName.substr(dot + 1));
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext;
}

// Rows of 8-bit red, green, blue from cairo's premultiplied native-endian ARGB, composed
// over white so that an unpainted pixel is white.
std::vector<uint8_t> RgbRow(const unsigned char* row, int width) {
  std::vector<uint8_t> rgb(static_cast<size_t>(width) * 3);
  for (int x = 0; x < width; ++x) {
    uint32_t p;
    std::memcpy(&p, row + 4 * x, 4);
    const uint32_t a = p >> 24;
    for (int c = 0; c < 3; ++c) {
      const uint32_t v = (p >> (16 - 8 * c)) & 0xFF;  // red, green, blue
      rgb[3 * x + c] = static_cast<uint8_t>(v + (255 - a));
    }
  }
  return rgb;
}

bool WriteJpeg(cairo_surface_t* image, const std::string& fileName, std::string& error) {
  FILE* file = std::fopen(fileName.c_str(), "wb");
  if (!file) {
    error = "cannot open " + fileName;
    return false;
  }
  const int width = cairo_image_surface_get_width(image);
  const int height = cairo_image_surface_get_height(image);
  const int stride = cairo_image_surface_get_stride(image);
  const unsigned char* data = cairo_image_surface_get_data(image);
  jpeg_compress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  jpeg_stdio_dest(&info, file);
  info.image_width = static_cast<JDIMENSION>(width);
  info.image_height = static_cast<JDIMENSION>(height);
  info.input_components = 3;
  info.in_color_space = JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, 90, TRUE);
  jpeg_start_compress(&info, TRUE);
  for (int y = 0; y < height; ++y) {
    std::vector<uint8_t> rgb = RgbRow(data + static_cast<size_t>(y) * stride, width);
    JSAMPROW row = rgb.data();
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  const bool ok = std::fflush(file) == 0 && !std::ferror(file);
  std::fclose(file);
  if (!ok) error = "cannot write " + fileName;
  return ok;
}

void PutLittle(std::string& out, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out += static_cast<char>((value >> (8 * i)) & 0xFF);
}

// An uncompressed 24-bit BMP: bottom row first, blue-green-red, rows padded to 4 bytes.
bool WriteBmp(cairo_surface_t* image, const std::string& fileName, std::string& error) {
  const int width = cairo_image_surface_get_width(image);
  const int height = cairo_image_surface_get_height(image);
  const int stride = cairo_image_surface_get_stride(image);
  const unsigned char* data = cairo_image_surface_get_data(image);
  const uint32_t rowBytes = (static_cast<uint32_t>(width) * 3 + 3) & ~3u;
  const uint32_t pixelBytes = rowBytes * static_cast<uint32_t>(height);
  std::string out;
  out += "BM";
  PutLittle(out, 54 + pixelBytes, 4);
  PutLittle(out, 0, 4);
  PutLittle(out, 54, 4);
  PutLittle(out, 40, 4);
  PutLittle(out, static_cast<uint32_t>(width), 4);
  PutLittle(out, static_cast<uint32_t>(height), 4);
  PutLittle(out, 1, 2);
  PutLittle(out, 24, 2);
  PutLittle(out, 0, 4);
  PutLittle(out, pixelBytes, 4);
  PutLittle(out, 2835, 4);  // 72 dpi
  PutLittle(out, 2835, 4);
  PutLittle(out, 0, 4);
  PutLittle(out, 0, 4);
  for (int y = height - 1; y >= 0; --y) {
    std::vector<uint8_t> rgb = RgbRow(data + static_cast<size_t>(y) * stride, width);
    for (int x = 0; x < width; ++x) {
      out += static_cast<char>(rgb[3 * x + 2]);
      out += static_cast<char>(rgb[3 * x + 1]);
      out += static_cast<char>(rgb[3 * x]);
    }
    out.append(rowBytes - static_cast<uint32_t>(width) * 3, '\0');
  }
  std::ofstream file(fileName, std::ios::binary);
  file.write(out.data(), static_cast<std::streamsize>(out.size()));
  file.close();
  if (!file) error = "cannot write " + fileName;
  return static_cast<bool>(file);
}

}  // namespace

std::optional<ImageFormat> ImageFormatOf(std::string_view fileName) {
  const std::string ext = LowerExtension(fileName);
  if (ext == "png") return ImageFormat::kPng;
  if (ext == "svg") return ImageFormat::kSvg;
  if (ext == "pdf") return ImageFormat::kPdf;
  if (ext == "eps") return ImageFormat::kEps;
  if (ext == "jpg" || ext == "jpeg") return ImageFormat::kJpg;
  if (ext == "bmp") return ImageFormat::kBmp;
  return std::nullopt;
}

bool IsImageFormat(ImageFormat format) {
  return format == ImageFormat::kPng || format == ImageFormat::kJpg ||
         format == ImageFormat::kBmp;
}

struct CairoCanvas::Impl {
  std::string fileName;
  ImageFormat format = ImageFormat::kPng;
  int width = 0;
  int height = 0;
  cairo_surface_t* surface = nullptr;
  cairo_t* cr = nullptr;
  bool pathPending = false;
  bool finished = false;
  bool result = false;
  std::string error;

  void Stroke() {
    if (pathPending) cairo_stroke(cr);
    pathPending = false;
  }
};

std::unique_ptr<CairoCanvas> CairoCanvas::Open(const std::string& fileName, ImageFormat format,
                                               int width, int height) {
  if (width < 1 || height < 1) return nullptr;
  auto impl = std::make_unique<Impl>();
  impl->fileName = fileName;
  impl->format = format;
  impl->width = width;
  impl->height = height;
  switch (format) {
    case ImageFormat::kSvg:
      impl->surface = cairo_svg_surface_create(fileName.c_str(), width, height);
      break;
    case ImageFormat::kPdf:
      impl->surface = cairo_pdf_surface_create(fileName.c_str(), width, height);
      break;
    case ImageFormat::kEps:
      impl->surface = cairo_ps_surface_create(fileName.c_str(), width, height);
      if (cairo_surface_status(impl->surface) == CAIRO_STATUS_SUCCESS) {
        cairo_ps_surface_set_eps(impl->surface, 1);
      }
      break;
    default:
      impl->surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
      break;
  }
  if (cairo_surface_status(impl->surface) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(impl->surface);
    return nullptr;
  }
  impl->cr = cairo_create(impl->surface);
  cairo_set_line_cap(impl->cr, CAIRO_LINE_CAP_BUTT);
  cairo_set_line_join(impl->cr, CAIRO_LINE_JOIN_ROUND);
  cairo_set_line_width(impl->cr, 1.0);
  cairo_set_source_rgb(impl->cr, 0, 0, 0);
  return std::unique_ptr<CairoCanvas>(new CairoCanvas(std::move(impl)));
}

CairoCanvas::CairoCanvas(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

CairoCanvas::~CairoCanvas() {
  Finish();
  cairo_destroy(impl_->cr);
  cairo_surface_destroy(impl_->surface);
}

double CairoCanvas::Width() const { return impl_->width; }
double CairoCanvas::Height() const { return impl_->height; }

void CairoCanvas::Clear() {
  impl_->Stroke();
  cairo_save(impl_->cr);
  cairo_reset_clip(impl_->cr);
  cairo_set_source_rgb(impl_->cr, 1, 1, 1);
  cairo_paint(impl_->cr);
  cairo_restore(impl_->cr);
}

void CairoCanvas::SetColour(int colour) {
  impl_->Stroke();
  cairo_set_source_rgb(impl_->cr, (colour & 0xFF) / 255.0, ((colour >> 8) & 0xFF) / 255.0,
                       ((colour >> 16) & 0xFF) / 255.0);
}

void CairoCanvas::SetLineStyle(LineStyle style, double width) {
  impl_->Stroke();
  const double w = std::max(width, 0.5);
  cairo_set_line_width(impl_->cr, w);
  const double dot = 1.5 * w, gap = 3 * w, dash = 8 * w;
  std::vector<double> pattern;
  switch (style) {
    case LineStyle::kSolid: break;
    case LineStyle::kDotted: pattern = {dot, gap}; break;
    case LineStyle::kDashed: pattern = {dash, gap}; break;
    case LineStyle::kDotDash: pattern = {dash, gap, dot, gap}; break;
    case LineStyle::kDotDotDash: pattern = {dash, gap, dot, gap, dot, gap}; break;
  }
  cairo_set_dash(impl_->cr, pattern.data(), static_cast<int>(pattern.size()), 0);
}

void CairoCanvas::MoveTo(double x, double y) {
  cairo_move_to(impl_->cr, x, y);
}

void CairoCanvas::LineTo(double x, double y) {
  if (!cairo_has_current_point(impl_->cr)) cairo_move_to(impl_->cr, x, y);
  cairo_line_to(impl_->cr, x, y);
  impl_->pathPending = true;
}

void CairoCanvas::Text(double x, double y, std::string_view text, double height, double angle,
                       int justification) {
  if (text.empty() || height <= 0) return;
  impl_->Stroke();
  cairo_t* cr = impl_->cr;
  const std::string utf8 = CanvasTextToUtf8(text);
  cairo_save(cr);
  cairo_new_path(cr);
  cairo_select_font_face(cr, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  // The height is that of a capital letter, as in the vector alphabet.
  cairo_set_font_size(cr, height / 0.73);
  cairo_text_extents_t extents;
  cairo_text_extents(cr, utf8.c_str(), &extents);
  const int j = std::clamp(justification, 1, 9) - 1;
  const double dx = -extents.x_advance * (j % 3) / 2.0;
  const double dy = height * (j / 3) / 2.0;  // bottom row 1-3, top row 7-9
  cairo_translate(cr, x, y);
  cairo_rotate(cr, -angle * std::numbers::pi / 180.0);
  cairo_move_to(cr, dx, dy);
  cairo_show_text(cr, utf8.c_str());
  cairo_new_path(cr);
  cairo_restore(cr);
}

void CairoCanvas::Clip(double x, double y, double width, double height) {
  impl_->Stroke();
  cairo_new_path(impl_->cr);
  cairo_reset_clip(impl_->cr);
  cairo_rectangle(impl_->cr, x, y, width, height);
  cairo_clip(impl_->cr);
}

void CairoCanvas::Unclip() {
  impl_->Stroke();
  cairo_reset_clip(impl_->cr);
}

bool CairoCanvas::Finish() {
  Impl& m = *impl_;
  if (m.finished) return m.result;
  m.finished = true;
  m.Stroke();
  cairo_surface_flush(m.surface);
  switch (m.format) {
    case ImageFormat::kPng:
      m.result = cairo_surface_write_to_png(m.surface, m.fileName.c_str()) == CAIRO_STATUS_SUCCESS;
      if (!m.result) m.error = "cannot write " + m.fileName;
      break;
    case ImageFormat::kJpg: m.result = WriteJpeg(m.surface, m.fileName, m.error); break;
    case ImageFormat::kBmp: m.result = WriteBmp(m.surface, m.fileName, m.error); break;
    default:
      cairo_surface_finish(m.surface);
      m.result = cairo_surface_status(m.surface) == CAIRO_STATUS_SUCCESS;
      if (!m.result) m.error = cairo_status_to_string(cairo_surface_status(m.surface));
      break;
  }
  return m.result;
}

const std::string& CairoCanvas::Error() const { return impl_->error; }

}  // namespace kaldena
