#include "crystal/absorption.h"

#include "util/spline.h"

namespace kaldena {

namespace {

// Any end slope above kNaturalSplineEnd gives the spline natural ends.
constexpr float kNaturalEndSlope = 1.0e30f;
static_assert(kNaturalEndSlope > kNaturalSplineEnd);

// The last of the three columns the quadratic goes through: the first whose mu R is not below
// the sample's, but never before the third column nor past the last.
int UpperColumn(float muR, Reporter& reporter) {
  int column = 2;
  while (column < kAbsorptionMuRCount && muR > kAbsorptionMuR[column]) ++column;
  if (column == kAbsorptionMuRCount) {
    reporter.ShowMessage("Warning", "mu*R above tabulated values");
    column = kAbsorptionMuRCount - 1;
  }
  return column;
}

// The quadratic through columns c-2, c-1, c of a row, at mu R.
float QuadraticInMuR(const std::array<float, kAbsorptionMuRCount>& row, int c, float muR) {
  const float a = kAbsorptionMuR[c - 2];
  const float b = kAbsorptionMuR[c - 1];
  const float dx1 = b - a;
  const float dx2 = kAbsorptionMuR[c] - a;
  const float dy1 = row[c - 1] - row[c - 2];
  const float dy2 = row[c] - row[c - 2];
  const float q = (dy2 * dx1 - dy1 * dx2) / ((kAbsorptionMuR[c] - b) * dx2 * dx1);
  return row[c - 2] + (muR - a) * dy1 / dx1 + (muR - a) * (muR - b) * q;
}

std::vector<float> Grid(int count, float step) {
  std::vector<float> grid(count);
  for (int i = 0; i < count; ++i) grid[i] = step * static_cast<float>(i);
  return grid;
}

}  // namespace

std::vector<float> CylinderAbsorptionTable(float muR, Reporter& reporter) {
  const int column = UpperColumn(muR, reporter);
  std::vector<float> factor(kAbsorptionThetaCount);
  for (int t = 0; t < kAbsorptionThetaCount; ++t) {
    factor[t] = QuadraticInMuR(kCylinderAbsorption[t], column, muR);
  }
  const std::vector<float> theta = Grid(kAbsorptionThetaCount, kAbsorptionThetaStep);
  const std::vector<float> second = SplineSetup(theta, factor, kNaturalEndSlope, kNaturalEndSlope);
  std::vector<float> values =
      SplineValue(theta, factor, second, Grid(kAbsorptionPointCount, kAbsorptionPointStep));
  for (float& value : values) value = 1.0f / value;
  return values;
}

}  // namespace kaldena
