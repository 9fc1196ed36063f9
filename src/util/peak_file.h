// The peak file of a Fourier search, copied to the end of a project file.
#pragma once

#include <string_view>

#include "util/report.h"

namespace kaldena {

// Appends every line of the peak file to the project file. Returns the number of lines
// copied, or -1 after logging "Error opening " and the name of the file that did not open.
int ReadPeakFile(std::string_view peakFile, std::string_view projectFile, Reporter& reporter);

}  // namespace kaldena
