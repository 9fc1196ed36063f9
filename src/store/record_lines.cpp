#include "store/record_lines.h"

#include <cmath>

#include "store/record_keys.h"
#include "util/text.h"

namespace kaldena {

ReadStatus ReadCellLine(std::string_view data, CellParameters& cell, float& wavelength) {
  std::array<float, 7> v{};
  const ReadStatus status =
      Read(data, ReadLayout("CELL"), v[0], v[1], v[2], v[3], v[4], v[5], v[6]);
  if (status != ReadStatus::kOk) return status;
  const bool leadingWavelength = v[0] < 2.5f;
  if (leadingWavelength) wavelength = v[0];
  for (int i = 0; i < 6; ++i) cell[i] = v[i + (leadingWavelength ? 1 : 0)];
  for (int i = 3; i < 6; ++i) {
    if (cell[i] == 0.0f) cell[i] = 90.0f;
  }
  return ReadStatus::kOk;
}

AtomLine ReadAtomLine(std::string_view data, Reporter& reporter) {
  AtomLine atom;
  if (Read(data, "(a4,6x,i3,5f9.5)", atom.label, atom.type, atom.x, atom.y, atom.z, atom.occupancy,
           atom.b) == ReadStatus::kOk &&
      atom.type > 0) {
    return atom;
  }
  float type = 0;
  if (Read(data, "(a4,6x,6f10.0)", atom.label, atom.x, atom.y, atom.z, atom.occupancy, type,
           atom.b) != ReadStatus::kOk) {
    reporter.ShowMessage("Error", Trimmed(data));
    atom.type = -1;
    return atom;
  }
  atom.type = static_cast<int>(std::lround(type));
  return atom;
}

}  // namespace kaldena
