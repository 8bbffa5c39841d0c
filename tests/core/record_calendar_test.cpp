#include "core/failure.hpp"
#include "core/progress.hpp"
#include "core/record_calendar.hpp"

#include <gtest/gtest.h>

using namespace varo::core;

namespace {
Date stepped(CalendarRule rule, Date from) {
    RecordCalendar position(rule, from);
    position.stepDay();
    return {position.day(), position.month(), position.year()};
}
const CalendarRule Gregorian = calendarForYearLength(366);
const CalendarRule NoLeap = calendarForYearLength(365);
const CalendarRule Days360 = calendarForYearLength(360);
} // namespace

TEST(RecordCalendar, LeapDayOnlyUnderTheGregorianCalendar) {
    EXPECT_EQ(stepped(Gregorian, {28, 2, 1960}), (Date{29, 2, 1960}));
    EXPECT_EQ(stepped(NoLeap, {28, 2, 1960}), (Date{1, 3, 1960}));
    EXPECT_EQ(stepped(Gregorian, {28, 2, 1900}), (Date{1, 3, 1900}));
    EXPECT_EQ(stepped(Gregorian, {28, 2, 2000}), (Date{29, 2, 2000}));
}

TEST(RecordCalendar, ThirtyDayMonthsHaveAThirtiethFebruaryAndNoThirtyFirst) {
    EXPECT_EQ(stepped(Days360, {28, 2, 1961}), (Date{29, 2, 1961}));
    EXPECT_EQ(stepped(Days360, {29, 2, 1961}), (Date{30, 2, 1961}));
    EXPECT_EQ(stepped(Days360, {30, 2, 1961}), (Date{1, 3, 1961}));
    EXPECT_EQ(stepped(Days360, {30, 1, 1961}), (Date{1, 2, 1961}));
    EXPECT_EQ(stepped(Days360, {30, 12, 1961}), (Date{1, 1, 1962}));
}

TEST(RecordCalendar, YearEndUnderEveryCalendar) {
    EXPECT_EQ(stepped(Gregorian, {31, 12, 1990}), (Date{1, 1, 1991}));
    EXPECT_EQ(stepped(NoLeap, {31, 12, 1990}), (Date{1, 1, 1991}));
}

TEST(RecordCalendar, SeasonsAndPeriodFilter) {
    EXPECT_EQ(seasonOfMonth(12), 1);
    EXPECT_EQ(seasonOfMonth(1), 1);
    EXPECT_EQ(seasonOfMonth(3), 2);
    EXPECT_EQ(seasonOfMonth(8), 3);
    EXPECT_EQ(seasonOfMonth(11), 4);
    EXPECT_TRUE(monthPassesPeriod(7, 0));
    EXPECT_TRUE(monthPassesPeriod(12, 1));
    EXPECT_FALSE(monthPassesPeriod(3, 1));
    EXPECT_TRUE(monthPassesPeriod(1, 5));
    EXPECT_TRUE(monthPassesPeriod(12, 16));
    EXPECT_FALSE(monthPassesPeriod(11, 16));
}

TEST(RecordCalendar, ComparisonRunsOverSoAThirtiethFebruaryEndsAReadEarly) {
    RecordCalendar position(Days360, {29, 2, 1961});
    const Date endDate{1, 3, 1961};
    EXPECT_TRUE(position.notPast(endDate));
    position.stepDay(); // 30 February counts as 2 March
    EXPECT_EQ(position.asDate(), (Date{2, 3, 1961}));
    EXPECT_FALSE(position.notPast(endDate));
}

TEST(RecordCalendar, WeatherGeneratorStepRaisesTheDayFirst) {
    RecordCalendar position(Gregorian, {1, 1, 1961});
    position.lowerDay();
    position.raiseDay();
    position.completeRaisedDay();
    EXPECT_EQ(position.asDate(), (Date{1, 1, 1961}));
    RecordCalendar end(Gregorian, {31, 1, 1961});
    end.raiseDay();
    end.completeRaisedDay();
    EXPECT_EQ(end.asDate(), (Date{1, 2, 1961}));
}

namespace {
class RecordingProgress : public Progress {
public:
    std::vector<std::string> captions;
    long last = -1;
    bool stop = false;
    void report(long current, long, std::string_view caption) override {
        captions.emplace_back(caption);
        last = current;
    }
    bool stopRequested() override {
        const bool was = stop;
        stop = false;
        return was;
    }
};
} // namespace

TEST(SkipToFitStart, CountsRowsByTheModelCalendarAndResetsToTheRealDate) {
    // In a 360-day record 2 March is row 61, but the position 30 February already counts
    // as 2 March, so the skip ends after 59 rows and the position becomes 2 March.
    RecordCalendar position(Days360, {1, 1, 1961});
    RecordingProgress progress;
    int discarded = 0;
    skipToFitStart(
        position, {1, 1, 1961}, {2, 3, 1961}, [&] { ++discarded; }, progress);
    EXPECT_EQ(discarded, 59);
    EXPECT_EQ(position.asDate(), (Date{2, 3, 1961}));
    EXPECT_EQ(position.day(), 2);
    EXPECT_EQ(position.month(), 3);
    EXPECT_EQ(progress.captions.front(), "Skipping Unnecessary Data");
    EXPECT_EQ(progress.last, 98); // 59 of the 60 real days
}

TEST(SkipToFitStart, NothingToSkipShowsNoCaption) {
    RecordCalendar position(Gregorian, {1, 1, 1961});
    RecordingProgress progress;
    int discarded = 0;
    skipToFitStart(
        position, {1, 1, 1961}, {1, 1, 1961}, [&] { ++discarded; }, progress);
    EXPECT_EQ(discarded, 0);
    EXPECT_TRUE(progress.captions.empty());
}

TEST(SkipToFitStart, StopRequestCancels) {
    RecordCalendar position(Gregorian, {1, 1, 1961});
    RecordingProgress progress;
    progress.stop = true;
    EXPECT_THROW(skipToFitStart(
                     position, {1, 1, 1961}, {1, 1, 1962}, [] {}, progress),
                 Cancelled);
}

TEST(DaysInclusive, CountsBothEnds) {
    EXPECT_EQ(daysInclusive({1, 1, 1961}, {31, 12, 1990}), 10957);
    EXPECT_EQ(daysInclusive({1, 1, 1961}, {1, 1, 1961}), 1);
}
