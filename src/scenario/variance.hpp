// The variance treatment: each member's variance multiplied by a factor while its mean
// stays where it was.
//
// An unconditional series is stretched about its mean by the square root of the factor.
// For a conditional series the wet values are first made nearly normal by a Box-Cox
// transformation, whose exponent lamda is searched for on three ever finer grids as the one
// that brings Hinkley's skewness score (mean - median) / interquartile range closest to 0.
// The transformed values are then stretched about their mean by an inflation factor found
// by ten bisection steps, so that after the inverse transformation the variance of the wet
// values stands to the member's variance before the treatments as the factor asks, and are
// transformed back. Dry days stay as they are.
#pragma once

#include "core/progress.hpp"
#include "scenario/scenario_data.hpp"
#include "scenario/series_scope.hpp"

#include <optional>
#include <string_view>
#include <vector>

namespace varo::scenario {

inline constexpr std::string_view VarianceCaption = "Applying Variance";
inline constexpr std::string_view LamdaCaption = "Calculating Lamda for Transform";
inline constexpr std::string_view InflationCaption = "Calculating Appropriate Inflation Factor";
inline constexpr std::string_view LamdaFailureMessage =
    "Sorry an error has occurred calculating the optimum lamda transform.";
inline constexpr std::string_view VarianceFailureMessage =
    "Sorry an error has occurred applying the variance treatment.";

// Mean and standard deviation (divisor n) of the values a member's scope treats, both the
// missing value code when there are none.
struct MemberStatistics {
    double mean = 0.0;
    double sd = 0.0;
};

std::vector<MemberStatistics> memberStatistics(const ScenarioData& data, const SeriesScope& scope);

// The best lamda of the grid from, from + step, ... while not past `to` (the grid is summed
// step by step, so its end is reached only when the sums reach it), scored on the member's
// wet values other than 0; nothing when fewer than 11 such values exist or no lamda has a
// spread. A lamda of exactly 0 is the logarithm. A wet value below 0 fails with 5, as no
// power of it exists; a power beyond the range of doubles fails with 6. `member` (from 1)
// names the member in a failure.
std::optional<double> searchLamda(const std::vector<double>& values, const SeriesScope& scope,
                                  double from, double to, double step, int member = 1);

// The three searches: -2 to 2 by 0.25, then the best +- 0.25 by 0.05, then the best +- 0.1
// by 0.01. Stops the run with `LamdaFailureMessage` when a search finds nothing.
double optimumLamda(const std::vector<double>& values, const SeriesScope& scope, int member = 1);

// The inflation factor of a conditional member and what it gives.
struct InflationResult {
    double lamda = 0.0;
    double transformedMean = 0.0;
    double factor = 1.0;
};

// Applies the treatment to every member under "Applying Variance", with `statistics` taken
// after the occurrence treatment and before the amount treatment. Answers the lamda of the
// last member for a conditional series, nothing for an unconditional one. Stops the run
// with `LamdaFailureMessage` or `VarianceFailureMessage` when a member cannot be treated,
// fails with 5 when a value has no transformation or none back (a negative factor of an
// unconditional series, a transformed value whose power has no result). Throws
// `core::Cancelled` on a stop between members. `inflations`, when given, receives each
// conditional member's inflation.
std::optional<double> applyVariance(ScenarioData& data, float varianceFactor,
                                    const std::vector<MemberStatistics>& statistics,
                                    const SeriesScope& scope, core::Progress& progress,
                                    std::vector<InflationResult>* inflations = nullptr);

} // namespace varo::scenario
