#include "util/spline.h"

#include "util/limits.h"

namespace kaldena {

namespace {

float Slope(std::span<const float> x, std::span<const float> y, std::size_t i) {
  return (y[i + 1] - y[i]) / (x[i + 1] - x[i]);
}

// Moves `interval` until x[interval] <= t <= x[interval + 1], or to the end interval
// nearest to t.
std::size_t FindInterval(std::span<const float> x, float t, std::size_t interval) {
  const std::size_t last = x.size() - 2;
  while (interval < last && t > x[interval + 1]) ++interval;
  while (interval > 0 && t < x[interval]) --interval;
  return interval;
}

}  // namespace

// The continuity of the first derivative at the inner points, with the end conditions, is a
// tridiagonal system in the second derivatives: eliminated forwards, solved backwards.
std::vector<float> SplineSetup(std::span<const float> x, std::span<const float> y, float firstSlope,
                               float lastSlope) {
  const std::size_t n = x.size();
  if (y.size() != n || n < 2 || n > static_cast<std::size_t>(kMaxPoints)) return {};
  std::vector<float> second(n);
  std::vector<float> rhs(n);
  if (firstSlope <= kNaturalSplineEnd) {
    second[0] = -0.5f;
    rhs[0] = 3.0f / (x[1] - x[0]) * (Slope(x, y, 0) - firstSlope);
  }
  for (std::size_t i = 1; i + 1 < n; ++i) {
    const float ratio = (x[i] - x[i - 1]) / (x[i + 1] - x[i - 1]);
    const float pivot = ratio * second[i - 1] + 2.0f;
    second[i] = (ratio - 1.0f) / pivot;
    const float jump = Slope(x, y, i) - Slope(x, y, i - 1);
    rhs[i] = (6.0f * jump / (x[i + 1] - x[i - 1]) - ratio * rhs[i - 1]) / pivot;
  }
  float lastFactor = 0.0f;
  float lastRhs = 0.0f;
  if (lastSlope <= kNaturalSplineEnd) {
    lastFactor = 0.5f;
    lastRhs = 3.0f / (x[n - 1] - x[n - 2]) * (lastSlope - Slope(x, y, n - 2));
  }
  second[n - 1] = (lastRhs - lastFactor * rhs[n - 2]) / (lastFactor * second[n - 2] + 1.0f);
  for (std::size_t i = n - 1; i-- > 0;) second[i] = second[i] * second[i + 1] + rhs[i];
  return second;
}

std::vector<float> SplineValue(std::span<const float> x, std::span<const float> y,
                               std::span<const float> second, std::span<const float> at) {
  const std::size_t n = x.size();
  if (y.size() != n || second.size() != n || n < 2) return {};
  std::vector<float> values;
  values.reserve(at.size());
  std::size_t interval = 0;
  for (const float t : at) {
    interval = FindInterval(x, t, interval);
    const float h = x[interval + 1] - x[interval];
    const float a = (x[interval + 1] - t) / h;
    const float b = (t - x[interval]) / h;
    const float curve =
        ((a * a * a - a) * second[interval] + (b * b * b - b) * second[interval + 1]) * h * h /
        6.0f;
    values.push_back(a * y[interval] + b * y[interval + 1] + curve);
  }
  return values;
}

}  // namespace kaldena
