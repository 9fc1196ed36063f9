#include "qt/qt_dialogs.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QDoubleValidator>
#include <QGroupBox>
#include <QHeaderView>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTableWidget>
#include <algorithm>
#include <cstdlib>

#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {
namespace {

QString ToQt(std::string_view text) { return QString::fromUtf8(text.data(), text.size()); }

// Decimals of an F or E format ("(f8.2)" gives 2); `otherwise` without one.
int DecimalsOf(const std::string& format, int otherwise) {
  const std::size_t point = format.find('.');
  if (point == std::string::npos) return otherwise;
  return std::atoi(format.c_str() + point + 1);
}

double ReadReal(const std::string& text) {
  const std::string trimmed(Trimmed(LeftJustify(text)));
  return std::strtod(trimmed.c_str(), nullptr);
}

QColor ColourOf(int colour) {
  return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

// A grid's field-changed value: the row in the high 14 bits, the column in the low 18.
int GridCellValue(int row, int column) { return (row << 18) | column; }

}  // namespace


struct QtDialogs::Loaded {
  const DialogResource* resource = nullptr;
  std::unique_ptr<QDialog> window;
  std::map<int, QWidget*> fields;
  std::map<int, QButtonGroup*> radioGroups;
  int exitButton = 0;
  bool modeless = false;
  bool putting = false;  // the program's own puts send no field-changed messages
};

QtDialogs::QtDialogs(MessageSink sink, std::function<void(const std::function<bool()>&)> runUntil)
    : sink_(std::move(sink)), runUntil_(std::move(runUntil)) {}

QtDialogs::~QtDialogs() = default;

QtDialogs::Loaded* QtDialogs::Selected() const {
  auto found = loaded_.find(selected_);
  return found == loaded_.end() ? nullptr : found->second.get();
}

QDialog* QtDialogs::Current() const {
  Loaded* dialog = Selected();
  return dialog ? dialog->window.get() : nullptr;
}

const DialogField* QtDialogs::Field(int field) const {
  Loaded* dialog = Selected();
  return dialog ? dialog->resource->Field(field) : nullptr;
}

QWidget* QtDialogs::FieldWidget(int field) const {
  Loaded* dialog = Selected();
  if (!dialog) return nullptr;
  auto found = dialog->fields.find(field);
  return found == dialog->fields.end() ? nullptr : found->second;
}

bool QtDialogs::Load(int id) {
  const DialogResource* resource = FindDialogResource(id);
  if (!resource) return false;
  auto dialog = std::make_unique<Loaded>();
  dialog->resource = resource;
  Build(*dialog);
  loaded_[id] = std::move(dialog);
  selected_ = id;
  return true;
}

void QtDialogs::Build(Loaded& dialog) {
  const DialogResource& resource = *dialog.resource;
  dialog.window = std::make_unique<QDialog>(parent_);
  QDialog& window = *dialog.window;
  window.setWindowTitle(ToQt(resource.title));
  window.setFixedSize(resource.width, resource.height);
  // Closing the window is a Cancel.
  QObject::connect(&window, &QDialog::rejected, [this, &dialog] {
    if (dialog.exitButton == 0) dialog.exitButton = kIdCancel;
    if (dialog.modeless) sink_({kPushButton, kIdCancel});
  });
  dialog.putting = true;
  for (const DialogField& field : resource.fields) {
    QWidget* widget = MakeField(dialog, field);
    widget->setGeometry(field.x, field.y, field.width, field.height);
    if (!field.IsStatic()) dialog.fields[field.id] = widget;
  }
  dialog.putting = false;
}

QWidget* QtDialogs::MakeField(Loaded& dialog, const DialogField& field) {
  QDialog* window = dialog.window.get();
  const QString caption = ToQt(field.caption);
  const int id = field.id;
  auto changed = [this, &dialog, id] {
    if (!dialog.putting) sink_({kFieldChanged, id});
  };
  switch (field.kind) {
    case FieldKind::kLabel: {
      auto* label = new QLabel(caption, window);
      label->setWordWrap(field.height > 30);
      label->setAlignment(Qt::AlignLeft | (field.height > 30 ? Qt::AlignTop : Qt::AlignVCenter));
      return label;
    }
    case FieldKind::kText:
    case FieldKind::kRealEdit:
    case FieldKind::kIntegerEdit: {
      auto* edit = new QLineEdit(window);
      if (field.length > 0) edit->setMaxLength(field.length);
      if (field.kind == FieldKind::kIntegerEdit) {
        auto* validator = new QIntValidator(edit);
        if (field.range) validator->setRange(int(field.range->low), int(field.range->high));
        edit->setValidator(validator);
      } else if (field.kind == FieldKind::kRealEdit && field.range) {
        auto* validator = new QDoubleValidator(field.range->low, field.range->high,
                                               DecimalsOf(field.format, 6), edit);
        validator->setNotation(QDoubleValidator::StandardNotation);
        edit->setValidator(validator);
      }
      QObject::connect(edit, &QLineEdit::textEdited, changed);
      return edit;
    }
    case FieldKind::kIntegerSpin: {
      auto* spin = new QSpinBox(window);
      spin->setRange(field.range ? int(field.range->low) : -999999,
                     field.range ? int(field.range->high) : 999999);
      QObject::connect(spin, &QSpinBox::valueChanged, changed);
      return spin;
    }
    case FieldKind::kRealSpin: {
      auto* spin = new QDoubleSpinBox(window);
      spin->setDecimals(DecimalsOf(field.format, 3));
      spin->setRange(field.range ? field.range->low : -1e9, field.range ? field.range->high : 1e9);
      QObject::connect(spin, &QDoubleSpinBox::valueChanged, changed);
      return spin;
    }
    case FieldKind::kCheckBox: {
      auto* box = new QCheckBox(caption, window);
      box->setChecked(field.checked.value_or(0) != 0);
      QObject::connect(box, &QCheckBox::clicked, changed);
      return box;
    }
    case FieldKind::kRadioButton: {
      auto* button = new QRadioButton(caption, window);
      QButtonGroup*& group = dialog.radioGroups[field.radioGroup];
      if (!group) group = new QButtonGroup(window);
      group->addButton(button);
      button->setChecked(field.checked.value_or(0) != 0);
      QObject::connect(button, &QRadioButton::clicked, changed);
      return button;
    }
    case FieldKind::kPushButton:
    case FieldKind::kColourButton: {
      auto* button = new QPushButton(caption, window);
      button->setAutoDefault(false);
      button->setDefault(id == kIdOk);
      QObject::connect(button, &QPushButton::clicked, [this, &dialog, id] {
        if (id == kIdOk || id == kIdCancel) dialog.exitButton = id;
        sink_({kPushButton, id});
      });
      return button;
    }
    case FieldKind::kMenu: {
      auto* menu = new QComboBox(window);
      for (const std::string& entry : field.menu) menu->addItem(ToQt(entry));
      menu->setCurrentIndex(field.menuSelected - 1);
      QObject::connect(menu, &QComboBox::activated, changed);
      return menu;
    }
    case FieldKind::kGroupBox: {
      auto* box = new QGroupBox(caption, window);
      box->lower();
      return box;
    }
    case FieldKind::kGrid: {
      auto* grid = new QTableWidget(window);
      if (field.grid) {
        const GridLayout& layout = *field.grid;
        grid->setColumnCount(layout.columns);
        grid->setRowCount(layout.rows);
        if (const DialogResource* columns = FindDialogResource(layout.columnDialog)) {
          for (int c = 0; c < layout.columns && c < int(columns->fields.size()); ++c) {
            const DialogField& column = columns->fields[static_cast<std::size_t>(c)];
            grid->setHorizontalHeaderItem(c, new QTableWidgetItem(ToQt(column.caption)));
            grid->setColumnWidth(c, column.width);
          }
        }
        grid->verticalHeader()->setFixedWidth(std::max(layout.headerWidth, 20));
        for (int r = 0; r < int(layout.rowLabels.size()); ++r) {
          grid->setVerticalHeaderItem(r, new QTableWidgetItem(ToQt(layout.rowLabels[r])));
        }
      }
      QObject::connect(grid, &QTableWidget::cellChanged, [this, &dialog, id](int row, int column) {
        if (!dialog.putting) sink_({kFieldChanged, id, GridCellValue(row + 1, column + 1)});
      });
      return grid;
    }
  }
  return new QWidget(window);
}

int QtDialogs::Show(int x, int y, int initialField, int type) {
  Loaded* dialog = Selected();
  if (!dialog) return kIdCancel;
  QDialog& window = *dialog->window;
  dialog->exitButton = 0;
  dialog->modeless = type != kDialogModal;
  window.setWindowModality(Qt::ApplicationModal);
  if (x >= 0 && y >= 0) window.move(x, y);
  window.show();
  if (x < 0 && y < 0 && parent_) {
    window.move(parent_->geometry().center() - window.rect().center());
  }
  if (QWidget* first = FieldWidget(initialField)) first->setFocus();
  if (type != kDialogModal) return 0;
  runUntil_([dialog] { return dialog->exitButton != 0; });
  window.hide();
  return dialog->exitButton;
}

void QtDialogs::Hide() {
  if (QDialog* window = Current()) window->hide();
}

void QtDialogs::Unload() {
  loaded_.erase(selected_);
  selected_ = 0;
  if (parent_) parent_->activateWindow();
}

void QtDialogs::UnloadAll() {
  loaded_.clear();
  selected_ = 0;
}

void QtDialogs::Select(int dialog) { selected_ = dialog; }

// --- Fields

void QtDialogs::PutString(int field, std::string_view text) {
  QWidget* widget = FieldWidget(field);
  Loaded* dialog = Selected();
  if (!widget) return;
  dialog->putting = true;
  const QString value = ToQt(Trimmed(text));
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
    edit->setText(value);
  } else if (auto* label = qobject_cast<QLabel*>(widget)) {
    label->setText(value);
  } else if (auto* menu = qobject_cast<QComboBox*>(widget)) {
    menu->setCurrentIndex(menu->findText(value));
  } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
    button->setText(value);
  }
  dialog->putting = false;
}

