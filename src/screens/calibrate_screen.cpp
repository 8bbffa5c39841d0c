#include "screens/calibrate_screen.hpp"

#include "screens/chart_sources.hpp"
#include "screens/fit_period.hpp"

#include "calibration/model_transforms.hpp"
#include "calibration/stepwise.hpp"
#include "core/dates.hpp"
#include "core/numeric_text.hpp"
#include "core/record_calendar.hpp"
#include "core/series_file.hpp"
#include "series/parameter_file.hpp"

namespace varo::screens {

namespace {

constexpr std::string_view StepwiseQuestion =
    "Stepwise regression is selected.  This can take some time. Do you want to proceed?";

} // namespace

CalibrateScreen::CalibrateScreen(core::ProgramState& state) : state_(state) {
    meanRatio.fill(1.0);
    reset();
}

void CalibrateScreen::reset() {
    cleanup();
    predictand.clear();
    if (!state_.selectedPredictandPath.empty()) {
        predictand.path = state_.selectedPredictandPath;
        predictand.text = state_.selectedPredictandName;
    }
    predictors.setFolder(state_.defaultDir);
    refreshGlobals();
    modelType = Monthly;
    parmOpt = Unconditional;
    autoRegressionCheck = false;
    xValidationCheck = false;
    noOfFoldsText.reset(std::string(DefaultFolds));
    includeChow = false;
    graphType = NoGraph;
    histogramCatsText.reset(std::string(DefaultHistogramCategories));
    parFileText = NoParFile;
    clearResults();
}

void CalibrateScreen::clearResults() {
    results.reset();
    report.reset();
    coefficients.clear();
    stepwiseLines.clear();
    residualPlot.reset();
    silentStopReason.clear();
}

void CalibrateScreen::refreshGlobals() {
    fsDate.reset(core::formatDate(state_.globalSDate));
    feDate.reset(core::formatDate(state_.globalEDate));
    noOfDays = std::to_string(core::globalDays(state_));
}

void CalibrateScreen::cleanup() {
    state_.stopRequested.clear();
}

void CalibrateScreen::pickPredictand(Dialogs& dialogs) {
    const std::string start =
        predictand.chosen() ? core::folderOf(predictand.path) : state_.defaultDir;
    if (const auto path = dialogs.pickOpenFile(filter::Data, start)) {
        predictand.choose(*path);
    }
}

void CalibrateScreen::chooseParFile(const std::string& path) {
    parFileText = path;
}

void CalibrateScreen::pickParFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickSaveFile(filter::Parameter, state_.defaultDir, "PAR")) {
        chooseParFile(*path);
    }
}

void CalibrateScreen::updateNoOfDays() {
    const auto start = core::parseDate(fsDate.text);
    const auto end = core::parseDate(feDate.text);
    if (start && end) {
        noOfDays = std::to_string(core::daysInclusive(*start, *end));
    }
}

bool CalibrateScreen::checkFitStart(Dialogs& dialogs) {
    const bool ok = fsDate.check(dialogs, [&](const std::string& text) {
        return fitStartRefusal(text, feDate.text, state_);
    });
    updateNoOfDays();
    return ok;
}

bool CalibrateScreen::checkFitEnd(Dialogs& dialogs) {
    const bool ok = feDate.check(
        dialogs, [&](const std::string& text) { return fitEndRefusal(fsDate.text, text, state_); });
    updateNoOfDays();
    return ok;
}

bool CalibrateScreen::checkFolds(Dialogs& dialogs) {
    return noOfFoldsText.check(
        dialogs, rangeCheck(2, 10, "Folds value is invalid.",
                            "Number of folds cannot be less than 2 or greater than 10."));
}

bool CalibrateScreen::checkHistogramCategories(Dialogs& dialogs) {
    return histogramCatsText.check(
        dialogs, rangeCheck(5, 100, "Histogram catgeories value is invalid.",
                            "Histogram catgeories cannot be less than 5 or greater than 100."));
}

bool CalibrateScreen::checkParFileName(Dialogs& dialogs) {
    const std::string_view name = parFileText;
    if (!isParameterFile(name)) {
        dialogs.error("PAR file name must end in .PAR or .par");
        return false;
    }
    if (name.size() < 5) {
        dialogs.error("PAR file name is unacceptable.");
        return false;
    }
    if (core::bareFileName(name).size() <= 4) {
        dialogs.error("You must select an appropriate PAR file name to save data to.");
        return false;
    }
    return true;
}

