// Absorption correction of a cylindrical sample: the tabulated factor A* over mu R and theta,
// and its interpolation to a fine theta grid for one sample.
#pragma once

#include <array>
#include <vector>

#include "util/report.h"

namespace kaldena {

// mu R: 0.0 to 8.0 by 0.1, then 9 to 20 by 1.
inline constexpr int kAbsorptionMuRCount = 93;
// theta: 0 to 90 degrees by 5.
inline constexpr int kAbsorptionThetaCount = 19;
inline constexpr float kAbsorptionThetaStep = 5.0f;
// The fine grid: theta = 0.1 i degrees, i = 0 to 900.
inline constexpr int kAbsorptionPointCount = 901;
inline constexpr float kAbsorptionPointStep = 0.1f;

extern const std::array<float, kAbsorptionMuRCount> kAbsorptionMuR;
// A*, the factor by which absorption reduces the intensity is 1/A*; one row per theta.
extern const std::array<std::array<float, kAbsorptionMuRCount>, kAbsorptionThetaCount>
    kCylinderAbsorption;

// 1/A* of a sample of the given mu R at theta = 0.1 i degrees, kAbsorptionPointCount values:
// quadratic in mu R through three neighbouring table columns, then a natural cubic spline in
// theta. Above the table it warns and extrapolates from the last three columns.
std::vector<float> CylinderAbsorptionTable(float muR, Reporter& reporter);

}  // namespace kaldena
