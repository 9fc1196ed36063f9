// The corundum example refined by the engine in a scratch directory, for the tests of what
// reads a refined project.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "support/engine_run.h"

namespace kaldena::testing {

// Copies examples/corundum into `dir`, with `extraRecords` behind the project's lines, and
// refines it there (the directory being the current one meanwhile). True when the run ended
// well; its files are then %corundum.par, .out, .sum and .fou beside the project.
inline bool RefineExample(const ScratchDir& dir, std::string_view extraRecords = {}) {
  namespace fs = std::filesystem;
  const fs::path example = TestData("../../examples/corundum");
  dir.Write("corundum.rec", ReadBytes(example / "corundum.rec") + std::string(extraRecords));
  fs::copy_file(example / "corundum.xy", dir.Path() / "corundum.xy",
                fs::copy_options::overwrite_existing);
  return RunEngineIn(dir, "corundum.rec");
}

}  // namespace kaldena::testing
