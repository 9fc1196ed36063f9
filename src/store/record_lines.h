// Readers of the CELL and XYZ lines shared by the analysis tools.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "util/column_format.h"
#include "util/report.h"

namespace kaldena {

// a, b, c in angstrom and alpha, beta, gamma in degrees.
using CellParameters = std::array<float, 6>;

// Reads the data of a CELL line with "(7f10.0)". A first number below 2.5 is a wavelength:
// it is handed back and the cell follows; otherwise `wavelength` is left alone. An angle of
// exactly 0 becomes 90.
ReadStatus ReadCellLine(std::string_view data, CellParameters& cell, float& wavelength);

struct AtomLine {
  std::string label;  // 4 characters
  float x = 0, y = 0, z = 0;
  float occupancy = 0;
  float b = 0;
  int type = 0;  // -1 when the line does not read
};

// Reads the data of an XYZ line, first in the old layout "(a4,6x,i3,5f9.5)" and, when that
// fails or gives no positive type number, as "(a4,6x,6f10.0)" with the type number as a real
// behind the occupancy. A line that reads in neither way is shown in an "Error" box.
AtomLine ReadAtomLine(std::string_view data, Reporter& reporter);

}  // namespace kaldena
