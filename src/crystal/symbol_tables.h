// Looks at a space-group symbol or a cell without building operators: the class code of a
// symbol, the crystal system of a cell, the groups with two origin choices, and the conversion
// of a printed symbol ("P21/c", "Fm-3m") to the blank-separated form the symbol reader takes.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace kaldena {

// Class codes of a blank-separated symbol. Codes 7 and 10 mark a rhombohedral lattice.
enum SymbolClassCode : int {
  kTriclinicClass = 1,
  kMonoclinicAClass = 2,
  kMonoclinicBClass = 3,
  kMonoclinicCClass = 4,
  kOrthorhombicClass = 5,
  kTrigonalLowClass = 6,
  kRhombohedralLowClass = 7,
  kTrigonalM1Class = 8,
  kTrigonal1MClass = 9,
  kRhombohedralHighClass = 10,
  kTetragonalLowClass = 11,
  kTetragonalHighClass = 12,
  kHexagonalLowClass = 13,
  kHexagonalHighClass = 14,
  kCubicLowClass = 15,
  kCubicHighClass = 16,
};

// The class code (1 to 16) of a blank-separated symbol such as "P 21/C" or "R -3 C", read from
// the first character of each symmetry field. A trailing R or H field, which only names the
// axes, is left out as the symbol reader leaves it out. Text that fits no row gives 1.
int SymbolClass(std::string_view symbol);

// The crystal system of a cell (a, b, c, alpha, beta, gamma), by exact comparison of the
// values, as a name padded with blanks to 12 characters: "Triclinic", "Monoclinic",
// "Orthorhombic", "Hexagonal", "Rhombohedral", "Tetragonal" or "Cubic".
std::string CrystalSystemName(const std::array<float, 6>& cell);

// For the centrosymmetric groups whose standard settings differ by the origin, the 1-based row
// of the group in the table of origin choices ("PNNN" first, "FD3C" last at 22); 0 for any
// other symbol. Case and blanks do not matter, and "FD-3M" is "FD3M".
int OriginChoiceIndex(std::string_view symbol);

// The origin choice that a printed symbol names, 1 or 2: ":1" behind it ("F d -3 m:1",
// "F d -3 m :1") or the words "origin choice 1" or "origin 1" in it, any case; 0 when it names
// none.
int PrintedOriginChoice(std::string_view symbol);

// A symbol as printed in a CIF or typed ("P21/c", "P4_2/mnm", "P 1 21/c 1", "R-3c:R") in the
// blank-separated upper-case form the symbol reader takes ("P 21/C", "P 42/M N M", "R -3 C R").
// Bracketed parts are left out. Text that does not begin with a lattice letter comes back
// unchanged; text that reads as no symbol comes back folded, in its own words.
std::string ConvertPrintedSymbol(std::string_view symbol);

}  // namespace kaldena
