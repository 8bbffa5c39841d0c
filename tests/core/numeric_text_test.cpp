#include "core/numeric_text.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

using namespace varo::core;

// Signed decimals with an exponent and blanks around are numbers; words, trailing
// characters and numbers beyond the range of doubles are not; one too small reads as 0.
TEST(NumericTest, NumbersAndNotNumbers) {
    const std::string tiny = "0." + std::string(500, '0') + "1";
    const std::pair<std::string, bool> cases[] = {
        {"0", true},
        {"-999", true},
        {" 12.5 ", true},
        {"+3", true},
        {".5", true},
        {"5.", true},
        {"1e5", true},
        {"-1.5E-03", true},
        {"1e308", true},
        {"1e-400", true},
        {"0e99999", true},
        {tiny, true},
        {"", false},
        {" ", false},
        {"-", false},
        {".", false},
        {"abc", false},
        {"12abc", false},
        {"1.2.3", false},
        {"1e", false},
        {"--1", false},
        {"1 2", false},
        {"nan", false},
        {"inf", false},
        {"1e999", false},
        {"-1e309", false},
        {std::string(400, '9'), false},
        {"1e99999999999999999999", false},
        {tiny + "e900", false},
    };
    for (const auto& [text, numeric] : cases) {
        EXPECT_EQ(isNumeric(text), numeric) << text;
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
    const std::pair<const char*, double> cases[] = {
        {"12abc", 12.0}, {"  -3.5xyz", -3.5}, {"abc", 0.0}, {"1e3x", 1000.0}, {"2e", 2.0}};
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(leadingNumber(text), value) << text;
    }
}

// Ties go to the even integer; beyond the range of the type a value stops at its ends.
TEST(Rounding, IntegersTieToEvenAndStopAtTheEndsOfTheirRange) {
    const std::pair<double, long long> values[] = {
        {2.5, 2},
        {3.5, 4},
        {-2.5, -2},
        {3.6, 4},
        {10.5, 10},
        {9.0e18, 9'000'000'000'000'000'000LL},
        {1e300, std::numeric_limits<long long>::max()},
        {-HUGE_VAL, std::numeric_limits<long long>::min()},
        {std::nan(""), 0},
    };
    for (const auto& [value, rounded] : values) {
        EXPECT_EQ(roundHalfEven(value), rounded) << value;
    }
    const std::pair<const char*, int> texts[] = {
        {"2.5", 2},
        {" 49.6", 50},
        {"12abc", 12},
        {"3e9", std::numeric_limits<int>::max()},
        {"-1e300", std::numeric_limits<int>::min()},
    };
    for (const auto& [text, rounded] : texts) {
        EXPECT_EQ(roundedInteger(text), rounded) << text;
    }
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
