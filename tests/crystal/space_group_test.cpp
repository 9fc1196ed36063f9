#include "crystal/space_group.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <set>

#include "crystal/symbol_tables.h"
#include "support/space_group_reference.h"
#include "util/text.h"

namespace kaldena {
namespace {

using testing::CommonSettings;
using testing::EveryNamedSetting;
using testing::Expanded;
using testing::ReferenceSetting;

std::vector<std::string> OperatorTexts(const SpaceGroupInfo& info) {
  return testing::OperatorTexts(info.operators);
}

// Operators as whole twelfths, for exact composition modulo whole cells.
using Op = std::array<int, 12>;

Op Twelfths(const SymmetryOperator& op) {
  Op t;
  for (int i = 0; i < 12; ++i) {
    t[i] = static_cast<int>(std::lround(op[i] * (i % 4 == 3 ? 12.0f : 1.0f)));
  }
  return t;
}

Op Compose(const Op& a, const Op& b) {
  Op c{};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 4; ++j) {
      int sum = j == 3 ? a[4 * i + 3] : 0;
      for (int k = 0; k < 3; ++k) sum += a[4 * i + k] * b[4 * k + j];
      c[4 * i + j] = sum;
    }
    c[4 * i + 3] = ((c[4 * i + 3] % 12) + 12) % 12;
  }
  return c;
}

// Every symbol that names a setting, among them the centred monoclinic settings whose named
// glide the centring repeats as another glide a quarter cell away ("C 1 n 1", "I 1 1 b").
TEST(SpaceGroup, EverySettingGivesItsGeneralPositions) {
  const std::vector<ReferenceSetting> settings = EveryNamedSetting();
  ASSERT_GE(settings.size(), 510u);
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

TEST(SpaceGroup, OperatorSetsAreClosedGroups) {
  for (const ReferenceSetting& ref : EveryNamedSetting()) {
    const SpaceGroupInfo info = Expanded(ref.symbol);
    std::vector<Op> ops;
    for (const SymmetryOperator& op : info.operators) ops.push_back(Twelfths(op));
    ASSERT_FALSE(ops.empty());
    EXPECT_EQ(ops.front(), (Op{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0})) << ref.symbol;
    const std::set<Op> set(ops.begin(), ops.end());
    EXPECT_EQ(set.size(), ops.size()) << ref.symbol << ": an operator twice";
    size_t open = 0;
    for (const Op& a : ops) {
      for (const Op& b : ops) open += set.count(Compose(a, b)) == 0;
    }
    EXPECT_EQ(open, 0u) << ref.symbol << ": products outside the set";
  }
}

TEST(SpaceGroup, PrintedSymbolsReadAsTheirGroups) {
  std::map<std::string, std::vector<std::string>> bySymbol;
  for (const ReferenceSetting& ref : CommonSettings()) bySymbol[ref.symbol] = ref.operators;
  std::ifstream in(testing::TestData("crystal/printed_symbols.txt"));
  int rows = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#') continue;
    const std::vector<std::string> f = testing::SplitText(line, '|');
    ASSERT_TRUE(bySymbol.count(f[2])) << f[2];
    EXPECT_EQ(OperatorTexts(Expanded(ConvertPrintedSymbol(f[1]))), bySymbol[f[2]]) << f[1];
    ++rows;
  }
  EXPECT_GE(rows, 230);
}

