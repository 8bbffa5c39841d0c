#include "core/results_table.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace varo::core {
namespace {

TEST(ResultsTable, MissingCodeAndNonFiniteValuesBecomeMissingCells) {
    ResultsTable table;
    table.columns = {"Mean", "Max", "Var"};
    const auto& row = table.addRow("Jan", {1.5, -999.0, std::nan("")}, -999.0);
    ASSERT_EQ(row.cells.size(), 3u);
    EXPECT_EQ(row.cells[0].value, 1.5);
    EXPECT_FALSE(row.cells[1].value);
    EXPECT_FALSE(row.cells[2].value);
    EXPECT_EQ(table.cellText(row.cells[1]), "N/A");
}

TEST(ResultsTable, LinesAlignLabelsLeftAndNumbersRightByTheWidestEntry) {
    ResultsTable table;
    table.title = "Summary";
    table.rowHeading = "Period";
    table.columns = {"Mean", "Maximum"};
    table.numberPattern = "#0.00";
    table.addRow("Jan", {2.125, 100.0}, -999.0);
    table.addRow("Annual", {-0.5, -999.0}, -999.0);
    const std::vector<std::string> expected{
        "Summary",
        "Period   Mean  Maximum",
        "Jan      2.12   100.00",
        "Annual  -0.50      N/A",
    };
    EXPECT_EQ(tableLines(table), expected);
}

} // namespace
} // namespace varo::core
