#include "core/numeric_text.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

using namespace varo::core;

TEST(NumericTest, AcceptsSignedDecimalsWithExponentAndBlanks) {
    for (const char* text :
         {"0", "-999", " 12.5 ", "+3", ".5", "5.", "1e5", "-1.5E-03", "1000.5"}) {
        EXPECT_TRUE(isNumeric(text)) << text;
    }
}

TEST(NumericTest, RefusesEmptyTextWordsAndTrailingCharacters) {
    for (const char* text :
         {"", " ", "-", ".", "abc", "12abc", "1.2.3", "1e", "--1", "1 2", "nan", "inf"}) {
        EXPECT_FALSE(isNumeric(text)) << text;
    }
}

TEST(NumericTest, NumbersBeyondTheRangeOfDoublesAreNotNumbers) {
    for (const std::string& text :
         {std::string("1e999"), std::string("-1e309"), std::string(400, '9'),
          std::string("1e99999999999999999999"), "0." + std::string(500, '0') + "1e900"}) {
        EXPECT_FALSE(isNumeric(text)) << text;
    }
    for (const std::string& text : {std::string("1e308"), std::string("1e-400"),
                                    std::string("0e99999"), "0." + std::string(500, '0') + "1"}) {
        EXPECT_TRUE(isNumeric(text)) << text;
    }
}

TEST(ParseDecimal, WholeTextOnlyAndTooSmallIsZero) {
    struct Case {
        std::string text;
        DecimalParse parse;
        double value;
    };
    const std::vector<Case> cases = {
        {"12.5", DecimalParse::Number, 12.5},
        {"+3", DecimalParse::Number, 3.0},
        {"-.5e1", DecimalParse::Number, -5.0},
        {"5.", DecimalParse::Number, 5.0},
        {"1e-400", DecimalParse::Number, 0.0},
        {"-1e-99999999999999999999", DecimalParse::Number, -0.0},
        {"1e309", DecimalParse::OutOfRange, 0.0},
        {"-" + std::string(310, '1'), DecimalParse::OutOfRange, 0.0},
        {" 1", DecimalParse::NotNumber, 0.0},
        {"1 ", DecimalParse::NotNumber, 0.0},
        {"1.2abc", DecimalParse::NotNumber, 0.0},
        {"-", DecimalParse::NotNumber, 0.0},
        {".", DecimalParse::NotNumber, 0.0},
        {"", DecimalParse::NotNumber, 0.0},
        {"0x10", DecimalParse::NotNumber, 0.0},
        {"inf", DecimalParse::NotNumber, 0.0},
    };
    for (const Case& c : cases) {
        double value = 0.0;
        EXPECT_EQ(parseDecimal(c.text, value), c.parse) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
    }
}

TEST(LeadingNumber, TakesTheLongestNumericPrefix) {
    EXPECT_EQ(leadingNumber("12abc"), 12.0);
    EXPECT_EQ(leadingNumber("  -3.5xyz"), -3.5);
    EXPECT_EQ(leadingNumber("abc"), 0.0);
    EXPECT_EQ(leadingNumber("1e3x"), 1000.0);
    EXPECT_EQ(leadingNumber("2e"), 2.0);
}

TEST(Rounding, IntegersTieToEven) {
    EXPECT_EQ(roundHalfEven(2.5), 2);
    EXPECT_EQ(roundHalfEven(3.5), 4);
    EXPECT_EQ(roundHalfEven(-2.5), -2);
    EXPECT_EQ(roundHalfEven(3.6), 4);
    EXPECT_EQ(roundHalfEven(10.5), 10);
}

TEST(Rounding, IntegersBeyondTheRangeOfLongLongStopAtItsEnds) {
    EXPECT_EQ(roundHalfEven(1e300), std::numeric_limits<long long>::max());
    EXPECT_EQ(roundHalfEven(-HUGE_VAL), std::numeric_limits<long long>::min());
    EXPECT_EQ(roundHalfEven(std::nan("")), 0);
    EXPECT_EQ(roundHalfEven(9.0e18), 9'000'000'000'000'000'000LL);
}

TEST(Rounding, DecimalsTieToEvenOnShortestDigits) {
    EXPECT_DOUBLE_EQ(roundToDecimals(1.234565, 5), 1.23456);
    EXPECT_DOUBLE_EQ(roundToDecimals(1.234575, 5), 1.23458);
    EXPECT_DOUBLE_EQ(roundToDecimals(2.0 / 3.0, 5), 0.66667);
    EXPECT_DOUBLE_EQ(roundToDecimals(-0.000005, 5), 0.0);
}

TEST(TrimBlanks, DropsBlanksAndTabsAtBothEndsOnly) {
    EXPECT_EQ(trimBlanks(" \t a b \t"), "a b");
    EXPECT_EQ(trimBlanks("   "), "");
    EXPECT_EQ(trimBlanks("x\r"), "x\r");
}
