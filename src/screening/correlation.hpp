// The correlation matrix of predictand and predictors, the partial correlation of each
// predictor with the predictand given all the others, and the screening's P value.
//
// Means divide the sums of the assembled data by its count N (which keeps the double
// subtraction of the assembly); deviations run over the rows that take part. The partial
// correlation is the recursive first-order formula applied control by control. The P value
// is the system's own expression (1 + t^2 / N) ^ (-(N + 1) / 2) / sqrt(pi N) * sqrt(N) with
// pi in single precision; it is kept as it stands.
#pragma once

#include "core/program_state.hpp"
#include "core/results_table.hpp"
#include "screening/report_text.hpp"
#include "screening/screening_data.hpp"

#include <optional>
#include <string>
#include <vector>

namespace varo::screening {

using CorrelationMatrix = std::vector<std::vector<double>>;

struct CorrelationResult {
    long n = 0;
    std::vector<double> mean;
    std::vector<double> sd;
    CorrelationMatrix r;
    // Per predictor (series 1 on), with three series or more; empty otherwise.
    std::vector<double> partial;
    std::vector<double> pValue;
};

// Throws `core::Failure` 11 when fewer than 2 rows count or a series does not vary over
// the rows taking part, so that no correlation can be divided out.
CorrelationResult correlate(const ScreeningData& data, bool conditional,
                            const core::ProgramState& state);

// Partial(a, b, controls, m): the correlation of series a and b given the first m
// controls; -1 when the denominator is not positive.
double partialCorrelation(const CorrelationMatrix& r, int a, int b,
                          const std::vector<int>& controls, int m);

// The P expression for a t value on N rows, with pi in single precision.
double screeningProbability(double t, long n, float pi);
// The P value of a partial correlation p: 1 when |p| >= 0.999, else the expression at
// t = sqrt(N - 2) * p / sqrt(1 - p^2).
double partialPValue(double p, long n, float pi);

struct ReportHeading {
    std::string fitStart; // as typed
    std::string fitEnd;
    std::string periodName; // "Annual", "Winter", ... "January", ...
};

// The results as tables: the correlation matrix (a row and a column a series, the
// predictand first) and, with three series or more, the partial correlations with the
// predictand ("Partial r" and "P value" of each predictor).
struct CorrelationTables {
    core::ResultsTable matrix;
    std::optional<core::ResultsTable> partials;
};
CorrelationTables correlationTables(const ScreeningData& data, const CorrelationResult& result);

// The report of the tables in its character columns.
ReportText correlationReport(const ScreeningData& data, const CorrelationTables& tables,
                             const ReportHeading& heading, bool conditional);

} // namespace varo::screening
