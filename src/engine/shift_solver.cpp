#include "engine/shift_solver.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

namespace kaldena {

namespace {

// Largest sum of magnitudes over the rows of an n x n row-major block with row stride `stride`.
template <typename T>
double RowSumNorm(const T* a, int n, std::size_t stride) {
  double norm = 0;
  for (int i = 0; i < n; ++i) {
    double sum = 0;
    const T* row = a + i * stride;
    for (int j = 0; j < n; ++j) sum += std::abs(static_cast<double>(row[j]));
    norm = std::max(norm, sum);
  }
  return norm;
}

std::size_t SideOf(std::size_t size) {
  auto side = static_cast<std::size_t>(std::sqrt(static_cast<double>(size)));
  while (side * side > size) --side;
  while ((side + 1) * (side + 1) <= size) ++side;
  return side;
}

}  // namespace

double ShiftSolver(int n, std::span<float> matrix, std::span<float> shifts,
                   std::span<const float> relaxation) {
  if (n <= 0) return 1.0;
  const std::size_t side = SideOf(matrix.size());
  if (n == 1) {
    matrix[0] = 1.0f / matrix[0];
    shifts[0] *= matrix[0];
    return 1.0;
  }

  const auto un = static_cast<std::size_t>(n);
  std::vector<double> a(un * un), b(un), d(un);
  std::vector<int> pivotColumn(un);  // column pivoted in row i; the row then stands for it
  for (std::size_t i = 0; i < un; ++i) {
    for (std::size_t j = 0; j < un; ++j) a[i * un + j] = matrix[i * side + j];
  }
  const double norm = RowSumNorm(a.data(), n, un);

  // Rows scaled to a largest element of 1: the parameters of one refinement differ in size by
  // many orders (scale factors against coordinates), and the pivot choice needs them comparable.
  for (std::size_t i = 0; i < un; ++i) {
    double* row = &a[i * un];
    double largest = 0;
    for (std::size_t j = 0; j < un; ++j) largest = std::max(largest, std::abs(row[j]));
    d[i] = largest;
    b[i] = shifts[i] / largest;
    for (std::size_t j = 0; j < un; ++j) row[j] /= largest;
  }
  std::iota(pivotColumn.begin(), pivotColumn.end(), 0);

  // Gauss-Jordan in place: each step exchanges equation i against the unknown of its pivot
  // column, so that after n steps the table holds the inverse with rows and columns permuted.
  for (std::size_t i = 0; i < un; ++i) {
    double* pivotRow = &a[i * un];
    std::size_t best = i;  // the first of equal magnitudes wins
    for (std::size_t j = i + 1; j < un; ++j) {
      if (std::abs(pivotRow[pivotColumn[j]]) > std::abs(pivotRow[pivotColumn[best]])) best = j;
    }
    std::swap(pivotColumn[i], pivotColumn[best]);
    const auto c = static_cast<std::size_t>(pivotColumn[i]);

    const double pivot = 1.0 / pivotRow[c];
    for (std::size_t j = 0; j < un; ++j) pivotRow[j] *= pivot;
    pivotRow[c] = pivot;
    b[i] *= pivot;

    for (std::size_t m = 0; m < un; ++m) {
      if (m == i) continue;
      double* row = &a[m * un];
      const double f = row[c];
      if (f == 0.0) continue;  // nothing to eliminate; common in the sparse normal matrix
      // With the pivot column zeroed first, the one sweep leaves -f times the inverted pivot there.
      row[c] = 0.0;
      for (std::size_t j = 0; j < un; ++j) row[j] -= f * pivotRow[j];
      b[m] -= f * b[i];
    }
  }

  // Row i now gives the unknown of column pivotColumn[i]; column pivotColumn[k] belongs to
  // equation k. The scaled system's inverse is M^-1 D, hence the division by d of the equation.
  std::vector<double> inverse(un * un);
  for (std::size_t i = 0; i < un; ++i) {
    const auto r = static_cast<std::size_t>(pivotColumn[i]);
    shifts[r] = static_cast<float>(b[i] * relaxation[r]);
    for (std::size_t k = 0; k < un; ++k) {
      inverse[r * un + k] = a[i * un + static_cast<std::size_t>(pivotColumn[k])] / d[k];
    }
  }
  const double inverseNorm = RowSumNorm(inverse.data(), n, un);

  for (std::size_t i = 0; i < side; ++i) {
    float* row = &matrix[i * side];
    for (std::size_t j = 0; j < side; ++j) {
      row[j] = i < un && j < un ? static_cast<float>(inverse[i * un + j]) : 0.0f;
    }
  }
  return norm * inverseNorm;
}

void DampOscillation(std::span<float> shifts, std::span<float> lastShifts) {
  for (std::size_t i = 0; i < shifts.size(); ++i) {
    const float last = lastShifts[i];
    const float size = std::abs(shifts[i]);
    const bool reversed = (shifts[i] > 0 && last < 0) || (shifts[i] < 0 && last > 0);
    if (reversed && size >= 0.8f * std::abs(last) && size <= 1.2f * std::abs(last)) {
      shifts[i] *= 0.5f;
    }
    lastShifts[i] = shifts[i];
  }
}

}  // namespace kaldena
