// kalden crystallinity: the crystalline fraction of a finished run, kept in CRYS.
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "main/commands.h"
#include "tools/crystallinity_record.h"

namespace kaldena {

namespace {

bool ReadLimit(const std::string& text, std::optional<float>& limit) {
  char* end = nullptr;
  const float v = std::strtof(text.c_str(), &end);
  if (end == text.c_str() || *end != '\0') return false;
  limit = v;
  return true;
}

}  // namespace

int CrystallinityCommand(const std::vector<std::string>& args) {
  CrystallinityRequest request;
  bool ok = !args.empty();
  for (size_t i = 0; ok && i < args.size(); ++i) {
    if (args[i] == "--min" && i + 1 < args.size()) {
      ok = ReadLimit(args[++i], request.minimum);
    } else if (args[i] == "--max" && i + 1 < args.size()) {
      ok = ReadLimit(args[++i], request.maximum);
    } else if (request.project.empty() && !args[i].starts_with("--")) {
      request.project = args[i];
    } else {
      ok = false;
    }
  }
  if (!ok || request.project.empty()) {
    std::fprintf(stderr, "usage: kalden crystallinity PROJECT [--min 2THETA] [--max 2THETA]\n");
    return 1;
  }
  ConsoleReporter reporter;
  return RunCrystallinity(request, reporter).status == CrystallinityStatus::kOk ? 0 : 1;
}

}  // namespace kaldena
