// What the shell asks of a graphical toolkit: windows and the message queue, menus, dialogs
// by id with their fields and grids, file and colour selection, boxes, line graphics,
// hardcopy, text windows and operating-system services. The shell talks to nothing else, so
// that everything but drawing runs headless (see headless_toolkit.h).
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/canvas.h"

namespace kaldena {

// Message types of the queue.
enum MessageType : int {
  kKeyDown = 1,
  kMenuSelect = 2,
  kPushButton = 3,
  kMouseButtonDown = 4,
  kMouseButtonUp = 5,
  kMouseMove = 6,
  kExpose = 7,
  kResize = 8,
  kCloseRequest = 9,
  kFieldChanged = 10,
  kMouseWheel = 16,
};

// Key codes of a key-down message.
enum KeyCode : int {
  kKeyArrowUp = 258,
  kKeyArrowDown = 259,
  kKeyArrowRight = 260,
  kKeyArrowLeft = 261,
  kKeyPageUp = 262,
  kKeyPageDown = 263,
  kKeyHome = 270,
  kKeyEnd = 271,
  kKeyEscape = 27,
};

// Push buttons that leave a dialog.
inline constexpr int kIdOk = 1;
inline constexpr int kIdCancel = 2;

// Window 0 is the main window throughout.
inline constexpr int kMainWindow = 0;

// One message: its type and record. `value` is the key code, menu id, button id, field id
// or mouse button; x and y the pixel position of mouse messages; `window` the window that a
// close request or repaint concerns.
struct Message {
  int type = 0;
  int value = 0;
  int x = 0;
  int y = 0;
  int window = kMainWindow;
};

// Error number of a failed file or command operation (error query).
inline constexpr int kErrorOsCommand = 13;

// Kinds of WMenuSetState.
inline constexpr int kMenuItemEnabled = 1;
inline constexpr int kMenuItemChecked = 2;

// WMessageBox buttons and icons.
inline constexpr int kButtonsOk = 0;
inline constexpr int kButtonsYesNo = 1;
inline constexpr int kIconQuestion = 2;
inline constexpr int kIconInformation = 3;

// WDialogShow types.
inline constexpr int kDialogModal = 1;
inline constexpr int kDialogModeless = 3;

// Information queries.
inline constexpr int kInfoDialogAccepted = 4;  // 1 when the last dialog or box was accepted
inline constexpr int kInfoExitButton = 15;     // the exit button's raw code

struct DateTime {
  int year = 0, month = 0, day = 0;
  int hour = 0, minute = 0, second = 0;
};

// The local date and time of the system's clock, as both toolkits give it.
DateTime SystemDateTime();

class Toolkit {
 public:
  virtual ~Toolkit() = default;

  // --- Start and stop, windows
  virtual void Initialise() = 0;
  // 1 width, 2 height of the screen in pixels.
  virtual int ScreenInfo(int what) = 0;
  virtual void WindowOpen(int style, int x, int y, int width, int height, int menuId,
                          std::string_view title) = 0;
  // Opens a child window and returns its identifier.
  virtual int WindowOpenChild(int style, int x, int y, int width, int height,
                              std::string_view title) = 0;
  virtual void WindowCloseChild(int window) = 0;
  // Closes the root window; ends a hardcopy in progress.
  virtual void WindowClose() = 0;
  virtual void WindowSelect(int window) = 0;
  // Widths in hundredths of a percent.
  virtual void WindowStatusBarParts(std::span<const int> widths) = 0;
  // Field 1 to 255.
  virtual void WindowStatusBar(int field, std::string_view text) = 0;
  // Switches messages of type 5, 6 or 10 off or on.
  virtual void WMessageEnable(int type, bool enable) = 0;
  // Blocks for the next message.
  virtual Message WMessageGet() = 0;
  // 1: the last error number, cleared by the query; 13 for a failed file or command operation.
  virtual int InfoError(int what) = 0;
  // 4 or 15, see kInfoDialogAccepted and kInfoExitButton.
  virtual int InfoDialog(int what) = 0;
  // Command-line arguments; the count leaves out argument 0, the program.
  virtual int ArgumentCount() = 0;
  virtual std::string Argument(int number) = 0;

