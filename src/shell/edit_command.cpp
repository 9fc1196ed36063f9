// The rule of an edit command, the codeword rule and the checks of typed values.
#include "shell/edit_command.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "shell/edit_history.h"
#include "shell/project_lifecycle.h"
#include "shell/shell_services.h"
#include "store/codeword.h"
#include "store/record_catalogue.h"
#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {
namespace {

// Keys whose values are codewords.
constexpr std::string_view kCodewordKeys[] = {"CZET", "CAXI", "CWAV", "CBKG", "CBGS",
                                              "CSCA", "CCEL", "CASY", "CHWT", "CPKS",
                                              "CSTS", "CXYZ", "CBET"};

// A number as a box shows it, in up to ten significant digits.
std::string NumberText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.10g", value);
  return text;
}

// The records of one key after another, in the order the keys first come.
std::vector<std::vector<Record>> GroupByKey(std::span<const Record> records) {
  std::vector<std::vector<Record>> groups;
  for (const Record& record : records) {
    const std::string_view key = std::string_view(record).substr(0, 4);
    auto same = [key](const std::vector<Record>& g) { return g.front().compare(0, 4, key) == 0; };
    auto group = std::find_if(groups.begin(), groups.end(), same);
    if (group == groups.end()) {
      groups.push_back({record});
    } else {
      group->push_back(record);
    }
  }
  return groups;
}

// A grid cell as a box names it: its row and its column's heading.
std::string CellWhere(const DialogField* column, int row) {
  std::string where = "row " + std::to_string(row);
  if (column != nullptr && !column->caption.empty()) where += ", " + column->caption;
  return where;
}

}  // namespace

bool ReadParameterFile(ShellState& state, Toolkit& toolkit,
                       const std::function<void(RecordStore&)>& read) {
  ShellReporter reporter(state, toolkit);
  RecordStore store(reporter);
  const std::string file = InProjectDir(state, state.parameterFileName);
  const bool opened = store.jReadRecFile(file) >= 1;
  if (opened) read(store);
  store.jCloseRec();
  if (!opened) LogLine(state, toolkit, " Error opening parfile " + file);
  return opened;
}

bool WriteParameterRecords(ShellState& state, Toolkit& toolkit, std::span<const Record> records,
                           std::string_view stepName, std::span<const std::string_view> removed) {
  ShellReporter reporter(state, toolkit);
  RecordStore store(reporter);
  const std::string file = InProjectDir(state, state.parameterFileName);
  UndoStep step(state, stepName);
  bool written = true;
  for (const std::vector<Record>& group : GroupByKey(records)) {
    if (store.jUpdateRec(file, group) == 0) written = store.jAddRec(file, group) > 0 && written;
  }
  for (const std::string_view key : removed) store.jDeleteRec(file, key);
  step.Finish(state, toolkit);
  return written;
}

float CodewordNumbering::Take(bool refine, double code) {
  if (!refine) return 0.0f;
  if (code != 0.0) return static_cast<float>(code);
  return Codeword::Group(++lastGroup_, 1.0f).Value();
}

int HighestCodewordGroup(ShellState& state, Toolkit& toolkit) {
  int highest = 0;
  ReadParameterFile(state, toolkit, [&](RecordStore& store) {
    for (const std::string_view key : kCodewordKeys) {
      for (const std::string& data : FindRecords(store, key)) {
        float codes[6] = {};
        Read(data, "(6f10.0)", codes[0], codes[1], codes[2], codes[3], codes[4], codes[5]);
        for (const float code : codes) highest = std::max(highest, Codeword(code).GroupNumber());
      }
    }
  });
  return highest;
}

std::string FieldName(const DialogResource& resource, int field) {
  std::string name;
  for (const DialogField& f : resource.fields) {
    if (f.id == field) return f.caption.empty() || f.HoldsNumber() ? name : f.caption;
    if (f.kind == FieldKind::kLabel && f.IsStatic()) name = f.caption;
    if (!f.caption.empty() && f.kind == FieldKind::kGroupBox) name = f.caption;
  }
  return name;
}

DialogValues::DialogValues(Toolkit& toolkit, int dialog)
    : toolkit_(toolkit), resource_(FindDialogResource(dialog)) {}

double DialogValues::Real(int field) {
  const double value = toolkit_.WDialogGetReal(field);
  CheckField(field, value);
  return value;
}

int DialogValues::Integer(int field) {
  const int value = toolkit_.WDialogGetInteger(field);
  CheckField(field, value);
  return value;
}

std::string DialogValues::Text(int field) {
  std::string text = toolkit_.WDialogGetString(field);
  if (resource_ != nullptr) CheckText(resource_->Field(field), text, FieldName(*resource_, field));
  return text;
}

