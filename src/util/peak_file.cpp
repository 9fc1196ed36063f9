#include "util/peak_file.h"

#include <filesystem>
#include <fstream>
#include <string>

#include "util/temporary_file.h"
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
  // Status "old": the project file must exist before anything is appended to it. The project
  // with the peaks behind it replaces the old file whole, so that a kill never cuts it.
  std::ifstream old(project, std::ios::binary);
  if (!std::filesystem::is_regular_file(project) || !old ||
      std::ofstream(project, std::ios::app).fail()) {
    reporter.LogLine("Error opening " + project);
    return -1;
  }
  int count = 0;
  const bool written = WriteFileWhole(project, [&](std::ostream& out) {
    if (old.peek() != std::ifstream::traits_type::eof()) out << old.rdbuf();
    for (std::string line; GetTextLine(in, line); ++count) out << line << '\n';
  });
  if (!written) {
    reporter.LogLine("Error opening " + project);
    return -1;
  }
  return count;
}

}  // namespace kaldena
