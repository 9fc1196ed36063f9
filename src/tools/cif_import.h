// CIF import: one phase (space group, cell, atom sites, anisotropic displacements) read from a
// CIF, and the project records of that phase. What cannot be read is reported and left at
// its default, so that a project made from the result still opens and runs.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "store/record_store.h"
#include "util/report.h"

namespace kaldena {

enum class CifImportStatus {
  kOk = 0,                 // a phase stands, perhaps with defaults where the CIF said nothing
  kCannotOpen = 1,         // " Error opening CIF": nothing imported
  kRhombohedralAxes = 2,   // an R group on rhombohedral axes: refused, nothing imported
};

// 8 pi^2 and 2 pi^2: B = 8 pi^2 U, beta_ij = 2 pi^2 U_ij a*_i a*_j.
inline constexpr float kUToB = 78.956711f;
inline constexpr float kUToBeta = 19.739178f;

struct CifAtom {
  std::string label;    // as the CIF gives it; the records keep its first 4 characters
  std::string element;  // two characters as the element table has them: "Pb", "O "
  int type = 1;         // number of the element in CifPhase::elements, from 1
  std::array<float, 5> values{0.0f, 0.0f, 0.0f, 1.0f, 3.0f};  // x, y, z, occupancy, B
  std::array<float, 5> valueSd{};
  std::array<float, 6> beta{};  // b11, b22, b33, b12, b13, b23
  std::array<float, 6> betaSd{};
  bool anisotropic = false;  // a line of the aniso loop was matched to the atom
  // Operators of the group, centrings included, that map the site onto itself.
  int siteFactor = 1;
};

struct CifPhase {
  CifImportStatus status = CifImportStatus::kOk;
  std::string spaceGroup = "P 1";  // blank-separated, as the symbol reader takes it
  std::array<float, 6> cell{10.0f, 10.0f, 10.0f, 90.0f, 90.0f, 90.0f};
  std::array<float, 6> cellSd{};
  std::vector<CifAtom> atoms;
  // Distinct elements in order of first appearance; an atom's type numbers into this list.
  std::vector<std::string> elements;
};

// Reads the phase of a CIF. The fixed messages (" Error opening CIF", "Spacegroup symbol not
// found", "Unit cell a not found", ...) go to the log, and our own lines with "file:line"
// beside them; stages go to Progress; a rhombohedral setting gives the box "Problem".
// `atomsBefore` is the number of atoms of earlier phases, for the 500-atom limit.
CifPhase ImportCif(const std::string& path, Reporter& reporter, int atomsBefore = 0);
// The same for CIF text in memory; `name` serves the messages.
CifPhase ImportCifText(std::string_view name, std::string_view content, Reporter& reporter,
                       int atomsBefore = 0);

// The element of a type symbol or label: the first two characters, the second dropped when it
// is not a letter or makes no element ("O2-" is "O ", "Al3+" "Al", "OW1" "O "); blank when
// no element is named.
std::string ElementOfSymbol(std::string_view symbol);

// The records of the phase as a new project holds them: PHTI, PHNA, SPGR, CELL, SDCE, then
// per atom XYZ (with its site factor) and SDXY, then per atom BETA and SDBE. Atom types are
// numbered from `firstType` on, behind the types of the project.
std::vector<Record> CifPhaseRecords(const CifPhase& phase, std::string_view title,
                                    int firstType = 1);
// One ANOM line per element of the phase, with the element table's f' and f'' at the
// wavelength (Cu K alpha 1 by default, as a new project's controls).
std::vector<Record> CifAtomTypeRecords(const CifPhase& phase, float wavelength = 1.54051f);

}  // namespace kaldena
