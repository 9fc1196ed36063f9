// Formats of diffractometer software with a header of settings: gdf, udf (Philips and
// PANalytical) and uxd (Bruker and Siemens).
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "engine/raw_formats.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena::raw {

namespace {

constexpr int kGdfHeadLines = 9;
constexpr int kGdfLinesBehindScan = 3;
constexpr int kUdfFields = 8;
constexpr int kUdfWidth = 9;
constexpr std::string_view kUdfAutomaticSlit = "DivergenceSlit,Automatic";
constexpr std::string_view kUdfAngleRange = "DataAngleRange";
constexpr std::string_view kUdfStepSize = "ScanStepSize";
constexpr std::string_view kUdfData = "RawScan";

// gdf stages: 1 the head, 2 the "<endc>" line, 3 start, stop and step, 4 the lines behind
// them, 5 a count that is not a whole number, 6 no counts at all.
std::string GdfError(FileRole role, int stage) {
  switch (role) {
    case FileRole::kData:
      return " Error reading gdf data file " + std::to_string(stage);
    case FileRole::kBackground:
      return " Error reading gdf background file " + std::to_string(stage);
    case FileRole::kWeights:
      // There is no weighting message 1: a file too short for the head has no "<endc>" either.
      return " Error reading gdf weighting file " + std::to_string(std::max(stage, 2));
  }
  return {};
}

bool ReadGdfCounts(LineReader& file, std::vector<float>& values) {
  std::string line;
  while (file.Next(line)) {
    if (IsBlankLine(line)) continue;
    int count = 0;
    if (Read(line, "(i8)", count) != ReadStatus::kOk) return false;
    values.push_back(static_cast<float>(count));
  }
  return true;
}

// The numbers behind a udf marker, up to the "/" that ends each udf record. They are read
// free-form: the step of current files has more digits than a fixed field holds.
bool ReadUdfMarker(std::string_view line, std::string_view marker, std::span<float> values) {
  if (!line.starts_with(marker)) return true;
  const std::string_view rest = line.substr(marker.size());
  return ReadNumberList(rest.substr(0, rest.find('/')), values) >= 0;
}

// Eight counts a line up to the "/" that ends the scan.
bool ReadUdfBody(LineReader& file, std::vector<float>& values) {
  std::string line;
  while (file.Next(line)) {
    const std::size_t slash = line.find('/');
    const std::string_view body = std::string_view(line).substr(0, slash);
    if (!AppendFixedFields(body, kUdfFields, kUdfWidth, values)) return false;
    if (slash != std::string::npos) break;
  }
  return true;
}

struct UxdScan {
  std::optional<float> start;
  std::optional<float> newStep;   // "_newstep", written by conversion programs
  std::optional<float> stepSize;  // "_STEPSIZE", written by the instrument
};

enum class UxdHeaderEnd { kData, kEndOfFile, kBadNumber };

bool StartsWithUpper(std::string_view line, std::string_view prefix) {
  return UpperText(line.substr(0, prefix.size())) == prefix;
}

// Settings "_KEY=value" up to the line "_2THETACOUNTS" that begins the data.
UxdHeaderEnd ReadUxdHeader(LineReader& file, UxdScan& scan) {
  std::string line;
  while (file.Next(line)) {
    if (StartsWithUpper(line, "_2THETACOUNTS")) return UxdHeaderEnd::kData;
    const std::size_t equals = line.find('=');
    if (!line.starts_with('_') || equals == std::string::npos) continue;
    const std::string key = UpperText(Trimmed(std::string_view(line).substr(0, equals)));
    std::optional<float>* target = key == "_START"      ? &scan.start
                                   : key == "_NEWSTEP"  ? &scan.newStep
                                   : key == "_STEPSIZE" ? &scan.stepSize
                                                        : nullptr;
    float value[1];
    const int filled = target ? ReadNumberList(line.substr(equals + 1), value) : 0;
    if (filled < 0) return UxdHeaderEnd::kBadNumber;
    if (filled == 1) *target = value[0];
  }
  return UxdHeaderEnd::kEndOfFile;
}

// Rows of two-theta and count, up to the end of the file or to the head of a further range.
bool ReadUxdRows(LineReader& file, const ReadContext& context, Series& series) {
  std::string line;
  while (file.Next(line)) {
    if (line.starts_with('_')) {
      if (context.role == FileRole::kData) {
        context.list.Line(" Only the first range of the uxd file is used");
      }
      break;
    }
    if (IsBlankLine(line) || line.starts_with(';')) continue;
    float row[2];
    if (ReadNumberList(line, row) != 2) return false;
    series.angles.push_back(row[0]);
    series.angleLines.push_back(file.LineNumber());
    series.values.push_back(row[1]);
  }
  return !series.values.empty();
}

std::string_view UxdHeaderError(FileRole role) {
  switch (role) {
    case FileRole::kData:
      return " Error reading uxd file";
    case FileRole::kBackground:
      return " Error reading uxd background file 1";
    case FileRole::kWeights:
      return "Error reading uxd weights file 1";
  }
  return {};
}

std::string_view UxdDataError(FileRole role) {
  switch (role) {
    case FileRole::kData:
      return " Error reading uxd file";
    case FileRole::kBackground:
      return " Error reading uxd background file";
    case FileRole::kWeights:
      return " Error reading uxd weights file";
  }
  return {};
}

}  // namespace

