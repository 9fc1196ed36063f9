// The scripted toolkit's dialogs and grids, checked against the dialog resources.
#include <algorithm>
#include <charconv>
#include <cstdio>

#include "toolkit/headless_toolkit.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

double TextToReal(const std::string& text) {
  try {
    return std::stod(text);
  } catch (...) {
    return 0.0;
  }
}

int TextToInteger(const std::string& text) {
  try {
    return std::stoi(text);
  } catch (...) {
    return 0;
  }
}

// Field classes by the operations they take.
bool AnyField(const DialogField&) { return true; }
bool TakesText(const DialogField& f) { return f.HoldsText() || f.HoldsNumber(); }
bool TakesNumber(const DialogField& f) { return f.HoldsNumber(); }
bool TakesInteger(const DialogField& f) { return f.HoldsNumber() || f.kind == FieldKind::kMenu; }
bool TakesState(const DialogField& f) { return f.HoldsState(); }
bool IsRadioButton(const DialogField& f) { return f.kind == FieldKind::kRadioButton; }
bool IsGrid(const DialogField& f) { return f.kind == FieldKind::kGrid; }
bool IsButton(const DialogField& f) { return f.IsButton(); }
// What a user can type or tick: not labels, which only the program fills.
bool TakesInput(const DialogField& f) {
  return f.kind != FieldKind::kLabel && (TakesText(f) || f.HoldsState());
}

std::string IdText(int id) { return std::to_string(id); }

// What a user can leave in a number field: nothing, or a number of the field's kind.
bool IsNumberFor(const DialogField& field, const std::string& value) {
  const std::string text = StrippedText(value);
  if (text.empty()) return true;
  const char* end = text.data() + text.size();
  const bool integer =
      field.kind == FieldKind::kIntegerEdit || field.kind == FieldKind::kIntegerSpin;
  int whole = 0;
  double real = 0.0;
  const auto result =
      integer ? std::from_chars(text.data(), end, whole) : std::from_chars(text.data(), end, real);
  return result.ec == std::errc() && result.ptr == end;
}

std::string RealText(const DialogField* field, double value) {
  return FieldRealText(value, field != nullptr ? field->format : std::string());
}

// A spin field cannot show a value outside its range.
double Clamped(const DialogField* field, double value) {
  const bool spin = field != nullptr &&
                    (field->kind == FieldKind::kIntegerSpin || field->kind == FieldKind::kRealSpin);
  if (!spin || !field->range) return value;
  return std::clamp(value, field->range->low, field->range->high);
}

std::string LimitedText(const DialogField* field, std::string_view text) {
  text = Trimmed(text);
  if (field != nullptr && field->length > 0 &&
      text.size() > static_cast<std::size_t>(field->length)) {
    text = text.substr(0, static_cast<std::size_t>(field->length));
  }
  return std::string(text);
}

}  // namespace

void ScriptedToolkit::Problem(std::string_view operation, const std::string& what) {
  std::string line =
      "dialog " + IdText(currentDialog_) + ": " + std::string(operation) + ": " + what;
  if (echo_) std::fprintf(stderr, "%s\n", line.c_str());
  resourceProblems_.push_back(std::move(line));
}

bool ScriptedToolkit::Allowed(int id, std::string_view operation, FieldTest fits,
                              const FieldResource*& field) {
  field = nullptr;
  auto dialog = dialogs_state_.find(currentDialog_);
  if (dialog == dialogs_state_.end() || !dialog->second.loaded) {
    Problem(operation, "no dialog is loaded");
    return false;
  }
  const DialogResource* resource = dialog->second.resource;
  if (resource == nullptr) return true;
  field = resource->Field(id);
  if (field == nullptr) {
    Problem(operation, "no field " + IdText(id));
    return false;
  }
  if (!fits(*field)) {
    Problem(operation, "field " + IdText(id) + " is a " + std::string(FieldKindName(field->kind)));
    field = nullptr;
    return false;
  }
  return true;
}

