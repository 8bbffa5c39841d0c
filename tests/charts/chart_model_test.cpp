#include "charts/chart_builders.hpp"
#include "charts/chart_model.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace varo::charts;
using varo::core::ProgramState;
using varo::core::Rgb;

TEST(ChartDefaults, EachScreenOpensWithItsTitleAndAxisWords) {
    struct Case {
        ChartScreen screen;
        const char* form;
        const char* settings;
        const char* title;
        const char* xTitle;
        const char* yTitle;
    };
    const std::vector<Case> cases = {
        {ChartScreen::Result, "Chart1Frm", "Chart1SettingsFrm", "VARO Bar Chart", "",
         "Y axis label"},
        {ChartScreen::Scatter, "ScatterChartFrm", "ScatterChartSettings", "", "", ""},
        {ChartScreen::Line, "LineChartFrm", "LineSettingsFrm", "VARO Line Chart", "x axis label",
         ""},
        {ChartScreen::Pdf, "PDFChartFrm", "PDFSettingsFrm", "VARO PDF Chart", "", "Density"},
        {ChartScreen::Histogram, "HistogramFrm", "HistogramSettings", "VARO Residual Histogram",
         "Residual", "Frequency"},
        {ChartScreen::TimeSeries, "TimeSeriesChartFrm", "TimeSeriesSettingsFrm",
         "VARO Time Series Chart", "Year", "Data points"},
        {ChartScreen::Frequency, "FAChartFrm", "FAChartSettings", "", "Return period (years)",
         "Value"},
    };
    for (const Case& test : cases) {
        const ChartModel chart = defaultChart(test.screen);
        EXPECT_EQ(screenName(test.screen), test.form);
        EXPECT_EQ(settingsScreenName(test.screen), test.settings);
        EXPECT_EQ(chart.title, test.title) << test.form;
        EXPECT_EQ(chart.xAxis.title, test.xTitle) << test.form;
        EXPECT_EQ(chart.yAxis.title, test.yTitle) << test.form;
        EXPECT_EQ(chart.font.family, "Arial") << test.form;
    }
}

TEST(SeriesColours, ComeFromTheTableOfTheirChart) {
    ProgramState state;
    varo::core::initialiseState(state);
    EXPECT_EQ(seriesColour(state, ChartScreen::Result, 0), (Rgb{128, 0, 0}));
    EXPECT_EQ(seriesColour(state, ChartScreen::Histogram, 1), (Rgb{0, 128, 0}));
    EXPECT_EQ(seriesColour(state, ChartScreen::TimeSeries, 2), (Rgb{64, 0, 0}));
    EXPECT_EQ(seriesColour(state, ChartScreen::Line, 0), (Rgb{0, 255, 0}));
    EXPECT_EQ(seriesColour(state, ChartScreen::Pdf, 1), (Rgb{0, 0, 255}));
    EXPECT_EQ(seriesColour(state, ChartScreen::Frequency, 2), (Rgb{0, 0, 0}));
    EXPECT_EQ(seriesColour(state, ChartScreen::Scatter, 0), (Rgb{0, 0, 0}));
    // Past the third series the palette takes over and the state keeps nothing.
    EXPECT_NE(seriesColour(state, ChartScreen::Line, 3), seriesColour(state, ChartScreen::Line, 4));
    EXPECT_EQ(seriesColourSlot(state, ChartScreen::Line, 3), nullptr);
    EXPECT_EQ(seriesColourSlot(state, ChartScreen::Line, 2), &state.lineColours[2]);
    EXPECT_EQ(seriesColourSlot(state, ChartScreen::Scatter, 5), &state.scatterColour);
}

TEST(SeriesColours, BandEdgesShareTheThirdFrequencyColour) {
    ProgramState state;
    varo::core::initialiseState(state);
    state.frequencyColours[2] = Rgb{9, 9, 9};
    const ChartModel chart = frequencyChart("Period: Annual;  Fit: Gumbel",
                                            {{"obs", {1.0}, {2.0}}, {"mod", {1.0}, {3.0}}},
                                            std::make_pair(FrequencySeries{"Upper", {1.0}, {4.0}},
                                                           FrequencySeries{"Lower", {1.0}, {1.0}}),
                                            state);
    ASSERT_EQ(chart.series.size(), 4u);
    EXPECT_EQ(chart.series[0].colour, state.frequencyColours[0]);
    EXPECT_EQ(chart.series[1].colour, state.frequencyColours[1]);
    EXPECT_TRUE(chart.series[2].band);
    EXPECT_EQ(chart.series[2].colour, (Rgb{9, 9, 9}));
    EXPECT_EQ(chart.series[3].colour, (Rgb{9, 9, 9}));
    EXPECT_EQ(chart.series[2].name, "Upper");
}

TEST(FrequencyChart, StartsFromTheDefaultsOfTheProgramState) {
    ProgramState state;
    varo::core::initialiseState(state);
    ChartModel chart = frequencyChart("t", {}, std::nullopt, state);
    EXPECT_TRUE(chart.legendVisible);
    EXPECT_EQ(chart.dotSize, 100);
    EXPECT_EQ(chart.lineSize, 20);
    state.frequencyChartFlag = false;
    state.frequencyChartValue1 = 150;
    chart = frequencyChart("t", {}, std::nullopt, state);
    EXPECT_FALSE(chart.legendVisible);
    EXPECT_EQ(chart.dotSize, 150);
}

