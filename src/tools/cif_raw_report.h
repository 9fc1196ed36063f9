// The raw data report (.rcf): the observed and calculated pattern of a refined project as a
// small CIF of the diffractogram, read from the engine's summary file.
#pragma once

#include <string>
#include <string_view>

#include "util/report.h"

namespace kaldena {

enum class RawReportStatus {
  kOk = 0,
  kFailed = 1,  // the project, its JOBT, the summary or the report would not do; told in the
                // log. A summary line that does not read ends the loop: the rows before it stay
};

// The summary file the engine wrote for a project: its PWSM record (beside the project
// unless it names a directory), else "%" + base + ".sum", else base + ".sum", whichever
// exists first; the PWSM name or the first default when none does.
std::string SummaryFileOf(std::string_view project, Reporter& reporter);

// Writes the report of `project` to `reportFile`.
RawReportStatus WriteRawReport(std::string_view project, std::string_view reportFile,
                               Reporter& reporter);

// The report beside the project, with the extension ".rcf".
std::string RawReportFileName(std::string_view project);

}  // namespace kaldena
