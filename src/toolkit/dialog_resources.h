// Dialog resources: one text description per dialog, with its fields and their companion
// data, built into the toolkit library. The scripted toolkit checks the program's field ids
// against them and a screen toolkit builds its dialogs from them, so both see the same dialog.
//
// Form of a resource text (blank lines and lines beginning with "#" are skipped):
//
//   DIALOG id width height "title"
//   CLASS  id x y width height "caption"      one line a field, in tab order
//   [Section]                                 companion lines of the dialog above
//
// Places are pixels from the dialog's top left. Static fields that the program never
// addresses (labels, group boxes) have the id -1. A run of consecutive RADIOBUTTON lines is
// one radio group. Sections, each line naming a field of the dialog:
//
//   [Checks]  id state                  initial state 0 or 1 of a check box or radio button
//   [Ranges]  id low high               accepted range of an integer or real field
//   [Lengths] id length                 most characters of a text field
//   [Formats] id format                 a real field shown through the format, e.g. (f8.2)
//   [Grids]   id columns rows columnDialog
//             headerWidth               on a line of its own
//             label                     none, or one line for each of the rows
//   [Menus]   id count selected         then count lines, the entries of a drop-down list
//
// A grid's columns are the fields of the dialog columnDialog, in order: their class gives
// the column's kind, their caption the heading, their width the column's width, and that
// dialog's companion sections the columns' formats, lengths and ranges.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kaldena {

enum class FieldKind {
  kLabel,         // LABEL: static text; with an id the program may put text into it
  kText,          // TEXT: one-line text edit
  kRealEdit,      // REALEDIT
  kIntegerEdit,   // INTEGEREDIT
  kIntegerSpin,   // INTEGERSPIN
  kRealSpin,      // REALSPIN
  kCheckBox,      // CHECKBOX
  kRadioButton,   // RADIOBUTTON
  kPushButton,    // PUSHBUTTON: ids 1 (OK) and 2 (Cancel) leave the dialog
  kColourButton,  // COLOURBUTTON: a push button that shows a colour
  kGrid,          // GRID
  kMenu,          // MENU: drop-down list
  kGroupBox,      // GROUPBOX: a frame with a caption
};

// The class word of a kind, as written in a resource.
std::string_view FieldKindName(FieldKind kind);

struct ValueRange {
  double low = 0.0;
  double high = 0.0;
};

struct GridLayout {
  int columns = 0;
  int rows = 0;
  int columnDialog = 0;
  int headerWidth = 0;
  std::vector<std::string> rowLabels;  // empty: the program labels the rows
};

struct DialogField {
  int id = -1;
  FieldKind kind = FieldKind::kLabel;
  std::string caption;
  int x = 0, y = 0, width = 0, height = 0;
  int radioGroup = 0;  // radio buttons: the id of the first button of the group

  // Companion data.
  std::optional<int> checked;       // [Checks]
  std::optional<ValueRange> range;  // [Ranges]
  int length = 0;                   // [Lengths]; 0 is no limit
  std::string format;               // [Formats]
  std::optional<GridLayout> grid;   // [Grids]
  std::vector<std::string> menu;    // [Menus]
  int menuSelected = 0;             // [Menus]: 1-based, 0 none

  bool IsStatic() const { return id < 0; }
  bool HoldsText() const;    // text, label or menu
  bool HoldsNumber() const;  // real or integer edit or spin
  bool HoldsState() const;   // check box or radio button
  bool IsButton() const;     // push or colour button
};

struct DialogResource {
  int id = 0;
  std::string title;
  int width = 0, height = 0;
  std::vector<DialogField> fields;
  std::string source;  // the resource text's name, for messages

  // The field of this id; nullptr for an id the dialog lacks (and for -1).
  const DialogField* Field(int fieldId) const;
};

// A real as a field shows it, alike in every toolkit: through the field's format ("(f8.2)"),
// asterisks when it is too wide, blanks cut; without a format, the fewest digits that read
// back to the same value.
std::string FieldRealText(double value, std::string_view format);

// Reads the dialogs of one resource text. On the first error, false and a message that names
// the text and the line ("plot_options.dlg:12: ..."); `dialogs` then holds what came before.
bool ReadDialogResources(std::string_view text, std::string_view name,
                         std::vector<DialogResource>& dialogs, std::string& error);

// The dialogs built into the library; nullptr for an id without a resource.
const DialogResource* FindDialogResource(int dialogId);
std::span<const DialogResource> DialogResources();

// The built-in texts by name, and the first error in reading them (empty when all read).
struct ResourceText {
  std::string_view name;
  std::string_view text;
};
std::span<const ResourceText> EmbeddedResourceTexts();
const std::string& EmbeddedResourceError();

}  // namespace kaldena
