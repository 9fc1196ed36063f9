// The scripted, display-free toolkit.
#include "toolkit/headless_toolkit.h"

#include <cstdio>
#include <filesystem>
#include <sstream>

#include "util/file_copy.h"
#include "util/text.h"

namespace kaldena {

namespace {

namespace fs = std::filesystem;

std::string NumberText(double value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace

std::vector<std::string> ScriptedToolkit::WindowText(int window) const {
  std::vector<std::string> lines;
  for (const EditLine& line : editLines_) {
    if (line.window != window || line.line < 1) continue;
    const auto at = static_cast<std::size_t>(line.line - 1);
    if (at < lines.size()) {
      lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), line.text);
    } else {
      lines.resize(at);
      lines.push_back(line.text);
    }
  }
  return lines;
}

std::string ScriptedToolkit::StatusField(int field) const {
  auto it = statusFields_.find(field);
  return it == statusFields_.end() ? std::string() : it->second;
}

std::optional<int> ScriptedToolkit::MenuState(int item, int kind) const {
  auto it = menuStates_.find({item, kind});
  if (it == menuStates_.end()) return std::nullopt;
  return it->second;
}

std::string ScriptedToolkit::MenuString(int item) const {
  auto it = menuStrings_.find(item);
  return it == menuStrings_.end() ? std::string() : it->second;
}

std::string ScriptedToolkit::DialogField(int dialog, int field) const {
  auto d = dialogs_state_.find(dialog);
  if (d == dialogs_state_.end()) return {};
  auto f = d->second.fields.find(field);
  return f == d->second.fields.end() ? std::string() : f->second;
}

void ScriptedToolkit::ClearRecords() {
  editLines_.clear();
  boxes_.clear();
  selectionLog_.clear();
  fileOperations_.clear();
  commands_.clear();
  directoryChanges_.clear();
  drawing_.clear();
  dialogsShown_.clear();
}

void ScriptedToolkit::WindowOpen(int, int, int, int, int, int, std::string_view) {
  openWindows_.insert(kMainWindow);
  selectedWindow_ = kMainWindow;
}

int ScriptedToolkit::WindowOpenChild(int, int, int, int, int, std::string_view) {
  const int window = nextWindow_++;
  openWindows_.insert(window);
  return window;
}

void ScriptedToolkit::WindowCloseChild(int window) { openWindows_.erase(window); }

void ScriptedToolkit::WindowClose() { openWindows_.clear(); }

void ScriptedToolkit::WindowStatusBarParts(std::span<const int>) {}

void ScriptedToolkit::WindowStatusBar(int field, std::string_view text) {
  statusFields_[field] = std::string(text);
}

void ScriptedToolkit::WMessageEnable(int type, bool enable) {
  if (enable) {
    enabledMessages_.insert(type);
  } else {
    enabledMessages_.erase(type);
  }
}

Message ScriptedToolkit::WMessageGet() {
  while (!messages_.empty()) {
    Message message = messages_.front();
    messages_.pop_front();
    // Mouse and field-change messages reach the program only when it asked for them.
    const bool switchable = message.type == kMouseButtonUp || message.type == kMouseMove ||
                            message.type == kFieldChanged;
    if (switchable && !enabledMessages_.contains(message.type)) continue;
    if (message.type == kPushButton && (message.value == kIdOk || message.value == kIdCancel)) {
      lastExitButton_ = message.value;
      lastAccepted_ = message.value == kIdOk ? 1 : 0;
    }
    return message;
  }
  return Message{kCloseRequest, 0, 0, 0, kMainWindow};
}

int ScriptedToolkit::InfoError(int) {
  const int error = lastError_;
  lastError_ = 0;
  return error;
}

int ScriptedToolkit::InfoDialog(int what) {
  return what == kInfoExitButton ? lastExitButton_ : lastAccepted_;
}

int ScriptedToolkit::ArgumentCount() {
  return arguments_.empty() ? 0 : static_cast<int>(arguments_.size()) - 1;
}

std::string ScriptedToolkit::Argument(int number) {
  if (number < 0 || number >= static_cast<int>(arguments_.size())) return {};
  return arguments_[static_cast<std::size_t>(number)];
}

void ScriptedToolkit::WMenuSetState(int item, int kind, int value) {
  menuStates_[{item, kind}] = value;
}

void ScriptedToolkit::WMenuSetString(int item, std::string_view text) {
  menuStrings_[item] = std::string(text);
}

void ScriptedToolkit::WSelectFile(std::string_view filter, int flags, std::string& name,
                                  std::string_view title) {
  FileSelection selection{std::string(filter), flags, std::string(title), name, ""};
  if (selections_.empty()) {
    name = "*" + name;  // Cancel
  } else {
    name = std::move(selections_.front());
    selections_.pop_front();
  }
  selection.returned = name;
  selectionLog_.push_back(std::move(selection));
}

void ScriptedToolkit::WSelectDir(int flags, std::string& directory, std::string_view title) {
  WSelectFile("", flags, directory, title);
}

bool ScriptedToolkit::WSelectColour(int& red, int& green, int& blue) {
  if (colours_.empty() || !colours_.front()) {
    if (!colours_.empty()) colours_.pop_front();
    lastAccepted_ = 0;
    return false;
  }
  const int rgb = *colours_.front();
  colours_.pop_front();
  red = (rgb >> 16) & 0xff;
  green = (rgb >> 8) & 0xff;
  blue = rgb & 0xff;
  lastAccepted_ = 1;
  return true;
}

void ScriptedToolkit::WMessageBox(int buttons, int icon, int, std::string_view text,
                                  std::string_view title) {
  boxes_.push_back(Box{buttons, icon, std::string(title), std::string(text)});
  if (echo_) {
    std::fprintf(stderr, "%.*s: %.*s\n", static_cast<int>(title.size()), title.data(),
                 static_cast<int>(text.size()), text.data());
  }
  if (buttons == kButtonsYesNo) {
    bool yes = false;
    if (!answers_.empty()) {
      yes = answers_.front();
      answers_.pop_front();
    }
    lastAccepted_ = yes ? 1 : 0;
  } else {
    lastAccepted_ = 1;
  }
}

void ScriptedToolkit::Draw(std::string op) { drawing_.push_back(std::move(op)); }

void ScriptedToolkit::IGrSelect(int kind, int id) {
  Draw("select " + std::to_string(kind) + " " + std::to_string(id));
}

void ScriptedToolkit::IGrArea(double x1, double y1, double x2, double y2) {
  Draw("area " + NumberText(x1) + " " + NumberText(y1) + " " + NumberText(x2) + " " +
       NumberText(y2));
}

void ScriptedToolkit::IGrUnits(double x1, double y1, double x2, double y2) {
  Draw("units " + NumberText(x1) + " " + NumberText(y1) + " " + NumberText(x2) + " " +
       NumberText(y2));
}

void ScriptedToolkit::IGrColour(std::string_view name) { Draw("colour " + std::string(name)); }

void ScriptedToolkit::IGrColourN(int colour) { Draw("colour " + std::to_string(colour)); }

void ScriptedToolkit::IGrLineType(int type, double width) {
  Draw("linetype " + std::to_string(type) + " " + NumberText(width));
}

void ScriptedToolkit::IGrMoveTo(double x, double y) {
  Draw("move " + NumberText(x) + " " + NumberText(y));
}

void ScriptedToolkit::IGrLineTo(double x, double y) {
  Draw("line " + NumberText(x) + " " + NumberText(y));
}

void ScriptedToolkit::IGrCharOut(double x, double y, std::string_view text) {
  Draw("text " + NumberText(x) + " " + NumberText(y) + " " + std::string(text));
}

void ScriptedToolkit::IGrCharDirection(int degrees) {
  Draw("direction " + std::to_string(degrees));
}

// The headless screen is a unit square of 1000 by 1000 pixels, y growing downwards.
void ScriptedToolkit::IGrUnitsFromPixels(int px, int py, double& x, double& y) {
  x = px / 1000.0;
  y = 1.0 - py / 1000.0;
}

void ScriptedToolkit::IGrPixelsFromUnits(double x, double y, int& px, int& py) {
  px = static_cast<int>(x * 1000.0 + 0.5);
  py = static_cast<int>((1.0 - y) * 1000.0 + 0.5);
}

void ScriptedToolkit::IGrAreaClear() { Draw("clear"); }

int ScriptedToolkit::WGrInput(int, double& x, double& y) {
  // The rubber band ends where the next queued mouse-up says; without one it ends at once.
  for (auto it = messages_.begin(); it != messages_.end(); ++it) {
    if (it->type == kMouseButtonUp) {
      IGrUnitsFromPixels(it->x, it->y, x, y);
      messages_.erase(it);
      break;
    }
  }
  return kMouseButtonUp;
}

void ScriptedToolkit::IGrPlotMode(std::string_view mode) { Draw("plotmode " + std::string(mode)); }

void ScriptedToolkit::IGrHardcopySelect(int, int driver) {
  Draw("hardcopy driver " + std::to_string(driver));
}

void ScriptedToolkit::WHardcopyOptions(int) {
  lastAccepted_ = 1;
  lastExitButton_ = kIdOk;
}

void ScriptedToolkit::IGrHardcopy(std::string_view nameOrStop) {
  Draw("hardcopy " + std::string(nameOrStop));
}

void ScriptedToolkit::IGrSaveImage(std::string_view fileName) {
  Draw("save " + std::string(fileName));
}

void ScriptedToolkit::WEditLinePut(int line, std::string_view text) {
  editLines_.push_back(EditLine{selectedWindow_, line, std::string(text)});
  if (echo_) std::printf("%.*s\n", static_cast<int>(text.size()), text.data());
}

void ScriptedToolkit::WPrintEditOptions() {
  lastAccepted_ = 1;
  lastExitButton_ = kIdOk;
}

void ScriptedToolkit::IOsCommand(const std::vector<std::string>& arguments, int) {
  commands_.push_back(arguments);
  if (arguments.empty() || failingPrograms_.contains(arguments.front())) {
    lastError_ = kErrorOsCommand;
  }
}

void ScriptedToolkit::IOsDirChange(std::string_view directory) {
  // Recorded only: a test process keeps its own working directory.
  directoryChanges_.emplace_back(directory);
}

void ScriptedToolkit::IOsCopyFile(std::string_view from, std::string_view to) {
  const bool ok = CopyFileReplacing(from, to);
  if (!ok) lastError_ = kErrorOsCommand;
  fileOperations_.push_back(
      FileOperation{"copy", std::string(Trimmed(from)), std::string(Trimmed(to)), ok});
}

void ScriptedToolkit::IOsDeleteFile(std::string_view name, int) {
  const fs::path file{std::string(Trimmed(name))};
  std::error_code error;
  const bool ok = fs::remove(file, error) && !error;
  if (!ok) lastError_ = kErrorOsCommand;
  fileOperations_.push_back(FileOperation{"delete", file.string(), "", ok});
}

DateTime ScriptedToolkit::IOsDateTime() { return fixedTime_ ? *fixedTime_ : SystemDateTime(); }

}  // namespace kaldena
