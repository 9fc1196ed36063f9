// The rule of an edit command, the codeword rule and the undo history, on a small parameter
// file of their own.
#include "shell/edit_command.h"

#include <gtest/gtest.h>

#include "shell/edit_history.h"
#include "shell/menu_dispatch.h"
#include "shell/shell_fixture.h"
#include "store/record_catalogue.h"
#include "util/text.h"

namespace kaldena {
namespace {

// The lines of a text without their trailing blanks.
std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t end = text.find('\n', start);
    lines.emplace_back(StrippedText(text.substr(start, end - start)));
    start = end == std::string::npos ? text.size() : end + 1;
  }
  return lines;
}

struct EditFixture : testing::ShellFixture {
  EditFixture() {
    dir.Write("p.par",
              "TITL      Old title\n"
              "LIMP        5      0.01\n"
              "CZET          0.000    21.000     0.000\n"
              "CXYZ Fe1        11.000    53.500     0.000     0.000     0.000\n"
              "ZETT         0.01000   0.00000   0.00000\n");
    state.projectFileName = "p.rec";
    state.projectDir = dir.Path().string() + "/";
    state.parameterFileName = "p.par";
  }
};

TEST(EditCommand, CodewordRuleOffWritesZeroOnKeepsOrNumbersOn) {
  EditFixture f;
  CodewordNumbering codes(HighestCodewordGroup(f.state, f.toolkit));
  EXPECT_EQ(codes.LastGroup(), 5);  // 53.5 of the atom's line, behind its label
  EXPECT_EQ(codes.Take(false, 21.0), 0.0f);
  EXPECT_EQ(codes.Take(true, 21.0), 21.0f);
  EXPECT_EQ(codes.Take(true, -11.5), -11.5f);
  EXPECT_EQ(codes.Take(true, 0.0), 61.0f);
  EXPECT_EQ(codes.Take(true, 0.0), 71.0f);
  EXPECT_EQ(codes.Take(false, 0.0), 0.0f);
}

TEST(EditCommand, WriteReplacesKeysInPlaceAddsAbsentOnesAndKeepsTheRest) {
  EditFixture f;
  const std::vector<Record> records = {
      TextRecord("TITL", "New title"),
      MakeRecord("ZETT", "(3f10.5)", 0.02f, 0.0f, 0.0f),
      MakeRecord("BKGR", "(5f10.1)", 10.0f, 2.0f, 0.0f, 0.0f, 0.0f),
      MakeRecord("BKGR", "(5f10.1)", 1.0f, 0.0f, 0.0f, 0.0f, 0.0f),
  };
  ASSERT_TRUE(WriteParameterRecords(f.state, f.toolkit, records, "Edit globals"));
  EXPECT_EQ(Lines(f.Read("p.par")),
            (std::vector<std::string>{
                "TITL      New title",
                "LIMP        5      0.01",
                "CZET          0.000    21.000     0.000",
                "CXYZ Fe1        11.000    53.500     0.000     0.000     0.000",
                "ZETT         0.02000   0.00000   0.00000",
                "BKGR            10.0       2.0       0.0       0.0       0.0",
                "BKGR             1.0       0.0       0.0       0.0       0.0",
            }));
}

TEST(EditCommand, AParameterFileThatDoesNotOpenIsLoggedAndNothingIsRead) {
  EditFixture f;
  f.state.parameterFileName = "absent.par";
  bool read = false;
  EXPECT_FALSE(ReadParameterFile(f.state, f.toolkit, [&](RecordStore&) { read = true; }));
  EXPECT_FALSE(read);
  EXPECT_EQ(f.Log().back(), " Error opening parfile " + f.Path("absent.par"));
}

