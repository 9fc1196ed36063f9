// Agreement of the calculated with the observed pattern: R values, chi squared, the
// Durbin-Watson statistics and the factor by which serial correlation inflates the esds.
#pragma once

#include <span>

namespace kaldena {

struct ResidualInput {
  std::span<const float> observed, calculated, background, weight;
  std::span<const bool> takesPart;  // points outside excluded regions (and not empty where that counts)
  int parameters = 0;
};

struct Residuals {
  int points = 0;
  double sumAbsDiff = 0, sumWeightedDiff2 = 0, sumCalculated = 0, sumObserved = 0;
  double sumWeightedObserved2 = 0, sumNet = 0;
  float rp = 0, rwp = 0, rpBackground = 0, chi2 = 0;  // each at most 999.99
  float durbinWatson = 0, durbinWatsonWeighted = 0;
  float esdFactor = 0;
};

Residuals ResidualStatistics(const ResidualInput& in);

}  // namespace kaldena
