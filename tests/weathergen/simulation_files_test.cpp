#include "core/failure.hpp"
#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"
#include "weathergen/simulation_files.hpp"

#include <gtest/gtest.h>

using namespace varo;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {
weathergen::SimulationDescription sample() {
    weathergen::SimulationDescription d;
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
    weathergen::writeSimulationDescription(path, sample());
    EXPECT_EQ(readFile(path), " 2 \r\n 12 \r\n 360 \r\n01/01/2011\r\n 32400 \r\n#TRUE#\r\n 20 \r\n"
                              " 12 \r\n 2 \r\n .9 \r\nprecip.dat\r\nmslp.dat\r\np500.dat\r\n");
    EXPECT_EQ(weathergen::readSimulationDescription(path), sample());
}

TEST(SimulationDescription, GarbledOrShortFilesFailWithTheirLine) {
    TempDir dir;
    const auto garbled = dir.write("g.SIM", " 2 \r\n 12 \r\n 366 \r\n1961-01-01\r\n");
    EXPECT_TRUE(varo::testing::failsWith([&] { weathergen::readSimulationDescription(garbled); },
                                         13, "line 4"));
    const auto shortFile = dir.write("s.SIM", " 2 \r\n 12 \r\n");
    EXPECT_TRUE(
        varo::testing::failsWith([&] { weathergen::readSimulationDescription(shortFile); }, 62));
}

TEST(SimulationFiles, SimPathReplacesTheLastThreeCharacters) {
    EXPECT_EQ(weathergen::simPathFor("/a/run.OUT"), "/a/run.SIM");
    EXPECT_EQ(weathergen::simPathFor("/a/run.out"), "/a/run.SIM");
}

TEST(OutFile, DayLinesUseZonesAndThreeDecimals) {
    const double values[] = {1234567.5, -999.0, 0.0004};
    std::string line;
    weathergen::appendDayLine(line, values, 3);
    EXPECT_EQ(line, "1234567.500   -999.000      0.000         ");
    std::string single;
    weathergen::appendDayLine(single, values + 1, 1);
    EXPECT_EQ(single, "-999.000      ");
}
