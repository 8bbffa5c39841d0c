#include "scenario/occurrence.hpp"

#include "core/numeric_text.hpp"

#include <optional>
#include <vector>

namespace varo::scenario {

namespace {

using DayList = std::vector<long>; // day numbers from 0, unordered

// A place in a list of `count` entries, 1 to `count`: round(u * count), half to even, drawn
// again while it falls outside. The caller makes sure the list is not empty.
size_t drawPlace(core::UniformRandom& random, size_t count) {
    for (;;) {
        const long long place =
            core::roundHalfEven(static_cast<double>(random.next()) * static_cast<double>(count));
        if (place >= 1 && place <= static_cast<long long>(count)) {
            return static_cast<size_t>(place);
        }
    }
}

// Takes the day at a drawn place out of a list: the last entry moves into the hole.
long takeDrawn(DayList& list, core::UniformRandom& random) {
    const size_t place = drawPlace(random, list.size()) - 1;
    const long day = list[place];
    list[place] = list.back();
    list.pop_back();
    return day;
}

// The running weights of the months for drawing one: entry m is the sum of the shares of
// months 1 to m, a month without data or with a share of exactly 1 adding nothing.
class MonthWeights {
public:
    explicit MonthWeights(const std::array<std::optional<double>, 13>& shares) {
        for (int m = 1; m <= 12; ++m) {
            const auto& share = shares[static_cast<size_t>(m)];
            const bool counts = share && *share != 1.0;
            cumulative_[static_cast<size_t>(m)] =
                cumulative_[static_cast<size_t>(m - 1)] + (counts ? *share : 0.0);
        }
    }

    // The first month whose entry exceeds u times the last entry; December when none does.
    int draw(core::UniformRandom& random) const {
        const double point = static_cast<double>(random.next()) * cumulative_[12];
        for (int m = 1; m <= 12; ++m) {
            if (cumulative_[static_cast<size_t>(m)] > point) {
                return m;
            }
        }
        return 12;
    }

    // Takes a month out of the draw: its entry becomes that of the month before, so that
    // its weight passes to the month after it.
    void close(int month) {
        cumulative_[static_cast<size_t>(month)] = cumulative_[static_cast<size_t>(month - 1)];
    }

    // True when some draw can give the month. The entries never fall from month to month,
    // so a month is drawn exactly when its entry rises above the one before.
    bool drawable(int month) const {
        if (cumulative_[12] == 0.0) {
            return month == 12;
        }
        return cumulative_[static_cast<size_t>(month)] >
               cumulative_[static_cast<size_t>(month - 1)];
    }

private:
    std::array<double, 13> cumulative_{};
};

// The eleven other months from the nearest outwards, starting on a side drawn at random:
// k + s, k - s, k + 2s, k - 2s, ... k + 6s, with s = +1 when u < 0.5 and -1 otherwise.
std::array<int, 11> nearestMonths(int month, core::UniformRandom& random) {
    const int sign = random.next() < 0.5f ? 1 : -1;
    std::array<int, 11> months{};
    for (int place = 1; place <= 11; ++place) {
        const int offset = place % 2 == 1 ? sign * ((place + 1) / 2) : -sign * (place / 2);
        int near = month + offset;
        near = near > 12 ? near - 12 : near < 1 ? near + 12 : near;
        months[static_cast<size_t>(place - 1)] = near;
    }
    return months;
}

// One member's days by month, and the changes made to them.
class MemberOccurrence {
public:
    MemberOccurrence(std::vector<double>& values, const SeriesScope& scope,
                     const SeriesStart& start, core::UniformRandom& random, int member)
        : values_(values), scope_(scope), random_(random), member_(member) {
        core::RecordCalendar position(start.calendar, start.date);
        for (size_t d = 0; d < values.size(); ++d) {
            const auto month = static_cast<size_t>(position.month());
            const double value = values[d];
            if (!scope.missing(value)) {
                ++total_[month];
                if (value > scope.threshold) {
                    wet_[month].push_back(static_cast<long>(d));
                    wetSum_ += value;
                    wetTotal_ += 1.0;
                } else {
                    dry_[month].push_back(static_cast<long>(d));
                }
            }
            position.stepDay();
        }
    }

    bool hasWetDays() const { return wetTotal_ > 0.0; }

    void stochastic(float frequencyFactor, long dayCount) {
        const double factor = frequencyFactor;
        if (factor < 1.0) {
            const long long toRemove = core::roundHalfEven(wetTotal_ - factor * wetTotal_);
            MonthWeights weights(shares(dry_, false));
            for (long long i = 0; i < toRemove; ++i) {
                requireDrawable(weights, wet_,
                                "remove " + std::to_string(toRemove - i) + " more wet days from",
                                "wet");
                int month = weights.draw(random_);
                while (wet_[static_cast<size_t>(month)].empty()) {
                    month = weights.draw(random_);
                }
                makeDry(month);
                if (wet_[static_cast<size_t>(month)].empty()) {
                    weights.close(month);
                }
            }
        } else if (factor > 1.0) {
            const long long toAdd = core::roundHalfEven(factor * wetTotal_ - wetTotal_);
            if (static_cast<double>(toAdd) > static_cast<double>(dayCount) - wetTotal_) {
                throw core::RunStopped(std::string(OverflowMessage));
            }
            MonthWeights weights(shares(wet_, true));
            for (long long i = 0; i < toAdd; ++i) {
                requireDrawable(weights, dry_,
                                "add " + std::to_string(toAdd - i) + " more wet days to", "dry");
                int month = weights.draw(random_);
                while (dry_[static_cast<size_t>(month)].empty()) {
                    month = weights.draw(random_);
                }
                makeWet(month);
                if (dry_[static_cast<size_t>(month)].empty()) {
                    weights.close(month);
                }
            }
        }
    }

