#include "util/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>

namespace kaldena {
namespace {

TEST(RealToText, BlanksLeadingZerosAndPlacesTheSign) {
  EXPECT_EQ(RealToText(-0.5f, 6, 2), "  -.50");
  EXPECT_EQ(RealToText(0.05f, 6, 2), "   .05");
  EXPECT_EQ(RealToText(0.0f, 6, 2), "   .00");
  EXPECT_EQ(RealToText(-12.3456f, 8, 3), " -12.346");
  EXPECT_EQ(RealToText(105.0f, 6, 0), "  105.");
  EXPECT_EQ(RealToText(0.0f, 4, 0), "  0.");
  EXPECT_EQ(RealToText(-0.001f, 6, 2), "   .00");
}

TEST(RealToText, RoundsHalfAwayFromZeroAndCarries) {
  EXPECT_EQ(RealToText(0.125f, 5, 2), "  .13");
  EXPECT_EQ(RealToText(-0.125f, 5, 2), " -.13");
  EXPECT_EQ(RealToText(9.996f, 6, 2), " 10.00");
  EXPECT_EQ(RealToText(0.996f, 4, 2), "1.00");
}

TEST(RealToText, UsesTheWholeWidthAndShiftsForASignWithNoRoom) {
  EXPECT_EQ(RealToText(999.99f, 6, 2), "999.99");
  EXPECT_EQ(RealToText(-9.5f, 4, 1), "-9.5");
  EXPECT_EQ(RealToText(-123.45f, 6, 2), "-123.4");
  EXPECT_EQ(RealToText(-0.25f, 3, 2), "-.2");
}

TEST(RealToText, OverflowKeepsThePoint) {
  EXPECT_EQ(RealToText(100000.0f, 6, 2), "***.**");
  EXPECT_EQ(RealToText(999.996f, 6, 2), "***.**");
  EXPECT_EQ(RealToText(-1234.5f, 6, 2), "***.**");
  EXPECT_EQ(RealToText(std::numeric_limits<float>::quiet_NaN(), 5, 1), "***.*");
  EXPECT_EQ(RealToText(1.0f, 4, 4), "****");
}

TEST(IntegerToText, PadsToTheMinimumDigitsAndOverflows) {
  EXPECT_EQ(IntegerToText(7, 2, 2), "07");
  EXPECT_EQ(IntegerToText(7, 5, 3), "  007");
  EXPECT_EQ(IntegerToText(0, 3, 0), "  0");
  EXPECT_EQ(IntegerToText(-42, 6, 4), " -0042");
  EXPECT_EQ(IntegerToText(12, 2, 9), "12");
  EXPECT_EQ(IntegerToText(100, 2, 1), "**");
  EXPECT_EQ(IntegerToText(-7, 2, 2), "**");
  EXPECT_EQ(IntegerToText(-42, 3, 1), "-42");
  EXPECT_EQ(IntegerToText(std::numeric_limits<int>::min(), 11, 1), "-2147483648");
}

TEST(RealToExponentText, WritesMantissaAndExponent) {
  EXPECT_EQ(RealToExponentText(0.0, 4, 2), "0.e0");
  EXPECT_EQ(RealToExponentText(0.0, 6, 3), "  0.e0");
  EXPECT_EQ(RealToExponentText(1234.5, 10, 3), "   1.235e3");
  EXPECT_EQ(RealToExponentText(-0.00025, 9, 2), " -2.50e-4");
  EXPECT_EQ(RealToExponentText(1.0e-12, 7, 1), "1.0e-12");
  EXPECT_EQ(RealToExponentText(9.96, 6, 1), " 1.0e1");
  EXPECT_EQ(RealToExponentText(0.1, 5, 1), "*****");
  for (const double value : {3.14159, -2.5e7, 6.02214e23, 1.0e-7, 0.999999}) {
    const std::string text = RealToExponentText(value, 14, 4);
    EXPECT_NEAR(std::strtod(text.c_str(), nullptr), value, std::fabs(value) * 5.0e-5) << text;
  }
}

TEST(ValueWithEsd, ScalesTheBracketToTheLastDecimal) {
  const auto read = [](std::string_view text) {
    const std::optional<MeasuredValue> result = ValueWithEsd(text);
    EXPECT_TRUE(result.has_value()) << text;
    return result.value_or(MeasuredValue{-1.0f, -1.0f});
  };
  EXPECT_FLOAT_EQ(read("1.2345(12)").value, 1.2345f);
  EXPECT_FLOAT_EQ(read("1.2345(12)").esd, 0.0012f);
  EXPECT_FLOAT_EQ(read("12(3)").value, 12.0f);
  EXPECT_FLOAT_EQ(read("12(3)").esd, 3.0f);
  EXPECT_FLOAT_EQ(read("0.50(2)").esd, 0.02f);
  EXPECT_FLOAT_EQ(read(" 5.43 1 (1 2) ").value, 5.431f);
  EXPECT_FLOAT_EQ(read(" 5.43 1 (1 2) ").esd, 0.012f);
  EXPECT_FLOAT_EQ(read("-0.0312(7)").value, -0.0312f);
  EXPECT_FLOAT_EQ(read("1.5e-3(2)").esd, 0.0002f);
  EXPECT_FLOAT_EQ(read("+.5(1)").value, 0.5f);
  EXPECT_EQ(read("90.000").esd, 0.0f);
}

TEST(ValueWithEsd, RefusesTextThatDoesNotRead) {
  for (const char* text : {"", "?", ".", "abc", "1.2(", "1.2()", "1.2(3)x", "1.2)3(", "1.2(-3)",
                           "(3)", "1.2.3", "+-1", "1e", "nan(1)", "1e99"}) {
    EXPECT_FALSE(ValueWithEsd(text).has_value()) << text;
  }
}

}  // namespace
}  // namespace kaldena
