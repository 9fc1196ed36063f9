#include "qt/toolkit_windows.h"

#include <QCloseEvent>
#include <QLabel>
#include <QPainter>
#include <QStatusBar>
#include <QWheelEvent>

namespace kaldena {
namespace {

int ButtonOf(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return 1;
    case Qt::RightButton:
      return 2;
    case Qt::MiddleButton:
      return 3;
    default:
      return 0;
  }
}

}  // namespace

int KeyCodeOf(int qtKey, const QString& text) {
  switch (qtKey) {
    case Qt::Key_Up:
      return kKeyArrowUp;
    case Qt::Key_Down:
      return kKeyArrowDown;
    case Qt::Key_Right:
      return kKeyArrowRight;
    case Qt::Key_Left:
      return kKeyArrowLeft;
    case Qt::Key_PageUp:
      return kKeyPageUp;
    case Qt::Key_PageDown:
      return kKeyPageDown;
    case Qt::Key_Home:
      return kKeyHome;
    case Qt::Key_End:
      return kKeyEnd;
    case Qt::Key_Escape:
      return kKeyEscape;
    default:
      break;
  }
  if (text.size() == 1 && text[0].unicode() >= 32 && text[0].unicode() < 127) {
    return text[0].unicode();
  }
  return 0;
}

PlotArea::PlotArea(int window, MessageSink sink, QWidget* parent)
    : QWidget(parent), window_(window), sink_(std::move(sink)) {
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(200, 150);
}

PainterCanvas& PlotArea::Canvas() {
  const qreal ratio = devicePixelRatioF();
  const QSize pixels = size() * ratio;
  if (!canvas_ || back_.size() != pixels) {
    canvas_.reset();
    back_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
    back_.setDevicePixelRatio(ratio);
    back_.fill(Qt::white);
    canvas_ = std::make_unique<PainterCanvas>(back_, width(), height());
  }
  return *canvas_;
}

void PlotArea::Present() {
  if (!canvas_) return;
  canvas_->End();
  shown_ = back_;  // shared until the next drawing detaches the backing image
  update();
}

void PlotArea::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::white);
  if (!shown_.isNull()) painter.drawImage(QPointF(0, 0), shown_);
}

void PlotArea::resizeEvent(QResizeEvent*) { sink_({kResize, 0, width(), height(), window_}); }

void PlotArea::showEvent(QShowEvent*) { sink_({kExpose, 0, 0, 0, window_}); }

void PlotArea::keyPressEvent(QKeyEvent* event) {
  const int code = KeyCodeOf(event->key(), event->text());
  if (code == 0) return QWidget::keyPressEvent(event);
  sink_({kKeyDown, code, 0, 0, window_});
}

void PlotArea::Mouse(int type, QMouseEvent& event) {
  if (grab_) return grab_(event);
  const QPoint at = event.position().toPoint();
  const int button = type == kMouseMove ? ButtonOf(Qt::MouseButton(int(event.buttons() & 7)))
                                        : ButtonOf(event.button());
  sink_({type, button, at.x(), at.y(), window_});
}

void PlotArea::mousePressEvent(QMouseEvent* event) { Mouse(kMouseButtonDown, *event); }
void PlotArea::mouseReleaseEvent(QMouseEvent* event) { Mouse(kMouseButtonUp, *event); }
void PlotArea::mouseMoveEvent(QMouseEvent* event) { Mouse(kMouseMove, *event); }

void PlotArea::wheelEvent(QWheelEvent* event) {
  const QPoint at = event->position().toPoint();
  sink_({kMouseWheel, event->angleDelta().y() > 0 ? 1 : -1, at.x(), at.y(), window_});
}

ToolkitWindow::ToolkitWindow(int window, MessageSink sink)
    : window_(window), sink_(sink), plot_(new PlotArea(window, sink, this)) {
  setCentralWidget(plot_);
}

QPlainTextEdit& ToolkitWindow::MakeEditor() {
  if (!editor_) {
    editor_ = new QPlainTextEdit(this);
    editor_->setReadOnly(true);
    editor_->setLineWrapMode(QPlainTextEdit::NoWrap);
    setCentralWidget(editor_);  // the plot area goes with the old central widget
    plot_ = nullptr;
  }
  return *editor_;
}

void ToolkitWindow::SetStatusParts(std::span<const int> widths) {
  for (QLabel* label : statusFields_) delete label;
  statusFields_.clear();
  for (int width : widths) {
    auto* label = new QLabel(this);
    label->setMinimumWidth(10);
    statusBar()->addWidget(label, std::max(1, width));
    statusFields_.push_back(label);
  }
}

void ToolkitWindow::SetStatusText(int field, const QString& text) {
  if (field < 1 || field > static_cast<int>(statusFields_.size())) return;
  statusFields_[static_cast<std::size_t>(field - 1)]->setText(text);
}

QString ToolkitWindow::StatusText(int field) const {
  if (field < 1 || field > static_cast<int>(statusFields_.size())) return {};
  return statusFields_[static_cast<std::size_t>(field - 1)]->text();
}

void ToolkitWindow::CloseNow() {
  closing_ = true;
  close();
}

void ToolkitWindow::closeEvent(QCloseEvent* event) {
  if (closing_) return event->accept();
  event->ignore();
  sink_({kCloseRequest, 0, 0, 0, window_});
}

}  // namespace kaldena
