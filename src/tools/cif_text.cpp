// The value(esd) rule of the CIF writer and the quoting of CIF values.
#include "tools/cif_text.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kEsdField = 20;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// A whole number of at most 18 digits, or false.
bool Whole(double v, long long& n) {
  if (!std::isfinite(v) || v >= 1e18) return false;
  n = static_cast<long long>(v);
  return true;
}

std::string Overflow(int width, int decimals) {
  std::string text(static_cast<size_t>(std::max(width, 1)), '*');
  if (decimals > 0 && decimals < width) text[text.size() - decimals - 1] = '.';
  return text;
}

bool StartsWithWord(std::string_view text, std::string_view word) {
  if (text.size() < word.size()) return false;
  for (size_t i = 0; i < word.size(); ++i) {
    if (LowerChar(text[i]) != word[i]) return false;
  }
  return true;
}

// True when the text can stand as a CIF value without quotes.
bool Bare(std::string_view text) {
  if (text.empty()) return false;
  const char first = text.front();
  if (first == '_' || first == '#' || first == '$' || first == '\'' || first == '"' ||
      first == ';' || first == '[' || first == ']') {
    return false;
  }
  for (char c : text) {
    if (IsBlank(c) || static_cast<unsigned char>(c) < 33 || static_cast<unsigned char>(c) > 126) {
      return false;
    }
  }
  if (text == "." || text == "?") return false;
  for (std::string_view word : {"data_", "save_", "loop_", "global_", "stop_"}) {
    if (StartsWithWord(text, word)) return false;
  }
  return true;
}

// A quote character ends a quoted value only when whitespace (or the line end) follows it.
bool Quotable(std::string_view text, char quote) {
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' || text[i] == '\r') return false;
    if (text[i] == quote && i + 1 < text.size() && IsBlank(text[i + 1])) return false;
  }
  return true;
}

std::string TextField(std::string_view text) {
  std::string out = "\n;";
  bool lineStart = false;
  for (char c : text) {
    if (c == '\r') continue;
    // A line of the field that begins with ";" would end it.
    if (lineStart && c == ';') out += ' ';
    out += c;
    lineStart = c == '\n';
  }
  out += "\n;";
  return out;
}

}  // namespace

std::string CifNumberText(double value, int width, int decimals) {
  if (width < 1 || decimals < 0 || decimals >= width) return Overflow(width, decimals);
  const bool negative = value < 0;
  // Half up by adding a half at the last digit, then digit out by repeated remainder.
  long long n = 0;
  if (!Whole(std::fabs(value) * std::pow(10.0, decimals) + 0.5, n)) {
    return Overflow(width, decimals);
  }
  std::string digits;
  for (int i = 0; i < decimals; ++i, n /= 10) digits.insert(digits.begin(), char('0' + n % 10));
  std::string whole;
  do {
    whole.insert(whole.begin(), char('0' + n % 10));
    n /= 10;
  } while (n > 0);
  std::string text = whole;
  if (decimals > 0) text += "." + digits;
  const bool zero = text.find_first_of("123456789") == std::string::npos;
  if (negative && !zero) text.insert(text.begin(), '-');
  if (static_cast<int>(text.size()) > width) return Overflow(width, decimals);
  return text;
}

std::string ValueWithEsdText(double value, double esd, int decimals) {
  esd = std::isfinite(esd) ? std::fabs(esd) : 0.0;
  const std::string scan = CifNumberText(esd, kEsdField, decimals);
  const size_t first = scan.find_first_of("123456789");
  const bool overflow = scan.find('*') != std::string::npos;
  if (!overflow && first == std::string::npos) return CifNumberText(value, kEsdField, decimals);
  const size_t point = scan.find('.');
  if (!overflow && point != std::string::npos && point < first) {
    int m = static_cast<int>(first - point);
    double e = esd * std::pow(10.0, m);
    if (e <= 9.499 || m > 1) {
      // An esd beginning with 1 keeps two digits.
      if (e <= 1.949) {
        e *= 10;
        ++m;
      }
      return CifNumberText(value, kEsdField, m) + "(" + CifNumberText(e, kEsdField, 0) + ")";
    }
  }
  return CifNumberText(value, kEsdField, 0) + "(" + CifNumberText(esd, kEsdField, 0) + ")";
}

std::string CifValue(std::string_view text) {
  if (text.empty()) return "?";
  if (Bare(text)) return std::string(text);
  if (Quotable(text, '\'')) return "'" + std::string(text) + "'";
  if (Quotable(text, '"')) return "\"" + std::string(text) + "\"";
  return TextField(text);
}

std::string CifQuoted(std::string_view text) {
  if (Quotable(text, '\'')) return "'" + std::string(text) + "'";
  return CifValue(text);
}

std::string CifBlockCode(std::string_view text) {
  std::string code;
  for (char c : text) {
    if (IsBlank(c)) continue;
    const auto u = static_cast<unsigned char>(c);
    code += u >= 33 && u <= 126 ? c : '_';
    if (code.size() == 70) break;
  }
  return code;
}

std::string SiteSymmetryText(int code) {
  if (code == 1555) return ".";
  std::string klm = std::to_string(std::abs(code % 1000));
  klm.insert(0, 3 - std::min<size_t>(klm.size(), 3), '0');
  return std::to_string(code / 1000) + "_" + klm;
}

std::string CifLabel(std::string_view label) {
  std::string text(Trimmed(label));
  const size_t start = text.find_first_not_of(' ');
  if (start == std::string::npos) return "?";
  text.erase(0, start);
  for (char& c : text) {
    if (IsBlank(c)) c = '_';
  }
  return CifValue(text);
}

}  // namespace kaldena
