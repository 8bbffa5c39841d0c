#include "series/period_reader.hpp"

#include "core/failure.hpp"
#include "support/failure_checks.hpp"
#include "support/recording_progress.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using namespace varo::series;
using namespace varo::testing;

namespace {
core::Date date(int d, int m, int y) {
    return {d, m, y};
}
} // namespace

TEST(PeriodDays, EachYearLengthStepsByItsOwnMonths) {
    // Under 360 days 29 February 1961 counts as 1 March and is read; 30 February counts as
    // 2 March and ends the period.
    const auto days360 =
        periodDays(core::calendarForYearLength(360), date(1, 1, 1961), date(1, 3, 1961));
    EXPECT_EQ(days360.size(), 59u);
    EXPECT_EQ(days360.back().month, 2);
    const auto days365 =
        periodDays(core::calendarForYearLength(365), date(1, 1, 1964), date(31, 12, 1964));
    EXPECT_EQ(days365.size(), 365u); // no 29 February, even in 1964
    const auto days366 =
        periodDays(core::calendarForYearLength(366), date(1, 1, 1964), date(31, 12, 1964));
    EXPECT_EQ(days366.size(), 366u);
}

TEST(ReadPeriod, SkipsByTheFilesCalendarAndReadsMembersByFieldOrOneFreeFormat) {
    TempDir dir;
    // A 360-day file: 360 rows for 1961, then 1962 from row 361.
    std::string text;
    for (int row = 1; row <= 362; ++row) {
        text += std::to_string(row) + ".000" +
                std::string(14 - std::to_string(row).size() - 4, ' ') + std::to_string(-row) +
                ".5\r\n";
    }
    DataSource source{dir.write("run.OUT", text), 2, core::calendarForYearLength(360),
                      date(1, 1, 1961)};
    core::NullProgress progress;
    const auto period = readPeriod(source, date(1, 1, 1962), date(2, 1, 1962), progress);
    ASSERT_EQ(period.days.size(), 2u);
    EXPECT_EQ(period.member(0)[0], 361.0);
    EXPECT_EQ(period.member(1)[1], -362.5);
    EXPECT_EQ(period.days[0].year, 1962);

    // One member is read free format.
    DataSource one{dir.write("obs.dat", "1 2, 3\r\n4\r\n5\r\n"), 1, core::RealCalendar,
                   date(30, 12, 1961)};
    const auto free = readPeriod(one, date(31, 12, 1961), date(2, 1, 1962), progress);
    EXPECT_EQ(std::vector<double>(free.values.begin(), free.values.end()),
              (std::vector<double>{2.0, 3.0, 4.0}));
}

TEST(ReadPeriod, ShortFilesAndGarbledFieldsAreFailures) {
    TempDir dir;
    core::NullProgress progress;
    DataSource shortFile{dir.write("short.dat", "1\r\n2\r\n"), 1, core::RealCalendar,
                         date(1, 1, 1961)};
    EXPECT_TRUE(
        failsWith([&] { readPeriod(shortFile, date(1, 1, 1961), date(3, 1, 1961), progress); },
                  core::failure::InputPastEnd));
    DataSource garbled{dir.write("bad.OUT", "1.000         2.000\r\n1.000         x\r\n"), 2,
                       core::RealCalendar, date(1, 1, 1961)};
    EXPECT_TRUE(
        failsWith([&] { readPeriod(garbled, date(1, 1, 1961), date(2, 1, 1961), progress); },
                  core::failure::TypeMismatch,
                  "Column 2 (characters 15 to 28) of line 2 of '" + garbled.path +
                      "' holds 'x', which is not a number."));
    DataSource narrow{dir.write("narrow.OUT", "1.000\r\n"), 2, core::RealCalendar,
                      date(1, 1, 1961)};
    EXPECT_THROW(readPeriod(narrow, date(1, 1, 1961), date(1, 1, 1961), progress), core::Failure);
}

TEST(ReadPeriod, AStopRequestCancels) {
    TempDir dir;
    DataSource fine{dir.write("fine.dat", "1\r\n2\r\n3\r\n"), 1, core::RealCalendar,
                    date(1, 1, 1961)};
    RecordingProgress stopping(1);
    EXPECT_THROW(readPeriod(fine, date(1, 1, 1961), date(3, 1, 1961), stopping), core::Cancelled);
}
