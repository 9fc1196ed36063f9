// A project taken through the engine's input stage in a scratch directory, its points tied to
// their reflections and the arrays of the cycles prepared: for tests of the stages behind it.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/cycles.h"
#include "engine/engine_input.h"
#include "engine/run_files.h"
#include "store/record_store.h"
#include "support/test_files.h"

namespace kaldena::testing {

struct EngineProject {
  // `files` are written beside the project (name, contents) first, the pattern among them.
  EngineProject(std::string_view project,
                const std::vector<std::pair<std::string, std::string>>& files)
      : store(reporter) {
    namespace fs = std::filesystem;
    for (const auto& [name, bytes] : files) scratch.Write(name, bytes);
    const fs::path file = scratch.Write("project.rec", project);
    const fs::path old = fs::current_path();
    fs::current_path(scratch.Path());
    ok = SetUpRunFiles(file.string(), state, store, reporter) == RunFilesStatus::kOk &&
         ReadEngineInput(state, store, reporter) == InputStatus::kOk && AssignSpans(state);
    fs::current_path(old);
    state.list.Close();
    if (ok) PrepareCycles(state);
  }

  std::string ListFile() const { return ReadBytes(scratch.Path() / "%project.out"); }

  ScratchDir scratch;
  RecordingReporter reporter;
  RecordStore store;
  EngineState state;
  bool ok = false;
};

}  // namespace kaldena::testing
