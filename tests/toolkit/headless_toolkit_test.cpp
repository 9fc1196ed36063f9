// The scripted toolkit does what a test scripts and records what the program did.
#include "toolkit/headless_toolkit.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/checked_toolkit.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

// Dialogs of the built-in resources: Fourier options (136: map types 1480 to 1484, F(000)
// 1487 shown as f10.1, title 1497 of 12 characters, positive level 1485 a spin of 0 to 999)
// and the Fourier plot (137: X, Y, Z 1500 to 1502, Next 1503, and Cancel without OK).
TEST(ScriptedToolkit, AModelessDialogGetsItsButtonsBeforeLaterMessages) {
  testing::CheckedToolkit toolkit;
  toolkit.QueueMenu(40041);
  toolkit.QueueDialog({137, {{1501, "1"}}, {1503, kIdCancel}});
  toolkit.WDialogLoad(137);
  EXPECT_EQ(toolkit.WDialogGetRadioButton(1500, 1502), 3);  // as [Checks] sets it
  toolkit.WDialogPutRadioButton(1500);
  EXPECT_EQ(toolkit.WDialogGetRadioButton(1500, 1502), 1);
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  EXPECT_EQ(toolkit.WDialogGetRadioButton(1500, 1502), 2);
  Message m = toolkit.WMessageGet();
  EXPECT_EQ(m.type, kPushButton);
  EXPECT_EQ(m.value, 1503);
  m = toolkit.WMessageGet();
  EXPECT_EQ(m.value, kIdCancel);
  EXPECT_EQ(toolkit.InfoDialog(kInfoExitButton), kIdCancel);
  m = toolkit.WMessageGet();
  EXPECT_EQ(m.type, kMenuSelect);
  EXPECT_EQ(m.value, 40041);
  // The script used up, the main window is asked to close so that every loop ends.
  m = toolkit.WMessageGet();
  EXPECT_EQ(m.type, kCloseRequest);
  EXPECT_EQ(m.window, kMainWindow);
  toolkit.WDialogUnload();

  // A dialog without an answer is cancelled; a modal one reports it at once.
  toolkit.WDialogLoad(136);
  toolkit.WDialogShow(-1, -1, 0, kDialogModal);
  EXPECT_EQ(toolkit.InfoDialog(kInfoDialogAccepted), 0);
  EXPECT_EQ(toolkit.DialogsShown(), (std::vector<int>{137, 136}));
}

TEST(ScriptedToolkit, PutValuesShowAsTheResourceFormatsThem) {
  testing::CheckedToolkit toolkit;
  toolkit.WDialogLoad(136);
  toolkit.WDialogPutReal(1487, 2000.0);
  EXPECT_EQ(toolkit.WDialogGetString(1487), "2000.0");
  toolkit.WDialogPutReal(1487, 1e12);  // too wide for f10.1
  EXPECT_EQ(toolkit.WDialogGetString(1487), "**********");
  toolkit.WDialogPutString(1497, "A title longer than twelve");
  EXPECT_EQ(toolkit.WDialogGetString(1497), "A title long");
  toolkit.WDialogPutInteger(1485, 1500);  // a spin shows its range only
  EXPECT_EQ(toolkit.WDialogGetInteger(1485), 999);
  toolkit.WDialogPutRadioButton(1483);
  toolkit.WDialogPutRadioButton(1481);
  EXPECT_EQ(toolkit.WDialogGetRadioButton(1480, 1484), 2);
  EXPECT_EQ(toolkit.DialogField(136, 1483), "0");

  // The peak grid: four columns (label of 4 characters, x, y, z as f10.4), rows set by the
  // program and labelled by it.
  toolkit.WDialogLoad(140);
  toolkit.WGridRows(1450, 2);
  toolkit.WGridLabelRow(1450, 2, "002");
  toolkit.WGridPutCellString(1450, 1, 2, "P12345");
  toolkit.WGridPutCellReal(1450, 3, 2, 0.123456);
  EXPECT_EQ(toolkit.WGridGetCellString(1450, 1, 2), "P123");
  EXPECT_EQ(toolkit.WGridGetCellString(1450, 3, 2), "0.1235");
  EXPECT_DOUBLE_EQ(toolkit.WGridGetCellReal(1450, 3, 2), 0.1235);
  EXPECT_EQ(toolkit.WInfoGrid(1450, 1), 2);
  EXPECT_TRUE(toolkit.ResourceProblems().empty());
}

