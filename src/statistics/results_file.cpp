#include "statistics/results_file.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/series_file.hpp"

namespace varo::statistics {

namespace {

constexpr std::string_view LineEnd = "\r\n";
const core::NumberFormat ValueFormat("####0.000");
const core::NumberFormat DegreesFormat("######");

void appendLine(std::string& out, std::string_view text) {
    out += text;
    out += LineEnd;
}

void appendTable(std::string& out, const ReportLabels& labels, const ResultTable& table) {
    out += "Month";
    for (const std::string& name : labels.columnNames) {
        out += ',';
        out += name;
    }
    out += LineEnd;
    for (int row = 1; row <= CalendarRowCount; ++row) {
        out += labels.rowNames[row];
        out += ',';
        for (const int c : labels.columns) {
            ValueFormat.appendTo(out, table[row][c]);
            out += ',';
        }
        out += LineEnd;
    }
}

void appendTests(std::string& out, const ReportLabels& labels, const DeltaResults& delta,
                 std::string_view title, const core::NumberFormat& format, bool degrees) {
    out += LineEnd;
    appendLine(out, title);
    appendLine(out, "Period,Period A,Period B,Period C");
    for (int row = 1; row <= CalendarRowCount; ++row) {
        out += labels.rowNames[row];
        out += ',';
        for (const auto& tests : delta.tests) {
            format.appendTo(out, degrees ? tests[row].degreesOfFreedom : tests[row].t);
            out += ',';
        }
        out += LineEnd;
    }
}

} // namespace

std::string resultsText(const ReportLabels& labels, const AnalysisResults& results) {
    std::string out;
    appendLine(out, "SUMMARY STATISTICS FOR: " + labels.fileName);
    appendLine(out, "Analysis Start Date: " + labels.startDate);
    appendLine(out, "Analysis End Date: " + labels.endDate);
    appendLine(out, "Ensemble Member(s): " + labels.members);
    appendTable(out, labels, results.base.values);
    if (results.base.deviations) {
        out += LineEnd;
        appendLine(out, "Standard Deviations of Results");
        appendTable(out, labels, *results.base.deviations);
    }
    if (!results.delta) {
        return out;
    }
    out += LineEnd;
    appendLine(out, "DELTA STATISTICS for " + labels.fileName +
                        (labels.deltaKind == AbsoluteDelta ? " (absolute difference)"
                                                           : " (percentage difference)"));
    static constexpr const char* PeriodNames[3] = {"Period A", "Period B", "Period C"};
    for (size_t p = 0; p < 3; ++p) {
        out += LineEnd;
        appendLine(out, std::string(PeriodNames[p]) + ": " + labels.periodStart[p] + " to " +
                            labels.periodEnd[p]);
        appendTable(out, labels, results.delta->deltas[p]);
    }
    appendTests(out, labels, *results.delta, "T Test Results", ValueFormat, false);
    appendTests(out, labels, *results.delta, "Degrees of Freedom for T Test", DegreesFormat, true);
    return out;
}

void writeResultsFile(const std::string& path, const std::string& text) {
    core::writeTextFile(path, text);
}

} // namespace varo::statistics