std::string QtDialogs::GetString(int field) const {
  QWidget* widget = FieldWidget(field);
  QString value;
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
    value = edit->text();
  } else if (auto* label = qobject_cast<QLabel*>(widget)) {
    value = label->text();
  } else if (auto* menu = qobject_cast<QComboBox*>(widget)) {
    value = menu->currentText();
  } else if (auto* spin = qobject_cast<QAbstractSpinBox*>(widget)) {
    value = spin->text();
  }
  return value.toStdString();
}

void QtDialogs::PutReal(int field, double value) {
  const DialogField* resource = Field(field);
  QWidget* widget = FieldWidget(field);
  if (!resource || !widget) return;
  if (auto* spin = qobject_cast<QDoubleSpinBox*>(widget)) {
    Selected()->putting = true;
    spin->setValue(value);
    Selected()->putting = false;
    return;
  }
  PutString(field, FieldRealText(value, resource->format));
}

double QtDialogs::GetReal(int field) const {
  if (auto* spin = qobject_cast<QDoubleSpinBox*>(FieldWidget(field))) return spin->value();
  return ReadReal(GetString(field));
}

void QtDialogs::PutInteger(int field, int value) {
  QWidget* widget = FieldWidget(field);
  if (!widget) return;
  Selected()->putting = true;
  if (auto* spin = qobject_cast<QSpinBox*>(widget)) {
    spin->setValue(value);
  } else if (auto* menu = qobject_cast<QComboBox*>(widget)) {
    menu->setCurrentIndex(value - 1);
  } else {
    Selected()->putting = false;
    return PutString(field, std::to_string(value));
  }
  Selected()->putting = false;
}

