// A shell with a headless toolkit and a log window, in a scratch directory.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "shell/shell_state.h"
#include "support/checked_toolkit.h"
#include "support/test_files.h"

namespace kaldena::testing {

struct ShellFixture {
  ShellFixture() {
    toolkit.WindowOpen(39, 20, 20, 800, 500, 30001, "KALDENA");
    state.logWindow = toolkit.WindowOpenChild(256, 20, 600, 800, 250, "KALDENA Log");
  }
  std::vector<std::string> Log() const { return toolkit.WindowText(state.logWindow); }
  std::string Path(const std::string& name) const { return (dir.Path() / name).string(); }
  std::string Read(const std::string& name) const { return ReadBytes(dir.Path() / name); }
  bool Exists(const std::string& name) const { return std::filesystem::exists(dir.Path() / name); }

  ScratchDir dir;
  CheckedToolkit toolkit;
  ShellState state;
};

}  // namespace kaldena::testing
