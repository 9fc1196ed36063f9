// Reading the dialog resource texts, and the table of the built-in ones.
#include "toolkit/dialog_resources.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

namespace {

constexpr std::array<std::pair<FieldKind, std::string_view>, 13> kKindNames{{
    {FieldKind::kLabel, "LABEL"},
    {FieldKind::kText, "TEXT"},
    {FieldKind::kRealEdit, "REALEDIT"},
    {FieldKind::kIntegerEdit, "INTEGEREDIT"},
    {FieldKind::kIntegerSpin, "INTEGERSPIN"},
    {FieldKind::kRealSpin, "REALSPIN"},
    {FieldKind::kCheckBox, "CHECKBOX"},
    {FieldKind::kRadioButton, "RADIOBUTTON"},
    {FieldKind::kPushButton, "PUSHBUTTON"},
    {FieldKind::kColourButton, "COLOURBUTTON"},
    {FieldKind::kGrid, "GRID"},
    {FieldKind::kMenu, "MENU"},
    {FieldKind::kGroupBox, "GROUPBOX"},
}};

enum class Section { kNone, kFields, kChecks, kRanges, kLengths, kFormats, kGrids, kMenus };

constexpr std::array<std::pair<Section, std::string_view>, 6> kSectionNames{{
    {Section::kChecks, "[Checks]"},
    {Section::kRanges, "[Ranges]"},
    {Section::kLengths, "[Lengths]"},
    {Section::kFormats, "[Formats]"},
    {Section::kGrids, "[Grids]"},
    {Section::kMenus, "[Menus]"},
}};

// A line cut into blank-separated words, with a double-quoted text at its end kept whole.
struct Words {
  std::vector<std::string_view> words;
  std::optional<std::string_view> quoted;
};

Words SplitLine(std::string_view line) {
  Words result;
  const std::size_t quote = line.find('"');
  if (quote != std::string_view::npos) {
    const std::size_t close = line.rfind('"');
    if (close > quote) result.quoted = line.substr(quote + 1, close - quote - 1);
    line = line.substr(0, quote);
  }
  std::size_t at = 0;
  while (at < line.size()) {
    const std::size_t start = line.find_first_not_of(" \t", at);
    if (start == std::string_view::npos) break;
    const std::size_t end = std::min(line.find_first_of(" \t", start), line.size());
    result.words.push_back(line.substr(start, end - start));
    at = end;
  }
  return result;
}

// An integer or real that is the whole word.
template <typename Number>
bool ToNumber(std::string_view word, Number& value) {
  const char* end = word.data() + word.size();
  const auto [ptr, ec] = std::from_chars(word.data(), end, value);
  return ec == std::errc() && ptr == end;
}

// Reads one text line by line; each step either succeeds or leaves its message in `error_`.
class ResourceReader {
 public:
  ResourceReader(std::string_view name, std::vector<DialogResource>& dialogs)
      : name_(name), dialogs_(dialogs) {}

  bool Read(std::string_view text) {
    for (std::string_view raw : SplitLines(text)) {
      ++lineNumber_;
      if (raw.ends_with('\r')) raw.remove_suffix(1);
      const std::string line = StrippedText(raw);
      if (line.empty() || line.front() == '#') continue;
      if (!ReadLine(line)) return false;
    }
    return Finish();
  }

  const std::string& Error() const { return error_; }

 private:
  bool Fail(std::string_view what) {
    error_ = std::string(name_) + ":" + std::to_string(lineNumber_) + ": " + std::string(what);
    return false;
  }

  bool ReadLine(const std::string& line) {
    if (pendingLines_ > 0) return ReadPendingLine(line);
    if (line.front() == '[') return StartSection(line);
    const Words words = SplitLine(line);
    if (words.words.empty()) return Fail("a line without a class or field id");
    if (words.words.front() == "DIALOG") return ReadDialog(words);
    switch (section_) {
      case Section::kNone:
        return Fail("a field before the first DIALOG line");
      case Section::kFields:
        return ReadField(words);
      default:
        return ReadCompanion(words);
    }
  }

