// The line source and number helpers that all raw data readers share.
#include <algorithm>
#include <cmath>
#include <string>

#include "engine/raw_formats.h"
#include "store/record_text.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena::raw {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// Wider than any number that a data file writes; the comma list ends each item anyway.
constexpr std::string_view kItemFormat = "(f64.0)";
constexpr std::size_t kItemWidth = 64;

std::string_view RoleName(FileRole role) {
  switch (role) {
    case FileRole::kData:
      return "data";
    case FileRole::kBackground:
      return "background";
    case FileRole::kWeights:
      return "weights";
  }
  return "data";
}

bool ReadItem(std::string_view item, float& value) {
  return item.size() <= kItemWidth && Read(item, kItemFormat, value) == ReadStatus::kOk &&
         std::isfinite(value);
}

// How many fixed fields a line holds, walking them as the column reader does: a field ends
// at its width or behind a comma, and it counts when it begins before the last non-blank.
int FieldsPresent(std::string_view line, int fields, int width) {
  const std::size_t end = line.find_last_not_of(" \t") + 1;  // npos + 1 is 0
  std::size_t pos = 0;
  int count = 0;
  while (count < fields && pos < end) {
    std::size_t fieldEnd = pos + static_cast<std::size_t>(width);
    const std::size_t comma = line.find(',', pos);
    if (comma < fieldEnd) fieldEnd = comma + 1;
    ++count;
    pos = fieldEnd;
  }
  return count;
}

}  // namespace

bool ReadContext::Fail(std::string_view message) const {
  list.Line(message);
  return false;
}

bool ReadContext::LineError(std::string_view family, int line) const {
  return Fail(" Error reading " + std::string(family) + " " + std::string(RoleName(role)) +
              " file, line " + std::to_string(line));
}

bool ReadContext::NoPoints(std::string_view family) const {
  return Fail(" No data points in " + std::string(family) + " " + std::string(RoleName(role)) +
              " file");
}

LineReader::LineReader(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_directory(path, error)) in_.open(path, std::ios::binary);
}

bool LineReader::Next(std::string& line) {
  using Traits = std::char_traits<char>;
  std::streambuf& buffer = *in_.rdbuf();
  int c = buffer.sbumpc();
  if (c == Traits::eof()) return false;
  line.clear();
  ++number_;
  for (; c != Traits::eof() && c != '\n' && c != '\r'; c = buffer.sbumpc()) {
    if (line.size() == kMaxTextLength) {
      overlong_ = true;
      return false;
    }
    line.push_back(Traits::to_char_type(c));
  }
  if (c == '\r' && buffer.sgetc() == '\n') buffer.sbumpc();
  if (number_ == 1 && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
  return true;
}

std::string LineReader::Rest() {
  std::string text(kMaxTextLength + 1, '\0');
  text.resize(static_cast<std::size_t>(in_.rdbuf()->sgetn(text.data(), text.size())));
  if (text.size() > kMaxTextLength) {
    overlong_ = true;
    ++number_;  // the line where the long text begins
    return {};
  }
  if (number_ == 0 && text.starts_with(kByteOrderMark)) text.erase(0, kByteOrderMark.size());
  return text;
}

bool IsBlankLine(std::string_view line) {
  return line.find_first_not_of(" \t") == std::string_view::npos;
}

int ReadNumberList(std::string_view line, std::span<float> values) {
  std::string text(line);
  if (NormaliseNumericLine(text) == LineStatus::kEmpty) return 0;
  const std::string_view list = Trimmed(text);
  int filled = 0;
  std::size_t from = 0;
  // A comma at the very end opens no further item.
  while (static_cast<std::size_t>(filled) < values.size() && from < list.size()) {
    const std::size_t comma = std::min(list.find(',', from), list.size());
    if (!ReadItem(list.substr(from, comma - from), values[filled])) return -1;
    ++filled;
    from = comma + 1;
  }
  return filled;
}

bool ReadNumberToken(std::string_view token, float& value) {
  return !token.empty() && token.find_first_of(" \t,") == std::string_view::npos &&
         IsNumberText(token) && ReadItem(token, value);
}

bool AppendFixedFields(std::string_view line, int fields, int width, std::vector<float>& values) {
  const int present = FieldsPresent(line, fields, width);
  if (present == 0) return true;
  std::vector<float> read(static_cast<std::size_t>(fields));
  std::vector<ReadTarget> targets(read.begin(), read.end());
  const std::string format = "(" + std::to_string(fields) + "f" + std::to_string(width) + ".0)";
  if (ReadFormatted(line, format, targets) != ReadStatus::kOk) return false;
  const auto end = read.begin() + present;
  if (!std::all_of(read.begin(), end, [](float v) { return std::isfinite(v); })) return false;
  values.insert(values.end(), read.begin(), end);
  return true;
}

float StepBetween(float first, float last, std::size_t count) {
  return count < 2 ? 0.0f : (last - first) / static_cast<float>(count - 1);
}

}  // namespace kaldena::raw
