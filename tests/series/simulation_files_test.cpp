#include "core/failure.hpp"
#include "series/simulation_files.hpp"
#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace varo;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {
series::SimulationDescription sample() {
    series::SimulationDescription d;
    d.predictorCount = 2;
    d.seasonCode = 12;
    d.yearIndicator = 360;
    d.fitStart = "01/01/2011";
    d.fitLength = 32400;
    d.conditional = true;
    d.ensembleSize = 20;
    d.precN = 12;
    d.transformCode = 2;
    d.biasCorrection = 0.9f;
    d.predictandName = "precip.dat";
    d.predictorNames = {"mslp.dat", "p500.dat"};
    return d;
}
} // namespace

TEST(SimulationDescription, WrittenToTheByte) {
    TempDir dir;
    const auto path = dir.path("run.SIM");
    series::writeSimulationDescription(path, sample());
    EXPECT_EQ(readFile(path), " 2 \r\n 12 \r\n 360 \r\n01/01/2011\r\n 32400 \r\n#TRUE#\r\n 20 \r\n"
                              " 12 \r\n 2 \r\n .9 \r\nprecip.dat\r\nmslp.dat\r\np500.dat\r\n");
    EXPECT_EQ(series::readSimulationDescription(path), sample());
}

// Each problem gives the file, the line, the item that belongs there and what stands
// there instead.
TEST(SimulationDescription, EveryProblemNamesFileLineItemAndValue) {
    const std::vector<std::string> good = {
        " 2 ",  " 12 ", " 360 ", "01/01/2011", " 32400 ",  "#TRUE#",  " 20 ",
        " 12 ", " 2 ",  " .9 ",  "precip.dat", "mslp.dat", "p500.dat"};
    const auto withLine = [&](size_t line, const std::string& text) {
        std::string content;
        for (size_t i = 0; i < good.size(); ++i) {
            content += (i + 1 == line ? text : good[i]) + "\r\n";
        }
        return content;
    };
    struct Case {
        std::string content;
        int number;
        std::string expected; // after "Line N of the SIM file '<path>' "
    };
    const std::vector<Case> cases = {
        {withLine(1, "two"), 13,
         "should hold the number of predictors, but 'two' is not a number."},
        {withLine(1, "1e999"), 13,
         "should hold the number of predictors, but '1e999' is not a number."},
        {withLine(3, " 361 "), 13,
         "should hold the year length, but '361' is not 360, 365 or 366."},
        {withLine(3, " 400 "), 13,
         "should hold the year length, but '400' lies outside 360 to 366."},
        {withLine(4, "1961-01-01"), 13,
         "should hold the start date, but '1961-01-01' is not a date dd/mm/yyyy."},
        {withLine(6, "TRUE"), 13,
         "should hold the process flag, but 'TRUE' is not #TRUE# or #FALSE#."},
        {withLine(7, " 0 "), 13, "should hold the ensemble size, but '0' lies outside 1 to 100."},
        {withLine(7, "\x01\x02"), 13,
         "should hold the ensemble size, but '\\x01\\x02' is not a number."},
        {withLine(10, "-"), 13, "should hold the bias correction, but '-' is not a number."},
    };
    TempDir dir;
    for (const Case& c : cases) {
        const auto path = dir.write("g.SIM", c.content);
        EXPECT_TRUE(varo::testing::failsWith([&] { series::readSimulationDescription(path); },
                                             c.number,
                                             "of the SIM file '" + path + "' " + c.expected))
            << c.expected;
    }
    const auto wide = dir.write("w.SIM", withLine(2, std::string(70000, '7')));
    EXPECT_TRUE(
        varo::testing::failsWith([&] { series::readSimulationDescription(wide); }, 13,
                                 "Line 2 of '" + wide + "' is longer than 65536 characters"));
    const auto shortFile = dir.write("s.SIM", " 2 \r\n 12 \r\n");
    EXPECT_TRUE(
        varo::testing::failsWith([&] { series::readSimulationDescription(shortFile); }, 62,
                                 "The SIM file '" + shortFile +
                                     "' ends after line 2, where line 3 should hold the year "
                                     "length."));
    const auto names = dir.write("n.SIM", withLine(13, "").substr(0, withLine(13, "").size() - 2));
    EXPECT_TRUE(varo::testing::failsWith([&] { series::readSimulationDescription(names); }, 62,
                                         "line 13 should hold the name of predictor 2."));
    EXPECT_EQ(
        series::readSimulationDescription(dir.write("bom.SIM", "\xEF\xBB\xBF" + withLine(0, ""))),
        sample());
}

TEST(SimulationFiles, SimPathReplacesTheLastThreeCharacters) {
    EXPECT_EQ(series::simPathFor("/a/run.OUT"), "/a/run.SIM");
    EXPECT_EQ(series::simPathFor("/a/run.out"), "/a/run.SIM");
}

TEST(OutFile, DayLinesUseZonesAndThreeDecimals) {
    const double values[] = {1234567.5, -999.0, 0.0004};
    std::string line;
    series::appendDayLine(line, values, 3);
    EXPECT_EQ(line, "1234567.500   -999.000      0.000         ");
    std::string single;
    series::appendDayLine(single, values + 1, 1);
    EXPECT_EQ(single, "-999.000      ");
}
