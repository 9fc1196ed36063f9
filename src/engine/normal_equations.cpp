#include "engine/normal_equations.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace kaldena {

namespace {

double RowSumNorm(const std::vector<double>& a, int n) {
  double norm = 0;
  for (int i = 0; i < n; ++i) {
    double sum = 0;
    for (int j = 0; j < n; ++j) sum += std::abs(a[static_cast<size_t>(i) * n + j]);
    norm = std::max(norm, sum);
  }
  return norm;
}

// Inverts the n x n matrix `a` in place by Gauss-Jordan elimination with partial pivoting.
void Invert(std::vector<double>& a, int n) {
  std::vector<int> swaps(n);
  for (int k = 0; k < n; ++k) {
    int pivot = k;
    for (int i = k + 1; i < n; ++i) {
      if (std::abs(a[static_cast<size_t>(i) * n + k]) > std::abs(a[static_cast<size_t>(pivot) * n + k])) {
        pivot = i;
      }
    }
    swaps[k] = pivot;
    if (pivot != k) {
      for (int j = 0; j < n; ++j) std::swap(a[static_cast<size_t>(k) * n + j], a[static_cast<size_t>(pivot) * n + j]);
    }
    double* row = &a[static_cast<size_t>(k) * n];
    const double inverse = 1.0 / row[k];
    row[k] = 1.0;
    for (int j = 0; j < n; ++j) row[j] *= inverse;
    for (int i = 0; i < n; ++i) {
      if (i == k) continue;
      double* other = &a[static_cast<size_t>(i) * n];
      const double f = other[k];
      other[k] = 0.0;
      for (int j = 0; j < n; ++j) other[j] -= f * row[j];
    }
  }
  // Row exchanges of the elimination become column exchanges of the inverse, undone in reverse.
  for (int k = n - 1; k >= 0; --k) {
    if (swaps[k] == k) continue;
    for (int i = 0; i < n; ++i) std::swap(a[static_cast<size_t>(i) * n + k], a[static_cast<size_t>(i) * n + swaps[k]]);
  }
}

}  // namespace

double ShiftSolver(int n, std::span<float> matrix, int stride, std::span<float> shifts,
                   std::span<const float> relaxation) {
  auto at = [&](int i, int j) -> float& { return matrix[static_cast<size_t>(i) * stride + j]; };
  if (n == 1) {
    at(0, 0) = 1.0f / at(0, 0);
    shifts[0] *= at(0, 0) * relaxation[0];
    return 1.0;
  }
  // Rows scaled by their largest element, so that parameters of very different size meet.
  std::vector<double> a(static_cast<size_t>(n) * n), d(n), b(n);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) a[static_cast<size_t>(i) * n + j] = at(i, j);
  }
  const double norm = RowSumNorm(a, n);
  for (int i = 0; i < n; ++i) {
    double largest = 0;
    for (int j = 0; j < n; ++j) largest = std::max(largest, std::abs(a[static_cast<size_t>(i) * n + j]));
    d[i] = largest > 0 ? largest : 1.0;
    b[i] = shifts[i] / d[i];
    for (int j = 0; j < n; ++j) a[static_cast<size_t>(i) * n + j] /= d[i];
  }
  Invert(a, n);
  // The inverse of the scaled matrix gives x directly; the inverse of M has its columns
  // divided by the row factors.
  for (int i = 0; i < n; ++i) {
    double x = 0;
    for (int j = 0; j < n; ++j) x += a[static_cast<size_t>(i) * n + j] * b[j];
    shifts[i] = static_cast<float>(x) * relaxation[i];
  }
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) a[static_cast<size_t>(i) * n + j] /= d[j];
  }
  const double inverseNorm = RowSumNorm(a, n);
  for (int i = 0; i < stride; ++i) {
    for (int j = 0; j < stride; ++j) {
      at(i, j) = i < n && j < n ? static_cast<float>(a[static_cast<size_t>(i) * n + j]) : 0.0f;
    }
  }
  return norm * inverseNorm;
}

void DampOscillation(int n, std::span<float> shifts, std::span<float> lastShifts) {
  for (int i = 0; i < n; ++i) {
    const float last = lastShifts[i];
    const bool flipped = (shifts[i] < 0) != (last < 0);
    const float size = std::abs(shifts[i]);
    if (flipped && size >= 0.8f * std::abs(last) && size <= 1.2f * std::abs(last)) shifts[i] *= 0.5f;
    lastShifts[i] = shifts[i];
  }
}

}  // namespace kaldena
