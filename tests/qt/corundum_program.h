// The corundum example opened in the Qt toolkit's main window, with its log and status bar,
// for tests that run the program's logic on screen.
#pragma once

#include <QImage>
#include <QString>
#include <filesystem>
#include <string>
#include <vector>

#include "modal_answerer.h"
#include "qt/qt_toolkit.h"
#include "qt_windows.h"
#include "shell/project_lifecycle.h"
#include "shell/tool_routines.h"
#include "support/test_files.h"

namespace kaldena::testing {

struct CorundumProgram {
  CorundumProgram() : toolkit({"kaldena"}) {
    const std::string rec =
        ReadBytes(TestData("../../examples/corundum/corundum.rec")) +
        "PWPR      corundum.par\nPWUT      corundum.out\nPWSM      corundum.sum\n"
        "PWFO      corundum.fou\n";
    dir.Write("corundum.rec", rec);
    std::filesystem::copy_file(TestData("../../examples/corundum/corundum.xy"),
                               dir.Path() / "corundum.xy");
    OpenMainAndLog(toolkit, state);
    toolkit.WindowStatusBarParts(std::vector<int>{2000, 2000, 2000, 2000, 2000});
    InstallToolHooks(state);
    state.recentProjects[0] = (dir.Path() / "corundum.rec").string();
    OpenProject(state, toolkit, 1);
  }
  ~CorundumProgram() { toolkit.WindowClose(); }
  QString Log() { return toolkit.Window(state.logWindow)->Editor()->toPlainText(); }
  QImage Plot() {
    toolkit.PresentAll();
    return toolkit.Window(kMainWindow)->Plot().Shown().copy();
  }

  ModalAnswerer answerer;
  ScratchDir dir;
  QtToolkit toolkit;
  ShellState state;
};

}  // namespace kaldena::testing
