// Log lines, boxes, checked file operations, date text and status bar.
#include "shell/shell_services.h"

#include <algorithm>
#include <cstdio>

#include "util/text.h"

namespace kaldena {

void LogLine(ShellState& state, Toolkit& toolkit, std::string_view text) {
  ++state.logLineCount;
  toolkit.WindowSelect(state.logWindow);
  toolkit.WEditLinePut(state.logLineCount, Trimmed(text));
  toolkit.WindowSelect(kMainWindow);
}

void ShowMessage(Toolkit& toolkit, std::string_view title, std::string_view text) {
  toolkit.WMessageBox(kButtonsOk, kIconInformation, 1, text, title);
}

bool AskYesNo(Toolkit& toolkit, std::string_view title, std::string_view text) {
  toolkit.WMessageBox(kButtonsYesNo, kIconQuestion, 1, text, title);
  return toolkit.InfoDialog(kInfoDialogAccepted) == 1;
}

bool CopyFileChecked(Toolkit& toolkit, std::string_view from, std::string_view to) {
  toolkit.InfoError(1);  // an error of an earlier operation must not count here
  toolkit.IOsCopyFile(Trimmed(from), Trimmed(to));
  return toolkit.InfoError(1) != kErrorOsCommand;
}

bool DeleteFileChecked(Toolkit& toolkit, std::string_view name) {
  toolkit.InfoError(1);
  toolkit.IOsDeleteFile(Trimmed(name), 1);
  return toolkit.InfoError(1) != kErrorOsCommand;
}

std::string DateTimeText(Toolkit& toolkit, int width) {
  std::string text(static_cast<std::size_t>(std::max(width, 0)), ' ');
  if (width < 10) return text;
  const DateTime now = toolkit.IOsDateTime();
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d", now.year % 10000, now.month % 100,
                now.day % 100);
  text.replace(0, 10, buffer);
  if (width >= 18) {
    std::snprintf(buffer, sizeof buffer, "   %02d:%02d", now.hour % 100, now.minute % 100);
    text.replace(10, 8, buffer);
  }
  return text;
}

void SetStatusField(Toolkit& toolkit, int field, std::string_view text) {
  toolkit.WindowSelect(kMainWindow);
  toolkit.WindowStatusBar(field, Trimmed(text));
  toolkit.WindowSelect(kMainWindow);
}

void ShellReporter::LogLine(std::string_view line) { kaldena::LogLine(state_, toolkit_, line); }

void ShellReporter::ShowMessage(std::string_view title, std::string_view text) {
  kaldena::ShowMessage(toolkit_, title, text);
}

bool ShellReporter::AskYesNo(std::string_view title, std::string_view question) {
  return kaldena::AskYesNo(toolkit_, title, question);
}

}  // namespace kaldena
