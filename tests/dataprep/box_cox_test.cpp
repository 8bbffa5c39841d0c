#include "dataprep/box_cox.hpp"

#include "core/failure.hpp"
#include "core/notices.hpp"
#include "core/number_format.hpp"
#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>

using namespace varo;
using namespace varo::dataprep;
using varo::testing::failsWith;
using varo::testing::readFile;
using varo::testing::stopMessage;
using varo::testing::TempDir;

namespace {

const std::string DataFolder = std::string(VARO_TEST_DATA) + "/dataprep/";

std::string lines(const std::vector<double>& values) {
    std::string text;
    for (const double value : values) {
        text += core::generalText(value) + "\r\n";
    }
    return text;
}

// 1, 2, ... count, skewed by squaring so that the search has something to find.
std::vector<double> skewed(int count) {
    std::vector<double> values;
    for (int i = 1; i <= count; ++i) {
        values.push_back(0.01 * i * i);
    }
    return values;
}

struct BoxCoxFixture : ::testing::Test {
    TempDir dir;
    core::NullProgress progress;

    BoxCoxResult forward(const std::string& content, int columns = 1) {
        return boxCoxFile(dir.write("in.dat", content), dir.path("out.dat"), columns, -999.0,
                          progress);
    }
};

} // namespace

TEST_F(BoxCoxFixture, MatchesAnIndependentSearchToTheByte) {
    std::ifstream file(DataFolder + "boxcox_reference.json");
    const auto reference = nlohmann::json::parse(file);
    for (const std::string name : {"boxcox_rain", "boxcox_negative"}) {
        const auto result =
            boxCoxFile(DataFolder + name + ".dat", dir.path(name + ".out"), 1, -999.0, progress);
        EXPECT_EQ(result.lamda, reference[name]["lamda"].get<double>()) << name;
        EXPECT_EQ(result.shift, reference[name]["shift"].get<double>()) << name;
        EXPECT_EQ(readFile(dir.path(name + ".out")), readFile(DataFolder + name + "_expected.dat"))
            << name;
    }
}

TEST_F(BoxCoxFixture, FiftyValuesAreEnoughAndFortyNineAreNot) {
    std::vector<double> values = skewed(50);
    values.insert(values.begin() + 7, -999.0);
    const auto result = forward(lines(values));
    EXPECT_EQ(result.counts.rows, 51);
    EXPECT_EQ(result.counts.missing, 1);
    const std::string earlier = readFile(dir.path("out.dat"));
    values.pop_back();
    EXPECT_EQ(stopMessage([&] { forward(lines(values)); }),
              "Sorry - insufficient data to perform Box Cox transformation.");
    // The output is created only once there is something to write: the earlier one stays.
    EXPECT_EQ(readFile(dir.path("out.dat")), earlier);
}

TEST_F(BoxCoxFixture, ANegativeMinimumShiftsTheDataAndTheReportSaysSo) {
    std::vector<double> values = skewed(60);
    values[5] = -3.0;
    const auto result = forward(lines(values));
    // The values written with the shift taken off again are checked by the reference run.
    EXPECT_EQ(result.shift, 3.0);
    EXPECT_NE(boxCoxReportText(result, -999.0).find("\r\nData right shifted: 3\r\n"),
              std::string::npos);
    // A minimum of exactly 0 is no reason to shift.
    values[5] = 0.0;
    EXPECT_EQ(forward(lines(values)).shift, 0.0);
}

TEST_F(BoxCoxFixture, AConstantSeriesAndFilesOfManyColumnsStop) {
    EXPECT_EQ(stopMessage([&] { forward(lines(std::vector<double>(80, 4.5))); }),
              "Sorry an error has occurred calculating the optimum lamda transform.");
    EXPECT_EQ(stopMessage([&] { forward("1 2\r\n", 2); }),
              "Sorry - Box Cox transformation can only be applied to single column data files.");
    EXPECT_EQ(stopMessage([&] {
                  unBoxCoxFile(dir.write("in.dat", "1\r\n"), dir.path("out.dat"), 2, 1, 0, -999,
                               progress);
              }),
              "Sorry - Inverse Box Cox transformation can only be applied to single column data "
              "files.");
}

TEST_F(BoxCoxFixture, TheInverseOfTheForwardRunGivesTheInputBack) {
    // Values up to 1 keep the six-decimal rounding of the forward output from growing on
    // the way back (the slope of the inverse is x ^ (1 - lamda)).
    std::vector<double> values;
    for (int i = 0; i < 200; ++i) {
        const int k = (i * 37) % 100 + 1;
        values.push_back(k * k / 10000.0);
    }
    values[20] = -999.0;
    const auto result = forward(lines(values));
    const auto counts = unBoxCoxFile(dir.path("out.dat"), dir.path("back.dat"), 1, result.lamda,
                                     result.shift, -999.0, progress);
    EXPECT_EQ(counts.rows, 200);
    EXPECT_EQ(counts.missing, 1);
    std::string expected;
    for (const double value : values) {
        expected +=
            value == -999.0 ? std::string("-999 ") : core::formatPattern(value, "####0.000000");
        expected += "\r\n";
    }
    EXPECT_EQ(readFile(dir.path("back.dat")), expected);
}

