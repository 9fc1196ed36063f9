// The space group of a CIF for the import: the Hermann-Mauguin symbol, else the setting that a
// Hall symbol or a group number names, checked against the file's symmetry operators, which
// also tell origin choice 1 where the symbol does not.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "tools/cif_import.h"
#include "tools/cif_scanner.h"
#include "util/report.h"

namespace kaldena {

struct CifSpaceGroup {
  std::string symbol = "P 1";  // as the symbol reader takes it
  // For a file in origin choice 1: added to its coordinates (24ths) to reach origin choice 2,
  // the centre of symmetry at the origin. Zero otherwise.
  std::array<int, 3> originMove{};
};

// Reads the group of the file. Messages: "Spacegroup symbol not found" and "Error in
// spacegroup symbol" as fixed lines, and our own lines with "file:line" for the item used in
// place of the symbol, for origin choice 1 and for operators that fit no setting of the group.
CifSpaceGroup ReadCifSpaceGroup(const CifText& text, Reporter& reporter);

// The atoms' coordinates moved to origin choice 2 and taken into [0, 1).
void MoveToOriginChoiceTwo(const CifSpaceGroup& group, std::vector<CifAtom>& atoms);

}  // namespace kaldena
