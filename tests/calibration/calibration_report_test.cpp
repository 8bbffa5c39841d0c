#include "calibration/calibration_report.hpp"

#include "calibration_test_support.hpp"

#include <gtest/gtest.h>

using namespace varo::calibration;

namespace {

constexpr double Missing = -999.0;

// Every month alike except March, whose values are missing, and June, whose Chow value is
// above its critical value.
CalibrationResults results() {
    CalibrationResults r;
    r.parameters.predictandName = "rain.dat";
    r.parameters.predictorNames = {"mslp.dat", "shum.dat"};
    for (size_t m = 0; m < 24; ++m) {
        r.statistics[m] = {0.25, 1.5, 2.0, 1.0, 300, 2};
    }
    r.statistics[2] = {Missing, Missing, Missing, Missing, 300, 2};
    r.statistics[14] = {Missing, 0.5, 0.0, Missing, 40, 2};
    r.statistics[5].chow = 3.01;  // 300 days, 2 predictors: critical 3.00
    r.statistics[17].chow = 3.20; // 40 days: d = 36, critical 3.34
    r.statistics[17].rows = 40;
    return r;
}

// A row as the report shows it: its label, then each cell's text.
std::vector<std::string> cells(const varo::core::ResultsTable& table, size_t row) {
    std::vector<std::string> texts{table.rows[row].label};
    for (const auto& cell : table.rows[row].cells) {
        texts.push_back(table.cellText(cell));
    }
    return texts;
}

std::vector<std::string> headings(const varo::core::ResultsTable& table) {
    std::vector<std::string> all{table.rowHeading};
    all.insert(all.end(), table.columns.begin(), table.columns.end());
    return all;
}

} // namespace

TEST(ChowCriticalValue, RowsByDegreesOfFreedomAndColumnsByPredictors) {
    EXPECT_EQ(chowCriticalValue(41, 1), 4.20);  // d = 39
    EXPECT_EQ(chowCriticalValue(42, 1), 4.08);  // d = 40
    EXPECT_EQ(chowCriticalValue(69, 5), 2.45);  // d = 59
    EXPECT_EQ(chowCriticalValue(70, 5), 2.37);  // d = 60
    EXPECT_EQ(chowCriticalValue(111, 6), 2.17); // d = 99
    EXPECT_EQ(chowCriticalValue(118, 9), 2.01); // d = 100
    EXPECT_EQ(chowCriticalValue(500, 10), 1.83);
    EXPECT_EQ(chowCriticalValue(500, 11), 1.52);
    EXPECT_EQ(chowCriticalValue(30, 11), 1.91);
}

TEST(CalibrationReport, UnconditionalTableWithMeanAndMissingMonths) {
    const auto s = varo::testing::sixYearState();
    ReportOptions options;
    const CalibrationReport report = buildReport(s, results(), options);
    EXPECT_EQ(report.headingLines,
              (std::vector<std::string>{"Predictand: rain.dat", "Predictors: mslp.dat",
                                        "            shum.dat"}));
    ASSERT_EQ(report.tables.size(), 1u);
    const varo::core::ResultsTable& table = report.tables[0];
    EXPECT_EQ(table.title, "Unconditional Statistics");
    EXPECT_EQ(headings(table), (std::vector<std::string>{"Month", "RSquared", "SE", "D-Watson"}));
    ASSERT_EQ(table.rows.size(), 13u);
    EXPECT_EQ(cells(table, 0),
              (std::vector<std::string>{"January", " 0.2500", " 1.5000", " 2.0000"}));
    EXPECT_EQ(cells(table, 2),
              (std::vector<std::string>{"March", "N/A    ", "N/A    ", "N/A    "}));
    // The mean leaves the missing month out.
    EXPECT_EQ(cells(table, 12),
              (std::vector<std::string>{"Mean", " 0.2500", " 1.5000", " 2.0000"}));
    EXPECT_FALSE(report.anyAboveCritical);
}

