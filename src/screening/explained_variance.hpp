// Explained variance by month: for each calendar month and each candidate predictor on its
// own, the share r squared of the predictand's variance that the predictor explains, with
// t and the screening's P value, and the best predictor of each month.
//
// Every day of the fit period goes to the rows of its month, stored in single precision.
// When the month changes, a row of missing values closes the month just left, so that a
// lag never reaches back across the eleven months between two of a month's stretches.
// Under the conditional process the predictand becomes 1 above the threshold and 0
// otherwise, so that occurrence rather than amount is explained.
#pragma once

#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "core/results_table.hpp"
#include "screening/report_text.hpp"
#include "screening/screening_data.hpp"

#include <array>
#include <string>
#include <vector>

namespace varo::screening {

struct VarianceCell {
    long n = 0;
    long missing = 0;
    double r = 0.0;
    double rSquared = 0.0;
    double t = 0.0;
    double p = 1.0;
    bool best = false;
};

struct ExplainedVariance {
    std::string predictandName;
    std::vector<std::string> names;                  // predictors, then "Autoregression"
    std::vector<std::array<VarianceCell, 12>> cells; // [predictor][month - 1]
    long totalMissing = 0;
    long separators = 0;
    long rowsPerMonth = 0;

    // What the report shows as the total of missing values.
    long reportedMissing() const { return totalMissing - separators; }
};

// The statistics of one month's pairs, y the predictand: sums of x, x^2, x y, y and y^2
// over the rows where neither is missing; `missing` counts the others.
VarianceCell varianceCell(long rows, long missing, double sumX, double sumX2, double sumXY,
                          double sumY, double sumY2, float pi);

// Reads the fit period ("Reading Data"), then works out every predictor and month
// ("Calculating Explained Variance"). The period filter plays no part. Throws
// `core::Failure` (file failures, 62 when a file is shorter than the period, 9 when a
// month outgrows its rows, days / 12 + 200) and `core::Cancelled`.
ExplainedVariance explainVariance(const ScreeningRequest& request, const core::ProgramState& state,
                                  core::Progress& progress);

// True when P, rounded to single precision, is at or below the level.
inline bool isSignificant(const VarianceCell& cell, float level) {
    return static_cast<float>(cell.p) <= level;
}

struct VarianceHeading {
    std::string fitStart; // as typed
    std::string fitEnd;
    std::string sigLevelText;
};

// The report's table: a row a predictor, a column a month ("JAN" to "DEC"), r squared in
// the months significant at the level and missing (blank) elsewhere, the best predictor of
// a month picked out.
core::ResultsTable varianceTable(const ExplainedVariance& result, float sigLevel);

// One statistic of every predictor and month, significant or not: "n", "r", "rSquared",
// "t" or "p" (each also the table's title).
core::ResultsTable varianceStatisticTable(const ExplainedVariance& result,
                                          std::string_view statistic);
inline constexpr std::string_view VarianceStatistics[] = {"n", "r", "rSquared", "t", "p"};

// The report of the table in its character columns; r squared by "0.000,", and the best
// predictor of a month marked and followed by '*'.
ReportText varianceReport(const ExplainedVariance& result, const core::ResultsTable& table,
                          const VarianceHeading& heading);

} // namespace varo::screening
