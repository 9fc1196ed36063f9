// The general positions of space-group settings from gemmi (tests/data/crystal, written by
// scripts/data/make_space_group_reference.py), for the tests of the symbol reader.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "crystal/space_group.h"
#include "support/test_files.h"

namespace kaldena::testing {

struct ReferenceSetting {
  int number = 0;
  std::string symbol;
  int laueClass = 0;
  int uniqueAxis = 0;
  int centricCode = 0;
  size_t order = 0;
  std::vector<std::string> operators;  // sorted
};

inline std::vector<std::string> SplitText(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::stringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

// The rows of one reference file under tests/data.
inline std::vector<ReferenceSetting> LoadReference(const char* name) {
  std::vector<ReferenceSetting> settings;
  std::ifstream in(TestData(name));
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    const std::vector<std::string> f = SplitText(line, '|');
    ReferenceSetting s{std::stoi(f[0]),     f[1],
                       std::stoi(f[2]),     std::stoi(f[3]),
                       std::stoi(f[4]),     static_cast<size_t>(std::stoul(f[5])),
                       SplitText(f[6], ';')};
    std::sort(s.operators.begin(), s.operators.end());
    settings.push_back(s);
  }
  return settings;
}

// The settings users type most: every group's standard setting, the monoclinic groups also
// with unique axes a and c, the R groups on rhombohedral axes.
inline std::vector<ReferenceSetting> CommonSettings() {
  return LoadReference("crystal/space_groups.txt");
}

// Every symbol that names a setting of International Tables: the common ones and all others.
inline std::vector<ReferenceSetting> EveryNamedSetting() {
  std::vector<ReferenceSetting> settings = CommonSettings();
  const std::vector<ReferenceSetting> others = LoadReference("crystal/space_group_settings.txt");
  settings.insert(settings.end(), others.begin(), others.end());
  return settings;
}

// The group of a symbol, expected to read and expand.
inline SpaceGroupInfo Expanded(std::string_view symbol) {
  SpaceGroupInfo info;
  EXPECT_EQ(ParseSpaceGroupSymbol(symbol, info), SymbolStatus::kOk) << symbol;
  EXPECT_EQ(ExpandOperators(info), ExpandStatus::kOk) << symbol;
  return info;
}

inline std::vector<std::string> OperatorTexts(const std::vector<SymmetryOperator>& operators) {
  std::vector<std::string> texts;
  for (const SymmetryOperator& op : operators) texts.push_back(OperatorText(op));
  std::sort(texts.begin(), texts.end());
  return texts;
}

}  // namespace kaldena::testing
