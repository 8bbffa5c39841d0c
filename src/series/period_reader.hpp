// Reading the analysis period of one data file: the days before the period are read and
// dropped, then every day from the period's start to its end inclusive is read, stepping
// by the calendar of the file's own year length (`DailyFiles` with a single file).
//
// A file of one member is read free-format, one number a day. A file of several members
// (an OUT file) is read a line a day, member k being the number in characters 14k - 13 to
// 14k, which must hold that number and nothing else.
#pragma once

#include "core/dates.hpp"
#include "core/progress.hpp"
#include "core/record_calendar.hpp"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace varo::series {

inline constexpr std::string_view ReadingCaption = "Reading in Data";

struct DataSource {
    std::string path;
    int memberCount = 1;
    core::CalendarRule calendar = core::RealCalendar;
    core::Date recordStart; // the date of the file's first row
};

// The position of one day of a period: its month and year by the record's calendar.
struct PeriodDay {
    std::int16_t month = 1;
    std::int16_t year = 1900;
};

// The values of a period, member by member.
struct PeriodValues {
    std::vector<PeriodDay> days;
    int memberCount = 1;
    std::vector<double> values; // member-major: member m, day d at m * days + d

    const double* member(int m) const {
        return values.data() + static_cast<size_t>(m) * days.size();
    }
};

// The positions of the days from `start` to `end` inclusive under the calendar, by the
// read-phase rule (a position is compared with the end date as a real date, so under a
// 360-day calendar 30 February counts as 2 March).
std::vector<PeriodDay> periodDays(const core::CalendarRule& calendar, const core::Date& start,
                                  const core::Date& end);

// Reads the period. Reports "Skipping Unnecessary Data" and "Reading in Data" once a day
// and throws `core::Cancelled` on a stop. A file that ends early fails with 62 and a
// description naming the dates read by; a member's field that holds anything but one number
// fails with 13 naming the file, line, column and text.
PeriodValues readPeriod(const DataSource& source, const core::Date& start, const core::Date& end,
                        core::Progress& progress);

} // namespace varo::series
