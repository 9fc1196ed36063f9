// Maps of a known structure made through the engine: rutile's pattern is calculated, then
// compared with itself, and the .fou of the comparison gives the maps.
#include "tools/fourier_driver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <sstream>

#include "engine/run_engine.h"
#include "support/test_files.h"
#include "tools/fourier_files.h"
#include "tools/fourier_peaks.h"
#include "util/column_format.h"

namespace kaldena {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::ScratchDir;

// TiO2, P 42/m n m, a 4.594, c 2.959: Ti at 0 0 0 (site factor 8), O at x x 0 (4).
std::string Rutile(int job, std::string_view ford) {
  std::ostringstream p;
  p << "TITL      Rutile\n"
    << "FRMT          5\n"
    << "JOBT    " << std::setw(3) << job << "    1    1   -1    0    2    0    1\n"
    << "PWDT      pattern.xy\n"
    << "ELAM        1.540560  0.000000  0.000000\n"
    << "RLIM        12.00000   0.00000   0.00000   0.00000   0.00000   0.00000   0.00000   0.00000\n"
    << "RELX          0 0.01 1.00 1.00 1.00 1.00  15.00000   0.02000 150.00000\n"
    << "ANOM      Ti           0.00000   0.00000\n"
    << "ANOM      O            0.00000   0.00000\n"
    << "BKGR            50.0       0.0\n"
    << "PHTI      Rutile\n"
    << "PHNA          2  0.0  0.0  1.0  0.0  0.0  1.0  0.0  0.0  1.0\n"
    << "SPGR      P 42/M N M\n"
    << "SCAL       0.2000E-02     0.000\n"
    << "CELL        4.59400   4.59400   2.95900  90.00000  90.00000  90.00000\n"
    << "HWTH         0.00500  -0.00500   0.01200\n"
    << "PKSH         0.40000   0.00000   0.00000\n"
    << "XYZ       Ti     1  0.00000  0.00000  0.00000  1.00000  0.30000  8  0  0  0\n"
    << "XYZ       O      2  0.30500  0.30500  0.00000  1.00000  0.50000  4  0  0  0\n"
    << "FORD      " << ford << "\n";
  return p.str();
}

// The calculated curve of a summary as a pattern, with a deterministic ripple of 2 % for
// measurement noise.
void SummaryToPattern(const fs::path& summary, const fs::path& pattern) {
  std::ifstream in(summary);
  std::ofstream out(pattern);
  int point = 0;
  for (std::string line; std::getline(in, line); ++point) {
    float x = 0, observed = 0, calculated = 0, background = 0;
    int code = 0;
    ASSERT_EQ(Read(line, "(F7.3,3f12.1,I2)", x, observed, calculated, background, code),
              ReadStatus::kOk);
    out << x << " " << calculated * (1 + 0.02f * std::sin(1.7f * point)) << "\n";
  }
}

class RutileMaps : public ::testing::Test {
 protected:
  void SetUp() override {
    const fs::path old = fs::current_path();
    fs::current_path(dir_.Path());
    RecordingReporter reporter;
    dir_.Write("model.rec", Rutile(2, ""));
    const int calculated = RunEngine({"model.rec", false, nullptr}, reporter).status;
    SummaryToPattern(dir_.Path() / "%model.sum", dir_.Path() / "pattern.xy");
    dir_.Write("fcalc.rec", Rutile(4, "    5  150    0        0.      2.00      0.00     -2.00"));
    const int compared = RunEngine({"fcalc.rec", false, nullptr}, reporter).status;
    fs::current_path(old);
    ASSERT_EQ(calculated, 0);
    ASSERT_EQ(compared, 0) << ReadBytes(dir_.Path() / "%fcalc.out");
  }

  // Runs a map of the comparison's reflections with the options of `ford`.
  PlotFile Map(std::string_view name, std::string_view ford, RecordingReporter& reporter) {
    const fs::path project = dir_.Write(std::string(name) + ".rec", Rutile(4, ford));
    EXPECT_EQ(StartFourier(project.string(), (dir_.Path() / "%fcalc.fou").string(), reporter),
              FourierStatus::kOk)
        << ::testing::PrintToString(reporter.log);
    reporter.Clear();
    std::ifstream plo(dir_.Path() / (std::string(name) + ".plo"));
    PlotFile plot;
    EXPECT_TRUE(ReadPlotFile(plo, plot));
    return plot;
  }

  ScratchDir dir_;
};

// The distance from a peak to the nearest image of a site, in grid steps of each axis.
float StepsToNearest(const FourierPeak& peak, const std::vector<std::array<float, 3>>& sites) {
  float best = 1e9f;
  for (const auto& s : sites) {
    for (int tx = -1; tx <= 1; ++tx)
      for (int ty = -1; ty <= 1; ++ty)
        for (int tz = -1; tz <= 1; ++tz) {
          const float d = std::max({std::fabs(peak.x - s[0] - tx), std::fabs(peak.y - s[1] - ty),
                                    std::fabs(peak.z - s[2] - tz)});
          best = std::min(best, d / 0.04f);
        }
  }
  return best;
}

TEST_F(RutileMaps, CalculatedMapPeaksAtTheAtomsAndDifferenceMapIsFlat) {
  RecordingReporter reporter;
  const PlotFile fcalc = Map("fcalc", "    5  150    0        0.      2.00      0.00     -2.00", reporter);
  const std::vector<std::array<float, 3>> titanium = {{0, 0, 0}, {0.5f, 0.5f, 0.5f}};
  const std::vector<std::array<float, 3>> oxygen = {
      {0.305f, 0.305f, 0}, {0.695f, 0.695f, 0}, {0.195f, 0.805f, 0.5f}, {0.805f, 0.195f, 0.5f}};

  const std::vector<FourierPeak> peaks = SearchPeaks(fcalc, 150, false);
  // Inside the box: the 8 corners and the centre for Ti, 2 + 2 images of the z = 0 oxygens
  // (z = 0 and 1) and the 2 at z = 1/2.
  int ti = 0, o = 0;
  for (const FourierPeak& peak : peaks) {
    const bool onTi = StepsToNearest(peak, titanium) <= 1.0f;
    const bool onO = StepsToNearest(peak, oxygen) <= 1.0f;
    EXPECT_TRUE(onTi || onO) << PeakLine(peak);
    if (onTi) {
      ++ti;
      EXPECT_GT(peak.height, 800) << PeakLine(peak);
    } else if (onO) {
      ++o;
      EXPECT_LT(peak.height, 400) << PeakLine(peak);
    }
  }
  EXPECT_EQ(ti, 9);
  EXPECT_EQ(o, 6);

  // The right model against data with 2 % noise: the difference map, on the same absolute
  // scale, stays below 1 % of the calculated map's maximum.
  const PlotFile difference = Map("difference", "    6  500  500     2000.      2.00      0.00     -2.00", reporter);
  EXPECT_LT(difference.rmax, 0.01f * fcalc.rmax) << difference.rmax << " " << fcalc.rmax;
}

}  // namespace
}  // namespace kaldena
