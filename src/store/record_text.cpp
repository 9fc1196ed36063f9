#include "store/record_text.h"

namespace kaldena {

namespace {

// "+", ",", "-", ".", "/", the digits (codes 43 to 57), "E" and "e".
bool IsNumberChar(unsigned char c) { return (c >= 43 && c <= 57) || c == 'E' || c == 'e'; }

// Rewrites line[from, end) as a comma list: runs of blanks between two items become one comma,
// a comma already there absorbs the blanks around it, a leading comma is dropped.
void CommaList(std::string& line, size_t from, size_t end) {
  size_t write = from;
  int blanks = 0;
  bool lastWasComma = false;
  for (size_t read = from; read < end; ++read) {
    const char c = line[read];
    if (c == ' ') {
      ++blanks;
    } else if (c == ',') {
      if (write > from) {
        line[write++] = ',';
        lastWasComma = true;
      }
      blanks = 0;
    } else {
      if (blanks > 0 && !lastWasComma && write > from) line[write++] = ',';
      line[write++] = c;
      lastWasComma = false;
      blanks = 0;
    }
  }
  for (; write < end; ++write) line[write] = ' ';
}

size_t EndOfText(const std::string& line) {
  size_t end = line.size();
  while (end > 0 && line[end - 1] == ' ') --end;
  return end;
}

}  // namespace

void NormaliseNumericField(std::string& record, int keptFields) {
  const size_t from = static_cast<size_t>(10 * keptFields);
  if (from >= record.size()) return;
  for (size_t i = from; i < record.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(record[i]);
    if (c < 32) {
      record[i] = ' ';
    } else if (c > 32 && !IsNumberChar(c)) {
      return;  // a text record
    }
  }
  CommaList(record, from, EndOfText(record));
}

LineStatus NormaliseNumericLine(std::string& line) {
  for (char& ch : line) {
    if (!IsNumberChar(static_cast<unsigned char>(ch))) ch = ' ';
  }
  const size_t end = EndOfText(line);
  if (end == 0) return LineStatus::kEmpty;
  CommaList(line, 0, end);
  return LineStatus::kNumbers;
}

}  // namespace kaldena
