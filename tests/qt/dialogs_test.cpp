// Dialogs built from their resources on screen: classes, places and companion data on load,
// values put and got through the toolkit, grids, and the exit buttons of modal and modeless
// dialogs as messages.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTimer>
#include <QValidator>

#include "qt/qt_dialogs.h"
#include "qt/qt_toolkit.h"

namespace kaldena {
namespace {

// The crystallinity dialog's limits: real fields of 0 to 180 shown through (f8.2).
constexpr int kCrystallinity = 139, kMinimum = 1440, kCalculate = 1443;
constexpr int kFourierOptions = 136, kFirstMapType = 1480, kLastMapType = 1484,
              kPositiveLevel = 1485, kPlotTitle = 1497;
constexpr int kPlotOptions = 111, kRawData = 1141, kRawColour = 1386;
constexpr int kPeaks = 140, kPeakGrid = 1450, kAddPeak = 1452;

struct Screen {
  Screen() : toolkit({"kaldena"}) {
    toolkit.WindowOpen(39, 20, 20, 800, 500, 30001, "KALDENA");
    toolkit.WDialogParent(kMainWindow);
  }
  ~Screen() { toolkit.WindowClose(); }
  template <typename T>
  T* Field(int field) {
    return qobject_cast<T*>(toolkit.Dialogs().FieldWidget(field));
  }
  // The next message that is not the windows' own repaint or resize.
  Message Next() {
    Message message;
    do {
      message = toolkit.WMessageGet();
    } while (message.type == kExpose || message.type == kResize);
    return message;
  }

  QtToolkit toolkit;
};

// Clicks a field's button once the dialog's own loop runs.
void ClickLater(Screen& screen, int field) {
  QTimer::singleShot(0, [&screen, field] { screen.Field<QAbstractButton>(field)->click(); });
}

TEST(Dialogs, LoadPlacesTheFieldsOfTheResourceWithTheirClasses) {
  Screen screen;
  screen.toolkit.WDialogLoad(kCrystallinity);
  QDialog* dialog = screen.toolkit.Dialogs().Current();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->windowTitle(), "Crystallinity calculation");
  EXPECT_EQ(dialog->size(), QSize(300, 170));
  QLineEdit* minimum = screen.Field<QLineEdit>(kMinimum);
  ASSERT_NE(minimum, nullptr);
  EXPECT_EQ(minimum->geometry(), QRect(76, 32, 64, 22));
  ASSERT_NE(screen.Field<QPushButton>(kCalculate), nullptr);
  EXPECT_EQ(screen.Field<QPushButton>(kCalculate)->text(), "Calculate");
  EXPECT_EQ(dialog->findChildren<QGroupBox*>().size(), 2);
  EXPECT_EQ(screen.toolkit.Dialogs().FieldWidget(-1), nullptr);  // static fields have no id
  EXPECT_EQ(screen.toolkit.Dialogs().FieldWidget(9999), nullptr);