  // The row-header width and row labels of a grid, the entries of a menu. A grid's labels
  // may be left out: then a section header or a DIALOG line follows the width.
  bool ReadPendingLine(const std::string& line) {
    DialogField& field = *pendingField_;
    const bool header = line.front() == '[' || line.starts_with("DIALOG");
    --pendingLines_;
    if (field.kind == FieldKind::kMenu) {
      if (header) return Fail("menu " + std::to_string(field.id) + " lacks entries");
      field.menu.push_back(line);
      return true;
    }
    GridLayout& grid = *field.grid;
    if (pendingWidth_) {
      pendingWidth_ = false;
      if (!ToNumber(line, grid.headerWidth) || grid.headerWidth < 0) {
        return Fail("row-header width of grid " + std::to_string(field.id) +
                    " is not a whole number");
      }
      return true;
    }
    if (header && grid.rowLabels.empty()) {
      pendingLines_ = 0;
      return ReadLine(line);
    }
    if (header) return Fail(GridLabelShortage(field));
    grid.rowLabels.push_back(line);
    return true;
  }

  static std::string GridLabelShortage(const DialogField& field) {
    return "grid " + std::to_string(field.id) + " has " +
           std::to_string(field.grid->rowLabels.size()) + " row labels for " +
           std::to_string(field.grid->rows) + " rows";
  }

  bool StartSection(const std::string& line) {
    if (dialogs_.empty()) return Fail("section " + line + " before the first DIALOG line");
    for (const auto& [section, name] : kSectionNames) {
      if (line == name) {
        section_ = section;
        return true;
      }
    }
    return Fail("unknown section " + line);
  }

  bool ReadDialog(const Words& words) {
    DialogResource dialog;
    dialog.source = std::string(name_);
    if (words.words.size() != 4 || !words.quoted || !ToNumber(words.words[1], dialog.id) ||
        !ToNumber(words.words[2], dialog.width) || !ToNumber(words.words[3], dialog.height)) {
      return Fail("expected DIALOG id width height \"title\"");
    }
    if (dialog.id <= 0 || dialog.width <= 0 || dialog.height <= 0) {
      return Fail("dialog id and size must be above 0");
    }
    if (!GridsLaidOut()) return false;
    for (const DialogResource& other : dialogs_) {
      if (other.id == dialog.id) return Fail("dialog " + std::to_string(dialog.id) + " twice");
    }
    dialog.title = std::string(*words.quoted);
    dialogs_.push_back(std::move(dialog));
    section_ = Section::kFields;
    return true;
  }

  bool ReadField(const Words& words) {
    DialogField field;
    const auto kind = std::find_if(kKindNames.begin(), kKindNames.end(),
                                   [&](const auto& k) { return k.second == words.words[0]; });
    if (kind == kKindNames.end()) return Fail("unknown field class " + std::string(words.words[0]));
    field.kind = kind->first;
    if (words.words.size() != 6 || !words.quoted || !ToNumber(words.words[1], field.id) ||
        !ToNumber(words.words[2], field.x) || !ToNumber(words.words[3], field.y) ||
        !ToNumber(words.words[4], field.width) || !ToNumber(words.words[5], field.height)) {
      return Fail("expected CLASS id x y width height \"caption\"");
    }
    if (field.id == 0 || field.id < -1) return Fail("field id must be above 0, or -1");
    if (field.width <= 0 || field.height <= 0) return Fail("field size must be above 0");
    DialogResource& dialog = dialogs_.back();
    if (field.id > 0 && dialog.Field(field.id) != nullptr) {
      return Fail("field " + std::to_string(field.id) + " twice");
    }
    if (field.IsStatic() && field.kind != FieldKind::kLabel && field.kind != FieldKind::kGroupBox) {
      return Fail("only labels and group boxes may have the id -1");
    }
    field.caption = std::string(*words.quoted);
    if (field.kind == FieldKind::kRadioButton) {
      const bool continues =
          !dialog.fields.empty() && dialog.fields.back().kind == FieldKind::kRadioButton;
      field.radioGroup = continues ? dialog.fields.back().radioGroup : field.id;
    }
    dialog.fields.push_back(std::move(field));
    return true;
  }

  // The companion line's field, which must exist and be of a kind the section allows.
  DialogField* CompanionField(const Words& words, std::size_t count, std::string_view form,
                              bool (*fits)(const DialogField&), std::string_view kinds) {
    int id = 0;
    if (words.words.size() != count || words.quoted || !ToNumber(words.words[0], id)) {
      Fail(std::string("expected ") + std::string(form));
      return nullptr;
    }
    DialogResource& dialog = dialogs_.back();
    auto field = std::find_if(dialog.fields.begin(), dialog.fields.end(),
                              [&](const DialogField& f) { return f.id == id && id > 0; });
    if (field == dialog.fields.end()) {
      Fail("dialog " + std::to_string(dialog.id) + " has no field " + std::to_string(id));
      return nullptr;
    }
    if (!fits(*field)) {
      Fail("field " + std::to_string(id) + " is not " + std::string(kinds));
      return nullptr;
    }
    return &*field;
  }

