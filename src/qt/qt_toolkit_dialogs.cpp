// The toolkit's dialog and grid operations, on the resource-built dialogs.
#include <QApplication>

#include "qt/qt_dialogs.h"
#include "qt/qt_toolkit.h"

namespace kaldena {

void QtToolkit::WDialogParent(int window) { dialogs_->SetParent(Window(window)); }

void QtToolkit::WDialogLoad(int dialog) {
  if (!dialogs_->Load(dialog)) lastError_ = kErrorOsCommand;
}

void QtToolkit::WDialogShow(int x, int y, int initialField, int type) {
  const int exit = dialogs_->Show(x, y, initialField, type);
  if (type == kDialogModal) {
    lastExitButton_ = exit;
    lastAccepted_ = exit == kIdOk ? 1 : 0;
  }
}

void QtToolkit::WDialogHide() { dialogs_->Hide(); }
void QtToolkit::WDialogUnload() { dialogs_->Unload(); }
void QtToolkit::WDialogSelect(int dialog) { dialogs_->Select(dialog); }

void QtToolkit::WDialogPutString(int field, std::string_view text) {
  dialogs_->PutString(field, text);
}
std::string QtToolkit::WDialogGetString(int field) { return dialogs_->GetString(field); }
void QtToolkit::WDialogPutReal(int field, double value) { dialogs_->PutReal(field, value); }
double QtToolkit::WDialogGetReal(int field) { return dialogs_->GetReal(field); }
void QtToolkit::WDialogPutInteger(int field, int value) { dialogs_->PutInteger(field, value); }
int QtToolkit::WDialogGetInteger(int field) { return dialogs_->GetInteger(field); }
void QtToolkit::WDialogPutCheckBox(int field, int state) { dialogs_->PutCheckBox(field, state); }
int QtToolkit::WDialogGetCheckBox(int field) { return dialogs_->GetCheckBox(field); }
void QtToolkit::WDialogPutRadioButton(int field) { dialogs_->PutRadioButton(field); }
int QtToolkit::WDialogGetRadioButton(int firstField, int lastField) {
  return dialogs_->GetRadioButton(firstField, lastField);
}
void QtToolkit::WDialogFieldState(int field, int state) { dialogs_->FieldState(field, state); }
// Changed fields always send their message; WMessageEnable decides whether it is taken.
void QtToolkit::WDialogFieldOptions(int, int, int) {}
void QtToolkit::WDialogClearField(int field) { dialogs_->ClearField(field); }

void QtToolkit::WGridRows(int grid, int count) { dialogs_->GridRows(grid, count); }
void QtToolkit::WGridColumns(int grid, int count) { dialogs_->GridColumns(grid, count); }
void QtToolkit::WGridLabelRow(int grid, int row, std::string_view text) {
  dialogs_->GridLabelRow(grid, row, text);
}
void QtToolkit::WGridPutCellString(int grid, int column, int row, std::string_view text) {
  dialogs_->PutCell(grid, column, row, text);
}
std::string QtToolkit::WGridGetCellString(int grid, int column, int row) {
  return dialogs_->GetCell(grid, column, row);
}
void QtToolkit::WGridPutCellReal(int grid, int column, int row, double value) {
  dialogs_->PutCellReal(grid, column, row, value);
}
double QtToolkit::WGridGetCellReal(int grid, int column, int row) {
  return std::strtod(dialogs_->GetCell(grid, column, row).c_str(), nullptr);
}
void QtToolkit::WGridPutCellInteger(int grid, int column, int row, int value) {
  dialogs_->PutCell(grid, column, row, std::to_string(value));
}
int QtToolkit::WGridGetCellInteger(int grid, int column, int row) {
  return std::atoi(dialogs_->GetCell(grid, column, row).c_str());
}
void QtToolkit::WGridPutCellCheckBox(int grid, int column, int row, int state) {
  dialogs_->PutCellCheckBox(grid, column, row, state);
}
int QtToolkit::WGridGetCheckBox(int grid, int column, int row) {
  return dialogs_->GetCellCheckBox(grid, column, row);
}
void QtToolkit::WGridColourRow(int grid, int row, int foreground, int background) {
  dialogs_->GridColourRow(grid, row, foreground, background);
}
void QtToolkit::WGridClearSelection(int grid) { dialogs_->GridClearSelection(grid); }
void QtToolkit::WGridInsertRows(int grid, int row, int count) {
  dialogs_->GridInsertRows(grid, row, count);
}
void QtToolkit::WGridDeleteRows(int grid, int row, int count) {
  dialogs_->GridDeleteRows(grid, row, count);
}
int QtToolkit::WInfoGrid(int grid, int) { return dialogs_->GridRowsInUse(grid); }

}  // namespace kaldena