bool ScriptedToolkit::AllowedCell(int grid, int column, int row, std::string_view operation,
                                  FieldTest fits, const FieldResource*& columnField) {
  columnField = nullptr;
  const FieldResource* field = nullptr;
  if (!Allowed(grid, operation, IsGrid, field)) return false;
  if (field == nullptr) return true;
  if (row < 1 || row > GridOf(grid).rows) {
    Problem(operation, "grid " + IdText(grid) + " has no row " + IdText(row));
    return false;
  }
  if (column == 0) return true;
  const GridLayout& layout = *field->grid;
  if (column < 1 || column > layout.columns) {
    Problem(operation, "grid " + IdText(grid) + " has no column " + IdText(column));
    return false;
  }
  const DialogResource* columns = Resource(layout.columnDialog);
  if (columns == nullptr || static_cast<int>(columns->fields.size()) < column) {
    Problem(operation, "grid " + IdText(grid) + " lacks its column dialog");
    return false;
  }
  columnField = &columns->fields[static_cast<std::size_t>(column - 1)];
  if (!fits(*columnField)) {
    Problem(operation, "column " + IdText(column) + " of grid " + IdText(grid) + " is a " +
                           std::string(FieldKindName(columnField->kind)));
    return false;
  }
  return true;
}

void ScriptedToolkit::AddDialogResources(std::string_view text, std::string_view name) {
  std::vector<DialogResource> dialogs;
  std::string error;
  if (!ReadDialogResources(text, name, dialogs, error)) resourceProblems_.push_back(error);
  for (DialogResource& dialog : dialogs) ownResources_.push_front(std::move(dialog));
}

const DialogResource* ScriptedToolkit::Resource(int dialog) const {
  for (const DialogResource& resource : ownResources_) {
    if (resource.id == dialog) return &resource;
  }
  return FindDialogResource(dialog);
}

void ScriptedToolkit::InitialValues(const DialogResource& resource) {
  for (const FieldResource& field : resource.fields) {
    if (field.checked) Field(field.id) = *field.checked != 0 ? "1" : "0";
    if (field.menuSelected > 0) Field(field.id) = field.menu[field.menuSelected - 1];
    if (field.grid) {
      Grid& grid = GridOf(field.id);
      grid.rows = field.grid->rows;
      for (std::size_t row = 0; row < field.grid->rowLabels.size(); ++row) {
        grid.labels[static_cast<int>(row) + 1] = field.grid->rowLabels[row];
      }
    }
  }
}

void ScriptedToolkit::WDialogLoad(int dialog) {
  currentDialog_ = dialog;
  Dialog& state = dialogs_state_[dialog] = Dialog{};
  state.loaded = true;
  state.resource = Resource(dialog);
  if (state.resource == nullptr) {
    Problem("WDialogLoad", "no resource");
  } else {
    InitialValues(*state.resource);
  }
}

void ScriptedToolkit::WDialogSelect(int dialog) {
  currentDialog_ = dialog;
  auto state = dialogs_state_.find(dialog);
  if (state == dialogs_state_.end() || !state->second.loaded)
    Problem("WDialogSelect", "not loaded");
}

// A value the user gives must be one the field on screen takes.
void ScriptedToolkit::CheckAnswer(const FieldResource& field, const std::string& value) {
  const std::string where = "field " + IdText(field.id);
  if (field.HoldsState() && value != "0" && value != "1") {
    Problem("answer", where + " takes 0 or 1, not \"" + value + "\"");
  } else if (field.HoldsNumber() && !IsNumberFor(field, value)) {
    Problem("answer", where + " takes a number, not \"" + value + "\"");
  } else if (field.HoldsNumber() && field.range &&
             (TextToReal(value) < field.range->low || TextToReal(value) > field.range->high)) {
    Problem("answer", where + " takes " + RealText(nullptr, field.range->low) + " to " +
                          RealText(nullptr, field.range->high) + ", not " + value);
  } else if (field.length > 0 && value.size() > static_cast<std::size_t>(field.length)) {
    Problem("answer", where + " holds " + IdText(field.length) + " characters");
  } else if (field.kind == FieldKind::kMenu &&
             std::find(field.menu.begin(), field.menu.end(), value) == field.menu.end()) {
    Problem("answer", where + " has no entry \"" + value + "\"");
  }
}

