#include "engine/cell_from_metric.h"

#include <algorithm>
#include <cmath>

namespace kaldena {

namespace {

constexpr double kDegree = 180.0 / 3.14159265358979323846;

using Values = std::array<double, 6>;

// The six cell values of a metric, in double precision; NaN where the metric allows none.
Values CellOf(const Values& g) {
  const double a = g[0], b = g[1], c = g[2], f = g[3], e = g[4], d = g[5];
  const double dt = 4 * a * b * c - f * f * a - e * e * b - d * d * c + f * e * d;
  const double n1 = 4 * b * c - f * f, n2 = 4 * a * c - e * e, n3 = 4 * a * b - d * d;
  Values cell;
  cell[0] = std::sqrt(n1 / dt);
  cell[1] = std::sqrt(n2 / dt);
  cell[2] = std::sqrt(n3 / dt);
  cell[3] = std::acos((d * e - 2 * a * f) / std::sqrt(n2 * n3)) * kDegree;
  cell[4] = std::acos((d * f - 2 * b * e) / std::sqrt(n1 * n3)) * kDegree;
  cell[5] = std::acos((e * f - 2 * c * d) / std::sqrt(n1 * n2)) * kDegree;
  return cell;
}

}  // namespace

CellWithEsds CellFromMetric(const MetricValues& metric, const MetricCovariance& covariance) {
  const Values g = {metric[0], metric[1], metric[2], metric[3], metric[4], metric[5]};
  CellWithEsds result;
  const Values cell = CellOf(g);
  for (double v : cell) {
    if (!std::isfinite(v)) return result;
  }
  // Central differences of each cell value to each metric value, on a scale of the diagonal.
  std::array<Values, 6> gradient{};
  const double scale = std::max({std::abs(g[0]), std::abs(g[1]), std::abs(g[2])});
  for (int m = 0; m < 6; ++m) {
    const double h = 1e-5 * scale;
    Values up = g, down = g;
    up[m] += h;
    down[m] -= h;
    const Values cu = CellOf(up), cd = CellOf(down);
    for (int i = 0; i < 6; ++i) gradient[i][m] = (cu[i] - cd[i]) / (2 * h);
  }
  for (int i = 0; i < 6; ++i) {
    double form = 0;
    for (int m = 0; m < 6; ++m) {
      for (int n = 0; n < 6; ++n) form += gradient[i][m] * covariance[m][n] * gradient[i][n];
    }
    result.cell[i] = static_cast<float>(cell[i]);
    result.esds[i] = form > 0 ? static_cast<float>(std::sqrt(form)) : 0.0f;
  }
  result.valid = true;
  return result;
}

}  // namespace kaldena
