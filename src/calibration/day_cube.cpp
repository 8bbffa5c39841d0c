#include "calibration/day_cube.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/progress.hpp"
#include "core/record_calendar.hpp"
#include "core/series_file.hpp"

namespace varo::calibration {

int groupCount(ModelType type) {
    switch (type) {
    case ModelType::Monthly:
        return 12;
    case ModelType::Seasonal:
        return 4;
    case ModelType::Annual:
        break;
    }
    return 1;
}

int groupOfMonth(ModelType type, int month) {
    switch (type) {
    case ModelType::Monthly:
        return month;
    case ModelType::Seasonal:
        return core::seasonOfMonth(month);
    case ModelType::Annual:
        break;
    }
    return 1;
}

std::vector<int> monthsOfGroup(ModelType type, int group) {
    std::vector<int> months;
    for (int month = 1; month <= 12; ++month) {
        if (groupOfMonth(type, month) == group) {
            months.push_back(month);
        }
    }
    return months;
}

std::string groupName(const core::ProgramState& state, ModelType type, int group) {
    switch (type) {
    case ModelType::Monthly:
        return state.periodNames[static_cast<size_t>(group)];
    case ModelType::Seasonal:
        return state.periodNames[static_cast<size_t>(12 + group)];
    case ModelType::Annual:
        break;
    }
    return state.periodNames[17];
}

namespace {

// Days a group can hold: a twelfth or a quarter of the fit period and 100 more, or all of it.
size_t groupCapacity(ModelType type, long fitDays) {
    switch (type) {
    case ModelType::Monthly:
        return static_cast<size_t>(core::roundHalfEven(fitDays / 12.0 + 100.0));
    case ModelType::Seasonal:
        return static_cast<size_t>(core::roundHalfEven(fitDays / 4.0 + 100.0));
    case ModelType::Annual:
        break;
    }
    return static_cast<size_t>(std::max(fitDays, 0L));
}

} // namespace

DayCube::DayCube(ModelType type, int series, long fitDays)
    : type_(type), series_(series), capacity_(groupCapacity(type, fitDays)) {
    if (series > MaxSeries) {
        throw core::Failure(core::failure::FileTooLarge,
                            "A calibration reads at most " + std::to_string(MaxSeries) +
                                " files a day (the predictand and " +
                                std::to_string(MaxSeries - 1) + " predictors); " +
                                std::to_string(series) + " were given.");
    }
    values_.resize(capacity_ * static_cast<size_t>(groups()) * static_cast<size_t>(series));
}

void DayCube::store(int group, const std::vector<double>& day, bool newSection) {
    const size_t g = static_cast<size_t>(group - 1);
    std::vector<int>& sections = sections_[g];
    if (newSection || sections.empty()) {
        if (sections.size() == MaxSections) {
            throw core::Failure(
                core::failure::FileTooLarge,
                "Group " + std::to_string(group) + " of the model breaks into more than " +
                    std::to_string(MaxSections) + " runs of days without missing values.");
        }
        sections.push_back(0);
    }
    if (static_cast<size_t>(counts_[g]) == capacity_) {
        throw core::Failure(core::failure::FileTooLarge, "Group " + std::to_string(group) +
                                                             " of the model holds at most " +
                                                             std::to_string(capacity_) + " days.");
    }
    float* target =
        &values_[(g * capacity_ + static_cast<size_t>(counts_[g])) * static_cast<size_t>(series_)];
    for (int s = 0; s < series_; ++s) {
        target[s] = static_cast<float>(day[static_cast<size_t>(s)]);
    }
    ++counts_[g];
    ++sections.back();
}

DayCube readDayCube(const core::ProgramState& state, const CalibrationData& data,
                    core::Progress& progress) {
    static constexpr const char* Reading = "Reading Data";
    const int series = static_cast<int>(data.predictorPaths.size()) + 1;
    DayCube cube(data.modelType, series, data.fitDays);
    progress.report(0, 100, Reading);
    std::vector<core::SeriesReader> files;
    files.reserve(static_cast<size_t>(series));
    files.emplace_back(data.predictandPath);
    for (const std::string& path : data.predictorPaths) {
        files.emplace_back(path);
    }
    std::vector<double> day(static_cast<size_t>(series));
    const double missing = state.globalMissingCode;
    // Reads one value from each file; false when any of them is missing.
    const auto readDay = [&] {
        bool full = true;
        for (size_t s = 0; s < files.size(); ++s) {
            day[s] = files[s].readNumber();
            full = full && day[s] != missing;
        }
        return full;
    };

    const core::Date& recordStart = state.globalSDate;
    core::RecordCalendar position(core::calendarInForce(state), recordStart);
    core::skipToFitStart(
        position, recordStart, data.fitStart, [&] { readDay(); }, progress);

    long daysRead = 0;
    const auto yield = [&] {
        progress.report(std::min(daysRead, data.fitDays), data.fitDays, Reading);
        progress.throwIfStopped();
    };
    // The first full day opens the first section of its group. The search goes on past the
    // fit end; when the data end first, the person must hear which files held only missing
    // values, not only which file ended.
    std::vector<bool> seen(files.size(), false);
    try {
        for (;;) {
            yield();
            ++daysRead;
            const bool full = readDay();
            for (size_t s = 0; s < files.size(); ++s) {
                seen[s] = seen[s] || day[s] != missing;
            }
            if (full) {
                break;
            }
            position.stepDay();
        }
    } catch (const core::Failure& failure) {
        if (failure.number() != core::failure::InputPastEnd) {
            throw;
        }
        std::string empty;
        int emptyFiles = 0;
        for (size_t s = 0; s < files.size(); ++s) {
            if (!seen[s]) {
                empty += (empty.empty() ? "" : ", ") + std::string("'") + files[s].path() + "'";
                ++emptyFiles;
            }
        }
        const std::string start = core::formatDate(data.fitStart);
        throw core::Failure(failure.number(),
                            (empty.empty()
                                 ? "No day from the fit start " + start +
                                       " on has a value in every file: each day has the missing "
                                       "value code " +
                                       core::generalText(missing) + " in one file or another."
                                 : "From the fit start " + start + " to the end of the data, " +
                                       empty + (emptyFiles == 1 ? " holds" : " hold") +
                                       " only the missing value code " +
                                       core::generalText(missing) + ", so no day can be used.") +
                                " " + failure.description());
    }
    int lastGroup = groupOfMonth(data.modelType, position.month());
    cube.store(lastGroup, day, true);
    position.stepDay();
    bool dropped = false;
    while (position.notPast(data.fitEnd)) {
        yield();
        ++daysRead;
        const bool full = readDay();
        const int group = groupOfMonth(data.modelType, position.month());
        if (!full) {
            dropped = true;
        } else {
            cube.store(group, day, dropped || group != lastGroup);
            lastGroup = group;
            dropped = false;
        }
        position.stepDay();
    }
    return cube;
}

namespace {

// Fills row r of X and Y from day `day` of the group, with the lag from day `previous`.
void fillRow(GroupDesign& design, const DayCube& cube, int group, int r, int day, int previous,
             bool conditional, float thresh) {
    const int predictors = cube.series() - 1;
    design.y.setValue(r, 0, cube.value(group, day, 0));
    design.x.setValue(r, 0, 1.0);
    for (int s = 1; s <= predictors; ++s) {
        design.x.setValue(r, s, cube.value(group, day, s));
    }
    if (previous >= 0) {
        const float lagged = cube.value(group, previous, 0);
        design.x.setValue(r, predictors + 1,
                          conditional ? (lagged > thresh ? 1.0 : 0.0)
                                      : static_cast<double>(lagged));
    }
}

} // namespace

GroupDesign buildGroupDesign(const DayCube& cube, int group, bool lag, bool conditional,
                             float thresh) {
    const int days = cube.count(group);
    const int columns = cube.series() + (lag ? 1 : 0);
    if (!lag) {
        GroupDesign design{MatrixObject(days, columns), MatrixObject(days, 1)};
        for (int d = 0; d < days; ++d) {
            fillRow(design, cube, group, d, d, -1, conditional, thresh);
        }
        return design;
    }
    if (cube.modelType() == ModelType::Annual) {
        GroupDesign design{MatrixObject(days - 1, columns), MatrixObject(days - 1, 1)};
        for (int d = 1; d < days; ++d) {
            fillRow(design, cube, group, d - 1, d, d - 1, conditional, thresh);
        }
        return design;
    }
    int rows = days;
    for (int length : cube.sectionLengths(group)) {
        rows -= length > 1 ? 1 : 0;
    }
    GroupDesign design{MatrixObject(rows, columns), MatrixObject(rows, 1)};
    int first = 0;
    int r = 0;
    for (int length : cube.sectionLengths(group)) {
        for (int d = first + 1; d < first + length; ++d) {
            fillRow(design, cube, group, r++, d, d - 1, conditional, thresh);
        }
        first += length;
    }
    return design;
}

} // namespace varo::calibration
