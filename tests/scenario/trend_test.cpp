// The three trends on their first and last days against their formulas, conditional and
// unconditional, and the missing days they count but leave.
#include "core/failure.hpp"
#include "scenario/trend.hpp"
#include "scenario_test_support.hpp"
#include "support/failure_checks.hpp"

#include <cmath>
#include <gtest/gtest.h>

using namespace varo;

namespace {

std::vector<double> trended(std::vector<double> values, scenario::TrendKind kind, double size,
                            bool conditional, int yearIndicator = 366) {
    auto data = varo::testing::scenarioOf({std::move(values)});
    core::NullProgress progress;
    scenario::applyTrend(data, {kind, size}, yearIndicator, {0.0, -999.0, conditional}, progress);
    return data.members[0];
}

} // namespace

// 100 calendar years of 2 a year add 200 by the last day; 365- and 360-day years count
// their own days; a conditional trend is a percentage of the wet values only.
TEST(LinearTrend, ReachesItsYearlyRateOnTheLastDay) {
    const long n = 36525;
    std::vector<double> values(static_cast<size_t>(n), 10.0);
    values[1] = 0.0;
    values[2] = -999.0;
    auto after = trended(values, scenario::TrendKind::Linear, 2.0, false);
    EXPECT_DOUBLE_EQ(after[0], 10.0 + 2.0 / 365.25);
    EXPECT_DOUBLE_EQ(after[1], 2.0 / 365.25 * 2);
    EXPECT_EQ(after[2], -999.0);
    EXPECT_NEAR(after.back(), 210.0, 1e-9);

    after = trended(values, scenario::TrendKind::Linear, -3.65, false, 365);
    EXPECT_NEAR(after.back(), 10.0 - 0.01 * n, 1e-9);
    after = trended(values, scenario::TrendKind::Linear, 3.6, false, 360);
    EXPECT_NEAR(after.back(), 10.0 + 0.01 * n, 1e-9);

    // Conditional: 2 % a year of each wet value; 100 years double it and more.
    after = trended(values, scenario::TrendKind::Linear, 2.0, true);
    EXPECT_DOUBLE_EQ(after[0], 10.0 * (2.0 / 36525 + 1));
    EXPECT_EQ(after[1], 0.0);
    EXPECT_NEAR(after.back(), 30.0, 1e-9);
    // A negative trend may take a wet value below 0: no floor.
    after = trended(values, scenario::TrendKind::Linear, -5.0, true);
    EXPECT_NEAR(after.back(), 10.0 * (1 - 5.0), 1e-9);
}

TEST(ExponentialTrend, ReachesItsSizeOnTheLastDayRisingOrFalling) {
    const size_t n = 1000;
    const std::vector<double> values(n, 20.0);
    const double b = n / std::log(5.0 + 1.0);
    struct Case {
        double size;
        bool conditional;
        double first;
        double last;
    };
    const double firstChange = std::exp(1.0 / b) - 1.0;
    const std::vector<Case> cases = {
        {5.0, false, 20.0 + firstChange, 25.0},
        {-5.0, false, 20.0 - firstChange, 15.0},
        {5.0, true, 20.0 * ((firstChange + 100.0) / 100.0), 21.0},
        {-5.0, true, 20.0 * ((100.0 - firstChange) / 100.0), 19.0},
    };
    for (const Case& c : cases) {
        const auto after = trended(values, scenario::TrendKind::Exponential, c.size, c.conditional);
        EXPECT_DOUBLE_EQ(after.front(), c.first) << c.size << c.conditional;
        EXPECT_NEAR(after.back(), c.last, 1e-9) << c.size << c.conditional;
    }
}

// The S-curve runs from x = -6 on the first day to 6 on the last.
TEST(LogisticTrend, RunsFromMinusSixToSixOverTheSeries) {
    const std::vector<double> values(501, 10.0);
    const double low = 4.0 / (1.0 + std::exp(6.0));
    const double high = 4.0 / (1.0 + std::exp(-6.0));
    auto after = trended(values, scenario::TrendKind::Logistic, 4.0, false);
    EXPECT_DOUBLE_EQ(after.front(), 10.0 + low);
    EXPECT_DOUBLE_EQ(after[250], 12.0);
    EXPECT_DOUBLE_EQ(after.back(), 10.0 + high);
    after = trended(values, scenario::TrendKind::Logistic, 4.0, true);
    EXPECT_DOUBLE_EQ(after.front(), 10.0 * ((low + 100.0) / 100.0));
    EXPECT_DOUBLE_EQ(after.back(), 10.0 * ((high + 100.0) / 100.0));
}

TEST(LogisticTrend, OneDayFailsByDivisionByZeroAndNoDaysChangeNothing) {
    EXPECT_TRUE(
        varo::testing::failsWith([] { trended({1.0}, scenario::TrendKind::Logistic, 4.0, false); },
                                 core::failure::DivisionByZero, "at least two days"));
    EXPECT_EQ(trended({}, scenario::TrendKind::Logistic, 4.0, false), std::vector<double>{});
    EXPECT_EQ(trended({1.0}, scenario::TrendKind::Linear, 365.25, false), std::vector<double>{2.0});
}
