// Undo and redo of the edits of a project: every dialog's OK, phase add and delete and "Add
// peaks" is one step, kept as the parameter file's text before and after it. The history
// belongs to the open project and outlives a refinement: undo after a run puts back the file
// as it was before the last edit, undoing the run's results too, and says so in the log.
//
// A command that changes the parameter file records its step so:
//
//   UndoStep step(state, "Add phase");   // takes the file as it stands
//   ... change the parameter file ...
//   step.Finish(state, toolkit);         // a step only when the file changed
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kaldena {

class Toolkit;
struct ShellState;

struct EditStep {
  std::string name;    // "Edit phase 2", as the menu names it after "Undo" and "Redo"
  std::string file;    // the parameter file (or project file), with its directory
  std::string before;  // its text before the step
  std::string after;   // and after it
};

struct EditHistory {
  std::string project;  // the project file the steps belong to
  std::vector<EditStep> undo;
  std::vector<EditStep> redo;
};

class UndoStep {
 public:
  UndoStep(const ShellState& state, std::string_view name);
  // A step of another file of the project ("Add peaks" appends to the project file).
  UndoStep(std::string_view name, std::string file);
  // Pushes the step when the file differs from before (clearing what could be redone) and
  // refreshes the Undo and Redo menu items.
  void Finish(ShellState& state, Toolkit& toolkit);

 private:
  EditStep step_;
  bool readable_ = false;
};

// Edit -> Undo and Redo: write the parameter file back as it was before (after) the latest
// step, with a log line; nothing when there is no step.
void UndoEdit(ShellState& state, Toolkit& toolkit);
void RedoEdit(ShellState& state, Toolkit& toolkit);
// Captions "Undo <step>" and "Redo <step>", greyed when there is nothing to undo or redo. A
// history of another project than the open one is dropped first.
void ShowEditHistory(ShellState& state, Toolkit& toolkit);

}  // namespace kaldena
