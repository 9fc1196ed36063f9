// Numbers to fixed-width text and back. The writers build their digits arithmetically rather
// than through formatted output, so that a number looks the same in every file of the system.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kaldena {

// `value` right-justified in exactly `width` characters with a point before the last
// `decimals` digits, rounded half away from zero. Leading zeros are blanked up to the point or
// the first other digit, so 0.5 shows as ".5"; with no decimals one zero stays, so the field
// always holds a digit. A "-" stands just in front of the first character; when the digits
// fill the field they move one place right and the last one drops off. A value that does not
// fit fills the field with "*" around the point. A negative value that rounds to zero shows no
// sign. Decimals outside 0 to width - 1 give a field of "*".
std::string RealToText(double value, int width, int decimals);

// `value` right-justified in exactly `width` characters with at least `minDigits` digits
// (leading zeros fill them; at least one digit is always written). A value that does not fit,
// the "-" included, fills the field with "*".
std::string IntegerToText(int value, int width, int minDigits);

// `value` in scientific form: one digit, the point, `decimals` digits, "e" and the exponent
// without leading zeros or "+", as "1.235e3" or "-2.50e-4"; zero is "0.e0". Right-justified
// in exactly `width` characters, or a field of "*" when it does not fit.
std::string RealToExponentText(double value, int width, int decimals);

struct MeasuredValue {
  float value = 0.0f;
  float esd = 0.0f;  // standard uncertainty, 0 when not given
};

// Reads a value with its uncertainty in brackets, such as "1.2345(12)" (1.2345 and 0.0012) or
// "12(3)"; the bracket digits count in units of the value's last decimal, its exponent
// included ("1.5e-3(2)" has 0.0002). Blanks anywhere are ignored; no brackets give an
// uncertainty of 0. Empty or malformed text gives nothing.
std::optional<MeasuredValue> ValueWithEsd(std::string_view text);

}  // namespace kaldena
