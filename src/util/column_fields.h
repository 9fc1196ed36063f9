// Single fields of the column format: a value to the text of its field and back, following
// gfortran's formatted I/O. Record and format control live in column_format.cpp.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kaldena::columns {

// Iw.m (minDigits < 0 when m is not given).
std::string IntegerField(long long value, int width, int minDigits);
// Fw.d.
std::string FixedField(double value, int width, int decimals);
// Ew.d, Ew.dEe (exponentDigits 0 when e is not given).
std::string ExponentField(double value, int width, int digits, int exponentDigits);
// Aw, and A for width 0.
std::string TextField(std::string_view text, int width);
std::string Asterisks(int width);

// An I field; empty when it holds anything but an optionally signed digit string.
std::optional<int> ReadIntegerField(std::string_view field);
// An F or E field, with `decimals` implied when the field has no point; correctly rounded to
// the target type. Empty when the field is not a number.
template <typename Real>
std::optional<Real> ReadRealField(std::string_view field, int decimals);

}  // namespace kaldena::columns
