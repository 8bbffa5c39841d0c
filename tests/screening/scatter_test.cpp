#include "screening/scatter.hpp"

#include "core/notices.hpp"
#include "series_text.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using namespace varo::screening;
using varo::testing::TempDir;

namespace {
struct ScatterFixture : ::testing::Test {
    core::ProgramState state;
    core::NullProgress progress;
    TempDir dir;
    ScatterFixture() { core::initialiseState(state); }

    ScreeningRequest request(const std::vector<double>& y, const std::vector<double>& x,
                             const std::string& fitEnd) {
        ScreeningRequest asked;
        asked.predictandPath = varo::testing::writeSeries(dir, "rain.dat", y);
        asked.predictorPaths = {varo::testing::writeSeries(dir, "mslp.dat", x)};
        asked.fitStart = {1, 1, 1961};
        asked.fitEnd = *core::parseDate(fitEnd);
        return asked;
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
    auto asked = request(y, x, "28/02/1961");
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
    auto asked = request({1, 0, 3, -999, 5}, {9, 9, 9, 9, 9}, "05/01/1961");
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
    auto asked = request({1, 2}, {3, 4}, "02/01/1961");
    asked.predictorPaths = {dir.path("absent.dat")};
    try {
        scatterData(asked, state, progress);
        FAIL();
    } catch (const core::RunStopped& stopped) {
        EXPECT_EQ(stopped.message(), "Could not find selected file.  Please retry.");
    }
}
