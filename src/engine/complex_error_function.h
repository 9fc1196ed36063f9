// The Faddeeva function w(z) = exp(-z^2) erfc(-iz), which gives the Voigt profile as its real
// part. Double precision, unlike the rest of the engine.
#pragma once

#include <complex>

namespace kaldena {

// w(x + iy) over the whole plane, to better than 1e-6 absolute in the upper half plane (and
// relative to |w| below the real axis, where w grows as 2 exp(y^2 - x^2)).
std::complex<double> ComplexErrorFunction(double x, double y);

}  // namespace kaldena
