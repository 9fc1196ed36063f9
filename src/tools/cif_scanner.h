// The line scanner of the CIF import: finds the first occurrence of a data name or of a loop
// in the file, and splits lines into words. Not a general CIF parser: text fields, save frames
// and data blocks are not modelled, and every search starts again from the top of the file.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "util/number_text.h"

namespace kaldena {

// The lines of a CIF, kept so that each search can read the file from its start.
struct CifText {
  std::string fileName;
  std::vector<std::string> lines;
  // "file:line" of a 0-based line index, for our own messages.
  std::string Where(int line) const;
};

// False when the file cannot be opened. Line ends "\n", "\r\n" and "\r" are all taken.
bool ReadCifText(const std::string& path, CifText& text);
// The same for text in memory (file name only for messages).
CifText CifTextOf(std::string_view name, std::string_view content);

// The words of a line. A word that begins with an apostrophe or double quote runs to the
// same quote followed by a blank or the line end, so that 'P 21/c' is one word "P 21/c";
// a word that begins with "#" ends the line.
std::vector<std::string> CifWords(std::string_view line);

// The n-th (1-based) word of a line as CifWords gives it; empty when the line is shorter.
std::string ColumnWord(std::string_view line, int n);

// Data names compare without regard to case.
bool SameCifName(std::string_view a, std::string_view b);

// A line whose first word is a data name, with the rest of the line behind the name.
struct CifItem {
  int line = -1;
  std::string rest;  // the text behind the name, leading blanks removed
};
std::optional<CifItem> FindCifItem(const CifText& text, std::string_view name);

// A loop: its data names and its rows. A row whose values run over several lines (wrapped
// data lines) is joined; the loop ends at the end of the file, a blank line, a line that
// begins with "loop_", "data_", "_", ";" or "#".
struct CifLoop {
  int line = -1;                       // the line of "loop_"
  std::vector<std::string> names;
  std::vector<std::vector<std::string>> rows;
  std::vector<int> rowLines;           // the first line of each row
  int incompleteLine = -1;             // first line of a row cut short by the loop's end
  // 0-based column of a name, -1 when the loop has none such.
  int Column(std::string_view name) const;
};

// The first loop, from the top of the file, whose names satisfy `accept`.
std::optional<CifLoop> FindCifLoop(
    const CifText& text, const std::function<bool(const std::vector<std::string>&)>& accept);

// A CIF number: "1.234(5)", "12(3)", "-.5". "?" and "." are unknown values, anything else
// that does not read is bad.
struct CifNumber {
  enum class Kind { kValue, kUnknown, kBad };
  Kind kind = Kind::kUnknown;
  MeasuredValue value;
};
CifNumber ReadCifNumber(std::string_view word);

}  // namespace kaldena
