#include "screens/analyse_screen.hpp"

#include "core/dates.hpp"
#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"
#include "screens/file_choice.hpp"
#include "statistics/statistic_columns.hpp"

#include <array>

namespace varo::screens {

namespace {

constexpr int LongestAnalysisYears = 150;
constexpr std::string_view SimReadMessage =
    "An error occurred opeing the *.SIM file. Please try again.";

bool isBlankText(const std::string& text) {
    return text.find_first_not_of(" \t") == std::string::npos;
}

// The SIM file beside an OUT file, or in `problem` what kept it from being read.
std::optional<series::SimulationDescription> readDescription(const std::string& outPath,
                                                             std::string& problem) {
    try {
        return series::readSimulationDescription(series::simPathFor(outPath));
    } catch (const core::Failure& failure) {
        problem = failure.description();
        return std::nullopt;
    }
}

std::optional<std::string> ensembleNumberRefusal(const std::string& text) {
    if (!core::isNumeric(text)) {
        return "Ensemble member value is invalid.";
    }
    const int member = core::roundedInteger(text);
    if (member < 1 || member > 100) {
        return "Ensemble member cannot be zero or greater than 100.";
    }
    return std::nullopt;
}

// The analysis dates in order and less than 150 calendar years apart. `isStart` says
// which field is being left; a run checks both (`isStart` empty).
std::optional<std::string> analysisDatesRefusal(const std::string& startText,
                                                const std::string& endText,
                                                std::optional<bool> isStart) {
    const auto start = core::parseDate(startText);
    const auto end = core::parseDate(endText);
    if (isStart.value_or(true) && !start) {
        return "Analysis start date is invalid.";
    }
    if (!isStart.value_or(false) && !end) {
        return "Analysis end date is invalid.";
    }
    if (!start || !end) {
        return std::nullopt;
    }
    if (core::dayDifference(*start, *end) <= 0) {
        return isStart.value_or(false)
                   ? "Analysis start date must be earlier than analysis end date."
                   : "Analysis end date must be later than analysis start date.";
    }
    if (core::yearDifference(*start, *end) >= LongestAnalysisYears) {
        return "Analysis period must be less than 150 years.";
    }
    return std::nullopt;
}

core::Date dateOf(const std::string& text) {
    return core::parseDate(text).value_or(core::Date{});
}

} // namespace

AnalyseScreen::AnalyseScreen(core::ProgramState& state)
    : startDateText(core::formatDate(state.globalSDate)),
      endDateText(core::formatDate(state.globalEDate)), state_(state) {
    showDays();
}

void AnalyseScreen::pickInputFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickOpenFile(filter::OutOrData, state_.defaultDir)) {
        inputFileText = *path;
    }
}

void AnalyseScreen::pickSaveFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickSaveFile(filter::Text, state_.defaultDir, "TXT")) {
        saveFileText = *path;
    }
}

void AnalyseScreen::showDetails(const series::SimulationDescription& description) {
    fileNPredictors = std::to_string(description.predictorCount);
    fileSeasonCode = std::to_string(description.seasonCode);
    fileYearLength = std::to_string(description.yearIndicator);
    fileNDays = std::to_string(description.fitLength);
    fileEnsembleSize = std::to_string(description.ensembleSize);
    fileStartDate = description.fitStart;
}

bool AnalyseScreen::showFileDetails(Dialogs& dialogs) {
    if (isBlankText(inputFileText)) {
        dialogs.error("You must select a scenario file first.");
        return false;
    }
    if (!isOutFile(inputFileText)) {
        dialogs.error("You must select an appropriate scenario (*.OUT) file.");
        return false;
    }
    if (sourceButton == Source::Observed) {
        dialogs.error("You have selected observed data.  There is no scenario file available "
                      "for observed data.");
        return false;
    }
    std::string problem;
    const auto description = readDescription(inputFileText, problem);
    if (!description) {
        dialogs.error("Sorry - an error has occurred opening the SIM file.  Please check "
                      "settings and try again.\r\n" +
                      problem);
        return false;
    }
    showDetails(*description);
    return true;
}

