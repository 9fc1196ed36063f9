// The undo history of the parameter file.
#include "shell/edit_history.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "shell/menu_dispatch.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

std::optional<std::string> ReadText(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Replaces the file by rename of a new one beside it, so that a failure keeps the old text.
bool WriteText(const std::string& file, const std::string& text) {
  const std::string temporary = file + ".kaldena-new";
  std::error_code error;
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (out.fail()) error = std::make_error_code(std::errc::io_error);
  }
  if (!error) fs::permissions(temporary, fs::status(file, error).permissions(), error);
  if (!error) fs::rename(temporary, file, error);
  if (error) fs::remove(temporary, error);
  return !error;
}

EditHistory& HistoryOf(ShellState& state) {
  if (state.editHistory.project != state.projectFileName) {
    state.editHistory = EditHistory{state.projectFileName, {}, {}};
  }
  return state.editHistory;
}

// Writes the step's text over its file and moves the step from one stack to the other, with the
// file as it stood as the text to go back to. A file that can't be written gets a box and
// keeps the step where it was.
void Restore(ShellState& state, Toolkit& toolkit, std::vector<EditStep>& from,
             std::vector<EditStep>& to, bool undo) {
  EditStep step = from.back();
  const std::string now = ReadText(step.file).value_or("");
  if (!WriteText(step.file, undo ? step.before : step.after)) {
    ShowMessage(toolkit, "Error updating", step.file);
    return;
  }
  from.pop_back();
  LogLine(state, toolkit, (undo ? "Undo " : "Redo ") + step.name);
  if (undo && now != step.after) {
    LogLine(state, toolkit,
            " " + fs::path(step.file).filename().string() + " is back as before " + step.name +
                ": what a run changed since is undone too");
  }
  (undo ? step.after : step.before) = now;
  to.push_back(std::move(step));
}

}  // namespace

UndoStep::UndoStep(const ShellState& state, std::string_view name)
    : UndoStep(name, InProjectDir(state, state.parameterFileName)) {}

UndoStep::UndoStep(std::string_view name, std::string file) {
  step_.name = name;
  step_.file = std::move(file);
  const std::optional<std::string> text = ReadText(step_.file);
  readable_ = text.has_value();
  step_.before = text.value_or("");
}

void UndoStep::Finish(ShellState& state, Toolkit& toolkit) {
  const std::optional<std::string> text = ReadText(step_.file);
  if (readable_ && text && *text != step_.before) {
    step_.after = *text;
    EditHistory& history = HistoryOf(state);
    history.undo.push_back(std::move(step_));
    history.redo.clear();
  }
  ShowEditHistory(state, toolkit);
}

void UndoEdit(ShellState& state, Toolkit& toolkit) {
  EditHistory& history = HistoryOf(state);
  if (!history.undo.empty()) Restore(state, toolkit, history.undo, history.redo, true);
  ShowEditHistory(state, toolkit);
}

void RedoEdit(ShellState& state, Toolkit& toolkit) {
  EditHistory& history = HistoryOf(state);
  if (!history.redo.empty()) Restore(state, toolkit, history.redo, history.undo, false);
  ShowEditHistory(state, toolkit);
}

void ShowEditHistory(ShellState& state, Toolkit& toolkit) {
  const EditHistory& history = HistoryOf(state);
  auto show = [&toolkit](int item, std::string_view verb, const std::vector<EditStep>& steps) {
    toolkit.WMenuSetString(item,
                           std::string(verb) + (steps.empty() ? "" : " " + steps.back().name));
    toolkit.WMenuSetState(item, kMenuItemEnabled, steps.empty() ? 0 : 1);
  };
  show(menu::kUndo, "Undo", history.undo);
  show(menu::kRedo, "Redo", history.redo);
}

}  // namespace kaldena
