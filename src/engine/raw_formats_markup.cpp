// The tagged formats: PANalytical xrdml (searched for its elements, not parsed as a tree) and
// powder CIF.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "engine/raw_formats.h"
#include "util/text.h"

namespace kaldena::raw {

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n";

std::string_view TrimWhiteSpace(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

// Blank-delimited numbers; false on the first that is none.
bool AppendTokens(std::string_view text, std::vector<float>& values) {
  std::size_t pos = 0;
  while ((pos = text.find_first_not_of(kWhiteSpace, pos)) != std::string_view::npos) {
    const std::size_t end = std::min(text.find_first_of(kWhiteSpace, pos), text.size());
    float value = 0;
    if (!ReadNumberToken(text.substr(pos, end - pos), value)) return false;
    values.push_back(value);
    pos = end;
  }
  return true;
}

// ---- xrdml ----

struct XrdmlState {
  bool inDivergenceSlit = false;
  bool omegaPositions = false;  // the positions block of the omega axis: its range is skipped
  bool countsRead = false;
  bool laterScan = false;
  float start = 0;
  float stop = 0;
};

bool ReadXrdmlNumber(std::string_view content, float& value) {
  return ReadNumberToken(TrimWhiteSpace(content), value);
}

// One element: `tag` is the text between "<" and ">", `content` what follows up to the next
// "<". False when a number there does not read.
bool VisitXrdmlElement(std::string_view tag, std::string_view content, XrdmlState& state,
                       Series& series) {
  if (tag.starts_with('/')) {
    if (tag.substr(1).starts_with("divergenceSlit")) state.inDivergenceSlit = false;
    return true;
  }
  if (tag.ends_with('/')) content = {};
  const std::string_view name = tag.substr(0, tag.find_first_of(" \t\r\n/"));
  const bool rangeWanted = !state.omegaPositions && !state.countsRead;
  if (name == "divergenceSlit") {
    state.inDivergenceSlit = true;
  } else if (name == "irradiatedLength" && state.inDivergenceSlit) {
    return ReadXrdmlNumber(content, series.automaticSlit);
  } else if (name == "positions") {
    state.omegaPositions = tag.find("axis=\"O") != std::string_view::npos;
  } else if (name == "startPosition" && rangeWanted) {
    return ReadXrdmlNumber(content, state.start);
  } else if (name == "endPosition" && rangeWanted) {
    return ReadXrdmlNumber(content, state.stop);
  } else if (name == "listPositions" && rangeWanted) {
    std::vector<float> list;
    if (!AppendTokens(content, list)) return false;
    if (!list.empty()) {
      state.start = list.front();
      state.stop = list.back();
    }
  } else if (name == "intensities" || name == "counts") {
    if (state.countsRead) {
      state.laterScan = true;
      return true;
    }
    state.countsRead = true;
    return AppendTokens(content, series.values);
  }
  return true;
}

int LineOf(const std::string& text, std::size_t pos) {
  return 1 + static_cast<int>(std::count(text.begin(), text.begin() + pos, '\n'));
}

// ---- cif ----

constexpr std::string_view kRangeMin = "_pd_meas_2theta_range_min";
constexpr std::string_view kRangeInc = "_pd_meas_2theta_range_inc";
constexpr std::string_view kRangeMax = "_pd_meas_2theta_range_max";
constexpr std::string_view kAngleColumn = "_pd_meas_2theta_scan";
// Columns that hold the pattern, in the order of preference.
constexpr std::array<std::string_view, 2> kDataColumns = {"_pd_meas_intensity_total",
                                                          "_pd_meas_counts_total"};
constexpr std::array<std::string_view, 3> kBackgroundColumns = {
    "_pd_proc_intensity_bkg_calc", "_pd_meas_intensity_total", "_pd_meas_counts_total"};

enum class CifMode { kItems, kLoopTags, kLoopValues };

struct CifState {
  CifMode mode = CifMode::kItems;
  bool inTextField = false;
  bool patternRead = false;
  std::string pendingTag;  // a tag that waits for its value
  std::vector<std::string> loopTags;
  int valueColumn = -1;  // columns of the loop being read, -1 when absent
  int angleColumn = -1;
  std::size_t loopValues = 0;
  std::optional<float> rangeMin;
  std::optional<float> rangeMax;
  std::optional<float> rangeInc;
};

// A cif value as a number: the standard uncertainty in parentheses is dropped, and the
// markers "." and "?" of a missing value count 0.
bool ReadCifNumber(std::string_view token, float& value) {
  token = token.substr(0, token.find('('));
  if (token == "." || token == "?") {
    value = 0;
    return true;
  }
  return ReadNumberToken(token, value);
}

// Tokens of a cif line; a "#" in front of a token begins a comment, and a quoted value is one
// token up to its closing quote in front of a blank.
std::vector<std::string_view> CifTokens(std::string_view line) {
  std::vector<std::string_view> tokens;
  std::size_t pos = 0;
  while ((pos = line.find_first_not_of(" \t", pos)) != std::string_view::npos) {
    if (line[pos] == '#') break;
    std::size_t end = pos;
    if (line[pos] == '\'' || line[pos] == '"') {
      do {
        end = line.find(line[pos], end + 1);
      } while (end != std::string_view::npos && end + 1 < line.size() && line[end + 1] != ' ' &&
               line[end + 1] != '\t');
      end = end == std::string_view::npos ? line.size() : end + 1;
    } else {
      end = std::min(line.find_first_of(" \t", pos), line.size());
    }
    tokens.push_back(line.substr(pos, end - pos));
    pos = end;
  }
  return tokens;
}

bool IsCifReserved(std::string_view lowerToken) {
  return lowerToken == "loop_" || lowerToken.starts_with("data_") ||
         lowerToken.starts_with("save_") || lowerToken == "global_" || lowerToken == "stop_";
}

int ColumnOf(const std::vector<std::string>& tags, std::string_view tag) {
  const auto found = std::find(tags.begin(), tags.end(), tag);
  return found == tags.end() ? -1 : static_cast<int>(found - tags.begin());
}

void BeginLoopValues(FileRole role, CifState& state) {
  state.mode = state.loopTags.empty() ? CifMode::kItems : CifMode::kLoopValues;
  state.loopValues = 0;
  state.valueColumn = -1;
  state.angleColumn = ColumnOf(state.loopTags, kAngleColumn);
  if (state.patternRead || state.loopTags.empty()) return;
  const std::span<const std::string_view> wanted =
      role == FileRole::kBackground ? std::span<const std::string_view>(kBackgroundColumns)
                                    : std::span<const std::string_view>(kDataColumns);
  for (std::string_view tag : wanted) {
    state.valueColumn = ColumnOf(state.loopTags, tag);
    if (state.valueColumn >= 0) return;
  }
}

void EndLoop(CifState& state) {
  if (state.mode == CifMode::kLoopValues && state.valueColumn >= 0) state.patternRead = true;
  state.mode = CifMode::kItems;
}

bool TakeLoopValue(std::string_view token, CifState& state, Series& series) {
  const int column = static_cast<int>(state.loopValues++ % state.loopTags.size());
  if (state.valueColumn < 0 || (column != state.valueColumn && column != state.angleColumn)) {
    return true;
  }
  float value = 0;
  if (!ReadCifNumber(token, value)) return false;
  (column == state.valueColumn ? series.values : series.angles).push_back(value);
  return true;
}

bool TakeItemValue(std::string_view token, CifState& state) {
  std::optional<float>* target = state.pendingTag == kRangeMin   ? &state.rangeMin
                                 : state.pendingTag == kRangeMax ? &state.rangeMax
                                 : state.pendingTag == kRangeInc ? &state.rangeInc
                                                                 : nullptr;
  state.pendingTag.clear();
  float value = 0;
  if (!target) return true;
  if (!ReadCifNumber(token, value)) return false;
  *target = value;
  return true;
}

bool TakeCifToken(std::string_view token, FileRole role, CifState& state, Series& series) {
  const std::string lower = LowerText(token);
  if (state.mode == CifMode::kLoopTags) {
    if (lower.starts_with('_')) {
      state.loopTags.push_back(lower);
      return true;
    }
    BeginLoopValues(role, state);
  }
  if (state.mode == CifMode::kLoopValues) {
    if (!lower.starts_with('_') && !IsCifReserved(lower)) {
      return TakeLoopValue(token, state, series);
    }
    EndLoop(state);
  }
  if (lower == "loop_") {
    state.mode = CifMode::kLoopTags;
    state.loopTags.clear();
    state.pendingTag.clear();
  } else if (lower.starts_with('_')) {
    state.pendingTag = lower;
  } else if (!state.pendingTag.empty()) {
    return TakeItemValue(token, state);
  }
  return true;
}

// A line beginning with ";" opens or closes a text field; the whole field is one value.
bool TakeCifLine(std::string_view line, FileRole role, CifState& state, Series& series) {
  if (line.starts_with(';')) {
    state.inTextField = !state.inTextField;
    return !state.inTextField || TakeCifToken(".", role, state, series);
  }
  if (state.inTextField) return true;
  for (std::string_view token : CifTokens(line)) {
    if (!TakeCifToken(token, role, state, series)) return false;
  }
  return true;
}

// Start and step from the range items, or else from a two-theta column. The printed
// increment is often rounded: when the points fill the range with a step within 1 % of it,
// the step is taken from the range.
bool SetCifScan(const CifState& state, Series& series) {
  if (state.rangeMin && state.rangeInc) {
    const float increment = *state.rangeInc;
    const float fitted = StepBetween(*state.rangeMin, state.rangeMax.value_or(*state.rangeMin),
                                     series.values.size());
    const bool fits =
        state.rangeMax && std::fabs(fitted - increment) <= 0.01f * std::fabs(increment);
    series.start = *state.rangeMin;
    series.step = fits ? fitted : increment;
    series.angles.clear();
    return true;
  }
  if (series.angles.size() != series.values.size()) return false;
  series.start = series.angles.front();
  series.step = StepBetween(series.angles.front(), series.angles.back(), series.angles.size());
  return true;
}

}  // namespace

bool ReadXrdml(LineReader& file, const ReadContext& context, Series& series) {
  const std::string text = file.Rest();
  XrdmlState state;
  std::size_t pos = 0;
  while ((pos = text.find('<', pos)) != std::string::npos) {
    if (text.compare(pos, 4, "<!--") == 0) {
      pos = text.find("-->", pos);
      continue;
    }
    const std::size_t close = text.find('>', pos);
    if (close == std::string::npos) break;
    const std::size_t next = std::min(text.find('<', close), text.size());
    const std::string_view tag(text.data() + pos + 1, close - pos - 1);
    const std::string_view content(text.data() + close + 1, next - close - 1);
    if (!VisitXrdmlElement(tag, content, state, series)) {
      return context.LineError("xrdml", LineOf(text, close));
    }
    pos = close + 1;
  }
  if (series.values.empty()) return context.NoPoints("xrdml");
  if (state.laterScan && context.role == FileRole::kData) {
    context.list.Line(" Only the first scan of the xrdml file is used");
  }
  series.start = state.start;
  series.step = StepBetween(state.start, state.stop, series.values.size());
  return true;
}

bool ReadCif(LineReader& file, const ReadContext& context, Series& series) {
  const bool background = context.role == FileRole::kBackground;
  CifState state;
  std::string line;
  while (file.Next(line)) {
    if (!TakeCifLine(line, context.role, state, series)) {
      return context.LineError("cif", file.LineNumber());
    }
  }
  EndLoop(state);
  if (series.values.empty()) {
    context.reporter.ShowMessage("File Error",
                                 background ? "Error reading bkg cif2" : "Error reading cif1");
    return false;
  }
  if (!SetCifScan(state, series)) {
    context.reporter.ShowMessage("File Error",
                                 background ? "Error reading bkg cif1" : "Error reading cif1");
    return false;
  }
  return true;
}

}  // namespace kaldena::raw
