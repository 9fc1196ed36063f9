#include "engine/residuals.h"

#include <algorithm>
#include <cmath>

namespace kaldena {

namespace {

constexpr float kCap = 999.99f;

float Capped(double v) { return static_cast<float>(std::min(v, static_cast<double>(kCap))); }

float Ratio(double num, double den) { return den != 0 ? Capped(num / den) : kCap; }

// How far runs of residuals of one sign inflate the esds: each run adds its length in
// standardised residuals as a whole, with a weight that grows with the residual's size.
float SerialCorrelationFactor(const ResidualInput& in, double sumWeightedDiff2) {
  double tot = 0, run = 0;
  double e = 0, y = 1;  // the last point's residual and variance
  int last = -2;
  for (size_t i = 0; i < in.observed.size(); ++i) {
    if (!in.takesPart[i] || in.weight[i] <= 0) continue;
    const double d = in.observed[i] - in.background[i] - in.calculated[i];
    const bool follows = static_cast<int>(i) == last + 1 && (d < 0) == (e < 0);
    if (follows && in.observed[i] > 0) {
      const double e2 = e * e / y;
      const double g = e2 + d * d / in.observed[i];
      double r = std::sqrt(6.28318 * g);
      r = r / (2 + r);
      run += std::sqrt(e2) * r;
      tot += (1 - r * r) * e2;
    } else {
      tot += run * run;
      run = std::abs(e) / std::sqrt(y);
    }
    e = d;
    y = 1.0 / in.weight[i];
    last = static_cast<int>(i);
  }
  tot += run * run;
  return sumWeightedDiff2 > 0 ? static_cast<float>(std::sqrt(tot / sumWeightedDiff2)) : 0.0f;
}

}  // namespace

Residuals ResidualStatistics(const ResidualInput& in) {
  Residuals r;
  double dw = 0, dwWeighted = 0, sumDiff2 = 0;
  double previous = 0, previousWeighted = 0;
  bool first = true;
  for (size_t i = 0; i < in.observed.size(); ++i) {
    if (!in.takesPart[i]) continue;
    const double d = in.observed[i] - in.background[i] - in.calculated[i];
    const double w = in.weight[i];
    ++r.points;
    r.sumAbsDiff += std::abs(d);
    r.sumWeightedDiff2 += w * d * d;
    r.sumCalculated += in.calculated[i] + in.background[i];
    r.sumObserved += in.observed[i];
    r.sumWeightedObserved2 += w * in.observed[i] * in.observed[i];
    r.sumNet += in.observed[i] - in.background[i];
    sumDiff2 += d * d;
    const double dWeighted = std::sqrt(std::max(w, 0.0)) * d;
    if (!first) {
      dw += (d - previous) * (d - previous);
      dwWeighted += (dWeighted - previousWeighted) * (dWeighted - previousWeighted);
    }
    previous = d;
    previousWeighted = dWeighted;
    first = false;
  }
  r.rp = Ratio(100 * r.sumAbsDiff, r.sumObserved);
  r.rpBackground = Ratio(100 * r.sumAbsDiff, r.sumNet);
  r.rwp = r.sumWeightedObserved2 > 0 ? Capped(100 * std::sqrt(r.sumWeightedDiff2 / r.sumWeightedObserved2)) : kCap;
  const int freedom = r.points - in.parameters;
  r.chi2 = freedom > 0 ? Capped(r.sumWeightedDiff2 / freedom) : kCap;
  r.durbinWatson = sumDiff2 > 0 ? static_cast<float>(dw / sumDiff2) : 0.0f;
  r.durbinWatsonWeighted =
      r.sumWeightedDiff2 > 0 ? static_cast<float>(dwWeighted / r.sumWeightedDiff2) : 0.0f;
  r.esdFactor = SerialCorrelationFactor(in, r.sumWeightedDiff2);
  return r;
}

}  // namespace kaldena
