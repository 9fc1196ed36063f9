#include "util/column_fields.h"

#include <cctype>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace kaldena::columns {

namespace {

// gfortran rejects exponents of larger magnitude in input.
constexpr int kMaxReadExponent = 9999;

std::string RightJustified(std::string text, int width) {
  if (static_cast<int>(text.size()) > width) return Asterisks(width);
  return std::string(width - text.size(), ' ') + text;
}

// Sign, the optional zero before the point when it fits, right justification.
std::string Fit(bool negative, bool optionalZero, std::string_view body, int width) {
  const int needed = static_cast<int>(body.size()) + (negative ? 1 : 0);
  if (needed > width) return Asterisks(width);
  std::string text = negative ? "-" : "";
  if (optionalZero && needed < width) text += '0';
  text += body;
  return RightJustified(std::move(text), width);
}

// The decimal digits of |value| as printf would round them (exact binary value, ties to
// even), which is how gfortran rounds.
std::string Digits(double value, std::chars_format format, int precision) {
  std::string text(precision + 330, '\0');
  const auto result =
      std::to_chars(text.data(), text.data() + text.size(), std::fabs(value), format, precision);
  text.resize(result.ptr - text.data());
  return text;
}

std::string ExponentText(int exponent, int exponentDigits) {
  const int magnitude = std::abs(exponent);
  std::string digits = std::to_string(magnitude);
  const char sign = exponent < 0 ? '-' : '+';
  if (exponentDigits > 0) {
    if (static_cast<int>(digits.size()) > exponentDigits) return "";
    return std::string("E") + sign + std::string(exponentDigits - digits.size(), '0') + digits;
  }
  if (magnitude <= 99) return std::string("E") + sign + (magnitude < 10 ? "0" : "") + digits;
  if (magnitude <= 999) return sign + digits;  // the E gives way to the third digit
  return "";
}

struct Significand {
  bool negative = false;
  std::string digits;  // without leading signs or point
  int exponent = 0;    // value = digits * 10^exponent
};

// "inf", "infinity" or "nan" in any case, blanks behind allowed.
std::optional<double> ReadSpecial(std::string_view rest, bool negative) {
  while (!rest.empty() && rest.back() == ' ') rest.remove_suffix(1);
  std::string word;
  for (char c : rest) word += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  if (word == "nan") return std::numeric_limits<double>::quiet_NaN();
  if (word != "inf" && word != "infinity") return std::nullopt;
  return negative ? -HUGE_VAL : HUGE_VAL;
}

// The exponent after E, D, Q or a bare sign; blanks inside are ignored.
bool ReadExponent(std::string_view rest, int& exponent) {
  std::size_t i = rest.find_first_not_of(' ');
  if (i == std::string_view::npos) return false;
  int sign = 1;
  if (rest[i] == '+' || rest[i] == '-') sign = rest[i++] == '-' ? -1 : 1;
  if (i == rest.size()) return false;
  int value = 0;
  for (; i < rest.size(); ++i) {
    if (rest[i] == ' ') continue;
    if (rest[i] < '0' || rest[i] > '9') return false;
    value = value * 10 + (rest[i] - '0');
    if (value > kMaxReadExponent) return false;
  }
  exponent = sign * value;
  return true;
}

bool IsExponentLetter(char c) {
  return std::string_view("EeDdQq").find(c) != std::string_view::npos;
}

// Mantissa digits with an optional point, then an optional exponent.
bool ReadSignificand(std::string_view rest, int decimals, Significand& number) {
  bool seenPoint = false;
  int fractionDigits = 0;
  int exponent = 0;
  for (std::size_t i = 0; i < rest.size(); ++i) {
    const char c = rest[i];
    if (c >= '0' && c <= '9') {
      number.digits += c;
      fractionDigits += seenPoint ? 1 : 0;
    } else if (c == '.' && !seenPoint) {
      seenPoint = true;
    } else if (c == '+' || c == '-' || IsExponentLetter(c)) {
      if (!ReadExponent(rest.substr(IsExponentLetter(c) ? i + 1 : i), exponent)) return false;
      break;
    } else if (c != ' ') {
      return false;
    }
  }
  number.exponent = exponent - fractionDigits - (seenPoint ? 0 : decimals);
  return true;
}

template <typename Real>
Real Convert(const Significand& number) {
  const std::string digits = number.digits.empty() ? "0" : number.digits;
  const std::string text = digits + "e" + std::to_string(number.exponent);
  Real value{};
  if (std::from_chars(text.data(), text.data() + text.size(), value).ec ==
      std::errc::result_out_of_range) {
    // Out of range means beyond the largest or below the smallest value; which one is told
    // by the decimal magnitude of the significant digits.
    const std::size_t first = digits.find_first_not_of('0');
    const long long magnitude = static_cast<long long>(digits.size() - first) + number.exponent;
    value = magnitude > 0 ? std::numeric_limits<Real>::infinity() : Real{0};
  }
  return number.negative ? -value : value;
}

}  // namespace