  screen.toolkit.WDialogLoad(4711);  // no such resource
  EXPECT_EQ(screen.toolkit.InfoError(1), kErrorOsCommand);
}

TEST(Dialogs, RealsShowThroughTheirFormatWithinTheirRange) {
  Screen screen;
  screen.toolkit.WDialogLoad(kCrystallinity);
  screen.toolkit.WDialogPutReal(kMinimum, 12.345);
  EXPECT_EQ(screen.Field<QLineEdit>(kMinimum)->text(), "12.35");
  EXPECT_FLOAT_EQ(screen.toolkit.WDialogGetReal(kMinimum), 12.35f);
  screen.toolkit.WDialogPutReal(kMinimum, 123456.0);  // too wide for f8.2
  EXPECT_EQ(screen.Field<QLineEdit>(kMinimum)->text(), "********");

  const QValidator* range = screen.Field<QLineEdit>(kMinimum)->validator();
  ASSERT_NE(range, nullptr);
  QString text = "200";
  int at = 0;
  EXPECT_NE(range->validate(text, at), QValidator::Acceptable);
  text = "90.5";
  EXPECT_EQ(range->validate(text, at), QValidator::Acceptable);
  EXPECT_EQ(FieldRealText(0.5, ""), "0.5");
  EXPECT_EQ(FieldRealText(0.1234567, ""), "0.1234567");  // every digit it needs, as headless
}

TEST(Dialogs, LengthsRangesAndRadioGroups) {
  Screen screen;
  screen.toolkit.WDialogLoad(kFourierOptions);
  EXPECT_EQ(screen.Field<QLineEdit>(kPlotTitle)->maxLength(), 12);
  screen.toolkit.WDialogPutString(kPlotTitle, "a title longer than twelve");
  EXPECT_EQ(screen.toolkit.WDialogGetString(kPlotTitle), "a title long");
  QSpinBox* level = screen.Field<QSpinBox>(kPositiveLevel);
  ASSERT_NE(level, nullptr);
  EXPECT_EQ(level->maximum(), 999);
  screen.toolkit.WDialogPutInteger(kPositiveLevel, 5000);
  EXPECT_EQ(screen.toolkit.WDialogGetInteger(kPositiveLevel), 999);

  screen.toolkit.WDialogPutRadioButton(kFirstMapType + 2);
  EXPECT_EQ(screen.toolkit.WDialogGetRadioButton(kFirstMapType, kLastMapType), 3);
  screen.toolkit.WDialogPutRadioButton(kLastMapType);  // one of a group at a time
  EXPECT_EQ(screen.toolkit.WDialogGetRadioButton(kFirstMapType, kLastMapType), 5);
  EXPECT_EQ(screen.toolkit.WDialogGetCheckBox(kFirstMapType + 2), 0);
}

TEST(Dialogs, ChecksStartAsTheResourceSaysAndOnlyUserChangesAreMessages) {
  Screen screen;
  screen.toolkit.WDialogLoad(kPlotOptions);
  EXPECT_EQ(screen.toolkit.WDialogGetCheckBox(kRawData), 1);
  screen.toolkit.WMessageEnable(kFieldChanged, true);
  screen.toolkit.WDialogPutCheckBox(kRawData, 0);
  EXPECT_EQ(screen.toolkit.WDialogGetCheckBox(kRawData), 0);
  screen.Field<QAbstractButton>(kRawData)->click();  // the user's click is a message
  const Message changed = screen.Next();
  EXPECT_EQ(changed.type, kFieldChanged);
  EXPECT_EQ(changed.value, kRawData);
  EXPECT_EQ(screen.toolkit.WDialogGetCheckBox(kRawData), 1);

  screen.toolkit.WDialogFieldState(kRawColour, 0);
  EXPECT_FALSE(screen.Field<QAbstractButton>(kRawColour)->isEnabled());
}

TEST(Dialogs, GridsTakeTheirColumnsFromTheColumnDialog) {
  Screen screen;
  screen.toolkit.WDialogLoad(kPeaks);
  QTableWidget* grid = screen.Field<QTableWidget>(kPeakGrid);
  ASSERT_NE(grid, nullptr);
  ASSERT_EQ(grid->columnCount(), 4);
  EXPECT_EQ(grid->horizontalHeaderItem(0)->text(), "Label");
  EXPECT_EQ(grid->horizontalHeaderItem(3)->text(), "z");
  EXPECT_EQ(grid->columnWidth(1), 90);
  EXPECT_EQ(screen.toolkit.WInfoGrid(kPeakGrid, 1), 100);

  screen.toolkit.WGridRows(kPeakGrid, 3);
  screen.toolkit.WGridLabelRow(kPeakGrid, 2, "Q2");
  screen.toolkit.WGridPutCellString(kPeakGrid, 1, 2, "Q2  ");
  screen.toolkit.WGridPutCellReal(kPeakGrid, 2, 2, 0.123456);  // (f10.4)
  EXPECT_EQ(grid->verticalHeaderItem(1)->text(), "Q2");
  EXPECT_EQ(screen.toolkit.WGridGetCellString(kPeakGrid, 2, 2), "0.1235");
  EXPECT_FLOAT_EQ(screen.toolkit.WGridGetCellReal(kPeakGrid, 2, 2), 0.1235f);

  screen.toolkit.WGridInsertRows(kPeakGrid, 1, 1);
  EXPECT_EQ(screen.toolkit.WInfoGrid(kPeakGrid, 1), 4);
  EXPECT_EQ(screen.toolkit.WGridGetCellString(kPeakGrid, 1, 3), "Q2");
  screen.toolkit.WGridDeleteRows(kPeakGrid, 1, 2);
  EXPECT_EQ(screen.toolkit.WGridGetCellString(kPeakGrid, 1, 1), "Q2");

  // A cell the user changes: the row in the high bits, the column in the low 18.
  screen.toolkit.WMessageEnable(kFieldChanged, true);
  grid->item(0, 0)->setText("Q9");
  const Message changed = screen.Next();
  EXPECT_EQ(changed.type, kFieldChanged);
  EXPECT_EQ(changed.value, kPeakGrid);
  EXPECT_EQ(changed.x, (1 << 18) | 1);
}

TEST(Dialogs, AModalDialogReturnsByItsExitButton) {
  Screen screen;
  screen.toolkit.WDialogLoad(kCrystallinity);
  ClickLater(screen, kIdOk);
  screen.toolkit.WDialogShow(-1, -1, 0, kDialogModal);
  EXPECT_EQ(screen.toolkit.InfoDialog(kInfoDialogAccepted), 1);
  EXPECT_FALSE(screen.toolkit.Dialogs().Current()->isVisible());

  // Closing its window is a Cancel.
  QTimer::singleShot(0, [&screen] { screen.toolkit.Dialogs().Current()->reject(); });
  screen.toolkit.WDialogShow(-1, -1, 0, kDialogModal);
  EXPECT_EQ(screen.toolkit.InfoDialog(kInfoDialogAccepted), 0);
  EXPECT_EQ(screen.toolkit.InfoDialog(kInfoExitButton), kIdCancel);
  screen.toolkit.WDialogUnload();
  EXPECT_EQ(screen.toolkit.Dialogs().Current(), nullptr);
}

TEST(Dialogs, AModelessDialogSendsItsButtonsAsMessages) {
  Screen screen;
  screen.toolkit.WDialogLoad(kPeaks);
  screen.toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  EXPECT_TRUE(screen.toolkit.Dialogs().Current()->isVisible());
  screen.Field<QAbstractButton>(kAddPeak)->click();
  EXPECT_EQ(screen.Next().value, kAddPeak);
  screen.Field<QAbstractButton>(kIdCancel)->click();
  const Message cancel = screen.Next();
  EXPECT_EQ(cancel.type, kPushButton);
  EXPECT_EQ(cancel.value, kIdCancel);
  EXPECT_EQ(screen.toolkit.InfoDialog(kInfoDialogAccepted), 0);
}

}  // namespace
}  // namespace kaldena
