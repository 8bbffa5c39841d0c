// Positions in a data record and how they step from day to day.
//
// A data file holds no dates: a row's date follows from the record's start date and the
// calendar in force (Gregorian with leap years, 365 days, or 360 days of twelve 30-day
// months). A position is day, month and year as 16-bit integers and need not be a real
// date: 30 February exists in a 360-day record. Comparisons with a real date turn the
// position into a date by the run-over rule, so 30 February 1961 counts as 2 March 1961.
#pragma once

#include "core/dates.hpp"
#include "core/failure.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace varo::core {

class Progress;
struct ProgramState;

// MonthLengths[row][month]: row 1 Gregorian months without the leap day, row 2 30 days.
inline constexpr std::int16_t MonthLengths[3][13] = {
    {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
    {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
    {0, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30, 30},
};

bool isLeapYear(int year);

// Season 1 Winter (December to February), 2 Spring, 3 Summer, 4 Autumn.
int seasonOfMonth(int month);

// The calendar a walk through a record uses: which row of MonthLengths, and the days
// added to February in a leap year.
struct CalendarRule {
    int yearLengthRow = 1;
    int leapExtraDays = 1;
};

// The calendar of a year length 366, 365 or 360 (as in the settings or a SIM file).
CalendarRule calendarForYearLength(int yearIndicator);
// The calendar in force in the settings.
CalendarRule calendarInForce(const ProgramState& state);
// Gregorian months with leap days, whatever the settings say.
inline constexpr CalendarRule RealCalendar{1, 1};

// The dates a run that reads the record of the settings from `periodStart` to `periodEnd`
// uses, for the hint after a file that ends too early.
DatesInUse settingsDatesInUse(const ProgramState& state, const Date& periodStart,
                              const Date& periodEnd, std::string periodName = "fit");

// Period filter entries: 0 Annual, 1 to 4 the seasons, 5 to 16 January to December.
bool monthPassesPeriod(int month, int periodEntry);

class RecordCalendar {
public:
    RecordCalendar(CalendarRule rule, const Date& start);

    std::int16_t day() const { return day_; }
    std::int16_t month() const { return month_; }
    std::int16_t year() const { return year_; }
    int season() const { return seasonOfMonth(month_); }

    // Moves on by one day: the day after the last of a month is the first of the next.
    void stepDay();
    // The weather generator's step: the caller has raised the day number already, and
    // this completes the step (month and year run-over).
    void completeRaisedDay();
    void raiseDay() { ++day_; }
    void lowerDay() { --day_; }

    void setPosition(const Date& date);
    // The position as a real date by the run-over rule.
    Date asDate() const { return dateFromParts(year_, month_, day_); }
    // Plain day difference from the position (run over into a real date) to `date`.
    long daysUntil(const Date& date) const { return dayDifference(asDate(), date); }
    // Skip phases go on while this holds.
    bool before(const Date& date) const { return daysUntil(date) > 0; }
    // Read phases go on while this holds: the end date itself is read.
    bool notPast(const Date& date) const { return daysUntil(date) >= 0; }

private:
    CalendarRule rule_;
    std::int16_t day_ = 1;
    std::int16_t month_ = 1;
    std::int16_t year_ = 1900;
};

// Real calendar days from start to end, both counted.
long daysInclusive(const Date& start, const Date& end);

inline constexpr std::string_view SkippingCaption = "Skipping Unnecessary Data";

// Walks a record from its start date up to the fit start date, calling `discardDay` once
// a day (it reads and drops one value from each open file), and then sets the position
// to the fit start date itself. The reset is deliberate: under a 360- or 365-day calendar
// the skipped rows are counted by the model calendar, while the position afterwards is
// the real start date, and the file pointer alone carries the skip. Reports progress
// under "Skipping Unnecessary Data" when there is anything to skip, and throws
// `Cancelled` on a stop request.
void skipToFitStart(RecordCalendar& position, const Date& recordStart, const Date& fitStart,
                    const std::function<void()>& discardDay, Progress& progress);

} // namespace varo::core
