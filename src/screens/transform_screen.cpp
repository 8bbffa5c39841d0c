#include "screens/transform_screen.hpp"

#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"

namespace varo::screens {

namespace {

using Message = std::optional<std::string>;

} // namespace

TransformScreen::TransformScreen(core::ProgramState& state) : state_(state) {
    reset();
}

std::string TransformScreen::wrapCaption() const {
    return "Wrap numbers round or fill gaps with missing code (" +
           core::generalText(state_.globalMissingCode) + ") ";
}

void TransformScreen::reset() {
    input.clear();
    output.clear(NotEntered);
    colsText.reset("1");
    columns = 1;
    option = dataprep::transform::NaturalLog;
    lagText.reset("0");
    lag = 0;
    wrapCheck = false;
    binomialText.reset(core::generalTextSingle(state_.thresh));
    threshold = state_.thresh;
    extractEnsembleCheck = false;
    ensembleExtractText.reset("1");
    ensemble = 1;
    simCheck = false;
    lamdaValText.reset("1");
    lamda = 1.0;
    leftShiftText.reset("0");
    shift = 0.0;
    lastReport.reset();
}

bool TransformScreen::checkLamda(Dialogs& dialogs) {
    const std::string message = "Lamda value must be a value between -2 and +2.";
    if (!lamdaValText.check(dialogs, rangeCheck(-2.0, 2.0, message, message))) {
        return false;
    }
    lamda = core::leadingNumber(lamdaValText.text);
    return true;
}

bool TransformScreen::checkShift(Dialogs& dialogs) {
    if (!leftShiftText.check(dialogs,
                             rangeCheck(0.0, 100.0, "Shift value must be a value between 0 and 100",
                                        "Shift value must be a value between 0 and 100."))) {
        return false;
    }
    shift = core::leadingNumber(leftShiftText.text);
    return true;
}

bool TransformScreen::checkBinomial(Dialogs& dialogs) {
    const bool ok = binomialText.check(dialogs, [](const std::string& text) -> Message {
        if (!core::isNumeric(text)) {
            return "Threshold value must be a number (positive or negative).";
        }
        return std::nullopt;
    });
    if (ok) {
        threshold = static_cast<float>(core::leadingNumber(binomialText.text));
    }
    return ok;
}

bool TransformScreen::checkColumns(Dialogs& dialogs) {
    const FieldCheck inRange =
        rangeCheck(1.0, dataprep::MaxColumns, "Number of columns must be a positive integer.",
                   "Number of columns must be a value between 1 and 100.");
    bool belowEnsemble = false;
    const bool ok = colsText.check(dialogs, [&](const std::string& text) -> Message {
        if (auto message = inRange(text)) {
            return message;
        }
        if (core::roundedInteger(text) < ensemble) {
            belowEnsemble = true;
            return "Input data must include an ensemble to extract if required.";
        }
        return std::nullopt;
    });
    if (belowEnsemble) {
        ensembleExtractText.reset("1");
        ensemble = 1;
    }
    if (ok) {
        columns = core::roundedInteger(colsText.text);
    }
    return ok;
}

bool TransformScreen::checkEnsemble(Dialogs& dialogs) {
    const FieldCheck inRange =
        rangeCheck(1.0, dataprep::MaxColumns, "Ensemble to extract must be a positive integer.",
                   "Ensemble to extract must be a value between 1 and 100.");
    const bool ok = ensembleExtractText.check(dialogs, [&](const std::string& text) -> Message {
        if (auto message = inRange(text)) {
            return message;
        }
        if (core::roundedInteger(text) > columns) {
            return "Ensemble to extract must be within range of input data.";
        }
        return std::nullopt;
    });
    if (ok) {
        ensemble = core::roundedInteger(ensembleExtractText.text);
    }
    return ok;
}

bool TransformScreen::checkLag(Dialogs& dialogs) {
    if (!lagText.check(dialogs, rangeCheck(-1000.0, 1000.0,
                                           "Lag value must be an integer (positive or negative).",
                                           "Lag value must be a value between -1000 and +1000."))) {
        return false;
    }
    lag = core::roundedInteger(lagText.text);
    return true;
}

void TransformScreen::pickInput(Dialogs& dialogs) {
    if (const auto path = dialogs.pickOpenFile(filter::Data, state_.defaultDir)) {
        input.choose(*path);
    }
}

void TransformScreen::pickOutput(Dialogs& dialogs) {
    if (const auto path = dialogs.pickSaveFile(filter::Data, state_.defaultDir, "DAT")) {
        output.choose(*path);
    }
}

// The checks of a run in their order; the lag and threshold fields are checked whatever the
// option, but stop the run only when their option is chosen.
RunOutcome TransformScreen::runChecks(Dialogs& dialogs) {
    namespace code = dataprep::transform;
    if (!input.chosen()) {
        dialogs.error("You must select a file to transform.");
        return RunOutcome::Refused;
    }
    if (!output.chosen()) {
        dialogs.error("You must select a file to save the transformation to.");
        return RunOutcome::Refused;
    }
    if (!checkLag(dialogs) && option == code::Lag) {
        return RunOutcome::Refused;
    }
    if (!checkBinomial(dialogs) && option == code::Binomial) {
        return RunOutcome::Refused;
    }
    if (!checkColumns(dialogs)) {
        return RunOutcome::Refused;
    }
    if (extractEnsembleCheck && !checkEnsemble(dialogs)) {
        return RunOutcome::Refused;
    }
    if (option == code::UnBoxCox && (!checkLamda(dialogs) || !checkShift(dialogs))) {
        return RunOutcome::Refused;
    }
    if (extractEnsembleCheck && columns == 1) {
        dialogs.error("You cannot extract a column from a file with only one column.");
        return RunOutcome::Refused;
    }
    if (const auto refusal = outputOverInput()) {
        dialogs.error(*refusal);
        return RunOutcome::Refused;
    }
    return RunOutcome::Done;
}

// The output, and the description file's copy, must not be a file the run reads.
std::optional<std::string> TransformScreen::outputOverInput() const {
    std::vector<std::string> inputs{input.path};
    if (simCheck) {
        inputs.push_back(dataprep::descriptionCopySource(input.path));
    }
    if (auto refusal = screens::outputOverInput(state_, {output.path}, inputs)) {
        return refusal;
    }
    if (simCheck) {
        return screens::outputOverInput(
            state_, {dataprep::descriptionCopyTarget(input.path, output.path)}, {input.path});
    }
    return std::nullopt;
}

TransformScreen::Report TransformScreen::runOperation(core::Progress& progress) {
    namespace code = dataprep::transform;
    Report report;
    // Everything that can refuse the run does so before the first file is written.
    core::refuseFolder(output.path);
    const bool boxCox = option == code::BoxCox || option == code::UnBoxCox;
    dataprep::checkTransformInput(input.path, boxCox ? 1 : columns, progress);
    if (simCheck) {
        report.copiedSimFile = dataprep::copyDescriptionFile(input.path, output.path);
    }
    const double missingCode = state_.globalMissingCode;
    if (option == code::BoxCox) {
        const auto result =
            dataprep::boxCoxFile(input.path, output.path, columns, missingCode, progress);
        report.counts = result.counts;
        report.lamda = result.lamda;
        report.shift = result.shift;
        report.text = dataprep::boxCoxReportText(result, missingCode);
    } else if (option == code::UnBoxCox) {
        outputStarted = true;
        report.counts = dataprep::unBoxCoxFile(input.path, output.path, columns, lamda, shift,
                                               missingCode, progress);
        report.text = dataprep::unBoxCoxReportText(report.counts, missingCode);
    } else {
        dataprep::TransformSettings settings;
        settings.code = option;
        settings.columns = columns;
        settings.lag = lag;
        settings.wrap = wrapCheck;
        settings.threshold = threshold;
        settings.extract = extractEnsembleCheck;
        settings.extractColumn = ensemble;
        settings.missingCode = missingCode;
        outputStarted = true;
        report.counts = dataprep::transformFile(input.path, output.path, settings, progress);
        report.text =
            dataprep::transformReportText(report.counts, extractEnsembleCheck, missingCode);
    }
    return report;
}

RunOutcome TransformScreen::transform(Dialogs& dialogs, core::Progress& progress) {
    lastReport.reset();
    outputStarted = false;
    if (const RunOutcome checked = runChecks(dialogs); checked != RunOutcome::Done) {
        return checked;
    }
    return guardedRun(
        dialogs,
        [&] {
            lastReport = runOperation(progress);
            dialogs.message(CompleteTitle, lastReport->text, Icon::Information);
            return RunOutcome::Done;
        },
        [&] { state_.stopRequested.clear(); });
}

} // namespace varo::screens
