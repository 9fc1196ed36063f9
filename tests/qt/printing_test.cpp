// Printing through Qt's print dialog, here into a PDF file as the dialog's printer, and the
// outside programs, started with their argument lists and never through a shell.
#include <gtest/gtest.h>

#include <QApplication>
#include <QPrintDialog>
#include <QPrinter>
#include <QThread>
#include <QTimer>
#include <filesystem>

#include "qt/qt_toolkit.h"
#include "qt_windows.h"
#include "shell/main_window.h"
#include "shell/shell_services.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

// Accepts the print dialog with its printer sent to a PDF file, as a user who chose "Print to
// file"; counts the dialogs.
class PrintToFile {
 public:
  explicit PrintToFile(std::string pdf) : pdf_(std::move(pdf)) {
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, [this] {
      auto* dialog = qobject_cast<QPrintDialog*>(QApplication::activeModalWidget());
      if (!dialog || !dialog->isVisible()) return;
      ++shown;
      // The dialog sets the printer from its own fields as it is accepted; the file comes after.
      QPrinter* printer = dialog->printer();
      const QString pdf = QString::fromStdString(pdf_);
      QObject::connect(dialog, &QDialog::accepted, [printer, pdf] {
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(pdf);
      });
      if (accept) {
        dialog->accept();
      } else {
        dialog->reject();
      }
    });
    timer_.start();
  }
  int shown = 0;
  bool accept = true;

 private:
  std::string pdf_;
  QTimer timer_;
};

struct Program {
  Program() : toolkit({"kaldena"}) {
    testing::OpenMainAndLog(toolkit, state);
    state.projectBaseName = "corundum";
  }
  ~Program() { toolkit.WindowClose(); }

  testing::ScratchDir dir;
  QtToolkit toolkit;
  ShellState state;
  ShellRoutines routines;
  ShellContext shell{state, toolkit, routines};
};

bool IsPdf(const fs::path& file) {
  return fs::exists(file) && testing::ReadBytes(file).substr(0, 5) == "%PDF-";
}

TEST(Printing, TheLogPrintsWhenTheDialogIsAccepted) {
  Program program;
  LogLine(program.state, program.toolkit, "Started project: Corundum");
  const fs::path pdf = program.dir.Path() / "log.pdf";
  PrintToFile printer(pdf.string());
  printer.accept = false;
  PrintLog(program.shell);
  EXPECT_EQ(printer.shown, 1);
  EXPECT_FALSE(fs::exists(pdf));
  printer.accept = true;
  PrintLog(program.shell);
  EXPECT_EQ(printer.shown, 2);
  EXPECT_TRUE(IsPdf(pdf));
}

TEST(Printing, GraphicsDrawThePlotOnThePrintersPage) {
  Program program;
  double pageWidth = 0;
  int redraws = 0;
  // A plot routine that draws a frame on whatever canvas it is given.
  program.routines.redrawPlot = [&](ShellState& state, Toolkit& toolkit, int) {
    ++redraws;
    Canvas& canvas = toolkit.WindowCanvas();
    if (state.hardcopyInProgress) pageWidth = canvas.Width();
    canvas.MoveTo(10, 10);
    canvas.LineTo(canvas.Width() - 10, canvas.Height() - 10);
  };
  const fs::path pdf = program.dir.Path() / "plot.pdf";
  PrintToFile printer(pdf.string());
  PrintGraphics(program.shell, *FindMenuEntry(menu::kPrintGraphics));
  EXPECT_EQ(printer.shown, 1);
  EXPECT_EQ(redraws, 2);  // on the page, then back on the screen
  // The page is the printer's, far wider in its device pixels than the window.
  EXPECT_GT(pageWidth, 1000);
  EXPECT_TRUE(IsPdf(pdf));
  EXPECT_EQ(program.state.hardcopyInProgress, 0);
}

TEST(OutsidePrograms, StartWithTheirArgumentsAsTheyAreAndNoShell) {
  Program program;
  // Blanks, quotes and a command substitution stay part of the one argument.
  const fs::path target = program.dir.Path() / "a b $(echo c) 'd'.txt";
  program.toolkit.IOsCommand({"touch", target.string()}, 0);
  EXPECT_EQ(program.toolkit.InfoError(1), 0);
  for (int i = 0; i < 200 && !fs::exists(target); ++i) QThread::msleep(10);
  EXPECT_TRUE(fs::exists(target));

  program.toolkit.IOsCommand({"no-such-program-kaldena", "x"}, 0);
  EXPECT_EQ(program.toolkit.InfoError(1), kErrorOsCommand);
  // "View rawdata": the viewer is not on the search path, so the editor takes the file.
  const fs::path raw = program.dir.Path() / "pattern.xy";
  program.state.rawDataDefined = true;
  program.state.rawDataFileName = raw.string();
  program.state.preferences.editorPath = "touch";
  ViewRawData(program.shell);
  for (int i = 0; i < 200 && !fs::exists(raw); ++i) QThread::msleep(10);
  EXPECT_TRUE(fs::exists(raw));
}

TEST(Files, CopyReplacesTheTargetAndRefusesAWriteProtectedOne) {
  Program program;
  const fs::path from = program.dir.Write("a.par", "new\n");
  const fs::path to = program.dir.Write("a.rec", "old\n");
  program.toolkit.IOsCopyFile(from.string() + "  ", to.string());
  EXPECT_EQ(program.toolkit.InfoError(1), 0);
  EXPECT_EQ(testing::ReadBytes(to), "new\n");
  fs::permissions(to, fs::perms::owner_read);
  program.dir.Write("a.par", "newer\n");
  program.toolkit.IOsCopyFile(from.string(), to.string());
  EXPECT_EQ(program.toolkit.InfoError(1), kErrorOsCommand);
  EXPECT_EQ(testing::ReadBytes(to), "new\n");
  program.toolkit.IOsCopyFile((program.dir.Path() / "missing").string(), to.string());
  EXPECT_EQ(program.toolkit.InfoError(1), kErrorOsCommand);
  program.toolkit.IOsDeleteFile(from.string(), 1);
  EXPECT_FALSE(fs::exists(from));
  program.toolkit.IOsDeleteFile(from.string(), 1);
  EXPECT_EQ(program.toolkit.InfoError(1), kErrorOsCommand);
}

}  // namespace
}  // namespace kaldena