bool AnalyseScreen::checkEnsembleNumber(Dialogs& dialogs) {
    return ensembleNumber.check(dialogs, ensembleNumberRefusal);
}

void AnalyseScreen::showDays() {
    const auto start = core::parseDate(startDateText.text);
    const auto end = core::parseDate(endDateText.text);
    noOfDaysText = start && end ? std::to_string(core::daysInclusive(*start, *end)) : "";
}

bool AnalyseScreen::checkStartDate(Dialogs& dialogs) {
    const std::string end = endDateText.text;
    const bool ok = startDateText.check(
        dialogs, [&](const std::string& text) { return analysisDatesRefusal(text, end, true); });
    showDays();
    return ok;
}

bool AnalyseScreen::checkEndDate(Dialogs& dialogs) {
    const std::string start = startDateText.text;
    const bool ok = endDateText.check(
        dialogs, [&](const std::string& text) { return analysisDatesRefusal(start, text, false); });
    showDays();
    return ok;
}

std::optional<std::string>
AnalyseScreen::runRefusal(const std::optional<series::SimulationDescription>& description,
                          const std::string& simProblem) const {
    const bool modelled = sourceButton == Source::Modelled;
    if (isBlankText(inputFileText)) {
        return "You must select a data file first.";
    }
    if (isBlankText(saveFileText)) {
        return "You must enter a filename to save summary results to.";
    }
    if (modelled && !isOutFile(inputFileText)) {
        return "You must select an appropriate scenario file for modelled analyses.";
    }
    const bool oneMember = modelled && !ensembleMeanCheck;
    if (oneMember && description && core::isNumeric(ensembleNumber.text) &&
        core::roundedInteger(ensembleNumber.text) > description->ensembleSize) {
        return "Ensemble member does not exist in data file.";
    }
    if (modelled && !description) {
        return std::string(SimReadMessage) + "\r\n" + simProblem;
    }
    if (oneMember && isBlankText(ensembleNumber.text)) {
        return "You must enter an ensemble member if you do not wish to analyse the mean.";
    }
    if (oneMember) {
        if (auto refusal = ensembleNumberRefusal(ensembleNumber.text)) {
            return refusal;
        }
    }
    // A delta run takes the periods of the selection screen, which are dates.
    if (!deltaCheck) {
        if (auto refusal =
                analysisDatesRefusal(startDateText.text, endDateText.text, std::nullopt)) {
            return refusal;
        }
    }
    int flagged = 0;
    for (int c = 1; c <= statistics::StatisticCount; ++c) {
        flagged += core::statisticSelected(state_, c) ? 1 : 0;
    }
    if (flagged > statistics::MaximumSelected) {
        return "You can select up to a maximum of eight statistics only.";
    }
    return std::nullopt;
}

statistics::AnalysisRequest
AnalyseScreen::buildRequest(const std::optional<series::SimulationDescription>& description) const {
    statistics::AnalysisRequest request;
    request.source.path = inputFileText;
    if (sourceButton == Source::Modelled && description) {
        request.source.memberCount = description->ensembleSize;
        request.source.calendar = core::calendarForYearLength(description->yearIndicator);
        request.source.recordStart = dateOf(description->fitStart);
        request.ensemble.mean = ensembleMeanCheck;
        request.ensemble.member = core::roundedInteger(ensembleNumber.text);
    } else {
        request.source.memberCount = 1;
        request.source.calendar = core::calendarInForce(state_);
        request.source.recordStart = state_.globalSDate;
    }
    request.settings = statistics::engineSettingsFrom(state_);
    request.deltas = deltaCheck;
    const core::StatisticParameters& p = state_.statisticParameters;
    if (deltaCheck) {
        request.start = p.basePeriod.start;
        request.end = p.basePeriod.end;
        const core::DatePeriod* periods[] = {&p.periodA, &p.periodB, &p.periodC};
        for (size_t i = 0; i < 3; ++i) {
            request.periodStart[i] = periods[i]->start;
            request.periodEnd[i] = periods[i]->end;
        }
        request.deltaKind =
            p.deltaKind == 2 ? statistics::AbsoluteDelta : statistics::PercentageDelta;
    } else {
        request.start = dateOf(startDateText.text);
        request.end = dateOf(endDateText.text);
    }
    return request;
}

