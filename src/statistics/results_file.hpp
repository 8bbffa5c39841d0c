// The results file of a summary statistics run: plain text of comma-separated tables,
// lines ending in carriage return and line feed.
//
//   SUMMARY STATISTICS FOR: <file name>
//   Analysis Start Date: <dd/mm/yyyy>
//   Analysis End Date: <dd/mm/yyyy>
//   Ensemble Member(s): <member number, or ALL for the ensemble mean>
//   Month,<name of each selected statistic, in table order>
//   January,<value>,<value>,...,        (one line for each of the 17 calendar rows)
//
// Each value is written by the pattern "####0.000" (at least one integer digit, three
// decimals, ties to even, no thousands grouping) and followed by a comma, so every table
// line ends in a comma and the header has one field fewer. The comma that closes the
// value pattern "####0.000," is this separator: grouping thousands would put commas
// inside the numbers and break the columns that the compare screen reads back. A
// statistic that cannot be computed shows the missing value code ("-999.000").
//
// With the ensemble mean of several members a blank line, "Standard Deviations of
// Results" and a second table of the same form follow. A delta run then adds, after a
// blank line, "DELTA STATISTICS for <file name> (percentage difference)" (or "(absolute
// difference)") and for each of Periods A, B and C a blank line, "Period A: <start> to
// <end>" and a table of the changes; then the t tests: a blank line, "T Test Results",
// "Period,Period A,Period B,Period C" and a line per calendar row with the three T values
// by "####0.000" each followed by a comma; then a blank line, "Degrees of Freedom for T
// Test", the same header and the degrees of freedom by "######" (rounded to a whole
// number, nothing written for 0) each followed by a comma.
//
// The run's results are first made into results tables (`resultTables`), which the file,
// the desktop's tabs, the printed tables and JSON all show.
#pragma once

#include "core/results_table.hpp"
#include "statistics/analysis_run.hpp"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varo::statistics {

// How the file writes a value, and a degree of freedom.
inline constexpr std::string_view ValuePattern = "####0.000";
inline constexpr std::string_view DegreesPattern = "######";
// A t value above this is picked out in its table.
inline constexpr double TTestCritical = 1.96;

struct ReportLabels {
    std::string fileName; // as shown after "SUMMARY STATISTICS FOR: "
    std::string startDate;
    std::string endDate;
    std::string members;                  // "3", or "ALL"
    std::vector<int> columns;             // the selected statistics, in table order
    std::vector<std::string> columnNames; // their names
    std::array<std::string, CalendarRowCount + 1> rowNames; // 1 "January" .. 17 "Annual"
    int deltaKind = PercentageDelta;
    std::array<std::string, 3> periodStart; // Periods A, B and C
    std::array<std::string, 3> periodEnd;
};

// The tables of a run, each row a calendar row by its name, missing cells where a value is
// the missing value code (shown as the code, as the file writes it).
struct ResultsTables {
    core::ResultsTable statistics;                // the selected statistics
    std::optional<core::ResultsTable> deviations; // with the ensemble mean
    struct Delta {
        std::array<core::ResultsTable, 3> periods; // the changes of Periods A, B and C
        core::ResultsTable tTest;                  // of the mean; values above 1.96 picked out
        core::ResultsTable degrees;                // its degrees of freedom
    };
    std::optional<Delta> delta;

    // The tables in the file's order under the short names a tab shows: "Statistics",
    // "Standard deviations", "Period A", "Period B", "Period C", "T test", "Degrees of
    // freedom".
    std::vector<core::NamedTable> named() const;
};

ResultsTables resultTables(const ReportLabels& labels, const AnalysisResults& results,
                           double missingCode);

std::string resultsText(const ReportLabels& labels, const ResultsTables& tables);

// Writes the text to the path. A write that fails removes what it had written, so that no
// half-written results file is left looking complete; failures are core::Failure.
void writeResultsFile(const std::string& path, const std::string& text);

} // namespace varo::statistics
