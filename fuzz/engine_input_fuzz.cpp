// Fuzzes a whole calculation run from the project text: file set-up, input, reflections,
// spans and the sweep. The input is the project; a small pattern file stands beside it.
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "engine/cycles.h"
#include "engine/engine_input.h"
#include "engine/run_files.h"

namespace {

const std::filesystem::path& ScratchDirectory() {
  static const std::filesystem::path dir = [] {
    auto path = std::filesystem::temp_directory_path() /
                ("kaldena-input-fuzz-" + std::to_string(getpid()));
    std::filesystem::create_directories(path);
    std::ofstream pattern(path / "pattern.xy");
    for (int i = 0; i < 300; ++i) pattern << 20 + 0.02 * i << " " << 100 + i % 7 << "\n";
    return path;
  }();
  return dir;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  const std::filesystem::path project = ScratchDirectory() / "fuzz.rec";
  {
    std::ofstream out(project, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
  }
  kaldena::SilentReporter reporter;
  kaldena::RecordStore store(reporter);
  kaldena::EngineState state;
  const std::atomic<bool> stop{false};
  std::filesystem::current_path(ScratchDirectory());
  if (kaldena::SetUpRunFiles(project.string(), state, store, reporter) ==
          kaldena::RunFilesStatus::kOk &&
      kaldena::ReadEngineInput(state, store, reporter) == kaldena::InputStatus::kOk &&
      kaldena::AssignSpans(state)) {
    // One sweep at most: the refinement's cycles are the same sweep again.
    state.controls.cycles = 1;
    kaldena::RunCycles(state, reporter, stop);
  }
  state.list.Close();
  return 0;
}
