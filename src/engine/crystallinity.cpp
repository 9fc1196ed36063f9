#include "engine/crystallinity.h"

#include <cmath>
#include <fstream>

#include "util/column_format.h"
#include "util/limits.h"

namespace kaldena {

namespace {

// 114 stands for two degrees-to-radians factors in the rounded form the figure is known by.
float ScatteringVector(float twoTheta, float wavelength) {
  return 2 * std::sin(twoTheta / 114.0f) / wavelength;
}

bool Excluded(const CrystallinityLimits& limits, float t) {
  for (const auto& region : limits.excludedRegions) {
    if (t > region[0] && t < region[1]) return true;
  }
  return false;
}

}  // namespace

Crystallinity CalculateCrystallinity(const std::string& summaryFile,
                                     const CrystallinityLimits& limits) {
  Crystallinity result;
  std::ifstream in(summaryFile);
  if (!in) {
    result.status = CrystallinityStatus::kNoSummary;
    return result;
  }
  std::string line;
  float t = 0, observed = 0, calculated = 0, background = 0;
  if (!std::getline(in, line) ||
      Read(line, "(f7.0,3f12.0)", t, observed, calculated, background) != ReadStatus::kOk) {
    result.status = CrystallinityStatus::kNoFirstLine;
    return result;
  }
  float previous = ScatteringVector(t, limits.wavelength);
  double s1 = 0, s2 = 0, u1 = 0, u2 = 0;
  for (int n = 0; n < kMaxPoints && std::getline(in, line); ++n) {
    if (Read(line, "(f7.0,3f12.0)", t, observed, calculated, background) != ReadStatus::kOk) break;
    const float s = ScatteringVector(t, limits.wavelength);
    const float ds = s - previous;
    previous = s;
    if (t < limits.minimum) continue;
    if (t > limits.maximum) break;
    if (Excluded(limits, t)) continue;
    s1 += observed * ds * s * s;
    s2 += background * ds * s * s;
    u1 += observed;
    u2 += background;
  }
  result.sWeighted = s1 > 0 ? static_cast<float>(100 * (s1 - s2) / s1) : 0.0f;
  result.unweighted = u1 > 0 ? static_cast<float>(100 * (u1 - u2) / u1) : 0.0f;
  return result;
}

}  // namespace kaldena