TEST(CalibrationReport, ConditionalTablesAndTheChowColumn) {
    const auto s = varo::testing::sixYearState();
    ReportOptions options;
    options.conditional = true;
    options.autoregression = true;
    options.includeChow = true;
    const CalibrationReport report = buildReport(s, results(), options);
    EXPECT_EQ(report.headingLines.back(), "Autoregression");
    ASSERT_EQ(report.tables.size(), 2u);
    EXPECT_EQ(headings(report.tables[0]),
              (std::vector<std::string>{"Month", "RSquared", "SE", "Prop Correct", "Chow"}));
    EXPECT_TRUE(report.tables[0].rows[5].cells[3].highlighted);
    EXPECT_FALSE(report.tables[0].rows[4].cells[3].highlighted);
    const varo::core::ResultsTable& amounts = report.tables[1];
    EXPECT_EQ(amounts.title, "Conditional Statistics");
    EXPECT_EQ(headings(amounts), (std::vector<std::string>{"Month", "RSquared", "SE", "Chow"}));
    EXPECT_EQ(cells(amounts, 2),
              (std::vector<std::string>{"March", "N/A     ", " 0.5000", "N/A     "}));
    EXPECT_FALSE(amounts.rows[5].cells[2].highlighted); // 3.20 below 3.34 for 40 days
    EXPECT_TRUE(report.anyAboveCritical);

    const std::string text = reportText(report);
    EXPECT_NE(text.find("\nUnconditional Statistics\n"
                        "Month         RSquared      SE            Prop Correct  Chow\n"
                        "January        0.2500        1.5000        2.0000        1.0000\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\nJune           0.2500        1.5000        2.0000        3.0100*\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\nMarch         N/A            0.5000       N/A\n"), std::string::npos)
        << text;
    EXPECT_EQ(text.substr(text.size() - 44), "\n* Chow statistic above its critical value.\n");
}

TEST(CalibrationReport, CrossValidationColumnsSitRightOfTheFitAndMayBeAllMissing) {
    const auto s = varo::testing::sixYearState();
    CrossValidationTable cv{};
    for (auto& row : cv) {
        row.fill(Missing);
    }
    cv[3].fill(0.4); // RSquared of every month
    ReportOptions options;
    options.crossValidation = cv;
    const CalibrationReport report = buildReport(s, results(), options);
    const varo::core::ResultsTable& table = report.tables[0];
    ASSERT_EQ(table.columnGroups.size(), 1u);
    EXPECT_EQ(table.columnGroups[0].title, "Cross Validation Results");
    EXPECT_EQ(table.columnGroups[0].firstColumn, 3u);
    EXPECT_EQ(headings(table),
              (std::vector<std::string>{"Month", "RSquared", "SE", "D-Watson", "RSquared", "SE",
                                        "D-Watson", "Spearman", "Bias"}));
    for (size_t row = 0; row < 13; ++row) {
        EXPECT_EQ(cells(table, row)[4], " 0.4000");
        EXPECT_EQ(cells(table, row)[5], "N/A    ") << row; // the mean too
    }
    EXPECT_NE(reportText(report).find("\nUnconditional Statistics" + std::string(32, ' ') +
                                      "Cross Validation Results\n"),
              std::string::npos);
}

TEST(ResidualHistogram, EqualStepsLabelledByTheirLowerEdgeAndTheLargestInNoBar) {
    std::vector<ResidualPair> pairs;
    for (double residual : {-2.0, -1.5, -0.25, 0.0, 0.5, 1.0, 2.9, 3.0}) {
        pairs.push_back({0.0, residual});
    }
    const ResidualHistogram histogram = residualHistogram(pairs, 5);
    EXPECT_EQ(histogram.labels,
              (std::vector<std::string>{"-2.000", "-1.000", "0.000", "1.000", "3.000"}));
    // Bars [-2,-1) [-1,0) [0,1) [1,2) [2,3): 3.0 falls in none.
    EXPECT_EQ(histogram.counts, (std::vector<int>{2, 1, 2, 1, 1}));
    const ResidualHistogram empty = residualHistogram({}, 100);
    EXPECT_EQ(empty.labels.front(), "1000.000");
    EXPECT_EQ(empty.labels.back(), "-1000.000");
    EXPECT_EQ(empty.counts, std::vector<int>(100, 0));
}