std::string Asterisks(int width) { return std::string(width, '*'); }

std::string IntegerField(long long value, int width, int minDigits) {
  if (value == 0 && minDigits == 0) return std::string(width, ' ');
  const unsigned long long magnitude =
      value < 0 ? 0ULL - static_cast<unsigned long long>(value) : value;
  std::string digits = std::to_string(magnitude);
  if (minDigits > static_cast<int>(digits.size())) {
    digits.insert(0, minDigits - digits.size(), '0');
  }
  return RightJustified((value < 0 ? "-" : "") + digits, width);
}

// The zero before the point is optional unless there are no decimals; gfortran keeps the
// minus sign of values that round to zero.
std::string FixedField(double value, int width, int decimals) {
  if (!std::isfinite(value)) return Asterisks(width);  // never "NaN" or "Infinity" in a file
  std::string digits = Digits(value, std::chars_format::fixed, decimals);
  if (decimals == 0) digits += '.';
  const bool optionalZero = decimals > 0 && digits[0] == '0';
  if (optionalZero) digits.erase(0, 1);
  return Fit(std::signbit(value), optionalZero, digits, width);
}

// 0.ddddE+xx: the digits of the value rounded to d significant ones, point in front.
std::string ExponentField(double value, int width, int digits, int exponentDigits) {
  if (!std::isfinite(value)) return Asterisks(width);  // never "NaN" or "Infinity" in a file
  std::string mantissa(digits, '0');
  int exponent = 0;
  if (value != 0) {
    const std::string text = Digits(value, std::chars_format::scientific, digits - 1);
    const std::size_t e = text.find('e');
    mantissa = text.substr(0, 1) + (digits > 1 ? text.substr(2, e - 2) : "");
    exponent = std::atoi(text.c_str() + e + 1) + 1;
  }
  const std::string exponentText = ExponentText(exponent, exponentDigits);
  if (exponentText.empty()) return Asterisks(width);
  return Fit(std::signbit(value), true, "." + mantissa + exponentText, width);
}

std::string TextField(std::string_view text, int width) {
  if (width == 0) return std::string(text);
  if (static_cast<int>(text.size()) >= width) return std::string(text.substr(0, width));
  return std::string(width - text.size(), ' ') + std::string(text);
}

// Blanks anywhere are ignored; a blank field is 0; a sign needs something behind it.
std::optional<int> ReadIntegerField(std::string_view field) {
  std::size_t i = field.find_first_not_of(' ');
  if (i == std::string_view::npos) return 0;
  const bool negative = field[i] == '-';
  if ((field[i] == '-' || field[i] == '+') && ++i == field.size()) return std::nullopt;
  const long long limit = negative ? -static_cast<long long>(INT_MIN) : INT_MAX;
  long long value = 0;
  for (; i < field.size(); ++i) {
    if (field[i] == ' ') continue;
    if (field[i] < '0' || field[i] > '9') return std::nullopt;
    value = value * 10 + (field[i] - '0');
    if (value > limit) return std::nullopt;
  }
  return static_cast<int>(negative ? -value : value);
}

// Like gfortran, a sign alone reads as +0 while a sign before a point or exponent without
// digits reads as a signed zero.
template <typename Real>
std::optional<Real> ReadRealField(std::string_view field, int decimals) {
  std::size_t i = field.find_first_not_of(' ');
  if (i == std::string_view::npos) return Real{0};
  Significand number;
  if (field[i] == '-' || field[i] == '+') {
    number.negative = field[i] == '-';
    i = field.find_first_not_of(' ', i + 1);
    if (i == std::string_view::npos) return Real{0};
  }
  const char first = static_cast<char>(std::tolower(static_cast<unsigned char>(field[i])));
  if (first == 'i' || first == 'n') {
    const std::optional<double> special = ReadSpecial(field.substr(i), number.negative);
    if (!special) return std::nullopt;
    return static_cast<Real>(*special);
  }
  if (!ReadSignificand(field.substr(i), decimals, number)) return std::nullopt;
  return Convert<Real>(number);
}

template std::optional<float> ReadRealField<float>(std::string_view, int);
template std::optional<double> ReadRealField<double>(std::string_view, int);

}  // namespace kaldena::columns
