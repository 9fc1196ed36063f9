// Leaves every modal window that the program opens (boxes, file, colour and print dialogs,
// the resource dialogs) as a user would with Escape, and notes its title and text, so that
// tests can drive commands that ask.
#pragma once

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QTimer>
#include <string>
#include <vector>

namespace kaldena::testing {

class ModalAnswerer {
 public:
  ModalAnswerer() {
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, [this] { Answer(); });
    timer_.start();
  }
  // "title: text" of each box, "title" of each other modal window, in order.
  const std::vector<std::string>& Seen() const { return seen_; }
  void Clear() { seen_.clear(); }

 private:
  void Answer() {
    QWidget* modal = QApplication::activeModalWidget();
    auto* dialog = qobject_cast<QDialog*>(modal);
    if (!dialog || !dialog->isVisible()) return;
    std::string seen = dialog->windowTitle().toStdString();
    if (auto* box = qobject_cast<QMessageBox*>(dialog)) seen += ": " + box->text().toStdString();
    seen_.push_back(seen);
    dialog->reject();
  }

  QTimer timer_;
  std::vector<std::string> seen_;
};

}  // namespace kaldena::testing
