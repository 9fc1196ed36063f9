#include "engine/pattern_terms.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>

namespace kaldena {

namespace {

constexpr float kDegree = 57.29578f;
constexpr float kFaultScale = 15.79441f;  // 90 sqrt(3) / pi^2

float FaultClass(int h, int k, int l) {
  std::array<int, 3> i = {std::abs(h), std::abs(k), std::abs(l)};
  std::sort(i.begin(), i.end(), std::greater<int>());
  if (i == std::array<int, 3>{1, 1, 1}) return 0.25f;
  if (i == std::array<int, 3>{2, 0, 0}) return -0.5f;
  if (i == std::array<int, 3>{2, 2, 0}) return 0.25f;
  if (i == std::array<int, 3>{3, 1, 1}) return -0.09090909f;
  if (i == std::array<int, 3>{2, 2, 2}) return -0.125f;
  if (i == std::array<int, 3>{4, 0, 0}) return 0.25f;
  return 0.0f;
}

}  // namespace

std::array<float, kBackgroundBasisSize> BackgroundBasis(const BackgroundModel& model, float x) {
  std::array<float, kBackgroundBasisSize> basis{};
  if (model.kind < 0) {
    const double u = -1.0 + 2.0 * (x - model.lo) / (model.hi - model.lo);
    double previous = 1.0, current = u;
    basis[0] = 1.0f;
    basis[1] = static_cast<float>(u);
    for (int n = 2; n < kBackgroundBasisSize; ++n) {
      const double next = 2.0 * u * current - previous;
      basis[n] = static_cast<float>(next);
      previous = current;
      current = next;
    }
    return basis;
  }
  basis[0] = 1.0f / x;
  float power = 1.0f;
  for (int n = 1; n < 9; ++n) {
    basis[n] = power;
    power *= x;
  }
  return basis;
}

float StackingFaultShift(float p, int h, int k, int l) {
  return kFaultScale * std::tan(p / 2.0f / kDegree) * FaultClass(h, k, l);
}

}  // namespace kaldena
