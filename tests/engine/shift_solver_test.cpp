#include "engine/shift_solver.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace kaldena {
namespace {

constexpr int kSide = 400;  // the engine's normal-matrix table

// A square row-major table of side `side` with `m` (n x n) in its leading block and `fill`
// everywhere else, as a stale table from an earlier cycle would look.
std::vector<float> Table(const std::vector<std::vector<double>>& m, int side, float fill = 0) {
  std::vector<float> t(static_cast<size_t>(side) * side, fill);
  for (size_t i = 0; i < m.size(); ++i) {
    for (size_t j = 0; j < m.size(); ++j) t[i * side + j] = static_cast<float>(m[i][j]);
  }
  return t;
}

// Largest |(A^-1 A - I)(i, j)| with the inverse taken from the leading block of `table`.
double IdentityError(const std::vector<std::vector<double>>& a, const std::vector<float>& table,
                     int side) {
  const size_t n = a.size();
  double worst = 0;
  for (size_t i = 0; i < n; ++i) {
    for (size_t j = 0; j < n; ++j) {
      double sum = 0;
      for (size_t k = 0; k < n; ++k) sum += table[i * side + k] * a[k][j];
      worst = std::max(worst, std::abs(sum - (i == j ? 1.0 : 0.0)));
    }
  }
  return worst;
}

// Largest |(A x - b)_i| / |b|_max.
double SolveError(const std::vector<std::vector<double>>& a, const std::vector<double>& x,
                  const std::vector<double>& b) {
  double worst = 0, scale = 0;
  for (double v : b) scale = std::max(scale, std::abs(v));
  for (size_t i = 0; i < a.size(); ++i) {
    double sum = 0;
    for (size_t k = 0; k < a.size(); ++k) sum += a[i][k] * x[k];
    worst = std::max(worst, std::abs(sum - b[i]) / scale);
  }
  return worst;
}

const std::vector<std::vector<double>> kSpd = {{10, 2, -1, 0.5, 0},
                                               {2, 8, 1, 0, -0.3},
                                               {-1, 1, 6, 2, 0.1},
                                               {0.5, 0, 2, 7, 1},
                                               {0, -0.3, 0.1, 1, 4}};
const std::vector<double> kSpdRhs = {1, -2, 0.5, 3, -1};

TEST(ShiftSolver, SymmetricPositiveDefiniteSystemWithRelaxation) {
  std::vector<float> table = Table(kSpd, kSide);
  std::array<float, kSide> shifts{};
  for (size_t i = 0; i < kSpdRhs.size(); ++i) shifts[i] = static_cast<float>(kSpdRhs[i]);
  std::array<float, kSide> relaxation{};
  const std::array<float, 5> factors = {1.0f, 0.5f, 0.8f, 1.0f, 0.25f};
  std::copy(factors.begin(), factors.end(), relaxation.begin());

  const double condition = ShiftSolver(5, table, shifts, relaxation);

  // numpy.linalg.solve(A, b), numpy 1.24.2.
  const std::array<double, 5> x = {0.13669925826028323, -0.2994303294480301, 0.00477470860225417,
                                   0.47328556979096426, -0.3908980348713997};
  for (int i = 0; i < 5; ++i) EXPECT_NEAR(shifts[i], factors[i] * x[i], 1e-6) << i;
  for (int i = 5; i < kSide; ++i) EXPECT_EQ(shifts[i], 0.0f) << i;
  EXPECT_LT(IdentityError(kSpd, table, kSide), 1e-6);
  // numpy.linalg.cond(A, numpy.inf): ||A||_inf ||A^-1||_inf.
  EXPECT_NEAR(condition, 4.367408005009151, 1e-6 * 4.367408005009151);
}

TEST(ShiftSolver, ZeroOnTheFirstDiagonalNeedsAPivot) {
  // det = -13; numpy.linalg.solve gives x = (1, 1, 1) for b = (3, 3, 4).
  const std::vector<std::vector<double>> a = {{0, 2, 1}, {2, 1, 0}, {1, 0, 3}};
  std::vector<float> table = Table(a, 3);
  std::array<float, 3> shifts = {3, 3, 4};
  const std::array<float, 3> relaxation = {1, 1, 1};
  ShiftSolver(3, table, shifts, relaxation);
  for (float s : shifts) EXPECT_NEAR(s, 1.0f, 1e-6f);
  EXPECT_LT(IdentityError(a, table, 3), 1e-6);

  // Unsymmetric (det 43) with zeros on the diagonal: the solution must be A^-1 b, not the
  // transpose's, and the inverse must come back in the right rows and columns.
  const std::vector<std::vector<double>> u = {
      {0, 3, 1, 0}, {1, 0, 0, 2}, {0, 0, 2, 5}, {4, 1, 0, 0}};
  const std::vector<double> b = {1, 2, 3, 4};
  table = Table(u, 6, 7.0f);
  std::array<float, 6> rhs = {1, 2, 3, 4, 0, 0};
  ShiftSolver(4, table, rhs, std::array<float, 6>{1, 1, 1, 1, 1, 1});
  EXPECT_LT(SolveError(u, {rhs[0], rhs[1], rhs[2], rhs[3]}, b), 1e-6);
  EXPECT_LT(IdentityError(u, table, 6), 1e-6);

  // Each relaxation factor belongs to its parameter, whatever column served as its pivot.
  // numpy.linalg.solve: x = (40, 12, 7, 23) / 43.
  table = Table(u, 4);
  std::array<float, 4> relaxed = {1, 2, 3, 4};
  ShiftSolver(4, table, relaxed, std::array<float, 4>{0.5f, 1.0f, 0.25f, 2.0f});
  const std::array<double, 4> expected = {0.5 * 40 / 43, 12.0 / 43, 0.25 * 7 / 43, 2.0 * 23 / 43};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(relaxed[i], expected[i], 1e-6) << i;
}

TEST(ShiftSolver, ScalarPathInvertsTheElementAndLeavesTheRest) {
  std::vector<float> table(16, 5.0f);
  table[0] = 4.0f;
  std::array<float, 4> shifts = {2.0f, 9.0f, 9.0f, 9.0f};
  const std::array<float, 4> relaxation = {0.5f, 0.5f, 0.5f, 0.5f};
  EXPECT_EQ(ShiftSolver(1, table, shifts, relaxation), 1.0);
  EXPECT_FLOAT_EQ(table[0], 0.25f);
  // The scalar path does not apply the relaxation factor.
  EXPECT_FLOAT_EQ(shifts[0], 0.5f);
  EXPECT_EQ(shifts[1], 9.0f);
  for (size_t i = 1; i < table.size(); ++i) EXPECT_EQ(table[i], 5.0f) << i;
}

TEST(ShiftSolver, EverythingBeyondTheParametersIsCleared) {
  // Stale values around a 5 x 5 block in the full table: they must not reach the solution,
  // and they must be 0 afterwards since the caller scales the whole table to the covariance.
  std::vector<float> table = Table(kSpd, kSide, 3.5f);
  std::array<float, kSide> shifts{};
  shifts.fill(1.0f);
  for (size_t i = 0; i < kSpdRhs.size(); ++i) shifts[i] = static_cast<float>(kSpdRhs[i]);
  std::array<float, kSide> relaxation{};
  relaxation.fill(1.0f);
  ShiftSolver(5, table, shifts, relaxation);

  std::vector<float> small = Table(kSpd, 5);
  std::array<float, 5> smallShifts{};
  for (size_t i = 0; i < kSpdRhs.size(); ++i) smallShifts[i] = static_cast<float>(kSpdRhs[i]);
  ShiftSolver(5, small, smallShifts, relaxation);

  for (int i = 0; i < kSide; ++i) {
    for (int j = 0; j < kSide; ++j) {
      const float v = table[static_cast<size_t>(i) * kSide + j];
      if (i < 5 && j < 5) {
        EXPECT_EQ(v, small[static_cast<size_t>(i) * 5 + j]);
      } else if (v != 0.0f) {
        ADD_FAILURE() << "element (" << i << ", " << j << ") = " << v;
        return;
      }
    }
  }
  for (int i = 0; i < 5; ++i) EXPECT_EQ(shifts[i], smallShifts[i]);
}

TEST(ShiftSolver, BadlyScaledMatrixKnownCondition) {
  // S B S with S = diag(1e3, 1, 1e-2, 1): parameters of very different size, as a scale factor
  // beside coordinates. The row equilibration keeps the float result near the double one.
  // Reference: numpy 1.24.2 on the float32-rounded matrix, cond(C, inf) and diag(inv(C)).
  const std::vector<std::vector<double>> c = {
      {4e6, 1e3, 5, 2e2}, {1e3, 3, 4e-3, 1e-1}, {5, 4e-3, 2e-4, 3e-3}, {2e2, 1e-1, 3e-3, 1}};
  std::vector<float> table = Table(c, 4);
  std::array<float, 4> shifts = {1, 1, 1, 1};
  const std::array<float, 4> relaxation = {1, 1, 1, 1};
  const double condition = ShiftSolver(4, table, shifts, relaxation);
  EXPECT_NEAR(condition, 21869751639.82819, 1e-6 * 21869751639.82819);
  const std::array<double, 4> diagonal = {2.7899433897100061e-07, 3.6888917894718370e-01,
                                          5.4457454257883182e+03, 1.0516094498887545e+00};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(table[i * 4 + i], diagonal[i], 1e-6 * diagonal[i]) << i;
}

TEST(ShiftSolver, LargeSystemSolvesAndInverts) {
  // A diagonally dominant symmetric matrix with all entries filled, near the engine's capacity.
  constexpr int n = 300;
  std::vector<std::vector<double>> a(n, std::vector<double>(n));
  std::vector<double> b(n);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) a[i][j] = std::cos(0.37 * (i + 1) * (j + 1)) * 0.5;
    a[i][i] = n * (1.0 + 0.01 * i);
    b[i] = std::sin(0.1 * i);
  }
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < i; ++j) a[i][j] = a[j][i];
  }
  std::vector<float> table = Table(a, kSide);
  std::array<float, kSide> shifts{};
  for (int i = 0; i < n; ++i) shifts[i] = static_cast<float>(b[i]);
  std::array<float, kSide> relaxation{};
  relaxation.fill(1.0f);
  ShiftSolver(n, table, shifts, relaxation);
  EXPECT_LT(SolveError(a, std::vector<double>(shifts.begin(), shifts.begin() + n), b), 1e-5);
  EXPECT_LT(IdentityError(a, table, kSide), 1e-5);
}

TEST(DampOscillation, HalvesOnlyReversalsOfSimilarSize) {
  //                                in band   too large  too small  same sign  in band
  std::array<float, 6> shifts = {-1.0f, -1.3f, 0.7f, 1.1f, 0.9f, 2.0f};
  std::array<float, 6> last = {1.0f, 1.0f, -1.0f, 1.0f, -1.0f, 1e-20f};
  DampOscillation(shifts, last);
  const std::array<float, 6> expected = {-0.5f, -1.3f, 0.7f, 1.1f, 0.45f, 2.0f};
  EXPECT_EQ(shifts, expected);
  EXPECT_EQ(last, expected);  // the damped shifts become the last ones

  // The next cycle compares with the halved shift: 0.5 against -0.5 is again a reversal.
  std::array<float, 6> next = {0.5f, 1.3f, -0.7f, -1.1f, -0.45f, -4.0f};
  DampOscillation(next, last);
  const std::array<float, 6> nextExpected = {0.25f, 0.65f, -0.35f, -0.55f, -0.225f, -4.0f};
  EXPECT_EQ(next, nextExpected);
  EXPECT_EQ(last, nextExpected);
}

}  // namespace
}  // namespace kaldena
