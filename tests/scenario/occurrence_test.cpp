// The occurrence treatment: exact wet-day counts, dry days at the threshold, copies of
// existing amounts, preserved totals, the overflow and zero-rainfall messages, and draws
// that cannot go on.
#include "core/number_format.hpp"
#include "scenario/occurrence.hpp"
#include "scenario_test_support.hpp"
#include "support/failure_checks.hpp"
#include "support/recording_progress.hpp"

#include <gtest/gtest.h>
#include <numeric>
#include <set>

using namespace varo;
using varo::testing::countAbove;
using varo::testing::scenarioOf;
using varo::testing::stopMessage;

namespace {

constexpr double Threshold = 0.5;
constexpr double Missing = -999.0;
const scenario::SeriesScope Scope{Threshold, Missing, true};
// Twelve 30-day months a year, so that day d lies in month (d / 30) % 12 + 1.
const scenario::SeriesStart Start{core::calendarForYearLength(360), {1, 1, 1961}};

int monthOf(size_t day) {
    return static_cast<int>(day / 30 % 12) + 1;
}

float factorOf(double change) {
    return (static_cast<float>(change) + 100.0f) / 100.0f;
}

scenario::OccurrenceTreatment stochastic(double change, bool preserve = false) {
    scenario::OccurrenceTreatment treatment;
    treatment.frequencyFactor = factorOf(change);
    treatment.preserveTotals = preserve;
    return treatment;
}

// `days` days of which the first `wet` (of every `every`) are wet, with amounts 1, 2, ... 9.
std::vector<double> series(size_t days, size_t wet, size_t every = 1) {
    std::vector<double> values(days, 0.0);
    size_t made = 0;
    for (size_t d = 0; d < days && made < wet; d += every, ++made) {
        values[d] = 1.0 + static_cast<double>(made % 9);
    }
    return values;
}

std::set<double> wetAmounts(const std::vector<double>& values) {
    std::set<double> amounts;
    for (const double value : values) {
        if (value > Threshold && value != Missing) {
            amounts.insert(value);
        }
    }
    return amounts;
}

struct Member {
    scenario::ScenarioData data;
    varo::testing::KeptWarnings warnings;
};

void apply(Member& run, const scenario::OccurrenceTreatment& treatment, std::uint64_t seed = 7) {
    core::UniformRandom random;
    random.seed(seed);
    core::NullProgress progress;
    scenario::applyOccurrence(run.data, treatment, Scope, Start, random, progress, run.warnings);
}

} // namespace

// Each month ends with round-free targets of its non-missing days wet: some months lose
// days (set to the threshold), some gain copies of their own amounts, a month without wet
// days takes them from its neighbours, and missing days stay missing.
TEST(ForcedOccurrence, ReachesEachMonthsTargetExactly) {
    const std::array<float, 12> percentages = {10, 50, 0, 100, 25, 40, 60, 70, 5, 90, 30, 20};
    std::vector<double> values(3600, 0.0);
    for (size_t d = 0; d < values.size(); ++d) {
        const int month = monthOf(d);
        // February is dry throughout; the others wet on every second or third day.
        if (month != 2 && d % static_cast<size_t>(month % 2 == 0 ? 2 : 3) == 0) {
            values[d] = month + 0.25;
        }
        if (month == 6 && d % 30 < 3) {
            values[d] = Missing; // 30 missing days: 270 count
        }
    }
    Member run{scenarioOf({values}), {}};
    scenario::OccurrenceTreatment treatment;
    treatment.kind = scenario::OccurrenceKind::Forced;
    treatment.monthlyPercentages = percentages;
    apply(run, treatment);

    const std::vector<double>& after = run.data.members[0];
    std::array<long, 13> wet{};
    std::array<long, 13> counted{};
    for (size_t d = 0; d < after.size(); ++d) {
        const int month = monthOf(d);
        if (values[d] == Missing) {
            EXPECT_EQ(after[d], Missing);
            continue;
        }
        ++counted[static_cast<size_t>(month)];
        if (after[d] > Threshold) {
            ++wet[static_cast<size_t>(month)];
            // A copy of an amount of the month, or for February of January or March.
            const double from = after[d] - 0.25;
            EXPECT_TRUE(month == 2 ? from == 1 || from == 3 : from == month) << d;
        } else if (values[d] > Threshold) {
            EXPECT_EQ(after[d], Threshold) << d;
        } else {
            EXPECT_EQ(after[d], 0.0) << d;
        }
    }
    for (int m = 1; m <= 12; ++m) {
        const auto month = static_cast<size_t>(m);
        EXPECT_EQ(wet[month] * 100, static_cast<long>(percentages[month - 1]) * counted[month])
            << "month " << m;
    }
    EXPECT_TRUE(run.warnings.texts.empty());
}