TEST(SpaceGroup, SymbolsAsUsersTypeThem) {
  const SpaceGroupInfo p1 = Expanded("P 1");
  ASSERT_EQ(p1.operators.size(), 1u);
  EXPECT_EQ(OperatorText(p1.operators[0]), "x,y,z");
  EXPECT_EQ(p1.laueClass, 1);

  const SpaceGroupInfo lower = Expanded("p 21/c");
  EXPECT_EQ(Trimmed(lower.symbol), "P 21/C");
  EXPECT_EQ(lower.uniqueAxis, 2);
  EXPECT_EQ(OperatorTexts(lower), OperatorTexts(Expanded("P 21/C")));

  EXPECT_EQ(OperatorTexts(Expanded("F M -3 M")), OperatorTexts(Expanded("F M 3 M")));
  EXPECT_EQ(OperatorTexts(Expanded("I 4 3 D")), OperatorTexts(Expanded("I -4 3 D")));

  const SpaceGroupInfo rhombohedral = Expanded("R -3 R");
  EXPECT_EQ(rhombohedral.laueClass, 6);
  EXPECT_EQ(std::count(rhombohedral.generatorWords.begin(), rhombohedral.generatorWords.end(),
                       kRhombohedralCentringWord),
            0);
  for (const char* hexagonal : {"R -3", "R -3 H"}) {
    const SpaceGroupInfo info = Expanded(hexagonal);
    EXPECT_EQ(info.laueClass, 8) << hexagonal;
    EXPECT_EQ(info.generatorWords.front(), kRhombohedralCentringWord) << hexagonal;
    EXPECT_EQ(info.operators.size(), 18u) << hexagonal;
  }
}

TEST(SpaceGroup, SymbolsThatFail) {
  SpaceGroupInfo info;
  EXPECT_EQ(ParseSpaceGroupSymbol("P 21/C.", info), SymbolStatus::kSyntax);
  EXPECT_EQ(ParseSpaceGroupSymbol("P 21/C*", info), SymbolStatus::kBadCharacter);
  EXPECT_EQ(ParseSpaceGroupSymbol("P 21/É", info), SymbolStatus::kBadCharacter);
  for (const char* symbol : {"M 21/C", "N M A", "D 3", "P", "", "P 5", "P 4 3 D", "P 21/Q",
                             "P 1 1 1", "P 3 2 2", "P -2", "P 43/B", "A 3    31"}) {
    EXPECT_NE(ParseSpaceGroupSymbol(symbol, info), SymbolStatus::kOk) << symbol;
  }
}

TEST(SpaceGroup, ApplicationEntryResetsToP1) {
  RecordingReporter reporter;
  std::string symbol = "NONSENSE";
  SpaceGroupInfo info = GetSpaceGroupOperators(symbol, reporter);
  EXPECT_EQ(symbol, "P 1                 ");
  EXPECT_EQ(info.operators.size(), 1u);
  ASSERT_EQ(reporter.messages.size(), 1u);
  EXPECT_EQ(reporter.messages[0],
            (RecordingReporter::Message{"Spacegroup problems (1)", "Reset to P 1"}));

  reporter.Clear();
  symbol = "f d -3 m";
  info = GetSpaceGroupOperators(symbol, reporter);
  EXPECT_EQ(symbol, "F D 3 M             ");
  EXPECT_EQ(info.operators.size(), 192u);
  EXPECT_TRUE(reporter.messages.empty());
}

TEST(SpaceGroup, EngineEntryWritesToTheListFile) {
  SpaceGroupInfo info;
  std::vector<std::string> list;
  EXPECT_EQ(ReadPhaseSpaceGroup("P 63/M M C", info, list), 0);
  EXPECT_EQ(list, std::vector<std::string>{" THE SPACE GROUP IS P 63/M M C          "});
  EXPECT_EQ(info.operators.size(), 24u);

  list.clear();
  EXPECT_EQ(ReadPhaseSpaceGroup("P 21/C?", info, list), 1);
  EXPECT_EQ(list.back(), " *** WARNING  UNINTERPRETED SPACE GROUP SYMBOL P 21/C?             ");

  list.clear();
  EXPECT_EQ(ReadPhaseSpaceGroup("M 21/C", info, list), 1);
  EXPECT_EQ(list,
            (std::vector<std::string>{" THE SPACE GROUP IS M 21/C              ",
                                      " ***** DID YOU TYPE THIS RECORD CORRECTLY?",
                                      "       ERRORS OF SOME SORT WERE DETECTED.",
                                      "       THE RECORD WAS READ AS: M 21/C              "}));
  EXPECT_EQ(info.uniqueAxis, 4);
}

