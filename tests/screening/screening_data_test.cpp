#include "screening/screening_data.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "series_text.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using namespace varo::screening;
using varo::testing::TempDir;

namespace {

struct AssemblyFixture : ::testing::Test {
    core::ProgramState state;
    core::NullProgress progress;
    TempDir dir;
    AssemblyFixture() { core::initialiseState(state); }

    std::string file(const std::string& name, const std::vector<double>& values) {
        return varo::testing::writeSeries(dir, name, values);
    }

    // A file whose value on each day is the day's number, counted from 1.
    std::string dayNumbers(const std::string& name, int days) {
        std::vector<double> values;
        for (int day = 1; day <= days; ++day) {
            values.push_back(day);
        }
        return file(name, values);
    }

    ScreeningRequest request(const std::string& predictand, std::vector<std::string> predictors,
                             const std::string& fitStart, const std::string& fitEnd) {
        ScreeningRequest asked;
        asked.predictandPath = predictand;
        asked.predictorPaths = std::move(predictors);
        asked.fitStart = *core::parseDate(fitStart);
        asked.fitEnd = *core::parseDate(fitEnd);
        return asked;
    }
};

} // namespace

TEST_F(AssemblyFixture, ConditionalCountsKeepTheDoubleSubtraction) {
    // Rows: at the threshold; predictand missing; event; event with predictor missing;
    // at the threshold with predictor missing (counted twice); event.
    const auto y = file("y.dat", {0, -999, 0.5, 0.2, 0, 1});
    const auto x = file("x.dat", {1, 2, 3, -999, -999, 6});
    auto asked = request(y, {x}, "01/01/1961", "06/01/1961");
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
}

TEST_F(AssemblyFixture, AnEventIsStrictlyAboveTheThresholdInSinglePrecision) {
    state.thresh = 0.3f;
    EXPECT_FALSE(isEvent(0.3, state.thresh));
    EXPECT_FALSE(isEvent(0.30000000001, state.thresh));
    EXPECT_TRUE(isEvent(0.3000001, state.thresh));
}

TEST_F(AssemblyFixture, ThePeriodFilterKeepsItsMonthsWhileEveryFileAdvances) {
    const auto y = dayNumbers("y.dat", 730);
    const auto x = dayNumbers("x.dat", 730);
    auto asked = request(y, {x}, "01/02/1961", "31/12/1962");
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
    auto asked = request(y, {x}, "01/01/1961", "04/01/1961");
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
    try {
        assembleScreeningData(request(y, {x}, "03/01/1961", "10/01/1961"), state, progress);
        FAIL();
    } catch (const core::Failure& failure) {
        EXPECT_EQ(failure.number(), core::failure::InputPastEnd);
        EXPECT_NE(failure.description().find("short.dat"), std::string::npos);
    }
}

TEST_F(AssemblyFixture, MoreThan52000RowsOverrunTheArrays) {
    state.globalSDate = "01/01/1850";
    const auto start = *core::parseDate("01/01/1850");
    const auto y = dayNumbers("y.dat", 52001);
    const auto x = dayNumbers("x.dat", 52001);
    const auto end = core::dateFromSerial(core::serialDay(start) + 52000);
    auto asked = request(y, {x}, "01/01/1850", core::formatDate(end));
    try {
        assembleScreeningData(asked, state, progress);
        FAIL();
    } catch (const core::Failure& failure) {
        EXPECT_EQ(failure.number(), core::failure::FileTooLarge);
    }
    asked.fitEnd = core::dateFromSerial(core::serialDay(start) + 51999);
    EXPECT_EQ(assembleScreeningData(asked, state, progress).total, 52000);
}