    void forced(const std::array<float, 12>& percentages) {
        for (int month = 1; month <= 12; ++month) {
            const auto m = static_cast<size_t>(month);
            const double target = static_cast<double>(percentages[m - 1]) / 100.0;
            const auto total = static_cast<double>(total_[m]);
            const auto wetDays = static_cast<double>(wet_[m].size());
            const bool fewer =
                total_[m] > 0 && static_cast<float>(target) < static_cast<float>(wetDays / total);
            if (fewer) {
                const long long toRemove = core::roundHalfEven(wetDays - target * total);
                for (long long i = 0; i < toRemove && !wet_[m].empty(); ++i) {
                    makeDry(month);
                }
            } else {
                const long long toAdd = core::roundHalfEven(target * total - wetDays);
                for (long long i = 0; i < toAdd && !dry_[m].empty(); ++i) {
                    makeWet(month);
                }
            }
        }
    }

    // Scales the wet values so that their sum is again the sum before the treatment.
    void preserveTotal() {
        double newSum = 0.0;
        for (const double value : values_) {
            if (scope_.wet(value)) {
                newSum += value;
            }
        }
        if (newSum <= 0.0) {
            return;
        }
        const double ratio = wetSum_ / newSum;
        for (double& value : values_) {
            if (scope_.wet(value)) {
                value *= ratio;
            }
        }
    }

private:
    // Each month's share of the days in the lists, or nothing for a month without data;
    // wet fractions are held in single precision, dry shares in double.
    std::array<std::optional<double>, 13> shares(const std::array<DayList, 13>& lists,
                                                 bool singlePrecision) const {
        std::array<std::optional<double>, 13> result;
        for (size_t m = 1; m <= 12; ++m) {
            if (total_[m] > 0) {
                const double share =
                    static_cast<double>(lists[m].size()) / static_cast<double>(total_[m]);
                result[m] =
                    singlePrecision ? static_cast<double>(static_cast<float>(share)) : share;
            }
        }
        return result;
    }

    // Stops the run rather than draw for ever when no month the draw can give has a day
    // left in `lists`.
    void requireDrawable(const MonthWeights& weights, const std::array<DayList, 13>& lists,
                         const std::string& change, const std::string& kind) const {
        for (int m = 1; m <= 12; ++m) {
            if (weights.drawable(m) && !lists[static_cast<size_t>(m)].empty()) {
                return;
            }
        }
        throw core::RunStopped("The occurrence treatment cannot " + change + " member " +
                               std::to_string(member_) + ": the months it can still draw have no " +
                               kind + " days left.");
    }

    void makeDry(int month) {
        values_[static_cast<size_t>(takeDrawn(wet_[static_cast<size_t>(month)], random_))] =
            scope_.threshold;
    }

    void makeWet(int month) {
        DayList& dry = dry_[static_cast<size_t>(month)];
        const size_t place = drawPlace(random_, dry.size()) - 1;
        const DayList& donor = wet_[static_cast<size_t>(donorMonth(month))];
        const long source = donor[drawPlace(random_, donor.size()) - 1];
        values_[static_cast<size_t>(dry[place])] = values_[static_cast<size_t>(source)];
        dry[place] = dry.back();
        dry.pop_back();
    }

    // The month itself when it has wet days, otherwise the nearest that has.
    int donorMonth(int month) {
        if (!wet_[static_cast<size_t>(month)].empty()) {
            return month;
        }
        for (const int near : nearestMonths(month, random_)) {
            if (!wet_[static_cast<size_t>(near)].empty()) {
                return near;
            }
        }
        throw core::RunStopped("The occurrence treatment cannot add wet days to member " +
                               std::to_string(member_) + ": no month has a wet day left to copy.");
    }

    std::vector<double>& values_;
    const SeriesScope& scope_;
    core::UniformRandom& random_;
    int member_;
    std::array<long, 13> total_{};
    std::array<DayList, 13> wet_;
    std::array<DayList, 13> dry_;
    double wetTotal_ = 0.0;
    double wetSum_ = 0.0;
};

} // namespace

void applyOccurrence(ScenarioData& data, const OccurrenceTreatment& treatment,
                     const SeriesScope& scope, const SeriesStart& start,
                     core::UniformRandom& random, core::Progress& progress,
                     core::Notifier& notifier) {
    int withoutWetDays = 0;
    for (int m = 0; m < data.memberCount(); ++m) {
        progress.report(m, data.memberCount(), OccurrenceCaption);
        progress.throwIfStopped();
        MemberOccurrence member(data.members[static_cast<size_t>(m)], scope, start, random, m + 1);
        if (!member.hasWetDays()) {
            ++withoutWetDays;
            continue;
        }
        if (treatment.kind == OccurrenceKind::Forced) {
            member.forced(treatment.monthlyPercentages);
        } else {
            member.stochastic(treatment.frequencyFactor, data.dayCount);
        }
        if (treatment.preserveTotals) {
            member.preserveTotal();
        }
    }
    progress.report(data.memberCount(), data.memberCount(), OccurrenceCaption);
    if (withoutWetDays == data.memberCount()) {
        notifier.warning("Results", AllMembersDryWarning);
    } else if (withoutWetDays > 0) {
        notifier.warning("Results", SomeMembersDryWarning);
    }
}

} // namespace varo::scenario
