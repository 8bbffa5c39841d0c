// The points of a scatter analysis: one predictor, or the predictand's previous day,
// against the predictand, day by day over the fit period and the chosen period of the
// year. The chart that draws them belongs to the charts; this is what it is handed.
#pragma once

#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "screening/screening_data.hpp"

#include <string>
#include <vector>

namespace varo::screening {

// The most points a scatter chart is given: over 1,300 years of daily data, drawn in about
// a second. More would make every redraw of the chart screen a long wait.
inline constexpr long MaxScatterPoints = 500000;

struct ScatterPoint {
    double x = 0.0; // the predictor (column 1 of the grid)
    double y = 0.0; // the predictand (column 2)
    friend bool operator==(const ScatterPoint&, const ScatterPoint&) = default;
};

struct ScatterData {
    std::vector<ScatterPoint> points;
    long missingCount = 0;
    std::string xTitle; // the predictor's name, or "Autoregression"
    std::string yTitle; // the predictand's file name
    std::string title;  // "N missing value(s): predictand"
    long progressDays = 0;
};

// Reads the predictand and the one predictor of `request` (its first), or with
// `request.autoregression` the predictand alone, pairing each day with the day before
// (the first day of the fit period only gives the first predecessor). Days outside the
// period filter are read and dropped; a day with a missing value counts as missing; under
// the conditional process only days whose predictand is an event become points. Throws
// `core::RunStopped` "Could not find selected file.  Please retry." when a file cannot be
// opened, `core::Failure` (62 for a short file, 6 past `MaxScatterPoints` points) and
// `core::Cancelled`.
ScatterData scatterData(const ScreeningRequest& request, const core::ProgramState& state,
                        core::Progress& progress);

} // namespace varo::screening
