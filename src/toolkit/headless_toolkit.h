// A toolkit without a display. Tests and the command-line tool queue what a user would do
// (messages, dialog answers, file selections, Yes or No) and read back what the program
// showed: log and text-window lines, status fields, menu states, boxes, file operations and
// the programs it would have started. File copies and deletions are real; programs are only
// recorded, never started. Dialogs are checked against their resources (dialog_resources.h):
// a dialog without one, a field that its resource lacks or of the wrong class, and a scripted
// answer that the dialog on screen would not take are recorded as problems, and the companion
// sections act on the values as on screen (formats, lengths, spin ranges, initial checks).
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "toolkit/dialog_resources.h"
#include "toolkit/recording_canvas.h"
#include "toolkit/toolkit.h"

namespace kaldena {

class ScriptedToolkit : public Toolkit {
 public:
  // What a dialog receives when it is shown: field values (as text; check boxes and radio
  // buttons "0" or "1") laid over those the program put, then the buttons pressed in order.
  // The last button should be an exit button (1 OK, 2 Cancel). Values and buttons must be
  // ones the user could give on screen.
  struct DialogAnswer {
    int dialog = 0;
    std::map<int, std::string> fields;
    std::vector<int> buttons{kIdOk};
  };

  struct Box {
    int buttons = 0;
    int icon = 0;
    std::string title;
    std::string text;
  };

  struct FileSelection {
    std::string filter;
    int flags = 0;
    std::string title;
    std::string offered;  // the name passed in
    std::string returned;
  };

  struct FileOperation {
    std::string kind;  // "copy" or "delete"
    std::string from;
    std::string to;
    bool ok = false;
  };

  struct EditLine {
    int window = 0;
    int line = 0;
    std::string text;
  };

  // With `echo` the log's lines go to standard output and boxes to standard error as they
  // come, which is what the command-line tool wants.
  explicit ScriptedToolkit(bool echo = false) : echo_(echo) {}

  // --- The script
  void QueueMessage(const Message& message) { messages_.push_back(message); }
  void QueueMenu(int item) { QueueMessage({kMenuSelect, item}); }
  void QueueKey(int key) { QueueMessage({kKeyDown, key}); }
  void QueueClose(int window = kMainWindow) { QueueMessage({kCloseRequest, 0, 0, 0, window}); }
  void QueueDialog(DialogAnswer answer) { dialogs_.push_back(std::move(answer)); }
  // The next file or directory selection returns this name ("" or "*..." is a Cancel).
  void QueueSelection(std::string name) { selections_.push_back(std::move(name)); }
  // The next Yes/No box is answered so; unanswered questions get No.
  void QueueAnswer(bool yes) { answers_.push_back(yes); }
  void QueueColour(std::optional<int> rgb) { colours_.push_back(rgb); }
  void SetArguments(std::vector<std::string> arguments) { arguments_ = std::move(arguments); }
  void SetScreen(int width, int height) { screenWidth_ = width, screenHeight_ = height; }
  // Programs by this name (first argument) fail to start with error 13.
  void FailProgram(std::string program) { failingPrograms_.insert(std::move(program)); }
  // Dialogs of a resource text, before the built-in ones of the same id; for tests of dialogs
  // that the program does not have. An error in the text is a problem (ResourceProblems).
  void AddDialogResources(std::string_view text, std::string_view name);
  // Fixes the clock; otherwise the system clock is read.
  void SetDateTime(const DateTime& when) { fixedTime_ = when; }

  // --- What happened
  // Lines put into text windows, in order.
  const std::vector<EditLine>& EditLines() const { return editLines_; }
  // The text of one text window, line by line as numbered (gaps blank).
  std::vector<std::string> WindowText(int window) const;
  std::string StatusField(int field) const;
  // Menu item state: enabled (kind 1) or checked (kind 2); nullopt when never set.
  std::optional<int> MenuState(int item, int kind) const;
  std::string MenuString(int item) const;
  const std::vector<Box>& Boxes() const { return boxes_; }
  const std::vector<FileSelection>& Selections() const { return selectionLog_; }
  const std::vector<FileOperation>& FileOperations() const { return fileOperations_; }
  const std::vector<std::vector<std::string>>& Commands() const { return commands_; }
  const std::vector<std::string>& DirectoryChanges() const { return directoryChanges_; }
  // Graphics calls as text ("move 1 2", "line 3 4", "text 5 6 abc", "colour Black", ...).
  const std::vector<std::string>& Drawing() const { return drawing_; }
  const std::vector<int>& DialogsShown() const { return dialogsShown_; }
  // What the plots drew on the window canvas since its last Clear; it is 1280 by 800 pixels
  // unless a test resizes it.
  RecordingCanvas& RecordedCanvas() { return windowCanvas_; }
  // Field values of a dialog as they stood when it was unloaded, or stand now.
  std::string DialogField(int dialog, int field) const;
  bool QueueEmpty() const { return messages_.empty(); }
  // Calls and answers that the dialogs on screen would refuse, one line each ("dialog 139:
  // WDialogPutReal: no field 1444"); kept by ClearRecords.
  const std::vector<std::string>& ResourceProblems() const { return resourceProblems_; }
  void ClearRecords();

