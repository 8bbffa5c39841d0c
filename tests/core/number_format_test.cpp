#include "core/number_format.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace varo::core;

TEST(FormatPattern, SixDecimalsOfTransformedFiles) {
    EXPECT_EQ(formatPattern(12.5, "####0.000000"), "12.500000");
    EXPECT_EQ(formatPattern(-2.0, "####0.000000"), "-2.000000");
    EXPECT_EQ(formatPattern(0.25, "####0.000000"), "0.250000");
    EXPECT_EQ(formatPattern(123456789.0, "####0.000000"), "123456789.000000");
}

TEST(FormatPattern, ThreeDecimalsNeverCutsWideValues) {
    EXPECT_EQ(formatPattern(1234567.5, "#####0.000"), "1234567.500");
    EXPECT_EQ(formatPattern(-999.0, "####0.000"), "-999.000");
    EXPECT_EQ(formatPattern(0.0, "####0.000"), "0.000");
}

TEST(FormatPattern, RoundsHalfToEvenOnTheShortestDigits) {
    EXPECT_EQ(formatPattern(0.0005, "0.000"), "0.000");
    EXPECT_EQ(formatPattern(0.0015, "0.000"), "0.002");
    EXPECT_EQ(formatPattern(2.675, "#0.00"), "2.68");
    EXPECT_EQ(formatPattern(0.125, "#0.00"), "0.12");
    EXPECT_EQ(formatPattern(2.5, "0"), "2");
    EXPECT_EQ(formatPattern(3.5, "0"), "4");
    EXPECT_EQ(formatPattern(0.00051, "0.000"), "0.001");
    EXPECT_EQ(formatPattern(9.9996, "0.000"), "10.000");
}

TEST(FormatPattern, ZeroAfterRoundingCarriesNoMinus) {
    EXPECT_EQ(formatPattern(-0.0004, "####0.000"), "0.000");
    EXPECT_EQ(formatPattern(-0.0006, "####0.000"), "-0.001");
}

TEST(FormatPattern, PrefixGroupingAndOptionalDigits) {
    EXPECT_EQ(formatPattern(0.5, " #0.0000"), " 0.5000");
    EXPECT_EQ(formatPattern(-0.5, " #0.0000"), " -0.5000");
    EXPECT_EQ(formatPattern(1234.5, "0.000,"), "1,234.500");
    EXPECT_EQ(formatPattern(1234567.0, "####0.000,"), "1,234,567.000");
    EXPECT_EQ(formatPattern(123.0, "0.000,"), "123.000");
    EXPECT_EQ(formatPattern(-1234.0, "0.000,"), "-1,234.000");
    EXPECT_EQ(formatPattern(57.4, "######"), "57");
    EXPECT_EQ(formatPattern(0.0, "######"), "");
    EXPECT_EQ(formatPattern(1.0, "0"), "1");
    EXPECT_EQ(formatPattern(0.3456, "0.0000"), "0.3456");
}

TEST(FormatPattern, FastFixedFormMatchesTheDigitByDigitRounding) {
    // The ungrouped patterns take a path of their own; it must agree with the general
    // rounding on ties, carries, tiny, huge and negative values.
    std::mt19937_64 engine(42);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> exponent(-12, 22);
    std::uniform_int_distribution<long long> ticks(-2000000, 2000000);
    const NumberFormat three("#####0.000");
    const NumberFormat six("####0.000000");
    const NumberFormat whole("0");
    const NumberFormat optional("#.##");
    const NumberFormat optionalGrouped("#.##,"); // the general path, no commas below 1000
    for (int i = 0; i < 50000; ++i) {
        const double value = i % 2 == 0 ? mantissa(engine) * std::pow(10.0, exponent(engine))
                                        : static_cast<double>(ticks(engine)) / 2000.0;
        ASSERT_EQ(three.format(value), formatFixedHalfEven(value, 3, false)) << value;
        ASSERT_EQ(six.format(value), formatFixedHalfEven(value, 6, false)) << value;
        ASSERT_EQ(whole.format(value), formatFixedHalfEven(value, 0, false)) << value;
        if (std::fabs(value) < 999.0) {
            ASSERT_EQ(optional.format(value), optionalGrouped.format(value)) << value;
        }
    }
    // Values a few units in the last place either side of a tie.
    for (int i = 0; i < 20000; ++i) {
        double value = (static_cast<double>(ticks(engine)) + 0.5) / 1000.0;
        const int steps = i % 9 - 4;
        for (int s = 0; s < std::abs(steps); ++s) {
            value = std::nextafter(value, steps > 0 ? HUGE_VAL : -HUGE_VAL);
        }
        ASSERT_EQ(three.format(value), formatFixedHalfEven(value, 3, false)) << value;
    }
    EXPECT_EQ(three.format(1e300).size(), 305u);
    EXPECT_EQ(three.format(-9999.9995), "-10000.000");
}