// A dialog of the test's own: a menu, and a grid whose rows the resource labels.
TEST(ScriptedToolkit, MenusAndLabelledGridsActAsTheirResourceSays) {
  testing::CheckedToolkit toolkit;
  toolkit.AddDialogResources(R"(DIALOG 900 200 200 "Test"
MENU 10 0 0 90 20 ""
GRID 11 0 30 190 150 ""
PUSHBUTTON 1 0 180 60 20 "OK"
[Menus]
10 2 2
beta:s
U:s
[Grids]
11 1 2 901
30
first
second
DIALOG 901 60 20 "Columns"
CHECKBOX 1 0 0 60 20 "On"
)",
                             "test.dlg");
  toolkit.WDialogLoad(900);
  EXPECT_EQ(toolkit.WDialogGetInteger(10), 2);
  EXPECT_EQ(toolkit.WDialogGetString(10), "U:s");
  toolkit.WDialogPutInteger(10, 1);
  EXPECT_EQ(toolkit.WDialogGetString(10), "beta:s");
  EXPECT_EQ(toolkit.WInfoGrid(11, 1), 2);
  toolkit.WGridPutCellCheckBox(11, 1, 2, 1);
  EXPECT_EQ(toolkit.WGridGetCheckBox(11, 1, 2), 1);
  toolkit.QueueDialog({900, {{10, "U:s"}}, {kIdOk}});
  toolkit.WDialogShow(-1, -1, 0, kDialogModal);
  EXPECT_EQ(toolkit.WDialogGetInteger(10), 2);

  ScriptedToolkit unchecked;
  unchecked.AddDialogResources(
      "DIALOG 900 200 200 \"Test\"\nMENU 10 0 0 90 20 \"\"\nPUSHBUTTON 1 0 180 60 20 \"OK\"\n"
      "[Menus]\n10 2 0\nbeta:s\nU:s\n",
      "test.dlg");
  unchecked.WDialogLoad(900);
  unchecked.WDialogPutInteger(10, 3);
  unchecked.QueueDialog({900, {{10, "Gamma"}}, {kIdOk}});
  unchecked.WDialogShow(-1, -1, 0, kDialogModal);
  unchecked.AddDialogResources("DIALOG 901 -1 1 \"Bad\"\n", "bad.dlg");
  EXPECT_EQ(unchecked.ResourceProblems(),
            (std::vector<std::string>{"dialog 900: WDialogPutInteger: menu 10 has no entry 3",
                                      "dialog 900: answer: field 10 has no entry \"Gamma\"",
                                      "bad.dlg:1: dialog id and size must be above 0"}));
}

// Each call is one that the dialog on screen refuses; the problem names dialog, call and field.
TEST(ScriptedToolkit, CallsOnFieldsTheResourceLacksAreProblems) {
  ScriptedToolkit toolkit;
  const auto lastProblem = [&] { return toolkit.ResourceProblems().back(); };
  toolkit.WDialogLoad(199);  // no resource here
  EXPECT_EQ(lastProblem(), "dialog 199: WDialogLoad: no resource");
  toolkit.WDialogPutString(1012, "unchecked");
  EXPECT_EQ(toolkit.ResourceProblems().size(), 1u);
  toolkit.WDialogUnload();
  toolkit.WDialogPutString(1497, "x");
  EXPECT_EQ(lastProblem(), "dialog 0: WDialogPutString: no dialog is loaded");

  toolkit.WDialogLoad(139);
  toolkit.WDialogPutReal(1444, 1.0);
  EXPECT_EQ(lastProblem(), "dialog 139: WDialogPutReal: no field 1444");
  EXPECT_EQ(toolkit.DialogField(139, 1444), "");
  toolkit.WDialogGetCheckBox(1440);
  EXPECT_EQ(lastProblem(), "dialog 139: WDialogGetCheckBox: field 1440 is a REALEDIT");
  toolkit.WDialogFieldState(1445, 0);
  EXPECT_EQ(lastProblem(), "dialog 139: WDialogFieldState: no field 1445");
  toolkit.WGridRows(1440, 3);
  EXPECT_EQ(lastProblem(), "dialog 139: WGridRows: field 1440 is a REALEDIT");

  toolkit.WDialogLoad(140);
  toolkit.WGridRows(1450, 2);
  toolkit.WGridPutCellReal(1450, 5, 1, 0.5);
  EXPECT_EQ(lastProblem(), "dialog 140: WGridPutCellReal: grid 1450 has no column 5");
  toolkit.WGridPutCellReal(1450, 2, 3, 0.5);
  EXPECT_EQ(lastProblem(), "dialog 140: WGridPutCellReal: grid 1450 has no row 3");
  toolkit.WGridPutCellCheckBox(1450, 2, 1, 1);
  EXPECT_EQ(lastProblem(), "dialog 140: WGridPutCellCheckBox: column 2 of grid 1450 is a REALEDIT");

  toolkit.WDialogLoad(136);
  toolkit.WDialogGetRadioButton(1480, 1485);
  EXPECT_EQ(lastProblem(), "dialog 136: WDialogGetRadioButton: field 1485 is a INTEGERSPIN");
  EXPECT_EQ(toolkit.ResourceProblems().size(), 10u);
}

