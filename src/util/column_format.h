// Reading and writing fixed-column text by the system's column notation: Fortran-style edit
// descriptors such as "(1X,A70/)", "(I5,3X,3I4,A1,2F8.3)", "6(a4,i6,1x)" or "e12.5".
//
// Items: Aw and A (text), Iw and Iw.m (integer), Fw.d, Ew.d and Ew.dEe (real), nX (skip),
// Tn, TLn, TRn (tabs), '/' (next record), '$' (no record end from here on),
// literals in single or double quotes ('' inside a literal is one quote), repeat counts on
// items, on '/' and on parenthesised groups. Letters may be of either case; the outer
// parentheses may be left out, and so may commas between items. The text of every field
// follows gfortran's formatted I/O, rounding included (exact binary value, ties to even).
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace kaldena {

// One value handed to the writer.
class FormatArg {
 public:
  FormatArg(int v) : value_(static_cast<long long>(v)) {}
  FormatArg(long v) : value_(static_cast<long long>(v)) {}
  FormatArg(long long v) : value_(v) {}
  FormatArg(unsigned v) : value_(static_cast<long long>(v)) {}
  FormatArg(unsigned long v) : value_(static_cast<long long>(v)) {}
  FormatArg(float v) : value_(static_cast<double>(v)) {}
  FormatArg(double v) : value_(v) {}
  FormatArg(const char* v) : value_(std::string_view(v)) {}
  FormatArg(std::string_view v) : value_(v) {}
  FormatArg(const std::string& v) : value_(std::string_view(v)) {}
  // A text argument is kept as a view: a temporary string would be gone before it is written.
  FormatArg(std::string&&) = delete;

  const std::variant<long long, double, std::string_view>& Value() const { return value_; }

 private:
  std::variant<long long, double, std::string_view> value_;
};

// Writes the values by the format and returns the text. Every record ends with '\n'; once a
// '$' has been met, no record ends any more (not at '/', nor at reversion, nor at the end).
// Writing stops at the first data item for which no value is left; when values remain at the
// end of the format, a new record begins and the format starts again at its last top-level
// group, or at its beginning when it has none. Numbers too wide for their field, and values
// of the wrong kind for their item, are written as asterisks; integers may go to F and E.
// A format that does not parse writes nothing (empty result).
std::string WriteFormatted(std::string_view format, std::span<const FormatArg> args);

template <typename... T>
std::string Format(std::string_view format, const T&... args) {
  const FormatArg list[] = {FormatArg(args)..., FormatArg(0)};
  return WriteFormatted(format, std::span<const FormatArg>(list, sizeof...(T)));
}

// One line by the format, without its line end: for formats that make a single record.
template <typename... T>
std::string FormatLine(std::string_view format, const T&... args) {
  std::string text = Format(format, args...);
  if (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

// One variable that the reader fills.
class ReadTarget {
 public:
  ReadTarget(int& v) : target_(&v) {}
  ReadTarget(float& v) : target_(&v) {}
  ReadTarget(double& v) : target_(&v) {}
  ReadTarget(std::string& v) : target_(&v) {}

  const std::variant<int*, float*, double*, std::string*>& Target() const { return target_; }

 private:
  std::variant<int*, float*, double*, std::string*> target_;
};

enum class ReadStatus {
  kOk = 0,     // every target was filled
  kError = 1,  // a field that is not a number of its kind, a target of the wrong kind for its
               // item, a literal in the format, a record missing, or a format that does not
               // parse; the targets before the failing one are filled, the others keep
               // their values
};

// Reads the targets from text by the format; records are separated by '\n' (a '\r' ending a
// line belongs to the line end, a '\n' ending the text ends its last record). Reading rules: a
// blank field reads as 0; blanks inside a numeric field are ignored; a comma ends a numeric
// field where it stands and the next field begins behind it; Fw.d without a point in the
// field takes the last d digits as decimals (so "12" in F10.0 is 12.0 and "12345" in F9.5 is
// 0.12345); an exponent is accepted ("1.2E-3", "1.2D-3", "1.2-3"); fields behind the end of
// the record read as blanks. I fields take int targets, F and E fields float or double ones
// (correctly rounded to the target's type), A fields strings: Aw reads w characters (blanks
// behind the record end), A the rest of the record.
ReadStatus ReadFormatted(std::string_view text, std::string_view format,
                         std::span<const ReadTarget> targets);

template <typename... T>
ReadStatus Read(std::string_view text, std::string_view format, T&... targets) {
  const ReadTarget list[] = {ReadTarget(targets)...};
  return ReadFormatted(text, format, list);
}

}  // namespace kaldena
