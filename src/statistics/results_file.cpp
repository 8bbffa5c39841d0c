#include "statistics/results_file.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/series_file.hpp"

namespace varo::statistics {

namespace {

constexpr std::string_view LineEnd = "\r\n";
constexpr std::array<const char*, 3> PeriodNames = {"Period A", "Period B", "Period C"};

void appendLine(std::string& out, std::string_view text) {
    out += text;
    out += LineEnd;
}

// The heading and the rows, each value followed by a comma.
void appendTable(std::string& out, const core::ResultsTable& table) {
    out += table.rowHeading;
    for (const std::string& name : table.columns) {
        out += ',';
        out += name;
    }
    out += LineEnd;
    for (const auto& row : table.rows) {
        out += row.label;
        out += ',';
        for (const auto& cell : row.cells) {
            out += table.cellText(cell);
            out += ',';
        }
        out += LineEnd;
    }
}

void appendTitledTable(std::string& out, std::string_view title, const core::ResultsTable& table) {
    out += LineEnd;
    appendLine(out, title);
    appendTable(out, table);
}

core::ResultsTable emptyTable(std::string title, std::string rowHeading, std::string_view pattern,
                              double missingCode) {
    core::ResultsTable table;
    table.title = std::move(title);
    table.rowHeading = std::move(rowHeading);
    table.numberPattern = std::string(pattern);
    // A missing cell reads as the file writes it: the missing value code.
    table.missingText = core::formatPattern(missingCode, pattern);
    return table;
}

core::ResultsTable statisticsTable(std::string title, const ReportLabels& labels,
                                   const ResultTable& values, double missingCode) {
    core::ResultsTable table = emptyTable(std::move(title), "Month", ValuePattern, missingCode);
    table.columns = labels.columnNames;
    for (int row = 1; row <= CalendarRowCount; ++row) {
        std::vector<double> cells;
        for (const int c : labels.columns) {
            cells.push_back(values[row][c]);
        }
        table.addRow(labels.rowNames[row], cells, missingCode);
    }
    return table;
}

core::ResultsTable testsTable(std::string title, const ReportLabels& labels,
                              const DeltaResults& delta, bool degrees, double missingCode) {
    core::ResultsTable table = emptyTable(std::move(title), "Period",
                                          degrees ? DegreesPattern : ValuePattern, missingCode);
    table.columns.assign(PeriodNames.begin(), PeriodNames.end());
    for (int row = 1; row <= CalendarRowCount; ++row) {
        std::vector<double> cells;
        for (const auto& tests : delta.tests) {
            cells.push_back(degrees ? tests[row].degreesOfFreedom : tests[row].t);
        }
        auto& added = table.addRow(labels.rowNames[row], cells, missingCode);
        for (auto& cell : added.cells) {
            cell.highlighted = !degrees && cell.value && *cell.value > TTestCritical;
        }
    }
    return table;
}

std::string periodLine(const ReportLabels& labels, size_t p) {
    return std::string(PeriodNames[p]) + ": " + labels.periodStart[p] + " to " +
           labels.periodEnd[p];
}

std::string deltaKindText(const ReportLabels& labels) {
    return labels.deltaKind == AbsoluteDelta ? "absolute difference" : "percentage difference";
}

} // namespace

ResultsTables resultTables(const ReportLabels& labels, const AnalysisResults& results,
                           double missingCode) {
    ResultsTables tables;
    const std::string members =
        labels.members == "ALL" ? "ensemble mean" : "member " + labels.members;
    tables.statistics =
        statisticsTable("Summary statistics of " + labels.fileName + ", " + labels.startDate +
                            " to " + labels.endDate + ", " + members,
                        labels, results.base.values, missingCode);
    if (results.base.deviations) {
        tables.deviations = statisticsTable("Standard Deviations of Results", labels,
                                            *results.base.deviations, missingCode);
    }
    if (!results.delta) {
        return tables;
    }
    ResultsTables::Delta& delta = tables.delta.emplace();
    for (size_t p = 0; p < PeriodNames.size(); ++p) {
        delta.periods[p] = statisticsTable(periodLine(labels, p) + ", " + deltaKindText(labels),
                                           labels, results.delta->deltas[p], missingCode);
    }
    delta.tTest = testsTable("T Test Results", labels, *results.delta, false, missingCode);
    delta.degrees =
        testsTable("Degrees of Freedom for T Test", labels, *results.delta, true, missingCode);
    return tables;
}

std::vector<core::NamedTable> ResultsTables::named() const {
    std::vector<core::NamedTable> all{{"Statistics", statistics}};
    if (deviations) {
        all.push_back({"Standard deviations", *deviations});
    }
    if (delta) {
        for (size_t p = 0; p < PeriodNames.size(); ++p) {
            all.push_back({PeriodNames[p], delta->periods[p]});
        }
        all.push_back({"T test", delta->tTest});
        all.push_back({"Degrees of freedom", delta->degrees});
    }
    return all;
}

std::string resultsText(const ReportLabels& labels, const ResultsTables& tables) {
    std::string out;
    appendLine(out, "SUMMARY STATISTICS FOR: " + labels.fileName);
    appendLine(out, "Analysis Start Date: " + labels.startDate);
    appendLine(out, "Analysis End Date: " + labels.endDate);
    appendLine(out, "Ensemble Member(s): " + labels.members);
    appendTable(out, tables.statistics);
    if (tables.deviations) {
        appendTitledTable(out, "Standard Deviations of Results", *tables.deviations);
    }
    if (!tables.delta) {
        return out;
    }
    out += LineEnd;
    appendLine(out, "DELTA STATISTICS for " + labels.fileName + " (" + deltaKindText(labels) + ")");
    for (size_t p = 0; p < PeriodNames.size(); ++p) {
        appendTitledTable(out, periodLine(labels, p), tables.delta->periods[p]);
    }
    appendTitledTable(out, "T Test Results", tables.delta->tTest);
    appendTitledTable(out, "Degrees of Freedom for T Test", tables.delta->degrees);
    return out;
}

void writeResultsFile(const std::string& path, const std::string& text) {
    core::writeTextFile(path, text);
}

} // namespace varo::statistics
