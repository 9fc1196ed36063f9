// The small services every shell command uses: log lines, boxes, checked file copies and
// deletions, the date text, the status bar and the buttons of a dialog, all through the
// toolkit.
#pragma once

#include <string>
#include <string_view>

#include "shell/shell_state.h"
#include "toolkit/toolkit.h"
#include "util/report.h"

namespace kaldena {

// The text, trailing blanks cut, as the next line of the log window.
void LogLine(ShellState& state, Toolkit& toolkit, std::string_view text);
// Modal box with an OK button and the information icon.
void ShowMessage(Toolkit& toolkit, std::string_view title, std::string_view text);
// Modal box with Yes and No and the question icon; true for Yes.
bool AskYesNo(Toolkit& toolkit, std::string_view title, std::string_view text);
// True unless the toolkit reported error 13.
bool CopyFileChecked(Toolkit& toolkit, std::string_view from, std::string_view to);
bool DeleteFileChecked(Toolkit& toolkit, std::string_view name);
// Exactly `width` characters: blank below 10; "2016-07-08" from 10; from 18 on, three blanks
// and "14:05" follow.
std::string DateTimeText(Toolkit& toolkit, int width);
void SetStatusField(Toolkit& toolkit, int field, std::string_view text);
// The toolkit's colour selection from `colour` (24 bits, red in the low byte); the choice
// replaces it. False when nothing was chosen.
bool SelectColour(Toolkit& toolkit, int& colour);
// The button pushed next in the shown dialog, or 0 when its window is closed; other messages
// pass unseen.
int NextDialogButton(Toolkit& toolkit);
// True when a file or directory selection came back blank or as its wildcard ("*.rec"):
// nothing was chosen.
bool NoSelection(std::string_view name);

// The shell's words for the lower layers (record store, engine): log lines into the log
// window, boxes and questions through the toolkit.
class ShellReporter : public Reporter {
 public:
  ShellReporter(ShellState& state, Toolkit& toolkit) : state_(state), toolkit_(toolkit) {}
  void LogLine(std::string_view line) override;
  void ShowMessage(std::string_view title, std::string_view text) override;
  bool AskYesNo(std::string_view title, std::string_view question) override;

 private:
  ShellState& state_;
  Toolkit& toolkit_;
};

}  // namespace kaldena
