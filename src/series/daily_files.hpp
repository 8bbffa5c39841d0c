// Daily data files walked together, a day at a time: a predictand and its predictors, or
// any set of series whose rows are the days of one record. A day is read, or read and
// dropped, across all the files at once, so that they never get out of step, and the
// position in the record moves on with it.
//
// A walk starts on the record's first date. `skipToStart` reads and drops the rows up to
// the period's start, stepping by the record's calendar, and then puts the position on the
// start date itself: under a 360- or 365-day calendar the skipped rows are counted by the
// model calendar, while the position afterwards is the real start date. The period is read
// up to and including its end date, compared as a real date by the run-over rule.
//
// A file is read one number a day, free-format, or, with several members (an OUT file),
// one line a day whose member k is the number in characters 14k - 13 to 14k. A file that
// ends too early fails with 62 and a description naming the file, its last line and the
// dates in use (`core::readingByDates`); a token or a member's field that is not a number
// fails with 13 naming the file and line.
#pragma once

#include "core/dates.hpp"
#include "core/failure.hpp"
#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "core/record_calendar.hpp"
#include "core/series_file.hpp"

#include <functional>
#include <string>
#include <vector>

namespace varo::series {

// The record a walk goes through and the period it reads from it.
struct RecordPeriod {
    core::CalendarRule calendar = core::RealCalendar;
    core::Date recordStart; // the date of every file's first row
    core::Date start;       // the first day read
    core::Date end;         // the last day read
    core::DatesInUse dates; // named when a file ends too early
};

// The record of the settings (the calendar in force from GlobalSDate, to GlobalEDate) and a
// fit period in it. A record start that is not a date fails with 13.
RecordPeriod settingsPeriod(const core::ProgramState& state, const core::Date& start,
                            const core::Date& end);

// One file of a walk and how many members a day of it holds.
struct DailyFile {
    std::string path;
    int members = 1;
};

// Single-column files: the predictand first, then the predictors in order.
std::vector<DailyFile> predictandAndPredictors(const std::string& predictandPath,
                                               const std::vector<std::string>& predictorPaths);

// True when any of the values equals the missing value code.
bool anyMissing(const std::vector<double>& values, double missingCode);

class DailyFiles {
public:
    // Opens the files in order; one that cannot be opened fails with 53 or 70. The
    // position stands on the period's start until a skip walks the record.
    DailyFiles(const std::vector<DailyFile>& files, RecordPeriod period);

    // Reads and drops every day from the record's start to the day before the period's
    // start, under "Skipping Unnecessary Data" when there is anything to skip, and throws
    // `core::Cancelled` on a stop request.
    void skipToStart(core::Progress& progress);

    // The position of the next day to read.
    const core::RecordCalendar& position() const { return position_; }
    // True while the next day lies in the period.
    bool inPeriod() const { return position_.notPast(period_.end); }
    const RecordPeriod& period() const { return period_; }

    // The next day of every file, members of a file in order and files in order, after
    // which the position moves on a day. The values stay until the next read.
    const std::vector<double>& readDay();
    // Reads the next day and drops it.
    void discardDay();
    // The values of the last day read.
    const std::vector<double>& values() const { return values_; }

    // Reads day after day until one has no missing value in any file, calling `beforeDay`
    // before each, and returns that day's position; its values are `values()`. When the
    // files end first the failure (62) says why no day could be used: it names the files
    // that held only the missing value code from the period's start, or says that the gaps
    // never line up, before the description of the file that ended.
    core::RecordCalendar readFirstFullDay(double missingCode,
                                          const std::function<void()>& beforeDay);

    size_t fileCount() const { return readers_.size(); }

private:
    void readValues();
    void skipValues();
    [[noreturn]] void failNoFullDay(const core::Failure& ended, const std::vector<bool>& seen,
                                    double missingCode) const;

    std::vector<core::SeriesReader> readers_;
    std::vector<int> members_;
    RecordPeriod period_;
    core::RecordCalendar position_;
    std::vector<double> values_;
};

} // namespace varo::series
