#include "screening/scatter.hpp"

#include "core/notices.hpp"
#include "screening_fixture.hpp"
#include "support/failure_checks.hpp"
#include "support/recording_progress.hpp"

#include <gtest/gtest.h>

using namespace varo;
using namespace varo::screening;

namespace {
struct ScatterFixture : varo::testing::ScreeningFixture {
    ScreeningRequest rainOnPressure(const std::vector<double>& y, const std::vector<double>& x) {
        return request(file("rain.dat", y), {file("mslp.dat", x)}, static_cast<long>(y.size()));
    }
};
} // namespace

TEST_F(ScatterFixture, PairsDaysOfThePeriodAndCountsOnlyTheirMissingValues) {
    // 31 January, then 28 February: values are the day numbers, one missing in each month.
    std::vector<double> y;
    std::vector<double> x;
    for (int day = 1; day <= 59; ++day) {
        y.push_back(day);
        x.push_back(100 + day);
    }
    y[3] = -999;
    x[40] = -999;
    auto asked = rainOnPressure(y, x);
    asked.period = 6; // February
    const auto data = scatterData(asked, state, progress);
    EXPECT_EQ(data.points.size(), 27u);
    EXPECT_EQ(data.points.front(), (ScatterPoint{132, 32}));
    EXPECT_EQ(data.missingCount, 1);
    EXPECT_EQ(data.title, "1 missing value(s): rain.dat");
    EXPECT_EQ(data.xTitle, "mslp.dat");
    EXPECT_EQ(data.yTitle, "rain.dat");
    EXPECT_EQ(data.progressDays, 5); // 59 / 12, rounded
    asked.period = 1;
    EXPECT_EQ(scatterData(asked, state, progress).progressDays, 15); // 59 / 4 = 14.75
}

TEST_F(ScatterFixture, AutoregressionPairsEachDayWithTheDayBefore) {
    auto asked = rainOnPressure({1, 0, 3, -999, 5}, {9, 9, 9, 9, 9});
    asked.autoregression = true;
    auto data = scatterData(asked, state, progress);
    EXPECT_EQ(data.xTitle, "Autoregression");
    EXPECT_EQ(data.points, (std::vector<ScatterPoint>{{1, 0}, {0, 3}}));
    EXPECT_EQ(data.missingCount, 2);
    // The conditional process keeps event days only.
    asked.conditional = true;
    data = scatterData(asked, state, progress);
    EXPECT_EQ(data.points, (std::vector<ScatterPoint>{{0, 3}}));
}

TEST_F(ScatterFixture, AFileThatCannotBeOpenedStopsWithItsMessage) {
    auto asked = rainOnPressure({1, 2}, {3, 4});
    asked.predictorPaths = {dir.path("absent.dat")};
    EXPECT_EQ(varo::testing::stopMessage([&] { scatterData(asked, state, progress); }),
              "Could not find selected file.  Please retry.");
}

// The previous day moves on over days of other months too, so the first day of a month is
// paired with the last day of the month before, and a missing value there makes the pair
// missing.
TEST_F(ScatterFixture, AutoregressionInAMonthTakesItsFirstPredecessorFromTheMonthBefore) {
    std::vector<double> y;
    for (int day = 1; day <= 59; ++day) {
        y.push_back(day);
    }
    y[30] = -999; // 31 January
    auto asked = rainOnPressure(y, y);
    asked.autoregression = true;
    asked.period = 6; // February
    const auto data = scatterData(asked, state, progress);
    EXPECT_EQ(data.missingCount, 1);
    ASSERT_EQ(data.points.size(), 27u);
    EXPECT_EQ(data.points.front(), (ScatterPoint{32, 33}));
    EXPECT_EQ(data.points.back(), (ScatterPoint{58, 59}));
}

TEST_F(ScatterFixture, TheSkipCaptionComesOnlyWhenTheFitStartsAfterTheRecord) {
    const std::string y = dayNumbers("rain.dat", 40);
    const std::string x = dayNumbers("mslp.dat", 40);
    struct Case {
        core::Date fitStart;
        std::vector<std::string> captions;
    };
    for (const Case& test :
         {Case{{1, 1, 1961}, {"Generating Scatter Plot"}},
          Case{{10, 1, 1961}, {"Skipping Unnecessary Data", "Generating Scatter Plot"}}}) {
        varo::testing::RecordingProgress recording;
        const auto data = scatterData(request(y, {x}, 20, test.fitStart), state, recording);
        EXPECT_EQ(recording.captions, test.captions);
        EXPECT_EQ(data.points.front().y, test.fitStart.day);
    }
}

TEST_F(ScatterFixture, ACancelStopsTheRun) {
    varo::testing::RecordingProgress stopping(3);
    const std::string y = dayNumbers("rain.dat", 40);
    EXPECT_THROW(scatterData(request(y, {dayNumbers("mslp.dat", 40)}, 40), state, stopping),
                 core::Cancelled);
}

// The chart takes at most MaxScatterPoints points; one more fails before anything is drawn.
TEST_F(ScatterFixture, ThePointLimitIsReachedButNotPassed) {
    const std::string y = file("rain.dat", std::vector<double>(MaxScatterPoints + 2, 1.0));
    auto asked = request(y, {}, MaxScatterPoints + 1);
    asked.autoregression = true; // the first day only gives the first predecessor
    EXPECT_EQ(static_cast<long>(scatterData(asked, state, progress).points.size()),
              MaxScatterPoints);
    asked = request(y, {}, MaxScatterPoints + 2);
    asked.autoregression = true;
    EXPECT_TRUE(varo::testing::failsWith([&] { scatterData(asked, state, progress); },
                                         core::failure::OverflowOccurred,
                                         "More than 500000 points"));
}
