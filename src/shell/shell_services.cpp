// Log lines, boxes, checked file operations, date text, status bar and dialog buttons.
#include "shell/shell_services.h"

#include <algorithm>

#include "util/column_format.h"
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
  text.replace(0, 10, FormatLine("(i4.4,'-',i2.2,'-',i2.2)", now.year % 10000, now.month % 100,
                                 now.day % 100));
  if (width >= 18) {
    text.replace(10, 8, FormatLine("(3x,i2.2,':',i2.2)", now.hour % 100, now.minute % 100));
  }
  return text;
}

void SetStatusField(Toolkit& toolkit, int field, std::string_view text) {
  toolkit.WindowSelect(kMainWindow);
  toolkit.WindowStatusBar(field, Trimmed(text));
  toolkit.WindowSelect(kMainWindow);
}

bool SelectColour(Toolkit& toolkit, int& colour) {
  int red = colour & 0xff, green = (colour >> 8) & 0xff, blue = (colour >> 16) & 0xff;
  if (!toolkit.WSelectColour(red, green, blue)) return false;
  colour = ((blue & 0xff) << 16) | ((green & 0xff) << 8) | (red & 0xff);
  return true;
}

int NextDialogButton(Toolkit& toolkit) {
  for (;;) {
    const Message message = toolkit.WMessageGet();
    if (message.type == kCloseRequest) return 0;
    if (message.type == kPushButton) return message.value;
  }
}

bool NoSelection(std::string_view name) {
  const std::string_view trimmed = Trimmed(name);
  return trimmed.empty() || LeftJustify(trimmed).front() == '*';
}

void ShellReporter::LogLine(std::string_view line) { kaldena::LogLine(state_, toolkit_, line); }

void ShellReporter::ShowMessage(std::string_view title, std::string_view text) {
  kaldena::ShowMessage(toolkit_, title, text);
}

bool ShellReporter::AskYesNo(std::string_view title, std::string_view question) {
  return kaldena::AskYesNo(toolkit_, title, question);
}

}  // namespace kaldena
