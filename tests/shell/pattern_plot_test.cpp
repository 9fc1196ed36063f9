// Pattern and halfwidth plots: reading the summary and Fourier files, scaling, and the plots
// of the refined corundum example drawn into files (a golden SVG, PNG pixels).
#include "shell/pattern_plot.h"

#include <cairo/cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "engine/run_engine.h"
#include "support/refined_example.h"
#include "support/test_files.h"
#include "toolkit/cairo_canvas.h"
#include "toolkit/recording_canvas.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;

TEST(PatternPlot, AutoScaleRoundsOutwardsByTheOrderBelow) {
  const std::vector<float> counts{123.0f, 12345.0f};
  const AxisScale s = AutoScale(counts, 650);
  EXPECT_FLOAT_EQ(s.lower, 0.0f);  // near limit towards zero by 1000
  EXPECT_FLOAT_EQ(s.upper, 13000.0f);
  EXPECT_FLOAT_EQ(s.factor, 13000.0f / 650);
  const std::vector<float> mixed{-0.034f, 0.021f};
  const AxisScale m = AutoScale(mixed, 100);
  EXPECT_NEAR(m.lower, -0.034f, 1e-6);  // p = 0.001: limits away from zero
  EXPECT_NEAR(m.upper, 0.021f, 1e-6);
  const std::vector<float> equal{5.0f, 5.0f};
  EXPECT_FLOAT_EQ(AutoScale(equal, 10).lower, 4.9f);  // one p (0.1) wider on both sides
  EXPECT_FLOAT_EQ(AutoScale(equal, 10).upper, 5.1f);
  const std::vector<float> zeros{0.0f, 0.0f};
  EXPECT_EQ(AutoScale(zeros, 10).factor, 0.0f);
}

// A scratch project with a summary of `lines` points and a Fourier file of two phases.
struct SmallProject {
  testing::ScratchDir dir;
  SummarySources sources;
  explicit SmallProject(int lines, int phases = 1) {
    std::string sum;
    for (int i = 0; i < lines; ++i) {
      char line[200];
      std::snprintf(line, sizeof line, "%7.3f%12.1f%12.1f%12.1f%12.1f%12.1f\n", 10 + 0.02 * i,
                    100.0 + i, 90.0 + i, 50.0, 20.0, 30.0);
      sum += line;
    }
    sources.summaryFile = dir.Write("p.sum", sum).string();
    sources.parameterFile =
        dir.Write("p.par", "JOBT          0    4" + std::string(4, ' ') + std::to_string(phases) +
                               "\nRVAL        12  3001   40    5.2500    7.1000    1.3300    2.5000\n")
            .string();
    std::string fou;
    auto reflection = [&](int h, int k, int l, int phase, float tt) {
      char line[200];
      std::snprintf(line, sizeof line, "%4d%4d%4d%4d%12.1f%12.1f%12.5f%12.1f%12.5f%12.4f%12.4f\n",
                    h, k, l, phase, 1.0, 1.0, 0.1, 1.0, 0.0, 1.0, tt);
      fou += line;
    };
    reflection(1, 0, 0, 1, 20.5f);
    reflection(1, 1, 0, 1, 35.0f);
    reflection(1, 0, 0, 2, 18.0f);  // falls: the second phase
    reflection(2, 0, 0, 2, 40.0f);
    reflection(999, 0, 0, 0, 0.0f);
    sources.fourierFile = dir.Write("p.fou", fou).string();
  }
};

TEST(PatternPlot, SummaryReadsColumnsResidualsAndBraggRows) {
  SmallProject project(1001, 2);
  RecordingReporter reporter;
  PlotData data;
  ASSERT_EQ(ReadPlotData(project.sources, data, reporter), SummaryStatus::kRead);
  EXPECT_EQ(data.PointCount(), 1001);
  EXPECT_FLOAT_EQ(data.start, 10.0f);
  EXPECT_FLOAT_EQ(data.end, 30.0f);
  EXPECT_NEAR(data.meanStep, 0.02f, 1e-6);
  ASSERT_EQ(data.phaseCurves.size(), 2u);
  EXPECT_FLOAT_EQ(data.phaseCurves[1][0], 30.0f);
  EXPECT_EQ(data.residuals.parameters, 12);
  EXPECT_EQ(data.residuals.observations, 3001);
  EXPECT_FLOAT_EQ(data.residuals.rwp, 7.1f);
  EXPECT_EQ(ResidualLine(data.residuals),
            "Rp =  5.25 Rwp =  7.10 GOF =  1.33  RB =  2.50  12 prm.   3001 obs.");
  // One row of ticks per phase; the second phase stands 200 degrees further.
  EXPECT_EQ(data.phaseRows, 2);
  EXPECT_EQ(data.braggPositions, (std::vector<float>{20.5f, 35.0f, 218.0f, 240.0f}));
  EXPECT_EQ(data.braggLabels[1], "(  1  1  0)");
}

