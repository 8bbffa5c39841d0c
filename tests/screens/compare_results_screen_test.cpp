#include "screens/compare_results_screen.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using screens::CompareResultsScreen;
using varo::testing::ScriptedDialogs;
using varo::testing::TempDir;

namespace {

const char* const Rows[17] = {"January", "February", "March",     "April",   "May",      "June",
                              "July",    "August",   "September", "October", "November", "December",
                              "Winter",  "Spring",   "Summer",    "Autumn",  "Annual"};

// A results file of the given statistics, row r holding base + r for statistic s * 10.
std::string resultsText(const std::vector<std::string>& statistics, double base,
                        int missingRow = 0) {
    std::string text = "SUMMARY STATISTICS FOR: x.OUT\r\nAnalysis Start Date: 01/01/1961\r\n"
                       "Analysis End Date: 31/12/1990\r\nEnsemble Member(s): 1\r\nMonth";
    for (const std::string& name : statistics) {
        text += "," + name;
    }
    text += "\r\n";
    for (int r = 1; r <= 17; ++r) {
        text += Rows[r - 1];
        text += ",";
        for (size_t s = 0; s < statistics.size(); ++s) {
            text += r == missingRow ? "-999.000," : std::to_string(base + r + 10.0 * s) + ",";
        }
        text += "\r\n";
    }
    return text;
}

class CompareScreen : public ::testing::Test {
protected:
    TempDir dir;
    core::ProgramState state;
    ScriptedDialogs dialogs;
    CompareScreen() { core::initialiseState(state); }
};

} // namespace

TEST_F(CompareScreen, ThePlotChecksComeInTheirOrder) {
    CompareResultsScreen screen(state);
    EXPECT_EQ(screen.files[0].fileText, "Not selected");
    EXPECT_EQ(screen.plot(dialogs), std::nullopt);
    EXPECT_EQ(dialogs.lastText(), "You must select at least file 1.");

    ASSERT_TRUE(screen.chooseFile(0, dir.write("empty.txt", "no table here\r\n"), dialogs));
    EXPECT_EQ(screen.files[0].fileText, "empty.txt");
    EXPECT_EQ(screen.plot(dialogs), std::nullopt);
    EXPECT_EQ(dialogs.lastText(), "No statistics to select in file 1.");

    ASSERT_TRUE(screen.chooseFile(0, dir.write("a.txt", resultsText({"Mean", "Sum"}, 0)), dialogs));
    EXPECT_EQ(screen.files[0].statisticList(), (std::vector<std::string>{"Mean", "Sum"}));
    EXPECT_EQ(screen.plot(dialogs), std::nullopt);
    EXPECT_EQ(dialogs.lastText(), "You must select a statistic to plot from file 1.");
    EXPECT_EQ(dialogs.errors().size(), 3u);
}

TEST_F(CompareScreen, PlotsTheColumnOfEachFileLabelledWithFileAndStatistic) {
    CompareResultsScreen screen(state);
    ASSERT_TRUE(screen.chooseFile(0, dir.write("a.txt", resultsText({"Mean", "Sum"}, 0)), dialogs));
    ASSERT_TRUE(screen.pickStatistic(0, "Sum"));
    ASSERT_TRUE(
        screen.chooseFile(1, dir.write("b.txt", resultsText({"Maximum", "Sum"}, 100)), dialogs));
    EXPECT_EQ(screen.files[1].statistic, 1u) << "the same statistic is picked in file 2";
    screen.selectChart(CompareResultsScreen::Bar);
    const auto chart = screen.plot(dialogs);
    ASSERT_TRUE(chart);
    EXPECT_EQ(chart->title, "VARO Bar Chart");
    EXPECT_EQ(chart->screen, charts::ChartScreen::Result);
    ASSERT_EQ(chart->series.size(), 2u);
    EXPECT_EQ(chart->series[0].name, "a.txt: Sum");
    EXPECT_EQ(chart->series[1].name, "b.txt: Sum");
    EXPECT_EQ(chart->categories.size(), 17u);
    EXPECT_EQ(chart->categories.back(), "Annual");
    EXPECT_DOUBLE_EQ(chart->series[0].y[0], 11.0);
    EXPECT_DOUBLE_EQ(chart->series[1].y[16], 127.0);
    EXPECT_EQ(state.chartKind, 1);

    screen.selectChart(CompareResultsScreen::Line);
    EXPECT_EQ(screen.plot(dialogs)->title, "VARO Line Chart");
    EXPECT_EQ(state.chartKind, 2);
    const core::ResultsTable table = screen.comparedTable();
    EXPECT_EQ(table.columns, (std::vector<std::string>{"a.txt: Sum", "b.txt: Sum"}));
    EXPECT_EQ(table.rows.size(), 17u);
    EXPECT_EQ(table.rows[16].label, "Annual");
}