// Without wet days in the month or its nearest neighbours, the donor is the next ring out:
// February takes from December or April, never from June.
TEST(ForcedOccurrence, DonorIsTheNearestMonthWithWetDays) {
    std::vector<double> values(360, 0.0);
    for (size_t d = 0; d < values.size(); d += 2) {
        const int month = monthOf(d);
        values[d] = month == 12 ? 9.0 : month == 4 ? 11.0 : month == 6 ? 13.0 : 0.0;
    }
    scenario::OccurrenceTreatment treatment;
    treatment.kind = scenario::OccurrenceKind::Forced;
    treatment.monthlyPercentages = {0, 50, 0, 50, 0, 50, 0, 0, 0, 0, 0, 50};
    for (const std::uint64_t seed : {1u, 2u, 3u}) {
        Member run{scenarioOf({values}), {}};
        apply(run, treatment, seed);
        std::set<double> february;
        for (size_t d = 30; d < 60; ++d) {
            if (run.data.members[0][d] > Threshold) {
                february.insert(run.data.members[0][d]);
            }
        }
        EXPECT_EQ(countAbove(std::vector<double>(run.data.members[0].begin() + 30,
                                                 run.data.members[0].begin() + 60),
                             Threshold),
                  15);
        for (const double amount : february) {
            EXPECT_TRUE(amount == 9.0 || amount == 11.0) << amount;
        }
    }
}

// The count changes by the rounded amount (12.5 rounds to 12), days made dry hold the
// threshold and days made wet hold an amount the member already had.
TEST(StochasticOccurrence, ChangesTheWetDayCountByTheRoundedAmount) {
    struct Case {
        size_t days;
        size_t wet;
        size_t every;
        double change;
        long expectedWet;
    };
    const std::vector<Case> cases = {
        {1000, 25, 3, -50, 13},    {1000, 25, 3, 50, 37},    {3600, 1000, 3, -10, 900},
        {3600, 1000, 3, 10, 1100}, {3600, 1000, 3, -99, 10}, {360, 100, 2, 80, 180},
        {100, 50, 2, 100, 100},
    };
    for (const Case& c : cases) {
        const std::vector<double> before = series(c.days, c.wet, c.every);
        Member run{scenarioOf({before, before}), {}};
        apply(run, stochastic(c.change));
        for (const std::vector<double>& after : run.data.members) {
            EXPECT_EQ(countAbove(after, Threshold), c.expectedWet) << c.wet << " " << c.change;
            for (size_t d = 0; d < after.size(); ++d) {
                if (after[d] == before[d]) {
                    continue;
                }
                if (c.change < 0) {
                    EXPECT_EQ(after[d], Threshold);
                } else {
                    EXPECT_EQ(before[d], 0.0);
                    EXPECT_TRUE(wetAmounts(before).count(after[d]) == 1) << after[d];
                }
            }
        }
        // The two members draw from one stream, so they change on different days.
        EXPECT_NE(run.data.members[0], run.data.members[1]);
    }
}

TEST(StochasticOccurrence, SameSeedRepeatsAndAnotherDiffers) {
    const std::vector<double> before = series(3600, 900, 3);
    Member first{scenarioOf({before}), {}};
    Member again{scenarioOf({before}), {}};
    Member other{scenarioOf({before}), {}};
    apply(first, stochastic(-30), 11);
    apply(again, stochastic(-30), 11);
    apply(other, stochastic(-30), 12);
    EXPECT_EQ(first.data.members, again.data.members);
    EXPECT_NE(first.data.members, other.data.members);
}