  // --- Menus
  // Kind 1 enables (1) or greys (0), kind 2 sets (1) or clears (0) a check mark.
  virtual void WMenuSetState(int item, int kind, int value) = 0;
  virtual void WMenuSetString(int item, std::string_view text) = 0;

  // --- Dialogs and fields
  virtual void WDialogParent(int window) = 0;
  virtual void WDialogLoad(int dialog) = 0;
  // Positions -1, -1 centre it; type 1 modal (returns on an exit button), 3 modeless.
  virtual void WDialogShow(int x, int y, int initialField, int type) = 0;
  virtual void WDialogHide() = 0;
  virtual void WDialogUnload() = 0;
  virtual void WDialogSelect(int dialog) = 0;
  virtual void WDialogPutString(int field, std::string_view text) = 0;
  virtual std::string WDialogGetString(int field) = 0;
  virtual void WDialogPutReal(int field, double value) = 0;
  virtual double WDialogGetReal(int field) = 0;
  virtual void WDialogPutInteger(int field, int value) = 0;
  virtual int WDialogGetInteger(int field) = 0;
  virtual void WDialogPutCheckBox(int field, int state) = 0;
  virtual int WDialogGetCheckBox(int field) = 0;
  // Turns on the button `field` of a radio group.
  virtual void WDialogPutRadioButton(int field) = 0;
  // The 1-based index of the button that is on in the group from `firstField` to `lastField`.
  virtual int WDialogGetRadioButton(int firstField, int lastField) = 0;
  // 1 enabled, 0 disabled.
  virtual void WDialogFieldState(int field, int state) = 0;
  virtual void WDialogFieldOptions(int field, int option, int value) = 0;
  virtual void WDialogClearField(int field) = 0;

  // --- Grids, fields of the selected dialog; rows and columns from 1
  virtual void WGridRows(int grid, int count) = 0;
  virtual void WGridColumns(int grid, int count) = 0;
  virtual void WGridLabelRow(int grid, int row, std::string_view text) = 0;
  virtual void WGridPutCellString(int grid, int column, int row, std::string_view text) = 0;
  virtual std::string WGridGetCellString(int grid, int column, int row) = 0;
  virtual void WGridPutCellReal(int grid, int column, int row, double value) = 0;
  virtual double WGridGetCellReal(int grid, int column, int row) = 0;
  virtual void WGridPutCellInteger(int grid, int column, int row, int value) = 0;
  virtual int WGridGetCellInteger(int grid, int column, int row) = 0;
  virtual void WGridPutCellCheckBox(int grid, int column, int row, int state) = 0;
  virtual int WGridGetCheckBox(int grid, int column, int row) = 0;
  virtual void WGridColourRow(int grid, int row, int foreground, int background) = 0;
  virtual void WGridClearSelection(int grid) = 0;
  virtual void WGridInsertRows(int grid, int row, int count) = 0;
  virtual void WGridDeleteRows(int grid, int row, int count) = 0;
  // 1: rows in use.
  virtual int WInfoGrid(int grid, int what) = 0;

  // --- Selection
  // `filter` holds caption and pattern pairs, each closed by "|". Flags 136 and 128 open,
  // 11 saves with a prompt. On Cancel `name` comes back blank or with a "*" in front.
  virtual void WSelectFile(std::string_view filter, int flags, std::string& name,
                           std::string_view title) = 0;
  virtual void WSelectDir(int flags, std::string& directory, std::string_view title) = 0;
  // Returns true when a colour was chosen.
  virtual bool WSelectColour(int& red, int& green, int& blue) = 0;

