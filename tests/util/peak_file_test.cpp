#include "util/peak_file.h"

#include <gtest/gtest.h>

#include "support/test_files.h"

namespace kaldena {
namespace {

TEST(PeakFile, AppendsEveryLineToTheProject) {
  testing::ScratchDir dir;
  const auto peaks = dir.Write("p.prm", "XYZ       P1    6  0.1\r\nXYZ       P2    6  0.2\n");
  const auto project = dir.Write("p.rec", "TITL      t\n");
  RecordingReporter reporter;
  EXPECT_EQ(ReadPeakFile(peaks.string(), project.string(), reporter), 2);
  EXPECT_EQ(testing::ReadBytes(project),
            "TITL      t\nXYZ       P1    6  0.1\nXYZ       P2    6  0.2\n");
  EXPECT_TRUE(reporter.log.empty());
}

TEST(PeakFile, MissingFilesAreLoggedAndNothingIsWritten) {
  testing::ScratchDir dir;
  const auto project = dir.Write("p.rec", "TITL      t\n");
  RecordingReporter reporter;
  const std::string absent = (dir.Path() / "absent.prm").string();
  EXPECT_EQ(ReadPeakFile(absent, project.string(), reporter), -1);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"Error opening " + absent});
  const auto peaks = dir.Write("p.prm", "XYZ       P1\n");
  const std::string noProject = (dir.Path() / "none.rec").string();
  EXPECT_EQ(ReadPeakFile(peaks.string(), noProject, reporter), -1);
  EXPECT_EQ(reporter.log.back(), "Error opening " + noProject);
  EXPECT_FALSE(std::filesystem::exists(noProject));
  EXPECT_EQ(testing::ReadBytes(project), "TITL      t\n");
}

}  // namespace
}  // namespace kaldena
