#include "screens/chart_sources.hpp"

#include <gtest/gtest.h>
#include <numeric>

using namespace varo;

namespace {

std::vector<calibration::ResidualPair> residuals(const std::vector<double>& values) {
    std::vector<calibration::ResidualPair> pairs;
    for (const double value : values) {
        pairs.push_back({value * 2.0, value});
    }
    return pairs;
}

double total(const charts::Series& series) {
    return std::accumulate(series.y.begin(), series.y.end(), 0.0);
}

} // namespace

TEST(ResidualHistogramChart, BarsAreHalfOpenAndTheLargestResidualFallsInNone) {
    core::ProgramState state;
    core::initialiseState(state);
    // Range -2 to 3 in 5 steps of 1: -1 stands on an edge and counts in the bar above it.
    const charts::ChartModel chart =
        screens::residualHistogramChart(residuals({-2.0, -1.0, 0.0, 0.5, 3.0}), 5, state);
    EXPECT_EQ(chart.screen, charts::ChartScreen::Histogram);
    EXPECT_EQ(chart.title, "VARO Residual Histogram");
    EXPECT_EQ(chart.xAxis.title, "Residual");
    EXPECT_EQ(chart.yAxis.title, "Frequency");
    EXPECT_EQ(chart.categories,
              (std::vector<std::string>{"-2.000", "-1.000", "0.000", "1.000", "3.000"}));
    ASSERT_EQ(chart.series.size(), 1u);
    EXPECT_EQ(chart.series[0].y, (std::vector<double>{1, 1, 2, 0, 0}));
    EXPECT_EQ(total(chart.series[0]), 4.0) << "the largest residual is in no bar";
    EXPECT_EQ(chart.series[0].colour, state.barColours[0]);
    EXPECT_DOUBLE_EQ(chart.yAxis.scale.minimum, 0.0);
}

TEST(ResidualHistogramChart, EdgesAreComputedAsWrittenNotAsExactDecimals) {
    core::ProgramState state;
    // Step 0.1: bar 4's lower edge is 0 + 0.1 * 3 = 0.30000000000000004 and bar 3's upper
    // edge 0.2 + 0.1 the same, so 0.3 counts in bar 3.
    const charts::ChartModel chart =
        screens::residualHistogramChart(residuals({0.0, 0.3, 1.0}), 10, state);
    EXPECT_EQ(chart.series[0].y, (std::vector<double>{1, 0, 1, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(chart.categories[3], "0.300");
}

TEST(ResidualHistogramChart, TheBoundsOfTheBarCountAreFiveAndAHundred) {
    core::ProgramState state;
    std::vector<double> values;
    for (int i = 0; i < 1000; ++i) {
        values.push_back(i * 0.01 - 5.0);
    }
    for (const int bars : {5, 100}) {
        const charts::ChartModel chart =
            screens::residualHistogramChart(residuals(values), bars, state);
        EXPECT_EQ(chart.categories.size(), static_cast<size_t>(bars));
        EXPECT_EQ(chart.series[0].y.size(), static_cast<size_t>(bars));
        EXPECT_EQ(total(chart.series[0]), 999.0) << bars << " bars";
        EXPECT_EQ(chart.categories.front(), "-5.000");
        EXPECT_EQ(chart.categories.back(), "4.990");
    }
}

TEST(ResidualScatterChart, PlotsFittedAcrossAndResidualsUp) {
    core::ProgramState state;
    const charts::ChartModel chart = screens::residualScatterChart(residuals({-1.0, 0.25}), state);
    EXPECT_EQ(chart.title, "Residual Plot");
    EXPECT_EQ(chart.xAxis.title, "Predicted Value (Y')");
    EXPECT_EQ(chart.yAxis.title, "Residual");
    EXPECT_EQ(chart.series[0].x, (std::vector<double>{-2.0, 0.5}));
    EXPECT_EQ(chart.series[0].y, (std::vector<double>{-1.0, 0.25}));
}

TEST(ScatterAnalysisChart, TakesTheAnalysisTitlesAndPoints) {
    core::ProgramState state;
    core::initialiseState(state);
    state.scatterColour = {0, 0, 200};
    screening::ScatterData data;
    data.points = {{1010.0, 0.0}, {998.5, 4.2}};
    data.missingCount = 3;
    data.xTitle = "mslp.dat";
    data.yTitle = "rain.dat";
    data.title = "3 missing value(s): rain.dat";
    const charts::ChartModel chart = screens::scatterAnalysisChart(data, state);
    EXPECT_EQ(chart.screen, charts::ChartScreen::Scatter);
    EXPECT_EQ(chart.title, "3 missing value(s): rain.dat");
    EXPECT_EQ(chart.caption, chart.title);
    EXPECT_EQ(chart.xAxis.title, "mslp.dat");
    EXPECT_EQ(chart.yAxis.title, "rain.dat");
    EXPECT_EQ(chart.series[0].x, (std::vector<double>{1010.0, 998.5}));
    EXPECT_EQ(chart.series[0].y, (std::vector<double>{0.0, 4.2}));
    EXPECT_EQ(chart.series[0].colour, (core::Rgb{0, 0, 200}));
    // With no point to draw the chart is shown empty.
    data.points.clear();
    EXPECT_TRUE(screens::scatterAnalysisChart(data, state).series[0].x.empty());
}
