// The crystalline fraction of a sample from the summary file of a run: how much of the
// observed scattering lies above the background.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace kaldena {

enum class CrystallinityStatus {
  kOk = 0,
  kNoSummary = 1,    // the summary file does not open
  kNoFirstLine = 2,  // its first line does not read
};

struct CrystallinityLimits {
  float minimum = 0, maximum = 0;  // two-theta
  std::vector<std::array<float, 2>> excludedRegions;
  float wavelength = 1.54051f;  // the first wavelength
};

struct Crystallinity {
  CrystallinityStatus status = CrystallinityStatus::kOk;
  float sWeighted = 0;   // percent, weighted by s^2 ds
  float unweighted = 0;  // percent
};

// Sums over the summary's points inside the limits and outside the excluded regions (whose
// edges count as outside): observed and background, plain and weighted by s^2 ds with
// s = 2 sin(T / 114) / lambda.
Crystallinity CalculateCrystallinity(const std::string& summaryFile,
                                     const CrystallinityLimits& limits);

}  // namespace kaldena
