#include "engine_support.hpp"

#include <gtest/gtest.h>

using namespace varo;
using namespace varo::statistics;
using namespace varo::testing;

namespace {
// Days of the real calendar from 30 November 1961 to 2 January 1962.
std::vector<PeriodDay> novemberToJanuary() {
    std::vector<PeriodDay> days = {{11, 1961}};
    for (int d = 0; d < 31; ++d) {
        days.push_back({12, 1961});
    }
    days.push_back({1, 1962});
    days.push_back({1, 1962});
    return days;
}
} // namespace

TEST(RowLayout, BlocksCloseWhereMonthSeasonAndYearChange) {
    const RowLayout layout(novemberToJanuary());
    using V = std::vector<std::int32_t>;
    const std::int32_t B = RowLayout::BlockEndMark;
    const std::int32_t R = RowLayout::RowEndMark;
    EXPECT_EQ(layout.entries(11), (V{0, B, R}));
    EXPECT_EQ(layout.entries(1), (V{32, 33, B, R}));
    EXPECT_EQ(layout.entries(16), (V{0, B, R})); // Autumn
    EXPECT_EQ(layout.entries(2), (V{R}));        // no February day
    // December and January belong to one Winter block.
    const V& winter = layout.entries(13);
    ASSERT_EQ(winter.size(), 35u);
    EXPECT_EQ(std::count(winter.begin(), winter.end(), B), 1);
    EXPECT_EQ(winter[33], B);
    // The year row closes 1961 before the first day of 1962.
    const V& year = layout.entries(17);
    ASSERT_EQ(year.size(), 37u);
    EXPECT_EQ(year[32], B);
    EXPECT_EQ(year[33], 32);
    EXPECT_EQ(year[35], B);
    EXPECT_EQ(year[36], R);
}

TEST(RowLayout, FillPutsTheMembersValuesAndTheSentinels) {
    const RowLayout layout({{3, 1961}, {3, 1961}, {4, 1961}});
    const double values[] = {1.5, -999.0, 32766.0};
    MemberRows rows;
    layout.fill(values, Missing, 1.5f, rows);
    EXPECT_EQ(rows.values[3], (std::vector<double>{1.5, -999.0, BE, RE}));
    EXPECT_EQ(rows.values[4], (std::vector<double>{32766.0, BE, RE}));
    EXPECT_EQ(rows.values[14], (std::vector<double>{1.5, -999.0, 32766.0, BE, RE}));
    // 1.5 is not above a threshold of 1.5; the datum 32766 is a block end.
    EXPECT_EQ(rows.kinds[14], (std::vector<Kind>{Kind::Dry, Kind::Missing, Kind::BlockEnd,
                                                 Kind::BlockEnd, Kind::RowEnd}));
}

TEST(RowLayout, KindsCompareWithTheThresholdInSinglePrecision) {
    // 0.1000000015 lies above 0.1f as a double but rounds to 0.1f.
    EXPECT_EQ(kindOf(0.1000000015, Missing, 0.1f), Kind::Dry);
    EXPECT_EQ(kindOf(0.2, Missing, 0.1f), Kind::Wet);
    EXPECT_EQ(kindOf(-999.0, Missing, 0.1f), Kind::Missing);
    EXPECT_EQ(kindOf(-999.0001, Missing, -1000.0f), Kind::Wet);
    EXPECT_EQ(kindOf(32767.0, Missing, 0.0f), Kind::RowEnd);
}

TEST(RowLayout, BlocksWithDataCountOnlyBlocksHoldingARealValue) {
    auto blocks = [](std::vector<double> values) {
        MemberRows rows;
        rows.values[1] = std::move(values);
        classifyEntries(rows, Missing, 0.0f);
        return blocksWithData(rows.kinds[1]);
    };
    EXPECT_EQ(blocks({Missing, BE, 5.0, BE, RE}), 1);
    EXPECT_EQ(blocks({RE}), 0);
    EXPECT_EQ(blocks({0.0, BE, RE}), 1); // a dry day is data
    // A datum equal to BlockEnd acts as one.
    EXPECT_EQ(blocks({1.0, 32766.0, 2.0, BE, RE}), 2);
}
