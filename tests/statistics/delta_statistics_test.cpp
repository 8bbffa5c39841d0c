#include "statistics/delta_statistics.hpp"

#include "engine_support.hpp"

#include <gtest/gtest.h>

using namespace varo::statistics;
using varo::testing::Missing;

namespace {
Selection meanOnly() {
    Selection s{};
    s[column::Mean] = true;
    return s;
}
} // namespace

TEST(Delta, PercentageNeedsABaseAtLeastHalfAHundredthFromZero) {
    ResultTable base = filledTable(0.0);
    ResultTable period = filledTable(0.0);
    const double bases[] = {0.004, -0.004, 0.005, -0.005, 2.0, Missing, 2.0};
    const double values[] = {1.0, 1.0, 0.01, -0.01, 3.0, 3.0, Missing};
    for (int row = 1; row <= 7; ++row) {
        base[row][column::Mean] = bases[row - 1];
        period[row][column::Mean] = values[row - 1];
        base[row][column::Maximum] = 1.0; // not flagged
        period[row][column::Maximum] = 2.0;
    }
    const ResultTable d = deltaTable(base, period, meanOnly(), PercentageDelta, Missing);
    EXPECT_EQ(d[1][column::Mean], Missing);
    EXPECT_EQ(d[2][column::Mean], Missing);
    EXPECT_NEAR(d[3][column::Mean], 100.0, 1e-9);
    EXPECT_NEAR(d[4][column::Mean], 100.0, 1e-9);
    EXPECT_DOUBLE_EQ(d[5][column::Mean], 50.0);
    EXPECT_EQ(d[6][column::Mean], Missing);
    EXPECT_EQ(d[7][column::Mean], Missing);
    EXPECT_EQ(d[5][column::Maximum], Missing);

    const ResultTable a = deltaTable(base, period, meanOnly(), AbsoluteDelta, Missing);
    EXPECT_DOUBLE_EQ(a[1][column::Mean], 0.996);
    EXPECT_DOUBLE_EQ(a[5][column::Mean], 1.0);
    EXPECT_EQ(a[6][column::Mean], Missing);
}

TEST(TTest, WelchWithThePlusOneTermsAndAnAbsoluteT) {
    ResultTable base = filledTable(0.0);
    ResultTable period = filledTable(0.0);
    auto set = [](ResultTable& t, int row, double mean, double variance, double count) {
        t[row][column::Mean] = mean;
        t[row][column::Variance] = variance;
        t[row][column::Count] = count;
    };
    set(period, 1, 3.0, 4.0, 10.0);
    set(base, 1, 5.0, 9.0, 20.0);
    set(period, 2, 5.0, 4.0, 10.0); // equal means
    set(base, 2, 5.0, 9.0, 20.0);
    set(period, 3, 5.0, 0.0, 10.0); // constant series
    set(base, 3, 7.0, 0.0, 20.0);
    set(period, 4, Missing, Missing, Missing); // a row without data
    set(base, 4, 5.0, 9.0, 20.0);
    const auto tests = tTests(base, period, Missing);
    EXPECT_NEAR(tests[1].t, 2.1693045781865616, 1e-12);
    EXPECT_NEAR(tests[1].degreesOfFreedom, 29.86979865771812, 1e-9);
    EXPECT_EQ(tests[2].t, 0.0);
    EXPECT_EQ(tests[3].t, Missing);
    EXPECT_EQ(tests[3].degreesOfFreedom, Missing);
    EXPECT_EQ(tests[4].t, Missing);
    EXPECT_EQ(tests[5].t, Missing); // counts of 0
}
