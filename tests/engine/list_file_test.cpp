#include "engine/list_file.h"

#include <gtest/gtest.h>

#include "support/test_files.h"
#include "util/column_format.h"

namespace kaldena {
namespace {

TEST(ListFile, KeepsLinesAsTheColumnWriterMakesThem) {
  testing::ScratchDir dir;
  const std::string path = (dir.Path() / "run.out").string();
  ListFile list;
  ASSERT_TRUE(list.Open(path));
  list.Text(Format("(/' PHASE ',I2,': ',A8/)", 1, "Corundum"));
  list.Text(Format("(' Rp =',F6.2,$)", 7.5f));
  list.Text(Format("('   Rwp =',F6.2)", 9.25f));
  list.Line(" END");
  list.Close();
  const std::vector<std::string> expected = {"", " PHASE  1: Corundum", "",
                                             " Rp =  7.50   Rwp =  9.25", " END"};
  EXPECT_EQ(list.Lines(), expected);
  EXPECT_EQ(testing::ReadBytes(path), "\n PHASE  1: Corundum\n\n Rp =  7.50   Rwp =  9.25\n END\n");
}

TEST(ListFile, HeldTextIsWrittenOnReleaseAndForgottenOnDrop) {
  testing::ScratchDir dir;
  const std::string path = (dir.Path() / "run.out").string();
  ListFile list;
  ASSERT_TRUE(list.Open(path));
  list.Line(" BEFORE");
  list.Hold();
  list.Line(" REJECTED");
  list.Drop();
  list.Hold();
  list.Text(Format("(' Rp =',F6.2,$)", 7.5f));
  EXPECT_EQ(list.Lines().size(), 1u);
  list.Release();
  list.Line(" AFTER");
  list.Close();
  EXPECT_EQ(testing::ReadBytes(path), " BEFORE\n Rp =  7.50 AFTER\n");
}

TEST(ListFile, WorksWithoutAFile) {
  ListFile list;
  EXPECT_FALSE(list.IsOpen());
  list.Line("only in memory");
  EXPECT_EQ(list.Lines(), std::vector<std::string>{"only in memory"});
  EXPECT_FALSE(list.Open("/nonexistent-directory/run.out"));
}

}  // namespace
}  // namespace kaldena
