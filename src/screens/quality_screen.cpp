#include "screens/quality_screen.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/series_file.hpp"

namespace varo::screens {

namespace {
constexpr std::string_view FirstLineWarning =
    "File may contain multiple columns or non-Windows line breaks / carriage returns. This may "
    "cause problems in VARO later.";
} // namespace

QualityScreen::QualityScreen(core::ProgramState& state) : state_(state) {
    refreshGlobals();
}

void QualityScreen::pickFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickOpenFile(filter::Data, state_.defaultDir)) {
        file.choose(*path);
    }
}

void QualityScreen::refreshGlobals() {
    missingCodeText = core::generalText(state_.globalMissingCode);
}

void QualityScreen::clearResults() {
    for (std::string* field :
         {&totalText, &missingText, &totalOkText, &minText, &maxText, &meanText, &maxDiffText,
          &maxDiffVal1Text, &maxDiffVal2Text, &threshCountText}) {
        field->clear();
    }
    results.reset();
    warningsShown.clear();
}

void QualityScreen::reset() {
    clearResults();
    file.clear();
    refreshGlobals();
}

// Fills the fields in the order of the screen; with every value missing the mean cannot
// be divided out, and the fields before it are all that stands.
void QualityScreen::showResults(const dataprep::QualityResults& found) {
    totalText = std::to_string(found.total);
    missingText = std::to_string(found.missing);
    totalOkText = std::to_string(found.ok);
    minText = core::generalText(found.minimum);
    maxText = core::generalText(found.maximum);
    if (!found.mean) {
        throw core::Failure(core::failure::DivisionByZero,
                            "Every value in '" + file.path + "' equals the missing value code " +
                                core::generalText(state_.globalMissingCode) +
                                ", so no mean can be calculated.");
    }
    meanText = core::generalText(*found.mean);
    maxDiffText = core::generalText(found.maxDiff);
    maxDiffVal1Text = core::generalText(found.maxDiffFirst);
    maxDiffVal2Text = core::generalText(found.maxDiffSecond);
    threshCountText = std::to_string(found.aboveThreshold);
}

RunOutcome QualityScreen::check(Dialogs& dialogs, core::Progress& progress) {
    if (!file.chosen()) {
        dialogs.error("You must select a file to check first.");
        return RunOutcome::Refused;
    }
    clearResults();
    return guardedRun(
        dialogs,
        [&] {
            if (dataprep::firstLineTooLong(file.path)) {
                warningsShown.emplace_back(FirstLineWarning);
                dialogs.message("Warning Message", FirstLineWarning, Icon::Warning);
            }
            const auto found = dataprep::checkQuality(file.path, state_.globalMissingCode,
                                                      state_.thresh, progress);
            results = found;
            showResults(found);
            dialogs.message("Quality check complete",
                            std::to_string(found.total) + " values processed in " +
                                core::bareFileName(file.path) + ".",
                            Icon::Information);
            return RunOutcome::Done;
        },
        [&] { state_.stopRequested.clear(); });
}

} // namespace varo::screens
