#include "screening/correlation.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace varo::screening {

namespace {

// Partial correlations of one predictor: each (a, b, m) is worked out once, so that the
// recursion, which branches three ways a level, stays cheap with twelve controls.
class PartialRecursion {
public:
    PartialRecursion(const CorrelationMatrix& r, const std::vector<int>& controls)
        : r_(r), controls_(controls) {}

    double partial(int a, int b, int m) {
        const auto key = std::make_tuple(a, b, m);
        if (const auto found = known_.find(key); found != known_.end()) {
            return found->second;
        }
        double num = 0.0;
        double den = 0.0;
        const int c = controls_[static_cast<size_t>(m - 1)];
        if (m == 1) {
            const double rab = r_[a][b];
            const double rac = r_[a][c];
            const double rbc = r_[b][c];
            num = rab - rac * rbc;
            den = (1 - rbc * rbc) * (1 - rac * rac);
        } else {
            const double pab = partial(a, b, m - 1);
            const double pac = partial(a, c, m - 1);
            const double pbc = partial(b, c, m - 1);
            num = pab - pac * pbc;
            den = (1 - pac * pac) * (1 - pbc * pbc);
        }
        const double result = den <= 0 ? -1.0 : num / std::sqrt(den);
        known_.emplace(key, result);
        return result;
    }

private:
    const CorrelationMatrix& r_;
    const std::vector<int>& controls_;
    std::map<std::tuple<int, int, int>, double> known_;
};

bool takesPart(const ScreeningData& data, size_t row, bool conditional,
               const core::ProgramState& state) {
    for (const auto& values : data.series) {
        if (values[row] == state.globalMissingCode) {
            return false;
        }
    }
    return !conditional || isEvent(data.series[0][row], state.thresh);
}

} // namespace

double partialCorrelation(const CorrelationMatrix& r, int a, int b,
                          const std::vector<int>& controls, int m) {
    return PartialRecursion(r, controls).partial(a, b, m);
}

double screeningProbability(double t, long n, float pi) {
    const double count = static_cast<double>(n);
    return std::pow(1 + t * t / count, -(count + 1) / 2) /
           std::sqrt(static_cast<double>(pi) * count) * std::sqrt(count);
}

double partialPValue(double p, long n, float pi) {
    if (std::fabs(p) >= 0.999) {
        return 1.0;
    }
    const double t = std::sqrt(static_cast<double>(n - 2)) * p / std::sqrt(1 - p * p);
    return screeningProbability(t, n, pi);
}

namespace {

// Which files hold nothing but the missing value code in the period, when any do: that is
// why no row counts.
std::string allMissingNote(const ScreeningData& data, double missing) {
    std::string note;
    for (size_t s = 0; s < std::min(data.names.size(), data.series.size()); ++s) {
        const auto& values = data.series[s];
        if (!values.empty() && std::all_of(values.begin(), values.end(),
                                           [missing](double v) { return v == missing; })) {
            note += " '" + data.names[s] + "' holds only the missing value code " +
                    core::generalText(missing) + " in the analysis period.";
        }
    }
    return note;
}

} // namespace

CorrelationResult correlate(const ScreeningData& data, bool conditional,
                            const core::ProgramState& state) {
    const size_t count = data.seriesCount();
    CorrelationResult result;
    result.n = data.n();
    if (result.n < 2) {
        throw core::Failure(core::failure::DivisionByZero,
                            "Only " + std::to_string(result.n) +
                                " rows of the analysis period count, too few to correlate." +
                                allMissingNote(data, state.globalMissingCode));
    }
    const double n = static_cast<double>(result.n);
    result.mean.resize(count);
    for (size_t i = 0; i < count; ++i) {
        result.mean[i] = data.sums[i] / n;
    }
    std::vector<double> ss(count, 0.0);
    CorrelationMatrix s(count, std::vector<double>(count, 0.0));
    std::vector<double> d(count);
    for (size_t row = 0; row < static_cast<size_t>(data.total); ++row) {
        if (!takesPart(data, row, conditional, state)) {
            continue;
        }
        for (size_t i = 0; i < count; ++i) {
            d[i] = data.series[i][row] - result.mean[i];
            ss[i] += d[i] * d[i];
        }
        for (size_t i = 0; i < count; ++i) {
            for (size_t j = 0; j < count; ++j) {
                s[i][j] += d[i] * d[j];
            }
        }
    }
    result.sd.resize(count);
    for (size_t i = 0; i < count; ++i) {
        result.sd[i] = std::pow(ss[i] / (n - 1), 0.5);
        if (result.sd[i] == 0) {
            throw core::Failure(core::failure::DivisionByZero,
                                "'" + data.names[i] +
                                    "' does not vary over the rows of the analysis period, so "
                                    "its correlations cannot be calculated.");
        }
    }
    result.r.assign(count, std::vector<double>(count, 0.0));
    for (size_t i = 0; i < count; ++i) {
        for (size_t j = 0; j < count; ++j) {
            result.r[i][j] = s[i][j] / ((n - 1) * result.sd[i] * result.sd[j]);
        }
    }
    if (count >= 3) {
        const int m = static_cast<int>(count) - 2;
        for (size_t i = 1; i < count; ++i) {
            std::vector<int> controls;
            for (size_t k = 1; k < count; ++k) {
                if (k != i) {
                    controls.push_back(static_cast<int>(k));
                }
            }
            const double p = partialCorrelation(result.r, 0, static_cast<int>(i), controls, m);
            result.partial.push_back(p);
            result.pValue.push_back(partialPValue(p, result.n, state.piSingle));
        }
    }
    return result;
}

