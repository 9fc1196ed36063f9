// Agreement between the observed and the calculated pattern after a sweep: R values, chi
// squared, the Durbin-Watson statistics and the factor by which serial correlation of the
// residuals inflates the standard deviations.
#pragma once

#include <span>

namespace kaldena {

// The pattern as the sweep left it, one value per point in each span.
struct ResidualPoints {
  std::span<const float> observed;
  std::span<const float> calculated;  // without the background
  std::span<const float> background;
  std::span<const float> weight;  // 1 / variance
  // Points that take part in the sums: not in an excluded region, and not empty where the
  // background kind makes empty points drop out. Decided by the caller.
  std::span<const bool> takesPart;
  // Points that take part in the serial-correlation factor. The cycle decides these by a rule
  // of its own (span value, not the excluded regions); empty means the same as `takesPart`.
  std::span<const bool> correlationPart;
  int pointCount = 0;  // points counted by the sweep, for the degrees of freedom
  int parameters = 0;
};

// With D = observed - background - calculated, over the points that take part.
struct ResidualSums {
  int points = 0;
  double absDiff = 0;            // sum |D|
  double weightedDiff2 = 0;      // sum w D^2
  double calculated = 0;         // sum (calculated + background)
  double observed = 0;           // sum observed
  double weightedObserved2 = 0;  // sum w observed^2
  double net = 0;                // sum (observed - background)
};

inline constexpr float kResidualCap = 999.99f;

struct ResidualFigures {
  ResidualSums sums;
  // In percent; each capped at kResidualCap, and kResidualCap when its denominator is 0.
  float rp = 0;
  float rwp = 0;
  float rpBackground = 0;  // "Rp (-Background)"
  // sum w D^2 / (pointCount - parameters), capped; kResidualCap without degrees of freedom.
  float chi2 = 0;
  // sum (D_i - D_(i-1))^2 / sum D^2 over consecutive taking-part points; the weighted one with
  // sqrt(w) D in place of D. 0 when the denominator is 0.
  float durbinWatson = 0;
  float durbinWatsonWeighted = 0;
  // What the esds have to be multiplied by for the serial correlation of the residuals; about
  // 1 for uncorrelated residuals, larger with long runs of one sign. 0 when sum w D^2 is 0.
  float esdFactor = 0;
};

ResidualFigures ResidualStatistics(const ResidualPoints& points);

}  // namespace kaldena
