// The direct cell and its standard deviations from the refined reciprocal metric.
#pragma once

#include <array>

namespace kaldena {

// A, B, C and the cross terms F (kl), E (hl), D (hk) of
// 4 sin^2(theta) / lambda^2 = A h^2 + B k^2 + C l^2 + D hk + E hl + F kl, in that order.
using MetricValues = std::array<float, 6>;
// Covariances of the six metric values (zero rows for those not refined).
using MetricCovariance = std::array<std::array<double, 6>, 6>;

struct CellWithEsds {
  std::array<float, 6> cell{};  // a, b, c in angstrom; alpha, beta, gamma in degrees
  std::array<float, 6> esds{};
  bool valid = false;  // false for a metric that is not positive definite
};

// Lengths from a_i^2 = (4 g_j g_k - g_p^2) / Dt and angles from the classical reciprocal
// relations; each esd from the gradient of the value through the covariance (a negative
// quadratic form gives 0).
CellWithEsds CellFromMetric(const MetricValues& metric, const MetricCovariance& covariance);

}  // namespace kaldena
