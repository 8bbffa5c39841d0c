// The day cube on its own: the days a group holds, the sections that missing days and
// group changes open, single precision, and the design matrices built from the sections.
#include "calibration/day_cube.hpp"

#include "calibration_test_support.hpp"
#include "core/failure.hpp"
#include "support/failure_checks.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo::calibration;
using varo::core::Date;
using varo::testing::CountingProgress;
using varo::testing::failsWith;
using varo::testing::TempDir;

namespace {

constexpr double Missing = -999.0;

// December 1960 (skipped), then January to March 1961: the predictand of day d of 1961
// is d / 10 and the predictor d. The predictand is missing on 1 and 2 January and on
// 11 March, the predictor on 4 and 10 January.
struct ThreeMonths {
    TempDir dir;
    CalibrationData data;
    varo::core::ProgramState state = varo::testing::sixYearState();

    ThreeMonths() {
        std::string predictand;
        std::string predictor;
        for (int d = -30; d <= 90; ++d) {
            const bool noY = d == 1 || d == 2 || d == 70;
            const bool noX = d == 4 || d == 10;
            predictand += (noY ? "-999" : std::to_string(d / 10.0)) + "\r\n";
            predictor += (noX ? "-999" : std::to_string(d)) + "\r\n";
        }
        state.globalSDate = {1, 12, 1960};
        data.predictandPath = dir.write("rain.dat", predictand);
        data.predictorPaths = {dir.write("mslp.dat", predictor)};
        data.fitStart = {1, 1, 1961};
        data.fitEnd = {31, 3, 1961};
        data.fitDays = 90;
    }

    DayCube read(ModelType type) {
        data.modelType = type;
        CountingProgress progress;
        return readDayCube(state, data, progress);
    }
};

} // namespace

TEST(DayCube, GroupsAndSectionsFollowMissingDaysAndGroupChanges) {
    ThreeMonths files;
    struct Case {
        ModelType type;
        std::vector<int> counts;
        std::vector<std::vector<int>> sections;
    };
    // January keeps 3 January alone (4 January has no predictor), 5 to 9 and 11 to 31; a
    // new month opens a section in a monthly model only; 11 March splits March.
    const std::vector<Case> cases{
        {ModelType::Monthly, {27, 28, 30}, {{1, 5, 21}, {28}, {10, 20}}},
        {ModelType::Seasonal, {55, 30}, {{1, 5, 49}, {10, 20}}},
        {ModelType::Annual, {85}, {{1, 5, 59, 20}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.type));
        const DayCube cube = files.read(c.type);
        for (size_t g = 0; g < c.counts.size(); ++g) {
            EXPECT_EQ(cube.count(static_cast<int>(g) + 1), c.counts[g]) << g;
            EXPECT_EQ(cube.sectionLengths(static_cast<int>(g) + 1), c.sections[g]) << g;
        }
    }
    const DayCube monthly = files.read(ModelType::Monthly);
    EXPECT_EQ(monthly.count(4), 0); // no April in the fit period
    // Values are held in single precision: 3 January first, then 5 January.
    EXPECT_EQ(monthly.value(1, 0, 0), 0.3f);
    EXPECT_EQ(monthly.value(1, 0, 1), 3.0f);
    EXPECT_EQ(monthly.value(1, 1, 0), 0.5f);
    EXPECT_EQ(monthly.value(2, 0, 1), 32.0f);  // 1 February
    EXPECT_EQ(monthly.value(3, 10, 1), 71.0f); // 12 March follows 10 March
}

TEST(DayCube, AReturnToAGroupOpensASection) {
    TempDir dir;
    std::string full;
    for (int d = 1; d <= 365; ++d) {
        full += std::to_string(d) + "\r\n";
    }
    CalibrationData data;
    data.predictandPath = dir.write("y.dat", full);
    data.predictorPaths = {data.predictandPath};
    data.fitStart = {1, 1, 1961};
    data.fitEnd = {31, 12, 1961};
    data.fitDays = 365;
    data.modelType = ModelType::Seasonal;
    CountingProgress progress;
    const DayCube cube = readDayCube(varo::testing::sixYearState(), data, progress);
    // Winter: January and February, then December after the autumn.
    EXPECT_EQ(cube.sectionLengths(1), (std::vector<int>{59, 31}));
    EXPECT_EQ(cube.sectionLengths(4), std::vector<int>{91});
    EXPECT_EQ(cube.value(1, 59, 0), 335.0f); // 1 December
}

// One report a day of the fit period and of the skip, and the first.
constexpr long ThreeMonthReports = 1 + 1 + 31 + 90;

TEST(DayCube, ReadingSkipsToTheFitStartUnderItsCaption) {
    ThreeMonths files;
    files.data.modelType = ModelType::Monthly;
    CountingProgress progress;
    readDayCube(files.state, files.data, progress);
    EXPECT_EQ(progress.captions, (std::vector<std::string>{
                                     "Reading Data", "Skipping Unnecessary Data", "Reading Data"}));
    EXPECT_EQ(progress.reports, ThreeMonthReports);
}

TEST(DayCube, AStopRequestEndsTheReading) {
    ThreeMonths files;
    files.data.modelType = ModelType::Monthly;
    CountingProgress stopping(ThreeMonthReports - 5);
    EXPECT_THROW(readDayCube(files.state, files.data, stopping), varo::core::Cancelled);
}