TEST(SpaceGroup, GeneratorWordsThatNoGroupHolds) {
  SpaceGroupInfo info;
  info.generatorWords = {kInversionWord + 4};  // a centre at (1/2, 0, 0)
  EXPECT_EQ(ExpandOperators(info), ExpandStatus::kCentreOffOrigin);
  info.generatorWords = {3 * 8192};
  EXPECT_EQ(ExpandOperators(info), ExpandStatus::kWrongOperator);
  // A four-fold whose square was never given: the images overrun no table, they just
  // do not make a group of the right size.
  info.generatorWords = {19};
  EXPECT_EQ(ExpandOperators(info), ExpandStatus::kOk);
  EXPECT_EQ(info.operators.size(), 2u);
}

TEST(SpaceGroup, CentricCodeAndPolarAxes) {
  struct Case {
    const char* symbol;
    int centric;
    int polar;
  } cases[] = {{"P 1", 1, 7},     {"P -1", 2, 0},       {"P 1 21 1", 1, 2}, {"P M", 1, 5},
               {"P 4 M M", 1, 4}, {"P 3", 1, 4},        {"R 3", 1, 4},      {"P 21 21 21", 1, 0},
               {"F M 3 M", 2, 0}, {"P 63/M M C", 2, 0}, {"P 21 3", 1, 0}};
  for (const Case& c : cases) {
    const SpaceGroupInfo info = Expanded(c.symbol);
    EXPECT_EQ(info.centricCode, c.centric) << c.symbol;
    EXPECT_EQ(info.polarAxes, c.polar) << c.symbol;
  }
}

TEST(SpaceGroup, SiteOfAnAtomPosition) {
  std::vector<std::string> list;
  SiteSymmetry site;
  std::array<float, 3> general = {0.1f, 0.2f, 0.3f};
  EXPECT_EQ(SitePosition(Expanded("P 21/C"), general, site, list), ExpandStatus::kOk);
  EXPECT_EQ(site.flags, 0);
  EXPECT_EQ(site.multiplicityFactor, 1.0f);

  std::array<float, 3> centre = {0.0f, 0.5f, 0.5f};
  EXPECT_EQ(SitePosition(Expanded("P 21/C"), centre, site, list), ExpandStatus::kOk);
  EXPECT_EQ(site.flags, 2);  // the inversion, second word
  EXPECT_EQ(site.multiplicityFactor, 0.5f);

  // The origin of F m -3 m has the whole point group, order 48.
  std::array<float, 3> origin = {0.0f, 0.0f, 0.0f};
  EXPECT_EQ(SitePosition(Expanded("F M 3 M"), origin, site, list), ExpandStatus::kOk);
  EXPECT_FLOAT_EQ(site.multiplicityFactor, 1.0f / 48.0f);
  EXPECT_TRUE(list.empty());

  // Just off the six-bar axis of P 63/m m c: moved onto it, then site -6m2 of order 12.
  std::array<float, 3> beside = {0.33348f, 0.66667f, 0.25f};
  EXPECT_EQ(SitePosition(Expanded("P 63/M M C"), beside, site, list), ExpandStatus::kPositionMoved);
  EXPECT_EQ(list,
            std::vector<std::string>{
                " THE ATOM AT   0.33348  0.66667  0.25000 WAS PUT AT  0.33333  0.66667  0.25000"});
  EXPECT_NEAR(beside[0], 1.0f / 3.0f, 1e-6f);
  EXPECT_NEAR(beside[1], 2.0f / 3.0f, 1e-6f);
  EXPECT_FLOAT_EQ(site.multiplicityFactor, 1.0f / 12.0f);
}

TEST(SpaceGroup, LaueLabels) {
  EXPECT_EQ(LaueClassLabel(1), "1BAR    ");
  EXPECT_EQ(LaueClassLabel(7), "3BAR M R");
  EXPECT_EQ(LaueClassLabel(14), "M3M     ");
  EXPECT_EQ(LaueClassLabel(15), "        ");
}

}  // namespace
}  // namespace kaldena
