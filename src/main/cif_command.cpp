// kalden cif and kalden cif-raw: the CIF of a refined project and its raw data report.
#include <string>
#include <vector>

#include "main/cif_commands.h"
#include "main/commands.h"
#include "tools/cif_raw_report.h"
#include "tools/cif_writer.h"
#include "util/report.h"

namespace kaldena {

namespace {

// A YYYY-MM-DD date: the CIF's _audit_creation_date must read as one.
bool IsDate(const std::string& text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
  for (size_t i : {0, 1, 2, 3, 5, 6, 8, 9}) {
    if (text[i] < '0' || text[i] > '9') return false;
  }
  return true;
}

}  // namespace

int CifCommand(const std::vector<std::string>& args) {
  std::string project, date;
  bool bad = false;
  for (size_t i = 0; i < args.size() && !bad; ++i) {
    if (args[i] == "--date" && i + 1 < args.size() && IsDate(args[i + 1])) {
      date = args[++i];
    } else if (project.empty() && !args[i].empty() && !args[i].starts_with("--")) {
      project = args[i];
    } else {
      bad = true;
    }
  }
  if (bad || project.empty()) {
    return kBadArguments;
  }
  ConsoleReporter reporter;
  return StartCif(project, reporter, date).empty() ? 1 : 0;
}

int CifRawCommand(const std::vector<std::string>& args) {
  if (args.size() != 1 || args[0].empty() || args[0].starts_with("--")) {
    return kBadArguments;
  }
  ConsoleReporter reporter;
  const std::string report = RawReportFileName(args[0]);
  if (WriteRawReport(args[0], report, reporter) != RawReportStatus::kOk) return 1;
  reporter.LogLine("Raw data report written to " + report);
  return 0;
}

}  // namespace kaldena
