#include "crystal/symbol_tables.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <vector>

#include "support/test_files.h"

namespace kaldena {
namespace {

// One setting of tests/data/crystal/printed_symbols.txt (scripts/data/make_printed_symbols.py).
struct PrintedSymbol {
  int number = 0;
  std::string compact;
  std::string blankSeparated;
  int classCode = 0;
};

std::vector<PrintedSymbol> ReadPrintedSymbols() {
  std::istringstream in(testing::ReadBytes(testing::TestData("crystal/printed_symbols.txt")));
  std::vector<PrintedSymbol> rows;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line.front() == '#') continue;
    std::istringstream fields(line);
    PrintedSymbol row;
    std::string number, code;
    std::getline(fields, number, '|');
    std::getline(fields, row.compact, '|');
    std::getline(fields, row.blankSeparated, '|');
    std::getline(fields, code, '|');
    row.number = std::stoi(number);
    row.classCode = std::stoi(code);
    rows.push_back(row);
  }
  return rows;
}

// 230 standard settings, 7 on rhombohedral axes, 13 monoclinic groups with unique axes a and c.
constexpr std::size_t kSettingCount = 230 + 7 + 2 * 13;

TEST(ConvertPrintedSymbol, ReadsEveryPrintedSymbolAndIsIdempotent) {
  const std::vector<PrintedSymbol> rows = ReadPrintedSymbols();
  ASSERT_EQ(rows.size(), kSettingCount);
  for (const PrintedSymbol& row : rows) {
    EXPECT_EQ(ConvertPrintedSymbol(row.compact), row.blankSeparated) << row.compact;
    EXPECT_EQ(ConvertPrintedSymbol(row.blankSeparated), row.blankSeparated);
  }
}

TEST(ConvertPrintedSymbol, ALongSymbolThatReadsNoWayComesBackJoined) {
  // 64,000 characters of fields: joined word by word in one pass (this took seconds when each
  // word was looked for from the start).
  std::string symbol = "P";
  for (int i = 0; i < 32000; ++i) symbol += "  1";
  std::string joined = "P";
  for (int i = 0; i < 32000; ++i) joined += " 1";
  EXPECT_EQ(ConvertPrintedSymbol(symbol), joined);
}

TEST(ConvertPrintedSymbol, TakesTheWaysSymbolsAreTyped) {
  EXPECT_EQ(ConvertPrintedSymbol("P4_2/mnm"), "P 42/M N M");
  EXPECT_EQ(ConvertPrintedSymbol("P6_3/mmc"), "P 63/M M C");
  EXPECT_EQ(ConvertPrintedSymbol("P-42_1m"), "P -4 21 M");
  EXPECT_EQ(ConvertPrintedSymbol("P3_121"), "P 31 2 1");
  EXPECT_EQ(ConvertPrintedSymbol("P2_12_12_1"), "P 21 21 21");
  EXPECT_EQ(ConvertPrintedSymbol("  p 21/c  "), "P 21/C");
  EXPECT_EQ(ConvertPrintedSymbol("P 1 21/c 1"), "P 21/C");
  EXPECT_EQ(ConvertPrintedSymbol("P121/c1"), "P 21/C");
  EXPECT_EQ(ConvertPrintedSymbol("P 4 21 2"), "P 4 21 2");
  EXPECT_EQ(ConvertPrintedSymbol("Fm3m"), "F M 3 M");
}

TEST(ConvertPrintedSymbol, DropsBracketsAndSettingsTheReaderTakesAnyway) {
  EXPECT_EQ(ConvertPrintedSymbol("P21/c (No. 14)"), "P 21/C");
  EXPECT_EQ(ConvertPrintedSymbol("Fm-3m(225)"), "F M -3 M");
  EXPECT_EQ(ConvertPrintedSymbol("P21)/c"), "P 21/C");
  EXPECT_EQ(ConvertPrintedSymbol("(unique axis c) P1121/b"), "P 1 1 21/B");
  EXPECT_EQ(ConvertPrintedSymbol("R-3c:H"), "R -3 C");
  EXPECT_EQ(ConvertPrintedSymbol("R -3 c H"), "R -3 C");
  EXPECT_EQ(ConvertPrintedSymbol("R 3 m :R"), "R 3 M R");
  EXPECT_EQ(ConvertPrintedSymbol("Fd-3m:2"), "F D -3 M");
}

