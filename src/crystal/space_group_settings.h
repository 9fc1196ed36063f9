// The space-group settings of International Tables: the number, printed symbol and Hall symbol
// of the setting whose operators a symbol gives, and for the groups with two origins the move
// from origin choice 1 to the centre of symmetry. The table only names settings: operators
// always come from the symbol reader.
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "crystal/space_group.h"

namespace kaldena {

struct SpaceGroupSetting {
  int number = 0;            // 1 to 230
  std::string_view symbol;   // as the symbol reader takes it: "P 1 21/C 1", "R -3 C R"
  std::string_view printed;  // "P 1 21/c 1", "F d -3 m:2", "R -3 c:H"
  std::string_view hall;     // "-P 2ybc"
  int originChoice = 0;      // 1 or 2 for the groups with two origins, else 0
  // Origin choice 1: coordinates move to origin choice 2 by x2 = x1 + move (24ths).
  std::array<int, 3> originMove{};
};

inline constexpr int kSettingCount = 530;
extern const std::array<SpaceGroupSetting, kSettingCount> kSettingRows;

// The setting whose general positions are these operators, in any order: a symbol reader's set
// gives origin choice 2 where there are two, the same moved gives origin choice 1. Settings of
// one set of operators (origin choice 1 of C c c a and C c c b) give the first. Null when no
// setting of the table has them.
const SpaceGroupSetting* SettingOfOperators(const std::vector<SymmetryOperator>& operators);
// The standard setting of a group number: unique axis b, hexagonal axes, origin choice 2.
const SpaceGroupSetting* StandardSetting(int number);
// The setting of a Hall symbol; case, runs of blanks and "_" for a blank do not matter.
const SpaceGroupSetting* SettingOfHall(std::string_view hall);
// Origin choice 1 of a setting of a group with two origins; null for the others.
const SpaceGroupSetting* OriginChoiceOne(const SpaceGroupSetting& setting);

// The operators seen from the origin of another setting: x' = x + move (24ths) turns
// x -> W x + t into x' -> W x' + t + (I - W) move.
std::vector<SymmetryOperator> MovedOperators(const std::vector<SymmetryOperator>& operators,
                                             const std::array<int, 3>& move);
// The operators of origin choice 2 as origin choice 1 (`first`) has them.
std::vector<SymmetryOperator> InOriginChoiceOne(const std::vector<SymmetryOperator>& operators,
                                                const SpaceGroupSetting& first);
// Equal sets of operators, in any order and repeats aside, translations taken modulo whole
// cells.
bool SameOperators(const std::vector<SymmetryOperator>& a, const std::vector<SymmetryOperator>& b);

}  // namespace kaldena
