// Space groups from their Hermann-Mauguin symbols. The symbol is read as a recipe for
// generators, with no table of the groups: each symmetry field names rotations, screws,
// mirrors and glides, the translations are settled so that the group closes at the standard
// origin, and the operators follow by expanding a test point through the packed generators.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "util/limits.h"
#include "util/report.h"

namespace kaldena {

// One packed rotation and translation. Fields by division: x source (word mod 4), x
// translation ((word/4) mod 4), y source ((word/16) mod 4), y translation ((word/64) mod 4),
// z sign ((word/256) mod 2), z translation ((word/512) mod 4), z thirds ((word/2048) mod 4),
// kind (word/8192): 1 a three-fold axis along z (8192 alone: rhombohedral centring), 2 the
// three-fold axis along the body diagonal.
using GeneratorWord = int;

inline constexpr GeneratorWord kInversionWord = 290;
inline constexpr GeneratorWord kRhombohedralCentringWord = 8192;
// The translations of the A, B, C and I centrings (F is A with B).
inline constexpr GeneratorWord kACentringWord = 576;
inline constexpr GeneratorWord kBCentringWord = 516;
inline constexpr GeneratorWord kCCentringWord = 68;
inline constexpr GeneratorWord kICentringWord = 580;
inline constexpr GeneratorWord kDiagonalThreeFoldWord = 16384;
inline constexpr int kMaxGeneratorWords = 10;
inline constexpr int kSymbolLength = 20;

// The rotation part of a word: word AND hexadecimal 133.
inline constexpr int RotationPart(GeneratorWord word) { return word & 0x133; }

// 3 x 4 matrix: rows of (coefficient of x, y, z, translation).
using SymmetryOperator = std::array<float, 12>;

enum class LaueClass {
  kTriclinic = 1,     // "1BAR    "
  kMonoclinic,        // "2/M     "
  kOrthorhombic,      // "MMM     "
  kTetragonalLow,     // "4/M     "
  kTetragonalHigh,    // "4/MMM   "
  kRhombohedralLow,   // "3BAR   R"
  kRhombohedralHigh,  // "3BAR M R"
  kTrigonalLow,       // "3BAR    "
  kTrigonalM1,        // "3BAR M 1"
  kTrigonal1M,        // "3BAR 1 M"
  kHexagonalLow,      // "6/M     "
  kHexagonalHigh,     // "6/MMM   "
  kCubicLow,          // "M3      "
  kCubicHigh,         // "M3M     "
};

// The 8-character label of a Laue class 1 to 14.
std::string_view LaueClassLabel(int laueClass);

struct SpaceGroupInfo {
  std::string symbol;  // 20 characters, upper case
  int laueClass = 1;   // 1 to 14
  int uniqueAxis = 0;  // 1, 2, 3 for a monoclinic setting; 0 otherwise; 4 when the symbol failed
  std::vector<GeneratorWord> generatorWords;  // at most 8 used
  int centricCode = 1;                        // 2 for a centrosymmetric group
  int polarAxes = 7;                          // bit 1 x, 2 y, 4 z: axes with a free origin
  std::vector<SymmetryOperator> operators;    // the identity first
};

enum class SymbolStatus {
  kOk = 0,
  kBadCharacter = 1,  // a character outside " CBAPFIRMND123456-/H."
  kSyntax = 2,        // fields that make no symbol
};

enum class ExpandStatus {
  kOk = 0,
  kCentreOffOrigin = 3,  // an inversion word that carries a translation
  kNoMirrorSet = 4,      // no x,x,z or x,-x,z set found for a position
  kPositionMoved = 5,    // a position was moved onto its special set
  kWrongOperator = 6,    // a generator that no space group can hold: fatal
  kUnresolvable = 7,     // the special set of a position could not be settled
};

// Reads a symbol (blank-separated fields, any case) into Laue class, unique axis and
// generator words. The operators are not built.
SymbolStatus ParseSpaceGroupSymbol(std::string_view symbol, SpaceGroupInfo& info);

// True for a word that the expansion can apply.
bool IsValidGeneratorWord(GeneratorWord word);

// Builds the operators of `info` from its generator words, and its centric code and polar
// axes. Site flags and multiplicity are those of the test point, a general position.
ExpandStatus ExpandOperators(SpaceGroupInfo& info);

// The application's entry: parses and expands. A symbol that fails is replaced by "P 1" after
// the box "Spacegroup problems (1)" (parse) or "Spacegroup problems (2)" (expansion), each with
// the text "Reset to P 1". `symbol` is changed in place when it is reset.
SpaceGroupInfo GetSpaceGroupOperators(std::string& symbol, Reporter& reporter);

// The engine's entry: the same algorithm, with the symbol and every message written as lines
// of the list file and a status returned instead of a reset (0 good, 1 failed).
int ReadPhaseSpaceGroup(std::string_view symbol, SpaceGroupInfo& info,
                        std::vector<std::string>& listLines);

struct SiteSymmetry {
  int flags = 0;                 // bit k set when generator word k maps the position onto itself
  float multiplicityFactor = 1;  // orbit size over group order: 1 for a general position
};

// The site of an atom position, for the engine: the position is expanded through the generator
// words and every image that falls on it (within 0.0001) marks an element of its site. An
// image within 0.0002 that is not on it means the position lies just off a special set: it is
// moved onto the set (the centre of those images), " THE ATOM AT ... WAS PUT AT ..." goes to
// the list file, and the site is found again, for at most three passes.
ExpandStatus SitePosition(const SpaceGroupInfo& info, std::array<float, 3>& position,
                          SiteSymmetry& site, std::vector<std::string>& listLines);

// An operator as text: "x,y,z", "-x,y+1/2,-z+1/2", "x-y,x,z+1/6".
std::string OperatorText(const SymmetryOperator& op);

// The operator of a text as CIF files write them: "-x+1/2, y, -z", "1/2+X,-Y,Z", "x-y,x,z+0.5".
// The translation is taken into [0, 1). False for text that names no operator of a space
// group: a coefficient other than -1, 0, 1 or a row without x, y and z.
bool ReadOperatorText(std::string_view text, SymmetryOperator& op);

}  // namespace kaldena
