// Windows, the message queue, menus, selections, boxes and the operating system.
#include "qt/qt_toolkit.h"

#include <QAction>
#include <QApplication>
#include <QColorDialog>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QPrinter>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QThread>
#include <QToolBar>
#include <atomic>
#include <filesystem>
#include <thread>

#include "qt/qt_dialogs.h"
#include "shell/shell_state.h"
#include "toolkit/cairo_canvas.h"
#include "util/file_copy.h"
#include "util/text.h"

namespace kaldena {
namespace {

QString ToQt(std::string_view text) { return QString::fromUtf8(text.data(), text.size()); }

std::string FromQt(const QString& text) { return text.toStdString(); }

// "Project file|*.rec|CIF|*.cif|" as Qt's "Project file (*.rec);;CIF (*.cif)".
QString FilterOf(std::string_view filter) {
  const QStringList parts = ToQt(filter).split('|', Qt::SkipEmptyParts);
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    filters << parts[i] + " (" + QString(parts[i + 1]).replace(';', ' ') + ")";
  }
  if (parts.size() % 2 == 1) filters << parts.back();
  return filters.join(";;");
}

// Flags with the value 1 or 2 set save; the opening flags (128, 136) set neither.
bool SavesFile(int flags) { return (flags & 3) != 0; }

}  // namespace

QtToolkit::QtToolkit(std::vector<std::string> arguments)
    : arguments_(std::move(arguments)),
      dialogs_(std::make_unique<QtDialogs>(
          [this](const Message& m) { Post(m); },
          [this](const std::function<bool()>& done) { RunUntil(done); })) {}

QtToolkit::~QtToolkit() = default;

// --- Windows and messages

void QtToolkit::Initialise() { QApplication::setApplicationName("KALDENA"); }

int QtToolkit::ScreenInfo(int what) {
  const QScreen* screen = QGuiApplication::primaryScreen();
  const QSize size = screen ? screen->size() : QSize(1280, 800);
  return what == 2 ? size.height() : size.width();
}

void QtToolkit::WindowOpen(int, int x, int y, int width, int height, int, std::string_view title) {
  auto window = std::make_unique<ToolkitWindow>(kMainWindow, [this](const Message& m) { Post(m); });
  window->setWindowTitle(ToQt(title));
  menu_ = std::make_unique<MenuBar>(*window->menuBar(), [this](const Message& m) { Post(m); });
  // Stop on a toolbar as well: the same action, grey and on with the menu item.
  if (QAction* stop = menu_->Action(menu::kStopRun)) {
    QToolBar* tools = window->addToolBar("Run");
    tools->setMovable(false);
    tools->addAction(stop);
  }
  window->move(x, y);
  window->resize(width, height);
  window->show();
  windows_[kMainWindow] = std::move(window);
  selected_ = kMainWindow;
}

int QtToolkit::WindowOpenChild(int, int x, int y, int width, int height, std::string_view title) {
  const int id = nextWindow_++;
  auto window = std::make_unique<ToolkitWindow>(id, [this](const Message& m) { Post(m); });
  window->setWindowTitle(ToQt(title));
  window->move(x, y);
  window->resize(width, height);
  window->show();
  windows_[id] = std::move(window);
  return id;
}

void QtToolkit::WindowCloseChild(int window) {
  auto found = windows_.find(window);
  if (found == windows_.end() || window == kMainWindow) return;
  found->second->CloseNow();
  windows_.erase(found);
  if (selected_ == window) selected_ = kMainWindow;
}

void QtToolkit::WindowClose() {
  EndHardcopy();
  dialogs_->UnloadAll();
  for (auto& [id, window] : windows_) window->CloseNow();
  windows_.clear();
  menu_.reset();
}

void QtToolkit::WindowSelect(int window) {
  if (windows_.contains(window)) selected_ = window;
}

ToolkitWindow* QtToolkit::Window(int window) const {
  auto found = windows_.find(window);
  return found == windows_.end() ? nullptr : found->second.get();
}

