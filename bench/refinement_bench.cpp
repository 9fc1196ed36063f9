// A whole run of the engine on the corundum example (6750 points, 15 parameters), from the
// project file to the refined parameter file.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "engine/run_engine.h"
#include "util/report.h"

namespace {

namespace fs = std::filesystem;

// A copy of the example in a directory of its own, which is the current one while it runs.
class ExampleCopy {
 public:
  ExampleCopy()
      : dir_(fs::temp_directory_path() / "kaldena-refinement-bench"), old_(fs::current_path()) {
    fs::create_directories(dir_);
    const fs::path example = fs::path(KALDENA_TEST_DATA) / "../../examples/corundum";
    for (const char* file : {"corundum.rec", "corundum.xy"}) {
      fs::copy_file(example / file, dir_ / file, fs::copy_options::overwrite_existing);
    }
    fs::current_path(dir_);
  }
  ~ExampleCopy() {
    fs::current_path(old_);
    std::error_code ignored;
    fs::remove_all(dir_, ignored);
  }

 private:
  fs::path dir_, old_;
};

void Refinement(benchmark::State& state) {
  ExampleCopy copy;
  kaldena::SilentReporter reporter;
  for (auto _ : state) {
    benchmark::DoNotOptimize(kaldena::RunEngine({"corundum.rec", false, nullptr}, reporter));
  }
}
BENCHMARK(Refinement)->Unit(benchmark::kMillisecond);

}  // namespace