TEST(DayCube, GroupsHoldATwelfthOrAQuarterOfTheDaysAndAHundredMore) {
    const std::vector<double> day{1.0, 2.0};
    struct Case {
        ModelType type;
        long fitDays;
        int capacity;
    };
    // 1206 / 12 = 100.5 rounds to even, 1210 / 4 = 302.5 likewise.
    for (const Case& c : {Case{ModelType::Monthly, 1206, 200}, Case{ModelType::Seasonal, 1210, 402},
                          Case{ModelType::Annual, 150, 150}}) {
        DayCube cube(c.type, 2, c.fitDays);
        for (int d = 0; d < c.capacity; ++d) {
            cube.store(1, day, false);
        }
        EXPECT_EQ(cube.count(1), c.capacity);
        EXPECT_TRUE(failsWith([&] { cube.store(1, day, false); }, varo::core::failure::FileTooLarge,
                              "Group 1 of the model holds at most " + std::to_string(c.capacity) +
                                  " days."));
    }
    DayCube sections(ModelType::Annual, 2, 1000);
    for (int s = 0; s < MaxSections; ++s) {
        sections.store(1, day, true);
    }
    EXPECT_TRUE(failsWith([&] { sections.store(1, day, true); }, varo::core::failure::FileTooLarge,
                          "breaks into more than 200 runs"));
    sections.store(1, day, false); // the last section can still grow
    EXPECT_EQ(sections.sectionLengths(1).back(), 2);
    EXPECT_TRUE(failsWith([] { DayCube(ModelType::Annual, MaxSeries + 1, 10); },
                          varo::core::failure::FileTooLarge, "at most 100 files a day"));
}

TEST(GroupDesign, TheLagPairsDaysWithinSectionsAndAOneDaySectionLeavesAZeroRow) {
    ThreeMonths files;
    const DayCube monthly = files.read(ModelType::Monthly);
    // January: sections of 1, 5 and 21 days give 0 + 4 + 20 rows of 27 - 2.
    const GroupDesign lagged = buildGroupDesign(monthly, 1, true, false, 0.0f);
    ASSERT_EQ(lagged.x.rows(), 25);
    ASSERT_EQ(lagged.x.columns(), 3);
    // Row 0: 6 January on 5 January.
    EXPECT_EQ(lagged.y.getValue(0, 0), static_cast<double>(0.6f));
    EXPECT_EQ(lagged.x.getValue(0, 0), 1.0);
    EXPECT_EQ(lagged.x.getValue(0, 1), 6.0);
    EXPECT_EQ(lagged.x.getValue(0, 2), static_cast<double>(0.5f));
    // Row 4 starts the third section: 12 January on 11 January, not on 9 January.
    EXPECT_EQ(lagged.x.getValue(4, 1), 12.0);
    EXPECT_EQ(lagged.x.getValue(4, 2), static_cast<double>(1.1f));
    // The last row stays unfilled.
    for (int c = 0; c < 3; ++c) {
        EXPECT_EQ(lagged.x.getValue(24, c), 0.0) << c;
    }
    EXPECT_EQ(lagged.y.getValue(24, 0), 0.0);

    // A conditional model's lag is whether the day before was wet, in single precision.
    const GroupDesign wet = buildGroupDesign(monthly, 1, true, true, 0.6f);
    EXPECT_EQ(wet.x.getValue(0, 2), 0.0); // 0.5 is dry
    EXPECT_EQ(wet.x.getValue(1, 2), 0.0); // 0.6 equals the threshold
    EXPECT_EQ(wet.x.getValue(2, 2), 1.0); // 0.7

    // Without the lag every kept day is a row.
    const GroupDesign plain = buildGroupDesign(monthly, 2, false, false, 0.0f);
    EXPECT_EQ(plain.x.rows(), 28);
    EXPECT_EQ(plain.x.columns(), 2);
    EXPECT_EQ(plain.y.getValue(27, 0), static_cast<double>(5.9f)); // 28 February

    // An annual model pairs each day with the kept day before, across every gap.
    const GroupDesign annual =
        buildGroupDesign(files.read(ModelType::Annual), 1, true, false, 0.0f);
    ASSERT_EQ(annual.x.rows(), 84);
    EXPECT_EQ(annual.x.getValue(0, 1), 5.0);                        // 5 January
    EXPECT_EQ(annual.x.getValue(0, 2), static_cast<double>(0.3f));  // on 3 January
    EXPECT_EQ(annual.x.getValue(64, 1), 71.0);                      // 12 March
    EXPECT_EQ(annual.x.getValue(64, 2), static_cast<double>(6.9f)); // on 10 March
}

TEST(Groups, MonthsSeasonsAndTheYear) {
    EXPECT_EQ(groupCount(ModelType::Monthly), 12);
    EXPECT_EQ(groupCount(ModelType::Seasonal), 4);
    EXPECT_EQ(groupCount(ModelType::Annual), 1);
    EXPECT_EQ(monthsOfGroup(ModelType::Seasonal, 1), (std::vector<int>{1, 2, 12}));
    EXPECT_EQ(monthsOfGroup(ModelType::Seasonal, 4), (std::vector<int>{9, 10, 11}));
    EXPECT_EQ(monthsOfGroup(ModelType::Annual, 1).size(), 12u);
    EXPECT_EQ(groupOfMonth(ModelType::Monthly, 7), 7);
    const auto state = varo::testing::sixYearState();
    EXPECT_EQ(groupName(state, ModelType::Seasonal, 3), "Summer");
    EXPECT_EQ(groupName(state, ModelType::Annual, 1), "Annual");
    EXPECT_EQ(groupName(state, ModelType::Monthly, 2), "February");
}
