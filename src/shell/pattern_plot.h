// The pattern and halfwidth plots: the summary and Fourier files read into plot data, and
// the drawing of both plots through the plot library.
#pragma once

#include <string>
#include <string_view>

#include "shell/plot_library.h"
#include "shell/plot_state.h"
#include "shell/shell_state.h"
#include "util/report.h"

namespace kaldena {

inline constexpr int kSummaryPointLimit = 19994;

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
// A project without a summary has no pattern; other failures keep the data as it was. The
// caller redraws.
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
