// The result table: the value(esd) notation, a golden table of the refined corundum example,
// and what a missing record does.
#include "tools/table.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "engine/run_engine.h"
#include "support/refined_example.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;

TEST(Table, ValuesAndEsdsShareOneScale) {
  EXPECT_EQ(ScaleWithEsd(0.35216, 0.00012, 4).value, 3522);
  EXPECT_EQ(ScaleWithEsd(0.35216, 0.00012, 4).esd, 1);
  // Halves go away from zero; esds below half a unit show as 0.
  EXPECT_EQ(ScaleWithEsd(-0.125, 0.004, 2).value, -13);
  EXPECT_EQ(ScaleWithEsd(-0.125, 0.004, 2).esd, 0);
  EXPECT_EQ(ScaleWithEsd(2.5, 0.5, 0).value, 3);
}

// The corundum example refined in a scratch directory, its parameter file as the project.
class RefinedExample : public ::testing::Test {
 protected:
  void SetUp() override {
    ok = testing::RefineExample(dir);
  }
  testing::ScratchDir dir;
  bool ok = false;
};

TEST_F(RefinedExample, TableMatchesItsGoldenFile) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  const std::string project = (dir.Path() / "%corundum.par").string();
  const std::string table = RunTable(project, "2026-11-23", reporter);
  ASSERT_FALSE(table.empty());
  EXPECT_EQ(reporter.log.front(), "Starting TABLE");
  std::string text = ReadBytes(table);
  // The parameter file's directory is the scratch one: made neutral for the comparison.
  for (size_t at; (at = text.find(dir.Path().string() + "/")) != std::string::npos;) {
    text.erase(at, dir.Path().string().size() + 1);
  }
  testing::ExpectGolden(text, testing::TestData("tools/corundum.tab"));
  // One phase: no quantitative analysis; isotropic atoms: no expression line.
  EXPECT_EQ(text.find("Quantitative analysis"), std::string::npos);
  EXPECT_EQ(text.find("Temperature factor expression"), std::string::npos);
  EXPECT_NE(text.find("Extracted Bragg intensities"), std::string::npos);
}

TEST_F(RefinedExample, MissingRecordsAreToldAndTheTableGoesOn) {
  ASSERT_TRUE(ok);
  std::string text = ReadBytes(dir.Path() / "%corundum.par");
  const size_t cell = text.find("\nCELL");
  text.erase(cell + 1, text.find('\n', cell + 1) - cell);
  const fs::path project = dir.Write("nocell.rec", text);
  RecordingReporter reporter;
  EXPECT_EQ(WriteTable(project.string(), (dir.Path() / "nocell.tab").string(), "2026-11-23", reporter),
            TableStatus::kOk);
  EXPECT_NE(std::find(reporter.log.begin(), reporter.log.end(), "CELL record missing"),
            reporter.log.end());
  EXPECT_NE(ReadBytes(dir.Path() / "nocell.tab").find("Phase no.  1"), std::string::npos);

  EXPECT_EQ(WriteTable((dir.Path() / "none.mlt").string(), (dir.Path() / "x.tab").string(),
                       "2026-11-23", reporter),
            TableStatus::kFailed);
  EXPECT_EQ(reporter.log.back(), "Error opening mlt file");
}

}  // namespace
}  // namespace kaldena
