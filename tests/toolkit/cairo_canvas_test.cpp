// The file canvas: every format is written and opens, PNG pixels come back where and in the
// colour they were drawn, and the text notation turns into Greek letters.
#include "toolkit/cairo_canvas.h"

#include <cairo/cairo.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "support/test_files.h"

namespace kaldena {
namespace {

using testing::ReadBytes;

TEST(CairoCanvas, TextNotation) {
  EXPECT_EQ(CanvasTextToUtf8("2|q"), "2θ");
  EXPECT_EQ(CanvasTextToUtf8("|g"), "γ");
  EXPECT_EQ(CanvasTextToUtf8("90@"), "90°");
  EXPECT_EQ(CanvasTextToUtf8("a|"), "a_");
  EXPECT_EQ(CanvasTextToUtf8("x\ty"), "x_y");
}

TEST(CairoCanvas, FormatsByExtension) {
  EXPECT_EQ(ImageFormatOf("a/b.PNG"), ImageFormat::kPng);
  EXPECT_EQ(ImageFormatOf("b.jpg"), ImageFormat::kJpg);
  EXPECT_EQ(ImageFormatOf("b.eps"), ImageFormat::kEps);
  EXPECT_FALSE(ImageFormatOf("b.gif"));
  EXPECT_FALSE(ImageFormatOf("dir.png/b"));
}

TEST(CairoCanvas, EveryFormatIsWrittenWithItsSignature) {
  testing::ScratchDir dir;
  const std::pair<const char*, std::string_view> files[] = {
      {"p.png", "\x89PNG"}, {"p.svg", "<?xml"}, {"p.pdf", "%PDF"},
      {"p.eps", "%!PS-Adobe"}, {"p.jpg", "\xFF\xD8\xFF"}, {"p.bmp", "BM"}};
  for (const auto& [name, magic] : files) {
    const std::string path = (dir.Path() / name).string();
    auto canvas = CairoCanvas::Open(path, *ImageFormatOf(path), 120, 80);
    ASSERT_TRUE(canvas) << name;
    canvas->Clear();
    canvas->SetColour(255);
    canvas->MoveTo(10, 10);
    canvas->LineTo(110, 70);
    canvas->Text(60, 40, "2|q", 12, 0, 5);
    ASSERT_TRUE(canvas->Finish()) << name;
    const std::string bytes = ReadBytes(path);
    EXPECT_EQ(bytes.substr(0, magic.size()), magic) << name;
  }
  // 24-bit BMP of 120 x 80: rows of 360 bytes.
  EXPECT_EQ(ReadBytes(dir.Path() / "p.bmp").size(), 54u + 360u * 80u);
  EXPECT_FALSE(CairoCanvas::Open((dir.Path() / "none/p.svg").string(), ImageFormat::kSvg, 10, 10));
}

TEST(CairoCanvas, PngPixelsShowColourAndStyleWherePlaced) {
  testing::ScratchDir dir;
  const std::string path = (dir.Path() / "lines.png").string();
  {
    auto canvas = CairoCanvas::Open(path, ImageFormat::kPng, 100, 100);
    ASSERT_TRUE(canvas);
    canvas->Clear();
    canvas->SetLineStyle(LineStyle::kSolid, 3);
    canvas->SetColour(0x0000FF);  // red in the low byte
    canvas->MoveTo(0, 20.5);
    canvas->LineTo(100, 20.5);
    canvas->SetColour(0xFF0000);  // blue
    canvas->Clip(0, 0, 50, 100);
    canvas->MoveTo(0, 70.5);
    canvas->LineTo(100, 70.5);
    canvas->Unclip();
    ASSERT_TRUE(canvas->Finish());
  }
  cairo_surface_t* image = cairo_image_surface_create_from_png(path.c_str());
  ASSERT_EQ(cairo_surface_status(image), CAIRO_STATUS_SUCCESS);
  const unsigned char* data = cairo_image_surface_get_data(image);
  const int stride = cairo_image_surface_get_stride(image);
  auto pixel = [&](int x, int y) {
    uint32_t p;
    std::memcpy(&p, data + y * stride + 4 * x, 4);
    return p & 0xFFFFFF;  // red, green, blue from high to low
  };
  EXPECT_EQ(pixel(50, 20), 0xFF0000u);
  EXPECT_EQ(pixel(20, 70), 0x0000FFu);
  EXPECT_EQ(pixel(80, 70), 0xFFFFFFu);  // cut by the clip
  EXPECT_EQ(pixel(50, 45), 0xFFFFFFu);
  cairo_surface_destroy(image);
}

}  // namespace
}  // namespace kaldena