int QtDialogs::GetInteger(int field) const {
  QWidget* widget = FieldWidget(field);
  if (auto* spin = qobject_cast<QSpinBox*>(widget)) return spin->value();
  if (auto* menu = qobject_cast<QComboBox*>(widget)) return menu->currentIndex() + 1;
  return static_cast<int>(ReadReal(GetString(field)));
}

// Only a click makes a field-changed message, so these puts send none.
void QtDialogs::PutCheckBox(int field, int state) {
  if (auto* button = qobject_cast<QAbstractButton*>(FieldWidget(field))) {
    button->setChecked(state != 0);
  }
}

int QtDialogs::GetCheckBox(int field) const {
  auto* button = qobject_cast<QAbstractButton*>(FieldWidget(field));
  return button && button->isChecked() ? 1 : 0;
}

void QtDialogs::PutRadioButton(int field) { PutCheckBox(field, 1); }

int QtDialogs::GetRadioButton(int firstField, int lastField) const {
  for (int field = firstField; field <= lastField; ++field) {
    if (GetCheckBox(field) != 0) return field - firstField + 1;
  }
  return 0;
}

void QtDialogs::FieldState(int field, int state) {
  if (QWidget* widget = FieldWidget(field)) widget->setEnabled(state != 0);
}

void QtDialogs::ClearField(int field) {
  QWidget* widget = FieldWidget(field);
  if (auto* grid = qobject_cast<QTableWidget*>(widget)) {
    Selected()->putting = true;
    grid->clearContents();
    Selected()->putting = false;
  } else if (auto* edit = qobject_cast<QLineEdit*>(widget)) {
    edit->clear();
  } else if (auto* menu = qobject_cast<QComboBox*>(widget)) {
    menu->clear();
  }
}