bool CalibrateScreen::checkInputs(Dialogs& dialogs) {
    const bool stepwise = state_.applyStepwise;
    const auto refuse = [&](std::string_view message) {
        dialogs.error(message);
        return false;
    };
    if (predictand.text == NotSelected) {
        return refuse("You must select a predictand.");
    }
    if (predictors.count() < 1) {
        return refuse("You must select at least one predictor.");
    }
    if (stepwise && predictors.count() > static_cast<size_t>(calibration::MaxStepwisePredictors)) {
        return refuse("You cannot select more than 8 predictors for the stepwise approach.");
    }
    if (stepwise && xValidationCheck) {
        return refuse("You cannot perform a cross validation with the stepwise approach. Please "
                      "go to advanced settings to deselect.");
    }
    if (stepwise && modelType != Annual) {
        return refuse("You can only select an annual model for the stepwise approach.");
    }
    if (stepwise && parmOpt == Conditional) {
        return refuse("You can only select an unconditional model for the stepwise approach.");
    }
    if (parFileText == NoParFile || parFileText.empty()) {
        return refuse("You must enter an appropriate output file name.");
    }
    if (!checkFitStart(dialogs) || !checkFitEnd(dialogs) || !checkParFileName(dialogs) ||
        !checkFolds(dialogs) || !checkHistogramCategories(dialogs)) {
        return false;
    }
    return true;
}

std::vector<std::string> CalibrateScreen::inputPaths() const {
    std::vector<std::string> paths{predictand.path};
    paths.insert(paths.end(), predictors.selected.begin(), predictors.selected.end());
    return paths;
}

calibration::CalibrationRequest CalibrateScreen::request() const {
    calibration::CalibrationRequest r;
    r.data.predictandPath = predictand.path;
    r.data.predictorPaths = predictors.selected;
    r.data.fitStart = *core::parseDate(fsDate.text);
    r.data.fitEnd = *core::parseDate(feDate.text);
    r.data.fitDays = core::daysInclusive(r.data.fitStart, r.data.fitEnd);
    r.data.modelType = static_cast<calibration::ModelType>(modelType);
    r.predictandName = predictand.text;
    r.fitStartText = fsDate.text;
    r.conditional = parmOpt == Conditional;
    r.autoregression = autoRegressionCheck;
    r.includeChow = includeChow;
    r.crossValidationFolds = xValidationCheck ? core::roundedInteger(noOfFoldsText.text) : 0;
    return r;
}

RunOutcome CalibrateScreen::calibrate(Dialogs& dialogs, core::Progress& progress) {
    clearResults();
    if (!checkInputs(dialogs)) {
        return RunOutcome::Refused;
    }
    if (const auto refusal = outputOverInput(state_, {parFileText}, inputPaths())) {
        dialogs.error(*refusal);
        return RunOutcome::Refused;
    }
    if (state_.applyStepwise && !dialogs.askYesNo("Cancel?", StepwiseQuestion, Icon::Question)) {
        return RunOutcome::Refused;
    }
    const calibration::CalibrationRequest calibrationRequest = request();
    return guardedRun(
        dialogs,
        [&] {
            DialogNotifier notifier(dialogs);
            try {
                calibration::CalibrationResults found = calibration::calibrate(
                    state_, calibrationRequest, meanRatio, progress, notifier);
                progress.report(100, 100, calibration::CalibratingCaption);
                series::writeParameterFile(parFileText, found.parameters);
                calibration::ReportOptions options;
                options.conditional = calibrationRequest.conditional;
                // After a stepwise search the model may have left the lag term out.
                options.autoregression = found.parameters.autoregression;
                options.includeChow = calibrationRequest.includeChow;
                options.crossValidation = found.crossValidation;
                report = calibration::buildReport(state_, found, options);
                coefficients = calibration::coefficientTables(state_, found);
                if (found.stepwise) {
                    stepwiseLines = calibration::stepwiseLines(*found.stepwise);
                }
                residualPlot = residualChart(found.residualPairs);
                results = std::move(found);
            } catch (const calibration::SilentStop& stop) {
                silentStopReason = stop.what();
                cleanup();
                return RunOutcome::Failed;
            }
            cleanup();
            return RunOutcome::Done;
        },
        [&] { cleanup(); });
}

std::optional<charts::ChartModel>
CalibrateScreen::residualChart(const std::vector<calibration::ResidualPair>& pairs) const {
    if (graphType == ScatterPlot) {
        return residualScatterChart(pairs, state_);
    }
    if (graphType == Histogram) {
        return residualHistogramChart(pairs, core::roundedInteger(histogramCatsText.text), state_);
    }
    return std::nullopt;
}

std::string CalibrateScreen::reportText() const {
    return report ? calibration::reportText(*report) : std::string();
}

std::string CalibrateScreen::resultsText() const {
    std::string text = reportText();
    for (const core::ResultsTable& table : coefficients) {
        text += "\n";
        for (const std::string& line : core::tableLines(table)) {
            text += line + "\n";
        }
    }
    if (!stepwiseLines.empty()) {
        text += "\n";
    }
    for (const std::string& line : stepwiseLines) {
        text += line + "\n";
    }
    return text;
}

} // namespace varo::screens
