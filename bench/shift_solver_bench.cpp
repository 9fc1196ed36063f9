// Solution of the normal equations at 100 and 400 parameters, in the engine's 400 x 400 table.
// Each iteration copies the table back first, since the solver overwrites it with the inverse;
// the copy is about 0.1 % of the solve at 400.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <vector>

#include "engine/shift_solver.h"

namespace {

constexpr int kSide = 400;

void BM_ShiftSolver(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  // Symmetric and full, with a dominant diagonal of mixed magnitudes like a real normal matrix.
  std::vector<float> normal(static_cast<size_t>(kSide) * kSide, 0.0f);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j <= i; ++j) {
      const float v = static_cast<float>(std::cos(0.37 * (i + 1) * (j + 1)));
      normal[static_cast<size_t>(i) * kSide + j] = v;
      normal[static_cast<size_t>(j) * kSide + i] = v;
    }
    normal[static_cast<size_t>(i) * kSide + i] = static_cast<float>(n * std::pow(10.0, i % 5));
  }
  std::array<float, kSide> rhs{}, relaxation{};
  for (int i = 0; i < n; ++i) rhs[i] = static_cast<float>(std::sin(0.1 * i));
  relaxation.fill(1.0f);

  std::vector<float> table(normal.size());
  std::array<float, kSide> shifts{};
  double condition = 0;
  for (auto _ : state) {
    table = normal;
    shifts = rhs;
    condition = kaldena::ShiftSolver(n, table, shifts, relaxation);
    benchmark::DoNotOptimize(shifts.data());
  }
  state.counters["condition"] = condition;
}
BENCHMARK(BM_ShiftSolver)->Arg(100)->Arg(400)->Unit(benchmark::kMillisecond);

}  // namespace