// Each member's sum of wet values stays, in memory and to the three decimals written.
TEST(StochasticOccurrence, PreservedTotalsKeepEachMembersWetSum) {
    for (const double change : {-40.0, 35.0}) {
        const std::vector<double> before = series(3600, 1200, 3);
        Member run{scenarioOf({before, series(3600, 500, 7)}), {}};
        const std::vector<std::vector<double>> original = run.data.members;
        apply(run, stochastic(change, true));
        for (size_t m = 0; m < original.size(); ++m) {
            const auto wetSum = [](const std::vector<double>& values, bool written) {
                double sum = 0.0;
                for (const double value : values) {
                    if (value > Threshold) {
                        sum +=
                            written ? std::stod(core::formatPattern(value, "#####0.000")) : value;
                    }
                }
                return sum;
            };
            const double target = wetSum(original[m], false);
            const long wetDays = countAbove(run.data.members[m], Threshold);
            EXPECT_NEAR(wetSum(run.data.members[m], false), target, 1e-9 * target);
            EXPECT_NEAR(wetSum(run.data.members[m], true), target, 0.0005 * wetDays);
            EXPECT_NE(wetDays, countAbove(original[m], Threshold));
        }
    }
}

// Twice the wet days of a member without dry days cannot fit; exactly as many as there are
// dry days can.
TEST(StochasticOccurrence, AddingMoreDaysThanTheSeriesHoldsStopsWithTheOverflowMessage) {
    Member full{scenarioOf({std::vector<double>(100, 2.0)}), {}};
    EXPECT_EQ(stopMessage([&] { apply(full, stochastic(100)); }), scenario::OverflowMessage);
    Member nearly{scenarioOf({series(10, 9)}), {}};
    EXPECT_EQ(stopMessage([&] { apply(nearly, stochastic(100)); }), scenario::OverflowMessage);
    Member fits{scenarioOf({series(10, 5)}), {}};
    apply(fits, stochastic(100));
    EXPECT_EQ(countAbove(fits.data.members[0], Threshold), 10);
}

TEST(StochasticOccurrence, MembersWithoutWetDaysAreLeftAndWarnedOf) {
    struct Case {
        std::vector<std::vector<double>> members;
        std::vector<std::string> warnings;
    };
    const std::vector<double> dry(360, 0.0);
    const std::vector<double> wet = series(360, 100, 2);
    const std::vector<Case> cases = {
        {{wet, wet}, {}},
        {{wet, dry}, {std::string(scenario::SomeMembersDryWarning)}},
        {{dry, dry}, {std::string(scenario::AllMembersDryWarning)}},
        {{std::vector<double>{}}, {std::string(scenario::AllMembersDryWarning)}},
    };
    for (const Case& c : cases) {
        Member run{scenarioOf(c.members), {}};
        apply(run, stochastic(-20));
        EXPECT_EQ(run.warnings.texts, c.warnings);
        for (const std::string& title : run.warnings.titles) {
            EXPECT_EQ(title, "Results");
        }
        for (size_t m = 0; m < c.members.size(); ++m) {
            if (countAbove(c.members[m], Threshold) == 0) {
                EXPECT_EQ(run.data.members[m], c.members[m]);
            }
        }
    }
}

// Days are removed from months by their share of dry days: a month wet throughout has no
// weight, and when no month that can be drawn has a wet day left the run stops rather than
// draw for ever. A month without data is never drawn.
TEST(StochasticOccurrence, DrawsThatCouldNeverEndStopWithAMessage) {
    std::vector<double> onlyJanuary(360, Missing);
    std::fill(onlyJanuary.begin(), onlyJanuary.begin() + 30, 3.0);
    Member run{scenarioOf({onlyJanuary}), {}};
    EXPECT_EQ(stopMessage([&] { apply(run, stochastic(-50)); }),
              "The occurrence treatment cannot remove 15 more wet days from member 1: the "
              "months it can still draw have no wet days left.");

    // March missing throughout: days are added to the other months only.
    std::vector<double> values = series(360, 180, 2);
    std::fill(values.begin() + 60, values.begin() + 90, Missing);
    Member added{scenarioOf({values}), {}};
    apply(added, stochastic(50));
    EXPECT_EQ(countAbove(added.data.members[0], Threshold), 165 + 82);
    EXPECT_TRUE(
        std::equal(values.begin() + 60, values.begin() + 90, added.data.members[0].begin() + 60));
}

TEST(StochasticOccurrence, ReportsItsCaptionAndStopsBetweenMembers) {
    Member run{scenarioOf({series(360, 100), series(360, 100), series(360, 100)}), {}};
    const auto before = run.data.members;
    varo::testing::RecordingProgress progress(1);
    core::UniformRandom random;
    EXPECT_THROW(scenario::applyOccurrence(run.data, stochastic(-10), Scope, Start, random,
                                           progress, run.warnings),
                 core::Cancelled);
    EXPECT_EQ(progress.captions, std::vector<std::string>{"Applying Occurrence"});
    EXPECT_EQ(run.data.members[2], before[2]);
}
