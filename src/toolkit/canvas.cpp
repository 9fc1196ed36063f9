// The plot texts' two alphabets as UTF-8.
#include "toolkit/canvas.h"

namespace kaldena {
namespace {

// Greek letters by their Latin key in the symbol-font order; 0 where there is none.
const char32_t* GreekFor(char key) {
  static constexpr char32_t kLower[26] = {
      U'α', U'β', U'χ', U'δ', U'ε', U'φ', U'γ', U'η', U'ι', U'ϕ', U'κ', U'λ', U'μ',
      U'ν', U'ο', U'π', U'θ', U'ρ', U'σ', U'τ', U'υ', U'ϖ', U'ω', U'ξ', U'ψ', U'ζ'};
  static constexpr char32_t kUpper[26] = {
      U'Α', U'Β', U'Χ', U'Δ', U'Ε', U'Φ', U'Γ', U'Η', U'Ι', U'ϑ', U'Κ', U'Λ', U'Μ',
      U'Ν', U'Ο', U'Π', U'Θ', U'Ρ', U'Σ', U'Τ', U'Υ', U'ς', U'Ω', U'Ξ', U'Ψ', U'Ζ'};
  if (key >= 'a' && key <= 'z') return &kLower[key - 'a'];
  if (key >= 'A' && key <= 'Z') return &kUpper[key - 'A'];
  return nullptr;
}

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

}  // namespace

std::string CanvasTextToUtf8(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '|') {
      const char32_t* greek = i + 1 < text.size() ? GreekFor(text[i + 1]) : nullptr;
      if (greek) {
        AppendUtf8(out, *greek);
        ++i;
      } else {
        out += '_';
      }
    } else if (c == '@') {
      AppendUtf8(out, U'°');
    } else if (c >= ' ' && c <= '~') {
      out += c;
    } else {
      out += '_';
    }
  }
  return out;
}

}  // namespace kaldena
