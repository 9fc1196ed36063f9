// The windows of the Qt toolkit: one class for the main window and its children, with a plot
// area that keeps the plots' backing image, or a view-only text editor for the log. Their
// events become the toolkit's messages through a sink.
#pragma once

#include <QImage>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <functional>
#include <memory>

#include "qt/painter_canvas.h"
#include "toolkit/toolkit.h"

class QLabel;
class QMouseEvent;

namespace kaldena {

using MessageSink = std::function<void(const Message&)>;

// The drawing surface of a window. The plots draw into a backing image at the screen's pixel
// ratio; what is drawn shows when Present is called, and repaints show the last presented
// image without asking the program.
class PlotArea : public QWidget {
 public:
  PlotArea(int window, MessageSink sink, QWidget* parent);

  // The canvas on the backing image, sized to the area as it stands now.
  PainterCanvas& Canvas();
  // Ends drawing and shows the image.
  void Present();
  // What the area shows, in device pixels.
  const QImage& Shown() const { return shown_; }
  // While a grab is set, the area's mouse events go to it instead of becoming messages.
  void SetMouseGrab(std::function<void(QMouseEvent&)> grab) { grab_ = std::move(grab); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void Mouse(int type, QMouseEvent& event);

  int window_;
  MessageSink sink_;
  QImage back_;
  QImage shown_;
  std::unique_ptr<PainterCanvas> canvas_;
  std::function<void(QMouseEvent&)> grab_;
};

// A top-level window: the main window with its menu bar and status bar, or a child. Its
// close button asks the program (a close message) instead of closing.
class ToolkitWindow : public QMainWindow {
 public:
  ToolkitWindow(int window, MessageSink sink);

  int Id() const { return window_; }
  PlotArea& Plot() { return *plot_; }
  // Turns the window into a view-only text window; nothing when it is one already.
  QPlainTextEdit& MakeEditor();
  QPlainTextEdit* Editor() { return editor_; }
  // The status bar of `count` fields with these relative widths.
  void SetStatusParts(std::span<const int> widths);
  void SetStatusText(int field, const QString& text);
  QString StatusText(int field) const;
  // Closes for real, as the program asked.
  void CloseNow();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  int window_;
  MessageSink sink_;
  PlotArea* plot_;
  QPlainTextEdit* editor_ = nullptr;
  std::vector<QLabel*> statusFields_;
  bool closing_ = false;
};

// The key code of a message for a Qt key; 0 for a key the program does not take.
int KeyCodeOf(int qtKey, const QString& text);

}  // namespace kaldena
