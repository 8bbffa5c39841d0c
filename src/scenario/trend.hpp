// The trend treatments: a change that grows with the day number, added to every value of an
// unconditional series or taken as a percentage of each wet value of a conditional one.
//
// With n days and day number i from 1 (missing days counted but left as they are):
// linear, a change per year of `size` spread over the days of a year (365.25 for the
// calendar year); exponential, exp(i / b) - 1 with b = n / ln(|size| + 1), so that the
// change reaches |size| on the last day, rising or falling by the sign of `size`; logistic,
// size / (1 + exp(-x)) with x running from -6 on the first day to 6 on the last.
#pragma once

#include "core/progress.hpp"
#include "scenario/scenario_data.hpp"
#include "scenario/series_scope.hpp"

#include <string_view>

namespace varo::scenario {

inline constexpr std::string_view TrendCaption = "Applying Trend";

enum class TrendKind { Linear, Exponential, Logistic };

struct TrendTreatment {
    TrendKind kind = TrendKind::Linear;
    double size = 0.0; // per year (linear), at the end of the series (exponential, logistic)
};

// Applies the trend under "Applying Trend", testing for a stop once a member: an
// unconditional series gets value + change, a conditional one value * (1 + change / 100) on
// its wet values (a falling exponential value - change and value * (1 - change / 100)).
// `yearIndicator` is 366, 365 or 360. A logistic trend of a series of one day fails with 11
// (division by zero).
void applyTrend(ScenarioData& data, const TrendTreatment& trend, int yearIndicator,
                const SeriesScope& scope, core::Progress& progress);

} // namespace varo::scenario
