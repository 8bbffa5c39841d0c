#include "series/daily_files.hpp"

#include "support/failure_checks.hpp"
#include "support/recording_progress.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using namespace varo::series;
using varo::testing::failsWith;
using varo::testing::RecordingProgress;
using varo::testing::TempDir;

namespace {

// Rows first, first + 1, ... one a line.
std::string countingFile(int first, int rows) {
    std::string text;
    for (int i = 0; i < rows; ++i) {
        text += std::to_string(first + i) + "\r\n";
    }
    return text;
}

core::ProgramState settings(int yearIndicator, const std::string& start, const std::string& end) {
    core::ProgramState state;
    core::initialiseState(state);
    state.yearIndicator = static_cast<std::int16_t>(yearIndicator);
    state.globalSDate = *core::parseDate(start);
    state.globalEDate = *core::parseDate(end);
    return state;
}

// Reads the period to its end: the values of the first file and the positions read.
struct Walk {
    std::vector<double> first;
    std::vector<std::string> dates;
};

Walk walkToEnd(DailyFiles& files) {
    Walk walk;
    while (files.inPeriod()) {
        const auto& at = files.position();
        walk.dates.push_back(core::formatDate({at.day(), at.month(), at.year()}));
        walk.first.push_back(files.readDay()[0]);
    }
    return walk;
}

} // namespace

TEST(DailyFiles, SkipsByTheRecordCalendarAndReadsFromTheRealStartDate) {
    TempDir dir;
    const std::string file = dir.write("a.dat", countingFile(1, 400));
    struct Case {
        int yearIndicator;
        core::Date start;
        core::Date end;
        double firstRead; // the row the period starts on
        size_t days;
        std::string lastDate;
    };
    const std::vector<Case> cases{
        // 1 March 1961 is row 60 of a real calendar. Under 360 days the skip stops at the
        // position 29 February, which runs over to 1 March, so row 59 is read on the real
        // 1 March.
        {366, {1, 3, 1961}, {3, 3, 1961}, 60.0, 3, "03/03/1961"},
        {360, {1, 3, 1961}, {3, 3, 1961}, 59.0, 3, "03/03/1961"},
        // 1960 is a leap year: 29 February is a row under 366 only.
        {366, {1, 3, 1960}, {1, 3, 1960}, 61.0, 1, "01/03/1960"},
        {365, {1, 3, 1960}, {1, 3, 1960}, 60.0, 1, "01/03/1960"},
        // Under 360 days 29 February counts as 1 March and is read; 30 February runs over to
        // 2 March and ends the period.
        {360, {25, 2, 1961}, {1, 3, 1961}, 55.0, 5, "29/02/1961"},
        // A period from the record start skips nothing.
        {366, {1, 1, 1961}, {2, 1, 1961}, 1.0, 2, "02/01/1961"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.yearIndicator) + " " + core::formatDate(c.start));
        const std::string start = c.start.year == 1960 ? "01/01/1960" : "01/01/1961";
        const auto state = settings(c.yearIndicator, start, "31/12/1990");
        DailyFiles files({{file}}, settingsPeriod(state, c.start, c.end));
        RecordingProgress progress;
        files.skipToStart(progress);
        EXPECT_EQ(files.position().asDate(), c.start);
        const Walk walk = walkToEnd(files);
        ASSERT_EQ(walk.first.size(), c.days);
        EXPECT_EQ(walk.first.front(), c.firstRead);
        EXPECT_EQ(walk.dates.back(), c.lastDate);
        // The skip caption only when there is something to skip.
        const bool skipped = c.firstRead > 1.0;
        EXPECT_EQ(!progress.captions.empty(), skipped);
        if (skipped) {
            EXPECT_EQ(progress.captions.front(), "Skipping Unnecessary Data");
        }
    }
}

TEST(DailyFiles, ReadsEveryFileADayInStepMembersByTheirZones) {
    TempDir dir;
    const std::string out = dir.write("run.OUT", "1.000         -1.000\r\n"
                                                 "2.000         -2.000\r\n"
                                                 "3.000         -3.000\r\n");
    const std::string one = dir.write("one.dat", "10 20, 30\r\n");
    const core::Date start{1, 1, 1961};
    DailyFiles files({{out, 2}, {one}},
                     {core::RealCalendar, start, {2, 1, 1961}, {3, 1, 1961}, {}});
    EXPECT_EQ(files.fileCount(), 2u);
    core::NullProgress progress;
    files.skipToStart(progress);
    EXPECT_EQ(files.readDay(), (std::vector<double>{2.0, -2.0, 20.0}));
    EXPECT_EQ(files.values(), (std::vector<double>{2.0, -2.0, 20.0}));
    files.discardDay();
    EXPECT_FALSE(files.inPeriod());

    const std::string bad = dir.write("bad.OUT", "1.000         x\r\n");
    DailyFiles garbled({{bad, 2}}, {core::RealCalendar, start, start, start, {}});
    EXPECT_TRUE(failsWith([&] { garbled.readDay(); }, core::failure::TypeMismatch,
                          "Column 2 (characters 15 to 28) of line 1 of '" + bad +
                              "' holds 'x', which is not a number."));
    EXPECT_TRUE(failsWith([&] { DailyFiles({{dir.path("none.dat")}}, {}); },
                          core::failure::FileNotFound, "none.dat"));
}

