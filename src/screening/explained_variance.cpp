#include "screening/explained_variance.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/record_calendar.hpp"
#include "screening/correlation.hpp"

#include <cmath>

namespace varo::screening {

namespace {

constexpr double PerfectT = 10001.0;
constexpr const char* MonthHeadings[12] = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                           "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

// The rows of each month, for each series, in single precision.
class MonthRows {
public:
    MonthRows(size_t series, long capacity)
        : capacity_(capacity), rows_(series, std::array<std::vector<float>, 12>{}) {}

    void append(int month, const std::vector<double>& values) {
        for (size_t s = 0; s < rows_.size(); ++s) {
            std::vector<float>& column = rows_[s][static_cast<size_t>(month - 1)];
            if (static_cast<long>(column.size()) == capacity_) {
                throw core::Failure(core::failure::FileTooLarge,
                                    "The rows of month " + std::to_string(month) + " outgrow the " +
                                        std::to_string(capacity_) +
                                        " rows set aside for a month of this analysis period.");
            }
            column.push_back(static_cast<float>(values[s]));
        }
    }

    const std::vector<float>& at(size_t series, size_t monthIndex) const {
        return rows_[series][monthIndex];
    }
    std::vector<float>& at(size_t series, size_t monthIndex) { return rows_[series][monthIndex]; }

private:
    long capacity_;
    std::vector<std::array<std::vector<float>, 12>> rows_;
};

struct PairSums {
    long missing = 0;
    double sumX = 0.0;
    double sumX2 = 0.0;
    double sumXY = 0.0;
    double sumY = 0.0;
    double sumY2 = 0.0;

