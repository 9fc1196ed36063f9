// The printable result table of a refined project (.tab): settings, each phase with its
// parameters and atoms and every standard deviation, the global results and the extracted
// intensities.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "util/report.h"

namespace kaldena {

enum class TableStatus {
  kOk = 0,
  kFailed = 1,  // a list or table file that does not open, told in the log
};

// Writes the table of `input` (a project, or a .mlt list of projects whose pages are
// numbered across them) to `output`, dated with `date` ("2026-11-23").
TableStatus WriteTable(const std::string& input, const std::string& output, std::string_view date,
                       Reporter& reporter);

// The command: "Starting TABLE", the table beside the project with ".tab", "Error in TABLE"
// on failure. Returns the name of the table file, empty on failure.
std::string RunTable(const std::string& project, std::string_view date, Reporter& reporter);

// A value and its esd on one scale as the atom tables print them: both times 10^decimals,
// rounded to whole numbers with halves away from zero.
struct ScaledPair {
  long value = 0;
  long esd = 0;
};
ScaledPair ScaleWithEsd(double value, double esd, int decimals);

}  // namespace kaldena