  bool ReadCompanion(const Words& words) {
    switch (section_) {
      case Section::kChecks:
        return ReadCheck(words);
      case Section::kRanges:
        return ReadRange(words);
      case Section::kLengths:
        return ReadLength(words);
      case Section::kFormats:
        return ReadFormat(words);
      case Section::kGrids:
        return ReadGrid(words);
      default:
        return ReadMenu(words);
    }
  }

  bool ReadCheck(const Words& words) {
    DialogField* field = CompanionField(
        words, 2, "id state", [](const DialogField& f) { return f.HoldsState(); },
        "a check box or radio button");
    if (field == nullptr) return false;
    int state = 0;
    if (!ToNumber(words.words[1], state) || (state != 0 && state != 1)) {
      return Fail("state must be 0 or 1");
    }
    field->checked = state;
    return true;
  }

  bool ReadRange(const Words& words) {
    DialogField* field = CompanionField(
        words, 3, "id low high", [](const DialogField& f) { return f.HoldsNumber(); },
        "an integer or real field");
    if (field == nullptr) return false;
    ValueRange range;
    if (!ToNumber(words.words[1], range.low) || !ToNumber(words.words[2], range.high) ||
        range.low > range.high) {
      return Fail("expected two numbers, low not above high");
    }
    field->range = range;
    return true;
  }

  bool ReadLength(const Words& words) {
    DialogField* field = CompanionField(
        words, 2, "id length", [](const DialogField& f) { return f.kind == FieldKind::kText; },
        "a text field");
    if (field == nullptr) return false;
    if (!ToNumber(words.words[1], field->length) || field->length <= 0) {
      return Fail("length must be a whole number above 0");
    }
    return true;
  }

  bool ReadFormat(const Words& words) {
    DialogField* field = CompanionField(
        words, 2, "id format",
        [](const DialogField& f) {
          return f.kind == FieldKind::kRealEdit || f.kind == FieldKind::kRealSpin;
        },
        "a real field");
    if (field == nullptr) return false;
    // A format the writer cannot use for one real writes nothing.
    if (FormatLine(words.words[1], 0.0).empty()) {
      return Fail("format " + std::string(words.words[1]) + " does not write a real");
    }
    field->format = std::string(words.words[1]);
    return true;
  }

  bool ReadGrid(const Words& words) {
    DialogField* field = CompanionField(
        words, 4, "id columns rows columnDialog",
        [](const DialogField& f) { return f.kind == FieldKind::kGrid; }, "a grid");
    if (field == nullptr) return false;
    GridLayout grid;
    if (!ToNumber(words.words[1], grid.columns) || !ToNumber(words.words[2], grid.rows) ||
        !ToNumber(words.words[3], grid.columnDialog) || grid.columns <= 0 || grid.rows < 0 ||
        grid.columnDialog <= 0) {
      return Fail("expected columns above 0, rows not below 0 and a column dialog");
    }
    field->grid = std::move(grid);
    pendingField_ = field;
    pendingWidth_ = true;
    pendingLines_ = field->grid->rows + 1;  // the width, then the labels
    return true;
  }

  bool ReadMenu(const Words& words) {
    DialogField* field = CompanionField(
        words, 3, "id count selected",
        [](const DialogField& f) { return f.kind == FieldKind::kMenu; }, "a menu");
    if (field == nullptr) return false;
    int count = 0;
    if (!ToNumber(words.words[1], count) || !ToNumber(words.words[2], field->menuSelected) ||
        count < 0 || field->menuSelected < 0 || field->menuSelected > count) {
      return Fail("expected a count and a selected entry from 0 to the count");
    }
    pendingField_ = field;
    pendingLines_ = count;
    return true;
  }

  // Every grid of the dialog read last has its line in [Grids].
  bool GridsLaidOut() {
    if (dialogs_.empty()) return true;
    for (const DialogField& field : dialogs_.back().fields) {
      if (field.kind == FieldKind::kGrid && !field.grid) {
        return Fail("grid " + std::to_string(field.id) + " has no line in [Grids]");
      }
    }
    return true;
  }

  bool Finish() {
    if (pendingLines_ == 0) return GridsLaidOut();
    const DialogField& field = *pendingField_;
    if (field.kind == FieldKind::kMenu) {
      return Fail("menu " + std::to_string(field.id) + " lacks entries");
    }
    if (pendingWidth_) {
      return Fail("grid " + std::to_string(field.id) + " lacks its row-header width");
    }
    return field.grid->rowLabels.empty() || Fail(GridLabelShortage(field));
  }