TEST_F(BoxCoxFixture, TheInverseWritesWhatItCannotConvertAsMissing) {
    const auto in = dir.write("in.dat", "0\r\n-999\r\n-3\r\n1\r\n");
    auto counts = unBoxCoxFile(in, dir.path("out.dat"), 1, 0.0, 0.0, -999.0, progress);
    EXPECT_EQ(readFile(dir.path("out.dat")), "1.000000\r\n-999 \r\n0.049787\r\n2.718282\r\n");
    // With lamda 0.5, y * 0.5 + 1 is not positive for y = -3 (and for -2 exactly).
    counts = unBoxCoxFile(dir.write("in.dat", "0\r\n-2\r\n-3\r\n2\r\n"), dir.path("out.dat"), 1,
                          0.5, 0.0, -999.0, progress);
    EXPECT_EQ(readFile(dir.path("out.dat")), "1.000000\r\n-999 \r\n-999 \r\n4.000000\r\n");
    EXPECT_EQ(unBoxCoxReportText(counts, -999.0),
              "4 rows processed.\r\nNo missing values in file.\r\n"
              "2 value(s) could not be converted (overflow would occur),\r\n"
              " - therefore written to file as -999 (current missing code).");
    EXPECT_EQ(unBoxCoxReportText({3, 1, 0}, -999.0),
              "3 rows processed.\r\n1 missing value(s) in file (not untransformed).");
}

TEST_F(BoxCoxFixture, OverflowAndCapacityFailWithTheirNumbers) {
    EXPECT_TRUE(failsWith(
        [&] {
            unBoxCoxFile(dir.write("in.dat", "1\r\n800\r\n"), dir.path("out.dat"), 1, 0.0, 0.0,
                         -999.0, progress);
        },
        core::failure::OverflowOccurred, "is incomplete"));
    EXPECT_EQ(readFile(dir.path("out.dat")), "2.718282\r\n");
    std::string many;
    for (long i = 0; i <= BoxCoxCapacity; ++i) {
        many += "1\n";
    }
    EXPECT_TRUE(failsWith([&] { forward(many); }, core::failure::FileTooLarge));
}

TEST(LamdaSearch, OrderStatisticsComeFromTheZeroBasedRows) {
    // 0..99 unsorted: n = 100 gives rows 25, 50 and 75 of the ascending list.
    std::vector<double> values;
    for (int i = 0; i < 100; ++i) {
        values.push_back((i * 37) % 100);
    }
    const LamdaSearchColumn column(values);
    const auto score = column.score(1.0);
    EXPECT_EQ(score.entries, 100);
    EXPECT_EQ(score.low, 24.0);
    EXPECT_EQ(score.median, 49.0);
    EXPECT_EQ(score.high, 74.0);
    EXPECT_DOUBLE_EQ(score.mean, 48.5);
    // At lamda 0 the zero is left out: 99 entries, rows 24, 49 and 75.
    const auto logScore = column.score(0.0);
    EXPECT_EQ(logScore.entries, 99);
    EXPECT_DOUBLE_EQ(logScore.low, std::log(25.0));
    EXPECT_DOUBLE_EQ(logScore.median, std::log(50.0));
    EXPECT_DOUBLE_EQ(logScore.high, std::log(76.0));
    // Under a negative lamda 0 becomes -1 / lamda, the largest entry of all.
    const auto negative = column.score(-1.0);
    EXPECT_EQ(negative.high, (std::pow(76.0, -1.0) - 1) / -1.0);
}

TEST(LamdaSearch, ScoresNeedFiftyEntriesAndASpread) {
    std::vector<double> values(49, 1.0);
    values.push_back(0.0);
    const LamdaSearchColumn column(values);
    EXPECT_FALSE(column.score(0.0).judged); // 49 entries once the zero is left out
    EXPECT_EQ(column.score(0.0).entries, 49);
    EXPECT_FALSE(column.score(1.0).judged); // 50 entries, but no spread
    EXPECT_EQ(column.searchLamda(-2, 2, 0.25, -999.0), -999.0);
}

TEST(LamdaSearch, TheGridIsSummedStepByStepAndItsEndIsReachedOnlyBySums) {
    // A left-skewed series grows more symmetric with every larger lamda of these grids, so
    // the last lamda a grid reaches wins.
    std::vector<double> values;
    for (int i = 1; i <= 100; ++i) {
        values.push_back(1000 - 0.01 * i * i);
    }
    const LamdaSearchColumn column(values);
    double summed = 0.75;
    for (int i = 0; i < 4; ++i) {
        summed += 0.1;
    }
    // 0.75 + 0.1 + 0.1 + 0.1 + 0.1 passes 1.15 by a hair, and one more step passes 1.25.
    EXPECT_EQ(column.searchLamda(0.75, 1.25, 0.1, -999.0), summed);
    EXPECT_NE(summed, 1.15);
    // From -0.25 the sums land on 0.25 itself.
    EXPECT_EQ(column.searchLamda(-0.25, 0.25, 0.1, -999.0), 0.25);
}