    void add(double x, double y, double missingCode) {
        if (x == missingCode || y == missingCode) {
            ++missing;
            return;
        }
        sumX += x;
        sumX2 += x * x;
        sumXY += x * y;
        sumY += y;
        sumY2 += y * y;
    }
};

void markBest(ExplainedVariance& result) {
    for (size_t month = 0; month < 12; ++month) {
        size_t best = 0;
        for (size_t i = 1; i < result.cells.size(); ++i) {
            if (result.cells[i][month].rSquared > result.cells[best][month].rSquared) {
                best = i;
            }
        }
        if (!result.cells.empty()) {
            result.cells[best][month].best = true;
        }
    }
}

} // namespace

VarianceCell varianceCell(long rows, long missing, double sumX, double sumX2, double sumXY,
                          double sumY, double sumY2, float pi) {
    VarianceCell cell;
    cell.missing = missing;
    cell.n = rows - missing;
    const double n = static_cast<double>(cell.n);
    const double a = n * sumX2 - sumX * sumX;
    if (a > 0) {
        const double b = n * sumY2 - sumY * sumY;
        if (b > 0) {
            cell.r = (n * sumXY - sumX * sumY) / (std::sqrt(a) * std::sqrt(b));
            cell.rSquared = cell.r * cell.r;
        }
    }
    // Fewer than two pairs leave nothing to test (the expression would divide by zero).
    if (cell.n < 2) {
        return cell;
    }
    cell.t =
        cell.rSquared > 0.999 ? PerfectT : std::sqrt(n - 2) * cell.r / std::sqrt(1 - cell.rSquared);
    cell.p = screeningProbability(cell.t, cell.n, pi);
    return cell;
}

ExplainedVariance explainVariance(const ScreeningRequest& request, const core::ProgramState& state,
                                  core::Progress& progress) {
    series::DailyFiles files = screeningFiles(request, state);
    const size_t seriesCount = files.fileCount();
    const double missingCode = state.globalMissingCode;
    ExplainedVariance result;
    result.predictandName = core::bareFileName(request.predictandPath);
    for (const std::string& path : request.predictorPaths) {
        result.names.push_back(core::bareFileName(path));
    }

    files.skipToStart(progress);
    const long days = core::daysInclusive(request.fitStart, request.fitEnd);
    result.rowsPerMonth =
        static_cast<long>(core::roundHalfEven(static_cast<double>(days) / 12)) + 200;
    MonthRows rows(seriesCount, result.rowsPerMonth);
    const std::vector<double> separator(seriesCount, missingCode);
    long day = 0;
    while (files.inPeriod()) {
        progress.report(day++, days, "Reading Data");
        progress.throwIfStopped();
        const int month = files.position().month();
        rows.append(month, files.readDay());
        if (files.position().month() != month) {
            rows.append(month, separator);
            result.separators += static_cast<long>(seriesCount);
        }
    }

    if (request.conditional) {
        for (size_t m = 0; m < 12; ++m) {
            for (float& y : rows.at(0, m)) {
                if (static_cast<double>(y) != missingCode) {
                    y = y > state.thresh ? 1.0f : 0.0f;
                }
            }
        }
    }

    const float pi = state.piSingle;
    for (size_t s = 1; s < seriesCount; ++s) {
        std::array<VarianceCell, 12> cells;
        for (size_t m = 0; m < 12; ++m) {
            const std::vector<float>& y = rows.at(0, m);
            const std::vector<float>& x = rows.at(s, m);
            PairSums sums;
            for (size_t row = 0; row < y.size(); ++row) {
                sums.add(x[row], y[row], missingCode);
            }
            result.totalMissing += sums.missing;
            cells[m] = varianceCell(static_cast<long>(y.size()), sums.missing, sums.sumX,
                                    sums.sumX2, sums.sumXY, sums.sumY, sums.sumY2, pi);
        }
        result.cells.push_back(cells);
        progress.report(static_cast<long>(s), static_cast<long>(seriesCount),
                        "Calculating Explained Variance");
        progress.throwIfStopped();
    }

    if (request.autoregression) {
        std::array<VarianceCell, 12> cells;
        for (size_t m = 0; m < 12; ++m) {
            const std::vector<float>& y = rows.at(0, m);
            PairSums sums;
            sums.missing = 1; // the first row has no predecessor
            for (size_t row = 1; row < y.size(); ++row) {
                const long before = sums.missing;
                sums.add(y[row - 1], y[row], missingCode);
                result.totalMissing += sums.missing - before;
            }
            cells[m] = varianceCell(static_cast<long>(y.size()), sums.missing, sums.sumX,
                                    sums.sumX2, sums.sumXY, sums.sumY, sums.sumY2, pi);
        }
        result.names.emplace_back(AutoregressionName);
        result.cells.push_back(cells);
    }
    markBest(result);
    return result;
}

namespace {

core::ResultsTable monthTable(const ExplainedVariance& result, std::string title,
                              std::string pattern = "0.000") {
    core::ResultsTable table;
    table.title = std::move(title);
    table.numberPattern = std::move(pattern);
    table.rowHeading = "Predictor";
    table.columns.assign(std::begin(MonthHeadings), std::end(MonthHeadings));
    table.missingText = "";
    for (const std::string& name : result.names) {
        table.rows.push_back({name, {}});
    }
    return table;
}

} // namespace

core::ResultsTable varianceTable(const ExplainedVariance& result, float sigLevel) {
    core::ResultsTable table = monthTable(result, "Explained variance (R squared)");
    for (size_t i = 0; i < result.names.size(); ++i) {
        for (const VarianceCell& cell : result.cells[i]) {
            table.rows[i].cells.push_back({isSignificant(cell, sigLevel)
                                               ? std::optional<double>(cell.rSquared)
                                               : std::nullopt,
                                           cell.best});
        }
    }
    return table;
}

core::ResultsTable varianceStatisticTable(const ExplainedVariance& result,
                                          std::string_view statistic) {
    core::ResultsTable table =
        monthTable(result, std::string(statistic), statistic == "n" ? "0" : "0.000");
    for (size_t i = 0; i < result.names.size(); ++i) {
        for (const VarianceCell& cell : result.cells[i]) {
            const double value = statistic == "n"   ? static_cast<double>(cell.n)
                                 : statistic == "r" ? cell.r
                                 : statistic == "t" ? cell.t
                                 : statistic == "p" ? cell.p
                                                    : cell.rSquared;
            table.rows[i].cells.push_back({value, false});
        }
    }
    return table;
}

ReportText varianceReport(const ExplainedVariance& result, const core::ResultsTable& table,
                          const VarianceHeading& heading) {
    const core::NumberFormat grouped("0.000,");
    TabbedText text;
    text.line("   RESULTS: EXPLAINED VARIANCE");
    text.line("   Analysis Period: " + heading.fitStart + " - " + heading.fitEnd);
    text.line("   Significance level: " + heading.sigLevelText);
    text.line("   Total missing values: " + std::to_string(result.reportedMissing()));
    text.line("   Predictand: " + result.predictandName);
    text.print("   Predictors:");
    for (int m = 1; m <= 12; ++m) {
        text.tab(8 * m + 16);
        text.print(table.columns[static_cast<size_t>(m - 1)]);
    }
    text.endLine();
    for (const auto& row : table.rows) {
        text.print("   " + row.label);
        for (int m = 1; m <= 12; ++m) {
            const auto& cell = row.cells[static_cast<size_t>(m - 1)];
            if (!cell.value) {
                continue;
            }
            text.tab(8 * m + 16);
            if (cell.highlighted) {
                text.printMarked(grouped.format(*cell.value));
                text.print("*");
            } else {
                text.print(grouped.format(*cell.value));
            }
        }
        text.endLine();
    }
    return text.finish();
}

} // namespace varo::screening
