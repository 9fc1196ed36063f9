#include "qt/session_script.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPixmap>
#include <cstdio>
#include <deque>
#include <fstream>
#include <memory>
#include <sstream>

#include "qt/qt_toolkit.h"
#include "util/text.h"

namespace kaldena {
namespace {

void PostMouse(QWidget& target, QEvent::Type type, QPoint at) {
  const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
  QApplication::postEvent(
      &target, new QMouseEvent(type, QPointF(at), target.mapToGlobal(QPointF(at)), Qt::LeftButton,
                               held, Qt::NoModifier));
}

bool SaveWindow(QtToolkit& toolkit, int window, const std::string& fileName) {
  ToolkitWindow* shown = toolkit.Window(window);
  if (!shown) return false;
  toolkit.PresentAll();
  QApplication::processEvents();
  return shown->grab().save(QString::fromStdString(fileName), "PNG");
}

// One command; false when it does not read or fails.
bool Play(QtToolkit& toolkit, const std::string& line) {
  std::istringstream in(line);
  std::string command;
  in >> command;
  if (command == "menu" || command == "key" || command == "button") {
    int value = 0;
    if (!(in >> value)) return false;
    const int type = command == "menu" ? kMenuSelect : command == "key" ? kKeyDown : kPushButton;
    toolkit.Post({type, value});
    return true;
  }
  if (command == "drag") {
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    ToolkitWindow* main = toolkit.Window(kMainWindow);
    if (!(in >> x1 >> y1 >> x2 >> y2) || !main || main->Editor()) return false;
    // The press is the program's message; the rubber band it starts takes the Qt events.
    toolkit.Post({kMouseButtonDown, 1, x1, y1});
    PostMouse(main->Plot(), QEvent::MouseMove, {x2, y2});
    PostMouse(main->Plot(), QEvent::MouseButtonRelease, {x2, y2});
    return true;
  }
  if (command == "shot") {
    std::string which, file;
    if (!(in >> which >> file)) return false;
    // The log is the first child window.
    return SaveWindow(toolkit, which == "log" ? 1 : kMainWindow, file);
  }
  if (command == "quit") {
    toolkit.Post({kCloseRequest, 0, 0, 0, kMainWindow});
    return true;
  }
  return false;
}

}  // namespace

std::function<void(QtToolkit&)> SessionScript(const std::string& fileName) {
  auto lines = std::make_shared<std::deque<std::string>>();
  std::ifstream in(fileName);
  if (!in) std::fprintf(stderr, "KALDENA_SCRIPT: cannot open %s\n", fileName.c_str());
  std::string line;
  while (GetTextLine(in, line)) {
    const std::string command(Trimmed(LeftJustify(line)));
    if (!command.empty() && command.front() != '#') lines->push_back(command);
  }
  return [lines](QtToolkit& toolkit) {
    while (!lines->empty()) {
      const std::string command = lines->front();
      lines->pop_front();
      if (!Play(toolkit, command)) {
        std::fprintf(stderr, "KALDENA_SCRIPT: failed: %s\n", command.c_str());
      }
      // Wait for the program when the command gave it something to do.
      if (command.rfind("shot", 0) != 0) return;
    }
    toolkit.Post({kCloseRequest, 0, 0, 0, kMainWindow});
  };
}

}  // namespace kaldena