TEST(DailyFiles, AFileThatEndsEarlyNamesTheDatesInUse) {
    TempDir dir;
    const auto state = settings(366, "01/01/1961", "31/12/1961");
    const auto names = predictandAndPredictors(dir.write("rain.dat", countingFile(1, 40)),
                                               {dir.write("short.dat", countingFile(1, 31))});
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[1].members, 1);
    // Ending in the skip and ending in the period read alike.
    for (const core::Date& start : {core::Date{1, 2, 1961}, core::Date{31, 1, 1961}}) {
        DailyFiles files(names, settingsPeriod(state, start, {10, 2, 1961}));
        core::NullProgress progress;
        EXPECT_TRUE(failsWith(
            [&] {
                files.skipToStart(progress);
                walkToEnd(files);
            },
            core::failure::InputPastEnd,
            "short.dat' ends after line 31, before the dates in use: record from 01/01/1961 to "
            "31/12/1961, fit " +
                core::formatDate(start) + " to 10/02/1961, year length 366."));
    }
}

TEST(DailyFiles, TheSkipStopsOnRequest) {
    TempDir dir;
    const auto state = settings(366, "01/01/1961", "31/12/1961");
    DailyFiles files({{dir.write("a.dat", countingFile(1, 100))}},
                     settingsPeriod(state, {1, 3, 1961}, {2, 3, 1961}));
    RecordingProgress stopping(10);
    EXPECT_THROW(files.skipToStart(stopping), core::Cancelled);
}

TEST(DailyFiles, TheFirstFullDaySkipsDaysWithAMissingValue) {
    TempDir dir;
    const auto state = settings(366, "01/01/1961", "31/12/1961");
    const std::string rain = dir.write("rain.dat", "-999\r\n-999\r\n5\r\n6\r\n7\r\n");
    const std::string mslp = dir.write("mslp.dat", "1\r\n-999\r\n-999\r\n4\r\n5\r\n");
    DailyFiles files(predictandAndPredictors(rain, {mslp}),
                     settingsPeriod(state, {1, 1, 1961}, {5, 1, 1961}));
    int days = 0;
    const core::RecordCalendar found = files.readFirstFullDay(-999.0, [&] { ++days; });
    EXPECT_EQ(found.asDate(), (core::Date{4, 1, 1961}));
    EXPECT_EQ(days, 4);
    EXPECT_EQ(files.values(), (std::vector<double>{6.0, 4.0}));
    EXPECT_EQ(files.position().asDate(), (core::Date{5, 1, 1961}));
    EXPECT_FALSE(anyMissing(files.values(), -999.0));
}

TEST(DailyFiles, NoFullDaySaysWhichFilesHeldOnlyMissingValues) {
    TempDir dir;
    const auto state = settings(366, "01/01/1961", "31/12/1961");
    const std::string values = dir.write("values.dat", "1\r\n2\r\n3\r\n");
    struct Case {
        std::vector<std::string> files;
        std::string message;
    };
    const std::string none = dir.write("none.dat", "-999\r\n-999\r\n-999\r\n-999\r\n");
    const std::string odd = dir.write("odd.dat", "-999\r\n2\r\n-999\r\n4\r\n");
    const std::string even = dir.write("even.dat", "1\r\n-999\r\n3\r\n-999\r\n");
    const std::vector<Case> cases{
        {{none, values},
         "From the fit start 01/01/1961 to the end of the data, '" + none +
             "' holds only the missing value code -999, so no day can be used. Reading past "
             "the end of '" +
             values + "' (after line 3)."},
        {{none, none, values}, "'" + none + "', '" + none + "' hold only the missing value"},
        {{odd, even},
         "No day from the fit start 01/01/1961 on has a value in every file: each day has the "
         "missing value code -999 in one file or another. Reading past the end of '" +
             odd + "' (after line 4)."},
    };
    for (const Case& c : cases) {
        DailyFiles files(
            predictandAndPredictors(c.files[0],
                                    std::vector<std::string>(c.files.begin() + 1, c.files.end())),
            settingsPeriod(state, {1, 1, 1961}, {2, 1, 1961}));
        EXPECT_TRUE(failsWith([&] { files.readFirstFullDay(-999.0, [] {}); },
                              core::failure::InputPastEnd, c.message));
    }
    // Other failures pass unchanged.
    DailyFiles word({{dir.write("word.dat", "-999\r\nrain\r\n")}},
                    settingsPeriod(state, {1, 1, 1961}, {2, 1, 1961}));
    EXPECT_TRUE(failsWith([&] { word.readFirstFullDay(-999.0, [] {}); },
                          core::failure::TypeMismatch, "'rain'"));
}

TEST(DailyFiles, TheSettingsGiveTheRecordAndItsCalendar) {
    const auto state = settings(360, "02/01/1961", "30/12/1990");
    const RecordPeriod period = settingsPeriod(state, {1, 2, 1961}, {1, 3, 1961});
    EXPECT_EQ(period.recordStart, (core::Date{2, 1, 1961}));
    EXPECT_EQ(period.calendar.yearLengthRow, 2);
    EXPECT_EQ(period.dates.yearLength, 360);
    EXPECT_EQ(period.dates.periodStart, "01/02/1961");
    EXPECT_EQ(period.dates.recordEnd, "30/12/1990");
}
