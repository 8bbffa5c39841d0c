#include "charts/chart_builders.hpp"
#include "screens/chart_screens.hpp"
#include "support/scripted_dialogs.hpp"

#include <gtest/gtest.h>

using namespace varo;
using charts::ChartModel;
using screens::ChartScreenRecord;
using screens::ChartSettingsScreen;
using varo::testing::ScriptedDialogs;

namespace {

class ChartScreens : public ::testing::Test {
protected:
    core::ProgramState state;
    ScriptedDialogs dialogs;

    ChartScreens() { core::initialiseState(state); }

    ChartModel compareChart() {
        return charts::resultChart(
            true, {"January", "February", "Annual"},
            {{"a.txt: Mean", {1.5, 2.0, 1.75}}, {"b.txt: Mean", {1.0, 2.5, 1.5}}}, state);
    }
    ChartModel membersChart(charts::ChartScreen screen, size_t members) {
        std::vector<charts::CategorySeries> series(members, {"member", {1.0, 2.0, 3.0}});
        return screen == charts::ChartScreen::Line
                   ? charts::lineChart({"01/01/1961", "02/01/1961", "03/01/1961"}, series, state)
                   : charts::pdfChart({"0.000", "", "9.000"}, series, state);
    }
};

} // namespace

TEST_F(ChartScreens, SettingsFieldsShowTheChartAndChangeAppliesThem) {
    ChartScreenRecord chart(compareChart(), state);
    ChartSettingsScreen settings(chart);
    EXPECT_EQ(settings.titleText.text, "VARO Bar Chart");
    EXPECT_EQ(settings.yTitleText.text, "Y axis label");
    EXPECT_EQ(settings.minYText.text, "0");
    EXPECT_EQ(settings.maxYText.text, "5"); // twice 2.5
    ASSERT_EQ(settings.legendText.size(), 2u);
    EXPECT_EQ(settings.legendText[1].text, "b.txt: Mean");
    EXPECT_TRUE(settings.widthText.empty());

    settings.titleText.text = "Mean rainfall";
    settings.minYText.text = "-1";
    settings.maxYText.text = "4";
    settings.tickText.text = "10";
    settings.legendText[0].text = "Observed";
    ASSERT_TRUE(settings.change(dialogs));
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_EQ(chart.chart().title, "Mean rainfall");
    EXPECT_EQ(chart.chart().yAxis.scale, (charts::AxisScale{-1.0, 4.0, 10}));
    EXPECT_EQ(chart.chart().series[0].name, "Observed");
    EXPECT_EQ(chart.caption(), "Mean rainfall");
}

TEST_F(ChartScreens, ChangeStopsAtTheFirstRefusedFieldWhichGetsItsLastGoodValue) {
    ChartScreenRecord chart(compareChart(), state);
    ChartSettingsScreen settings(chart);
    settings.titleText.text = "Not applied";
    settings.minYText.text = "9"; // not below the maximum of 5
    settings.tickText.text = "0";
    EXPECT_FALSE(settings.change(dialogs));
    EXPECT_EQ(dialogs.errors(),
              std::vector<std::string>{"Minimum Y axis value must be less than maximum value."});
    EXPECT_EQ(settings.minYText.text, "0");
    EXPECT_EQ(settings.tickText.text, "0"); // not reached
    EXPECT_EQ(chart.chart().title, "VARO Bar Chart");

    EXPECT_FALSE(settings.change(dialogs));
    EXPECT_EQ(dialogs.errors().back(), "Ticks must be a value between 1 and 50.");
    EXPECT_EQ(settings.tickText.text, std::to_string(chart.chart().yAxis.scale.divisions));
}

TEST_F(ChartScreens, TheMinimumIsCheckedAgainstTheMaximumBeingTyped) {
    ChartScreenRecord chart(compareChart(), state);
    ChartSettingsScreen settings(chart);
    settings.maxYText.text = "20";
    settings.minYText.text = "10";
    EXPECT_TRUE(settings.checkMinY(dialogs));
    settings.maxYText.text = "oops";
    settings.minYText.text = "6"; // against the last good maximum of 5
    EXPECT_FALSE(settings.checkMinY(dialogs));
}

