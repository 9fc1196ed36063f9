// kaldena: the desktop program. `kaldena [project.rec]` opens the main window, the log and,
// when given, the project; the shell's logic runs on the Qt toolkit.
#include <QApplication>
#include <QFileInfo>
#include <cstdlib>
#include <string>
#include <vector>

#include "qt/qt_toolkit.h"
#include "qt/session_script.h"
#include "shell/shell_state.h"
#include "shell/startup.h"
#include "shell/tool_routines.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  // Qt has taken its own options (-platform and the like) out of the arguments. The program
  // changes to its own directory before it opens the project, so a project named relative
  // to where it was started is made absolute first.
  std::vector<std::string> arguments(argv, argv + argc);
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    arguments[i] = QFileInfo(QString::fromLocal8Bit(argv[i])).absoluteFilePath().toStdString();
  }
  kaldena::QtToolkit toolkit(arguments);
  if (const char* script = std::getenv("KALDENA_SCRIPT")) {
    toolkit.SetIdleHook(kaldena::SessionScript(script));
  }
  kaldena::ShellState state;
  const kaldena::ShellRoutines routines = kaldena::ToolRoutines();
  return kaldena::RunApplication(state, toolkit, routines);
}