// The reader gives origin choice 2; the import moves the coordinates of a file in origin
// choice 1, which it tells from the symbol's text.
TEST(PrintedOriginChoice, FromTheSettingOrTheWords) {
  EXPECT_EQ(PrintedOriginChoice("F d -3 m:1"), 1);
  EXPECT_EQ(PrintedOriginChoice("F d -3 m :1"), 1);
  EXPECT_EQ(PrintedOriginChoice("Fd-3m:2"), 2);
  EXPECT_EQ(PrintedOriginChoice("F d -3 m (Origin Choice 1)"), 1);
  EXPECT_EQ(PrintedOriginChoice("P 4/n m m origin 2"), 2);
  for (const char* none :
       {"F d -3 m", "R -3 c:H", "P 21/c", "F d -3 m:", "", "P n n n (origin at 222)"}) {
    EXPECT_EQ(PrintedOriginChoice(none), 0) << none;
  }
}

TEST(ConvertPrintedSymbol, WritesEGlidesAsGlidesTheReaderKnows) {
  EXPECT_EQ(ConvertPrintedSymbol("Cmce"), "C M C A");
  EXPECT_EQ(ConvertPrintedSymbol("Cmme"), "C M M A");
  EXPECT_EQ(ConvertPrintedSymbol("Ccce"), "C C C A");
  EXPECT_EQ(ConvertPrintedSymbol("Aem2"), "A B M 2");
  EXPECT_EQ(ConvertPrintedSymbol("Aea2"), "A B A 2");
  EXPECT_EQ(ConvertPrintedSymbol("Bbem"), "B B C M");
}

TEST(ConvertPrintedSymbol, LeavesWhatIsNoSymbol) {
  EXPECT_EQ(ConvertPrintedSymbol("  x 21/c"), "  x 21/c");
  EXPECT_EQ(ConvertPrintedSymbol("21/c"), "21/c");
  EXPECT_EQ(ConvertPrintedSymbol(""), "");
  EXPECT_EQ(ConvertPrintedSymbol("(P21/c)"), "(P21/c)");
  // A lattice letter but no symbol behind it: folded, in the words as typed.
  EXPECT_EQ(ConvertPrintedSymbol("p 21/c  ."), "P 21/C .");
  EXPECT_EQ(ConvertPrintedSymbol("Pxyz"), "PXYZ");
  EXPECT_EQ(ConvertPrintedSymbol("P 3 21 2"), "P 3 21 2");
}

TEST(ConvertPrintedSymbol, ReadsNoSymbolIntoDigitsThatMakeNone) {
  // Each reading of the digits breaks a rule of the symbols: a "1" beside a four-fold, a screw
  // in the side field of a four-, three- or six-fold, no "1" or two beside a three-fold, a
  // screw digit not below its axis, a triclinic symbol with three fields, a three-fold first
  // in a cubic symbol.
  for (const char* text : {"P4221", "P3211", "P6212", "P322", "P22", "P111", "P332"}) {
    EXPECT_EQ(ConvertPrintedSymbol(text), text);
  }
}

TEST(SymbolClass, GivesTheCodeOfEverySetting) {
  const std::vector<PrintedSymbol> rows = ReadPrintedSymbols();
  ASSERT_EQ(rows.size(), kSettingCount);
  for (const PrintedSymbol& row : rows) {
    EXPECT_EQ(SymbolClass(row.blankSeparated), row.classCode) << row.blankSeparated;
  }
}

