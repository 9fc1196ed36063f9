// The pattern and halfwidth plots: the summary and Fourier files read into plot data, and
// the drawing of both plots through the plot library.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "shell/plot_library.h"
#include "shell/shell_state.h"
#include "util/report.h"

namespace kaldena {

inline constexpr int kBraggPhaseShift = 200;  // degrees added per phase to Bragg positions
inline constexpr int kSummaryPointLimit = 19994;

// Residuals of the record RVAL; all 0 when it is absent.
struct ResidualValues {
  int parameters = 0;
  int observations = 0;
  int reflections = 0;
  float rp = 0.0f, rwp = 0.0f, gof = 0.0f, rb = 0.0f, extra = 0.0f;
};

// What the pattern plot shows, read from the summary and Fourier files; kept between redraws.
struct PlotData {
  bool allocated = false;
  int phases = 1;
  std::vector<float> twoTheta, observed, calculated, background;
  std::vector<std::vector<float>> phaseCurves;  // one column per phase with more than one
  std::vector<float> braggPositions;            // phase n shifted by 200 (n - 1) degrees
  std::vector<std::string> braggLabels;         // "(  1  0  4)"
  int phaseRows = 1;
  float start = 0.0f, end = 0.0f, meanStep = 0.0f;
  ResidualValues residuals;

  int PointCount() const { return static_cast<int>(twoTheta.size()); }
};

// Plot content bits.
inline constexpr int kShowRaw = 1, kShowSum = 2, kShowDifference = 4, kShowBackground = 8,
                     kShowBragg = 16;

struct PlotColours {
  int frame = 0;
  int raw = 0;
  int difference = 0;
  int background = 255;
  int bragg = 16711680;
  int sum = 65280;
  std::array<int, 10> phases{33023,   16711935, 801924,   65280,   16711680,
                             255,     16776960, 65535,    8421504, 33023};
};

// The shown range and the mouse selection, in data units; 0 and 0 mean "not set".
struct ZoomState {
  float xLow = 0, xHigh = 0, yLow = 0, yHigh = 0;
  float selectX1 = 0, selectX2 = 0, selectY1 = 0, selectY2 = 0;
  float dataXLow = 0, dataXHigh = 0;
  float frameX = 0, frameY = 0, frameWidth = 0, frameHeight = 0;  // plot units
  float unitsPerPixelX = 0, unitsPerPixelY = 0;
  float braggTolerance = 0;
  int countInRange = 0;
};

struct PlotView {
  int content = 31;
  std::array<bool, 10> phaseShown{true, true, true, true, true, true, true, true, true, true};
  PlotColours colours;
  ZoomState zoom;
};

// Where the plot data comes from.
struct SummarySources {
  std::string parameterFile;
  std::string summaryFile;
  std::string fourierFile;
  int fileType = 0;  // 0 a project: a missing summary is logged
  bool debug = false;
};

enum class SummaryStatus {
  kRead = 0,
  kNoParameterFile = 1,  // " Error opening parfile "
  kJobError = 2,         // " ios JOBT "
  kResidualError = 3,    // " ios RVAL "
  kNoSummary = 4,        // "Error opening " and the name, for a project
  kTooShort = 5,         // " Error reading sumfile": fewer than 2 points
};

// Steps 2 to 8 of reading the summary. On any status but kRead `data` is as it was.
SummaryStatus ReadPlotData(const SummarySources& sources, PlotData& data, Reporter& reporter);

// The shell's entry: reads when state.reloadPlotData is set (and clears it), from the
// project's parameter, summary and Fourier files, then sets the pattern as the plot mode.
// The caller redraws.
SummaryStatus ReadSummary(ShellState& state, PlotData& data, Reporter& reporter);

// The page box of the plots, in plot units, that a canvas is fitted to.
inline constexpr float kPageLeft = 0.0f, kPageBottom = -130.0f, kPageRight = 1000.0f,
                       kPageTop = 1000.0f;

// The pattern plot with the options and zoom of `view` (its shown range and scales are
// updated). `dateText` is the date of DateTimeText in a field of 18.
void DrawPatternPlot(PlotLibrary& plot, const PlotData& data, PlotView& view,
                     std::string_view baseName, std::string_view dateText);

// The limits of the pattern plot for the points in the x range, as step 5 of the drawing
// takes them: y from the observed values (lowered by decades for the background), x in whole
// degrees. False when fewer than 2 points lie in the range.
bool PatternScales(const PlotData& data, float xLow, float xHigh, AxisScale& x, AxisScale& y,
                   float width, float height);

// The halfwidth plot of the parameter file. 0 when drawn; 1 when a record is missing (logged
// as " RELX record missing", " HWTH record missing" or " PKSH record missing") or the file
// does not open.
int DrawHalfwidthPlot(PlotLibrary& plot, const std::string& parameterFile,
                      std::string_view baseName, std::string_view dateText, Reporter& reporter);

// The residual line under the pattern plot.
std::string ResidualLine(const ResidualValues& r);

}  // namespace kaldena