void ScriptedToolkit::TakeAnswer(const DialogAnswer& answer) {
  for (const auto& [id, value] : answer.fields) {
    const FieldResource* field = nullptr;
    if (!Allowed(id, "answer", TakesInput, field)) continue;
    if (field != nullptr) CheckAnswer(*field, value);
    if (field != nullptr && field->kind == FieldKind::kRadioButton && value == "1") {
      PutState(field, id, 1);
    } else {
      Field(id) = value;
    }
  }
  for (const auto& [cell, value] : answer.cells) {
    const auto [grid, column, row] = cell;
    const FieldResource* field = nullptr;
    if (AllowedCell(grid, column, row, "answer", TakesInput, field))
      Cell(grid, column, row) = value;
  }
  for (const int button : answer.buttons) {
    const FieldResource* field = nullptr;
    Allowed(button, "answer", IsButton, field);
  }
}

void ScriptedToolkit::WDialogShow(int, int, int, int type) {
  dialogsShown_.push_back(currentDialog_);
  DialogAnswer answer;
  answer.buttons = {kIdCancel};  // a dialog the script did not foresee is cancelled
  const bool scripted = !dialogs_.empty() &&
                        (dialogs_.front().dialog == currentDialog_ || dialogs_.front().dialog == 0);
  if (scripted) {
    answer = std::move(dialogs_.front());
    dialogs_.pop_front();
    TakeAnswer(answer);
  }
  if (answer.buttons.empty()) answer.buttons = {kIdCancel};
  if (type == kDialogModeless) {
    // The dialog's own loop takes the presses from the queue, before anything queued later.
    for (auto it = answer.buttons.rbegin(); it != answer.buttons.rend(); ++it) {
      messages_.push_front(Message{kPushButton, *it});
    }
  } else {
    lastExitButton_ = answer.buttons.back();
    lastAccepted_ = lastExitButton_ == kIdOk ? 1 : 0;
  }
}

void ScriptedToolkit::WDialogUnload() {
  auto state = dialogs_state_.find(currentDialog_);
  if (state != dialogs_state_.end()) state->second.loaded = false;
  currentDialog_ = 0;
}

void ScriptedToolkit::WDialogPutString(int id, std::string_view text) {
  const FieldResource* field = nullptr;
  if (Allowed(id, "WDialogPutString", TakesText, field)) Field(id) = LimitedText(field, text);
}

std::string ScriptedToolkit::WDialogGetString(int id) {
  const FieldResource* field = nullptr;
  return Allowed(id, "WDialogGetString", TakesText, field) ? Field(id) : std::string();
}

void ScriptedToolkit::WDialogPutReal(int id, double value) {
  const FieldResource* field = nullptr;
  if (Allowed(id, "WDialogPutReal", TakesNumber, field)) {
    Field(id) = RealText(field, Clamped(field, value));
  }
}

double ScriptedToolkit::WDialogGetReal(int id) {
  const FieldResource* field = nullptr;
  return Allowed(id, "WDialogGetReal", TakesNumber, field) ? TextToReal(Field(id)) : 0.0;
}

void ScriptedToolkit::WDialogPutInteger(int id, int value) {
  const FieldResource* field = nullptr;
  if (!Allowed(id, "WDialogPutInteger", TakesInteger, field)) return;
  if (field == nullptr || field->kind != FieldKind::kMenu) {
    Field(id) = std::to_string(static_cast<int>(Clamped(field, value)));
  } else if (value >= 1 && value <= static_cast<int>(field->menu.size())) {
    Field(id) = field->menu[static_cast<std::size_t>(value - 1)];
  } else {
    Problem("WDialogPutInteger", "menu " + IdText(id) + " has no entry " + IdText(value));
  }
}

