#include "engine/residual_statistics.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace kaldena {

namespace {

// The sums run in double: 20000 points of counts in the thousands lose digits in single
// precision that the R values then show.

float Capped(double value) {
  return value > kResidualCap ? kResidualCap : static_cast<float>(value);
}

float Percent(double numerator, double denominator) {
  return denominator != 0 ? Capped(100.0 * numerator / denominator) : kResidualCap;
}

double Residual(const ResidualPoints& p, std::size_t i) {
  return static_cast<double>(p.observed[i]) - p.background[i] - p.calculated[i];
}

// Runs of residuals of one sign are summed as a whole before squaring, each residual with a
// coherence r that approaches 1 as it grows against its counting error; the rest of its square,
// (1 - r^2), counts as independent. A run is closed by a change of sign or a gap in the points.
double SerialCorrelationFactor(const ResidualPoints& p, double weightedDiff2) {
  const std::span<const bool> part = p.correlationPart.empty() ? p.takesPart : p.correlationPart;
  double total = 0, run = 0;
  double e = 0, y = 1;  // residual and variance of the last point taken
  std::size_t next = std::numeric_limits<std::size_t>::max();  // index that follows it
  for (std::size_t i = 0; i < p.observed.size(); ++i) {
    if (!part[i]) continue;
    const double d = Residual(p, i);
    const bool sameSign = (d >= 0) == (e >= 0);
    if (i == next && sameSign) {
      const double e2 = e * e / y;
      // An empty point has no counting error: its residual is taken as wholly coherent.
      const double own = p.observed[i] > 0 ? d * d / p.observed[i]
                                           : (d != 0 ? std::numeric_limits<double>::infinity() : 0);
      const double g = e2 + own;
      double r = 1.0;
      if (std::isfinite(g)) {
        r = std::sqrt(6.28318 * g);
        r = r / (2 + r);
      }
      run += std::sqrt(e2) * r;
      total += (1 - r * r) * e2;
    } else {
      total += run * run;
      run = std::abs(e) / std::sqrt(y);
    }
    e = d;
    y = 1.0 / p.weight[i];
    next = i + 1;
  }
  total += run * run;
  return weightedDiff2 > 0 ? std::sqrt(total / weightedDiff2) : 0.0;
}

}  // namespace

ResidualFigures ResidualStatistics(const ResidualPoints& p) {
  ResidualFigures f;
  ResidualSums& s = f.sums;
  double diff2 = 0, step2 = 0, weightedStep2 = 0;
  double last = 0, lastWeighted = 0;
  for (std::size_t i = 0; i < p.observed.size(); ++i) {
    if (!p.takesPart[i]) continue;
    const double d = Residual(p, i);
    const double w = p.weight[i];
    const double dw = std::sqrt(std::max(w, 0.0)) * d;
    if (s.points > 0) {
      step2 += (d - last) * (d - last);
      weightedStep2 += (dw - lastWeighted) * (dw - lastWeighted);
    }
    last = d;
    lastWeighted = dw;
    ++s.points;
    s.absDiff += std::abs(d);
    s.weightedDiff2 += w * d * d;
    s.calculated += static_cast<double>(p.calculated[i]) + p.background[i];
    s.observed += p.observed[i];
    s.weightedObserved2 += w * p.observed[i] * p.observed[i];
    s.net += static_cast<double>(p.observed[i]) - p.background[i];
    diff2 += d * d;
  }

  f.rp = Percent(s.absDiff, s.observed);
  f.rpBackground = Percent(s.absDiff, s.net);
  f.rwp = s.weightedObserved2 > 0 ? Capped(100.0 * std::sqrt(s.weightedDiff2 / s.weightedObserved2))
                                  : kResidualCap;
  const int freedom = p.pointCount - p.parameters;
  f.chi2 = freedom > 0 ? Capped(s.weightedDiff2 / freedom) : kResidualCap;
  f.durbinWatson = diff2 > 0 ? static_cast<float>(step2 / diff2) : 0.0f;
  f.durbinWatsonWeighted =
      s.weightedDiff2 > 0 ? static_cast<float>(weightedStep2 / s.weightedDiff2) : 0.0f;
  f.esdFactor = static_cast<float>(SerialCorrelationFactor(p, s.weightedDiff2));
  return f;
}

}  // namespace kaldena
