#include "core/dates.hpp"

#include <charconv>
#include <cstdio>

namespace varo::core {

bool isGregorianLeapYear(int year) {
    if (year % 400 == 0) {
        return true;
    }
    if (year % 100 == 0) {
        return false;
    }
    return year % 4 == 0;
}

int daysInGregorianMonth(int month, int year) {
    static constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month == 2 && isGregorianLeapYear(year)) {
        return 29;
    }
    return lengths[month - 1];
}

bool isRealDate(int day, int month, int year) {
    return year >= 100 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
           day <= daysInGregorianMonth(month, year);
}

namespace {

bool parsePart(std::string_view text, int minDigits, int maxDigits, int& value) {
    if (text.size() < static_cast<size_t>(minDigits) ||
        text.size() > static_cast<size_t>(maxDigits)) {
        return false;
    }
    for (char c : text) {
        if (c < '0' || c > '9') {
            return false;
        }
    }
    std::from_chars(text.data(), text.data() + text.size(), value);
    return true;
}

std::string_view trimBlanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return text;
}

// Days from 1 March of year 0 (proleptic Gregorian) to the date.
long daysFromCivil(int year, int month, int day) {
    const long y = month <= 2 ? year - 1 : year;
    const long era = (y >= 0 ? y : y - 399) / 400;
    const long yearOfEra = y - era * 400;
    const long dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra;
}

const long serialOrigin = daysFromCivil(1899, 12, 30);

} // namespace

std::optional<Date> parseDate(std::string_view text) {
    text = trimBlanks(text);
    const size_t first = text.find('/');
    if (first == std::string_view::npos) {
        return std::nullopt;
    }
    const size_t second = text.find('/', first + 1);
    if (second == std::string_view::npos) {
        return std::nullopt;
    }
    Date date;
    if (!parsePart(text.substr(0, first), 1, 2, date.day) ||
        !parsePart(text.substr(first + 1, second - first - 1), 1, 2, date.month) ||
        !parsePart(text.substr(second + 1), 4, 4, date.year)) {
        return std::nullopt;
    }
    if (!isRealDate(date.day, date.month, date.year)) {
        return std::nullopt;
    }
    return date;
}

std::string formatDate(const Date& date) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%02d/%02d/%04d", date.day, date.month, date.year);
    return buffer;
}

long serialDay(const Date& date) {
    return daysFromCivil(date.year, date.month, date.day) - serialOrigin;
}

Date dateFromSerial(long serial) {
    // Inverse of daysFromCivil.
    const long z = serial + serialOrigin;
    const long era = (z >= 0 ? z : z - 146096) / 146097;
    const long dayOfEra = z - era * 146097;
    const long yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long mp = (5 * dayOfYear + 2) / 153;
    Date date;
    date.day = static_cast<int>(dayOfYear - (153 * mp + 2) / 5 + 1);
    date.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    date.year = static_cast<int>(yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0));
    return date;
}

Date dateFromParts(int year, int month, int day) {
    // Months run over into years first, then the day counts on from the first of the month.
    int monthIndex = month - 1;
    year += monthIndex >= 0 ? monthIndex / 12 : (monthIndex - 11) / 12;
    monthIndex = ((monthIndex % 12) + 12) % 12;
    const long first = daysFromCivil(year, monthIndex + 1, 1) - serialOrigin;
    return dateFromSerial(first + day - 1);
}

long dayDifference(const Date& from, const Date& to) {
    return serialDay(to) - serialDay(from);
}

int yearDifference(const Date& from, const Date& to) {
    return to.year - from.year;
}

} // namespace varo::core
