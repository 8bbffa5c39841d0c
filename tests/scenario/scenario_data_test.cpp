// Reading the input by value or by rows as its first line says, the day limit, and writing
// the OUT file whole or not at all.
#include "core/failure.hpp"
#include "scenario/scenario_data.hpp"
#include "scenario_test_support.hpp"
#include "support/failure_checks.hpp"
#include "support/recording_progress.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace varo;
using varo::testing::failsWith;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {

std::vector<double> readMember(const TempDir& dir, const std::string& text, int members = 1,
                               int member = 1) {
    core::NullProgress progress;
    const auto data = scenario::readScenarioData(dir.write("in.dat", text), members, progress);
    return data.members[static_cast<size_t>(member - 1)];
}

} // namespace

// A first line of 14 characters is read value by value, one of 15 as a row of zones: the
// same characters give two days or one.
TEST(ScenarioReading, FirstLineOfFourteenReadsByValueAndFifteenByRows) {
    TempDir dir;
    struct Case {
        std::string text;
        std::vector<double> values;
    };
    const std::vector<Case> cases = {
        {"1.5          2\r\n", {1.5, 2.0}},
        {"1.5           2\r\n", {1.5}},
        {"1.5\r\n2.5\r\n\r\n3.5", {1.5, 2.5, 3.5}}, // by value a blank line is no day
        {"1.5 2.5\r\n3.5", {1.5, 2.5, 3.5}},
        // A padded one-member OUT file: 14 characters, by value.
        {"1.500         \r\n-999.000      \r\n", {1.5, -999.0}},
        // Padded past 14 characters: rows, and a blank line is a day of 0.
        {"1.500          \r\n\r\n2.000\n", {1.5, 0.0, 2.0}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(readMember(dir, c.text), c.values) << c.text;
    }
    EXPECT_FALSE(scenario::readsByRows(std::string(14, 'x')));
    EXPECT_TRUE(scenario::readsByRows(std::string(15, 'x')));
}

TEST(ScenarioReading, WideRowsTakeEachMembersZoneAndShortLinesGiveZero) {
    TempDir dir;
    const std::string text = "1.000         2.000         3.000         \r\n"
                             "4.000         5.000\r\n"
                             "7.000\r\n"
                             "8.000                       9.000\r\n";
    EXPECT_EQ(readMember(dir, text, 3, 1), (std::vector<double>{1, 4, 7, 8}));
    EXPECT_EQ(readMember(dir, text, 3, 2), (std::vector<double>{2, 5, 0, 0}));
    EXPECT_EQ(readMember(dir, text, 3, 3), (std::vector<double>{3, 0, 0, 9}));
}

// A first line shorter than 14 characters a member is refused; a longer one is read.
TEST(ScenarioReading, FirstLineNarrowerThanTheEnsembleIsRefused) {
    const std::string message(scenario::WrongSizeMessage);
    EXPECT_EQ(scenario::sizeRefusal(std::string(27, 'x'), 2), message);
    EXPECT_EQ(scenario::sizeRefusal(std::string(28, 'x'), 2), std::nullopt);
    EXPECT_EQ(scenario::sizeRefusal(std::string(1399, 'x'), 100), message);
    EXPECT_EQ(scenario::sizeRefusal("", 1), std::nullopt);
    TempDir dir;
    core::NullProgress progress;
    EXPECT_EQ(varo::testing::stopMessage([&] {
                  scenario::readScenarioData(dir.write("in.dat", "1.0          2.0\r\n"), 2,
                                             progress);
              }),
              message);
}

TEST(ScenarioReading, ValuesThatAreNoNumbersNameFileLineAndColumn) {
    TempDir dir;
    core::NullProgress progress;
    const std::string single = dir.write("single.dat", "1.0\r\n2.0\r\nwet\r\n");
    EXPECT_TRUE(failsWith([&] { scenario::readScenarioData(single, 1, progress); },
                          core::failure::TypeMismatch, "'wet' on line 3, column 1 of '" + single));
    const std::string wide =
        dir.write("wide.OUT", "1.000         2.000         \r\n1.000         2.x0          \r\n");
    EXPECT_TRUE(failsWith([&] { scenario::readScenarioData(wide, 2, progress); },
                          core::failure::TypeMismatch,
                          "Column 2 (characters 15 to 28) of line 2 of '" + wide));
    EXPECT_TRUE(failsWith([&] { scenario::readScenarioData(dir.path("none.dat"), 1, progress); },
                          core::failure::FileNotFound));
}

TEST(ScenarioReading, HoldsSeventyFiveThousandDaysAndNoMore) {
    TempDir dir;
    core::NullProgress progress;
    std::string text;
    for (long d = 0; d < scenario::MaxDays; ++d) {
        text += "1\n";
    }
    const std::string full = dir.write("full.dat", text);
    EXPECT_EQ(scenario::readScenarioData(full, 1, progress).dayCount, scenario::MaxDays);
    const std::string over = dir.write("over.dat", text + "2\n");
    EXPECT_TRUE(failsWith([&] { scenario::readScenarioData(over, 1, progress); },
                          core::failure::FileTooLarge, "more than 75000 days (line 75001)"));
}

TEST(ScenarioReading, AnEmptyFileHasNoDaysAndReportsReading) {
    TempDir dir;
    varo::testing::RecordingProgress progress;
    const auto data = scenario::readScenarioData(dir.write("in.dat", ""), 1, progress);
    EXPECT_EQ(data.dayCount, 0);
    ASSERT_EQ(data.memberCount(), 1);
    EXPECT_TRUE(data.members[0].empty());
    // With more members its first line is too short.
    EXPECT_EQ(scenario::sizeRefusal("", 3), std::string(scenario::WrongSizeMessage));
    scenario::readScenarioData(dir.write("one.dat", "4\n"), 1, progress);
    EXPECT_EQ(progress.captions, std::vector<std::string>{"Reading Data"});
}

TEST(ScenarioWriting, WritesZonedValuesWithCarriageReturnsToTheByte) {
    TempDir dir;
    core::NullProgress progress;
    const auto data =
        varo::testing::scenarioOf({{1.5, -999.0, 1234567.5, -0.0004}, {0.0, 2.0625, -3.25, 10}});
    const std::string out = dir.path("out.OUT");
    scenario::writeScenarioData(out, data, progress);
    EXPECT_EQ(readFile(out), "1.500         0.000         \r\n"
                             "-999.000      2.062         \r\n"
                             "1234567.500   -3.250        \r\n"
                             "0.000         10.000        \r\n");
    scenario::writeScenarioData(out, varo::testing::scenarioOf({{}}), progress);
    EXPECT_EQ(readFile(out), "");
    // Nothing is left beside it.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.folder()), {}), 1);
}

// A stop while writing and an output that cannot be written leave the earlier file as it
// was and nothing beside it.
TEST(ScenarioWriting, StopOrFailureLeavesTheEarlierFileWhole) {
    TempDir dir;
    const std::string out = dir.write("out.OUT", "earlier\r\n");
    const auto data = varo::testing::scenarioOf({std::vector<double>(500, 1.0)});
    varo::testing::RecordingProgress stopping(100);
    EXPECT_THROW(scenario::writeScenarioData(out, data, stopping), core::Cancelled);
    EXPECT_EQ(readFile(out), "earlier\r\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.folder()), {}), 1);

    core::NullProgress progress;
    EXPECT_TRUE(failsWith([&] { scenario::writeScenarioData(dir.folder(), data, progress); },
                          core::failure::PathAccessError, "it is a folder"));
    EXPECT_TRUE(
        failsWith([&] { scenario::writeScenarioData(dir.path("no/such/out.OUT"), data, progress); },
                  core::failure::PathAccessError, "does not exist or does not take new files"));
    std::filesystem::permissions(out, std::filesystem::perms::owner_read);
    if (::access(out.c_str(), W_OK) != 0) { // not when the tests run as root
        EXPECT_TRUE(failsWith([&] { scenario::writeScenarioData(out, data, progress); },
                              core::failure::PermissionDenied, out));
        EXPECT_EQ(readFile(out), "earlier\r\n");
    }
}
