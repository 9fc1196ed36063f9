// The Fourier plot file (.plo): the map as integers on the +-999 scale, one z section after
// another, read back by the peak search and the contour plots.
#pragma once

#include <array>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "store/record_lines.h"
#include "tools/fourier_map.h"

namespace kaldena {

// The head of the file: a line count (always 0) with the cell, "(I5,6F10.5)", and the plot
// title, "(A10)".
std::string PlotFileHeader(const CellParameters& cell, std::string_view plotTitle);

// The sections in rising z, each "(2F10.5)" with 0 and RMAX, the first also with the box
// limits, steps and point counts "(9F10.4,3I5)", then one row of Nx values "I4" for each y;
// and the end mark "(2F10.5)" with -100 and RMAX.
std::string PlotFileSections(const FourierMap& map, const std::array<float, 6>& limits);

// The row format of a grid of `points` along x: "( 28I4)".
std::string PlotRowFormat(int points);

struct PlotFile {
  CellParameters cell{};
  std::string title;
  std::array<float, 6> limits{};  // min x, max x, min y, max y, min z, max z
  std::array<float, 3> steps{};
  std::array<int, 3> points{};
  float rmax = 0.0f;
  std::vector<int> values;  // x fastest, then y, then z

  int At(int ix, int iy, int iz) const {
    return values[(static_cast<size_t>(iz) * points[1] + iy) * points[0] + ix];
  }
};

// Reads a plot file as written above: the count of lines to skip after the first, the title,
// and every section up to the end mark. False when the file ends early or a line does not
// read; `plot` then holds the sections read whole so far.
bool ReadPlotFile(std::istream& in, PlotFile& plot);

}  // namespace kaldena
