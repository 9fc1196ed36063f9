// The crystallinity command on the refined corundum example: figures, the CRYS record, and
// the limits that come from it next time.
#include "tools/crystallinity_record.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "engine/run_engine.h"
#include "support/refined_example.h"
#include "support/test_files.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;

TEST(CrystallinityRecord, WritesLimitsAndResultsAndReusesTheLimits) {
  testing::ScratchDir dir;
  ASSERT_TRUE(testing::RefineExample(dir));
  RecordingReporter reporter;
  const std::string project = (dir.Path() / "corundum.rec").string();
  const Crystallinity first = RunCrystallinity({project, 20.0f, 80.0f}, reporter);
  ASSERT_EQ(first.status, CrystallinityStatus::kOk);
  // Sharp peaks on a low background: most of the scattering is crystalline.
  EXPECT_GT(first.unweighted, 10.0f);
  EXPECT_LT(first.unweighted, 100.0f);
  const std::string text = testing::ReadBytes(project);
  EXPECT_NE(text.find("CRYS           20.00     80.00"), std::string::npos);
  // Without limits the record's are taken: the same figures.
  const Crystallinity again = RunCrystallinity({project, std::nullopt, std::nullopt}, reporter);
  EXPECT_FLOAT_EQ(again.unweighted, first.unweighted);
  EXPECT_FLOAT_EQ(again.sWeighted, first.sWeighted);
}

TEST(CrystallinityRecord, AMissingSummaryIsToldAndNothingWritten) {
  testing::ScratchDir dir;
  const fs::path project = dir.Write("p.rec", "TITL      x\nELAM        1.540560\n");
  RecordingReporter reporter;
  EXPECT_EQ(RunCrystallinity({project.string(), 10.0f, 20.0f}, reporter).status,
            CrystallinityStatus::kNoSummary);
  EXPECT_EQ(testing::ReadBytes(project).find("CRYS"), std::string::npos);
  ASSERT_FALSE(reporter.log.empty());
  EXPECT_NE(reporter.log.back().find("Error opening"), std::string::npos);
}

}  // namespace
}  // namespace kaldena
