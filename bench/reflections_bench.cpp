// Reflection generation for one phase up to 150 degrees two-theta: a cubic F phase and a
// triclinic phase of similar volume.
#include <benchmark/benchmark.h>

#include <cmath>

#include "engine/reflection_generation.h"

namespace {

kaldena::ReflectionSetup Setup(const std::array<float, 6>& metric,
                               const std::array<float, 3>& edges) {
  kaldena::ReflectionSetup s;
  s.wavelengths = {1.5406f, 1.5444f};
  s.metric = metric;
  s.cellEdges = edges;
  s.halfwidth = {0.01f, -0.005f, 0.003f};
  s.shape = {0.5f, 0.0f, 0.0f};
  s.start = 5.0f;
  s.stop = 150.0f;
  s.monoPolarisation = 0.9f;
  return s;
}

void Generate(benchmark::State& state, const char* symbol, const kaldena::ReflectionSetup& s) {
  kaldena::SpaceGroupInfo group;
  kaldena::ParseSpaceGroupSymbol(symbol, group);
  kaldena::ExpandOperators(group);
  int count = 0;
  for (auto _ : state) {
    kaldena::ReflectionStore store;
    kaldena::AbsorptionRange absorption;
    std::vector<std::string> list;
    kaldena::GenerateReflections(group, s, store, absorption, list);
    count = store.Count();
  }
  state.counters["reflections"] = count;
}

void BM_ReflectionsCubicF(benchmark::State& state) {
  const float a = 10.0f;
  Generate(state, "F D -3 M", Setup({1 / (a * a), 1 / (a * a), 1 / (a * a), 0, 0, 0}, {a, a, a}));
}
BENCHMARK(BM_ReflectionsCubicF)->Unit(benchmark::kMillisecond);

void BM_ReflectionsTriclinic(benchmark::State& state) {
  // An orthogonal metric keeps the setup short; the loops are those of class 1.
  Generate(state, "P -1", Setup({1 / 49.0f, 1 / 64.0f, 1 / 81.0f, 0, 0, 0}, {7, 8, 9}));
}
BENCHMARK(BM_ReflectionsTriclinic)->Unit(benchmark::kMillisecond);

}  // namespace
