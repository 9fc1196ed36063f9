#include "util/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::string_view kDigitChars = "0123456789";

double PowerOfTen(int exponent) { return std::pow(10.0, exponent); }

// The lowest `count` decimal digits of a whole non-negative number, most significant first.
std::string LowDigits(double whole, int count) {
  std::string digits(count, '0');
  for (int i = count - 1; i >= 0; --i) {
    digits[i] = kDigitChars[static_cast<int>(std::fmod(whole, 10.0))];
    whole = std::floor(whole / 10.0);
  }
  return digits;
}

// Digits of a whole non-negative number, without leading zeros.
std::string AllDigits(double whole) {
  int count = 1;
  while (whole >= PowerOfTen(count)) ++count;
  return LowDigits(whole, count);
}

std::string Stars(int width) { return std::string(width, '*'); }

// Puts "-" in front of the first non-blank character; false when the field has no room.
bool PlaceMinus(std::string& field) {
  const std::size_t first = field.find_first_not_of(' ');
  if (first == 0 || first == std::string::npos) return false;
  field[first - 1] = '-';
  return true;
}

// Blanks the zeros at the start of the field, looking at its first `count` characters at most.
void BlankLeadingZeros(std::string& field, int count) {
  for (int i = 0; i < count && field[i] == '0'; ++i) field[i] = ' ';
}

std::string RightJustified(const std::string& text, int width) {
  if (static_cast<int>(text.size()) > width) return Stars(width);
  return std::string(width - text.size(), ' ') + text;
}

// The decimal layout of a number's text, for scaling its uncertainty.
struct DecimalText {
  float value;
  int decimals;  // digits behind the point
  int exponent;  // of the "e" part, 0 when absent
};

std::size_t SkipDigits(std::string_view text, std::size_t i) {
  while (i < text.size() && text[i] >= '0' && text[i] <= '9') ++i;
  return i;
}

std::size_t SignLength(std::string_view text) {
  return !text.empty() && (text.front() == '+' || text.front() == '-') ? 1 : 0;
}

// from_chars takes a "-" but no "+".
std::string_view WithoutPlus(std::string_view text) {
  return !text.empty() && text.front() == '+' ? text.substr(1) : text;
}

std::optional<int> ReadExponent(std::string_view text) {
  const std::size_t digitsFrom = SignLength(text);
  if (digitsFrom == text.size() || SkipDigits(text, digitsFrom) != text.size()) return {};
  const std::string_view number = WithoutPlus(text);
  int exponent = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), exponent);
  if (error != std::errc()) return {};
  return exponent;
}

// [sign] digits [. digits] [e|E [sign] digits], with at least one digit before the exponent.
std::optional<DecimalText> ReadDecimal(std::string_view text) {
  const std::size_t intFrom = SignLength(text);
  std::size_t i = SkipDigits(text, intFrom);
  int digitCount = static_cast<int>(i - intFrom);
  int decimals = 0;
  if (i < text.size() && text[i] == '.') {
    const std::size_t fractionEnd = SkipDigits(text, i + 1);
    decimals = static_cast<int>(fractionEnd - i - 1);
    i = fractionEnd;
  }
  if (digitCount + decimals == 0) return {};
  int exponent = 0;
  if (i < text.size()) {
    if (text[i] != 'e' && text[i] != 'E') return {};
    const std::optional<int> read = ReadExponent(text.substr(i + 1));
    if (!read) return {};
    exponent = *read;
  }
  const std::string_view number = WithoutPlus(text);
  float value = 0.0f;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error != std::errc() || end != number.data() + number.size()) return {};
  return DecimalText{value, decimals, exponent};
}

}  // namespace

std::string RealToText(double value, int width, int decimals) {
  if (width <= 0) return {};
  if (decimals < 0 || decimals >= width) return Stars(width);
  const int pointAt = width - decimals - 1;
  const double scaled = std::round(std::fabs(value) * PowerOfTen(decimals));
  if (!(scaled < PowerOfTen(width - 1))) {
    std::string stars = Stars(width);
    stars[pointAt] = '.';
    return stars;
  }
  const std::string digits = LowDigits(scaled, width - 1);
  std::string field = digits.substr(0, pointAt) + '.' + digits.substr(pointAt);
  BlankLeadingZeros(field, decimals == 0 ? pointAt - 1 : pointAt);
  if (value < 0.0 && scaled > 0.0 && !PlaceMinus(field)) {
    field = '-' + field.substr(0, width - 1);
  }
  return field;
}

std::string IntegerToText(int value, int width, int minDigits) {
  if (width <= 0) return {};
  const double magnitude = std::fabs(static_cast<double>(value));
  if (magnitude >= PowerOfTen(width)) return Stars(width);
  std::string field = LowDigits(magnitude, width);
  const int digits = std::max(1, std::min(minDigits, width));
  BlankLeadingZeros(field, width - digits);
  if (value < 0 && !PlaceMinus(field)) return Stars(width);
  return field;
}

std::string RealToExponentText(double value, int width, int decimals) {
  if (width <= 0) return {};
  if (value == 0.0) return RightJustified("0.e0", width);
  const double magnitude = std::fabs(value);
  if (decimals < 0 || !std::isfinite(magnitude)) return Stars(width);
  // log10 may land one off near powers of ten, and rounding may carry to a further digit.
  int exponent = static_cast<int>(std::floor(std::log10(magnitude)));
  double mantissa = std::round(magnitude * PowerOfTen(decimals - exponent));
  if (mantissa < PowerOfTen(decimals)) {
    --exponent;
    mantissa = std::round(magnitude * PowerOfTen(decimals - exponent));
  }
  if (mantissa >= PowerOfTen(decimals + 1)) {
    ++exponent;
    mantissa = std::round(magnitude * PowerOfTen(decimals - exponent));
  }
  if (!std::isfinite(mantissa)) return Stars(width);
  const std::string digits = LowDigits(mantissa, decimals + 1);
  std::string text = value < 0.0 ? "-" : "";
  text += digits.substr(0, 1) + '.' + digits.substr(1) + 'e';
  if (exponent < 0) text += '-';
  text += AllDigits(std::abs(exponent));
  return RightJustified(text, width);
}

std::optional<MeasuredValue> ValueWithEsd(std::string_view text) {
  const std::string packed = RemoveBlanks(text);
  const std::string_view all = Trimmed(packed);
  const std::size_t open = all.find('(');
  const std::optional<DecimalText> number = ReadDecimal(all.substr(0, open));
  if (!number) return {};
  if (open == std::string_view::npos) return MeasuredValue{number->value, 0.0f};
  const std::string_view bracket = all.substr(open + 1);
  const std::size_t close = SkipDigits(bracket, 0);
  if (close == 0 || close + 1 != bracket.size() || bracket[close] != ')') return {};
  double units = 0.0;
  for (std::size_t i = 0; i < close; ++i) units = units * 10.0 + (bracket[i] - '0');
  const double esd = units * PowerOfTen(number->exponent - number->decimals);
  return MeasuredValue{number->value, static_cast<float>(esd)};
}

}  // namespace kaldena
