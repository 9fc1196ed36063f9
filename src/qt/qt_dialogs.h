// Dialogs on Qt, built from the dialog resources: each field at its place with its class,
// caption and companion data (check states, ranges, lengths, formats, grids, drop-down
// lists), so that the program only puts and gets values. Push buttons and changed fields post
// messages; a modal dialog runs the event loop until an exit button leaves it.
#pragma once

#include <QDialog>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "toolkit/dialog_resources.h"
#include "toolkit/toolkit.h"

class QTableWidget;

namespace kaldena {

using MessageSink = std::function<void(const Message&)>;

class QtDialogs {
 public:
  // `runUntil` runs the event loop until its condition holds.
  QtDialogs(MessageSink sink, std::function<void(const std::function<bool()>&)> runUntil);
  ~QtDialogs();

  void SetParent(QWidget* parent) { parent_ = parent; }
  // Loads and selects a dialog; false for an id without a resource.
  bool Load(int dialog);
  // Modal (type 1): returns the exit button that left it (2 when its window was closed).
  // Modeless: returns 0 at once, and the buttons come as messages.
  int Show(int x, int y, int initialField, int type);
  void Hide();
  void Unload();
  void UnloadAll();
  void Select(int dialog);
  // The dialog's window, for tests; nullptr when none is selected.
  QDialog* Current() const;
  // The widget of a field of the selected dialog, for tests; nullptr for an unknown id.
  QWidget* FieldWidget(int field) const;

  void PutString(int field, std::string_view text);
  std::string GetString(int field) const;
  void PutReal(int field, double value);
  double GetReal(int field) const;
  void PutInteger(int field, int value);
  int GetInteger(int field) const;
  void PutCheckBox(int field, int state);
  int GetCheckBox(int field) const;
  void PutRadioButton(int field);
  int GetRadioButton(int firstField, int lastField) const;
  void FieldState(int field, int state);
  void ClearField(int field);

  void GridRows(int grid, int count);
  void GridColumns(int grid, int count);
  void GridLabelRow(int grid, int row, std::string_view text);
  void PutCell(int grid, int column, int row, std::string_view text);
  void PutCellReal(int grid, int column, int row, double value);
  void PutCellCheckBox(int grid, int column, int row, int state);
  std::string GetCell(int grid, int column, int row) const;
  int GetCellCheckBox(int grid, int column, int row) const;
  void GridColourRow(int grid, int row, int foreground, int background);
  void GridClearSelection(int grid);
  void GridInsertRows(int grid, int row, int count);
  void GridDeleteRows(int grid, int row, int count);
  int GridRowsInUse(int grid) const;

 private:
  struct Loaded;

  Loaded* Selected() const;
  const DialogField* Field(int field) const;
  QTableWidget* Grid(int grid) const;
  // The grid's column as a field of its column dialog; nullptr when it has none.
  const DialogField* ColumnField(int grid, int column) const;
  void Build(Loaded& dialog);
  QWidget* MakeField(Loaded& dialog, const DialogField& field);

  MessageSink sink_;
  std::function<void(const std::function<bool()>&)> runUntil_;
  QWidget* parent_ = nullptr;
  std::map<int, std::unique_ptr<Loaded>> loaded_;
  int selected_ = 0;
};

}  // namespace kaldena
