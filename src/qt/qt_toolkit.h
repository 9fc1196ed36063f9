// The Toolkit on Qt 6 Widgets. Qt's events become the interface's messages in one queue, and
// WMessageGet runs Qt's event loop until a message is queued; modal dialogs and boxes run the
// same loop until they are left. Graphics go to the selected window's backing image through
// a QPainter canvas, to the printer through QPrinter, and to EPS through the cairo canvas.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "qt/menu_bar.h"
#include "qt/toolkit_windows.h"
#include "toolkit/toolkit.h"

class QPrinter;

namespace kaldena {

class CairoCanvas;
class QtDialogs;

class QtToolkit : public Toolkit {
 public:
  // `arguments` as the program was started; a QApplication must exist.
  explicit QtToolkit(std::vector<std::string> arguments);
  ~QtToolkit() override;

  // Called whenever WMessageGet finds the queue empty, before it waits: a test hook that
  // feeds the program scripted input. It may post messages.
  void SetIdleHook(std::function<void(QtToolkit&)> hook) { idleHook_ = std::move(hook); }
  // Queues a message as if an event had made it; switched-off types are dropped.
  void Post(const Message& message);
  // The windows, menu and log for tests and the test hook; nullptr when not open.
  ToolkitWindow* Window(int window) const;
  MenuBar* Menu() const { return menu_.get(); }
  QtDialogs& Dialogs() { return *dialogs_; }
  // Draws what is pending on every window and lets Qt paint it.
  void PresentAll();

  // --- Toolkit
  void Initialise() override;
  int ScreenInfo(int what) override;
  void WindowOpen(int style, int x, int y, int width, int height, int menuId,
                  std::string_view title) override;
  int WindowOpenChild(int style, int x, int y, int width, int height,
                      std::string_view title) override;
  void WindowCloseChild(int window) override;
  void WindowClose() override;
  void WindowSelect(int window) override;
  void WindowStatusBarParts(std::span<const int> widths) override;
  void WindowStatusBar(int field, std::string_view text) override;
  void WMessageEnable(int type, bool enable) override;
  Message WMessageGet() override;
  int InfoError(int what) override;
  int InfoDialog(int what) override;
  int ArgumentCount() override;
  std::string Argument(int number) override;

  void WMenuSetState(int item, int kind, int value) override;
  void WMenuSetString(int item, std::string_view text) override;

  void WDialogParent(int window) override;
  void WDialogLoad(int dialog) override;
  void WDialogShow(int x, int y, int initialField, int type) override;
  void WDialogHide() override;
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
  void WGrTextFont(int family, int type, double width, double height) override;
  void IGrLineType(int type, double width) override;
  void IGrMoveTo(double x, double y) override;
  void IGrLineTo(double x, double y) override;
  void IGrCharOut(double x, double y, std::string_view text) override;
  void IGrCharDirection(int degrees) override;
  void IGrUnitsFromPixels(int px, int py, double& x, double& y) override;
  void IGrPixelsFromUnits(double x, double y, int& px, int& py) override;
  void IGrAreaClear() override;
  int WGrInput(int mode, double& x, double& y) override;
  void WCursorShape(int shape) override;
  // While graphics go to an open hardcopy ("H"), its page; otherwise the selected window's
  // plot area.
  Canvas& WindowCanvas() override;

  void IGrPlotMode(std::string_view mode) override;
  void IGrHardcopySelect(int what, int driver) override;
  void IGrHardcopyOptions(int option, int value) override;
  void WHardcopyOptions(int what) override;
  void IGrHardcopy(std::string_view nameOrStop) override;
  void IGrSaveImage(std::string_view fileName) override;

  void WEditFile(int option, int fontType, int size) override;
  void WEditLinePut(int line, std::string_view text) override;
  void WEditFont(int fontType, int size) override;
  void WEditSave(int mode) override;
  void WPrintEditOptions() override;
  void WEditPrint(std::string_view documentName) override;

  void RunJob(const std::function<void()>& job,
              const std::function<void(const Message&)>& onMessage) override;
  void OnLoopThread(const std::function<void()>& call) override;

  void IOsCommand(const std::vector<std::string>& arguments, int flags) override;
  void IOsDirChange(std::string_view directory) override;
  void IOsCopyFile(std::string_view from, std::string_view to) override;
  void IOsDeleteFile(std::string_view name, int flag) override;
  DateTime IOsDateTime() override;

 private:
  struct Graphics {
    double area[4]{0, 0, 1, 1};
    double units[4]{0, 0, 1, 1};
    int direction = 0;
    double textHeight = 0.02;  // of the area's height
  };
  struct Hardcopy {
    bool mode = false;  // "H": graphics go to the hardcopy
    int driver = 10;
    std::unique_ptr<QPrinter> printer;
    std::unique_ptr<PainterCanvas> page;
    std::unique_ptr<CairoCanvas> eps;
  };

  ToolkitWindow& Selected();
  PlotArea* SelectedPlot();
  // Device position of a point in user units on the current target.
  QPointF ToDevice(double x, double y);
  void RunUntil(const std::function<bool()>& done);
  void EndHardcopy();

  std::vector<std::string> arguments_;
  std::map<int, std::unique_ptr<ToolkitWindow>> windows_;
  std::unique_ptr<MenuBar> menu_;
  int nextWindow_ = 1;
  int selected_ = kMainWindow;
  std::deque<Message> messages_;
  std::set<int> enabled_;
  std::function<void(QtToolkit&)> idleHook_;
  int lastError_ = 0;
  int lastAccepted_ = 0;
  int lastExitButton_ = 0;
  Graphics graphics_;
  Hardcopy hardcopy_;
  std::unique_ptr<QPrinter> logPrinter_;
  std::unique_ptr<QtDialogs> dialogs_;
};

}  // namespace kaldena