TEST(PatternPlot, BadSummariesKeepThePlotAsItWas) {
  SmallProject project(1);
  RecordingReporter reporter;
  PlotData data;
  data.twoTheta = {1, 2, 3};
  EXPECT_EQ(ReadPlotData(project.sources, data, reporter), SummaryStatus::kTooShort);
  EXPECT_EQ(reporter.log, std::vector<std::string>{" Error reading sumfile"});
  EXPECT_EQ(data.PointCount(), 3);

  reporter.Clear();
  fs::remove(project.sources.summaryFile);
  EXPECT_EQ(ReadPlotData(project.sources, data, reporter), SummaryStatus::kNoSummary);
  EXPECT_EQ(reporter.log, std::vector<std::string>{"Error opening " + project.sources.summaryFile});
  reporter.Clear();
  project.sources.fileType = 1;  // a batch: not logged
  EXPECT_EQ(ReadPlotData(project.sources, data, reporter), SummaryStatus::kNoSummary);
  EXPECT_TRUE(reporter.log.empty());
  EXPECT_EQ(data.PointCount(), 3);
}

TEST(PatternPlot, LongSummariesStopAtTheLimitAndScalesFollowTheRange) {
  SmallProject project(20010);
  RecordingReporter reporter;
  PlotData data;
  ASSERT_EQ(ReadPlotData(project.sources, data, reporter), SummaryStatus::kRead);
  EXPECT_EQ(data.PointCount(), kSummaryPointLimit + 1);
  AxisScale x, y;
  ASSERT_TRUE(PatternScales(data, 12.3f, 15.6f, x, y, 850, 650));
  EXPECT_FLOAT_EQ(x.lower, 12.0f);  // whole degrees
  EXPECT_FLOAT_EQ(x.upper, 16.0f);
  // Observed 215 to 380 gives 210..380 by tens; the background at 50 pulls y down by tens.
  EXPECT_FLOAT_EQ(y.lower, 50.0f);
  EXPECT_FLOAT_EQ(y.upper, 380.0f);
  EXPECT_FALSE(PatternScales(data, 500, 600, x, y, 850, 650));
}

// The corundum example refined in a scratch directory.
class RefinedCorundum : public ::testing::Test {
 protected:
  void SetUp() override {
    ok = testing::RefineExample(dir);
    sources.parameterFile = (dir.Path() / "%corundum.par").string();
    sources.summaryFile = (dir.Path() / "%corundum.sum").string();
    sources.fourierFile = (dir.Path() / "%corundum.fou").string();
  }
  testing::ScratchDir dir;
  SummarySources sources;
  bool ok = false;
};

void DrawTo(const std::string& path, const PlotData& data, PlotView& view) {
  auto canvas = CairoCanvas::Open(path, *ImageFormatOf(path), 1000, 1130);
  ASSERT_TRUE(canvas);
  PlotLibrary plot(*canvas, kPageLeft, kPageBottom, kPageRight, kPageTop);
  DrawPatternPlot(plot, data, view, "corundum", "2026-11-23   10:00");
  ASSERT_TRUE(canvas->Finish());
}

// The drawing commands, which are what the screen and every file format render, so that the
// golden file holds whatever fonts are installed.
TEST_F(RefinedCorundum, PatternPlotMatchesItsGoldenDrawing) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  PlotData data;
  ASSERT_EQ(ReadPlotData(sources, data, reporter), SummaryStatus::kRead);
  EXPECT_GT(data.braggPositions.size(), 10u);
  PlotView view;
  view.zoom.xLow = 30;  // a part of the pattern keeps the golden file small
  view.zoom.xHigh = 45;
  RecordingCanvas canvas(1000, 1130);
  PlotLibrary plot(canvas, kPageLeft, kPageBottom, kPageRight, kPageTop);
  DrawPatternPlot(plot, data, view, "corundum", "2026-11-23   10:00");
  std::string drawing;
  for (const std::string& operation : canvas.Operations()) drawing += operation + "\n";
  testing::ExpectGolden(drawing, testing::TestData("shell/corundum_pattern.drawing"));
}

