#include "scenario/trend.hpp"

#include "core/failure.hpp"

#include <cmath>

namespace varo::scenario {

namespace {

// The new value of day i, with the rates of the series worked out once.
class TrendRule {
public:
    TrendRule(const TrendTreatment& trend, long n, int yearIndicator, bool conditional)
        : kind_(trend.kind), conditional_(conditional), size_(trend.size),
          n_(static_cast<double>(n)) {
        if (kind_ == TrendKind::Linear) {
            const double days = yearIndicator == 366 ? 365.25 : yearIndicator;
            dailyAdd_ = trend.size / days;
            dailyShare_ =
                yearIndicator == 366 ? trend.size / 36525.0 : trend.size / (yearIndicator * 100.0);
        } else if (kind_ == TrendKind::Exponential) {
            rising_ = trend.size >= 0.0;
            b_ = n_ / std::log(std::abs(trend.size) + 1.0);
        } else if (n == 1) {
            throw core::Failure(core::failure::DivisionByZero,
                                "A logistic trend runs from the first day to the last, so it "
                                "needs at least two days; the series has one.");
        }
    }

    double apply(double value, long day) const {
        const auto i = static_cast<double>(day);
        switch (kind_) {
        case TrendKind::Linear:
            return conditional_ ? value * (dailyShare_ * i + 1.0) : value + dailyAdd_ * i;
        case TrendKind::Exponential: {
            const double change = std::exp(i / b_) - 1.0;
            if (conditional_) {
                return rising_ ? value * ((change + 100.0) / 100.0)
                               : value * ((100.0 - change) / 100.0);
            }
            return rising_ ? value + change : value - change;
        }
        case TrendKind::Logistic: {
            const double x = 12.0 * (i - 1.0) / (n_ - 1.0) - 6.0;
            const double s = size_ / (1.0 + std::exp(-x));
            return conditional_ ? value * ((s + 100.0) / 100.0) : value + s;
        }
        }
        return value;
    }

private:
    TrendKind kind_;
    bool conditional_;
    double size_;
    double n_;
    double dailyAdd_ = 0.0;
    double dailyShare_ = 0.0;
    bool rising_ = true;
    double b_ = 1.0;
};

} // namespace

void applyTrend(ScenarioData& data, const TrendTreatment& trend, int yearIndicator,
                const SeriesScope& scope, core::Progress& progress) {
    if (data.dayCount == 0) {
        return;
    }
    const TrendRule rule(trend, data.dayCount, yearIndicator, scope.conditional);
    for (int m = 0; m < data.memberCount(); ++m) {
        progress.report(m, data.memberCount(), TrendCaption);
        progress.throwIfStopped();
        std::vector<double>& values = data.members[static_cast<size_t>(m)];
        for (size_t d = 0; d < values.size(); ++d) {
            if (scope.treated(values[d])) {
                values[d] = rule.apply(values[d], static_cast<long>(d) + 1);
            }
        }
    }
    progress.report(data.memberCount(), data.memberCount(), TrendCaption);
}

} // namespace varo::scenario
