// What every project edit dialog shares: the rule of an edit command (read the parameter file,
// run the dialog, write its records anew), the codeword rule of its refine check boxes, and the
// check of every typed value against the range and format of its field in the dialog's
// resource before anything is written.
//
// An edit dialog's routine goes:
//
//   EditCommand edit(state, toolkit, "Edit controls");
//   if (!edit.Read([&](RecordStore& store) { ... read JOBT and the dialog's records ... })) return;
//   edit.Load(kControlsDialog);  ... put the values ...
//   int result = edit.Run(pressed, take);   // 0 Cancel, 1 OK, 2 (Files) update and run
//   if (result != 0) edit.Write(records);
//
// Write replaces the records' keys in the parameter file, adds those it lacks, and makes the
// change one step of the undo history (edit_history.h).
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "shell/shell_state.h"
#include "store/record_store.h"
#include "toolkit/dialog_resources.h"
#include "toolkit/toolkit.h"

namespace kaldena {

// Result of an edit dialog.
inline constexpr int kEditCancelled = 0;
inline constexpr int kEditAccepted = 1;
inline constexpr int kEditAndRun = 2;  // Files: "Compare", "Refine" or "Calculate"

// Loads the project's parameter file and hands it to `read`. When it does not open, logs
// " Error opening parfile " and the name and returns false.
bool ReadParameterFile(ShellState& state, Toolkit& toolkit,
                       const std::function<void(RecordStore&)>& read);

// Replaces all lines of each key of `records` in the parameter file by that key's records,
// where the key's first line stood; a key the file lacks is added at its end. The change is
// the undo step `stepName`; every line of the keys in `removed` goes. False when the file could
// not be written (the store reported it).
bool WriteParameterRecords(ShellState& state, Toolkit& toolkit, std::span<const Record> records,
                           std::string_view stepName,
                           std::span<const std::string_view> removed = {});

// The codeword rule: a check box says refine or fix, the code field beside it holds the code.
// Off writes 0; on writes the code that stands in the field, or where that is 0 a new code: a
// group of its own, numbered on from the highest group that the parameter file uses.
class CodewordNumbering {
 public:
  explicit CodewordNumbering(int highestGroup = 0) : lastGroup_(highestGroup) {}
  float Take(bool refine, double code);
  int LastGroup() const { return lastGroup_; }

 private:
  int lastGroup_;
};

// The highest group number of the codewords in the parameter file (CZET, CXYZ, ...); 0 when
// none is grouped. Reads its own copy of the file, so any store may be read before or after.
int HighestCodewordGroup(ShellState& state, Toolkit& toolkit);

// Reads the typed values of the shown dialog (or of a grid's cells) and checks each against
// its field's range and format in the resource: a value outside [Ranges], or too wide for
// its [Formats] (it would be written as asterisks), is bad. The first bad value is kept,
// naming the field by its caption or the label before it, and the grid row.
class DialogValues {
 public:
  DialogValues(Toolkit& toolkit, int dialog);

  double Real(int field);
  int Integer(int field);
  std::string Text(int field);
  double CellReal(int grid, int column, int row);
  int CellInteger(int grid, int column, int row);
  std::string CellText(int grid, int column, int row);

  // A check of the dialog's own: a non-empty text is a bad value, unless one came first.
  void Require(std::string problem);
  // Shows the box of the first bad value, title "Error ", and returns true when there was one.
  bool ReportBad();

 private:
  void CheckField(int field, double value);
  void CheckNumber(const DialogField* field, double value, std::string_view where);
  void CheckText(const DialogField* field, const std::string& text, std::string_view where);
  const DialogField* Column(int grid, int column) const;

  Toolkit& toolkit_;
  const DialogResource* resource_;
  std::string problem_;
};

// The name by which a box names a field: its caption, or that of the label before it.
std::string FieldName(const DialogResource& resource, int field);

// One edit command by the rule: read, run the dialog, write.
class EditCommand {
 public:
  EditCommand(ShellState& state, Toolkit& toolkit, std::string stepName);

  // Reads the parameter file (ReadParameterFile).
  bool Read(const std::function<void(RecordStore&)>& read);
  // Loads the dialog into the main window; put its values next.
  void Load(int dialog);
  // Shows the loaded dialog as type 3 and loops on its buttons. `pressed` handles every other
  // button (sub-dialogs, selections) and returns a result to leave with, or -1 to stay. On OK,
  // or on a result of 2, `take` reads the fields through a DialogValues; a bad value shows its
  // box and the dialog stays. Returns 0 Cancel, 1 OK, 2 update and run.
  int Run(const std::function<int(int button)>& pressed,
          const std::function<void(DialogValues&)>& take);
  // Writes the records (WriteParameterRecords) under the command's step name.
  bool Write(std::span<const Record> records, std::span<const std::string_view> removed = {});

 private:
  ShellState& state_;
  Toolkit& toolkit_;
  std::string stepName_;
  int dialog_ = 0;
};

// Runs a sub-dialog that is loaded with its values: loops to OK or Cancel, and on OK hands the
// fields to `take`, staying while a value is bad. Selects `parent` again afterwards. True on OK.
// `take` reads into a copy that the caller keeps only on true, as a bad value may come late.
bool RunSubDialog(Toolkit& toolkit, int dialog, int parent,
                  const std::function<void(DialogValues&)>& take);

}  // namespace kaldena
