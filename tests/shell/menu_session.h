// The corundum example with its file records, opened and refined through the menus with the
// routines of ToolRoutines on a scripted toolkit.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>

#include "shell/project_lifecycle.h"
#include "shell/tool_routines.h"
#include "support/checked_toolkit.h"
#include "support/test_files.h"

namespace kaldena::testing {

struct Session {
  Session() {
    namespace fs = std::filesystem;
    const fs::path example = TestData("../../examples/corundum");
    dir.Write("corundum.rec", ReadBytes(example / "corundum.rec") +
                                  "PWPR      corundum.par\nPWUT      corundum.out\n"
                                  "PWSM      corundum.sum\nPWFO      corundum.fou\n");
    fs::copy_file(example / "corundum.xy", dir.Path() / "corundum.xy");
    toolkit.WindowOpen(39, 20, 20, 800, 500, 30001, "KALDENA");
    state.logWindow = toolkit.WindowOpenChild(256, 20, 600, 800, 250, "KALDENA Log");
    state.preferences.editorPath = "editor";
    state.recentProjects[0] = (dir.Path() / "corundum.rec").string();
    InstallToolHooks(state);
    OpenProject(state, toolkit, 1);
    DispatchMenu(shell, menu::kRunProject);
  }
  std::string Read(const std::string& name) const { return ReadBytes(dir.Path() / name); }
  bool Logged(std::string_view line) const {
    const auto lines = toolkit.WindowText(state.logWindow);
    return std::find(lines.begin(), lines.end(), line) != lines.end();
  }

  ScratchDir dir;
  CheckedToolkit toolkit;
  ShellState state;
  ShellRoutines routines = ToolRoutines();
  ShellContext shell{state, toolkit, routines};
};

}  // namespace kaldena::testing