  // --- Toolkit
  void Initialise() override {}
  int ScreenInfo(int what) override { return what == 2 ? screenHeight_ : screenWidth_; }
  void WindowOpen(int style, int x, int y, int width, int height, int menuId,
                  std::string_view title) override;
  int WindowOpenChild(int style, int x, int y, int width, int height,
                      std::string_view title) override;
  void WindowCloseChild(int window) override;
  void WindowClose() override;
  void WindowSelect(int window) override { selectedWindow_ = window; }
  void WindowStatusBarParts(std::span<const int> widths) override;
  void WindowStatusBar(int field, std::string_view text) override;
  void WMessageEnable(int type, bool enable) override;
  // When the script is used up, a close request for the main window, so every loop ends.
  Message WMessageGet() override;
  int InfoError(int what) override;
  int InfoDialog(int what) override;
  int ArgumentCount() override;
  std::string Argument(int number) override;

  void WMenuSetState(int item, int kind, int value) override;
  void WMenuSetString(int item, std::string_view text) override;

  void WDialogParent(int) override {}
  void WDialogLoad(int dialog) override;
  void WDialogShow(int x, int y, int initialField, int type) override;
  void WDialogHide() override {}
  void WDialogUnload() override;
  void WDialogSelect(int dialog) override;
  void WDialogPutString(int field, std::string_view text) override;
  std::string WDialogGetString(int field) override;
  void WDialogPutReal(int field, double value) override;
  double WDialogGetReal(int field) override;
  void WDialogPutInteger(int field, int value) override;
  int WDialogGetInteger(int field) override;
  void WDialogPutCheckBox(int field, int state) override;
  int WDialogGetCheckBox(int field) override;
  void WDialogPutRadioButton(int field) override;
  int WDialogGetRadioButton(int firstField, int lastField) override;
  void WDialogFieldState(int field, int state) override;
  void WDialogFieldOptions(int field, int option, int value) override;
  void WDialogClearField(int field) override;

  void WGridRows(int grid, int count) override;
  void WGridColumns(int grid, int count) override;
  void WGridLabelRow(int grid, int row, std::string_view text) override;
  void WGridPutCellString(int grid, int column, int row, std::string_view text) override;
  std::string WGridGetCellString(int grid, int column, int row) override;
  void WGridPutCellReal(int grid, int column, int row, double value) override;
  double WGridGetCellReal(int grid, int column, int row) override;
  void WGridPutCellInteger(int grid, int column, int row, int value) override;
  int WGridGetCellInteger(int grid, int column, int row) override;
  void WGridPutCellCheckBox(int grid, int column, int row, int state) override;
  int WGridGetCheckBox(int grid, int column, int row) override;
  void WGridColourRow(int grid, int row, int foreground, int background) override;
  void WGridClearSelection(int grid) override;
  void WGridInsertRows(int grid, int row, int count) override;
  void WGridDeleteRows(int grid, int row, int count) override;
  int WInfoGrid(int grid, int what) override;

  void WSelectFile(std::string_view filter, int flags, std::string& name,
                   std::string_view title) override;
  void WSelectDir(int flags, std::string& directory, std::string_view title) override;
  bool WSelectColour(int& red, int& green, int& blue) override;

  void WMessageBox(int buttons, int icon, int defaultButton, std::string_view text,
                   std::string_view title) override;

  void IGrSelect(int kind, int id) override;
  void IGrArea(double x1, double y1, double x2, double y2) override;
  void IGrUnits(double x1, double y1, double x2, double y2) override;
  void IGrColour(std::string_view name) override;
  void IGrColourN(int colour) override;
  void WGrTextFont(int, int, double, double) override {}
  void IGrLineType(int type, double width) override;
  void IGrMoveTo(double x, double y) override;
  void IGrLineTo(double x, double y) override;
  void IGrCharOut(double x, double y, std::string_view text) override;
  void IGrCharDirection(int degrees) override;
  void IGrUnitsFromPixels(int px, int py, double& x, double& y) override;
  void IGrPixelsFromUnits(double x, double y, int& px, int& py) override;
  void IGrAreaClear() override;
  int WGrInput(int mode, double& x, double& y) override;
  void WCursorShape(int) override {}
  Canvas& WindowCanvas() override { return windowCanvas_; }

