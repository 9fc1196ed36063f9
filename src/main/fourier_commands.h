// kalden fourier and kalden add-peaks: the Fourier map and peak search of a project, and its
// peaks brought into the project.
#pragma once

#include <string>
#include <vector>

#include "tools/fourier_add_peaks.h"

namespace kaldena {

// kalden fourier PROJECT
int FourierCommand(const std::vector<std::string>& args);

// kalden add-peaks PROJECT [--atom N]
int AddPeaksCommand(const std::vector<std::string>& args);

// The same with the distance list of the added peaks run by `distances` (none when empty).
int AddPeaksCommandWith(const std::vector<std::string>& args, const DistanceListRunner& distances);

}  // namespace kaldena
