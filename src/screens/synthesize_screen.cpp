#include "screens/synthesize_screen.hpp"

#include "core/dates.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"
#include "series/parameter_file.hpp"
#include "series/simulation_files.hpp"
#include "weathergen/synthesis_driver.hpp"

namespace varo::screens {

namespace {
constexpr std::string_view WarningTitle = "Warning";
} // namespace

SynthesizeScreen::SynthesizeScreen(core::ProgramState& state) : state_(state) {
    reset();
}

void SynthesizeScreen::setPredictorFolder(const std::string& folder) {
    predictorFolder = folder;
}

void SynthesizeScreen::pickParFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickOpenFile(filter::Parameter, state_.defaultDir)) {
        parFile.choose(*path);
    }
}

void SynthesizeScreen::pickOutFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickSaveFile(filter::Out, state_.defaultDir, "OUT")) {
        outFile.choose(*path);
    }
}

void SynthesizeScreen::pickPredictorFolder(Dialogs& dialogs) {
    if (const auto folder = dialogs.pickFolder(predictorFolder)) {
        setPredictorFolder(*folder);
    }
}

void SynthesizeScreen::reset() {
    cleanup();
    // Fresh strings moved in (rather than texts copied over old ones) keep GCC 12's
    // optimiser from a false overlap warning.
    parFile.clear();
    outFile.clear();
    noOfPredText = std::string("0");
    rStartText = std::string(Unknown);
    rLengthText = std::string(Unknown);
    fStartText.reset(core::formatDate(state_.globalSDate));
    fLengthText.reset(std::string(DefaultLength));
    eSize.reset(std::string(DefaultEnsemble));
    predictorFolder = state_.defaultDir;
    predictorList.clear();
    autoRegressLabel = std::string(UnknownLabel);
    processLabel = std::string(UnknownLabel);
}

void SynthesizeScreen::refreshGlobals() {
    fStartText.reset(core::formatDate(state_.globalSDate));
}

void SynthesizeScreen::cleanup() {
    state_.stopRequested.clear();
}

bool SynthesizeScreen::checkParameterFile(Dialogs& dialogs) {
    if (!parFile.chosen()) {
        dialogs.error("You must select a parameter file first.");
        return false;
    }
    if (parFile.path.size() < 5) {
        dialogs.error("You must select an appropriate parameter file.");
        return false;
    }
    if (!isParameterFile(parFile.path)) {
        dialogs.error("You must select a .PAR file.");
        return false;
    }
    return true;
}

void SynthesizeScreen::showHeader(const series::ParameterFile& header, bool forRun) {
    noOfPredText = std::to_string(header.predictorCount());
    rStartText = header.recordStart;
    rLengthText = std::to_string(header.recordDays);
    processLabel = header.conditional ? "Conditional" : "Unconditional";
    // A file of the older form leaves the label as it was, until a run reads it as False.
    if (header.hasAutoregressionLine || forRun) {
        autoRegressLabel = header.autoregression ? "True" : "False";
    }
    predictorList.clear();
    predictorList.push_back(header.predictandName);
    predictorList.insert(predictorList.end(), header.predictorNames.begin(),
                         header.predictorNames.end());
}

RunOutcome SynthesizeScreen::viewDetails(Dialogs& dialogs) {
    if (!checkParameterFile(dialogs)) {
        return RunOutcome::Refused;
    }
    predictorList.clear();
    return guardedRun(
        dialogs,
        [&] {
            const series::ParameterFile header = series::readParameterHeader(parFile.path);
            showHeader(header, false);
            fStartText.reset(header.fitStart);
            fLengthText.reset(std::to_string(header.fitDays));
            return RunOutcome::Done;
        },
        [&] { cleanup(); });
}

bool SynthesizeScreen::checkEnsembleSize(Dialogs& dialogs) {
    if (!core::isNumeric(eSize.text)) {
        dialogs.error("Ensemble Size must be a value between 1 and 100.");
        eSize.reset(std::string(DefaultEnsemble));
        return false;
    }
    if (!core::numberIn(eSize.text, 1, weathergen::MaxEnsembleSize)) {
        dialogs.error("Ensemble Size must be between 1 and 100.");
        eSize.reset(std::string(DefaultEnsemble));
        return false;
    }
    eSize.reset(std::to_string(core::roundedInteger(eSize.text)));
    return true;
}