ToolkitWindow& QtToolkit::Selected() {
  if (ToolkitWindow* window = Window(selected_)) return *window;
  return *windows_.at(kMainWindow);
}

void QtToolkit::WindowStatusBarParts(std::span<const int> widths) {
  if (ToolkitWindow* main = Window(kMainWindow)) main->SetStatusParts(widths);
}

void QtToolkit::WindowStatusBar(int field, std::string_view text) {
  Selected().SetStatusText(field, ToQt(text));
}

void QtToolkit::WMessageEnable(int type, bool enable) {
  if (enable) {
    enabled_.insert(type);
  } else {
    enabled_.erase(type);
  }
}

void QtToolkit::Post(const Message& message) {
  const bool switchable =
      message.type == kMouseButtonUp || message.type == kMouseMove || message.type == kFieldChanged;
  if (switchable && !enabled_.contains(message.type)) return;
  // Only the latest position of a run of moves matters.
  if (message.type == kMouseMove && !messages_.empty() && messages_.back().type == kMouseMove) {
    messages_.back() = message;
    return;
  }
  messages_.push_back(message);
}

void QtToolkit::PresentAll() {
  for (auto& [id, window] : windows_) {
    if (window->Editor() == nullptr) window->Plot().Present();
  }
}

void QtToolkit::RunUntil(const std::function<bool()>& done) {
  while (!done()) {
    PresentAll();
    QApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents);
  }
}

Message QtToolkit::WMessageGet() {
  RunUntil([this] {
    if (messages_.empty() && idleHook_) {
      QApplication::processEvents();
      if (messages_.empty()) idleHook_(*this);
    }
    return !messages_.empty();
  });
  const Message message = messages_.front();
  messages_.pop_front();
  if (message.type == kPushButton && (message.value == kIdOk || message.value == kIdCancel)) {
    lastExitButton_ = message.value;
    lastAccepted_ = message.value == kIdOk ? 1 : 0;
  }
  return message;
}

int QtToolkit::InfoError(int) {
  const int error = lastError_;
  lastError_ = 0;
  return error;
}

int QtToolkit::InfoDialog(int what) {
  return what == kInfoExitButton ? lastExitButton_ : lastAccepted_;
}

int QtToolkit::ArgumentCount() {
  return arguments_.empty() ? 0 : static_cast<int>(arguments_.size()) - 1;
}

// Argument 0 is the program's own file with its directory, where the preferences lie,
// however the program was started.
std::string QtToolkit::Argument(int number) {
  if (number == 0) return FromQt(QCoreApplication::applicationFilePath());
  if (number < 0 || number >= static_cast<int>(arguments_.size())) return {};
  return arguments_[static_cast<std::size_t>(number)];
}

// --- Jobs

void QtToolkit::RunJob(const std::function<void()>& job,
                       const std::function<void(const Message&)>& onMessage) {
  std::atomic<bool> done{false};
  std::thread worker([&] {
    job();
    done = true;
    // Wakes the loop, which may be waiting for events.
    QMetaObject::invokeMethod(
        qApp, [] {}, Qt::QueuedConnection);
  });
  RunUntil([&] {
    while (!messages_.empty()) {
      const Message message = messages_.front();
      messages_.pop_front();
      onMessage(message);
    }
    return done.load();
  });
  worker.join();
}

void QtToolkit::OnLoopThread(const std::function<void()>& call) {
  if (QThread::currentThread() == qApp->thread()) return call();
  QMetaObject::invokeMethod(qApp, call, Qt::BlockingQueuedConnection);
}

// --- Menus

void QtToolkit::WMenuSetState(int item, int kind, int value) {
  if (menu_) menu_->SetState(item, kind, value);
}

void QtToolkit::WMenuSetString(int item, std::string_view text) {
  if (menu_) menu_->SetString(item, ToQt(Trimmed(text)));
}

// --- Selections and boxes