int ScriptedToolkit::WDialogGetInteger(int id) {
  const FieldResource* field = nullptr;
  if (!Allowed(id, "WDialogGetInteger", TakesInteger, field)) return 0;
  if (field == nullptr || field->kind != FieldKind::kMenu) return TextToInteger(Field(id));
  // A menu gives the number of its entry, 0 with none chosen.
  const auto entry = std::find(field->menu.begin(), field->menu.end(), Field(id));
  return entry == field->menu.end() ? 0 : static_cast<int>(entry - field->menu.begin()) + 1;
}

// Turning a radio button on turns the others of its group off.
void ScriptedToolkit::PutState(const FieldResource* field, int id, int state) {
  const bool radio = field != nullptr && field->kind == FieldKind::kRadioButton && state != 0;
  if (radio) {
    for (const FieldResource& other : dialogs_state_[currentDialog_].resource->fields) {
      if (other.radioGroup == field->radioGroup) Field(other.id) = "0";
    }
  }
  Field(id) = state != 0 ? "1" : "0";
}

void ScriptedToolkit::WDialogPutCheckBox(int id, int state) {
  const FieldResource* field = nullptr;
  if (Allowed(id, "WDialogPutCheckBox", TakesState, field)) PutState(field, id, state);
}

int ScriptedToolkit::WDialogGetCheckBox(int id) {
  const FieldResource* field = nullptr;
  return Allowed(id, "WDialogGetCheckBox", TakesState, field) && TextToInteger(Field(id)) != 0;
}

void ScriptedToolkit::WDialogPutRadioButton(int id) {
  const FieldResource* field = nullptr;
  if (Allowed(id, "WDialogPutRadioButton", IsRadioButton, field)) PutState(field, id, 1);
}

int ScriptedToolkit::WDialogGetRadioButton(int firstField, int lastField) {
  const FieldResource* first = nullptr;
  const FieldResource* last = nullptr;
  if (!Allowed(firstField, "WDialogGetRadioButton", IsRadioButton, first) ||
      !Allowed(lastField, "WDialogGetRadioButton", IsRadioButton, last)) {
    return 0;
  }
  if (first != nullptr && first->radioGroup != last->radioGroup) {
    Problem("WDialogGetRadioButton",
            "fields " + IdText(firstField) + " and " + IdText(lastField) + " are two groups");
    return 0;
  }
  // Without a resource to tell the group, the last button switched on wins.
  int index = 0;
  for (int id = firstField; id <= lastField; ++id) {
    if (TextToInteger(Field(id)) != 0) index = id - firstField + 1;
  }
  return index;
}

void ScriptedToolkit::WDialogFieldState(int id, int state) {
  const FieldResource* field = nullptr;
  if (Allowed(id, "WDialogFieldState", AnyField, field)) {
    dialogs_state_[currentDialog_].fieldStates[id] = state;
  }
}

void ScriptedToolkit::WDialogFieldOptions(int id, int, int) {
  const FieldResource* field = nullptr;
  Allowed(id, "WDialogFieldOptions", AnyField, field);
}

void ScriptedToolkit::WDialogClearField(int id) {
  const FieldResource* field = nullptr;
  if (Allowed(id, "WDialogClearField", AnyField, field)) Field(id).clear();
}

void ScriptedToolkit::WGridRows(int grid, int count) {
  const FieldResource* field = nullptr;
  if (Allowed(grid, "WGridRows", IsGrid, field)) GridOf(grid).rows = std::max(0, count);
}

void ScriptedToolkit::WGridColumns(int grid, int count) {
  const FieldResource* field = nullptr;
  if (!Allowed(grid, "WGridColumns", IsGrid, field) || field == nullptr) return;
  if (count < 0 || count > field->grid->columns) {
    Problem("WGridColumns", "grid " + IdText(grid) + " has no " + IdText(count) + " columns");
  }
}

void ScriptedToolkit::WGridLabelRow(int grid, int row, std::string_view text) {
  const FieldResource* column = nullptr;
  if (AllowedCell(grid, 0, row, "WGridLabelRow", AnyField, column)) {
    GridOf(grid).labels[row] = std::string(text);
  }
}