TEST(SymbolClass, ReadsTheFieldsAsTyped) {
  EXPECT_EQ(SymbolClass("P 21/C"), kMonoclinicBClass);
  EXPECT_EQ(SymbolClass("  p 21/c            "), kMonoclinicBClass);
  EXPECT_EQ(SymbolClass("P 1 21/C 1"), kMonoclinicBClass);
  EXPECT_EQ(SymbolClass("P 21/C 1 1"), kMonoclinicAClass);
  EXPECT_EQ(SymbolClass("P M M M"), kOrthorhombicClass);
  EXPECT_EQ(SymbolClass("C M C A"), kOrthorhombicClass);
  EXPECT_EQ(SymbolClass("F M 3 M"), kCubicHighClass);
  EXPECT_EQ(SymbolClass("I 4 3 D"), kCubicHighClass);
  EXPECT_EQ(SymbolClass("R -3"), kRhombohedralLowClass);
  EXPECT_EQ(SymbolClass("R -3 C"), kRhombohedralHighClass);
  EXPECT_EQ(SymbolClass("P -3 M 1"), kTrigonalM1Class);
  // The axes field of an R lattice does not count as a symmetry field.
  EXPECT_EQ(SymbolClass("R -3 R"), kRhombohedralLowClass);
  EXPECT_EQ(SymbolClass("R -3 H"), kRhombohedralLowClass);
  // The compact form is not what this reads.
  EXPECT_EQ(SymbolClass("P21/c"), kTriclinicClass);
  EXPECT_EQ(SymbolClass(""), kTriclinicClass);
}

TEST(CrystalSystemName, NamesTheCellByItsEqualities) {
  EXPECT_EQ(CrystalSystemName({5, 5, 5, 90, 90, 90}), "Cubic       ");
  EXPECT_EQ(CrystalSystemName({5, 5, 7, 90, 90, 120}), "Hexagonal   ");
  EXPECT_EQ(CrystalSystemName({5, 5, 5, 80, 80, 80}), "Rhombohedral");
  EXPECT_EQ(CrystalSystemName({5, 5, 7, 90, 90, 90}), "Tetragonal  ");
  EXPECT_EQ(CrystalSystemName({5, 6, 7, 90, 90, 90}), "Orthorhombic");
  EXPECT_EQ(CrystalSystemName({5, 6, 7, 90, 100, 90}), "Monoclinic  ");
  EXPECT_EQ(CrystalSystemName({5, 6, 7, 100, 90, 90}), "Monoclinic  ");
  EXPECT_EQ(CrystalSystemName({5, 6, 7, 90, 90, 100}), "Monoclinic  ");
  EXPECT_EQ(CrystalSystemName({5, 6, 7, 90, 100, 110}), "Triclinic   ");
  EXPECT_EQ(CrystalSystemName({5, 6, 7, 90.001f, 90, 90}), "Monoclinic  ");
  // Only the cell is looked at: a equal to b is tetragonal whatever the angles.
  EXPECT_EQ(CrystalSystemName({5, 5, 7, 80, 85, 95}), "Tetragonal  ");
}

TEST(OriginChoiceIndex, FindsTheGroupsWithTwoOriginsInTheirRows) {
  const std::map<int, int> rowOfGroup = {
      {48, 1},   {50, 2},   {59, 3},   {68, 4},   {70, 5},   {85, 6},   {86, 7},   {88, 8},
      {125, 9},  {126, 10}, {129, 11}, {130, 12}, {133, 13}, {134, 14}, {137, 15}, {138, 16},
      {141, 17}, {142, 18}, {222, 19}, {224, 20}, {227, 21}, {228, 22}};
  for (const PrintedSymbol& row : ReadPrintedSymbols()) {
    const auto found = rowOfGroup.find(row.number);
    const int expected = found == rowOfGroup.end() ? 0 : found->second;
    EXPECT_EQ(OriginChoiceIndex(row.compact), expected) << row.compact;
    EXPECT_EQ(OriginChoiceIndex(row.blankSeparated), expected) << row.blankSeparated;
  }
  EXPECT_EQ(OriginChoiceIndex("F d -3 m"), 21);
  EXPECT_EQ(OriginChoiceIndex("  i 41/a m d       "), 17);
  EXPECT_EQ(OriginChoiceIndex("P 21/C"), 0);
  EXPECT_EQ(OriginChoiceIndex("F D -3"), 0);
}

}  // namespace
}  // namespace kaldena
