#include "screening/screening_data.hpp"

#include "core/failure.hpp"
#include "screening_fixture.hpp"
#include "support/failure_checks.hpp"

#include <gtest/gtest.h>

using namespace varo;
using namespace varo::screening;
using AssemblyFixture = varo::testing::ScreeningFixture;

TEST_F(AssemblyFixture, ConditionalCountsKeepTheDoubleSubtraction) {
    // Rows: at the threshold; predictand missing; event; event with predictor missing;
    // at the threshold with predictor missing (counted twice); event.
    const auto y = file("y.dat", {0, -999, 0.5, 0.2, 0, 1});
    const auto x = file("x.dat", {1, 2, 3, -999, -999, 6});
    auto asked = request(y, {x}, 6);
    asked.conditional = true;
    const auto data = assembleScreeningData(asked, state, progress);
    EXPECT_EQ(data.total, 6);
    EXPECT_EQ(data.missingValues, 3);
    EXPECT_EQ(data.missingRows, 3);
    EXPECT_EQ(data.thresholdRows, 2);
    EXPECT_EQ(data.n(), 1);
    EXPECT_DOUBLE_EQ(data.sums[0], 1.5);
    EXPECT_DOUBLE_EQ(data.sums[1], 9.0);
    EXPECT_EQ(data.names, (std::vector<std::string>{"y.dat", "x.dat"}));

    asked.conditional = false;
    const auto all = assembleScreeningData(asked, state, progress);
    EXPECT_EQ(all.thresholdRows, 0);
    EXPECT_EQ(all.n(), 3);
    EXPECT_DOUBLE_EQ(all.sums[0], 1.5);
    EXPECT_DOUBLE_EQ(all.sums[1], 10.0);

    // An event lies strictly above the threshold in single precision.
    EXPECT_FALSE(isEvent(0.3, 0.3f));
    EXPECT_FALSE(isEvent(0.30000000001, 0.3f));
    EXPECT_TRUE(isEvent(0.3000001, 0.3f));
}

TEST_F(AssemblyFixture, ThePeriodFilterKeepsItsMonthsWhileEveryFileAdvances) {
    const auto y = dayNumbers("y.dat", 730);
    const auto x = dayNumbers("x.dat", 730);
    auto asked = request(y, {x}, 334 + 365, {1, 2, 1961});
    asked.period = 11; // July
    auto data = assembleScreeningData(asked, state, progress);
    ASSERT_EQ(data.total, 62);
    EXPECT_EQ(data.series[0].front(), 182.0);
    EXPECT_EQ(data.series[1][30], 212.0);
    EXPECT_EQ(data.series[0][31], 365.0 + 182.0);
    asked.period = 1; // Winter: January (from the fit start, February), February, December
    data = assembleScreeningData(asked, state, progress);
    EXPECT_EQ(data.total, 28 + 31 + 31 + 28 + 31);
    EXPECT_EQ(data.series[0].front(), 32.0);
}

TEST_F(AssemblyFixture, AutoregressionLagsThePredictandAndBorrowsItsSum) {
    const auto y = file("y.dat", {1, -999, 3, 4});
    const auto x = file("x.dat", {5, 6, 7, 8});
    auto asked = request(y, {x}, 4);
    asked.autoregression = true;
    auto data = assembleScreeningData(asked, state, progress);
    ASSERT_EQ(data.seriesCount(), 3u);
    EXPECT_EQ(data.names.back(), "Autoregression");
    EXPECT_EQ(data.series[2], (std::vector<double>{0, 1, -999, 3}));
    EXPECT_DOUBLE_EQ(data.sums[2], data.sums[0]);
    EXPECT_DOUBLE_EQ(data.sums[0], 8.0);
    // Under the conditional process the last row's event comes off the borrowed sum.
    asked.conditional = true;
    data = assembleScreeningData(asked, state, progress);
    EXPECT_DOUBLE_EQ(data.sums[2], 4.0);
}

TEST_F(AssemblyFixture, AShortFileFailsNamingIt) {
    const auto y = dayNumbers("y.dat", 10);
    const auto x = dayNumbers("short.dat", 5);
    EXPECT_TRUE(varo::testing::failsWith(
        [&] {
            assembleScreeningData(request(y, {x}, 8, {3, 1, 1961}), state, progress);
        },
        core::failure::InputPastEnd, "short.dat"));
}

TEST_F(AssemblyFixture, MoreThan52000RowsOverrunTheArrays) {
    state.globalSDate = {1, 1, 1850};
    const auto y = dayNumbers("y.dat", 52001);
    const auto x = dayNumbers("x.dat", 52001);
    EXPECT_TRUE(varo::testing::failsWith(
        [&] {
            assembleScreeningData(request(y, {x}, 52001, {1, 1, 1850}), state, progress);
        },
        core::failure::FileTooLarge));
    EXPECT_EQ(assembleScreeningData(request(y, {x}, 52000, {1, 1, 1850}), state, progress).total,
              52000);
}
