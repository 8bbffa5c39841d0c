#include "charts/chart_builders.hpp"
#include "charts/chart_scale.hpp"

#include <cmath>
#include <gtest/gtest.h>

using namespace varo::charts;

namespace {

Series values(std::vector<double> y) {
    Series series;
    series.y = std::move(y);
    return series;
}

struct ResultScaleCase {
    const char* what;
    std::vector<std::vector<double>> series;
    double bottom;
    double top;
};

} // namespace

TEST(ResultChartScale, FollowsTheVerticalScaleRule) {
    const std::vector<ResultScaleCase> cases = {
        {"largest below 1 is doubled without rounding", {{0.1, 0.6}}, 0.0, 1.2},
        {"largest just below 1", {{0.2, 0.999}}, 0.0, 1.998},
        {"largest of 1 is doubled and rounded", {{0.5, 1.0}}, 0.0, 2.0},
        {"twice the largest is rounded, ties to even (2.5)", {{0.0, 1.25}}, 0.0, 2.0},
        {"twice the largest is rounded, ties to even (3.5)", {{0.0, 1.75}}, 0.0, 4.0},
        {"twice the largest rounds down", {{0.0, 3.2}}, 0.0, 6.0},
        {"a negative top becomes 0", {{-3.7, -0.5}}, -3.0, 0.0},
        {"the bottom is the integer part, above the smallest", {{-2.7, 5.0}}, -2.0, 10.0},
        {"a positive integer part of the smallest becomes 0", {{2.9, 4.0}}, 0.0, 8.0},
        {"a smallest just below 0 truncates to 0", {{-0.4, 4.0}}, 0.0, 8.0},
        {"the largest and smallest of all series", {{1.0, 2.0}, {-1.5, 7.4}}, -1.0, 15.0},
        {"missing values are left out", {{NoValue, 0.3, NoValue}, {NoValue}}, 0.0, 0.6},
        {"no value at all", {{NoValue}}, 0.0, 0.0},
    };
    for (const ResultScaleCase& test : cases) {
        std::vector<Series> series;
        for (const auto& y : test.series) {
            series.push_back(values(y));
        }
        const AxisScale scale = resultChartScale(series);
        EXPECT_DOUBLE_EQ(scale.minimum, test.bottom) << test.what;
        EXPECT_DOUBLE_EQ(scale.maximum, test.top) << test.what;
        if (test.bottom == 0.0) {
            EXPECT_FALSE(std::signbit(scale.minimum)) << test.what << ": no negative zero";
        }
    }
}

TEST(ResultChartScale, TheResultChartTakesItsScaleByTheRule) {
    varo::core::ProgramState state;
    const ChartModel chart =
        resultChart(false, {"January", "February"},
                    {{"a.txt: Mean", {0.4, 0.45}}, {"b.txt: Mean", {-1.6, 0.2}}}, state);
    EXPECT_DOUBLE_EQ(chart.yAxis.scale.minimum, -1.0);
    EXPECT_DOUBLE_EQ(chart.yAxis.scale.maximum, 0.9);
}

TEST(DivisionsFor, PicksARoundStepOrFive) {
    EXPECT_EQ(divisionsFor(0.0, 10.0), 5);
    EXPECT_EQ(divisionsFor(0.0, 2.4), 6);   // 0.4 a division
    EXPECT_EQ(divisionsFor(-2.0, 6.0), 4);  // 2 a division
    EXPECT_EQ(divisionsFor(0.0, 1.998), 5); // no round step: five
    EXPECT_EQ(divisionsFor(3.0, 3.0), 5);
}

TEST(RoundScale, WidensToRoundStepsAroundTheData) {
    struct Case {
        double low, high, expectedLow, expectedHigh;
        int divisions;
    };
    const std::vector<Case> cases = {
        {0.0, 7.3, 0.0, 8.0, 4}, {-3.2, 4.1, -4.0, 6.0, 5}, {997.0, 1031.0, 990.0, 1040.0, 5},
        {0.0, 1.0, 0.0, 1.0, 5}, {5.0, 5.0, 4.4, 5.6, 6},   {0.0, 0.0, -1.0, 1.0, 4},
    };
    for (const Case& test : cases) {
        const AxisScale scale = roundScale(test.low, test.high);
        EXPECT_NEAR(scale.minimum, test.expectedLow, 1e-9) << test.low << " " << test.high;
        EXPECT_NEAR(scale.maximum, test.expectedHigh, 1e-9) << test.low << " " << test.high;
        EXPECT_EQ(scale.divisions, test.divisions) << test.low << " " << test.high;
    }
}

TEST(ScaleFromData, EachChartHasItsRule) {
    varo::core::ProgramState state;
    const ChartModel histogram = histogramChart({"a", "b"}, {3.0, 17.0}, state);
    EXPECT_DOUBLE_EQ(histogram.yAxis.scale.minimum, 0.0);
    EXPECT_GE(histogram.yAxis.scale.maximum, 17.0);

    const ChartModel spi =
        timeSeriesChart(TimeSeriesKind::Spi, "SPI", "SPI", {"1", "2"}, {{"f", {-1.2, 4.4}}}, state);
    EXPECT_DOUBLE_EQ(spi.yAxis.scale.minimum, -5.0);
    EXPECT_DOUBLE_EQ(spi.yAxis.scale.maximum, 5.0);
    const ChartModel calmSpi =
        timeSeriesChart(TimeSeriesKind::Spi, "SPI", "SPI", {"1"}, {{"f", {0.5}}}, state);
    EXPECT_DOUBLE_EQ(calmSpi.yAxis.scale.minimum, -3.0);
    EXPECT_DOUBLE_EQ(calmSpi.yAxis.scale.maximum, 3.0);

    const ChartModel percentage = timeSeriesChart(TimeSeriesKind::Percentage, "Percentage", "",
                                                  {"1", "2"}, {{"f", {40.0, 60.0}}}, state);
    EXPECT_DOUBLE_EQ(percentage.yAxis.scale.minimum, 0.0);

    const ChartModel frequency = frequencyChart(
        "Period: Annual", {{"obs", {30.0, 15.0, 1.0}, {50.0, 41.0, 12.0}}}, std::nullopt, state);
    EXPECT_DOUBLE_EQ(frequency.xAxis.scale.minimum, 0.0);
    EXPECT_GE(frequency.xAxis.scale.maximum, 30.0);
    EXPECT_LE(frequency.yAxis.scale.minimum, 12.0);
    EXPECT_GE(frequency.yAxis.scale.maximum, 50.0);

    const ChartModel scatter = scatterChart("t", "x", "y", {-4.0, 9.0}, {1.5, 2.5}, state);
    EXPECT_LE(scatter.xAxis.scale.minimum, -4.0);
    EXPECT_GE(scatter.xAxis.scale.maximum, 9.0);
}

TEST(DrawnScale, AnAxisOfEqualBoundsStillHasARange) {
    EXPECT_EQ(drawnScale({0.0, 0.0, 5}), (AxisScale{0.0, 1.0, 5}));
    EXPECT_EQ(drawnScale({2.0, -1.0, 0}), (AxisScale{2.0, 3.0, 1}));
    EXPECT_EQ(drawnScale({-1.0, 4.0, 5}), (AxisScale{-1.0, 4.0, 5}));
}
