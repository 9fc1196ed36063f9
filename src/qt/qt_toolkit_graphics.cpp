// Graphics in user units, the plots' canvas, hardcopy to the printer and to EPS, image saves,
// and the text windows.
#include <QApplication>
#include <QFileDialog>
#include <QFontDatabase>
#include <QMouseEvent>
#include <QPrintDialog>
#include <QPrinter>
#include <QRubberBand>
#include <QTextBlock>
#include <algorithm>
#include <fstream>

#include "qt/qt_toolkit.h"
#include "toolkit/cairo_canvas.h"
#include "util/text.h"

namespace kaldena {
namespace {

constexpr int kPrinterDriver = 10;
constexpr int kPostScriptDriver = 2;
constexpr int kFixedFontType = 4;
// An EPS page is A4 upright, in points.
constexpr int kEpsWidth = 595;
constexpr int kEpsHeight = 842;

QString ToQt(std::string_view text) { return QString::fromUtf8(text.data(), text.size()); }

// Colours by name as the graphics take them: red in the low byte.
int NamedColour(std::string_view name) {
  const std::string lower = LowerText(Trimmed(name));
  if (lower == "white") return 0xFFFFFF;
  if (lower == "red") return 0x0000FF;
  if (lower == "green") return 0x00FF00;
  if (lower == "blue") return 0xFF0000;
  if (lower == "cyan") return 0xFFFF00;
  if (lower == "magenta") return 0xFF00FF;
  if (lower == "yellow") return 0x00FFFF;
  return 0;  // black and any other
}

bool RunPrintDialog(QPrinter& printer, QWidget* parent) {
  QPrintDialog dialog(&printer, parent);
  return dialog.exec() == QDialog::Accepted;
}

}  // namespace

PlotArea* QtToolkit::SelectedPlot() {
  for (int id : {selected_, static_cast<int>(kMainWindow)}) {
    ToolkitWindow* window = Window(id);
    if (window && window->Editor() == nullptr) return &window->Plot();
  }
  return nullptr;
}

Canvas& QtToolkit::WindowCanvas() {
  if (hardcopy_.mode && hardcopy_.eps) return *hardcopy_.eps;
  if (hardcopy_.mode && hardcopy_.page) return *hardcopy_.page;
  PlotArea* plot = SelectedPlot();
  if (!plot) {
    // No window to draw on (before the main window or after the way down): nobody sees it.
    static QImage nowhere(1, 1, QImage::Format_ARGB32_Premultiplied);
    static PainterCanvas canvas(nowhere, 1, 1);
    return canvas;
  }
  return plot->Canvas();
}

// --- Graphics in user units

void QtToolkit::IGrSelect(int, int id) { WindowSelect(id); }

void QtToolkit::IGrArea(double x1, double y1, double x2, double y2) {
  graphics_.area[0] = x1, graphics_.area[1] = y1, graphics_.area[2] = x2, graphics_.area[3] = y2;
}

void QtToolkit::IGrUnits(double x1, double y1, double x2, double y2) {
  graphics_.units[0] = x1, graphics_.units[1] = y1, graphics_.units[2] = x2;
  graphics_.units[3] = y2;
}

QPointF QtToolkit::ToDevice(double x, double y) {
  const Canvas& canvas = WindowCanvas();
  const double* a = graphics_.area;
  const double* u = graphics_.units;
  const double left = a[0] * canvas.Width(), right = a[2] * canvas.Width();
  const double bottom = (1.0 - a[1]) * canvas.Height(), top = (1.0 - a[3]) * canvas.Height();
  const double fx = u[2] != u[0] ? (x - u[0]) / (u[2] - u[0]) : 0.0;
  const double fy = u[3] != u[1] ? (y - u[1]) / (u[3] - u[1]) : 0.0;
  return {left + fx * (right - left), bottom + fy * (top - bottom)};
}

void QtToolkit::IGrUnitsFromPixels(int px, int py, double& x, double& y) {
  const QPointF origin = ToDevice(graphics_.units[0], graphics_.units[1]);
  const QPointF corner = ToDevice(graphics_.units[2], graphics_.units[3]);
  const double* u = graphics_.units;
  const double dx = corner.x() - origin.x(), dy = corner.y() - origin.y();
  x = dx != 0 ? u[0] + (px - origin.x()) / dx * (u[2] - u[0]) : u[0];
  y = dy != 0 ? u[1] + (py - origin.y()) / dy * (u[3] - u[1]) : u[1];
}

void QtToolkit::IGrPixelsFromUnits(double x, double y, int& px, int& py) {
  const QPointF at = ToDevice(x, y);
  px = static_cast<int>(std::lround(at.x()));
  py = static_cast<int>(std::lround(at.y()));
}

void QtToolkit::IGrColour(std::string_view name) { IGrColourN(NamedColour(name)); }

void QtToolkit::IGrColourN(int colour) {
  WindowCanvas().SetColour(colour);
}

void QtToolkit::WGrTextFont(int, int, double, double height) {
  if (height > 0 && height < 1) graphics_.textHeight = height;
}

void QtToolkit::IGrLineType(int type, double width) {
  WindowCanvas().SetLineStyle(static_cast<LineStyle>(std::clamp(type, 0, 4)), width);
}

void QtToolkit::IGrMoveTo(double x, double y) {
  const QPointF at = ToDevice(x, y);
  WindowCanvas().MoveTo(at.x(), at.y());
}

void QtToolkit::IGrLineTo(double x, double y) {
  const QPointF at = ToDevice(x, y);
  WindowCanvas().LineTo(at.x(), at.y());
}

void QtToolkit::IGrCharOut(double x, double y, std::string_view text) {
  Canvas& canvas = WindowCanvas();
  const QPointF at = ToDevice(x, y);
  const double area = std::abs(graphics_.area[3] - graphics_.area[1]) * canvas.Height();
  canvas.Text(at.x(), at.y(), text, graphics_.textHeight * area, graphics_.direction, 1);
}

void QtToolkit::IGrCharDirection(int degrees) { graphics_.direction = degrees; }

void QtToolkit::IGrAreaClear() { WindowCanvas().Clear(); }

int QtToolkit::WGrInput(int, double& x, double& y) {
  PlotArea* plot = SelectedPlot();
  if (!plot) return 0;
  const QPoint start = ToDevice(x, y).toPoint();
  QPoint end = start;
  bool released = false;
  QRubberBand band(QRubberBand::Rectangle, plot);
  band.setGeometry(QRect(start, QSize()));
  band.show();
  plot->SetMouseGrab([&](QMouseEvent& event) {
    end = event.position().toPoint();
    band.setGeometry(QRect(start, end).normalized());
    if (event.type() == QEvent::MouseButtonRelease) released = true;
  });
  RunUntil([&] { return released || Window(kMainWindow) == nullptr; });
  if (PlotArea* still = SelectedPlot()) still->SetMouseGrab(nullptr);
  IGrUnitsFromPixels(end.x(), end.y(), x, y);
  return kMouseButtonUp;
}

void QtToolkit::WCursorShape(int shape) {
  if (PlotArea* plot = SelectedPlot()) {
    if (shape == 0) {
      plot->unsetCursor();
    } else {
      plot->setCursor(Qt::CrossCursor);
    }
  }
}

// --- Hardcopy and images

void QtToolkit::IGrPlotMode(std::string_view mode) { hardcopy_.mode = Trimmed(mode) == "H"; }

void QtToolkit::IGrHardcopySelect(int, int driver) { hardcopy_.driver = driver; }

void QtToolkit::IGrHardcopyOptions(int, int) {}

void QtToolkit::WHardcopyOptions(int) {
  if (!hardcopy_.printer) hardcopy_.printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  const bool accepted = RunPrintDialog(*hardcopy_.printer, Window(kMainWindow));
  lastAccepted_ = accepted ? 1 : 0;
  lastExitButton_ = accepted ? kIdOk : kIdCancel;
}

void QtToolkit::IGrHardcopy(std::string_view nameOrStop) {
  const std::string name(Trimmed(nameOrStop));
  if (name == "S") return EndHardcopy();
  EndHardcopy();
  if (hardcopy_.driver == kPostScriptDriver) {
    hardcopy_.eps = CairoCanvas::Open(name, ImageFormat::kEps, kEpsWidth, kEpsHeight);
    if (!hardcopy_.eps) lastError_ = kErrorOsCommand;
  } else if (hardcopy_.driver == kPrinterDriver) {
    if (!hardcopy_.printer)
      hardcopy_.printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    hardcopy_.printer->setDocName(ToQt(name));
    const QRectF page = hardcopy_.printer->pageRect(QPrinter::DevicePixel);
    hardcopy_.page =
        std::make_unique<PainterCanvas>(*hardcopy_.printer, page.width(), page.height());
  }
}

void QtToolkit::EndHardcopy() {
  if (hardcopy_.page) hardcopy_.page->End();
  hardcopy_.page.reset();
  if (hardcopy_.eps && !hardcopy_.eps->Finish()) lastError_ = kErrorOsCommand;
  hardcopy_.eps.reset();
}

void QtToolkit::IGrSaveImage(std::string_view fileName) {
  PlotArea* plot = SelectedPlot();
  if (!plot) {
    lastError_ = kErrorOsCommand;
    return;
  }
  plot->Present();
  const std::string name(Trimmed(fileName));
  const std::optional<ImageFormat> format = ImageFormatOf(name);
  const char* kind = format == ImageFormat::kJpg   ? "JPG"
                     : format == ImageFormat::kBmp ? "BMP"
                                                   : "PNG";
  const QImage image = plot->Shown().convertToFormat(QImage::Format_RGB32);
  if (image.isNull() || !image.save(ToQt(name), kind)) lastError_ = kErrorOsCommand;
}

// --- Text windows

void QtToolkit::WEditFile(int, int fontType, int size) {
  Selected().MakeEditor();
  WEditFont(fontType, size);
}

void QtToolkit::WEditLinePut(int line, std::string_view text) {
  QPlainTextEdit* editor = Selected().Editor();
  if (!editor) return;
  QTextDocument& document = *editor->document();
  const QString shown = ToQt(text);
  if (document.isEmpty() && line <= 1) {
    editor->setPlainText(shown);
  } else if (line < 1 || line > document.blockCount()) {
    editor->appendPlainText(shown);
  } else {
    QTextCursor cursor(document.findBlockByNumber(line - 1));
    cursor.insertText(shown + "\n");
  }
  editor->moveCursor(QTextCursor::End);
  editor->ensureCursorVisible();
  // The line shows at once, also while a long job holds the loop.
  QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void QtToolkit::WEditFont(int fontType, int size) {
  QPlainTextEdit* editor = Selected().Editor();
  if (!editor) return;
  QFont font = fontType == kFixedFontType ? QFontDatabase::systemFont(QFontDatabase::FixedFont)
                                          : QApplication::font();
  font.setPointSize(std::max(size, 1));
  editor->setFont(font);
}

void QtToolkit::WEditSave(int) {
  QPlainTextEdit* editor = Selected().Editor();
  if (!editor) return;
  const QString name = QFileDialog::getSaveFileName(Window(kMainWindow), "Log save", QString(),
                                                    "Text (*.txt);;All files (*)");
  if (name.isEmpty()) return;
  std::ofstream out(name.toStdString(), std::ios::binary);
  out << editor->toPlainText().toStdString() << '\n';
  if (!out) lastError_ = kErrorOsCommand;
}

void QtToolkit::WPrintEditOptions() {
  if (!logPrinter_) logPrinter_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
  const bool accepted = RunPrintDialog(*logPrinter_, Window(kMainWindow));
  lastAccepted_ = accepted ? 1 : 0;
  lastExitButton_ = accepted ? kIdOk : kIdCancel;
}

void QtToolkit::WEditPrint(std::string_view documentName) {
  QPlainTextEdit* editor = Selected().Editor();
  if (!editor || !logPrinter_) return;
  logPrinter_->setDocName(ToQt(Trimmed(documentName)));
  editor->print(logPrinter_.get());
}

}  // namespace kaldena
