// The plot and peak files of a small example against their golden copies, the plot file read
// back, and the driver's failures. KALDENA_UPDATE_GOLDEN=1 rewrites the golden files.
#include "tools/fourier_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/test_files.h"
#include "tools/fourier_driver.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ExpectGolden;
using testing::ReadBytes;
using testing::ScratchDir;
using testing::TestData;

// One atom of P -1 at 0.313 0.522 0.235 (F = 20 cos 2 pi h.x, map type 5), in a box of
// 9 points an axis around it.
TEST(FourierFiles, SmallExampleMatchesGoldenPlotAndPeakFiles) {
  ScratchDir dir;
  fs::copy_file(TestData("tools/fourier/small.rec"), dir.Path() / "small.rec");
  const std::string project = (dir.Path() / "small.rec").string();
  RecordingReporter reporter;
  const std::string fou = FourierFileOf(project, reporter);
  EXPECT_EQ(fou, (dir.Path() / "small.fou").string());
  ASSERT_EQ(StartFourier(project, TestData("tools/fourier/small.fou").string(), reporter),
            FourierStatus::kOk);
  ExpectGolden(ReadBytes(dir.Path() / "small.plo"), TestData("tools/fourier/small.plo"));
  ExpectGolden(ReadBytes(dir.Path() / "small.prm"), TestData("tools/fourier/small.prm"));

  ASSERT_GE(reporter.log.size(), 7u);
  EXPECT_EQ(reporter.log[0], "Starting Fourier calculation");
  EXPECT_EQ(reporter.log[1], "   169 reflections read");
  EXPECT_EQ(reporter.log[2], "   169 expanded reflections");
  EXPECT_EQ(reporter.log[3], "Fourier summation done");
  EXPECT_EQ(reporter.log[5], "");
  EXPECT_EQ(reporter.log[6], "       Positive peaks, scan level =  500");

  // The one positive peak is the atom, refined to within a tenth of the 0.01 step.
  std::ifstream prm(dir.Path() / "small.prm");
  std::string line;
  ASSERT_TRUE(std::getline(prm, line));
  float x = 0, y = 0, z = 0;
  std::string label;
  ASSERT_EQ(Read(line, "(10x,a4,6x,3f10.0)", label, x, y, z), ReadStatus::kOk);
  EXPECT_EQ(label, "P999");
  EXPECT_NEAR(x, 0.313f, 0.001f);
  EXPECT_NEAR(y, 0.522f, 0.001f);
  EXPECT_NEAR(z, 0.235f, 0.001f);

  // The plot file reads back as it was written.
  std::ifstream plo(dir.Path() / "small.plo");
  PlotFile plot;
  ASSERT_TRUE(ReadPlotFile(plo, plot));
  EXPECT_EQ(plot.title, "golden map");
  EXPECT_EQ(plot.points, (std::array<int, 3>{9, 9, 9}));
  EXPECT_FLOAT_EQ(plot.cell[4], 95.0f);
  EXPECT_FLOAT_EQ(plot.limits[4], 0.19f);
  EXPECT_FLOAT_EQ(plot.steps[2], 0.01f);
  EXPECT_EQ(*std::max_element(plot.values.begin(), plot.values.end()), 999);
}

TEST(FourierFiles, TruncatedPlotFileKeepsTheWholeSections) {
  FourierMap map;
  map.axes = {GridAxis{0, 0.5f, 3}, GridAxis{0, 0.5f, 2}, GridAxis{0, 0.5f, 3}};
  map.values.assign(18, 0);
  map.values[4] = 2.0f;
  map.rmax = 2.0f;
  const std::string text = PlotFileHeader({1, 2, 3, 90, 90, 120}, "title") +
                           PlotFileSections(map, {0, 1, 0, 0.5f, 0, 1});
  PlotFile plot;
  std::istringstream whole(text);
  ASSERT_TRUE(ReadPlotFile(whole, plot));
  EXPECT_EQ(plot.At(1, 1, 0), 999);
  EXPECT_EQ(text.substr(text.size() - 21), "-100.00000   2.00000\n");

  std::istringstream cut(text.substr(0, text.find("   0.00000   2.00000", 80)));
  EXPECT_FALSE(ReadPlotFile(cut, plot));
  EXPECT_EQ(plot.points[2], 1);
  EXPECT_EQ(plot.values.size(), 6u);
}

TEST(FourierFiles, DriverFailuresAreLogged) {
  ScratchDir dir;
  RecordingReporter reporter;
  EXPECT_EQ(StartFourier((dir.Path() / "none.rec").string(), "none.fou", reporter),
            FourierStatus::kFailed);
  EXPECT_EQ(reporter.log, (std::vector<std::string>{"Starting Fourier calculation",
                                                    "Error opening  project file",
                                                    "Fourier calculation interupted"}));

  const auto run = [&](std::string_view records, const std::string& fou) {
    reporter.Clear();
    const fs::path project = dir.Write("p.rec", records);
    return RunFourier(project.string(), fou, reporter);
  };
  EXPECT_EQ(run("SPGR      P 1\n", "x.fou"), FourierStatus::kFailed);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"CELL record missing. Program terminated"});
  EXPECT_EQ(run("CELL      5 5 5 90 90 90\n", "x.fou"), FourierStatus::kFailed);
  EXPECT_EQ(reporter.log,
            std::vector<std::string>{"Symmetry information missing. Program terminated"});
  EXPECT_EQ(run("CELL      5 5 5 90 90 90\nSPGR      P 1\n", (dir.Path() / "x.fou").string()),
            FourierStatus::kFailed);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"Error opening Fourier file"});
  // No plot file is left by a failed run: an old one would have stayed as it was.
  EXPECT_FALSE(fs::exists(dir.Path() / "p.plo"));

  // A zero-length box along z: one section, so no peak can be found.
  const fs::path fou = dir.Write("f.fou", "   1   0   0   1       100.0        10.0     0.10000"
                                          "        64.0     0.00000    10.00000     10.0000\n");
  EXPECT_EQ(run("CELL      5 5 5 90 90 90\nSPGR      P 1\nFLIM      0 1 0 1 0.5 0.5\n",
                fou.string()),
            FourierStatus::kOk);
  EXPECT_EQ(reporter.log.back(), "     0 peaks found");
  EXPECT_EQ(ReadBytes(dir.Path() / "p.prm"), "");
}

}  // namespace
}  // namespace kaldena