void DialogValues::CheckField(int field, double value) {
  if (resource_ != nullptr)
    CheckNumber(resource_->Field(field), value, FieldName(*resource_, field));
}

const DialogField* DialogValues::Column(int grid, int column) const {
  const DialogField* field = resource_ != nullptr ? resource_->Field(grid) : nullptr;
  if (field == nullptr || !field->grid) return nullptr;
  const DialogResource* columns = FindDialogResource(field->grid->columnDialog);
  if (columns == nullptr || column < 1 || column > static_cast<int>(columns->fields.size())) {
    return nullptr;
  }
  return &columns->fields[static_cast<std::size_t>(column - 1)];
}

double DialogValues::CellReal(int grid, int column, int row) {
  const double value = toolkit_.WGridGetCellReal(grid, column, row);
  const DialogField* field = Column(grid, column);
  CheckNumber(field, value, CellWhere(field, row));
  return value;
}

int DialogValues::CellInteger(int grid, int column, int row) {
  const int value = toolkit_.WGridGetCellInteger(grid, column, row);
  const DialogField* field = Column(grid, column);
  CheckNumber(field, value, CellWhere(field, row));
  return value;
}

std::string DialogValues::CellText(int grid, int column, int row) {
  std::string text = toolkit_.WGridGetCellString(grid, column, row);
  const DialogField* field = Column(grid, column);
  CheckText(field, text, CellWhere(field, row));
  return text;
}

void DialogValues::CheckNumber(const DialogField* field, double value, std::string_view where) {
  if (field == nullptr || !problem_.empty()) return;
  const std::string name = std::string(where) + ": " + NumberText(value);
  if (!std::isfinite(value)) {
    problem_ = name + " is not a number";
  } else if (field->range && (value < field->range->low || value > field->range->high)) {
    problem_ = name + " is outside " + NumberText(field->range->low) + " to " +
               NumberText(field->range->high);
  } else if (!field->format.empty() &&
             FormatLine(field->format, value).find('*') != std::string::npos) {
    problem_ = name + " does not fit the format " + field->format;
  }
}

void DialogValues::CheckText(const DialogField* field, const std::string& text,
                             std::string_view where) {
  if (field == nullptr || !problem_.empty() || field->length <= 0) return;
  if (text.size() > static_cast<std::size_t>(field->length)) {
    problem_ = std::string(where) + ": \"" + text + "\" is longer than " +
               std::to_string(field->length) + " characters";
  }
}

void DialogValues::Require(std::string problem) {
  if (problem_.empty()) problem_ = std::move(problem);
}

bool DialogValues::ReportBad() {
  if (problem_.empty()) return false;
  ShowMessage(toolkit_, "Error ", problem_);
  problem_.clear();
  return true;
}

EditCommand::EditCommand(ShellState& state, Toolkit& toolkit, std::string stepName)
    : state_(state), toolkit_(toolkit), stepName_(std::move(stepName)) {}

bool EditCommand::Read(const std::function<void(RecordStore&)>& read) {
  return ReadParameterFile(state_, toolkit_, read);
}

void EditCommand::Load(int dialog) {
  dialog_ = dialog;
  toolkit_.WDialogParent(kMainWindow);
  toolkit_.WDialogLoad(dialog);
}

int EditCommand::Run(const std::function<int(int button)>& pressed,
                     const std::function<void(DialogValues&)>& take) {
  toolkit_.WDialogShow(-1, -1, 0, kDialogModeless);
  int result = kEditCancelled;
  for (;;) {
    const int button = NextDialogButton(toolkit_);
    if (button == 0 || button == kIdCancel) {
      result = kEditCancelled;
      break;
    }
    result = button == kIdOk ? kEditAccepted : pressed ? pressed(button) : -1;
    toolkit_.WDialogSelect(dialog_);
    if (result < 0) continue;
    DialogValues values(toolkit_, dialog_);
    take(values);
    if (!values.ReportBad()) break;
    result = kEditCancelled;
  }
  toolkit_.WDialogUnload();
  return result;
}

bool EditCommand::Write(std::span<const Record> records,
                        std::span<const std::string_view> removed) {
  return WriteParameterRecords(state_, toolkit_, records, stepName_, removed);
}

bool RunSubDialog(Toolkit& toolkit, int dialog, int parent,
                  const std::function<void(DialogValues&)>& take) {
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  bool accepted = false;
  for (;;) {
    const int button = NextDialogButton(toolkit);
    if (button == 0 || button == kIdCancel) break;
    if (button != kIdOk) continue;
    DialogValues values(toolkit, dialog);
    take(values);
    accepted = !values.ReportBad();
    if (accepted) break;
  }
  toolkit.WDialogUnload();
  toolkit.WDialogSelect(parent);
  return accepted;
}

}  // namespace kaldena
