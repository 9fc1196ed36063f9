#include "util/peak_file.h"

#include <filesystem>
#include <fstream>
#include <string>

#include "util/text.h"

namespace kaldena {

int ReadPeakFile(std::string_view peakFile, std::string_view projectFile, Reporter& reporter) {
  const std::string peaks(peakFile);
  const std::string project(projectFile);
  std::ifstream in(peaks, std::ios::binary);
  if (!in) {
    reporter.LogLine("Error opening " + peaks);
    return -1;
  }
  // Status "old": the project file must exist before anything is appended to it.
  std::ofstream out;
  if (std::filesystem::is_regular_file(project))
    out.open(project, std::ios::app | std::ios::binary);
  if (!out.is_open()) {
    reporter.LogLine("Error opening " + project);
    return -1;
  }
  int count = 0;
  for (std::string line; GetTextLine(in, line); ++count) {
    out << line << '\n';
  }
  return count;
}

}  // namespace kaldena
