#include "core/record_calendar.hpp"

#include "core/program_state.hpp"
#include "core/progress.hpp"

namespace varo::core {

bool isLeapYear(int year) {
    return isGregorianLeapYear(year);
}

int seasonOfMonth(int month) {
    switch (month) {
    case 12:
    case 1:
    case 2:
        return 1;
    case 3:
    case 4:
    case 5:
        return 2;
    case 6:
    case 7:
    case 8:
        return 3;
    default:
        return 4;
    }
}

CalendarRule calendarForYearLength(int yearIndicator) {
    switch (yearIndicator) {
    case 360:
        return {2, 0};
    case 365:
        return {1, 0};
    default:
        return {1, 1};
    }
}

CalendarRule calendarInForce(const ProgramState& state) {
    return calendarForYearLength(state.yearIndicator);
}

DatesInUse settingsDatesInUse(const ProgramState& state, const Date& periodStart,
                              const Date& periodEnd, std::string periodName) {
    return {formatDate(state.globalSDate), formatDate(state.globalEDate), formatDate(periodStart),
            formatDate(periodEnd),         std::move(periodName),         state.yearIndicator};
}

bool monthPassesPeriod(int month, int periodEntry) {
    if (periodEntry == 0) {
        return true;
    }
    if (periodEntry >= 1 && periodEntry <= 4) {
        return seasonOfMonth(month) == periodEntry;
    }
    return month == periodEntry - 4;
}

RecordCalendar::RecordCalendar(CalendarRule rule, const Date& start) : rule_(rule) {
    setPosition(start);
}

void RecordCalendar::setPosition(const Date& date) {
    day_ = static_cast<std::int16_t>(date.day);
    month_ = static_cast<std::int16_t>(date.month);
    year_ = static_cast<std::int16_t>(date.year);
}

void RecordCalendar::stepDay() {
    raiseDay();
    completeRaisedDay();
}

void RecordCalendar::completeRaisedDay() {
    int extra = 0;
    if (month_ == 2 && isLeapYear(year_) && rule_.yearLengthRow == 1) {
        extra = rule_.leapExtraDays;
    }
    if (day_ > MonthLengths[rule_.yearLengthRow][month_] + extra) {
        day_ = 1;
        ++month_;
    }
    if (month_ == 13) {
        month_ = 1;
        ++year_;
    }
}

long daysInclusive(const Date& start, const Date& end) {
    return dayDifference(start, end) + 1;
}

void skipToFitStart(RecordCalendar& position, const Date& recordStart, const Date& fitStart,
                    const std::function<void()>& discardDay, Progress& progress) {
    position.setPosition(recordStart);
    const long daysToSkip = dayDifference(recordStart, fitStart);
    if (daysToSkip > 0) {
        progress.report(0, 100, SkippingCaption);
    }
    long daysRead = 0;
    while (position.before(fitStart)) {
        progress.throwIfStopped();
        discardDay();
        ++daysRead;
        position.stepDay();
        progress.report(daysRead * 100 / daysToSkip, 100, SkippingCaption);
    }
    position.setPosition(fitStart);
}

} // namespace varo::core
