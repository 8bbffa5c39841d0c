// A summary statistics run from a data file to its results: one analysis period, or a
// base period and three later periods with the changes against the base and the t tests.
//
// Each period is read afresh from the file, its statistics computed pass by pass for every
// member the report needs (passes outermost, so that the progress captions follow the
// order of the passes), and the ensemble reduced to one figure per statistic and row.
#pragma once

#include "core/dates.hpp"
#include "core/progress.hpp"
#include "series/period_reader.hpp"
#include "statistics/delta_statistics.hpp"
#include "statistics/ensemble.hpp"
#include "statistics/statistics_engine.hpp"

#include <array>
#include <optional>

namespace varo::statistics {

struct AnalysisRequest {
    series::DataSource source;
    EngineSettings settings;
    EnsembleChoice ensemble;
    core::Date start; // the analysis period, or the base period of a delta run
    core::Date end;
    bool deltas = false;
    std::array<core::Date, 3> periodStart{}; // Periods A, B and C
    std::array<core::Date, 3> periodEnd{};
    int deltaKind = PercentageDelta;
};

struct DeltaResults {
    std::array<ResultTable, 3> deltas{};
    std::array<std::array<TTest, CalendarRowCount + 1>, 3> tests{};
};

struct AnalysisResults {
    PeriodResults base;
    std::optional<DeltaResults> delta;
};

// The statistics of one period. With one member nothing is reduced; with several, either
// the chosen member's table or the mean and standard deviation over all members. The
// `Sum` of every row is divided by the largest block count over all members of the file,
// the chosen one or not. Throws `core::Failure` for file errors and `core::Cancelled`.
PeriodResults analysePeriod(const series::DataSource& source, const core::Date& start,
                            const core::Date& end, const EngineSettings& settings,
                            const EnsembleChoice& ensemble, core::Progress& progress);

// The whole run. A delta run computes the moments whatever is flagged, as the t tests
// need the variance.
AnalysisResults runAnalysis(const AnalysisRequest& request, core::Progress& progress);

} // namespace varo::statistics
