#include "util/text.h"

#include <algorithm>
#include <istream>

namespace kaldena {

namespace {

constexpr int kKeyLength = 4;

std::string FoldKey(std::string_view key, char (*fold)(char)) {
  std::string result(kKeyLength, ' ');
  const std::size_t used = std::min<std::size_t>(key.size(), kKeyLength);
  std::transform(key.begin(), key.begin() + used, result.begin(), fold);
  return result;
}

std::string FoldText(std::string_view text, char (*fold)(char)) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), fold);
  return result;
}

std::string_view Stripped(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return Trimmed(text).substr(first);
}

}  // namespace

char UpperChar(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

char LowerChar(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string UpperKey(std::string_view key) { return FoldKey(key, UpperChar); }

std::string LowerKey(std::string_view key) { return FoldKey(key, LowerChar); }

std::string UpperText(std::string_view text) { return FoldText(text, UpperChar); }

std::string LowerText(std::string_view text) { return FoldText(text, LowerChar); }

std::string RemoveBlanks(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  std::copy_if(text.begin(), text.end(), std::back_inserter(result),
               [](char c) { return c != ' '; });
  result.resize(text.size(), ' ');
  return result;
}

int IndexOf(std::string_view text, std::string_view part) {
  const std::string_view trimmedPart = Trimmed(part);
  if (trimmedPart.empty()) return 0;
  const std::size_t place = Trimmed(text).find(trimmedPart);
  return place == std::string_view::npos ? 0 : static_cast<int>(place) + 1;
}

std::string LeftJustify(std::string_view text) {
  std::string result(Stripped(text));
  result.resize(text.size(), ' ');
  return result;
}

std::string RightJustify(std::string_view text, std::size_t width) {
  const std::string_view word = Stripped(text).substr(0, width);
  return std::string(width - word.size(), ' ') + std::string(word);
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  std::size_t begin = 0;
  while (begin < text.size()) {
    std::size_t end = text.find('\n', begin);
    if (end == std::string_view::npos) end = text.size();
    lines.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

std::string SplitWords(std::string_view line, int n) {
  std::size_t start = 0;
  for (int word = 1;; ++word) {
    start = line.find_first_not_of(' ', start);
    if (start == std::string_view::npos) return {};
    const std::size_t end = std::min(line.find(' ', start), line.size());
    if (word == n) return std::string(line.substr(start, end - start));
    start = end;
  }
}

std::size_t TrimmedLength(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? 0 : last + 1;
}

std::string_view Trimmed(std::string_view text) { return text.substr(0, TrimmedLength(text)); }

std::string StrippedText(std::string_view text) { return std::string(Stripped(text)); }

bool GetTextLine(std::istream& in, std::string& line) {
  if (!std::getline(in, line)) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

bool IsNumberText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= '+' && c <= '9') || c == ' ' || c == '\t' || c == 'E' || c == 'e';
  });
}

}  // namespace kaldena
