// One least-squares cycle of a three-phase X-ray refinement (bench/data/three_phase, made by
// make_three_phase.py: 19,900 points, a P 21/c phase of 20 atoms, corundum and silicon, 941
// reflections, 113 parameters), and its parts: the reflection terms, the point terms, the
// normal matrix and the solution. The project is read once; every part then works on the
// model as it stands at the start.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "engine/cycles.h"
#include "engine/engine_input.h"
#include "engine/point_terms.h"
#include "engine/reflection_terms.h"
#include "engine/run_files.h"
#include "engine/shift_solver.h"
#include "store/record_store.h"
#include "util/report.h"

namespace {

namespace fs = std::filesystem;
using kaldena::EngineState;

// The project taken through the input stage in a scratch copy, its points tied to their
// reflections and the work arrays of the cycles made.
struct ThreePhase {
  ThreePhase() : dir(fs::temp_directory_path() / "kaldena-three-phase-bench"), store(reporter) {
    fs::create_directories(dir);
    const fs::path data = fs::path(KALDENA_BENCH_DATA) / "three_phase";
    for (const char* file : {"three_phase.rec", "three_phase.xy"}) {
      fs::copy_file(data / file, dir / file, fs::copy_options::overwrite_existing);
    }
    const fs::path old = fs::current_path();
    fs::current_path(dir);
    ok = kaldena::SetUpRunFiles((dir / "three_phase.rec").string(), state, store, reporter) ==
             kaldena::RunFilesStatus::kOk &&
         kaldena::ReadEngineInput(state, store, reporter) == kaldena::InputStatus::kOk &&
         kaldena::AssignSpans(state);
    fs::current_path(old);
    state.list.Close();
    if (ok) kaldena::PrepareCycles(state);
  }
  ~ThreePhase() {
    std::error_code ignored;
    fs::remove_all(dir, ignored);
  }

  fs::path dir;
  kaldena::SilentReporter reporter;
  kaldena::RecordStore store;
  EngineState state;
  bool ok = false;
};

ThreePhase& Project() {
  static ThreePhase project;
  return project;
}

bool Ready(benchmark::State& bench) {
  if (Project().ok) return true;
  bench.SkipWithError("the three-phase project did not read; see its list file");
  return false;
}

void ReflectionTermsOfAll(EngineState& state) {
  for (int r = 0; r < state.reflections.Count(); ++r) kaldena::ReflectionTerms(state, r);
}

// The normal matrix mirrored from its upper part, as the solver takes it.
std::vector<float> Mirrored(const EngineState& state) {
  std::vector<float> m = state.work.normal;
  for (int i = 0; i < state.parameters; ++i) {
    for (int j = i + 1; j < state.parameters; ++j) {
      m[static_cast<size_t>(j) * kaldena::kMaxParameters + i] =
          m[static_cast<size_t>(i) * kaldena::kMaxParameters + j];
    }
  }
  return m;
}

void Solve(EngineState& state, std::vector<float>& matrix) {
  std::vector<float> shifts(state.shifts.begin(), state.shifts.begin() + state.parameters);
  benchmark::DoNotOptimize(kaldena::ShiftSolver(
      state.parameters, matrix, shifts,
      std::span<const float>(state.relaxation.data(), state.parameters)));
}

double PeakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;  // kilobytes on Linux
}

// The whole cycle: the sweep (reflection terms, point terms, normal matrix) and the solution.
void ThreePhaseCycle(benchmark::State& bench) {
  if (!Ready(bench)) return;
  EngineState& state = Project().state;
  for (auto _ : bench) {
    if (!kaldena::Sweep(state)) bench.SkipWithError("the sweep failed");
    std::vector<float> matrix = Mirrored(state);
    Solve(state, matrix);
  }
  bench.counters["points"] = state.points.count;
  bench.counters["reflections"] = state.reflections.Count();
  bench.counters["parameters"] = state.parameters;
  bench.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(ThreePhaseCycle)->Unit(benchmark::kMillisecond)->Iterations(5);

void ThreePhaseReflectionTerms(benchmark::State& bench) {
  if (!Ready(bench)) return;
  for (auto _ : bench) ReflectionTermsOfAll(Project().state);
}
BENCHMARK(ThreePhaseReflectionTerms)->Unit(benchmark::kMillisecond);

// Each point's value and derivatives from the reflections that reach it.
void ThreePhasePointTerms(benchmark::State& bench) {
  if (!Ready(bench)) return;
  EngineState& state = Project().state;
  ReflectionTermsOfAll(state);
  kaldena::PointValues values;
  std::vector<std::string> lines;
  for (auto _ : bench) {
    for (int i = 0; i < state.points.count; ++i) {
      if (state.work.reach.Excluded(i)) continue;
      kaldena::CalculatePoint(state, i, state.work.reach.At(i), values, lines);
      benchmark::DoNotOptimize(values.dy.data());
    }
  }
}
BENCHMARK(ThreePhasePointTerms)->Unit(benchmark::kMillisecond)->Iterations(5);

// The points' derivatives into the normal equations.
void ThreePhaseNormalMatrix(benchmark::State& bench) {
  if (!Ready(bench)) return;
  EngineState& state = Project().state;
  ReflectionTermsOfAll(state);
  std::vector<std::vector<float>> dy;
  std::vector<std::string> lines;
  for (int i = 0; i < state.points.count; ++i) {
    if (state.work.reach.Excluded(i)) continue;
    kaldena::PointValues values;
    kaldena::CalculatePoint(state, i, state.work.reach.At(i), values, lines);
    dy.push_back(std::move(values.dy));
  }
  for (auto _ : bench) {
    for (const std::vector<float>& d : dy) kaldena::AddToNormalEquations(state, d, 1e-3f, 1.0f);
  }
  bench.counters["rows"] = static_cast<double>(dy.size());
}
BENCHMARK(ThreePhaseNormalMatrix)->Unit(benchmark::kMillisecond);

void ThreePhaseSolve(benchmark::State& bench) {
  if (!Ready(bench)) return;
  EngineState& state = Project().state;
  if (!kaldena::Sweep(state)) bench.SkipWithError("the sweep failed");
  const std::vector<float> normal = Mirrored(state);
  for (auto _ : bench) {
    bench.PauseTiming();
    std::vector<float> matrix = normal;
    bench.ResumeTiming();
    Solve(state, matrix);
  }
}
BENCHMARK(ThreePhaseSolve)->Unit(benchmark::kMillisecond);

}  // namespace