TEST_F(ChartScreens, ResetPutsBackTheFieldsAsTheScreenOpenedButNotTheColours) {
    ChartScreenRecord chart(compareChart(), state);
    ChartSettingsScreen settings(chart);
    settings.titleText.text = "Changed";
    ASSERT_TRUE(settings.change(dialogs));
    settings.clearLegend();
    settings.setColour(1, core::Rgb{1, 2, 3});
    settings.setFont(charts::ChartFont{"Liberation Serif", 12.0, true, false});
    settings.reset();
    EXPECT_EQ(settings.titleText.text, "VARO Bar Chart");
    EXPECT_EQ(settings.titleText.lastGood, "VARO Bar Chart");
    EXPECT_EQ(chart.chart().title, "VARO Bar Chart");
    EXPECT_TRUE(chart.chart().legendVisible);
    EXPECT_EQ(chart.chart().font, charts::ChartFont{});
    EXPECT_EQ(chart.chart().series[1].colour, (core::Rgb{1, 2, 3}));
}

TEST_F(ChartScreens, ColoursPersistInTheProgramStateAndResetAllKeepsThem) {
    ChartScreenRecord chart(compareChart(), state);
    {
        ChartSettingsScreen settings(chart);
        settings.titleText.text = "Changed";
        ASSERT_TRUE(settings.change(dialogs));
        settings.setColour(0, core::Rgb{10, 20, 30});
    }
    EXPECT_EQ(state.barColours[0], (core::Rgb{10, 20, 30}));
    chart.resetAll();
    EXPECT_EQ(chart.chart().title, "VARO Bar Chart");
    EXPECT_EQ(chart.chart().series[0].colour, (core::Rgb{10, 20, 30}));
    // The next chart of the family opens in the new colour.
    ChartScreenRecord next(compareChart(), state);
    EXPECT_EQ(next.chart().series[0].colour, (core::Rgb{10, 20, 30}));
    // Other families keep theirs.
    EXPECT_EQ(state.lineColours[0], (core::Rgb{0, 255, 0}));
}

TEST_F(ChartScreens, ASeriesPastTheThirdChangesColourOnTheChartOnly) {
    ChartScreenRecord chart(membersChart(charts::ChartScreen::Line, 5), state);
    const auto before = state.lineColours;
    ChartSettingsScreen settings(chart);
    settings.setColour(4, core::Rgb{7, 7, 7});
    EXPECT_EQ(chart.chart().series[4].colour, (core::Rgb{7, 7, 7}));
    EXPECT_EQ(state.lineColours, before);
    chart.resetAll();
    EXPECT_NE(chart.chart().series[4].colour, (core::Rgb{7, 7, 7}));
}

