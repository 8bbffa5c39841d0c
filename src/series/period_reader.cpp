#include "series/period_reader.hpp"

#include "series/daily_files.hpp"

namespace varo::series {

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

} // namespace

PeriodValues readPeriod(const DataSource& source, const core::Date& start, const core::Date& end,
                        core::Progress& progress) {
    const core::DatesInUse dates{core::formatDate(source.recordStart),
                                 {},
                                 core::formatDate(start),
                                 core::formatDate(end),
                                 "analysis period",
                                 yearLengthOf(source.calendar)};
    PeriodValues period;
    period.memberCount = source.memberCount;
    period.days = periodDays(source.calendar, start, end);
    const size_t dayCount = period.days.size();
    period.values.resize(dayCount * static_cast<size_t>(source.memberCount));

    DailyFiles file({{source.path, source.memberCount}},
                    {source.calendar, source.recordStart, start, end, dates});
    file.skipToStart(progress);
    const auto total = static_cast<long>(dayCount);
    for (size_t d = 0; d < dayCount; ++d) {
        progress.report(static_cast<long>(d), total, ReadingCaption);
        progress.throwIfStopped();
        const std::vector<double>& day = file.readDay();
        for (size_t m = 0; m < day.size(); ++m) {
            period.values[m * dayCount + d] = day[m];
        }
    }
    return period;
}

} // namespace varo::series