  // --- Boxes
  // Buttons 0 OK, 1 Yes and No; icon 3 information, 2 question. InfoDialog(4) tells Yes.
  virtual void WMessageBox(int buttons, int icon, int defaultButton, std::string_view text,
                           std::string_view title) = 0;

  // --- Graphics, in user units of the selected target
  virtual void IGrSelect(int kind, int id) = 0;
  virtual void IGrArea(double x1, double y1, double x2, double y2) = 0;
  virtual void IGrUnits(double x1, double y1, double x2, double y2) = 0;
  virtual void IGrColour(std::string_view name) = 0;
  // 24-bit colour as blue, green, red from high to low byte.
  virtual void IGrColourN(int colour) = 0;
  virtual void WGrTextFont(int family, int type, double width, double height) = 0;
  virtual void IGrLineType(int type, double width) = 0;
  virtual void IGrMoveTo(double x, double y) = 0;
  virtual void IGrLineTo(double x, double y) = 0;
  virtual void IGrCharOut(double x, double y, std::string_view text) = 0;
  // 0, 90, 180 or 270 degrees.
  virtual void IGrCharDirection(int degrees) = 0;
  virtual void IGrUnitsFromPixels(int px, int py, double& x, double& y) = 0;
  virtual void IGrPixelsFromUnits(double x, double y, int& px, int& py) = 0;
  virtual void IGrAreaClear() = 0;
  // Mode 3: rubber band from x, y; gives the other corner and 5 for a button release.
  virtual int WGrInput(int mode, double& x, double& y) = 0;
  virtual void WCursorShape(int shape) = 0;
  // The plots' drawing surface on the selected window, in pixels of its client area. What is
  // drawn shows when the drawing routine returns to the message loop; the window keeps it for
  // repaints until the next drawing.
  virtual Canvas& WindowCanvas() = 0;

  // --- Hardcopy
  // "H" hardcopy, blank screen.
  virtual void IGrPlotMode(std::string_view mode) = 0;
  // Driver 2 PostScript, 10 the system's printer.
  virtual void IGrHardcopySelect(int what, int driver) = 0;
  virtual void IGrHardcopyOptions(int option, int value) = 0;
  virtual void WHardcopyOptions(int what) = 0;
  // A name opens the hardcopy, "S" stops it.
  virtual void IGrHardcopy(std::string_view nameOrStop) = 0;
  virtual void IGrSaveImage(std::string_view fileName) = 0;

  // --- Text windows, on the selected child window
  virtual void WEditFile(int option, int fontType, int size) = 0;
  virtual void WEditLinePut(int line, std::string_view text) = 0;
  virtual void WEditFont(int fontType, int size) = 0;
  virtual void WEditSave(int mode) = 0;
  virtual void WPrintEditOptions() = 0;
  virtual void WEditPrint(std::string_view documentName) = 0;

  // --- Jobs
  // Runs `job` to its end. A screen toolkit runs it on a worker thread and keeps its message
  // loop going meanwhile, handing each message to `onMessage` on the loop's thread (repaints,
  // resizes, Stop); the scripted toolkit runs it inline and leaves its queue as it is.
  virtual void RunJob(const std::function<void()>& job,
                      const std::function<void(const Message&)>& onMessage) = 0;
  // Runs `call` on the message loop's thread and waits for it: how a job shows what it does.
  // On that thread itself, at once.
  virtual void OnLoopThread(const std::function<void()>& call) = 0;

  // --- Operating system
  // Starts a program with its arguments, without waiting and without a shell; error 13 when
  // it could not start.
  virtual void IOsCommand(const std::vector<std::string>& arguments, int flags) = 0;
  virtual void IOsDirChange(std::string_view directory) = 0;
  // Replaces the target; error 13 on failure.
  virtual void IOsCopyFile(std::string_view from, std::string_view to) = 0;
  virtual void IOsDeleteFile(std::string_view name, int flag) = 0;
  virtual DateTime IOsDateTime() = 0;
};

}  // namespace kaldena
