#include "statistics/period_reader.hpp"

#include "core/failure.hpp"
#include "core/series_file.hpp"
#include "statistics/statistics_engine.hpp"

namespace varo::statistics {

std::vector<PeriodDay> periodDays(const core::CalendarRule& calendar, const core::Date& start,
                                  const core::Date& end) {
    std::vector<PeriodDay> days;
    core::RecordCalendar position(calendar, start);
    while (position.notPast(end)) {
        days.push_back({position.month(), position.year()});
        position.stepDay();
    }
    return days;
}

namespace {

int yearLengthOf(const core::CalendarRule& calendar) {
    if (calendar.yearLengthRow == 2) {
        return 360;
    }
    return calendar.leapExtraDays == 1 ? 366 : 365;
}

PeriodValues readPeriodValues(const DataSource& source, const core::Date& start,
                              const core::Date& end, core::Progress& progress) {
    PeriodValues period;
    period.memberCount = source.memberCount;
    period.days = periodDays(source.calendar, start, end);
    const size_t dayCount = period.days.size();
    period.values.resize(dayCount * static_cast<size_t>(source.memberCount));

    core::SeriesReader reader(source.path);
    const bool byLine = source.memberCount > 1;
    core::RecordCalendar position(source.calendar, source.recordStart);
    core::skipToFitStart(
        position, source.recordStart, start,
        [&] {
            if (byLine) {
                reader.readLine();
            } else {
                reader.readNumber();
            }
        },
        progress);

    const auto total = static_cast<long>(dayCount);
    for (size_t d = 0; d < dayCount; ++d) {
        progress.report(static_cast<long>(d), total, caption::Reading);
        progress.throwIfStopped();
        if (!byLine) {
            period.values[d] = reader.readNumber();
            continue;
        }
        const long lineNumber = reader.lineNumber();
        const std::string line = reader.readLine();
        for (int k = 1; k <= source.memberCount; ++k) {
            period.values[static_cast<size_t>(k - 1) * dayCount + d] =
                core::zoneNumber(line, k, lineNumber, source.path);
        }
    }
    return period;
}

} // namespace

PeriodValues readPeriod(const DataSource& source, const core::Date& start, const core::Date& end,
                        core::Progress& progress) {
    const core::DatesInUse dates{core::formatDate(source.recordStart),
                                 {},
                                 core::formatDate(start),
                                 core::formatDate(end),
                                 "analysis period",
                                 yearLengthOf(source.calendar)};
    return core::readingByDates(dates,
                                [&] { return readPeriodValues(source, start, end, progress); });
}

} // namespace varo::statistics