void ScriptedToolkit::WGridPutCellString(int grid, int column, int row, std::string_view text) {
  const FieldResource* field = nullptr;
  if (AllowedCell(grid, column, row, "WGridPutCellString", TakesText, field)) {
    Cell(grid, column, row) = LimitedText(field, text);
  }
}

std::string ScriptedToolkit::WGridGetCellString(int grid, int column, int row) {
  const FieldResource* field = nullptr;
  if (!AllowedCell(grid, column, row, "WGridGetCellString", TakesText, field)) return {};
  return Cell(grid, column, row);
}

void ScriptedToolkit::WGridPutCellReal(int grid, int column, int row, double value) {
  const FieldResource* field = nullptr;
  if (AllowedCell(grid, column, row, "WGridPutCellReal", TakesNumber, field)) {
    Cell(grid, column, row) = RealText(field, value);
  }
}

double ScriptedToolkit::WGridGetCellReal(int grid, int column, int row) {
  const FieldResource* field = nullptr;
  if (!AllowedCell(grid, column, row, "WGridGetCellReal", TakesNumber, field)) return 0.0;
  return TextToReal(Cell(grid, column, row));
}

void ScriptedToolkit::WGridPutCellInteger(int grid, int column, int row, int value) {
  const FieldResource* field = nullptr;
  if (AllowedCell(grid, column, row, "WGridPutCellInteger", TakesNumber, field)) {
    Cell(grid, column, row) = std::to_string(value);
  }
}

int ScriptedToolkit::WGridGetCellInteger(int grid, int column, int row) {
  const FieldResource* field = nullptr;
  if (!AllowedCell(grid, column, row, "WGridGetCellInteger", TakesNumber, field)) return 0;
  return TextToInteger(Cell(grid, column, row));
}

void ScriptedToolkit::WGridPutCellCheckBox(int grid, int column, int row, int state) {
  const FieldResource* field = nullptr;
  if (AllowedCell(grid, column, row, "WGridPutCellCheckBox", TakesState, field)) {
    Cell(grid, column, row) = state != 0 ? "1" : "0";
  }
}

int ScriptedToolkit::WGridGetCheckBox(int grid, int column, int row) {
  const FieldResource* field = nullptr;
  if (!AllowedCell(grid, column, row, "WGridGetCheckBox", TakesState, field)) return 0;
  return TextToInteger(Cell(grid, column, row)) != 0;
}

void ScriptedToolkit::WGridColourRow(int grid, int row, int, int) {
  const FieldResource* column = nullptr;
  AllowedCell(grid, 0, row, "WGridColourRow", AnyField, column);
}

void ScriptedToolkit::WGridClearSelection(int grid) {
  const FieldResource* field = nullptr;
  Allowed(grid, "WGridClearSelection", IsGrid, field);
}

void ScriptedToolkit::WGridInsertRows(int grid, int row, int count) {
  const FieldResource* field = nullptr;
  if (!Allowed(grid, "WGridInsertRows", IsGrid, field)) return;
  Grid& g = GridOf(grid);
  std::map<std::pair<int, int>, std::string> moved;
  for (auto& [key, value] : g.cells) {
    auto [column, r] = key;
    moved[{column, r >= row ? r + count : r}] = std::move(value);
  }
  g.cells = std::move(moved);
  g.rows += count;
}

void ScriptedToolkit::WGridDeleteRows(int grid, int row, int count) {
  const FieldResource* field = nullptr;
  if (!Allowed(grid, "WGridDeleteRows", IsGrid, field)) return;
  Grid& g = GridOf(grid);
  std::map<std::pair<int, int>, std::string> kept;
  for (auto& [key, value] : g.cells) {
    auto [column, r] = key;
    if (r >= row && r < row + count) continue;
    kept[{column, r >= row + count ? r - count : r}] = std::move(value);
  }
  g.cells = std::move(kept);
  g.rows = std::max(0, g.rows - count);
}

int ScriptedToolkit::WInfoGrid(int grid, int) {
  const FieldResource* field = nullptr;
  return Allowed(grid, "WInfoGrid", IsGrid, field) ? GridOf(grid).rows : 0;
}

}  // namespace kaldena
