#include "scenario/variance.hpp"

#include "core/failure.hpp"
#include "core/notices.hpp"
#include "core/number_format.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <unordered_map>

namespace varo::scenario {

namespace {

constexpr double NoBest = 99999.0;
constexpr long FewestForSearch = 11;
constexpr int BisectionSteps = 10;

std::string memberText(int member) {
    return "member " + std::to_string(member);
}

// The wet values of a member as distinct values in ascending order, with the place of each
// day's value among them, so that a transformation raises every distinct value once while
// sums still run over the days in their order.
class WetValues {
public:
    WetValues(const std::vector<double>& values, const SeriesScope& scope)
        : places_(values.size(), -1) {
        // The distinct values in the order they are met (few: gauges and files round), then
        // put in ascending order and the days' places renumbered.
        std::unordered_map<double, std::int32_t> metAt;
        std::vector<double> met;
        for (size_t d = 0; d < values.size(); ++d) {
            if (scope.wet(values[d])) {
                const auto [entry, added] =
                    metAt.try_emplace(values[d], static_cast<std::int32_t>(met.size()));
                if (added) {
                    met.push_back(values[d]);
                }
                places_[d] = entry->second;
            }
        }
        std::vector<std::int32_t> ascending(met.size());
        std::iota(ascending.begin(), ascending.end(), 0);
        std::sort(ascending.begin(), ascending.end(), [&met](std::int32_t a, std::int32_t b) {
            return met[static_cast<size_t>(a)] < met[static_cast<size_t>(b)];
        });
        std::vector<std::int32_t> rank(met.size());
        for (size_t k = 0; k < ascending.size(); ++k) {
            distinct_.push_back(met[static_cast<size_t>(ascending[k])]);
            rank[static_cast<size_t>(ascending[k])] = static_cast<std::int32_t>(k);
        }
        for (std::int32_t& place : places_) {
            if (place >= 0) {
                place = rank[static_cast<size_t>(place)];
            }
        }
    }

    const std::vector<double>& distinct() const { return distinct_; }
    // Per day: the place of its value in `distinct`, or -1 for a day that is not wet.
    const std::vector<std::int32_t>& places() const { return places_; }

private:
    std::vector<double> distinct_;
    std::vector<std::int32_t> places_;
};

// (x ^ lamda - 1) / lamda, or ln x for a lamda of exactly 0.
double boxCox(double x, double lamda) {
    return lamda == 0.0 ? std::log(x) : (std::pow(x, lamda) - 1.0) / lamda;
}

double inverseBoxCox(double y, double lamda) {
    return lamda == 0.0 ? std::exp(y) : std::pow(lamda * y + 1.0, 1.0 / lamda);
}

// The lamda search on the wet values other than 0. Their order is the same for every lamda,
// since the transformation rises with x, so the order statistics are those of the sorted
// values, transformed.
class LamdaSearch {
public:
    LamdaSearch(const WetValues& wet, int member) : wet_(wet), member_(member) {
        const std::vector<double>& distinct = wet_.distinct();
        if (!distinct.empty() && distinct.front() < 0.0) {
            throw core::Failure(core::failure::Overflow,
                                "The wet value " + core::generalText(distinct.front()) + " of " +
                                    memberText(member) +
                                    " is below 0, and no Box-Cox power of it exists: the "
                                    "threshold of a conditional series must be 0 or more.");
        }
        std::vector<long> counts(distinct.size(), 0);
        for (const std::int32_t place : wet_.places()) {
            if (place >= 0 && distinct[static_cast<size_t>(place)] != 0.0) {
                order_.push_back(place);
                ++counts[static_cast<size_t>(place)];
            }
        }
        long running = 0;
        for (const long count : counts) {
            running += count;
            cumulative_.push_back(running);
        }
    }

    std::optional<double> search(double from, double to, double step) const {
        const auto count = static_cast<long>(order_.size());
        if (count < FewestForSearch) {
            return std::nullopt;
        }
        double best = NoBest;
        std::optional<double> bestLamda;
        std::vector<double> transformed(wet_.distinct().size());
        for (double candidate = from; candidate <= to; candidate += step) {
            transform(candidate, transformed);
            double sum = 0.0;
            for (const std::int32_t place : order_) {
                sum += transformed[static_cast<size_t>(place)];
            }
            const double mean = sum / static_cast<double>(count);
            // Ranks from 1: the median is the element at count \ 2, below the middle for an
            // odd count.
            const double median = transformed[element(count / 2)];
            const double iqr =
                transformed[element(count - count / 4)] - transformed[element(count / 4)];
            if (iqr <= 0.0) {
                continue;
            }
            const double score = (mean - median) / iqr;
            if (std::abs(score) < best) {
                best = std::abs(score);
                bestLamda = candidate;
            }
        }
        return bestLamda;
    }

private:
    void transform(double lamda, std::vector<double>& transformed) const {
        const std::vector<double>& distinct = wet_.distinct();
        for (size_t i = 0; i < distinct.size(); ++i) {
            if (distinct[i] == 0.0) {
                continue;
            }
            transformed[i] = boxCox(distinct[i], lamda);
            if (!std::isfinite(transformed[i])) {
                throw core::Failure(core::failure::OverflowOccurred,
                                    "The Box-Cox power " + core::generalText(lamda) + " of " +
                                        core::generalText(distinct[i]) + " in " +
                                        memberText(member_) + " is too large.");
            }
        }
    }

