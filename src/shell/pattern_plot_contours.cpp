// Drawing a Fourier section's contours.
#include "shell/pattern_plot_contours.h"

#include <algorithm>
#include <cmath>

#include "util/column_format.h"

namespace kaldena {
namespace {

constexpr char kAxisLetters[] = "XYZ";

// Plot styles by level kind: solid positive, dotted zero, dashed negative.
int StyleOf(LevelKind kind) {
  switch (kind) {
    case LevelKind::kPositive:
      return 1;
    case LevelKind::kZero:
      return 3;
    default:
      return 2;
  }
}

}  // namespace

int DrawFourierSection(PlotLibrary& plot, const ContourMap& map, int sectionAxis, int section,
                       int& doublings, Reporter& reporter) {
  const std::array<int, 2> axes = PlaneAxesFor(sectionAxis);
  SectionPlane plane;
  const int status = TakePlane(map, axes[0], axes[1], section, plane, reporter);
  if (status != 0) return status;
  const float step = LevelStep(map.scale, map.highest, map.lowest);
  const std::vector<float> levels = ContourLevels(step, map.scale, map.highest, map.lowest);
  InterpolatePlane(plane, doublings, reporter);
  const std::vector<ContourLevel> contours = ContourPlane(plane, levels, map.scale, reporter);
  reporter.LogLine(FormatLine("(a,2i6)", "pixels: ", static_cast<int>(plot.canvas().Width()),
                              static_cast<int>(plot.canvas().Height())));

  // Fit the parallelogram into the page, true to the cell's lengths and angle.
  const float across = static_cast<float>(plane.columns - 1) * plane.columnLength;
  const float slant = static_cast<float>(plane.rows - 1) * plane.rowLength;
  const float xMin = std::min(0.0f, slant * plane.cosAngle);
  const float xMax = std::max(across, across + slant * plane.cosAngle);
  const float yMax = slant * plane.sinAngle;
  const float k =
      std::min(xMax > xMin ? 760.0f / (xMax - xMin) : 1.0f, yMax > 0 ? 700.0f / yMax : 1.0f);
  const float sx = plane.columnLength * k, sy = plane.rowLength * k;
  const float x0 = 120.0f - xMin * k, y0 = 150.0f;
  auto point = [&](int code, float& x, float& y) {
    const float r = static_cast<float>(ContourRow(code)) / 10.0f;
    const float c = static_cast<float>(ContourColumn(code)) / 10.0f;
    x = x0 + c * sx + r * plane.cosAngle * sy;
    y = y0 + r * plane.sinAngle * sy;
  };

  plot.PlotInit();
  plot.canvas().Clear();
  plot.PlotPen(1, 1, 0);
  const float cx = across * k, rx = slant * plane.cosAngle * k, ry = slant * plane.sinAngle * k;
  plot.PlotMove(x0, y0);
  plot.PlotDraw(x0 + cx, y0);
  plot.PlotDraw(x0 + cx + rx, y0 + ry);
  plot.PlotDraw(x0 + rx, y0 + ry);
  plot.PlotDraw(x0, y0);
  plot.PlotText(x0 + cx + 15, y0, std::string(1, kAxisLetters[plane.columnAxis - 1]), 18, 0, 4);
  plot.PlotText(x0 + rx, y0 + ry + 12, std::string(1, kAxisLetters[plane.rowAxis - 1]), 18, 0, 2);
  plot.PlotText(120, 80,
                FormatLine("(A1,' =',F6.3)", std::string(1, kAxisLetters[plane.sectionAxis - 1]),
                           plane.sectionValue),
                15, 0, 1);
  plot.PlotText(420, 80, map.file.title.substr(0, 10), 15, 0, 1);
  plot.PlotText(880, 80, FormatLine("('LEVELS AT',F6.3)", step), 15, 0, 3);

  for (const ContourLevel& level : contours) {
    plot.PlotPen(StyleOf(level.kind), 1, 0);
    for (const std::vector<int>& line : level.lines) {
      float x, y;
      point(line.front(), x, y);
      plot.PlotMove(x, y);
      for (size_t i = 1; i < line.size(); ++i) {
        point(line[i], x, y);
        plot.PlotDraw(x, y);
      }
    }
  }
  return 0;
}

}  // namespace kaldena
