#include "screening/screening_data.hpp"

#include "core/failure.hpp"
#include "core/record_calendar.hpp"

namespace varo::screening {

namespace {

core::Date recordStart(const core::ProgramState& state) {
    return state.globalSDate;
}

void failTooManyRows() {
    throw core::Failure(core::failure::FileTooLarge, "The analysis period holds more than " +
                                                         std::to_string(MaxRows) +
                                                         " days, more than a screening can hold.");
}

} // namespace

ScreeningFiles::ScreeningFiles(const ScreeningRequest& request)
    : fitStart_(request.fitStart), fitEnd_(request.fitEnd) {
    const size_t series = request.predictorPaths.size() + (request.autoregression ? 2 : 1);
    if (series > static_cast<size_t>(MaxSeries)) {
        throw core::Failure(core::failure::FileTooLarge,
                            "A screening holds at most " + std::to_string(MaxSeries) +
                                " series (the predictand, the predictors and the "
                                "autoregression), not " +
                                std::to_string(series) + ".");
    }
    readers_.reserve(request.predictorPaths.size() + 1);
    readers_.emplace_back(request.predictandPath);
    for (const std::string& path : request.predictorPaths) {
        readers_.emplace_back(path);
    }
}

void ScreeningFiles::readDay(std::vector<double>& values) {
    values.resize(readers_.size());
    core::readingByDates(dates_, [&] {
        for (size_t i = 0; i < readers_.size(); ++i) {
            values[i] = readers_[i].readNumber();
        }
    });
}

void ScreeningFiles::discardDay() {
    core::readingByDates(dates_, [&] {
        for (core::SeriesReader& reader : readers_) {
            reader.readNumber();
        }
    });
}

void ScreeningFiles::skipToFitStart(core::RecordCalendar& position, const core::ProgramState& state,
                                    const core::Date& fitStart, core::Progress& progress) {
    dates_ = core::settingsDatesInUse(state, fitStart_, fitEnd_);
    core::skipToFitStart(
        position, recordStart(state), fitStart, [this] { discardDay(); }, progress);
}

ScreeningData assembleScreeningData(const ScreeningRequest& request,
                                    const core::ProgramState& state, core::Progress& progress) {
    ScreeningFiles files(request);
    const size_t seriesCount = files.count();
    ScreeningData data;
    data.names.push_back(core::bareFileName(request.predictandPath));
    for (const std::string& path : request.predictorPaths) {
        data.names.push_back(core::bareFileName(path));
    }
    data.series.resize(seriesCount);
    data.sums.assign(seriesCount, 0.0);

    core::RecordCalendar position(core::calendarInForce(state), request.fitStart);
    files.skipToFitStart(position, state, request.fitStart, progress);

    const double missingCode = state.globalMissingCode;
    const long days = core::daysInclusive(request.fitStart, request.fitEnd);
    long day = 0;
    std::vector<double> values;
    while (position.notPast(request.fitEnd)) {
        progress.report(day++, days, "Calculating Correlation Statistics");
        progress.throwIfStopped();
        if (!core::monthPassesPeriod(position.month(), request.period)) {
            files.discardDay();
            position.stepDay();
            continue;
        }
        if (data.total == MaxRows) {
            failTooManyRows();
        }
        ++data.total;
        files.readDay(values);
        bool marked = false;
        for (size_t s = 0; s < seriesCount; ++s) {
            data.series[s].push_back(values[s]);
            if (values[s] == missingCode) {
                ++data.missingValues;
                marked = true;
            }
        }
        const bool event = isEvent(values[0], state.thresh);
        if (request.conditional && values[0] != missingCode && !event) {
            ++data.thresholdRows;
        }
        if (marked) {
            ++data.missingRows;
        }
        if ((event || !request.conditional) && !marked) {
            for (size_t s = 0; s < seriesCount; ++s) {
                data.sums[s] += values[s];
            }
        }
        position.stepDay();
    }

    if (request.autoregression) {
        const std::vector<double>& predictand = data.series[0];
        std::vector<double> lagged;
        lagged.reserve(predictand.size());
        if (!predictand.empty()) {
            lagged.push_back(0.0);
            lagged.insert(lagged.end(), predictand.begin(), predictand.end() - 1);
        }
        double sum = data.sums[0];
        if (request.conditional && !predictand.empty() && predictand.back() != missingCode &&
            isEvent(predictand.back(), state.thresh)) {
            sum -= predictand.back();
        }
        data.names.emplace_back(AutoregressionName);
        data.series.push_back(std::move(lagged));
        data.sums.push_back(sum);
    }
    return data;
}

} // namespace varo::screening
