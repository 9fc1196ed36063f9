// What a Hermann-Mauguin symbol names: its lattice, Laue class and unique axis, and the
// rotations, screws, mirrors and glides of its fields with their directions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "crystal/seitz.h"
#include "crystal/space_group.h"

namespace kaldena {

// A rotation or plane named by a field: the rotation part and its screw or glide translation.
struct SymbolElement {
  Seitz op;
  bool plane = false;
  bool anyDirection = false;  // a diagonal field: any of its equivalent directions will do
};

// The axis and the plane of one field; either may be absent.
struct FieldElements {
  bool hasAxis = false;
  bool hasPlane = false;
  Seitz axis;
  Seitz plane;
};

struct SymbolRecipe {
  std::string symbol;               // 20 characters, upper case, as read
  std::vector<std::string> fields;  // the symmetry fields behind the lattice letter
  char lattice = 'P';
  bool rhombohedralAxes = false;
  int laueClass = 1;
  int uniqueAxis = 0;
  std::vector<GeneratorWord> centringWords;
  std::vector<FieldElements> fieldElements;  // one per field
  std::vector<SymbolElement> elements;       // everything the fields name
  bool quarterSteps = false;                 // translations in quarters are needed (d, 41, 43)
};

// Reads the symbol into a recipe. Fails with kBadCharacter for a character outside the
// alphabet " CBAPFIRMND123456-/H." and kSyntax for fields that make no symbol.
SymbolStatus ReadSymbolRecipe(std::string_view text, SymbolRecipe& recipe);

// The symbol folded to upper case and padded to 20 characters, with the cubic "M -3", "N -3",
// "D -3", "A -3" in columns 3 to 6 read without the minus.
std::string CanonicalSymbolText(std::string_view text);

}  // namespace kaldena