bool SynthesizeScreen::checkFitStart(Dialogs& dialogs) {
    const auto fitStart = core::parseDate(fStartText.text);
    if (!fitStart) {
        dialogs.error("Fit start date is invalid - it must be in the format dd/mm/yyyy.");
        fStartText.reset(core::formatDate(state_.globalSDate));
        return false;
    }
    const auto recordStart = core::parseDate(rStartText);
    if (!recordStart) {
        dialogs.message(WarningTitle,
                        "Please check that fit start date is later than record start date.",
                        Icon::Warning);
        return false;
    }
    if (core::dayDifference(*recordStart, *fitStart) < 0) {
        dialogs.message(WarningTitle, "Fit start date should be later than record start date.",
                        Icon::Warning);
        fStartText.reset(rStartText);
        return false;
    }
    return true;
}

bool SynthesizeScreen::checkFitLength(Dialogs& dialogs) {
    if (!core::isNumeric(fLengthText.text)) {
        dialogs.error("Fit length is invalid - it must be a numeric.");
        fLengthText.reset(std::string(DefaultLength));
        return false;
    }
    if (!core::isNumeric(rLengthText)) {
        dialogs.message(WarningTitle, "Please check that fit length is shorter than record length.",
                        Icon::Warning);
        return false;
    }
    const double length = core::leadingNumber(fLengthText.text);
    if (length > core::leadingNumber(rLengthText)) {
        dialogs.message(WarningTitle, "Fit length should be shorter than record length.",
                        Icon::Warning);
        fLengthText.reset(rLengthText);
        return false;
    }
    // A run of no days would leave a description of nothing; refused like a bad number.
    if (core::roundedInteger(fLengthText.text) < 1) {
        dialogs.error("Fit length must be at least one day.");
        fLengthText.reset(std::string(DefaultLength));
        return false;
    }
    fLengthText.reset(std::to_string(core::roundedInteger(fLengthText.text)));
    return true;
}

bool SynthesizeScreen::checkOutputFile(Dialogs& dialogs) {
    if (!outFile.chosen()) {
        dialogs.error("You must select a suitable output file to save to.");
        return false;
    }
    // The description file takes the output's name with its last three characters
    // replaced by SIM; an output named so would be overwritten by it.
    if (series::simPathFor(outFile.path) == outFile.path) {
        dialogs.error("The output file's name must not end in SIM: the description file "
                      "beside it takes that name.");
        return false;
    }
    return true;
}

RunOutcome SynthesizeScreen::synthesize(Dialogs& dialogs, core::Progress& progress) {
    if (!checkEnsembleSize(dialogs) || !checkFitStart(dialogs) || !checkFitLength(dialogs) ||
        !checkOutputFile(dialogs) || !checkParameterFile(dialogs)) {
        return RunOutcome::Refused;
    }
    outputStarted = false;
    weathergen::SynthesisRequest request;
    request.parameterPath = parFile.path;
    request.predictorFolder = predictorFolder;
    request.outPath = outFile.path;
    request.start = *core::parseDate(fStartText.text);
    request.days = static_cast<long>(core::leadingNumber(fLengthText.text));
    request.ensembleSize = static_cast<int>(core::leadingNumber(eSize.text));
    return guardedRun(
        dialogs,
        [&] {
            weathergen::SynthesisRun run(
                request, state_, progress,
                [&](const series::ParameterFile& header) { showHeader(header, true); });
            if (const auto refusal = outputOverInput(state_, run.outputPaths(), run.inputPaths())) {
                dialogs.error(*refusal);
                cleanup();
                return RunOutcome::Refused;
            }
            outputStarted = true;
            run.writeOutputs(progress);
            dialogs.message("Results", "Synthesis completed.", Icon::Information);
            cleanup();
            return RunOutcome::Done;
        },
        [&] { cleanup(); });
}

} // namespace varo::screens
