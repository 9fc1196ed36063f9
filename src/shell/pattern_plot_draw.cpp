// Drawing the pattern and halfwidth plots.
#include <algorithm>
#include <cmath>

#include "shell/pattern_plot.h"
#include "store/record_store.h"
#include "util/column_format.h"
#include "util/limits.h"
#include "util/text.h"

namespace kaldena {
namespace {

// Frame of the plots on screen, in plot units.
constexpr float kFrameWidth = 850.0f, kFrameHeight = 650.0f;
constexpr float kFrameX = 100.0f, kFrameY = 300.0f;
constexpr float kLineSpacing = 15.0f;
// Room between the difference curve and the edges of its band.
constexpr float kBandMargin = 5.0f;

float Lowest(std::span<const float> v) {
  return v.empty() ? 0.0f : *std::min_element(v.begin(), v.end());
}
float Highest(std::span<const float> v) {
  return v.empty() ? 0.0f : *std::max_element(v.begin(), v.end());
}
float Largest(std::span<const float> v) { return std::max(Highest(v), -Lowest(v)); }

// Keys of the legend in the row under the x axis: a stroke of the curve's colour and pen,
// or a tick for a row of reflections, then the name.
struct LegendKey {
  int colour;
  int pen;
  bool tick;
  std::string name;
};

// Keys run left to right and wrap to a further row at the frame's width.
void DrawLegend(PlotLibrary& plot, const std::vector<LegendKey>& keys, float y) {
  constexpr float kStroke = 30.0f, kGap = 8.0f, kCharWidth = 9.5f, kKeyGap = 25.0f;
  constexpr float kRowHeight = 20.0f;
  float x = 0;
  for (const LegendKey& key : keys) {
    const float width = kStroke + kGap + kCharWidth * static_cast<float>(key.name.size());
    if (x > 0 && x + width > kFrameWidth) {
      x = 0;
      y -= kRowHeight;
    }
    plot.PlotPen(key.pen, 1, key.colour);
    if (key.tick) {
      plot.PlotVector(x + kStroke / 2, y + 8, 16, -90);
    } else {
      plot.PlotMove(x, y);
      plot.PlotDraw(x + kStroke, y);
    }
    plot.PlotPen(1, 1, 0);
    plot.PlotText(x + kStroke + kGap, y, key.name, 13, 0, 4);
    x += width + kKeyGap;
  }
}

// A phase's name, or its number when the project gives none.
std::string PhaseName(const PlotData& data, int p) {
  return p < static_cast<int>(data.phaseTitles.size()) ? data.phaseTitles[p]
                                                       : "phase " + std::to_string(p + 1);
}

std::vector<LegendKey> LegendKeys(const PlotData& data, const PlotView& view) {
  const PlotColours& c = view.colours;
  const int content = view.content;
  std::vector<LegendKey> keys;
  if (content & kShowRaw) keys.push_back({c.raw, 1, false, "observed"});
  if (content & kShowSum) keys.push_back({c.sum, 1, false, "calculated"});
  if (content & kShowBackground) keys.push_back({c.background, 2, false, "background"});
  if (content & kShowDifference) keys.push_back({c.difference, 1, false, "difference"});
  if (data.phases > 1) {
    for (int p = 0; p < data.phases && p < kMaxPhases; ++p) {
      if (view.phaseShown[p])
        keys.push_back({c.phases[p], (2 * (p + 1)) / 6 + 1, false, PhaseName(data, p)});
    }
  }
  if ((content & kShowBragg) && !data.braggPositions.empty()) {
    for (int p = 0; p < data.phaseRows; ++p) {
      keys.push_back({c.bragg, 1, true, "ticks: " + PhaseName(data, p)});
    }
  }
  return keys;
}

}  // namespace

std::string ResidualLine(const ResidualValues& r) {
  return FormatLine("(a,f6.2,a,f6.2,a,f6.2,a,f6.2,i4,a,i7,a)", "Rp =", r.rp, " Rwp =", r.rwp,
                    " GOF =", r.gof, "  RB =", r.rb, r.parameters, " prm.", r.observations,
                    " obs.");
}

bool PatternScales(const PlotData& data, float xLow, float xHigh, AxisScale& x, AxisScale& y,
                   float width, float height) {
  std::vector<float> tt, obs, bg;
  for (int i = 0; i < data.PointCount(); ++i) {
    if (data.twoTheta[i] < xLow || data.twoTheta[i] > xHigh) continue;
    tt.push_back(data.twoTheta[i]);
    obs.push_back(data.observed[i]);
    bg.push_back(data.background[i]);
  }
  if (tt.size() < 2) return false;
  y = AutoScale(obs, height);
  // The x axis spans the whole degrees around the points, not a rounding that reaches 0.
  x.lower = std::floor(Lowest(tt) + 0.001f);
  x.upper = std::floor(Highest(tt) + 0.999f);
  if (x.upper <= x.lower) x.upper = x.lower + 1;
  x.factor = (x.upper - x.lower) / width;
  // The background may run below the observed values: lower y by decades until it shows.
  const float largest = Highest(obs);
  float step = largest > 0 ? std::pow(10.0f, std::floor(std::log10(largest)) - 1) : 1.0f;
  step = std::max(step, 1.0f);
  const float lowestBackground = Lowest(bg);
  while (lowestBackground < y.lower && y.lower > 0) y.lower -= step;
  if (y.upper <= y.lower) y.upper = y.lower + step;
  y.factor = (y.upper - y.lower) / height;
  return true;
}

void DrawPatternPlot(PlotLibrary& plot, const PlotData& data, PlotView& view,
                     std::string_view baseName, std::string_view dateText) {
  if (data.PointCount() < 2) return;
  const float w = kFrameWidth, h = kFrameHeight;
  ZoomState& zoom = view.zoom;
  zoom.dataXLow = data.start;
  zoom.dataXHigh = data.end;

  // Range: a selection of more than 10 steps by 5 counts wins; else the shown range or all.
  float xLow = data.start, xHigh = data.end;
  bool yKept = false;
  float yLow = 0, yHigh = 0;
  if (std::fabs(zoom.selectX2 - zoom.selectX1) > 10 * data.meanStep &&
      std::fabs(zoom.selectY2 - zoom.selectY1) > 5) {
    xLow = std::min(zoom.selectX1, zoom.selectX2);
    xHigh = std::max(zoom.selectX1, zoom.selectX2);
    yLow = std::min(zoom.selectY1, zoom.selectY2);
    yHigh = std::max(zoom.selectY1, zoom.selectY2);
    yKept = true;
  } else if (zoom.xLow != 0 || zoom.xHigh != 0) {
    xLow = zoom.xLow;
    xHigh = zoom.xHigh;
    if (zoom.yLow != 0 || zoom.yHigh != 0) {
      yLow = zoom.yLow;
      yHigh = zoom.yHigh;
      yKept = true;
    }
  }
  AxisScale xs, ys;
  if (!PatternScales(data, xLow, xHigh, xs, ys, w, h)) {
    // Nothing left in the range: show the whole pattern.
    xLow = data.start;
    xHigh = data.end;
    yKept = false;
    if (!PatternScales(data, xLow, xHigh, xs, ys, w, h)) return;
  }
  if (yKept && yHigh > yLow) {
    ys.lower = yLow;
    ys.upper = yHigh;
    ys.factor = (yHigh - yLow) / h;
  }
  if (ys.factor == 0.0f) {
    ys.lower = 0;
    ys.upper = 1;
    ys.factor = 1 / h;
  }
  zoom.xLow = xs.lower;
  zoom.xHigh = xs.upper;
  zoom.yLow = ys.lower;
  zoom.yHigh = ys.upper;
  zoom.frameX = kFrameX;
  zoom.frameY = kFrameY;
  zoom.frameWidth = w;
  zoom.frameHeight = h;
  zoom.unitsPerPixelX = (xs.upper - xs.lower) / (w * plot.DeviceScaleX());
  zoom.unitsPerPixelY = (ys.upper - ys.lower) / (h * plot.DeviceScaleY());
  zoom.braggTolerance = 0.002f * (xs.upper - xs.lower);

  // Working arrays of the points in range.
  std::vector<float> tt, obs, calc, diff, bg;
  std::vector<int> index;
  for (int i = 0; i < data.PointCount(); ++i) {
    if (data.twoTheta[i] < xs.lower || data.twoTheta[i] > xs.upper) continue;
    index.push_back(i);
    tt.push_back(data.twoTheta[i]);
    obs.push_back(data.observed[i]);
    calc.push_back(data.calculated[i]);
    diff.push_back(data.observed[i] - data.calculated[i]);
    bg.push_back(data.background[i]);
  }
  zoom.countInRange = static_cast<int>(tt.size());
  const PlotColours& colour = view.colours;

  plot.PlotInit();
  plot.canvas().Clear();
  plot.PlotOrigin(kFrameX, kFrameY);
  zoom.originPixelX = plot.DeviceX(0);
  zoom.originPixelY = plot.DeviceY(0);
  plot.PlotPen(1, 1, colour.frame);
  plot.PlotRect(0, -h / 3, w, h + h / 3, 0);
  plot.PlotAxis(0, -h / 3, "2|q", w, 0, xs);
  plot.PlotAxis(0, 0, "Counts", h, 90, ys);
  plot.PlotText(-10, -h / 6, "0", 15, 90, 2);

  plot.PlotClip(0, -h / 3, w, h + h / 3);
  const int content = view.content;
  if (content & kShowRaw) {
    plot.PlotPen(1, 1, colour.raw);
    plot.PlotLine(tt, obs, xs, ys);
  }
  if (content & kShowSum) {
    plot.PlotPen(1, 1, colour.sum);
    plot.PlotLine(tt, calc, xs, ys);
  }
  if (content & kShowDifference) {
    // The difference hangs a sixth of the frame below the origin, on the y scale of the
    // pattern unless that would take it out of its band: then on a smaller one.
    AxisScale shifted = ys;
    shifted.factor = std::max(ys.factor, Largest(diff) / (h / 6 - kBandMargin));
    shifted.lower = h / 6 * shifted.factor;
    plot.PlotClip(0, -h / 3, w, h / 3);
    plot.PlotPen(1, 1, colour.difference);
    plot.PlotLine(tt, diff, xs, shifted);
    plot.PlotPen(1, 1, colour.frame);
    plot.PlotMove(0, -h / 6);
    plot.PlotDraw(w, -h / 6);
    plot.PlotClip(0, -h / 3, w, h + h / 3);
  }
  if (content & kShowBackground) {
    plot.PlotPen(2, 1, colour.background);
    plot.PlotLine(tt, bg, xs, ys);
  }
  if (data.phases > 1) {
    std::vector<float> curve(tt.size());
    for (int p = 0; p < data.phases && p < kMaxPhases; ++p) {
      if (!view.phaseShown[p] || p >= static_cast<int>(data.phaseCurves.size())) continue;
      for (size_t j = 0; j < index.size(); ++j) curve[j] = bg[j] + data.phaseCurves[p][index[j]];
      plot.PlotPen((2 * (p + 1)) / 6 + 1, 1, colour.phases[p]);
      plot.PlotLine(tt, curve, xs, ys);
    }
  }
  plot.PlotUnclip();

  if ((content & kShowBragg) && !data.braggPositions.empty()) {
    const float tick = 20.0f / static_cast<float>(std::max(data.phaseRows, 1));
    plot.PlotPen(1, 1, colour.bragg);
    float y = -0.1f - tick;
    float shift = 0;
    for (size_t i = 0; i < data.braggPositions.size(); ++i) {
      if (i > 0 && data.braggPositions[i] - data.braggPositions[i - 1] >= 100) {
        shift += kBraggPhaseShift;
        y -= tick;
      }
      const float position = data.braggPositions[i] - shift;
      if (position < xs.lower || position > xs.upper) continue;
      plot.PlotVector((position - xs.lower) / xs.factor, y, tick, -90);
    }
  }

  // The project's title over the frame, the legend under the x axis: neither on the curves.
  plot.PlotPen(1, 1, colour.frame);
  const std::string_view title = Trimmed(data.title);
  const bool titled = !title.empty() && title != "UNTITLED";
  plot.PlotText(w / 2, h + kLineSpacing, titled ? title : Trimmed(baseName), 18, 0, 2);
  DrawLegend(plot, LegendKeys(data, view), -(h / 3 + 5.5f * kLineSpacing));
  plot.PlotPen(1, 1, colour.frame);
  std::string date(dateText);
  date.resize(18, ' ');
  const float dateY = -(10 * kLineSpacing + h / 3);
  plot.PlotText(w / 2, dateY, Trimmed(date), 15, 0, 2);
  plot.PlotText(w / 2, dateY - 3 * kLineSpacing, ResidualLine(data.residuals), 15, 0, 2);
}

int DrawHalfwidthPlot(PlotLibrary& plot, const std::string& parameterFile,
                      std::string_view baseName, std::string_view dateText, Reporter& reporter) {
  RecordStore store(reporter);
  if (store.jReadRecFile(parameterFile) < 1) {
    store.jCloseRec();
    reporter.LogLine(" Error opening parfile " + parameterFile);
    return 1;
  }
  std::string record;
  int jobType = 0, profile = 0, phases = 1;
  if (store.jFindRec("JOBT", record) == 1) Read(record, "(3i5)", jobType, profile, phases);
  phases = std::clamp(phases, 1, kMaxPhases);
  const int curves = profile == 6 ? 2 : 1;
  int cycles = 0;
  std::array<float, 8> relx{};
  if (store.jFindRec("RELX", record) != 1) {
    store.jCloseRec();
    reporter.LogLine(" RELX record missing");
    return 1;
  }
  Read(record, "(i5,8f10.0)", cycles, relx[0], relx[1], relx[2], relx[3], relx[4], relx[5], relx[6],
       relx[7]);
  const float start = relx[5], stop = relx[7];
  constexpr int kCurvePoints = 201;
  std::vector<float> tt(kCurvePoints);
  for (int i = 0; i < kCurvePoints; ++i) {
    tt[i] = start + (stop - start) * static_cast<float>(i) / (kCurvePoints - 1);
  }
  // widths[phase][curve], shapes[phase][curve]
  std::vector<std::array<std::vector<float>, 2>> widths(phases), shapes(phases);
  for (int p = 0; p < phases; ++p) {
    std::array<float, 6> hw{}, pk{};
    std::array<float, 2> sz{};
    if (store.jFindRec("HWTH", record) != 1) {
      store.jCloseRec();
      reporter.LogLine(" HWTH record missing");
      return 1;
    }
    Read(record, "(6f10.0)", hw[0], hw[1], hw[2], hw[3], hw[4], hw[5]);
    if (store.jFindRec("PKSH", record) != 1) {
      store.jCloseRec();
      reporter.LogLine(" PKSH record missing");
      return 1;
    }
    Read(record, "(6f10.0)", pk[0], pk[1], pk[2], pk[3], pk[4], pk[5]);
    if (store.jFindRec("STSZ", record) == 1) Read(record, "(2f10.0)", sz[0], sz[1]);
    for (int k = 0; k < curves; ++k) {
      for (float x : tt) {
        const double theta = x / 2.0 * M_PI / 180.0;
        const double t = std::tan(theta), c = std::cos(theta);
        const double square = (hw[3 * k] * t + hw[3 * k + 1]) * t + hw[3 * k + 2];
        double width = square > 0 ? std::sqrt(square) : 0.0;
        width += sz[0] * t + (c != 0 ? sz[1] / c : 0.0);
        widths[p][k].push_back(static_cast<float>(width));
        shapes[p][k].push_back((pk[3 * k] * x + pk[3 * k + 1]) * x + pk[3 * k + 2]);
      }
    }
  }
  store.jCloseRec();

  const float h = kFrameHeight;
  const float half = kFrameWidth / 2 - 30;
  plot.PlotInit();
  plot.canvas().Clear();
  plot.PlotOrigin(kFrameX, kFrameY);
  auto panel = [&](float x0, const std::vector<std::array<std::vector<float>, 2>>& values,
                   std::string_view label) {
    std::vector<float> all;
    for (const auto& phase : values) {
      for (int k = 0; k < curves; ++k) all.insert(all.end(), phase[k].begin(), phase[k].end());
    }
    const AxisScale xs = AutoScale(tt, half);
    AxisScale ys = AutoScale(all, h);
    if (ys.factor == 0.0f) ys = {0.0f, 1.0f / h, 1.0f};
    plot.PlotOrigin(x0, 0);
    plot.PlotPen(1, 1, 0);
    plot.PlotRect(0, 0, half, h, 0);
    plot.PlotAxis(0, 0, "2|q ", half, 0, xs);
    plot.PlotAxis(0, 0, label, h, 90, ys);
    plot.PlotClip(0, 0, half, h);
    for (const auto& phase : values) {
      for (int k = curves - 1; k >= 0; --k) {
        plot.PlotPen(1, 1, k == 1 ? 255 : 65280);
        plot.PlotLine(tt, phase[k], xs, ys);
      }
    }
    plot.PlotUnclip();
    plot.PlotOrigin(-x0, 0);
  };
  panel(0, widths, "FWHM");
  panel(kFrameWidth / 2 + 30, shapes, "|g");
  std::string date(dateText);
  date.resize(18, ' ');
  plot.PlotPen(1, 1, 0);
  plot.PlotText(kFrameWidth / 2, h + 2 * kLineSpacing,
                std::string(Trimmed(date + "     " + std::string(Trimmed(baseName)))), 15, 0, 2);
  return 0;
}

}  // namespace kaldena
