// What the plots keep in memory between commands: the pattern read from the summary and
// Fourier files, its options and zoom, and the Fourier map with the section shown.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "tools/contour.h"

namespace kaldena {

inline constexpr int kBraggPhaseShift = 200;  // degrees added per phase to Bragg positions

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
  std::string title;                     // TITL of the parameter file
  std::vector<std::string> phaseTitles;  // PHTI, one a phase

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
  std::array<int, 10> phases{33023, 16711935, 801924, 65280,   16711680,
                             255,   16776960, 65535,  8421504, 33023};
};

// The shown range and the mouse selection, in data units; 0 and 0 mean "not set".
struct ZoomState {
  float xLow = 0, xHigh = 0, yLow = 0, yHigh = 0;
  float selectX1 = 0, selectX2 = 0, selectY1 = 0, selectY2 = 0;
  float dataXLow = 0, dataXHigh = 0;
  float frameX = 0, frameY = 0, frameWidth = 0, frameHeight = 0;  // plot units
  float unitsPerPixelX = 0, unitsPerPixelY = 0;
  double originPixelX = 0, originPixelY = 0;  // the frame's origin on the window canvas
  float braggTolerance = 0;
  int countInRange = 0;
  // A rubber band under way: button 1 went down at the anchor and the pointer is now at the
  // free corner, both in data units.
  bool dragging = false;
  float anchorX = 0, anchorY = 0, cornerX = 0, cornerY = 0;
};

struct PlotView {
  int content = 31;
  std::array<bool, 10> phaseShown{true, true, true, true, true, true, true, true, true, true};
  PlotColours colours;
  ZoomState zoom;
};

// The contour plot of the Fourier map: the plot file read once per dialog, the axis at right
// angles to the section (1 X, 2 Y, 3 Z), the section from 1, and the doublings of the grid.
struct FourierView {
  bool loaded = false;
  ContourMap map;
  int axis = 3;
  int section = 1;
  int doublings = 1;
};

struct PlotState {
  PlotData data;
  PlotView view;
  FourierView fourier;
};

}  // namespace kaldena