TEST_F(ChartScreens, TooManyLinesWarnOnOpeningAndWhenALegendIsAskedFor) {
    for (const auto& [screen, word] : {std::pair{charts::ChartScreen::Line, "line"},
                                       std::pair{charts::ChartScreen::Pdf, "PDF"}}) {
        dialogs.messages.clear();
        ChartScreenRecord chart(membersChart(screen, 11), state);
        chart.open(dialogs);
        ASSERT_EQ(dialogs.messages.size(), 1u);
        EXPECT_EQ(dialogs.messages[0].title, "Warning Message");
        EXPECT_EQ(dialogs.messages[0].text,
                  std::string("Note - there are too many lines to display a legend on the ") +
                      word + " plot.");
        ChartSettingsScreen settings(chart);
        settings.showLegend(dialogs);
        EXPECT_EQ(dialogs.messages.size(), 2u);
        EXPECT_FALSE(chart.chart().legendVisible);
        EXPECT_EQ(settings.legendText.size(), charts::LegendLimit);
    }
    ChartScreenRecord few(membersChart(charts::ChartScreen::Line, 2), state);
    dialogs.messages.clear();
    few.open(dialogs);
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(ChartScreens, TheFrequencyChartTogglesItsLegendAndTakesDotAndLineSizes) {
    ChartScreenRecord chart(charts::frequencyChart("Period: Annual;  Fit: GEV",
                                                   {{"obs", {1.0, 2.0}, {5.0, 7.0}}}, std::nullopt,
                                                   state),
                            state);
    ChartSettingsScreen settings(chart);
    EXPECT_TRUE(settings.fields().dotAndLineSize);
    EXPECT_EQ(settings.legendButtonCaption(), "Hide Legend");
    settings.toggleLegend(dialogs);
    EXPECT_EQ(settings.legendButtonCaption(), "Show Legend");
    EXPECT_FALSE(chart.chart().legendVisible);
    settings.toggleLegend(dialogs);
    EXPECT_TRUE(chart.chart().legendVisible);

    settings.dotSizeText.text = "251";
    EXPECT_FALSE(settings.change(dialogs));
    EXPECT_EQ(dialogs.errors().back(), "Dot size must be a value between 50 and 250.");
    settings.dotSizeText.text = "250";
    settings.lineSizeText.text = "10";
    settings.yMinText.text = "8";
    settings.yMaxText.text = "8";
    EXPECT_FALSE(settings.change(dialogs));
    EXPECT_EQ(dialogs.errors().back(), "Y axis minimum must be less than Y axis maximum.");
    settings.yMinText.text = "0";
    settings.yAxisDivision.text = "4";
    ASSERT_TRUE(settings.change(dialogs));
    EXPECT_EQ(chart.chart().dotSize, 250);
    EXPECT_EQ(chart.chart().lineSize, 10);
    EXPECT_EQ(chart.chart().yAxis.scale, (charts::AxisScale{0.0, 8.0, 4}));
    // Not kept in the program state: a new frequency chart starts from the defaults.
    EXPECT_EQ(state.frequencyChartValue1, 100);
}

TEST_F(ChartScreens, TheLineFamilyHasALabelGapBoundedByItsCategoriesAndPenWidths) {
    const std::vector<std::string> years = {"1961", "1962", "1963", "1964"};
    ChartScreenRecord chart(
        charts::timeSeriesChart(charts::TimeSeriesKind::Analysed, "Mean", "Mean", years,
                                {{"a.dat", {1, 2, 3, 4}}, {"b.dat", {2, 3, 4, 5}}}, state),
        state);
    ChartSettingsScreen settings(chart);
    ASSERT_EQ(settings.widthText.size(), 2u);
    EXPECT_EQ(settings.labelGapLimit(), 4);
    settings.xLabelGapText.text = "5";
    EXPECT_FALSE(settings.checkXLabelGap(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Gap between x-axis labels must be between 0 and 4.");
    settings.widthText[1].text = "0";
    EXPECT_FALSE(settings.change(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Pen width must be a value between 1 and 100.");
    settings.widthText[1].text = "55";
    settings.xLabelGapText.text = "2";
    ASSERT_TRUE(settings.change(dialogs));
    EXPECT_EQ(chart.chart().series[1].penWidth, 55);
    EXPECT_EQ(chart.chart().xLabelGap, 2);
    settings.clearX();
    EXPECT_EQ(settings.xLabelGapText.text, "0");
    EXPECT_FALSE(chart.chart().xAxis.labels);
}

TEST_F(ChartScreens, TicksClearAndApplyAtOnce) {
    ChartScreenRecord chart(compareChart(), state);
    ChartSettingsScreen settings(chart);
    settings.clearTicks();
    EXPECT_FALSE(chart.chart().yAxis.ticks);
    settings.tickText.text = "51";
    EXPECT_FALSE(settings.applyTicks(dialogs));
    EXPECT_FALSE(chart.chart().yAxis.ticks);
    settings.tickText.text = "8";
    EXPECT_TRUE(settings.applyTicks(dialogs));
    EXPECT_TRUE(chart.chart().yAxis.ticks);
    EXPECT_EQ(chart.chart().yAxis.scale.divisions, 8);
}