    // The place in `distinct` of the element of rank `rank` (from 1) of the sorted values.
    size_t element(long rank) const {
        return static_cast<size_t>(std::lower_bound(cumulative_.begin(), cumulative_.end(), rank) -
                                   cumulative_.begin());
    }

    const WetValues& wet_;
    int member_;
    std::vector<std::int32_t> order_; // the places of the searched values, in day order
    std::vector<long> cumulative_;    // searched values up to and including each place
};

double optimumLamda(const LamdaSearch& search, core::Progress& progress) {
    struct Stage {
        double halfWidth;
        double step;
    };
    progress.report(0, 3, LamdaCaption);
    std::optional<double> lamda = search.search(-2.0, 2.0, 0.25);
    int done = 1;
    for (const Stage stage : {Stage{0.25, 0.05}, Stage{0.1, 0.01}}) {
        if (!lamda) {
            break;
        }
        progress.report(done++, 3, LamdaCaption);
        lamda = search.search(*lamda - stage.halfWidth, *lamda + stage.halfWidth, stage.step);
    }
    if (!lamda) {
        throw core::RunStopped(std::string(LamdaFailureMessage));
    }
    progress.report(3, 3, LamdaCaption);
    return *lamda;
}

// One conditional member between its transformation and the inverse: the transformed value
// of each distinct wet value (missing for a 0 under the logarithm), the days in order.
class TransformedMember {
public:
    TransformedMember(const WetValues& wet, double lamda, int member)
        : wet_(wet), lamda_(lamda), member_(member) {
        const std::vector<double>& distinct = wet_.distinct();
        transformed_.resize(distinct.size());
        usable_.resize(distinct.size());
        for (size_t i = 0; i < distinct.size(); ++i) {
            usable_[i] = !(lamda == 0.0 && distinct[i] == 0.0);
            if (usable_[i]) {
                transformed_[i] = checked(boxCox(distinct[i], lamda), distinct[i], "transformed");
            }
        }
        double sum = 0.0;
        for (const std::int32_t place : wet_.places()) {
            if (place >= 0 && usable_[static_cast<size_t>(place)]) {
                order_.push_back(place);
                sum += transformed_[static_cast<size_t>(place)];
            }
        }
        if (order_.empty()) {
            throw core::RunStopped(std::string(VarianceFailureMessage));
        }
        mean_ = sum / static_cast<double>(order_.size());
    }

    double mean() const { return mean_; }

    // The variance (divisor n) of the values stretched by `factor` about the mean and
    // transformed back.
    double variance(double factor) const {
        const std::vector<double> back = stretchedBack(factor);
        double sum = 0.0;
        for (const std::int32_t place : order_) {
            sum += back[static_cast<size_t>(place)];
        }
        const auto count = static_cast<double>(order_.size());
        const double resultMean = sum / count;
        double squares = 0.0;
        for (const std::int32_t place : order_) {
            const double deviation = back[static_cast<size_t>(place)] - resultMean;
            squares += deviation * deviation;
        }
        return squares / count;
    }

    // Puts the stretched values, transformed back, in place of the wet values.
    void apply(std::vector<double>& values, double factor) const {
        const std::vector<double> back = stretchedBack(factor);
        const std::vector<std::int32_t>& places = wet_.places();
        for (size_t d = 0; d < values.size(); ++d) {
            const std::int32_t place = places[d];
            if (place >= 0 && usable_[static_cast<size_t>(place)]) {
                values[d] = back[static_cast<size_t>(place)];
            }
        }
    }

private:
    std::vector<double> stretchedBack(double factor) const {
        std::vector<double> back(transformed_.size());
        for (size_t i = 0; i < back.size(); ++i) {
            if (usable_[i]) {
                const double stretched = (transformed_[i] - mean_) * factor + mean_;
                back[i] = checked(inverseBoxCox(stretched, lamda_), stretched, "transformed back");
            }
        }
        return back;
    }