  std::string_view name_;
  std::vector<DialogResource>& dialogs_;
  std::string error_;
  int lineNumber_ = 0;
  Section section_ = Section::kNone;
  DialogField* pendingField_ = nullptr;
  bool pendingWidth_ = false;
  int pendingLines_ = 0;
};

}  // namespace

std::string_view FieldKindName(FieldKind kind) {
  for (const auto& [k, name] : kKindNames) {
    if (k == kind) return name;
  }
  return {};
}

bool DialogField::HoldsText() const {
  return kind == FieldKind::kText || kind == FieldKind::kLabel || kind == FieldKind::kMenu;
}

bool DialogField::HoldsNumber() const {
  return kind == FieldKind::kRealEdit || kind == FieldKind::kIntegerEdit ||
         kind == FieldKind::kIntegerSpin || kind == FieldKind::kRealSpin;
}

bool DialogField::HoldsState() const {
  return kind == FieldKind::kCheckBox || kind == FieldKind::kRadioButton;
}

bool DialogField::IsButton() const {
  return kind == FieldKind::kPushButton || kind == FieldKind::kColourButton;
}

const DialogField* DialogResource::Field(int fieldId) const {
  if (fieldId <= 0) return nullptr;
  for (const DialogField& field : fields) {
    if (field.id == fieldId) return &field;
  }
  return nullptr;
}

bool ReadDialogResources(std::string_view text, std::string_view name,
                         std::vector<DialogResource>& dialogs, std::string& error) {
  ResourceReader reader(name, dialogs);
  if (reader.Read(text)) return true;
  error = reader.Error();
  return false;
}

namespace {

struct BuiltIn {
  std::vector<DialogResource> dialogs;
  std::string error;
};

const DialogResource* FindIn(const std::vector<DialogResource>& dialogs, int id) {
  auto it = std::find_if(dialogs.begin(), dialogs.end(),
                         [&](const DialogResource& d) { return d.id == id; });
  return it == dialogs.end() ? nullptr : &*it;
}

// A grid's column dialog must exist and hold one addressable field a column.
std::string GridColumnsError(const std::vector<DialogResource>& dialogs) {
  for (const DialogResource& dialog : dialogs) {
    for (const DialogField& field : dialog.fields) {
      if (!field.grid) continue;
      const DialogResource* columns = FindIn(dialogs, field.grid->columnDialog);
      const bool fits = columns != nullptr &&
                        static_cast<int>(columns->fields.size()) == field.grid->columns &&
                        std::none_of(columns->fields.begin(), columns->fields.end(),
                                     [](const DialogField& f) { return f.IsStatic(); });
      if (!fits) {
        return dialog.source + ": grid " + std::to_string(field.id) + " needs dialog " +
               std::to_string(field.grid->columnDialog) + " with " +
               std::to_string(field.grid->columns) + " column fields";
      }
    }
  }
  return {};
}

BuiltIn ReadBuiltIn() {
  BuiltIn all;
  for (const ResourceText& text : EmbeddedResourceTexts()) {
    std::vector<DialogResource> dialogs;
    std::string error;
    if (!ReadDialogResources(text.text, text.name, dialogs, error) && all.error.empty()) {
      all.error = error;
    }
    for (DialogResource& dialog : dialogs) {
      if (const DialogResource* other = FindIn(all.dialogs, dialog.id)) {
        if (all.error.empty()) {
          all.error = dialog.source + ": dialog " + std::to_string(dialog.id) + " is in " +
                      other->source + " already";
        }
        continue;
      }
      all.dialogs.push_back(std::move(dialog));
    }
  }
  if (all.error.empty()) all.error = GridColumnsError(all.dialogs);
  return all;
}

const BuiltIn& BuiltInDialogs() {
  static const BuiltIn builtIn = ReadBuiltIn();
  return builtIn;
}

}  // namespace

std::string FieldRealText(double value, std::string_view format) {
  if (!format.empty()) return StrippedText(FormatLine(format, value));
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

const DialogResource* FindDialogResource(int dialogId) {
  return FindIn(BuiltInDialogs().dialogs, dialogId);
}

std::span<const DialogResource> DialogResources() { return BuiltInDialogs().dialogs; }

const std::string& EmbeddedResourceError() { return BuiltInDialogs().error; }

}  // namespace kaldena