// A period that starts before the data's first row could not be found in the file.
std::optional<std::string>
AnalyseScreen::periodBeforeData(const statistics::AnalysisRequest& request) const {
    const core::Date& first = request.source.recordStart;
    auto before = [&](const char* what, const core::Date& start) -> std::optional<std::string> {
        if (core::dayDifference(first, start) < 0) {
            return std::string(what) + " starts on " + core::formatDate(start) +
                   ", before the first day of the data (" + core::formatDate(first) + ").";
        }
        return std::nullopt;
    };
    if (!request.deltas) {
        return before("The analysis period", request.start);
    }
    if (auto refusal = before("The base period", request.start)) {
        return refusal;
    }
    const char* names[] = {"Period A", "Period B", "Period C"};
    for (size_t i = 0; i < 3; ++i) {
        if (auto refusal = before(names[i], request.periodStart[i])) {
            return refusal;
        }
    }
    return std::nullopt;
}

statistics::ReportLabels
AnalyseScreen::buildLabels(const statistics::AnalysisRequest& request) const {
    statistics::ReportLabels result;
    result.fileName = core::bareFileName(inputFileText);
    result.startDate = core::formatDate(request.start);
    result.endDate = core::formatDate(request.end);
    if (sourceButton == Source::Modelled && ensembleMeanCheck) {
        result.members = "ALL";
    } else {
        result.members =
            std::to_string(request.source.memberCount > 1 ? request.ensemble.member : 1);
    }
    for (int c = 1; c <= statistics::StatisticCount; ++c) {
        if (request.settings.selected[c]) {
            result.columns.push_back(c);
            result.columnNames.push_back(state_.statisticTable[static_cast<size_t>(c - 1)].name);
        }
    }
    for (int row = 1; row <= statistics::CalendarRowCount; ++row) {
        result.rowNames[row] = state_.periodNames[row];
    }
    result.deltaKind = request.deltaKind;
    for (size_t i = 0; i < 3; ++i) {
        result.periodStart[i] = core::formatDate(request.periodStart[i]);
        result.periodEnd[i] = core::formatDate(request.periodEnd[i]);
    }
    return result;
}

std::vector<core::NamedTable> AnalyseScreen::resultTables() const {
    return tables ? tables->named() : std::vector<core::NamedTable>{};
}

RunOutcome AnalyseScreen::run(Dialogs& dialogs, core::Progress& progress) {
    results.reset();
    tables.reset();
    resultsPath.clear();
    const bool modelled = sourceButton == Source::Modelled;
    std::optional<series::SimulationDescription> description;
    std::string simProblem;
    if (modelled && !isBlankText(inputFileText) && isOutFile(inputFileText)) {
        description = readDescription(inputFileText, simProblem);
    }
    if (auto refusal = runRefusal(description, simProblem)) {
        dialogs.error(*refusal);
        return RunOutcome::Refused;
    }
    if (description) {
        showDetails(*description);
    }
    const statistics::AnalysisRequest request = buildRequest(description);
    if (auto refusal = periodBeforeData(request)) {
        dialogs.error(*refusal);
        return RunOutcome::Refused;
    }
    std::vector<std::string> inputs{inputFileText};
    if (description) {
        inputs.push_back(series::simPathFor(inputFileText));
    }
    if (auto refusal = outputOverInput(state_, {saveFileText}, inputs)) {
        dialogs.error(*refusal);
        return RunOutcome::Refused;
    }
    return guardedRun(
        dialogs,
        [&] {
            statistics::AnalysisResults found = statistics::runAnalysis(request, progress);
            labels = buildLabels(request);
            auto made = statistics::resultTables(labels, found, state_.globalMissingCode);
            statistics::writeResultsFile(saveFileText, statistics::resultsText(labels, made));
            results = std::move(found);
            tables = std::move(made);
            resultsPath = saveFileText;
            dialogs.message("Summary Statistics",
                            "Summary statistics saved to " + core::bareFileName(saveFileText) + ".",
                            Icon::Information);
            return RunOutcome::Done;
        },
        [&] { state_.stopRequested.clear(); });
}

} // namespace varo::screens