// A script may only do what a user could: type into fields that take input, within their
// ranges and lengths, and press the dialog's buttons.
TEST(ScriptedToolkit, AnswersTheDialogWouldRefuseAreProblems) {
  ScriptedToolkit toolkit;
  toolkit.QueueDialog({139, {{1440, "200"}, {1441, "twenty"}, {1446, "1"}}, {1452, kIdOk}});
  toolkit.WDialogLoad(139);
  toolkit.WDialogShow(-1, -1, 0, kDialogModal);
  toolkit.QueueDialog(
      {136, {{1497, "Thirteen char"}, {1480, "2"}, {1485, "2.5"}, {1490, ""}}, {kIdCancel}});
  toolkit.WDialogLoad(136);
  toolkit.WDialogShow(-1, -1, 0, kDialogModal);
  toolkit.QueueDialog({102, {{1001, "typed into a label"}}, {kIdOk}});
  toolkit.WDialogLoad(102);
  toolkit.WDialogShow(-1, -1, 0, kDialogModal);
  EXPECT_EQ(toolkit.ResourceProblems(),
            (std::vector<std::string>{
                "dialog 139: answer: field 1440 takes 0 to 180, not 200",
                "dialog 139: answer: field 1441 takes a number, not \"twenty\"",
                "dialog 139: answer: no field 1446",
                "dialog 139: answer: no field 1452",
                "dialog 136: answer: field 1480 takes 0 or 1, not \"2\"",
                "dialog 136: answer: field 1485 takes a number, not \"2.5\"",
                "dialog 136: answer: field 1497 holds 12 characters",
                "dialog 102: answer: field 1001 is a LABEL",
            }));
}

// The check as the shell's tests use it: a wrong id fails the test.
TEST(ScriptedToolkit, ACheckedToolkitFailsTheTestOnAWrongFieldId) {
  EXPECT_NONFATAL_FAILURE(
      {
        testing::CheckedToolkit toolkit;
        toolkit.WDialogLoad(133);
        toolkit.WDialogPutReal(1435, 0.01);
      },
      "dialog 133: WDialogPutReal: no field 1435");
}

TEST(ScriptedToolkit, MouseAndFieldMessagesPassOnlyWhenEnabled) {
  ScriptedToolkit toolkit;
  toolkit.QueueMessage({kMouseMove, 0, 5, 5});
  toolkit.QueueMessage({kMouseButtonDown, 1, 5, 5});
  toolkit.WMessageEnable(kMouseButtonUp, true);
  toolkit.QueueMessage({kMouseButtonUp, 1, 7, 7});
  EXPECT_EQ(toolkit.WMessageGet().type, kMouseButtonDown);
  EXPECT_EQ(toolkit.WMessageGet().type, kMouseButtonUp);
}

