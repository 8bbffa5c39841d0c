#include "weathergen/synthesis_driver.hpp"

#include "core/failure.hpp"
#include "core/numeric_text.hpp"
#include "core/quoted_text.hpp"
#include "core/random.hpp"
#include "core/record_calendar.hpp"
#include "core/series_file.hpp"
#include "series/simulation_files.hpp"
#include "weathergen/daily_synthesis.hpp"

#include <algorithm>
#include <optional>
#include <tuple>

namespace varo::weathergen {

namespace {

std::string positionText(const core::RecordCalendar& position) {
    return core::formatDate({position.day(), position.month(), position.year()});
}

std::string predictorPath(const std::string& folder, const std::string& name) {
    return folder.empty() || folder.back() == '/' ? folder + name : folder + "/" + name;
}

// Opens predictor i of the model. A file that cannot be opened is named with the advice to
// check the predictor folder (names from a file are shown escaped and cut), followed by
// where the parameter file names it.
core::SeriesReader openPredictor(const std::string& path, const series::ParameterFile& model,
                                 const std::string& parameterPath, size_t i) {
    try {
        return core::SeriesReader(path);
    } catch (const core::Failure& failure) {
        const std::string& name = model.predictorNames[i];
        if (name.empty()) {
            throw;
        }
        throw core::Failure(failure.number(),
                            core::escapedInput(name, 200) + std::string(PredictorAdvice) +
                                "\r\nThe parameter file '" + parameterPath + "' names it on line " +
                                std::to_string(model.firstPredictorLine() + static_cast<long>(i)) +
                                ".");
    }
}

std::vector<core::SeriesReader> openPredictors(const std::vector<std::string>& paths,
                                               const series::ParameterFile& model,
                                               const std::string& parameterPath) {
    std::vector<core::SeriesReader> files;
    files.reserve(paths.size());
    for (size_t i = 0; i < paths.size(); ++i) {
        files.push_back(openPredictor(paths[i], model, parameterPath, i));
    }
    return files;
}

// Reads and drops the predictor rows from the record start to the day before the first
// simulated day.
void skipToStart(std::vector<core::SeriesReader>& files, const core::Date& recordStart,
                 const core::Date& start, core::Progress& progress) {
    const long days = core::dayDifference(recordStart, start);
    for (long day = 1; day <= days; ++day) {
        progress.report(day * 100 / days, 100, core::SkippingCaption);
        progress.throwIfStopped();
        for (core::SeriesReader& file : files) {
            file.readNumber();
        }
    }
}

series::SimulationDescription describeRun(const SynthesisRequest& request,
                                          const series::ParameterFile& model,
                                          const core::ProgramState& state) {
    series::SimulationDescription d;
    d.predictorCount = static_cast<std::int16_t>(model.predictorCount());
    d.seasonCode = static_cast<std::int16_t>(model.groups);
    d.yearIndicator = state.yearIndicator;
    d.fitStart = core::formatDate(request.start);
    d.fitLength = static_cast<std::int32_t>(request.days);
    d.conditional = model.conditional;
    d.ensembleSize = static_cast<std::int16_t>(request.ensembleSize);
    d.precN = state.precN;
    d.transformCode = static_cast<std::int16_t>(model.transformation);
    d.biasCorrection = state.biasCorrection;
    d.predictandName = model.predictandName;
    d.predictorNames = model.predictorNames;
    return d;
}

std::optional<ReferenceSample> loadReferenceSample(const series::ParameterFile& model,
                                                   const std::string& parameterPath,
                                                   const core::ProgramState& state) {
    if (model.transformation != core::TransformInverseNormal) {
        return std::nullopt;
    }
    ReferenceSample sample(readReferenceValues(model.predictandPath, model, state), state.thresh);
    if (model.conditional && sample.firstWet() == 0) {
        throw core::Failure(core::failure::TypeMismatch,
                            "The calibration period of '" + model.predictandPath + "' named in '" +
                                parameterPath +
                                "' holds no value above the threshold, so inverse normal "
                                "amounts have nothing to map onto.");
    }
    return sample;
}

} // namespace

std::vector<double> readReferenceValues(const std::string& predictandPath,
                                        const series::ParameterFile& model,
                                        const core::ProgramState& state) {
    if (model.fitDays > ReferenceSample::Capacity) {
        throw core::Failure(core::failure::FileTooLarge,
                            "The calibration period of " + std::to_string(model.fitDays) +
                                " days is longer than the " +
                                std::to_string(ReferenceSample::Capacity) +
                                " days an inverse normal reference sample holds.");
    }
    core::SeriesReader file(predictandPath);
    core::RecordCalendar position(core::calendarInForce(state), model.recordStartDate());
    const core::Date fitStart = model.fitStartDate();
    const auto target = std::make_tuple(fitStart.year, fitStart.month, fitStart.day);
    position.lowerDay();
    for (;;) {
        position.raiseDay();
        position.completeRaisedDay();
        const auto at =
            std::make_tuple(static_cast<int>(position.year()), static_cast<int>(position.month()),
                            static_cast<int>(position.day()));
        if (at == target) {
            break;
        }
        if (at > target) {
            throw core::Failure(core::failure::TypeMismatch,
                                "The calibration fit start " + model.fitStart +
                                    " is not a day of the record calendar in force, so the "
                                    "calibration period of '" +
                                    predictandPath + "' cannot be found.");
        }
        file.readNumber();
    }
    std::vector<double> values;
    values.reserve(static_cast<size_t>(model.fitDays));
    for (long i = 0; i < model.fitDays; ++i) {
        values.push_back(file.readNumber());
    }
    return values;
}

SynthesisRun::SynthesisRun(const SynthesisRequest& request, const core::ProgramState& state,
                           core::Progress& progress, const HeaderRead& headerRead)
    : request_(request), state_(state) {
    progress.report(0, 100, SynthesisCaption);
    random_.seedForRun(state.randomSeed);
    model_ = series::readParameterFile(request.parameterPath);
    if (headerRead) {
        headerRead(model_);
    }
    for (const std::string& name : model_.predictorNames) {
        predictorPaths_.push_back(predictorPath(request.predictorFolder, name));
    }
    checkPredictorLengths(progress);
    sample_ = loadReferenceSample(model_, request.parameterPath, state);
    for (const std::string& path : outputPaths()) {
        core::refuseFolder(path);
    }
}

// Reads every predictor file as far as the run will: a value for each day from the record
// start to the last simulated day.
void SynthesisRun::checkPredictorLengths(core::Progress& progress) const {
    const long skipped =
        std::max(0L, core::dayDifference(model_.recordStartDate(), request_.start));
    const long needed = skipped + request_.days;
    for (size_t i = 0; i < predictorPaths_.size(); ++i) {
        core::SeriesReader file =
            openPredictor(predictorPaths_[i], model_, request_.parameterPath, i);
        core::readingByDates(datesInUse(), [&] {
            for (long value = 0; value < needed; ++value) {
                if ((value & 0xFFF) == 0) {
                    progress.throwIfStopped();
                }
                file.readNumber();
            }
        });
    }
}

core::DatesInUse SynthesisRun::datesInUse() const {
    return {model_.recordStart,
            {},
            core::formatDate(request_.start),
            {},
            "run of " + std::to_string(request_.days) + " days from",
            state_.yearIndicator};
}

std::vector<std::string> SynthesisRun::inputPaths() const {
    std::vector<std::string> paths{request_.parameterPath};
    paths.insert(paths.end(), predictorPaths_.begin(), predictorPaths_.end());
    if (sample_) {
        paths.push_back(model_.predictandPath);
    }
    return paths;
}

std::vector<std::string> SynthesisRun::outputPaths() const {
    return {request_.outPath, series::simPathFor(request_.outPath)};
}

void SynthesisRun::writeOutputs(core::Progress& progress) {
    std::vector<core::SeriesReader> predictors =
        openPredictors(predictorPaths_, model_, request_.parameterPath);
    core::TextFileWriter sim(series::simPathFor(request_.outPath));
    core::TextFileWriter out(request_.outPath);

    const SynthesisSettings settings = SynthesisSettings::fromState(state_);
    DailySynthesis synthesis(model_, settings, request_.ensembleSize, random_,
                             sample_ ? &*sample_ : nullptr);
    const core::DatesInUse dates = datesInUse();
    core::readingByDates(dates, [&] {
        skipToStart(predictors, model_.recordStartDate(), request_.start, progress);
    });

    core::RecordCalendar position(core::calendarInForce(state_), request_.start);
    position.lowerDay();
    synthesis.startLaggedValues(position.month());

    std::vector<double> dayPredictors(predictors.size());
    std::array<double, MaxEnsembleSize> members{};
    std::string line;
    for (long day = 1; day <= request_.days; ++day) {
        progress.report(core::roundHalfEven(static_cast<double>(day) /
                                            static_cast<double>(request_.days) * 100.0),
                        100, SynthesisCaption);
        progress.throwIfStopped();
        position.raiseDay();
        position.completeRaisedDay();
        core::readingByDates(dates, [&] {
            for (size_t i = 0; i < predictors.size(); ++i) {
                dayPredictors[i] = predictors[i].readNumber();
            }
        });
        try {
            synthesis.synthesizeDay(position.month(), dayPredictors.data(), members.data());
        } catch (const core::Failure& failure) {
            throw core::Failure(failure.number(), "Day " + std::to_string(day) + " (" +
                                                      positionText(position) +
                                                      "): " + failure.description());
        }
        line.clear();
        series::appendDayLine(line, members.data(), request_.ensembleSize);
        out.write(line);
        out.endLine();
    }
    predictors.clear();
    out.close();
    series::writeSimulationDescription(sim, describeRun(request_, model_, state_));
    sim.close();
}

void synthesize(const SynthesisRequest& request, const core::ProgramState& state,
                core::Progress& progress, const HeaderRead& headerRead) {
    SynthesisRun run(request, state, progress, headerRead);
    run.writeOutputs(progress);
}

} // namespace varo::weathergen