// --- Grids

QTableWidget* QtDialogs::Grid(int grid) const {
  return qobject_cast<QTableWidget*>(FieldWidget(grid));
}

const DialogField* QtDialogs::ColumnField(int grid, int column) const {
  const DialogField* field = Field(grid);
  if (!field || !field->grid) return nullptr;
  const DialogResource* columns = FindDialogResource(field->grid->columnDialog);
  if (!columns || column < 1 || column > static_cast<int>(columns->fields.size())) return nullptr;
  return &columns->fields[static_cast<std::size_t>(column - 1)];
}

void QtDialogs::GridRows(int grid, int count) {
  if (QTableWidget* table = Grid(grid)) table->setRowCount(std::max(count, 0));
}

void QtDialogs::GridColumns(int grid, int count) {
  if (QTableWidget* table = Grid(grid)) table->setColumnCount(std::max(count, 0));
}

void QtDialogs::GridLabelRow(int grid, int row, std::string_view text) {
  QTableWidget* table = Grid(grid);
  if (!table || row < 1 || row > table->rowCount()) return;
  table->setVerticalHeaderItem(row - 1, new QTableWidgetItem(ToQt(Trimmed(text))));
}

void QtDialogs::PutCell(int grid, int column, int row, std::string_view text) {
  QTableWidget* table = Grid(grid);
  if (!table || row < 1 || column < 1) return;
  if (row > table->rowCount()) table->setRowCount(row);
  if (column > table->columnCount()) table->setColumnCount(column);
  Selected()->putting = true;
  QTableWidgetItem* item = table->item(row - 1, column - 1);
  if (!item) table->setItem(row - 1, column - 1, item = new QTableWidgetItem);
  item->setText(ToQt(Trimmed(text)));
  Selected()->putting = false;
}

void QtDialogs::PutCellReal(int grid, int column, int row, double value) {
  const DialogField* field = ColumnField(grid, column);
  PutCell(grid, column, row, FieldRealText(value, field ? field->format : std::string()));
}

void QtDialogs::PutCellCheckBox(int grid, int column, int row, int state) {
  PutCell(grid, column, row, "");
  QTableWidget* table = Grid(grid);
  if (!table || row < 1 || column < 1) return;
  Selected()->putting = true;
  table->item(row - 1, column - 1)->setCheckState(state != 0 ? Qt::Checked : Qt::Unchecked);
  Selected()->putting = false;
}

std::string QtDialogs::GetCell(int grid, int column, int row) const {
  QTableWidget* table = Grid(grid);
  const QTableWidgetItem* item = table ? table->item(row - 1, column - 1) : nullptr;
  return item ? item->text().toStdString() : std::string();
}

int QtDialogs::GetCellCheckBox(int grid, int column, int row) const {
  QTableWidget* table = Grid(grid);
  const QTableWidgetItem* item = table ? table->item(row - 1, column - 1) : nullptr;
  return item && item->checkState() == Qt::Checked ? 1 : 0;
}

void QtDialogs::GridColourRow(int grid, int row, int foreground, int background) {
  QTableWidget* table = Grid(grid);
  if (!table || row < 1 || row > table->rowCount()) return;
  for (int c = 0; c < table->columnCount(); ++c) {
    QTableWidgetItem* item = table->item(row - 1, c);
    if (!item) table->setItem(row - 1, c, item = new QTableWidgetItem);
    item->setForeground(ColourOf(foreground));
    item->setBackground(ColourOf(background));
  }
}

void QtDialogs::GridClearSelection(int grid) {
  if (QTableWidget* table = Grid(grid)) table->clearSelection();
}

void QtDialogs::GridInsertRows(int grid, int row, int count) {
  QTableWidget* table = Grid(grid);
  if (!table) return;
  for (int i = 0; i < count; ++i) table->insertRow(std::clamp(row - 1, 0, table->rowCount()));
}

void QtDialogs::GridDeleteRows(int grid, int row, int count) {
  QTableWidget* table = Grid(grid);
  if (!table) return;
  for (int i = 0; i < count && row - 1 < table->rowCount(); ++i) table->removeRow(row - 1);
}

int QtDialogs::GridRowsInUse(int grid) const {
  QTableWidget* table = Grid(grid);
  return table ? table->rowCount() : 0;
}

}  // namespace kaldena
