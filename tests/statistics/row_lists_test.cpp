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
    layout.fill(values, rows);
    EXPECT_EQ(rows[3], (std::vector<double>{1.5, -999.0, BE, RE}));
    EXPECT_EQ(rows[4], (std::vector<double>{32766.0, BE, RE}));
    EXPECT_EQ(rows[14], (std::vector<double>{1.5, -999.0, 32766.0, BE, RE}));
}

TEST(RowLayout, BlocksWithDataCountOnlyBlocksHoldingARealValue) {
    EXPECT_EQ(blocksWithData({Missing, BE, 5.0, BE, RE}, Missing), 1);
    EXPECT_EQ(blocksWithData({RE}, Missing), 0);
    // A datum equal to BlockEnd acts as one.
    EXPECT_EQ(blocksWithData({1.0, 32766.0, 2.0, BE, RE}, Missing), 2);
}
