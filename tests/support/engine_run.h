// A whole run of the engine on a project in a scratch directory.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "engine/run_engine.h"
#include "support/test_files.h"

namespace kaldena::testing {

// Runs the engine on the project file `name` of `dir`, with `dir` as the current directory
// meanwhile. True when the run ended well.
inline bool RunEngineIn(const ScratchDir& dir, std::string_view name) {
  namespace fs = std::filesystem;
  const fs::path old = fs::current_path();
  fs::current_path(dir.Path());
  RecordingReporter reporter;
  const bool ok = RunEngine({std::string(name), false, nullptr}, reporter).status == 0;
  fs::current_path(old);
  return ok;
}

}  // namespace kaldena::testing
