// The scripted toolkit does what a test scripts and records what the program did.
#include "toolkit/headless_toolkit.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

TEST(ScriptedToolkit, AModelessDialogGetsItsButtonsBeforeLaterMessages) {
  ScriptedToolkit toolkit;
  toolkit.QueueMenu(40041);
  toolkit.QueueDialog({101, {{1012, "New title"}, {1036, "1"}}, {1038, kIdOk}});
  toolkit.WDialogLoad(101);
  toolkit.WDialogPutString(1012, "Old title   ");
  toolkit.WDialogPutRadioButton(1035);
  toolkit.WDialogPutReal(1020, 1.5);
  toolkit.WDialogShow(-1, -1, 0, kDialogModeless);
  EXPECT_EQ(toolkit.WDialogGetString(1012), "New title");
  EXPECT_EQ(toolkit.WDialogGetRadioButton(1035, 1037), 2);
  EXPECT_DOUBLE_EQ(toolkit.WDialogGetReal(1020), 1.5);
  Message m = toolkit.WMessageGet();
  EXPECT_EQ(m.type, kPushButton);
  EXPECT_EQ(m.value, 1038);
  m = toolkit.WMessageGet();
  EXPECT_EQ(m.value, kIdOk);
  EXPECT_EQ(toolkit.InfoDialog(kInfoExitButton), kIdOk);
  m = toolkit.WMessageGet();
  EXPECT_EQ(m.type, kMenuSelect);
  EXPECT_EQ(m.value, 40041);
  // The script used up, the main window is asked to close so that every loop ends.
  m = toolkit.WMessageGet();
  EXPECT_EQ(m.type, kCloseRequest);
  EXPECT_EQ(m.window, kMainWindow);

  // A dialog without an answer is cancelled; a modal one reports it at once.
  toolkit.WDialogLoad(104);
  toolkit.WDialogShow(-1, -1, 0, kDialogModal);
  EXPECT_EQ(toolkit.InfoDialog(kInfoDialogAccepted), 0);
  EXPECT_EQ(toolkit.DialogsShown(), (std::vector<int>{101, 104}));
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