TEST(TimeSeriesKinds, HaveTheirWords) {
    for (const auto& [kind, word] :
         {std::pair{TimeSeriesKind::Raw, "raw"}, std::pair{TimeSeriesKind::Analysed, "analysed"},
          std::pair{TimeSeriesKind::Percentage, "percentage"},
          std::pair{TimeSeriesKind::Spi, "SPI"}}) {
        EXPECT_EQ(timeSeriesKindWord(kind), word);
        EXPECT_EQ(timeSeriesKindFromWord(word), kind);
    }
    EXPECT_EQ(timeSeriesKindFromWord("spi"), std::nullopt);
}

TEST(TimeSeriesChart, DrawsAtMostFiveSeries) {
    ProgramState state;
    std::vector<CategorySeries> six(6, CategorySeries{"f", {1.0}});
    EXPECT_THROW(timeSeriesChart(TimeSeriesKind::Raw, "", "", {"1961"}, six, state),
                 std::invalid_argument);
    six.pop_back();
    const ChartModel chart = timeSeriesChart(TimeSeriesKind::Raw, "", "", {"1961"}, six, state);
    EXPECT_EQ(chart.title, "VARO Time Series Chart");
    EXPECT_EQ(chart.yAxis.title, "Data points");
    EXPECT_EQ(chart.series.size(), 5u);
}

TEST(LegendRule, TooManyLinesHideTheLegendWithAWarning) {
    ProgramState state;
    const auto members = [](size_t count) {
        return std::vector<CategorySeries>(count, CategorySeries{"member", {1.0, 2.0}});
    };
    ChartModel line = lineChart({"a", "b"}, members(LegendLimit), state);
    EXPECT_TRUE(line.legendVisible);
    EXPECT_EQ(legendWarning(line), std::nullopt);

    line = lineChart({"a", "b"}, members(LegendLimit + 1), state);
    EXPECT_FALSE(line.legendVisible);
    EXPECT_EQ(legendWarning(line),
              "Note - there are too many lines to display a legend on the line plot.");

    const ChartModel pdf = pdfChart({"0.000", "9.000"}, members(21), state);
    EXPECT_FALSE(pdf.legendVisible);
    EXPECT_EQ(legendWarning(pdf),
              "Note - there are too many lines to display a legend on the PDF plot.");

    // Other charts have no such rule.
    ChartModel bars = resultChart(true, {"January"}, members(12), state);
    EXPECT_EQ(legendWarning(bars), std::nullopt);
}

TEST(ChartBuilders, CarryTheCallersWordsAndData) {
    ProgramState state;
    varo::core::initialiseState(state);
    const ChartModel bars =
        resultChart(true, {"January", "Annual"}, {{"a.txt: Mean", {1.0, 2.0}}}, state);
    EXPECT_EQ(bars.title, "VARO Bar Chart");
    EXPECT_EQ(bars.kind, ChartKind::Bars);
    const ChartModel lines = resultChart(false, {"January"}, {{"a.txt: Mean", {1.0}}}, state);
    EXPECT_EQ(lines.title, "VARO Line Chart");
    EXPECT_EQ(lines.kind, ChartKind::Lines);
    EXPECT_EQ(lines.series[0].name, "a.txt: Mean");
    EXPECT_EQ(lines.series[0].colour, state.barColours[0]);

    const ChartModel residuals = residualScatterChart({1.0, 2.0}, {0.5, -0.5}, state);
    EXPECT_EQ(residuals.title, "Residual Plot");
    EXPECT_EQ(residuals.xAxis.title, "Predicted Value (Y')");
    EXPECT_EQ(residuals.yAxis.title, "Residual");
    EXPECT_EQ(residuals.series[0].x, (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(residuals.series[0].y, (std::vector<double>{0.5, -0.5}));
    EXPECT_EQ(residuals.screen, ChartScreen::Scatter);

    const ChartModel scatter =
        scatterChart("3 missing value(s): rain.dat", "mslp", "rain.dat", {}, {}, state);
    EXPECT_EQ(scatter.caption, "3 missing value(s): rain.dat");
    EXPECT_EQ(scatter.series[0].colour, state.scatterColour);
}

TEST(DefaultLabelGap, ShowsAboutADozenLabels) {
    EXPECT_EQ(defaultLabelGap(0), 1);
    EXPECT_EQ(defaultLabelGap(12), 1);
    EXPECT_EQ(defaultLabelGap(13), 2);
    EXPECT_EQ(defaultLabelGap(36525), 3044);
}

TEST(WithoutMissing, TurnsTheCodeAndNonFiniteValuesIntoNoValue) {
    const std::vector<double> kept =
        withoutMissing({1.0, -999.0, -999.0001, INFINITY, 0.0}, -999.0);
    EXPECT_EQ(kept[0], 1.0);
    EXPECT_FALSE(hasValue(kept[1]));
    EXPECT_EQ(kept[2], -999.0001);
    EXPECT_FALSE(hasValue(kept[3]));
    EXPECT_EQ(kept[4], 0.0);
}
