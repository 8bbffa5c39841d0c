#include "weathergen/synthesis_driver.hpp"

#include "core/failure.hpp"
#include "core/numeric_text.hpp"
#include "core/random.hpp"
#include "core/record_calendar.hpp"
#include "core/series_file.hpp"
#include "weathergen/daily_synthesis.hpp"
#include "weathergen/simulation_files.hpp"

#include <optional>
#include <tuple>

namespace varo::weathergen {

namespace {

constexpr std::string_view SkipCaption = "Skipping Unnecessary Data";

std::string positionText(const core::RecordCalendar& position) {
    return core::formatDate({position.day(), position.month(), position.year()});
}

std::vector<core::SeriesReader> openPredictors(const std::string& folder,
                                               const std::vector<std::string>& names) {
    const std::string prefix = folder.empty() || folder.back() == '/' ? folder : folder + "/";
    std::vector<core::SeriesReader> files;
    files.reserve(names.size());
    for (const std::string& name : names) {
        try {
            files.emplace_back(prefix + name);
        } catch (const core::Failure& failure) {
            if (name.empty()) {
                throw;
            }
            throw core::Failure(failure.number(), name + std::string(PredictorAdvice));
        }
    }
    return files;
}

// Reads and drops the predictor rows from the record start to the day before the first
// simulated day.
void skipToStart(std::vector<core::SeriesReader>& files, const core::Date& recordStart,
                 const core::Date& start, core::Progress& progress) {
    const long days = core::dayDifference(recordStart, start);
    for (long day = 1; day <= days; ++day) {
        progress.report(day * 100 / days, 100, SkipCaption);
        progress.throwIfStopped();
        for (core::SeriesReader& file : files) {
            file.readNumber();
        }
    }
}

SimulationDescription describeRun(const SynthesisRequest& request, const ParameterHeader& header,
                                  const core::ProgramState& state) {
    SimulationDescription d;
    d.predictorCount = static_cast<std::int16_t>(header.predictorCount);
    d.seasonCode = static_cast<std::int16_t>(header.seasonCode);
    d.yearIndicator = state.yearIndicator;
    d.fitStart = core::formatDate(request.start);
    d.fitLength = static_cast<std::int32_t>(request.days);
    d.conditional = header.conditional;
    d.ensembleSize = static_cast<std::int16_t>(request.ensembleSize);
    d.precN = state.precN;
    d.transformCode = static_cast<std::int16_t>(header.transformCode);
    d.biasCorrection = state.biasCorrection;
    d.predictandName = header.predictandName;
    d.predictorNames = header.predictorNames;
    return d;
}

std::optional<ReferenceSample> loadReferenceSample(const SynthesisModel& model,
                                                   const std::string& parameterPath,
                                                   const core::ProgramState& state) {
    if (model.header.transformCode != TransformInverseNormal) {
        return std::nullopt;
    }
    ReferenceSample sample(readReferenceValues(model.predictandPath, model.header, state),
                           state.thresh);
    if (model.header.conditional && sample.firstWet() == 0) {
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
                                        const ParameterHeader& header,
                                        const core::ProgramState& state) {
    if (header.fitLength > ReferenceSample::Capacity) {
        throw core::Failure(core::failure::FileTooLarge,
                            "The calibration period of " + std::to_string(header.fitLength) +
                                " days is longer than the " +
                                std::to_string(ReferenceSample::Capacity) +
                                " days an inverse normal reference sample holds.");
    }
    core::SeriesReader file(predictandPath);
    core::RecordCalendar position(core::calendarInForce(state), header.recordStart);
    const core::Date& fitStart = header.fitStart;
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
                                "The calibration fit start " + header.fitStartText +
                                    " is not a day of the record calendar in force, so the "
                                    "calibration period of '" +
                                    predictandPath + "' cannot be found.");
        }
        file.readNumber();
    }
    std::vector<double> values;
    values.reserve(static_cast<size_t>(header.fitLength));
    for (long i = 0; i < header.fitLength; ++i) {
        values.push_back(file.readNumber());
    }
    return values;
}

void synthesize(const SynthesisRequest& request, const core::ProgramState& state,
                core::Progress& progress, const HeaderRead& headerRead) {
    progress.report(0, 100, SynthesisCaption);
    core::UniformRandom random;
    random.seedForRun(state.randomSeed);

    ParameterFileReader reader(request.parameterPath);
    SynthesisModel model;
    model.header = reader.readHeader();
    if (headerRead) {
        headerRead(model.header);
    }
    std::vector<core::SeriesReader> predictors =
        openPredictors(request.predictorFolder, model.header.predictorNames);
    core::TextFileWriter sim(simPathFor(request.outPath));
    core::TextFileWriter out(request.outPath);
    reader.readRows(model);
    if (model.header.transformCode == TransformInverseNormal) {
        model.predictandPath = reader.readPredictandPath();
    }
    const std::optional<ReferenceSample> sample =
        loadReferenceSample(model, request.parameterPath, state);

    const SynthesisSettings settings = SynthesisSettings::fromState(state);
    DailySynthesis synthesis(model, settings, request.ensembleSize, random,
                             sample ? &*sample : nullptr);
    const core::DatesInUse dates{model.header.recordStartText,
                                 {},
                                 core::formatDate(request.start),
                                 {},
                                 "run of " + std::to_string(request.days) + " days from",
                                 state.yearIndicator};
    core::readingByDates(
        dates, [&] { skipToStart(predictors, model.header.recordStart, request.start, progress); });

    core::RecordCalendar position(core::calendarInForce(state), request.start);
    position.lowerDay();
    synthesis.startLaggedValues(position.month());

    std::vector<double> dayPredictors(predictors.size());
    std::array<double, MaxEnsembleSize> members{};
    std::string line;
    for (long day = 1; day <= request.days; ++day) {
        progress.report(core::roundHalfEven(static_cast<double>(day) /
                                            static_cast<double>(request.days) * 100.0),
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
        appendDayLine(line, members.data(), request.ensembleSize);
        out.write(line);
        out.endLine();
    }
    predictors.clear();
    out.close();
    writeSimulationDescription(sim, describeRun(request, model.header, state));
    sim.close();
}

} // namespace varo::weathergen
