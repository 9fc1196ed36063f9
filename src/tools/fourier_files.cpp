#include "tools/fourier_files.h"

#include <algorithm>

#include "util/column_format.h"
#include "util/text.h"

namespace kaldena {

std::string PlotFileHeader(const CellParameters& cell, std::string_view plotTitle) {
  return Format("(I5,6F10.5)", 0, cell[0], cell[1], cell[2], cell[3], cell[4], cell[5]) +
         Format("(A10)", plotTitle);
}

std::string PlotRowFormat(int points) { return FormatLine("('(',I3,'I4)')", points); }

std::string PlotFileSections(const FourierMap& map, const std::array<float, 6>& limits) {
  const auto& axes = map.axes;
  const std::string rowFormat = PlotRowFormat(axes[0].points);
  std::string text;
  std::vector<FormatArg> row;
  for (int iz = 0; iz < axes[2].points; ++iz) {
    text += Format("(2F10.5)", 0.0f, map.rmax);
    if (iz == 0) {
      text += Format("(9F10.4,3I5)", limits[0], limits[1], limits[2], limits[3], limits[4],
                     limits[5], axes[0].step, axes[1].step, axes[2].step, axes[0].points,
                     axes[1].points, axes[2].points);
    }
    for (int iy = 0; iy < axes[1].points; ++iy) {
      row.clear();
      for (int ix = 0; ix < axes[0].points; ++ix) row.emplace_back(map.Scaled(ix, iy, iz));
      text += WriteFormatted(rowFormat, row);
    }
  }
  text += Format("(2F10.5)", -100.0f, map.rmax);
  return text;
}

bool ReadPlotFile(std::istream& in, PlotFile& plot) {
  plot = PlotFile{};
  std::string line;
  int count = 0;
  auto& c = plot.cell;
  if (!GetTextLine(in, line) ||
      Read(line, "(I5,6F10.0)", count, c[0], c[1], c[2], c[3], c[4], c[5]) != ReadStatus::kOk) {
    return false;
  }
  for (int i = 0; i < count; ++i) {
    if (!GetTextLine(in, line)) return false;
  }
  if (!GetTextLine(in, line)) return false;
  plot.title = line.substr(0, std::min<size_t>(line.size(), 10));
  plot.title.resize(10, ' ');

  std::vector<int> row;
  std::vector<ReadTarget> targets;
  std::string rowFormat;
  int sections = 0;
  // Whatever happens, the point count along z tells the sections that stand whole.
  auto finish = [&](bool ok) {
    plot.points[2] = sections;
    return ok;
  };
  for (int iz = 0;; ++iz) {
    float mark = 0.0f, rmax = 0.0f;
    if (!GetTextLine(in, line) || Read(line, "(2F10.0)", mark, rmax) != ReadStatus::kOk) {
      return finish(false);
    }
    plot.rmax = rmax;
    if (mark == -100.0f) return finish(iz > 0 && iz == plot.points[2]);
    if (iz == 0) {
      auto& l = plot.limits;
      auto& s = plot.steps;
      auto& p = plot.points;
      if (!GetTextLine(in, line) ||
          Read(line, "(9F10.0,3I5)", l[0], l[1], l[2], l[3], l[4], l[5], s[0], s[1], s[2], p[0],
               p[1], p[2]) != ReadStatus::kOk) {
        return finish(false);
      }
      for (int n : p) {
        if (n < 1 || n > kMaxGridPoints) return finish(false);
      }
      row.assign(p[0], 0);
      targets.clear();
      for (int& v : row) targets.emplace_back(v);
      rowFormat = PlotRowFormat(p[0]);
    } else if (iz >= plot.points[2]) {
      return finish(false);
    }
    std::vector<int> section;
    for (int iy = 0; iy < plot.points[1]; ++iy) {
      if (!GetTextLine(in, line) || ReadFormatted(line, rowFormat, targets) != ReadStatus::kOk) {
        return finish(false);
      }
      section.insert(section.end(), row.begin(), row.end());
    }
    plot.values.insert(plot.values.end(), section.begin(), section.end());
    ++sections;
  }
}

}  // namespace kaldena
