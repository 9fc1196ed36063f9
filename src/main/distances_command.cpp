// kalden distances: the distance and angle list (.dis) of a project or of a .mlt list of
// projects, as the menu writes it.
#include <optional>
#include <string>
#include <vector>

#include "main/commands.h"
#include "main/tool_commands.h"
#include "tools/distances.h"
#include "util/report.h"

namespace kaldena {

namespace {

}  // namespace

int DistancesCommand(const std::vector<std::string>& args) {
  std::string input, listFile;
  DistanceRunOptions options;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    const bool hasValue = i + 1 < args.size();
    auto limit = [&](std::optional<float>& target) {
      if (!hasValue) return false;
      target = NumberArgument(args[++i]);
      return target.has_value() && *target >= 0;
    };
    if (arg == "--out") {
      if (!hasValue) return kBadArguments;
      listFile = args[++i];
    } else if (arg == "--date") {
      if (!hasValue) return kBadArguments;
      options.date = args[++i];
    } else if (arg == "--min") {
      if (!limit(options.dmin)) return kBadArguments;
    } else if (arg == "--max") {
      if (!limit(options.dmax)) return kBadArguments;
    } else if (arg == "--angle-min") {
      if (!limit(options.amin)) return kBadArguments;
    } else if (arg == "--angle-max") {
      if (!limit(options.amax)) return kBadArguments;
    } else if (arg == "--extended") {
      options.option = 3;
    } else if (arg == "--no-angles") {
      options.option = 1;
    } else if (input.empty() && !arg.starts_with("--")) {
      input = arg;
    } else {
      return kBadArguments;
    }
  }
  if (input.empty()) return kBadArguments;
  if (listFile.empty()) listFile = DistanceListName(input);
  ConsoleReporter reporter;
  reporter.LogLine("Starting DISTAN");
  if (!RunDistan(input, listFile, reporter, options)) {
    reporter.LogLine("Error in DISTAN");
    return 1;
  }
  reporter.LogLine(listFile + " written");
  return 0;
}

}  // namespace kaldena