void QtToolkit::WSelectFile(std::string_view filter, int flags, std::string& name,
                            std::string_view title) {
  const QString offered = ToQt(Trimmed(name));
  // A wildcard offers the current directory; a name offers itself.
  const QString start = offered.contains('*') ? QDir::currentPath() : offered;
  QWidget* parent = Window(kMainWindow);
  const QString chosen =
      SavesFile(flags) ? QFileDialog::getSaveFileName(parent, ToQt(title), start, FilterOf(filter))
                       : QFileDialog::getOpenFileName(parent, ToQt(title), start, FilterOf(filter));
  if (!chosen.isEmpty()) {
    name = FromQt(QDir::toNativeSeparators(chosen));
  } else if (!name.starts_with('*')) {
    name.clear();
  }
}

void QtToolkit::WSelectDir(int, std::string& directory, std::string_view title) {
  const QString chosen =
      QFileDialog::getExistingDirectory(Window(kMainWindow), ToQt(title), ToQt(Trimmed(directory)));
  directory = chosen.isEmpty() ? std::string() : FromQt(QDir::toNativeSeparators(chosen));
}

bool QtToolkit::WSelectColour(int& red, int& green, int& blue) {
  const QColor chosen = QColorDialog::getColor(QColor(red, green, blue), Window(kMainWindow));
  lastAccepted_ = chosen.isValid() ? 1 : 0;
  if (!chosen.isValid()) return false;
  red = chosen.red();
  green = chosen.green();
  blue = chosen.blue();
  return true;
}

void QtToolkit::WMessageBox(int buttons, int icon, int, std::string_view text,
                            std::string_view title) {
  QMessageBox box(icon == kIconQuestion ? QMessageBox::Question : QMessageBox::Information,
                  ToQt(title), ToQt(text).replace('\r', '\n'),
                  buttons == kButtonsYesNo ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok,
                  Window(kMainWindow));
  box.setDefaultButton(buttons == kButtonsYesNo ? QMessageBox::Yes : QMessageBox::Ok);
  box.setEscapeButton(buttons == kButtonsYesNo ? QMessageBox::No : QMessageBox::Ok);
  box.setWindowModality(Qt::ApplicationModal);
  box.show();
  RunUntil([&box] { return !box.isVisible(); });
  const bool yes = box.clickedButton() == box.button(QMessageBox::Yes);
  lastAccepted_ = buttons == kButtonsYesNo ? (yes ? 1 : 0) : 1;
}

// --- Operating system

// The program is looked up first (a bare name on the search path), since a detached start
// reports only that the process was made, not that the program ran.
void QtToolkit::IOsCommand(const std::vector<std::string>& arguments, int) {
  const QString named = arguments.empty() ? QString() : ToQt(Trimmed(arguments.front()));
  const QString program = named.contains('/') ? named : QStandardPaths::findExecutable(named);
  if (program.isEmpty() || !QFileInfo(program).isExecutable()) {
    lastError_ = kErrorOsCommand;
    return;
  }
  QStringList rest;
  for (std::size_t i = 1; i < arguments.size(); ++i) rest << ToQt(arguments[i]);
  if (!QProcess::startDetached(program, rest)) lastError_ = kErrorOsCommand;
}

void QtToolkit::IOsDirChange(std::string_view directory) {
  std::error_code error;
  std::filesystem::current_path(std::string(Trimmed(directory)), error);
  if (error) lastError_ = kErrorOsCommand;
}

void QtToolkit::IOsCopyFile(std::string_view from, std::string_view to) {
  if (!CopyFileReplacing(from, to)) lastError_ = kErrorOsCommand;
}

void QtToolkit::IOsDeleteFile(std::string_view name, int) {
  std::error_code error;
  if (!std::filesystem::remove(std::string(Trimmed(name)), error) || error) {
    lastError_ = kErrorOsCommand;
  }
}

DateTime QtToolkit::IOsDateTime() { return SystemDateTime(); }

}  // namespace kaldena
