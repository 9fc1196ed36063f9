// kalden fourier and kalden add-peaks.
#include <string>
#include <vector>

#include "main/commands.h"
#include "main/fourier_commands.h"
#include "tools/distances.h"
#include "tools/fourier_add_peaks.h"
#include "tools/fourier_driver.h"
#include "util/file_names.h"
#include "util/report.h"

namespace kaldena {

namespace {

// A whole positive number, or 0.
int RowNumber(const std::string& text) {
  if (text.empty() || text.size() > 6) return 0;
  int value = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return 0;
    value = value * 10 + (c - '0');
  }
  return value;
}

}  // namespace

int FourierCommand(const std::vector<std::string>& args) {
  if (args.size() != 1 || args[0].starts_with("--")) return kBadArguments;
  ConsoleReporter reporter;
  const std::string& project = args[0];
  const std::string fourier = FourierFileOf(project, reporter);
  return StartFourier(project, fourier, reporter) == FourierStatus::kOk ? 0 : 1;
}

int AddPeaksCommandWith(const std::vector<std::string>& args, const DistanceListRunner& distances) {
  std::string project;
  int row = -1;  // no --atom: every peak
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--atom" && i + 1 < args.size() && row < 0) {
      row = RowNumber(args[++i]);
      if (row < 1) return kBadArguments;
    } else if (project.empty() && !args[i].starts_with("--")) {
      project = args[i];
    } else {
      return kBadArguments;
    }
  }
  if (project.empty()) return kBadArguments;
  ConsoleReporter reporter;
  if (row < 0) return AddAllPeaks(project, distances, reporter).status == 0 ? 0 : 1;

  // The selective route without its grid: the peak of the given row becomes an atom of phase 1.
  std::vector<PeakEntry> peaks;
  if (ReadPeakChoices(ForceExtension(project, "prm"), peaks, reporter) != AddPeakStatus::kOk) {
    return 1;
  }
  return AddPeakAsAtom(project, peaks, row, reporter) == AddPeakStatus::kOk ? 0 : 1;
}

int AddPeaksCommand(const std::vector<std::string>& args) {
  // "Add peaks and distances": the distance list of the project with its new atoms.
  const DistanceListRunner distances = [](std::string_view project, std::string_view list,
                                          Reporter& reporter) {
    return RunDistan(project, list, reporter) ? 0 : 1;
  };
  return AddPeaksCommandWith(args, distances);
}

}  // namespace kaldena
