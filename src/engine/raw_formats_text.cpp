// The plain-number formats: the standard data file (dat, with the titled ILL and PSI layout),
// two-theta and intensity columns (xy, txt) and columns with standard deviations (epf).
#include <cmath>
#include <string>

#include "engine/raw_formats.h"
#include "util/text.h"

namespace kaldena::raw {

namespace {

constexpr int kDatFields = 10;
constexpr int kDatWidth = 8;
// A titled dat file states its scan within its first lines.
constexpr int kTitledHeaderLines = 10;
// More steps than this in a scan line is not a scan line but some other row of numbers.
constexpr double kMaxScanSteps = 1.0e6;

// Values of ten-a-line body lines until the end of the file; false on a line that is not one.
bool ReadDatBody(LineReader& file, std::vector<float>& values) {
  std::string line;
  while (file.Next(line)) {
    if (!IsBlankLine(line) && !AppendFixedFields(line, kDatFields, kDatWidth, values)) {
      return false;
    }
  }
  return true;
}

// Up to `count` values of whole body lines; stops early at the end of the file or at a line
// of text. False on a number line that does not read.
bool ReadDatBlock(LineReader& file, std::size_t count, std::vector<float>& values) {
  std::string line;
  while (values.size() < count && file.Next(line)) {
    if (IsBlankLine(line)) continue;
    if (!IsNumberText(line)) break;
    if (!AppendFixedFields(line, kDatFields, kDatWidth, values)) return false;
  }
  if (values.size() > count) values.resize(count);
  return true;
}

// The scan line of a titled file: start, step and stop, with a whole number of steps between
// start and stop. Returns the number of points, 0 when the line is no scan line.
std::size_t ScanLinePoints(std::string_view line, Series& series) {
  float scan[3];
  if (ReadNumberList(line, scan) != 3 || !(scan[1] > 0)) return 0;
  const double steps = (static_cast<double>(scan[2]) - scan[0]) / scan[1];
  if (!(steps >= 1 && steps <= kMaxScanSteps)) return 0;
  const double whole = std::round(steps);
  if (std::fabs(steps - whole) > 0.01) return 0;
  series.start = scan[0];
  series.step = scan[1];
  return static_cast<std::size_t>(whole) + 1;
}

// ILL and PSI files: title lines, a scan line "start step stop ...", the intensities ten a
// line and, when a whole second block follows, their standard deviations.
bool ReadTitledDat(LineReader& file, const ReadContext& context, Series& series) {
  std::string line;
  std::size_t points = 0;
  while (points == 0 && file.LineNumber() < kTitledHeaderLines && file.Next(line)) {
    points = ScanLinePoints(line, series);
  }
  if (points == 0) return context.Fail(" Error reading standard data file 2");
  if (!ReadDatBlock(file, points, series.values)) {
    return context.Fail(" Error reading standard data file 3");
  }
  std::vector<float> deviations;
  const bool wholeBlock = series.values.size() == points &&
                          ReadDatBlock(file, points, deviations) && deviations.size() == points;
  if (wholeBlock) series.deviations = std::move(deviations);
  return !series.values.empty() || context.Fail(" Error reading standard data file 3");
}

// Background and weights files: a first line that is not used, then the body.
bool ReadDatSideFile(LineReader& file, const ReadContext& context, Series& series) {
  const std::string_view error = context.role == FileRole::kWeights
                                     ? "Error reading standard weights file 1"
                                     : " Error reading standard background file 1";
  std::string line;
  if (!file.Next(line) || !ReadDatBody(file, series.values) || series.values.empty()) {
    return context.Fail(error);
  }
  return true;
}

// Rows of two-theta, intensity and, with three columns, a standard deviation. Lines of text
// are headers or comments; number lines with too few values count as headers only before
// the first row.
bool ReadColumns(LineReader& file, const ReadContext& context, std::string_view family, int columns,
                 Series& series) {
  std::string line;
  while (file.Next(line)) {
    if (!IsNumberText(line)) continue;
    float row[3] = {0, 0, 0};
    const int filled =
        ReadNumberList(line, std::span<float>(row, static_cast<std::size_t>(columns)));
    if (filled == 0) continue;
    if (filled < columns) {
      if (series.values.empty()) continue;
      return context.LineError(family, file.LineNumber());
    }
    series.angles.push_back(row[0]);
    series.angleLines.push_back(file.LineNumber());
    series.values.push_back(row[1]);
    if (columns == 3) series.deviations.push_back(row[2]);
  }
  if (series.values.empty()) return context.NoPoints(family);
  series.start = series.angles.front();
  series.step = StepBetween(series.angles.front(), series.angles.back(), series.angles.size());
  return true;
}

}  // namespace

bool ReadDat(LineReader& file, const ReadContext& context, Series& series) {
  if (context.role != FileRole::kData) return ReadDatSideFile(file, context, series);
  std::string line;
  if (!file.Next(line)) return context.Fail(" Error reading standard data file 1");
  const std::string_view head = std::string_view(line).substr(0, 30);
  if (!IsNumberText(head)) return ReadTitledDat(file, context, series);
  float scan[2];
  if (ReadNumberList(head, scan) != 2) return context.Fail(" Error reading standard data file 2");
  series.start = scan[0];
  series.step = scan[1];
  if (!ReadDatBody(file, series.values) || series.values.empty()) {
    return context.Fail(" Error reading standard data file 3");
  }
  return true;
}

bool ReadXy(LineReader& file, const ReadContext& context, Series& series) {
  return ReadColumns(file, context, "xy/txt", 2, series);
}

bool ReadEpf(LineReader& file, const ReadContext& context, Series& series) {
  return ReadColumns(file, context, "epf", 3, series);
}

}  // namespace kaldena::raw