    double checked(double result, double value, const char* what) const {
        if (!std::isfinite(result)) {
            throw core::Failure(core::failure::Overflow, "The value " + core::generalText(value) +
                                                             " of " + memberText(member_) +
                                                             " cannot be " + what + " with lamda " +
                                                             core::generalText(lamda_) + ".");
        }
        return result;
    }

    const WetValues& wet_;
    double lamda_;
    int member_;
    std::vector<double> transformed_;
    std::vector<bool> usable_;
    std::vector<std::int32_t> order_;
    double mean_ = 0.0;
};

InflationResult inflateConditional(std::vector<double>& values, float varianceFactor,
                                   const MemberStatistics& statistics, const SeriesScope& scope,
                                   int member, core::Progress& progress) {
    const WetValues wet(values, scope);
    const double lamda = optimumLamda(LamdaSearch(wet, member), progress);
    const TransformedMember transformed(wet, lamda, member);
    const double sdSquared = statistics.sd * statistics.sd;
    if (sdSquared == 0.0) {
        throw core::Failure(core::failure::DivisionByZero,
                            "The wet values of " + memberText(member) +
                                " had no spread before the treatments.");
    }
    double low = varianceFactor <= 1.0f ? 0.5 : 1.0;
    double high = varianceFactor <= 1.0f ? 1.0 : 1.3;
    double factor = (high - low) / 2.0 + low;
    for (int i = 1; i <= BisectionSteps; ++i) {
        progress.report(i * 100 / BisectionSteps, 100, InflationCaption);
        const auto ratio = static_cast<float>(transformed.variance(factor) / sdSquared);
        if (ratio >= varianceFactor) {
            high = factor;
            factor = (factor - low) / 2.0 + low;
        } else {
            low = factor;
            factor = (high - factor) / 2.0 + factor;
        }
    }
    transformed.apply(values, factor);
    return {lamda, transformed.mean(), factor};
}

void stretchUnconditional(std::vector<double>& values, float varianceFactor,
                          const MemberStatistics& statistics, const SeriesScope& scope) {
    if (varianceFactor < 0.0f) {
        throw core::Failure(core::failure::Overflow,
                            "The variance factor " + core::generalTextSingle(varianceFactor) +
                                " is below 0, and a series cannot be stretched by its square "
                                "root: the change of variance must be -100 % or more.");
    }
    const double stretch = std::sqrt(static_cast<double>(varianceFactor));
    for (double& value : values) {
        if (!scope.missing(value)) {
            value -= statistics.mean;
            value *= stretch;
            value += statistics.mean;
        }
    }
}

} // namespace

std::vector<MemberStatistics> memberStatistics(const ScenarioData& data, const SeriesScope& scope) {
    std::vector<MemberStatistics> statistics;
    for (const std::vector<double>& values : data.members) {
        double sum = 0.0;
        long count = 0;
        for (const double value : values) {
            if (scope.treated(value)) {
                sum += value;
                ++count;
            }
        }
        if (count == 0) {
            statistics.push_back({scope.missingCode, scope.missingCode});
            continue;
        }
        const double mean = sum / static_cast<double>(count);
        double squares = 0.0;
        for (const double value : values) {
            if (scope.treated(value)) {
                squares += (value - mean) * (value - mean);
            }
        }
        statistics.push_back({mean, std::sqrt(squares / static_cast<double>(count))});
    }
    return statistics;
}

std::optional<double> searchLamda(const std::vector<double>& values, const SeriesScope& scope,
                                  double from, double to, double step, int member) {
    const WetValues wet(values, scope);
    return LamdaSearch(wet, member).search(from, to, step);
}

double optimumLamda(const std::vector<double>& values, const SeriesScope& scope, int member) {
    core::NullProgress progress;
    const WetValues wet(values, scope);
    return optimumLamda(LamdaSearch(wet, member), progress);
}

std::optional<double> applyVariance(ScenarioData& data, float varianceFactor,
                                    const std::vector<MemberStatistics>& statistics,
                                    const SeriesScope& scope, core::Progress& progress,
                                    std::vector<InflationResult>* inflations) {
    std::optional<double> lamda;
    for (int m = 0; m < data.memberCount(); ++m) {
        progress.report(m, data.memberCount(), VarianceCaption);
        progress.throwIfStopped();
        std::vector<double>& values = data.members[static_cast<size_t>(m)];
        const MemberStatistics& member = statistics[static_cast<size_t>(m)];
        if (!scope.conditional) {
            stretchUnconditional(values, varianceFactor, member, scope);
            continue;
        }
        const InflationResult result =
            inflateConditional(values, varianceFactor, member, scope, m + 1, progress);
        lamda = result.lamda;
        if (inflations != nullptr) {
            inflations->push_back(result);
        }
    }
    progress.report(data.memberCount(), data.memberCount(), VarianceCaption);
    return lamda;
}

} // namespace varo::scenario
