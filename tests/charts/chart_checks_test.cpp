#include "charts/chart_checks.hpp"

#include <functional>
#include <gtest/gtest.h>

using namespace varo::charts;

namespace {

struct CheckCase {
    const char* field;
    std::function<CheckMessage(const std::string&)> check;
    std::string text;
    std::optional<std::string> message; // nothing: the text passes
};

} // namespace

TEST(ChartFieldChecks, EachFieldHasItsMessagesAndBounds) {
    const auto minY = [](const std::string& text) { return checkMinY(text, 5.0); };
    const auto maxY = [](const std::string& text) { return checkMaxY(text, -2.0); };
    const auto gap = [](const std::string& text) { return checkXLabelGap(text, 365); };
    const std::string minYValue = "Minimum Y axis value for these data must be a value.";
    const std::string minYOrder = "Minimum Y axis value must be less than maximum value.";
    const std::string maxYValue = "Maximum Y axis value for these data must be a value.";
    const std::string maxYOrder = "Maximum Y axis value must be greater than minimum value.";
    const std::string ticks = "Ticks must be a value between 1 and 50.";
    const std::string gapInteger = "Gap between x-axis labels must be an integer.";
    const std::string gapRange = "Gap between x-axis labels must be between 0 and 365.";
    const std::string pen = "Pen width must be a value.";
    const std::string penRange = "Pen width must be a value between 1 and 100.";
    const std::string dot = "Dot size must be a value.";
    const std::string dotRange = "Dot size must be a value between 50 and 250.";
    const std::string line = "Line width must be a value.";
    const std::string lineRange = "Line width must be a value between 10 and 200.";
    const std::vector<CheckCase> cases = {
        {"MinYText", minY, "abc", minYValue},
        {"MinYText", minY, "", minYValue},
        {"MinYText", minY, "5", minYOrder},
        {"MinYText", minY, "7.5", minYOrder},
        {"MinYText", minY, "4.99", std::nullopt},
        {"MinYText", minY, " -1E3 ", std::nullopt},
        {"MaxYText", maxY, "1,5", maxYValue},
        {"MaxYText", maxY, "-2", maxYOrder},
        {"MaxYText", maxY, "-1.99", std::nullopt},
        {"TickText", checkTicks, "ten", ticks},
        {"TickText", checkTicks, "0.99", ticks},
        {"TickText", checkTicks, "1", std::nullopt},
        {"TickText", checkTicks, "50", std::nullopt},
        {"TickText", checkTicks, "50.01", ticks},
        {"XLabelGapText", gap, "x", gapInteger},
        {"XLabelGapText", gap, "1.5", gapInteger},
        {"XLabelGapText", gap, "-1", gapRange},
        {"XLabelGapText", gap, "0", std::nullopt},
        {"XLabelGapText", gap, "365", std::nullopt},
        {"XLabelGapText", gap, "366", gapRange},
        {"XLabelGapText", gap, "3.0", std::nullopt},
        {"WidthText1", checkPenWidth, "wide", pen},
        {"WidthText1", checkPenWidth, "0.99", penRange},
        {"WidthText1", checkPenWidth, "1", std::nullopt},
        {"WidthText1", checkPenWidth, "100", std::nullopt},
        {"WidthText1", checkPenWidth, "100.5", penRange},
        {"DotSizeText", checkDotSize, "", dot},
        {"DotSizeText", checkDotSize, "49.9", dotRange},
        {"DotSizeText", checkDotSize, "50", std::nullopt},
        {"DotSizeText", checkDotSize, "250", std::nullopt},
        {"DotSizeText", checkDotSize, "251", dotRange},
        {"LineSizeText", checkLineSize, "-", line},
        {"LineSizeText", checkLineSize, "9", lineRange},
        {"LineSizeText", checkLineSize, "10", std::nullopt},
        {"LineSizeText", checkLineSize, "200", std::nullopt},
        {"LineSizeText", checkLineSize, "200.1", lineRange},
        {"YAxisDivision", checkYAxisDivision, "some", "Y axis division must be a value."},
        {"YAxisDivision", checkYAxisDivision, "0", "Y axis division must be between 1 and 50."},
        {"YAxisDivision", checkYAxisDivision, "10", std::nullopt},
        {"YMinText", checkYMin, "low", "Y axis minimum must be a value."},
        {"YMinText", checkYMin, "-40", std::nullopt},
        {"YMaxText", checkYMax, "high", "Y axis maximum must be a value."},
        {"YMaxText", checkYMax, "1e6", std::nullopt},
    };
    for (const CheckCase& test : cases) {
        EXPECT_EQ(test.check(test.text), test.message) << test.field << " '" << test.text << "'";
    }
}

TEST(ChartFieldChecks, YMinimumMustLieBelowTheMaximumWhenBothAreGiven) {
    EXPECT_EQ(checkYMinBelowYMax(3.0, 3.0), "Y axis minimum must be less than Y axis maximum.");
    EXPECT_EQ(checkYMinBelowYMax(-1.0, 3.0), std::nullopt);
}
