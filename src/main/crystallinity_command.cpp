// kalden crystallinity: the crystalline fraction of a finished run, kept in CRYS.
#include <optional>
#include <string>
#include <vector>

#include "main/commands.h"
#include "tools/crystallinity_record.h"

namespace kaldena {

int CrystallinityCommand(const std::vector<std::string>& args) {
  CrystallinityRequest request;
  bool ok = !args.empty();
  for (size_t i = 0; ok && i < args.size(); ++i) {
    if (args[i] == "--min" && i + 1 < args.size()) {
      request.minimum = NumberArgument(args[++i]);
      ok = request.minimum.has_value();
    } else if (args[i] == "--max" && i + 1 < args.size()) {
      request.maximum = NumberArgument(args[++i]);
      ok = request.maximum.has_value();
    } else if (request.project.empty() && !args[i].starts_with("--")) {
      request.project = args[i];
    } else {
      ok = false;
    }
  }
  if (!ok || request.project.empty()) return kBadArguments;
  ConsoleReporter reporter;
  return RunCrystallinity(request, reporter).status == CrystallinityStatus::kOk ? 0 : 1;
}

}  // namespace kaldena
