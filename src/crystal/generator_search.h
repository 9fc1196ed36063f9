// The translation pass: given the rotations a symbol names, finds the translations of its
// generators that make the group close with every named screw and glide, the centre of
// symmetry at the origin, and the origin of the standard setting.
#pragma once

#include <vector>

#include "crystal/symbol_recipe.h"

namespace kaldena {

// The generator words of the recipe's group, centring words first, in an order in which each
// generator extends the group of those before it by a factor of two or three. False when the
// symbol names no group.
bool FindGeneratorWords(const SymbolRecipe& recipe, std::vector<GeneratorWord>& words);

}  // namespace kaldena