bool ReadGdf(LineReader& file, const ReadContext& context, Series& series) {
  const auto fail = [&](int stage) { return context.Fail(GdfError(context.role, stage)); };
  std::string line;
  for (int i = 0; i < kGdfHeadLines; ++i) {
    if (!file.Next(line)) return fail(1);
  }
  do {
    if (!file.Next(line)) return fail(2);
  } while (!line.starts_with("<endc>"));
  float scan[3];  // start, stop, step
  for (float& value : scan) {
    if (!file.Next(line) || Read(line, "(f10.0)", value) != ReadStatus::kOk ||
        !std::isfinite(value)) {
      return fail(3);
    }
  }
  for (int i = 0; i < kGdfLinesBehindScan; ++i) {
    if (!file.Next(line)) return fail(4);
  }
  if (!ReadGdfCounts(file, series.values)) return fail(5);
  if (series.values.empty()) return fail(6);
  series.start = scan[0];
  series.step = scan[2];
  return true;
}

bool ReadUdf(LineReader& file, const ReadContext& context, Series& series) {
  const std::string_view error = context.role == FileRole::kData
                                     ? " Error reading udf file"
                                     : " Error reading udf background udf file";
  float range[2] = {0, 0};
  float step = 0;
  bool data = false;
  std::string line;
  while (!data && file.Next(line)) {
    data = line.starts_with(kUdfData);
    if (!ReadUdfMarker(line, kUdfAutomaticSlit, {&series.automaticSlit, 1}) ||
        !ReadUdfMarker(line, kUdfAngleRange, range) ||
        !ReadUdfMarker(line, kUdfStepSize, {&step, 1})) {
      return context.Fail(error);
    }
  }
  if (!data || !ReadUdfBody(file, series.values) || series.values.empty()) {
    return context.Fail(error);
  }
  series.start = range[0];
  series.step = step > 0 ? step : StepBetween(range[0], range[1], series.values.size());
  return true;
}

bool ReadUxd(LineReader& file, const ReadContext& context, Series& series) {
  UxdScan scan;
  const UxdHeaderEnd end = ReadUxdHeader(file, scan);
  if (end == UxdHeaderEnd::kBadNumber) return context.Fail(UxdHeaderError(context.role));
  if (end == UxdHeaderEnd::kEndOfFile || !ReadUxdRows(file, context, series)) {
    return context.Fail(UxdDataError(context.role));
  }
  const float fromRows =
      StepBetween(series.angles.front(), series.angles.back(), series.angles.size());
  series.start = scan.start.value_or(series.angles.front());
  series.step = scan.newStep.value_or(scan.stepSize.value_or(fromRows));
  return true;
}

}  // namespace kaldena::raw
