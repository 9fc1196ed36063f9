// kalden rawdata: a pattern read as the engine reads it, so that a user can check a file.
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "engine/raw_data.h"
#include "main/commands.h"
#include "util/column_format.h"
#include "util/report.h"

namespace kaldena {

namespace {

struct RawDataOptions {
  RawDataRequest request;
  bool points = false;
};

std::optional<RawDataOptions> ParseOptions(const std::vector<std::string>& args) {
  RawDataOptions o;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    const bool hasValue = i + 1 < args.size();
    if (a == "--points") {
      o.points = true;
    } else if (a == "--format" && hasValue) {
      const std::optional<float> n = NumberArgument(args[++i]);
      if (!n) return std::nullopt;
      o.request.format = static_cast<int>(*n);
    } else if (a == "--background" && hasValue) {
      o.request.backgroundFile = args[++i];
    } else if (a == "--weights" && hasValue) {
      o.request.weightsFile = args[++i];
    } else if (a == "--autodivergence" && hasValue) {
      const std::optional<float> v = NumberArgument(args[++i]);
      if (!v) return std::nullopt;
      o.request.autodivergence = *v;
    } else if (a.starts_with("--") || !o.request.dataFile.empty()) {
      return std::nullopt;
    } else {
      o.request.dataFile = a;
    }
  }
  if (o.request.dataFile.empty() || o.request.format == 0) return std::nullopt;
  return o;
}

void PrintPoints(const RawPattern& pattern) {
  std::printf("%s\n",
              FormatLine("(a12,3a16)", "two-theta", "intensity", "variance", "background").c_str());
  for (int i = 0; i < pattern.points; ++i) {
    const float twoTheta = pattern.angles.size() > static_cast<size_t>(i)
                               ? pattern.angles[i]
                               : pattern.start + pattern.step * static_cast<float>(i);
    const float background =
        pattern.background.size() > static_cast<size_t>(i) ? pattern.background[i] : 0.0f;
    std::printf("%s\n", FormatLine("(f12.5,3f16.4)", twoTheta, pattern.intensities[i],
                                   pattern.variances[i], background)
                            .c_str());
  }
}

}  // namespace

int RawDataCommand(const std::vector<std::string>& args) {
  const std::optional<RawDataOptions> options = ParseOptions(args);
  if (!options) return kBadArguments;
  ConsoleReporter reporter;
  ListFile list;
  int weighting = kWeightByObserved;
  const RawPattern pattern = ReadRawData(options->request, weighting, list, reporter);
  for (const std::string& line : list.Lines()) std::printf("%s\n", line.c_str());
  if (pattern.points == 0) return 1;
  std::printf("%s\n", FormatLine("('start  ',f12.5)", pattern.start).c_str());
  std::printf("%s\n", FormatLine("('step   ',f12.5)", pattern.step).c_str());
  std::printf("%s\n", FormatLine("('stop   ',f12.5)", pattern.stop).c_str());
  std::printf("%s\n", FormatLine("('points ',i12)", pattern.points).c_str());
  if (weighting == kWeightFromFile) std::printf("weights from the file\n");
  if (options->points) PrintPoints(pattern);
  return 0;
}

}  // namespace kaldena
