// ReadRawData: the reader of the format, then the steps that all formats share: background
// and weights files, the autodivergence conversion and the repair of negative intensities.
#include "engine/raw_data.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "engine/raw_formats.h"
#include "util/column_format.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {

namespace {

using raw::FileRole;
using raw::Series;

using Reader = bool (*)(raw::LineReader&, const raw::ReadContext&, Series&);

struct Family {
  Reader read;
  // Box texts when a file does not open; no text: the format takes no such file.
  std::string_view openData;
  std::string_view openBackground;
  std::string_view openWeights;
  bool autodivergence;  // measured with an automatic slit, the format can be converted
  bool ownScan;         // side files state their own start and step, to be matched
};

// By FRMT: gdf, txt, udf, xrdml, xy, dat, uxd, cif, epf.
constexpr Family kFamilies[] = {
    {raw::ReadGdf, "Error opening *.gdf raw data file", "Error opening *.gdf background file",
     "Error opening *.gdf weights file", true, true},
    {raw::ReadXy, "Error opening *.xy/*txt raw data file",
     "Error opening *.xy/*.txt background file", "Error opening *.xy/*.txt weights file", true,
     true},
    {raw::ReadUdf, "Error opening *.udf raw data file", "Error opening *.udf background file", "",
     true, true},
    {raw::ReadXrdml, "Error opening *.xrdml raw data file", "Error opening *.xrdml background file",
     "", true, true},
    {raw::ReadXy, "Error opening *.xy/*txt raw data file",
     "Error opening *.xy/*.txt background file", "Error opening *.xy/*.txt weights file", true,
     true},
    {raw::ReadDat, "Error opening *.dat raw data file", "Error opening *.dat background file",
     "Error opening *.dat weights file", false, false},
    {raw::ReadUxd, "Error opening *.uxd raw data file", "Error opening *.uxd background file",
     "Error opening *.uxd weights file", true, true},
    {raw::ReadCif, "Error opening *.cif raw data file", "Error opening *.cif background file", "",
     false, true},
    {raw::ReadEpf, "Error opening *.epf raw data file", "Error opening *.epf background file", "",
     false, true},
};

// Constants of the slit conversion, theta in degrees.
constexpr float kSlitSlope = 0.0153201f;
constexpr float kSlitOffset = 0.1947787f;
constexpr float kSlitBase = 0.19355f;

bool ReadFile(const Family& family, const std::string& path, std::string_view openText,
              const raw::ReadContext& context, Series& series) {
  raw::LineReader file{std::string(Trimmed(path))};
  if (!file.IsOpen()) {
    context.reporter.ShowMessage("Error", std::string(openText) + ": " + path);
    return false;
  }
  const bool read = family.read(file, context, series);
  if (!file.Overlong()) return read;
  return context.Fail(" Error reading " + std::string(Trimmed(path)) + ", line " +
                      std::to_string(file.LineNumber()) + ": no line end within " +
                      std::to_string(raw::LineReader::kMaxTextLength) + " characters");
}

void Shorten(RawPattern& pattern, int points) {
  const auto size = static_cast<std::size_t>(points);
  pattern.points = points;
  pattern.intensities.resize(size);
  pattern.variances.resize(size);
  if (!pattern.background.empty()) pattern.background.resize(size);
  if (!pattern.angles.empty()) pattern.angles.resize(size);
}

RawPattern MakePattern(const Series& data, ListFile& list) {
  RawPattern pattern;
  pattern.start = data.start;
  pattern.step = data.step;
  pattern.intensities = data.values;
  pattern.angles = data.angles;
  if (data.deviations.size() == data.values.size()) {
    for (float deviation : data.deviations) pattern.variances.push_back(deviation * deviation);
  } else {
    pattern.variances = data.values;
  }
  int points = static_cast<int>(data.values.size());
  if (points > kMaxPoints) {
    list.Line(" Raw data file has more than " + std::to_string(kMaxPoints) + " points: the first " +
              std::to_string(kMaxPoints) + " are used");
    points = kMaxPoints;
  }
  Shorten(pattern, points);
  return pattern;
}

// Two scans differ when the start or the last point moves by more than a hundredth of a step.
bool SameScan(const Series& a, const Series& b, int points) {
  const float tolerance = 0.01f * std::fabs(a.step);
  return std::fabs(a.start - b.start) <= tolerance &&
         std::fabs(a.step - b.step) * static_cast<float>(std::max(points - 1, 1)) <= tolerance;
}

// A background or weights file: its values go to the background or the variances, and a
// shorter file shortens the pattern. False when it fails.
bool MergeSideFile(const Family& family, const RawDataRequest& request, FileRole role,
                   const Series& data, RawPattern& pattern, const raw::ReadContext& context) {
  const bool weights = role == FileRole::kWeights;
  const std::string& path = weights ? request.weightsFile : request.backgroundFile;
  if (raw::IsBlankLine(path)) return true;
  const std::string_view openText = weights ? family.openWeights : family.openBackground;
  if (openText.empty()) {
    context.list.Line(" Weights file not used with this raw data format");
    return true;
  }
  Series side;
  if (!ReadFile(family, path, openText, context, side)) return false;
  if (family.ownScan && !SameScan(data, side, pattern.points)) {
    return context.Fail(weights ? " Raw data and weights data intervals do not match"
                                : " Raw data and background data intervals do not match");
  }
  const int sidePoints = static_cast<int>(std::min<std::size_t>(side.values.size(), kMaxPoints));
  if (sidePoints < pattern.points) {
    context.list.Line(std::string(weights ? " Weights" : " Background") + " file has " +
                      std::to_string(sidePoints) + " points: the pattern is cut to them");
    Shorten(pattern, sidePoints);
  }
  side.values.resize(static_cast<std::size_t>(pattern.points));
  (weights ? pattern.variances : pattern.background) = std::move(side.values);
  return true;
}

bool ConvertsAutodivergence(const Family& family, float setting, float fileValue) {
  return family.autodivergence && (setting > 0 || (setting == 0 && fileValue > 0));
}

// Intensities of an automatic slit to those of a fixed one. The variance takes c squared on
// the converted intensity, so c cubed on the raw value: that is deliberate. Variances of a
// weights file belong to the raw counts and take c squared.
void ConvertAutodivergence(RawPattern& pattern, bool variancesFromFile) {
  for (int i = 0; i < pattern.points; ++i) {
    const float theta = (pattern.start + pattern.step * static_cast<float>(i)) / 2;
    const float c = 1 / (std::sin(kSlitSlope * theta + kSlitOffset) - kSlitBase);
    float& intensity = pattern.intensities[i];
    float& variance = pattern.variances[i];
    intensity *= c;
    variance = c * c * (variancesFromFile ? variance : intensity);
    if (!pattern.background.empty()) pattern.background[i] *= c;
  }
}

// Raises every intensity by the magnitude of the lowest one when that is below 0.
void RepairNegativeIntensities(RawPattern& pattern, ListFile& list) {
  float lowest = 1.0f;
  int where = 0;
  for (int i = 0; i < pattern.points; ++i) {
    if (pattern.intensities[i] < lowest) {
      lowest = pattern.intensities[i];
      where = i + 1;
    }
  }
  if (lowest >= 0) return;
  for (float& intensity : pattern.intensities) intensity -= lowest;
  list.Text(Format("(a,i8,f10.0,a)", " Intensity below or equal to zero at", where, -lowest,
                   " added to all intensities."));
}

RawPattern ReadPattern(const RawDataRequest& request, int& weighting, ListFile& list,
                       Reporter& reporter) {
  if (request.format < 1 || request.format > static_cast<int>(std::size(kFamilies))) {
    reporter.ShowMessage("Error", "Invalid file format selection");
    return {};
  }
  const Family& family = kFamilies[request.format - 1];
  Series data;
  if (!ReadFile(family, request.dataFile, family.openData, {FileRole::kData, list, reporter},
                data) ||
      !raw::CheckScan(data, {FileRole::kData, list, reporter}, request.dataFile)) {
    return {};
  }
  RawPattern pattern = MakePattern(data, list);
  if (!MergeSideFile(family, request, FileRole::kBackground, data, pattern,
                     {FileRole::kBackground, list, reporter})) {
    return {};
  }
  const bool weightsFile = !raw::IsBlankLine(request.weightsFile) && !family.openWeights.empty();
  if (!MergeSideFile(family, request, FileRole::kWeights, data, pattern,
                     {FileRole::kWeights, list, reporter})) {
    return {};
  }
  if (ConvertsAutodivergence(family, request.autodivergence, data.automaticSlit)) {
    ConvertAutodivergence(pattern, weightsFile);
  }
  RepairNegativeIntensities(pattern, list);
  if (weightsFile || !data.deviations.empty()) weighting = kWeightFromFile;
  pattern.stop = pattern.start + pattern.step * static_cast<float>(pattern.points - 1);
  if (request.debug) {
    list.Text(Format("(a,2f10.5)", "start,step ", pattern.start, pattern.step));
  }
  return pattern;
}

}  // namespace

RawPattern ReadRawData(const RawDataRequest& request, int& weighting, ListFile& list,
                       Reporter& reporter) {
  const int weightingIn = weighting;
  RawPattern pattern = ReadPattern(request, weighting, list, reporter);
  if (weightingIn == kWeightByCalculated) weighting = kWeightByCalculated;
  return pattern;
}

}  // namespace kaldena
