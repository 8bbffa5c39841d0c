// The calibration report: the heading lines and the tables of fit statistics by month, as
// results tables (which the desktop and JSON show) and as a page of text.
//
// The first table ("Unconditional Statistics", for the main or occurrence model) has the
// columns Month, RSquared, SE, then D-Watson (unconditional) or Prop Correct
// (conditional), then Chow when the Chow test was asked for. A conditional model adds the
// table "Conditional Statistics" of its amount model: Month, RSquared, SE (and Chow).
// Values are formatted " #0.0000"; a missing value reads "N/A    " in the first table and
// "N/A     " in the second. A last row "Mean" averages the months that are not missing. A
// Chow value above its critical value (by the days and predictors of its fit) is picked
// out. Cross-validation results, when there are any, add columns under the column group
// "Cross Validation Results".
//
// After the report come the fitted coefficients as results tables, one row a month, season
// or the year, with the numbers as the parameter file holds them, and what a stepwise
// search chose.
#pragma once

#include "calibration/calibrate_driver.hpp"
#include "core/program_state.hpp"
#include "core/results_table.hpp"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace varo::calibration {

// The critical value of the Chow statistic for a fit of n days on k predictors.
double chowCriticalValue(int days, int predictors);

struct CalibrationReport {
    std::vector<std::string> headingLines;
    std::vector<core::ResultsTable> tables; // the main model's, then the amounts'
    bool anyAboveCritical = false;
};

struct ReportOptions {
    bool conditional = false;
    bool autoregression = false;
    bool includeChow = false;
    std::optional<CrossValidationTable> crossValidation;
};

CalibrationReport buildReport(const core::ProgramState& state, const CalibrationResults& results,
                              const ReportOptions& options);

// The report as lines of text with columns 14 characters wide; a picked-out Chow value is
// followed by "*" and a note under the tables says what the mark means.
std::string reportText(const CalibrationReport& report);

// The residual histogram of B bars (5 to 100) for the chart: the range of the residuals cut
// into B equal steps, each bar labelled "####0.000" with its lower edge (the last with the
// maximum). A residual counts in a bar when it is at or above the lower edge and below the
// upper edge, so the largest residual itself may fall in no bar.
struct ResidualHistogram {
    std::vector<std::string> labels;
    std::vector<int> counts;
    double minimum = 0.0;
    double maximum = 0.0;
};

ResidualHistogram residualHistogram(const std::vector<ResidualPair>& pairs, int bars);

// The fitted coefficients by the model's groups (months, seasons or the year): columns
// "Constant", the predictors by name and "Autoregression" for the lag term. A conditional
// model has a second table of its amount model, with the transformation's own parameters
// (mean ratio, or lamda and shift) when it has them.
std::vector<core::ResultsTable> coefficientTables(const core::ProgramState& state,
                                                  const CalibrationResults& results);

// Two lines on a stepwise search: the criterion, how many subsets of which candidates it
// tried, and what it kept.
std::vector<std::string> stepwiseLines(const StepwiseChoice& choice);

inline constexpr const char* AboveCriticalNote = "* Chow statistic above its critical value.";

} // namespace varo::calibration
