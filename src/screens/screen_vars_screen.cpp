#include "screens/screen_vars_screen.hpp"

#include "screens/fit_period.hpp"

#include "core/dates.hpp"
#include "core/failure.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"

#include <algorithm>
#include <cctype>

namespace varo::screens {

std::vector<std::string> periodEntries(const core::ProgramState& state) {
    std::vector<std::string> entries{state.periodNames[17]};
    for (int season = 13; season <= 16; ++season) {
        entries.push_back(state.periodNames[static_cast<size_t>(season)]);
    }
    for (int month = 1; month <= 12; ++month) {
        entries.push_back(state.periodNames[static_cast<size_t>(month)]);
    }
    return entries;
}

ScreenVarsScreen::ScreenVarsScreen(core::ProgramState& state) : state_(state) {
    reset();
}

void ScreenVarsScreen::reset() {
    predictand.clear();
    predictors.setFolder(state_.defaultDir);
    refreshGlobals();
    fsDate.reset(core::formatDate(state_.globalSDate));
    feDate.reset(core::formatDate(state_.globalEDate));
    datesCombo = 0;
    parmOpt = Unconditional;
    autoRegressionTick = false;
    sigLevelText.reset("0.05");
    sigLevel = 0.05f;
    clearResults();
}

void ScreenVarsScreen::refreshGlobals() {
    sDate = core::formatDate(state_.globalSDate);
    eDate = core::formatDate(state_.globalEDate);
}

void ScreenVarsScreen::clearResults() {
    fileList.clear();
    data.reset();
    correlation.reset();
    variance.reset();
    report.reset();
    tables.clear();
    scatterPoints.reset();
}

void ScreenVarsScreen::choosePredictand(const std::string& path) {
    predictand.choose(path);
    state_.selectedPredictandName = predictand.text;
    state_.selectedPredictandPath = path;
}

void ScreenVarsScreen::pickPredictand(Dialogs& dialogs) {
    const std::string start = state_.selectedPredictandPath.empty()
                                  ? state_.defaultDir
                                  : core::folderOf(state_.selectedPredictandPath);
    if (const auto path = dialogs.pickOpenFile(filter::DatFirst, start)) {
        choosePredictand(*path);
    }
}

void ScreenVarsScreen::warnIfTooMany(Dialogs& dialogs) const {
    if (predictors.count() > static_cast<size_t>(screening::MaxCorrelationPredictors)) {
        dialogs.message("Warning", "Can only display up to 12 predictors in correlation analysis.",
                        Icon::Warning);
    }
}

void ScreenVarsScreen::selectPredictorItems(const std::vector<size_t>& indices, Dialogs& dialogs) {
    predictors.selectItems(indices);
    warnIfTooMany(dialogs);
}

void ScreenVarsScreen::choosePredictors(const std::vector<std::string>& paths, Dialogs& dialogs) {
    predictors.choose(paths);
    warnIfTooMany(dialogs);
}

void ScreenVarsScreen::setProcess(int option, Dialogs& dialogs) {
    parmOpt = option;
    if (parmOpt == Conditional && autoRegressionTick) {
        dialogs.message("Warning",
                        "Can only apply autoregression analysis to unconditional process.",
                        Icon::Warning);
    }
}

void ScreenVarsScreen::setAutoregression(bool ticked, Dialogs& dialogs) {
    autoRegressionTick = ticked;
    if (ticked && parmOpt == Conditional) {
        dialogs.message("Warning",
                        "Can only apply autoregression analysis to unconditional process.",
                        Icon::Warning);
    }
}

bool ScreenVarsScreen::checkFitStart(Dialogs& dialogs) {
    return fsDate.check(dialogs, [&](const std::string& text) {
        return fitStartRefusal(text, feDate.text, state_);
    });
}

bool ScreenVarsScreen::checkFitEnd(Dialogs& dialogs) {
    return feDate.check(
        dialogs, [&](const std::string& text) { return fitEndRefusal(fsDate.text, text, state_); });
}

bool ScreenVarsScreen::checkSigLevel(Dialogs& dialogs) {
    const bool ok = sigLevelText.check(
        dialogs, rangeCheck(0.0, 1.0, "Significance level must be a value.",
                            "Significance level must be positive and less than 1.",
                            core::RangeEnds::Excluded));
    if (ok) {
        sigLevel = static_cast<float>(core::leadingNumber(sigLevelText.text));
    }
    return ok;
}

bool ScreenVarsScreen::checkSelection(Dialogs& dialogs, bool limitTo12) {
    if (!predictand.chosen()) {
        dialogs.error("You must select a predictand.");
        return false;
    }
    if (predictors.count() == 0) {
        dialogs.error("You must select at least one predictor.");
        return false;
    }
    if (limitTo12 &&
        predictors.count() > static_cast<size_t>(screening::MaxCorrelationPredictors)) {
        dialogs.error("Sorry - you are allowed a maximum of 12 predictors only.");
        return false;
    }
    return true;
}

screening::ScreeningRequest ScreenVarsScreen::request() const {
    screening::ScreeningRequest request;
    request.predictandPath = predictand.path;
    request.predictorPaths = predictors.selected;
    request.fitStart = *core::parseDate(fsDate.text);
    request.fitEnd = *core::parseDate(feDate.text);
    request.period = datesCombo;
    request.conditional = parmOpt == Conditional;
    request.autoregression = autoRegressionTick;
    return request;
}

RunOutcome ScreenVarsScreen::correlate(Dialogs& dialogs, core::Progress& progress) {
    clearResults();
    if (!checkSelection(dialogs, true) || !checkFitStart(dialogs) || !checkFitEnd(dialogs)) {
        return RunOutcome::Refused;
    }
    return guardedRun(
        dialogs,
        [&] {
            const auto asked = request();
            auto assembled = screening::assembleScreeningData(asked, state_, progress);
            const auto result = screening::correlate(assembled, asked.conditional, state_);
            fileList.assign(assembled.names.begin() + 1, assembled.names.end());
            const screening::ReportHeading heading{
                fsDate.text, feDate.text,
                periodEntries(state_)[static_cast<size_t>(std::clamp(datesCombo, 0, 16))]};
            auto made = screening::correlationTables(assembled, result);
            report = screening::correlationReport(assembled, made, heading, asked.conditional);
            tables = {{"correlations", made.matrix}};
            if (made.partials) {
                tables.push_back({"partials", *made.partials});
            }
            data = std::move(assembled);
            correlation = result;
            return RunOutcome::Done;
        },
        [&] {
            clearResults();
            state_.stopRequested.clear();
        });
}

RunOutcome ScreenVarsScreen::explainVariance(Dialogs& dialogs, core::Progress& progress) {
    clearResults();
    if (!checkSelection(dialogs, false) || !checkFitStart(dialogs) || !checkFitEnd(dialogs) ||
        !checkSigLevel(dialogs)) {
        return RunOutcome::Refused;
    }
    return guardedRun(
        dialogs,
        [&] {
            auto result = screening::explainVariance(request(), state_, progress);
            fileList = result.names;
            tables = {{"results", screening::varianceTable(result, sigLevel)}};
            for (const std::string_view statistic : screening::VarianceStatistics) {
                tables.push_back(
                    {std::string(statistic), screening::varianceStatisticTable(result, statistic)});
            }
            report = screening::varianceReport(result, tables.front().table,
                                               {fsDate.text, feDate.text, sigLevelText.text});
            variance = std::move(result);
            return RunOutcome::Done;
        },
        [&] {
            clearResults();
            state_.stopRequested.clear();
        });
}

RunOutcome ScreenVarsScreen::scatter(Dialogs& dialogs, core::Progress& progress) {
    clearResults();
    if (!predictand.chosen()) {
        dialogs.error("You must select a predictand.");
        return RunOutcome::Refused;
    }
    if (!autoRegressionTick && predictors.count() == 0) {
        dialogs.error("You must select one predictor to plot with.");
        return RunOutcome::Refused;
    }
    if (!autoRegressionTick && predictors.count() > 1) {
        dialogs.error("You must select only one predictor only to plot with.");
        return RunOutcome::Refused;
    }
    if (!checkFitStart(dialogs) || !checkFitEnd(dialogs)) {
        return RunOutcome::Refused;
    }
    return guardedRun(
        dialogs,
        [&] {
            auto points = screening::scatterData(request(), state_, progress);
            fileList = {points.xTitle};
            scatterPoints = std::move(points);
            return RunOutcome::Done;
        },
        [&] {
            clearResults();
            state_.stopRequested.clear();
        });
}

namespace {
constexpr std::string_view NoReportMessage =
    "There is no report to save yet: run Correlation or Explained Variance first.";
}

bool saveReportText(const std::vector<std::string>& lines, const std::string& path,
                    Dialogs& dialogs) {
    std::string text;
    for (const std::string& line : lines) {
        text += line;
        text += "\r\n";
    }
    try {
        core::writeTextFile(path, text);
    } catch (const core::Failure& failure) {
        dialogs.error(core::reportFailureText(failure.number(), failure.description()));
        return false;
    }
    return true;
}

bool ScreenVarsScreen::saveReport(const std::string& path, Dialogs& dialogs) {
    if (!report) {
        dialogs.error(NoReportMessage);
        return false;
    }
    return saveReportText(report->lines, path, dialogs);
}

std::optional<std::string> ScreenVarsScreen::pickAndSaveReport(Dialogs& dialogs) {
    if (!report) {
        dialogs.error(NoReportMessage);
        return std::nullopt;
    }
    const auto path = dialogs.pickSaveFile(filter::Text, state_.defaultDir, "TXT");
    if (!path || !saveReport(*path, dialogs)) {
        return std::nullopt;
    }
    return path;
}

} // namespace varo::screens
