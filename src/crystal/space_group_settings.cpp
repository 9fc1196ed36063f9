#include "crystal/space_group_settings.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "util/text.h"

namespace kaldena {

namespace {

constexpr int kParts = 24;  // translations in 24ths: halves, thirds, quarters, sixths, eighths

using OperatorKey = std::array<int, 12>;

OperatorKey KeyOf(const SymmetryOperator& op) {
  OperatorKey key;
  for (int i = 0; i < 12; ++i) {
    const bool translation = i % 4 == 3;
    const int value = static_cast<int>(std::lround(op[i] * (translation ? kParts : 1)));
    key[i] = translation ? ((value % kParts) + kParts) % kParts : value;
  }
  return key;
}

std::vector<OperatorKey> SortedKeys(const std::vector<SymmetryOperator>& operators) {
  std::vector<OperatorKey> keys;
  for (const SymmetryOperator& op : operators) keys.push_back(KeyOf(op));
  std::sort(keys.begin(), keys.end());
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
  return keys;
}

// The operator sets of the settings, built once from the symbol reader: origin choice 1,
// which shares its symbol with origin choice 2, as the second's operators moved.
const std::map<std::vector<OperatorKey>, const SpaceGroupSetting*>& SettingsByOperators() {
  static const auto table = [] {
    std::map<std::vector<OperatorKey>, const SpaceGroupSetting*> map;
    for (const SpaceGroupSetting& s : kSettingRows) {
      SpaceGroupInfo info;
      if (s.originChoice == 1 || ParseSpaceGroupSymbol(s.symbol, info) != SymbolStatus::kOk ||
          ExpandOperators(info) != ExpandStatus::kOk) {
        continue;
      }
      map.emplace(SortedKeys(info.operators), &s);
      if (const SpaceGroupSetting* first = OriginChoiceOne(s)) {
        map.emplace(SortedKeys(InOriginChoiceOne(info.operators, *first)), first);
      }
    }
    return map;
  }();
  return table;
}

// Upper case with single blanks between the words; "_" stands for a blank.
std::string HallKey(std::string_view hall) {
  std::string key;
  for (char c : hall) {
    if (c == '_' || c == '\t') c = ' ';
    if (c != ' ' || (!key.empty() && key.back() != ' ')) key += UpperChar(c);
  }
  if (!key.empty() && key.back() == ' ') key.pop_back();
  return key;
}

}  // namespace

const SpaceGroupSetting* SettingOfOperators(const std::vector<SymmetryOperator>& operators) {
  const auto& table = SettingsByOperators();
  const auto found = table.find(SortedKeys(operators));
  return found == table.end() ? nullptr : found->second;
}

const SpaceGroupSetting* StandardSetting(int number) {
  const auto row = std::find_if(
      kSettingRows.begin(), kSettingRows.end(),
      [&](const SpaceGroupSetting& s) { return s.number == number && s.originChoice != 1; });
  return row == kSettingRows.end() ? nullptr : &*row;
}

const SpaceGroupSetting* SettingOfHall(std::string_view hall) {
  const std::string key = HallKey(hall);
  const auto row = std::find_if(kSettingRows.begin(), kSettingRows.end(),
                                [&](const SpaceGroupSetting& s) { return HallKey(s.hall) == key; });
  return row == kSettingRows.end() ? nullptr : &*row;
}

const SpaceGroupSetting* OriginChoiceOne(const SpaceGroupSetting& setting) {
  const auto row =
      std::find_if(kSettingRows.begin(), kSettingRows.end(), [&](const SpaceGroupSetting& s) {
        return s.originChoice == 1 && s.symbol == setting.symbol;
      });
  return row == kSettingRows.end() ? nullptr : &*row;
}

std::vector<SymmetryOperator> MovedOperators(const std::vector<SymmetryOperator>& operators,
                                             const std::array<int, 3>& move) {
  std::vector<SymmetryOperator> moved = operators;
  for (SymmetryOperator& op : moved) {
    for (int i = 0; i < 3; ++i) {
      float shift = static_cast<float>(move[i]);
      for (int j = 0; j < 3; ++j) shift -= op[4 * i + j] * static_cast<float>(move[j]);
      const float t = op[4 * i + 3] + shift / kParts;
      op[4 * i + 3] = t - std::floor(t);
    }
  }
  return moved;
}

std::vector<SymmetryOperator> InOriginChoiceOne(const std::vector<SymmetryOperator>& operators,
                                                const SpaceGroupSetting& first) {
  const std::array<int, 3>& d = first.originMove;
  return MovedOperators(operators, {-d[0], -d[1], -d[2]});
}

bool SameOperators(const std::vector<SymmetryOperator>& a, const std::vector<SymmetryOperator>& b) {
  return SortedKeys(a) == SortedKeys(b);
}

}  // namespace kaldena
