// The small drawing surface that every plot (pattern, halfwidths, Fourier contours) is drawn
// against once: move, line, text, colour and line style. The screen and the plot files each
// provide one. It lives in the toolkit layer because the file canvas here implements it.
#pragma once

#include <string>
#include <string_view>

namespace kaldena {

// The toolkit's line types.
enum class LineStyle { kSolid = 0, kDotted = 1, kDashed = 2, kDotDash = 3, kDotDotDash = 4 };

// Device coordinates: pixels for images, points for vector files; x to the right, y down.
class Canvas {
 public:
  virtual ~Canvas() = default;
  virtual double Width() const = 0;
  virtual double Height() const = 0;
  // Fills the whole surface with white.
  virtual void Clear() = 0;
  // 24-bit colour with red in the low byte, as the plot colours are kept.
  virtual void SetColour(int colour) = 0;
  virtual void SetLineStyle(LineStyle style, double width) = 0;
  virtual void MoveTo(double x, double y) = 0;
  virtual void LineTo(double x, double y) = 0;
  // Text in the system's notation (see CanvasTextToUtf8). (x, y) is the point named by the
  // justification, a keypad 1 to 9 of left, centre and right by bottom, middle and top; the
  // angle in degrees turns the text counterclockwise about that point.
  virtual void Text(double x, double y, std::string_view text, double height, double angle,
                    int justification) = 0;
  // Lines after this are cut to the rectangle until Unclip.
  virtual void Clip(double x, double y, double width, double height) = 0;
  virtual void Unclip() = 0;
};

// The plot texts' notation as UTF-8: "|" takes the next character from the second (Greek)
// alphabet, by the letters of the classic symbol font ("|q" theta, "|g" gamma); "@" is the
// degree sign (code 248 of the old character set); a character outside printable ASCII is
// "_", and so is a "|" at the end or before a character without a Greek letter.
std::string CanvasTextToUtf8(std::string_view text);

}  // namespace kaldena
