// Cubic spline interpolation through a table of points, in single precision as the engine
// works. The x values must rise strictly.
#pragma once

#include <span>
#include <vector>

namespace kaldena {

// End slopes above this mark ask for a natural end (second derivative 0).
inline constexpr float kNaturalSplineEnd = 9.9e29f;

// The second derivatives of the cubic spline through (x, y) with the given end slopes.
// Empty when x and y differ in length or hold fewer than 2 or more than kMaxPoints points.
std::vector<float> SplineSetup(std::span<const float> x, std::span<const float> y, float firstSlope,
                               float lastSlope);

// The spline's values at each of `at`. The interval search starts from where the previous
// value was found, so a rising or falling series costs little. Points outside the table take
// the cubic of the nearest end interval. Empty when the tables do not match.
std::vector<float> SplineValue(std::span<const float> x, std::span<const float> y,
                               std::span<const float> second, std::span<const float> at);

}  // namespace kaldena
