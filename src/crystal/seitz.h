// Integer symmetry operations for building space groups: a rotation of -1/0/1 entries and a
// translation in twelfths of a cell edge, kept modulo whole cells.
#pragma once

#include <array>

#include "crystal/space_group.h"

namespace kaldena {

struct Seitz {
  std::array<int, 9> r{1, 0, 0, 0, 1, 0, 0, 0, 1};  // row major
  std::array<int, 3> t{0, 0, 0};                    // twelfths, 0 to 11

  bool operator==(const Seitz&) const = default;
  // A number that tells operations apart.
  int Key() const;
};

inline constexpr int kTwelfths = 12;

// Rotation parts that the symbol reader and the translation search share, row major.
using RotationMatrix = std::array<int, 9>;
inline constexpr RotationMatrix kIdentityRotation = {1, 0, 0, 0, 1, 0, 0, 0, 1};
inline constexpr RotationMatrix kInversionRotation = {-1, 0, 0, 0, -1, 0, 0, 0, -1};
inline constexpr RotationMatrix kTwoFoldX = {1, 0, 0, 0, -1, 0, 0, 0, -1};
inline constexpr RotationMatrix kTwoFoldY = {-1, 0, 0, 0, 1, 0, 0, 0, -1};
inline constexpr RotationMatrix kTwoFoldZ = {-1, 0, 0, 0, -1, 0, 0, 0, 1};
inline constexpr RotationMatrix kThreeFoldZ = {0, -1, 0, 1, -1, 0, 0, 0, 1};  // -y, x-y, z
inline constexpr RotationMatrix kThreeFold111 = {0, 0, 1, 1, 0, 0, 0, 1, 0};  // z, x, y

RotationMatrix Negated(RotationMatrix m);

int Wrap12(int t);
Seitz Compose(const Seitz& a, const Seitz& b);  // a after b
Seitz Inverse(const Seitz& a);
int RotationOrder(const std::array<int, 9>& r);  // 1, 2, 3, 4 or 6
int Determinant(const std::array<int, 9>& r);
// The screw or glide part of an operation: the mean of its translation over the powers of its
// rotation (zero for rotoinversions), in twelfths, wrapped.
std::array<int, 3> IntrinsicTranslation(const Seitz& op);

// The packed word of an operation that words can hold: rows x' from {x, y, -x, -y}, y' from
// {y, x, -y, -x}, z' = +-z, translations in quarters (and thirds along z). Returns -1 for
// anything else.
GeneratorWord PackWord(const Seitz& op);
// The operation of a plain word (kind 0), or of the first image of a three-fold word.
Seitz UnpackWord(GeneratorWord word);

}  // namespace kaldena
