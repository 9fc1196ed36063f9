#include "crystal/space_group.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "support/test_files.h"

namespace kaldena {
namespace {

struct ReferenceSetting {
  int number = 0;
  std::string symbol;
  int laueClass = 0;
  int uniqueAxis = 0;
  int centricCode = 0;
  size_t order = 0;
  std::vector<std::string> operators;
};

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::stringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

std::vector<ReferenceSetting> LoadReference() {
  std::vector<ReferenceSetting> settings;
  std::ifstream in(testing::TestData("crystal/space_groups.txt"));
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    const std::vector<std::string> f = Split(line, '|');
    ReferenceSetting s{std::stoi(f[0]), f[1],
                       std::stoi(f[2]), std::stoi(f[3]),
                       std::stoi(f[4]), static_cast<size_t>(std::stoul(f[5])),
                       Split(f[6], ';')};
    std::sort(s.operators.begin(), s.operators.end());
    settings.push_back(s);
  }
  return settings;
}

std::vector<std::string> OperatorTexts(const SpaceGroupInfo& info) {
  std::vector<std::string> texts;
  for (const SymmetryOperator& op : info.operators) texts.push_back(OperatorText(op));
  std::sort(texts.begin(), texts.end());
  return texts;
}

TEST(SpaceGroup, EverySettingGivesItsGeneralPositions) {
  const std::vector<ReferenceSetting> settings = LoadReference();
  ASSERT_GE(settings.size(), 230u);
  int failures = 0;
  for (const ReferenceSetting& ref : settings) {
    SpaceGroupInfo info;
    const SymbolStatus status = ParseSpaceGroupSymbol(ref.symbol, info);
    const ExpandStatus expand =
        status == SymbolStatus::kOk ? ExpandOperators(info) : ExpandStatus::kWrongOperator;
    const bool ok = status == SymbolStatus::kOk && expand == ExpandStatus::kOk &&
                    info.laueClass == ref.laueClass && info.uniqueAxis == ref.uniqueAxis &&
                    info.centricCode == ref.centricCode && info.operators.size() == ref.order &&
                    OperatorTexts(info) == ref.operators;
    if (!ok) ++failures;
    EXPECT_TRUE(ok) << ref.number << " \"" << ref.symbol << "\": status "
                    << static_cast<int>(status) << ", Laue " << info.laueClass << " axis "
                    << info.uniqueAxis << " centric " << info.centricCode << ", "
                    << info.operators.size() << " operators of " << ref.order;
  }
  EXPECT_EQ(failures, 0);
}

}  // namespace
}  // namespace kaldena
