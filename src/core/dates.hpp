// Real calendar dates: parsing and writing dd/mm/yyyy, day differences, and the
// date-from-parts rule in which a day past a month's end runs over into the next month.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace varo::core {

struct Date {
    int day = 1;
    int month = 1;
    int year = 1900;
    friend bool operator==(const Date&, const Date&) = default;
};

bool isGregorianLeapYear(int year);
int daysInGregorianMonth(int month, int year);
bool isRealDate(int day, int month, int year);

// Accepts dd/mm/yyyy and d/m/yyyy (blanks around the text are ignored); the date must
// exist in the real calendar. Empty when the text is not such a date.
std::optional<Date> parseDate(std::string_view text);
// dd/mm/yyyy
std::string formatDate(const Date& date);

// Days since 30 December 1899, the day count of the platform's dates.
long serialDay(const Date& date);
Date dateFromSerial(long serial);
// A real date from parts, in which days and months past their ends run over:
// 30 February 1961 is 2 March 1961, month 13 is January of the next year.
Date dateFromParts(int year, int month, int day);
// Plain difference in days: to - from.
long dayDifference(const Date& from, const Date& to);
// Calendar-year boundaries crossed from one date to another: to.year - from.year.
int yearDifference(const Date& from, const Date& to);

} // namespace varo::core