  void IGrPlotMode(std::string_view mode) override;
  void IGrHardcopySelect(int, int driver) override;
  void IGrHardcopyOptions(int, int) override {}
  void WHardcopyOptions(int) override;
  void IGrHardcopy(std::string_view nameOrStop) override;
  void IGrSaveImage(std::string_view fileName) override;

  void WEditFile(int, int, int) override {}
  void WEditLinePut(int line, std::string_view text) override;
  void WEditFont(int, int) override {}
  void WEditSave(int) override {}
  void WPrintEditOptions() override;
  void WEditPrint(std::string_view) override {}

  void RunJob(const std::function<void()>& job,
              const std::function<void(const Message&)>&) override {
    job();
  }
  void OnLoopThread(const std::function<void()>& call) override { call(); }

  void IOsCommand(const std::vector<std::string>& arguments, int flags) override;
  void IOsDirChange(std::string_view directory) override;
  void IOsCopyFile(std::string_view from, std::string_view to) override;
  void IOsDeleteFile(std::string_view name, int flag) override;
  DateTime IOsDateTime() override;

 private:
  struct Grid {
    int rows = 0;
    std::map<std::pair<int, int>, std::string> cells;  // (column, row)
    std::map<int, std::string> labels;
  };
  struct Dialog {
    bool loaded = false;
    const DialogResource* resource = nullptr;
    std::map<int, std::string> fields;
    std::map<int, int> fieldStates;
    std::map<int, Grid> grids;
  };

  // A field's description; DialogField names the accessor above within the class.
  using FieldResource = kaldena::DialogField;
  // Whether a field's class takes an operation.
  using FieldTest = bool (*)(const FieldResource&);

  std::string& Field(int field) { return dialogs_state_[currentDialog_].fields[field]; }
  Grid& GridOf(int grid) { return dialogs_state_[currentDialog_].grids[grid]; }
  std::string& Cell(int grid, int column, int row) { return GridOf(grid).cells[{column, row}]; }
  void Problem(std::string_view operation, const std::string& what);
  // False, with a problem, when no dialog is loaded, or its resource lacks the field or has it
  // of a class that does not take the operation. `field` is then the resource's field, or
  // nullptr for a dialog without a resource: its fields go unchecked, its load was the problem.
  bool Allowed(int id, std::string_view operation, FieldTest fits, const FieldResource*& field);
  // The same for a grid's cell (or row label, with column 0): the grid, column and row must
  // exist, and `columnField` is the column dialog's field that describes the column.
  bool AllowedCell(int grid, int column, int row, std::string_view operation, FieldTest fits,
                   const FieldResource*& columnField);
  const DialogResource* Resource(int dialog) const;
  void InitialValues(const DialogResource& resource);
  void TakeAnswer(const DialogAnswer& answer);
  void CheckAnswer(const FieldResource& field, const std::string& value);
  void PutState(const FieldResource* field, int id, int state);
  void Draw(std::string op);

  bool echo_;
  int screenWidth_ = 1600;
  int screenHeight_ = 1000;
  std::deque<Message> messages_;
  std::deque<DialogAnswer> dialogs_;
  std::deque<std::string> selections_;
  std::deque<bool> answers_;
  std::deque<std::optional<int>> colours_;
  std::vector<std::string> arguments_;
  std::set<std::string> failingPrograms_;
  std::optional<DateTime> fixedTime_;

  int selectedWindow_ = kMainWindow;
  int nextWindow_ = 1;
  std::set<int> openWindows_;
  std::set<int> enabledMessages_;
  int lastError_ = 0;
  int lastAccepted_ = 0;
  int lastExitButton_ = 0;
  int currentDialog_ = 0;
  std::map<int, Dialog> dialogs_state_;
  std::vector<std::string> resourceProblems_;
  std::deque<DialogResource> ownResources_;  // a deque: loaded dialogs point into it

  std::vector<EditLine> editLines_;
  std::map<int, std::string> statusFields_;
  std::map<std::pair<int, int>, int> menuStates_;
  std::map<int, std::string> menuStrings_;
  std::vector<Box> boxes_;
  std::vector<FileSelection> selectionLog_;
  std::vector<FileOperation> fileOperations_;
  std::vector<std::vector<std::string>> commands_;
  std::vector<std::string> directoryChanges_;
  std::vector<std::string> drawing_;
  RecordingCanvas windowCanvas_{1280, 800};
  std::vector<int> dialogsShown_;
};

}  // namespace kaldena
