#include "crystal/space_group_settings.h"

#include <gtest/gtest.h>

#include <set>

#include "crystal/symbol_tables.h"
#include "support/space_group_reference.h"

namespace kaldena {
namespace {

using testing::Expanded;
using testing::ReferenceSetting;

// Every symbol that names a setting finds that setting, whose printed symbol reads back as
// the same operators; different settings are never taken for one another.
TEST(SpaceGroupSettings, EverySymbolFindsItsSettingAndItsPrintedForm) {
  std::set<const SpaceGroupSetting*> found;
  for (const ReferenceSetting& ref : testing::EveryNamedSetting()) {
    const SpaceGroupInfo group = Expanded(ref.symbol);
    const SpaceGroupSetting* setting = SettingOfOperators(group.operators);
    ASSERT_NE(setting, nullptr) << ref.symbol;
    EXPECT_EQ(setting->number, ref.number) << ref.symbol;
    EXPECT_NE(setting->originChoice, 1) << ref.symbol;
    const SpaceGroupInfo printed = Expanded(ConvertPrintedSymbol(setting->printed));
    EXPECT_TRUE(SameOperators(printed.operators, group.operators)) << setting->printed;
    found.insert(setting);
  }
  // The short monoclinic forms name the settings of their full forms; the others, one each.
  EXPECT_EQ(found.size(), static_cast<size_t>(kSettingCount - 33));
  EXPECT_EQ(SettingOfOperators(Expanded("P 21/C").operators),
            SettingOfOperators(Expanded("P 1 21/C 1").operators));
  EXPECT_EQ(SettingOfOperators(Expanded("F M -3 M").operators)->printed, "F m -3 m");
}

// Origin choice 1 seen from the symbol reader's origin choice 2: the move gives gemmi's
// operators of every such setting, and those operators find it.
TEST(SpaceGroupSettings, OriginChoiceOneIsTheSecondMoved) {
  const std::vector<ReferenceSetting> references =
      testing::LoadReference("crystal/origin_choice_1.txt");
  ASSERT_EQ(references.size(), 33u);
  for (const ReferenceSetting& ref : references) {
    const SpaceGroupInfo group = Expanded(ref.symbol);
    const SpaceGroupSetting* second = SettingOfOperators(group.operators);
    ASSERT_NE(second, nullptr) << ref.symbol;
    EXPECT_EQ(second->originChoice, 2) << ref.symbol;
    const SpaceGroupSetting* first = OriginChoiceOne(*second);
    ASSERT_NE(first, nullptr) << ref.symbol;
    const std::vector<SymmetryOperator> moved = InOriginChoiceOne(group.operators, *first);
    EXPECT_FALSE(SameOperators(group.operators, moved));
    EXPECT_EQ(testing::OperatorTexts(moved), ref.operators) << ref.symbol;
    // Origin choice 1 of C c c a and C c c b is one set of operators, and so on: the first.
    const SpaceGroupSetting* found = SettingOfOperators(moved);
    ASSERT_NE(found, nullptr) << ref.symbol;
    EXPECT_EQ(found->originChoice, 1) << ref.symbol;
    EXPECT_EQ(found->hall, first->hall) << ref.symbol;
  }
  EXPECT_EQ(OriginChoiceOne(*StandardSetting(14)), nullptr);
}

TEST(SpaceGroupSettings, NumbersAndHallSymbols) {
  EXPECT_EQ(StandardSetting(14)->printed, "P 1 21/c 1");
  EXPECT_EQ(StandardSetting(227)->printed, "F d -3 m:2");
  EXPECT_EQ(StandardSetting(227)->hall, "-F 4vw 2vw 3");
  EXPECT_EQ(StandardSetting(167)->printed, "R -3 c:H");
  EXPECT_EQ(StandardSetting(221)->symbol, "P M -3 M");
  EXPECT_EQ(StandardSetting(0), nullptr);
  EXPECT_EQ(StandardSetting(231), nullptr);

  ASSERT_NE(SettingOfHall(" -p  2YBC "), nullptr);
  EXPECT_EQ(SettingOfHall(" -p  2YBC ")->printed, "P 1 21/c 1");
  EXPECT_EQ(SettingOfHall("-R_3_2\"c")->number, 167);
  EXPECT_EQ(SettingOfHall("F 4d 2 3 -1d")->originChoice, 1);
  EXPECT_EQ(SettingOfHall("-P 2ybc 2"), nullptr);
  EXPECT_EQ(SettingOfOperators(Expanded("P 1").operators), StandardSetting(1));
}

TEST(SpaceGroupSettings, OperatorsReadFromText) {
  // Every operator of every setting reads back from its own text.
  for (const ReferenceSetting& ref : testing::EveryNamedSetting()) {
    for (const SymmetryOperator& op : Expanded(ref.symbol).operators) {
      SymmetryOperator read{};
      ASSERT_TRUE(ReadOperatorText(OperatorText(op), read)) << OperatorText(op);
      EXPECT_EQ(read, op) << OperatorText(op);
    }
  }
  SymmetryOperator op{};
  ASSERT_TRUE(ReadOperatorText(" 1/2+X, -y ,z-0.25", op));
  EXPECT_EQ(OperatorText(op), "x+1/2,-y,z+3/4");
  ASSERT_TRUE(ReadOperatorText("-x+y,+x,-z+5/6", op));
  EXPECT_EQ(OperatorText(op), "-x+y,x,-z+5/6");
  for (const char* bad : {"", "x,y", "x,y,z,x", "2x,y,z", "x+x,y,z", "x,y,1/2", "x,y,z+1/0",
                          "x,y,z+a", "x,,z", "x;y;z", "x,y,z+nan", "x,y,z+inf"}) {
    EXPECT_FALSE(ReadOperatorText(bad, op)) << bad;
  }
}

TEST(SpaceGroupSettings, MovedOperatorsKeepRotationsAndShiftTheTranslations) {
  const std::vector<SymmetryOperator> ops = Expanded("P -1").operators;
  // Seen from an origin at -1/4 along x, the centre stands at x = 1/4: -x+1/2.
  EXPECT_EQ(testing::OperatorTexts(MovedOperators(ops, {6, 0, 0})),
            (std::vector<std::string>{"-x+1/2,-y,-z", "x,y,z"}));
  EXPECT_TRUE(SameOperators(MovedOperators(MovedOperators(ops, {6, 3, 8}), {-6, -3, -8}), ops));
}

}  // namespace
}  // namespace kaldena