TEST(ScriptedToolkit, FileOperationsAreRealAndFailLikeTheDesktop) {
  testing::ScratchDir dir;
  const fs::path from = dir.Write("a.txt", "text\n");
  const fs::path to = dir.Path() / "b.txt";
  ScriptedToolkit toolkit;
  toolkit.IOsCopyFile(from.string(), to.string() + "   ");
  EXPECT_EQ(toolkit.InfoError(1), 0);
  EXPECT_EQ(testing::ReadBytes(to), "text\n");

  fs::permissions(to, fs::perms::owner_read, fs::perm_options::replace);
  dir.Write("a.txt", "changed\n");
  toolkit.IOsCopyFile(from.string(), to.string());
  EXPECT_EQ(toolkit.InfoError(1), kErrorOsCommand);
  EXPECT_EQ(toolkit.InfoError(1), 0);  // the query clears it
  EXPECT_EQ(testing::ReadBytes(to), "text\n");
  fs::permissions(to, fs::perms::owner_all, fs::perm_options::replace);

  toolkit.IOsCopyFile((dir.Path() / "missing").string(), to.string());
  EXPECT_EQ(toolkit.InfoError(1), kErrorOsCommand);
  toolkit.IOsDeleteFile(to.string(), 1);
  EXPECT_EQ(toolkit.InfoError(1), 0);
  EXPECT_FALSE(fs::exists(to));
  toolkit.IOsDeleteFile(to.string(), 1);
  EXPECT_EQ(toolkit.InfoError(1), kErrorOsCommand);
  ASSERT_EQ(toolkit.FileOperations().size(), 5u);
  EXPECT_FALSE(toolkit.FileOperations()[1].ok);
}

TEST(ScriptedToolkit, CommandsAreRecordedWithTheirArgumentsAndNeverStarted) {
  ScriptedToolkit toolkit;
  toolkit.FailProgram("CurveVista.exe");
  toolkit.IOsCommand({"CurveVista.exe", "my data; rm -rf x.xy"}, 0);
  EXPECT_EQ(toolkit.InfoError(1), kErrorOsCommand);
  toolkit.IOsCommand({"/usr/bin/editor", "it's \"quoted\".par"}, 0);
  EXPECT_EQ(toolkit.InfoError(1), 0);
  ASSERT_EQ(toolkit.Commands().size(), 2u);
  EXPECT_EQ(toolkit.Commands()[1][1], "it's \"quoted\".par");
}

TEST(ScriptedToolkit, TextWindowsInsertAtTheirLineNumber) {
  ScriptedToolkit toolkit;
  const int log = toolkit.WindowOpenChild(256, 0, 0, 10, 10, "Log");
  toolkit.WindowSelect(log);
  toolkit.WEditLinePut(1, "first");
  toolkit.WEditLinePut(2, "third");
  toolkit.WEditLinePut(2, "second");
  toolkit.WindowSelect(kMainWindow);
  toolkit.WEditLinePut(1, "elsewhere");
  EXPECT_EQ(toolkit.WindowText(log), (std::vector<std::string>{"first", "second", "third"}));
}

TEST(ScriptedToolkit, BoxesAndSelectionsAnswerFromTheirQueues) {
  ScriptedToolkit toolkit;
  toolkit.QueueAnswer(true);
  toolkit.WMessageBox(kButtonsYesNo, kIconQuestion, 1, "Sure?", "Question");
  EXPECT_EQ(toolkit.InfoDialog(kInfoDialogAccepted), 1);
  toolkit.WMessageBox(kButtonsYesNo, kIconQuestion, 1, "Again?", "Question");
  EXPECT_EQ(toolkit.InfoDialog(kInfoDialogAccepted), 0);  // unanswered: No
  std::string name = "*.rec";
  toolkit.WSelectFile("Project file|*.rec|", 136, name, "Open");
  EXPECT_EQ(name, "**.rec");  // a cancel keeps the "*" in front
  toolkit.QueueSelection("/x/y.rec");
  toolkit.WSelectFile("Project file|*.rec|", 136, name, "Open");
  EXPECT_EQ(name, "/x/y.rec");
  EXPECT_EQ(toolkit.Boxes().size(), 2u);
  int r = 0, g = 0, b = 0;
  EXPECT_FALSE(toolkit.WSelectColour(r, g, b));
  toolkit.QueueColour(0x102030);
  EXPECT_TRUE(toolkit.WSelectColour(r, g, b));
  EXPECT_EQ(r, 0x10);
  EXPECT_EQ(b, 0x30);
}

}  // namespace
}  // namespace kaldena
