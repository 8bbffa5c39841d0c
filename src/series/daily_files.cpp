#include "series/daily_files.hpp"

#include "core/number_format.hpp"

#include <algorithm>

namespace varo::series {

RecordPeriod settingsPeriod(const core::ProgramState& state, const core::Date& start,
                            const core::Date& end) {
    return {core::calendarInForce(state), state.globalSDate, start, end,
            core::settingsDatesInUse(state, start, end)};
}

std::vector<DailyFile> predictandAndPredictors(const std::string& predictandPath,
                                               const std::vector<std::string>& predictorPaths) {
    std::vector<DailyFile> files{{predictandPath}};
    for (const std::string& path : predictorPaths) {
        files.push_back({path});
    }
    return files;
}

bool anyMissing(const std::vector<double>& values, double missingCode) {
    return std::find(values.begin(), values.end(), missingCode) != values.end();
}

DailyFiles::DailyFiles(const std::vector<DailyFile>& files, RecordPeriod period)
    : period_(std::move(period)), position_(period_.calendar, period_.start) {
    readers_.reserve(files.size());
    size_t width = 0;
    for (const DailyFile& file : files) {
        readers_.emplace_back(file.path);
        members_.push_back(file.members);
        width += static_cast<size_t>(file.members);
    }
    values_.resize(width);
}

void DailyFiles::skipToStart(core::Progress& progress) {
    // The walk steps the position itself.
    core::skipToFitStart(
        position_, period_.recordStart, period_.start,
        [this] { core::readingByDates(period_.dates, [this] { skipValues(); }); }, progress);
}

void DailyFiles::readValues() {
    size_t next = 0;
    for (size_t f = 0; f < readers_.size(); ++f) {
        core::SeriesReader& reader = readers_[f];
        if (members_[f] == 1) {
            values_[next++] = reader.readNumber();
            continue;
        }
        const long lineNumber = reader.lineNumber();
        const std::string line = reader.readLine();
        for (int k = 1; k <= members_[f]; ++k) {
            values_[next++] = core::zoneNumber(line, k, lineNumber, reader.path());
        }
    }
}

void DailyFiles::skipValues() {
    for (size_t f = 0; f < readers_.size(); ++f) {
        if (members_[f] == 1) {
            readers_[f].readNumber();
        } else {
            readers_[f].readLine();
        }
    }
}

const std::vector<double>& DailyFiles::readDay() {
    core::readingByDates(period_.dates, [this] { readValues(); });
    position_.stepDay();
    return values_;
}

void DailyFiles::discardDay() {
    core::readingByDates(period_.dates, [this] { skipValues(); });
    position_.stepDay();
}

core::RecordCalendar DailyFiles::readFirstFullDay(double missingCode,
                                                  const std::function<void()>& beforeDay) {
    // Which files held a value at all, for the message when none of the days is full.
    std::vector<bool> seen(readers_.size(), false);
    for (;;) {
        beforeDay();
        const core::RecordCalendar day = position_;
        try {
            readValues();
        } catch (const core::Failure& failure) {
            if (failure.number() != core::failure::InputPastEnd) {
                throw;
            }
            failNoFullDay(failure, seen, missingCode);
        }
        position_.stepDay();
        size_t next = 0;
        for (size_t f = 0; f < readers_.size(); ++f) {
            const auto first = values_.begin() + static_cast<long>(next);
            next += static_cast<size_t>(members_[f]);
            seen[f] = seen[f] || std::any_of(first, values_.begin() + static_cast<long>(next),
                                             [&](double v) { return v != missingCode; });
        }
        if (!anyMissing(values_, missingCode)) {
            return day;
        }
    }
}

void DailyFiles::failNoFullDay(const core::Failure& ended, const std::vector<bool>& seen,
                               double missingCode) const {
    std::string empty;
    int emptyFiles = 0;
    for (size_t f = 0; f < readers_.size(); ++f) {
        if (!seen[f]) {
            empty += (empty.empty() ? "" : ", ") + std::string("'") + readers_[f].path() + "'";
            ++emptyFiles;
        }
    }
    const std::string start =
        period_.dates.periodName + " start " + core::formatDate(period_.start);
    const std::string missing = core::generalText(missingCode);
    throw core::Failure(ended.number(),
                        (empty.empty()
                             ? "No day from the " + start +
                                   " on has a value in every file: each day has the missing value "
                                   "code " +
                                   missing + " in one file or another."
                             : "From the " + start + " to the end of the data, " + empty +
                                   (emptyFiles == 1 ? " holds" : " hold") +
                                   " only the missing value code " + missing +
                                   ", so no day can be used.") +
                            " " + ended.description());
}

} // namespace varo::series
