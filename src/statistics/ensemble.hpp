// Reducing the results of an ensemble to the figures a report shows.
#pragma once

#include "statistics/statistic_columns.hpp"

#include <optional>
#include <vector>

namespace varo::statistics {

// Which member a run reports: one member (1-based), or the mean over all members.
struct EnsembleChoice {
    bool mean = false;
    int member = 1;
};

// What a run reports for one period: the first member's place after the reduction, and
// with the ensemble mean of several members the second member's place, the standard
// deviations over the members.
struct PeriodResults {
    ResultTable values{};
    std::optional<ResultTable> deviations;
};

// For each statistic and row, over the tables whose value is not the missing code: the
// mean and the population standard deviation about it; both the missing code when no
// table has a value.
PeriodResults ensembleMean(const std::vector<ResultTable>& tables, double missingCode);

} // namespace varo::statistics