TEST(EditHistory, UndoAndRedoRestoreTheFileByteForByteWithTheStepsInTheMenu) {
  EditFixture f;
  const std::string original = f.Read("p.par");
  const Record title[] = {TextRecord("TITL", "Second")};
  WriteParameterRecords(f.state, f.toolkit, title, "Edit files");
  const std::string afterFiles = f.Read("p.par");
  const Record zero[] = {MakeRecord("ZETT", "(3f10.5)", 0.5f, 0.0f, 0.0f)};
  WriteParameterRecords(f.state, f.toolkit, zero, "Edit globals");
  const std::string afterGlobals = f.Read("p.par");
  EXPECT_EQ(f.toolkit.MenuString(menu::kUndo), "Undo Edit globals");
  EXPECT_EQ(f.toolkit.MenuState(menu::kRedo, kMenuItemEnabled), 0);

  UndoEdit(f.state, f.toolkit);
  EXPECT_EQ(f.Read("p.par"), afterFiles);
  EXPECT_EQ(f.toolkit.MenuString(menu::kUndo), "Undo Edit files");
  EXPECT_EQ(f.toolkit.MenuString(menu::kRedo), "Redo Edit globals");
  UndoEdit(f.state, f.toolkit);
  EXPECT_EQ(f.Read("p.par"), original);
  EXPECT_EQ(f.toolkit.MenuState(menu::kUndo, kMenuItemEnabled), 0);
  UndoEdit(f.state, f.toolkit);  // nothing more to undo
  EXPECT_EQ(f.Read("p.par"), original);

  RedoEdit(f.state, f.toolkit);
  RedoEdit(f.state, f.toolkit);
  EXPECT_EQ(f.Read("p.par"), afterGlobals);
  EXPECT_EQ(f.Log(), (std::vector<std::string>{"Undo Edit globals", "Undo Edit files",
                                               "Redo Edit files", "Redo Edit globals"}));

  // A new step after an undo drops what could be redone.
  UndoEdit(f.state, f.toolkit);
  const Record third[] = {TextRecord("TITL", "Third")};
  WriteParameterRecords(f.state, f.toolkit, third, "Edit controls");
  EXPECT_EQ(f.toolkit.MenuString(menu::kRedo), "Redo");
  EXPECT_EQ(f.toolkit.MenuState(menu::kRedo, kMenuItemEnabled), 0);
}

TEST(EditHistory, UndoAfterARunRestoresTheFileFromBeforeTheEditAndSaysSo) {
  EditFixture f;
  const std::string original = f.Read("p.par");
  const Record zero[] = {MakeRecord("ZETT", "(3f10.5)", 0.5f, 0.0f, 0.0f)};
  WriteParameterRecords(f.state, f.toolkit, zero, "Edit globals");
  const std::string refined = f.Read("p.par") + "RVAL   12   100   10    5.0000\n";
  f.dir.Write("p.par", refined);  // the engine's results of a run since

  UndoEdit(f.state, f.toolkit);
  EXPECT_EQ(f.Read("p.par"), original);
  EXPECT_EQ(f.Log(),
            (std::vector<std::string>{
                "Undo Edit globals",
                " p.par is back as before Edit globals: what a run changed since is undone too"}));
  RedoEdit(f.state, f.toolkit);  // redo gives back the file with the run's results
  EXPECT_EQ(f.Read("p.par"), refined);
}

TEST(EditHistory, AStepThatChangesNothingIsNoStepAndAnotherProjectStartsAfresh) {
  EditFixture f;
  const Record same[] = {TextRecord("TITL", "Old title")};
  UndoStep unchanged(f.state, "Edit files");
  unchanged.Finish(f.state, f.toolkit);
  EXPECT_EQ(f.toolkit.MenuState(menu::kUndo, kMenuItemEnabled), 0);

  WriteParameterRecords(f.state, f.toolkit, same, "Edit files");  // padded: the file changes
  EXPECT_EQ(f.toolkit.MenuState(menu::kUndo, kMenuItemEnabled), 1);
  f.state.projectFileName = "other.rec";
  ShowEditHistory(f.state, f.toolkit);
  EXPECT_EQ(f.toolkit.MenuState(menu::kUndo, kMenuItemEnabled), 0);
}

}  // namespace
}  // namespace kaldena
