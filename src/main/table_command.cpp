// kalden table: the printable result table of a project or of a .mlt list of projects.
#include <string>
#include <vector>

#include "main/commands.h"
#include "tools/table.h"
#include "util/date_text.h"
#include "util/report.h"

namespace kaldena {

int TableCommand(const std::vector<std::string>& args) {
  std::string project, date = TodayText();
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--date" && i + 1 < args.size()) {
      date = args[++i];
    } else if (project.empty() && !args[i].starts_with("--")) {
      project = args[i];
    } else {
      project.clear();
      break;
    }
  }
  if (project.empty()) return kBadArguments;
  ConsoleReporter reporter;
  return RunTable(project, date, reporter).empty() ? 1 : 0;
}

}  // namespace kaldena
