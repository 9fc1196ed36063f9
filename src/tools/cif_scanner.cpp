// The line scanner of the CIF import.
#include "tools/cif_scanner.h"

#include <fstream>
#include <sstream>

#include "util/text.h"

namespace kaldena {

namespace {

bool IsBlankChar(char c) { return c == ' ' || c == '\t'; }

std::string_view LeftTrimmed(std::string_view line) {
  std::size_t i = 0;
  while (i < line.size() && IsBlankChar(line[i])) ++i;
  return line.substr(i);
}

void SplitLinesInto(std::istream& in, std::vector<std::string>& lines) {
  std::string line;
  char c = 0;
  bool pending = false;
  while (in.get(c)) {
    if (c == '\n' || c == '\r') {
      if (c == '\r' && in.peek() == '\n') in.get(c);
      lines.push_back(line);
      line.clear();
      pending = false;
      continue;
    }
    line.push_back(c);
    pending = true;
  }
  if (pending) lines.push_back(line);
}

// A line that ends a loop's data.
bool EndsLoop(std::string_view line) {
  const std::string_view text = LeftTrimmed(line);
  if (Trimmed(text).empty()) return true;
  const char first = text.front();
  if (first == '_' || first == ';' || first == '#') return true;
  const std::string head = LowerText(text.substr(0, 5));
  return head == "loop_" || head == "data_";
}

bool IsLoopStart(std::string_view line) {
  const std::vector<std::string> words = CifWords(line);
  return !words.empty() && SameCifName(words.front(), "loop_");
}

}  // namespace

std::string CifText::Where(int line) const {
  return fileName + ":" + std::to_string(line + 1);
}

bool ReadCifText(const std::string& path, CifText& text) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  text.fileName = path;
  text.lines.clear();
  SplitLinesInto(in, text.lines);
  return true;
}

CifText CifTextOf(std::string_view name, std::string_view content) {
  CifText text;
  text.fileName = std::string(name);
  std::istringstream in{std::string(content)};
  SplitLinesInto(in, text.lines);
  return text;
}

std::vector<std::string> CifWords(std::string_view line) {
  std::vector<std::string> words;
  std::size_t i = 0;
  while (true) {
    while (i < line.size() && IsBlankChar(line[i])) ++i;
    if (i >= line.size()) break;
    const char first = line[i];
    if (first == '#') break;
    if (first == '\'' || first == '"') {
      // A quote closes only when a blank or the line end follows it ('O''Brien' style
      // inner quotes stay in the word).
      std::size_t close = i + 1;
      while (close < line.size() &&
             !(line[close] == first && (close + 1 == line.size() || IsBlankChar(line[close + 1])))) {
        ++close;
      }
      words.emplace_back(line.substr(i + 1, close - i - 1));
      i = close + 1;
      continue;
    }
    const std::size_t start = i;
    while (i < line.size() && !IsBlankChar(line[i])) ++i;
    words.emplace_back(line.substr(start, i - start));
  }
  return words;
}

std::string ColumnWord(std::string_view line, int n) {
  if (n < 1) return {};
  const std::vector<std::string> words = CifWords(line);
  return n <= static_cast<int>(words.size()) ? words[n - 1] : std::string();
}

bool SameCifName(std::string_view a, std::string_view b) {
  return a.size() == b.size() && LowerText(a) == LowerText(b);
}

std::optional<CifItem> FindCifItem(const CifText& text, std::string_view name) {
  for (int i = 0; i < static_cast<int>(text.lines.size()); ++i) {
    const std::string_view line = LeftTrimmed(text.lines[i]);
    std::size_t end = 0;
    while (end < line.size() && !IsBlankChar(line[end])) ++end;
    if (!SameCifName(line.substr(0, end), name)) continue;
    return CifItem{i, std::string(Trimmed(LeftTrimmed(line.substr(end))))};
  }
  return std::nullopt;
}

int CifLoop::Column(std::string_view name) const {
  for (int i = 0; i < static_cast<int>(names.size()); ++i) {
    if (SameCifName(names[i], name)) return i;
  }
  return -1;
}

std::optional<CifLoop> FindCifLoop(
    const CifText& text, const std::function<bool(const std::vector<std::string>&)>& accept) {
  const int count = static_cast<int>(text.lines.size());
  for (int start = 0; start < count; ++start) {
    if (!IsLoopStart(text.lines[start])) continue;
    CifLoop loop;
    loop.line = start;
    // Names follow "loop_" on its own line or the next ones; the first word that is not a
    // name begins the data, wherever it stands.
    std::vector<std::string> values;
    int line = start;
    int valueLine = -1;
    bool inData = false;
    std::vector<std::string> words = CifWords(text.lines[start]);
    words.erase(words.begin());
    while (true) {
      for (const std::string& word : words) {
        if (!inData && !word.empty() && word.front() == '_') {
          loop.names.push_back(word);
          continue;
        }
        inData = true;
        if (values.empty()) valueLine = line;
        values.push_back(word);
        if (!loop.names.empty() && values.size() == loop.names.size()) {
          loop.rows.push_back(values);
          loop.rowLines.push_back(valueLine);
          values.clear();
        }
      }
      ++line;
      if (line >= count) break;
      const std::string_view next = text.lines[line];
      if (inData && EndsLoop(next)) break;
      if (!inData) {
        const std::string_view head = LeftTrimmed(next);
        // Blank and comment lines may stand between the names; anything else that is not a
        // name or a value ends a loop without data.
        if (Trimmed(head).empty() || head.front() == '#') {
          words.clear();
          continue;
        }
        if (head.front() == ';' || IsLoopStart(next) || LowerText(head.substr(0, 5)) == "data_") {
          break;
        }
      }
      words = CifWords(next);
    }
    if (!values.empty()) loop.incompleteLine = valueLine;
    if (accept(loop.names)) return loop;
  }
  return std::nullopt;
}

CifNumber ReadCifNumber(std::string_view word) {
  CifNumber number;
  const std::string_view text = Trimmed(LeftTrimmed(word));
  if (text == "?" || text == ".") return number;
  const std::optional<MeasuredValue> value = ValueWithEsd(text);
  if (!value) {
    number.kind = CifNumber::Kind::kBad;
    return number;
  }
  number.kind = CifNumber::Kind::kValue;
  number.value = *value;
  return number;
}

}  // namespace kaldena
