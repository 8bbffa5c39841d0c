// The rows of a predictor screening: the predictand and the candidate predictors read side
// by side, one value from each file a day, over the fit period and the chosen period of the
// year, under the conditional or unconditional process.
//
// Under the conditional process a row takes part only when its predictand is an event
// (above the threshold after rounding to single precision); under the unconditional process
// every row without a missing value takes part. The count of rows taking part is
// total - missingRows - thresholdRows, so a row with a missing predictor and a predictand
// at or below the threshold is subtracted twice; the correlation keeps that count.
#pragma once

#include "core/dates.hpp"
#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "series/daily_files.hpp"

#include <string>
#include <vector>

namespace varo::screening {

// Rows a screening holds, and series (the predictand, predictors and the autoregression).
inline constexpr long MaxRows = 52000;
inline constexpr int MaxSeries = 21;
inline constexpr int MaxCorrelationPredictors = 12;
inline constexpr std::string_view AutoregressionName = "Autoregression";

struct ScreeningRequest {
    std::string predictandPath;
    std::vector<std::string> predictorPaths; // in list order
    core::Date fitStart;
    core::Date fitEnd;
    int period = 0; // period filter: 0 annual, 1 to 4 seasons, 5 to 16 January to December
    bool conditional = false;
    bool autoregression = false;
};

// The predictand (file 1) and the predictors of a screening, walked together through the
// record of the settings over the fit period. Fails with 9 past 21 series (the
// autoregression counts) and with the failures of opening a file.
series::DailyFiles screeningFiles(const ScreeningRequest& request, const core::ProgramState& state);

struct ScreeningData {
    std::vector<std::string> names;          // the files' bare names, then "Autoregression"
    std::vector<std::vector<double>> series; // [series][row], series 0 the predictand
    std::vector<double> sums;                // over the rows taking part (see above)
    long total = 0;
    long missingValues = 0;
    long missingRows = 0;
    long thresholdRows = 0;

    long n() const { return total - missingRows - thresholdRows; }
    size_t seriesCount() const { return series.size(); }
};

// Reads the rows of the fit period that pass the period filter, under the caption
// "Calculating Correlation Statistics" (days of other months are read and dropped and
// leave no row). With `autoregression` a last series holds the predictand of the row
// before (0 on the first row); its sum is the predictand's, less the last row's value
// under the conditional process when that value is an event. Throws `core::Failure`
// (file failures, 62 when a file is shorter than the period, 9 past 52000 rows or 21
// series) and `core::Cancelled`.
ScreeningData assembleScreeningData(const ScreeningRequest& request,
                                    const core::ProgramState& state, core::Progress& progress);

// True when the value, rounded to single precision, is strictly above the threshold.
inline bool isEvent(double value, float thresh) {
    return static_cast<float>(value) > thresh;
}

} // namespace varo::screening