// What a report needs of a plot: the project's title over the frame, a legend key for each
// curve and each row of ticks under it, the y label clear of the numbers, and a difference
// curve inside its band however large it is.
TEST_F(RefinedCorundum, PlotFilesCarryTitleAndLegend) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  PlotData data;
  ASSERT_EQ(ReadPlotData(sources, data, reporter), SummaryStatus::kRead);
  EXPECT_EQ(data.title, "Corundum, Al2O3, Cu K-alpha");
  // Counts of six digits and a difference far beyond a sixth of the frame.
  for (float& value : data.observed) value = value * 100 + 100000;
  PlotView view;
  RecordingCanvas canvas(1000, 1130);
  PlotLibrary plot(canvas, kPageLeft, kPageBottom, kPageRight, kPageTop);
  DrawPatternPlot(plot, data, view, "corundum", "2026-11-23   10:00");
  std::vector<std::string> texts;
  double labelBottom = 0, highestNumber = 1e9;
  for (const std::string& op : canvas.Operations()) {
    double x = 0, y = 0, height = 0, angle = 0, justification = 0;
    int end = 0;
    if (std::sscanf(op.c_str(), "text %lf %lf %lf %lf %lf %n", &x, &y, &height, &angle,
                    &justification, &end) != 5) {
      continue;
    }
    texts.push_back(op.substr(static_cast<std::size_t>(end)));
    if (texts.back() == "Counts") labelBottom = y;
    // Numbers of the y axis stand right of their place, in the middle (6).
    if (justification == 6) highestNumber = std::min(highestNumber, y - height / 2);
  }
  for (const char* expected : {"Corundum, Al2O3, Cu K-alpha", "observed", "calculated",
                               "background", "difference", "ticks: Corundum", "Counts"}) {
    EXPECT_NE(std::find(texts.begin(), texts.end(), expected), texts.end()) << expected;
  }
  // The label lies above the highest number (device y grows downwards).
  EXPECT_LT(labelBottom, highestNumber);
}

TEST_F(RefinedCorundum, PngShowsTheCurvesInTheirColours) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  PlotData data;
  ASSERT_EQ(ReadPlotData(sources, data, reporter), SummaryStatus::kRead);
  PlotView view;
  view.content = kShowSum;  // the green calculated curve alone, then the raw data alone
  const std::string sumPath = (dir.Path() / "sum.png").string();
  DrawTo(sumPath, data, view);
  view = PlotView{};
  view.content = kShowBragg;
  const std::string braggPath = (dir.Path() / "bragg.png").string();
  DrawTo(braggPath, data, view);

  // Count pixels by colour inside the frame (device x 100..950, y 50..700 at this size).
  // Lines are smoothed, so a colour counts by its dominant channel (red, green, blue from high
  // to low byte in `rgb`).
  auto count = [](const std::string& path, uint32_t rgb, int y0, int y1) {
    cairo_surface_t* image = cairo_image_surface_create_from_png(path.c_str());
    EXPECT_EQ(cairo_surface_status(image), CAIRO_STATUS_SUCCESS);
    const unsigned char* pixels = cairo_image_surface_get_data(image);
    const int stride = cairo_image_surface_get_stride(image);
    int n = 0;
    for (int y = y0; y < y1; ++y) {
      for (int x = 101; x < 949; ++x) {
        uint32_t p;
        std::memcpy(&p, pixels + y * stride + 4 * x, 4);
        bool match = true;
        for (int shift : {0, 8, 16}) {
          const uint32_t channel = (p >> shift) & 0xFF;
          match = match && (((rgb >> shift) & 0xFF) ? channel > 200 : channel < 170);
        }
        if (match) ++n;
      }
    }
    cairo_surface_destroy(image);
    return n;
  };
  // Plot y 0 (origin) lies at device 1000 - 300 = 700; the frame top at 50.
  EXPECT_GT(count(sumPath, 0x00FF00, 52, 698), 500);  // green calculated curve
  EXPECT_EQ(count(sumPath, 0x0000FF, 0, 1130), 0);    // no Bragg ticks
  // Bragg ticks in blue just under the origin, nowhere in the main frame.
  EXPECT_GT(count(braggPath, 0x0000FF, 700, 722), 100);
  EXPECT_EQ(count(braggPath, 0x0000FF, 52, 698), 0);
}

TEST_F(RefinedCorundum, HalfwidthPlotDrawsAndMissingRecordsAreTold) {
  ASSERT_TRUE(ok);
  RecordingReporter reporter;
  const std::string path = (dir.Path() / "hw.pdf").string();
  {
    auto canvas = CairoCanvas::Open(path, ImageFormat::kPdf, 1000, 1130);
    ASSERT_TRUE(canvas);
    PlotLibrary plot(*canvas, kPageLeft, kPageBottom, kPageRight, kPageTop);
    EXPECT_EQ(DrawHalfwidthPlot(plot, sources.parameterFile, "corundum", "2026-11-23", reporter),
              0);
    ASSERT_TRUE(canvas->Finish());
  }
  EXPECT_GT(fs::file_size(path), 1000u);
  std::string par = ReadBytes(sources.parameterFile);
  const size_t pksh = par.find("\nPKSH");
  ASSERT_NE(pksh, std::string::npos);
  par.erase(pksh + 1, par.find('\n', pksh + 1) - pksh);
  const fs::path broken = dir.Write("broken.par", par);
  auto canvas = CairoCanvas::Open((dir.Path() / "hw.svg").string(), ImageFormat::kSvg, 100, 100);
  PlotLibrary plot(*canvas, kPageLeft, kPageBottom, kPageRight, kPageTop);
  EXPECT_EQ(DrawHalfwidthPlot(plot, broken.string(), "corundum", "", reporter), 1);
  EXPECT_EQ(reporter.log.back(), " PKSH record missing");
}

}  // namespace
}  // namespace kaldena