TEST_F(CompareScreen, AStatisticAbsentFromFile2LeavesFile1Alone) {
    CompareResultsScreen screen(state);
    ASSERT_TRUE(screen.chooseFile(0, dir.write("a.txt", resultsText({"Mean", "Sum"}, 0)), dialogs));
    ASSERT_TRUE(screen.chooseFile(1, dir.write("b.txt", resultsText({"Maximum"}, 0)), dialogs));
    ASSERT_TRUE(screen.pickStatistic(0, "Sum"));
    EXPECT_FALSE(screen.files[1].statistic);
    EXPECT_FALSE(screen.pickStatistic(1, "Sum"));
    const auto chart = screen.plot(dialogs);
    ASSERT_TRUE(chart);
    ASSERT_EQ(chart->series.size(), 1u);
    EXPECT_EQ(chart->series[0].name, "a.txt: Sum");
    // Another statistic may be set beside it.
    ASSERT_TRUE(screen.pickStatistic(1, "Maximum"));
    EXPECT_EQ(screen.plot(dialogs)->series[1].name, "b.txt: Maximum");
}

TEST_F(CompareScreen, AMissingValueIsNoValueOnTheChartAndAMissingCell) {
    CompareResultsScreen screen(state);
    ASSERT_TRUE(screen.chooseFile(0, dir.write("a.txt", resultsText({"Mean"}, 0, 3)), dialogs));
    ASSERT_TRUE(screen.pickStatistic(0, "Mean"));
    const auto chart = screen.plot(dialogs);
    ASSERT_TRUE(chart);
    EXPECT_FALSE(charts::hasValue(chart->series[0].y[2]));
    EXPECT_FALSE(screen.comparedTable().rows[2].cells[0].value);
    EXPECT_EQ(screen.comparedTable().rows[3].cells[0].value, 4.0);
}

TEST_F(CompareScreen, AFileThatCannotBeReadIsRefusedAndTheChoiceStays) {
    CompareResultsScreen screen(state);
    ASSERT_TRUE(screen.chooseFile(0, dir.write("a.txt", resultsText({"Mean"}, 0)), dialogs));
    std::string truncated = resultsText({"Mean"}, 0);
    truncated.resize(truncated.find("June"));
    EXPECT_FALSE(screen.chooseFile(0, dir.write("cut.txt", truncated), dialogs));
    EXPECT_NE(dialogs.lastText().find("cut.txt' ends on line 10"), std::string::npos)
        << dialogs.lastText();
    EXPECT_EQ(screen.files[0].fileText, "a.txt");
    EXPECT_FALSE(screen.chooseFile(1, dir.path("absent.txt"), dialogs));
    EXPECT_EQ(screen.files[1].fileText, "Not selected");
}

TEST_F(CompareScreen, FilesComeFromThePickerWithTheResultsFilter) {
    CompareResultsScreen screen(state);
    dialogs.pickedFiles.push_back(dir.write("a.txt", resultsText({"Mean"}, 0)));
    screen.pickFile(0, dialogs);
    EXPECT_EQ(screen.files[0].fileText, "a.txt");
    screen.pickFile(1, dialogs); // cancelled
    EXPECT_EQ(screen.files[1].fileText, "Not selected");
    screen.reset();
    EXPECT_EQ(screen.files[0].fileText, "Not selected");
}
