// Small terms of the calculated pattern: the background basis and the stacking-fault shift.
#pragma once

#include <array>

namespace kaldena {

inline constexpr int kBackgroundBasisSize = 25;

// Background kinds of JOBT (4): below 0 Chebyshev polynomials of the first kind over (lo, hi),
// 0 a power series.
struct BackgroundModel {
  int kind = -1;
  double lo = 0;
  double hi = 1;
};

// The 25 basis values at two-theta x: T1 .. T25 of u = -1 + 2 (x - lo) / (hi - lo) for
// Chebyshev; 1/x, 1, x, x^2 .. x^7 and zeros for the power series.
std::array<float, kBackgroundBasisSize> BackgroundBasis(const BackgroundModel& model, float x);

// The shift of a reflection's position per unit stacking-fault value of a close-packed cubic
// lattice, by the class of its sorted absolute indices: 90 sqrt(3) / pi^2 tan(p / 2) g, with g
// 1/4 for 111, 220 and 400, -1/2 for 200, -1/11 for 311, -1/8 for 222, else 0.
float StackingFaultShift(float p, int h, int k, int l);

}  // namespace kaldena
