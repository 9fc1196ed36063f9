// PeakShape, the innermost routine of the pattern calculation: evaluations per second for the
// pseudo-Voigt (1), the Voigt (3) and the axial-divergence pseudo-Voigt (7), over points
// spread across a peak as the point loop meets them.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "engine/profile_shape.h"

namespace {

void Evaluate(benchmark::State& state, int profile, kaldena::PeakInput in) {
  std::vector<std::string> list;
  kaldena::PeakResult out;
  constexpr int kPoints = 256;  // 0.005 degree steps over +-0.64 degrees
  float x[kPoints];
  for (int i = 0; i < kPoints; ++i) x[i] = in.p + (i - kPoints / 2) * 0.005f;
  for (auto _ : state) {
    for (int i = 0; i < kPoints; ++i) {
      in.x = x[i];
      kaldena::PeakShape(profile, in, out, list);
      benchmark::DoNotOptimize(out);
    }
  }
  state.SetItemsProcessed(state.iterations() * kPoints);
}

kaldena::PeakInput Peak() {
  kaldena::PeakInput in;
  in.p = 30.0f;
  in.H = 0.08f;
  in.eta = 0.4f;
  in.tanTheta = 0.2679f;
  return in;
}

void BM_PseudoVoigt(benchmark::State& state) { Evaluate(state, 1, Peak()); }
BENCHMARK(BM_PseudoVoigt);

void BM_Voigt(benchmark::State& state) {
  kaldena::PeakInput in = Peak();
  in.eta = 0.03f;
  Evaluate(state, 3, in);
}
BENCHMARK(BM_Voigt);

// S/L 0.025, H/L 0.012 at 30 and at 8 degrees: 40 and 400 point rules.
void BM_AxialDivergence(benchmark::State& state) {
  kaldena::PeakInput in = Peak();
  in.p = static_cast<float>(state.range(0));
  in.SL = 0.025f;
  in.HL = 0.012f;
  Evaluate(state, 7, in);
}
BENCHMARK(BM_AxialDivergence)->Arg(30)->Arg(8);

}  // namespace