CorrelationTables correlationTables(const ScreeningData& data, const CorrelationResult& result) {
    CorrelationTables tables;
    core::ResultsTable& matrix = tables.matrix;
    matrix.title = "Correlation matrix";
    matrix.rowHeading = "Series";
    matrix.columns = data.names;
    for (size_t i = 0; i < data.names.size(); ++i) {
        matrix.rows.push_back({data.names[i], {}});
        for (const double r : result.r[i]) {
            matrix.rows.back().cells.push_back({r, false});
        }
    }
    if (result.partial.empty()) {
        return tables;
    }
    core::ResultsTable& partials = tables.partials.emplace();
    partials.title = "Partial correlations with " + data.names[0];
    partials.rowHeading = "Predictor";
    partials.columns = {"Partial r", "P value"};
    partials.numberPattern = "0.0000";
    for (size_t i = 0; i < result.partial.size(); ++i) {
        partials.rows.push_back(
            {data.names[i + 1], {{result.partial[i], false}, {result.pValue[i], false}}});
    }
    return tables;
}

ReportText correlationReport(const ScreeningData& data, const CorrelationTables& tables,
                             const ReportHeading& heading, bool conditional) {
    const core::NumberFormat threeDecimals("0.000");
    const core::NumberFormat whole("0");
    const core::NumberFormat fourDecimals("0.0000");
    const auto& series = tables.matrix.rows;
    TabbedText text;
    text.emptyLines(4);
    text.line("Predictand: " + series[0].label);
    text.print("Predictors: ");
    for (size_t i = 1; i < series.size(); ++i) {
        text.tab(13);
        text.line(series[i].label);
    }
    text.emptyLines(1);
    text.line("CORRELATION MATRIX");
    text.emptyLines(1);
    text.line("Analysis Period: " + heading.fitStart + " - " + heading.fitEnd + " (" +
              heading.periodName + ")");
    text.emptyLines(1);
    text.line("Missing values: " + std::to_string(data.missingValues));
    text.line("Missing rows: " + std::to_string(data.missingRows));
    if (conditional) {
        text.line("Values less than or equal to threshold: " + std::to_string(data.thresholdRows));
    }
    text.emptyLines(1);
    for (size_t i = 1; i <= series.size(); ++i) {
        text.tab(static_cast<int>(8 * i + 16));
        text.print(core::printInteger(static_cast<long long>(i)));
    }
    text.endLine();
    for (size_t i = 0; i < series.size(); ++i) {
        text.print(core::printInteger(static_cast<long long>(i + 1)));
        text.tab(6);
        text.print(series[i].label);
        for (size_t j = 0; j < series.size(); ++j) {
            text.tab(static_cast<int>(8 * (j + 1) + 16));
            text.print((i == j ? whole : threeDecimals).format(*series[i].cells[j].value));
        }
        text.endLine();
    }
    text.emptyLines(2);
    if (!tables.partials) {
        text.line("NO PARTIAL CORRELATIONS TO CALCULATE");
        return text.finish();
    }
    text.line("PARTIAL CORRELATIONS WITH " + series[0].label);
    text.emptyLines(1);
    text.tab(24);
    text.print("Partial r");
    text.tab(36);
    text.line("P value");
    for (const auto& row : tables.partials->rows) {
        text.print(row.label);
        text.tab(24);
        text.print(threeDecimals.format(*row.cells[0].value));
        text.tab(36);
        text.line(fourDecimals.format(*row.cells[1].value));
    }
    return text.finish();
}

} // namespace varo::screening
