#include "core/dates.hpp"

#include <gtest/gtest.h>

using namespace varo::core;

TEST(Dates, ParsesBothFormsAndRefusesDatesOutsideTheCalendar) {
    EXPECT_EQ(parseDate("01/01/1961"), (Date{1, 1, 1961}));
    EXPECT_EQ(parseDate("1/2/1961"), (Date{1, 2, 1961}));
    EXPECT_EQ(parseDate(" 29/02/2000 "), (Date{29, 2, 2000}));
    EXPECT_FALSE(parseDate("29/02/1900"));
    EXPECT_FALSE(parseDate("31/04/1961"));
    EXPECT_FALSE(parseDate("30/02/1961"));
    EXPECT_FALSE(parseDate("1961-01-01"));
    EXPECT_FALSE(parseDate("01/01/61"));
    EXPECT_FALSE(parseDate(""));
    EXPECT_FALSE(parseDate("aa/bb/cccc"));
}

TEST(Dates, FormatsWithTwoDigitDayAndMonth) {
    EXPECT_EQ(formatDate(Date{2, 3, 1961}), "02/03/1961");
}

TEST(Dates, StandardPeriodHas10957DaysAndSerialsRoundTrip) {
    EXPECT_EQ(dayDifference(Date{1, 1, 1961}, Date{31, 12, 1990}) + 1, 10957);
    EXPECT_EQ(serialDay(Date{30, 12, 1899}), 0);
    EXPECT_EQ(serialDay(Date{1, 1, 1900}), 2);
    for (long serial : {-1000L, 0L, 1L, 22280L, 73050L}) {
        EXPECT_EQ(serialDay(dateFromSerial(serial)), serial);
    }
}

TEST(Dates, DateFromPartsRunsOverIntoTheNextMonthAndYear) {
    EXPECT_EQ(dateFromParts(1961, 2, 30), (Date{2, 3, 1961}));
    EXPECT_EQ(dateFromParts(1960, 2, 30), (Date{1, 3, 1960}));
    EXPECT_EQ(dateFromParts(1961, 12, 32), (Date{1, 1, 1962}));
    EXPECT_EQ(dateFromParts(1961, 13, 1), (Date{1, 1, 1962}));
    EXPECT_EQ(dateFromParts(1961, 3, 0), (Date{28, 2, 1961}));
}
