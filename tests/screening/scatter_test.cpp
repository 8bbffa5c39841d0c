#include "screening/scatter.hpp"

#include "core/notices.hpp"
#include "screening_fixture.hpp"
#include "support/failure_checks.hpp"

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
