#include "util/text.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kaldena {
namespace {

TEST(CaseFolding, ChangesOnlyLetters) {
  EXPECT_EQ(UpperChar('a'), 'A');
  EXPECT_EQ(UpperChar('{'), '{');
  EXPECT_EQ(UpperChar('`'), '`');
  EXPECT_EQ(LowerChar('A'), 'a');
  EXPECT_EQ(LowerChar('['), '[');
  EXPECT_EQ(UpperText("Cell a=5.4 \xe9 "), "CELL A=5.4 \xe9 ");
  EXPECT_EQ(LowerText("PHNA Quartz"), "phna quartz");
}

TEST(CaseFolding, KeysHaveFourCharacters) {
  EXPECT_EQ(UpperKey("xyz"), "XYZ ");
  EXPECT_EQ(UpperKey("phnaquartz"), "PHNA");
  EXPECT_EQ(LowerKey("CELL"), "cell");
  EXPECT_EQ(UpperKey(""), "    ");
}

TEST(Blanks, RemoveAndJustifyKeepTheLength) {
  EXPECT_EQ(RemoveBlanks(" 1.2 34 (5) "), "1.234(5)    ");
  EXPECT_EQ(LeftJustify("   ab c "), "ab c    ");
  EXPECT_EQ(RightJustify("  ab   ", 6), "    ab");
  EXPECT_EQ(RightJustify("abcdef", 4), "abcd");
  EXPECT_EQ(RightJustify("", 3), "   ");
}

TEST(Trimming, DropsOnlyTrailingBlanks) {
  EXPECT_EQ(Trimmed("  ab c   "), "  ab c");
  EXPECT_EQ(Trimmed("   "), "");
  EXPECT_EQ(TrimmedLength("  x   "), 3u);
  EXPECT_EQ(TrimmedLength(""), 0u);
}

TEST(Trimming, StrippedTextDropsBlanksOnBothSides) {
  EXPECT_EQ(StrippedText("  ab c   "), "ab c");
  EXPECT_EQ(StrippedText("   "), "");
  EXPECT_EQ(StrippedText("x"), "x");
}

TEST(GetTextLine, DropsTheLineEndOfEitherSystem) {
  std::istringstream in("a\r\nb\n\r\nlast");
  std::vector<std::string> lines;
  for (std::string line; GetTextLine(in, line);) lines.push_back(line);
  EXPECT_EQ(lines, (std::vector<std::string>{"a", "b", "", "last"}));
}

TEST(IndexOf, IsOneBasedAndIgnoresTrailingBlanks) {
  EXPECT_EQ(IndexOf("CELL  5.4", "CELL"), 1);
  EXPECT_EQ(IndexOf("_cell_length_a 5.4", "th_a  "), 11);
  EXPECT_EQ(IndexOf("abcabc", "ca"), 3);
  EXPECT_EQ(IndexOf("abc   ", "c "), 3);
  EXPECT_EQ(IndexOf("abc", "abcd"), 0);
  EXPECT_EQ(IndexOf("abc", "   "), 0);
}

TEST(SplitWords, GivesTheNthWord) {
  const std::string line = "  Si1   0.25 0.5  ";
  EXPECT_EQ(SplitWords(line, 1), "Si1");
  EXPECT_EQ(SplitWords(line, 2), "0.25");
  EXPECT_EQ(SplitWords(line, 3), "0.5");
  EXPECT_EQ(SplitWords(line, 4), "");
  EXPECT_EQ(SplitWords(line, 0), "");
  EXPECT_EQ(SplitWords("", 1), "");
}

TEST(IsNumberText, TellsDataFromHeaders) {
  EXPECT_TRUE(IsNumberText("  10.00  1234.5 -3E+2 4.1e-1"));
  EXPECT_TRUE(IsNumberText("1,2/3\t4"));
  EXPECT_TRUE(IsNumberText(""));
  EXPECT_FALSE(IsNumberText("2Theta Counts"));
  EXPECT_FALSE(IsNumberText("1.0D0"));
  EXPECT_FALSE(IsNumberText("*"));  // just below "+"
  EXPECT_FALSE(IsNumberText(":"));  // just above "9"
}

}  // namespace
}  // namespace kaldena