TEST(GeneralNumber, ShortestTextWithoutLeadingZero) {
    EXPECT_EQ(generalText(12.5), "12.5");
    EXPECT_EQ(generalText(0.005), ".005");
    EXPECT_EQ(generalText(-0.5), "-.5");
    EXPECT_EQ(generalText(-999.0), "-999");
    EXPECT_EQ(generalText(0.0), "0");
    EXPECT_EQ(generalText(0.1 + 0.2), ".3");
    EXPECT_EQ(generalText(1.0 / 3.0), ".333333333333333");
    EXPECT_EQ(generalText(123456789012345.0), "123456789012345");
}

TEST(GeneralNumber, ExponentFormOutsideTheDecimalRange) {
    EXPECT_EQ(generalText(1e16), "1E+16");
    EXPECT_EQ(generalText(1e15), "1E+15");
    EXPECT_EQ(generalText(0.00001), "1E-05");
    EXPECT_EQ(generalText(0.0001), ".0001");
    EXPECT_EQ(generalText(-1.5e-7), "-1.5E-07");
    EXPECT_EQ(generalText(2.5e100), "2.5E+100");
}

TEST(GeneralNumber, SinglePrecisionKeepsSevenDigits) {
    EXPECT_EQ(generalTextSingle(0.1f), ".1");
    EXPECT_EQ(generalTextSingle(1.0f / 3.0f), ".3333333");
    EXPECT_EQ(generalTextSingle(1000.5f), "1000.5");
}

TEST(GeneralNumber, PrintedFormHasSignPlaceAndTrailingBlank) {
    EXPECT_EQ(printNumber(12.5), " 12.5 ");
    EXPECT_EQ(printNumber(-999.0), "-999 ");
    EXPECT_EQ(printNumber(0.005), " .005 ");
    EXPECT_EQ(printInteger(10957), " 10957 ");
    EXPECT_EQ(printInteger(-3), "-3 ");
}

TEST(PrintZones, ValuesStartEvery14Columns) {
    std::string line = "12.500";
    padToNextZone(line, 0);
    EXPECT_EQ(line.size(), 14u);
    line += "-999.000";
    padToNextZone(line, 0);
    EXPECT_EQ(line, "12.500        -999.000      ");
}

TEST(PrintZones, ValuePastZoneEndMovesNextValueToFollowingZone) {
    std::string line = "123456789012.500"; // 16 characters pass the first zone
    padToNextZone(line, 0);
    EXPECT_EQ(line.size(), 28u);
    std::string exact(14, 'x'); // ends exactly on the boundary: the next zone starts here
    padToNextZone(exact, 0);
    EXPECT_EQ(exact.size(), 14u);
}

TEST(PrintZones, PaddingCountsFromTheLineStart) {
    std::string text = "first line\r\nab";
    padToNextZone(text, 12);
    EXPECT_EQ(text, "first line\r\nab            ");
}

TEST(FormatPattern, ValuesNextToAHalfwayPointTakeTheirShortestDigits) {
    // 1.2345 is stored a little below the halfway point and 1.2355 a little above it; on
    // their shortest digits both are ties, and ties go to the even digit.
    EXPECT_EQ(formatPattern(1.2345, "0.000"), "1.234");
    EXPECT_EQ(formatPattern(1.2355, "0.000"), "1.236");
    EXPECT_EQ(formatPattern(-1.2345, "0.000"), "-1.234");
    EXPECT_EQ(formatPattern(999999.9995, "0.000"), "1000000.000");
    EXPECT_EQ(formatPattern(1.23449, "0.000"), "1.234");
    EXPECT_EQ(formatPattern(-7.0, "#####0.000"), "-7.000");
    EXPECT_EQ(formatPattern(123.4564, "0.000000"), "123.456400");
}
