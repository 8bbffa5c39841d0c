#include "screens/generate_screen.hpp"

#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/random.hpp"
#include "core/series_file.hpp"

#include <functional>
#include <vector>

namespace varo::screens {

namespace {

using Message = std::optional<std::string>;

constexpr std::string_view NoAmountChange =
    "You are trying to apply an amount treatment but applying no change.";

// The check of a numeric field: one message when the text is no number, another when the
// value lies outside low to high (the limits pass).
FieldCheck rangeCheck(std::string notNumber, std::string outOfRange, double low, double high) {
    return [=](const std::string& text) -> Message {
        if (!core::isNumeric(text)) {
            return notNumber;
        }
        const double value = core::leadingNumber(text);
        if (value < low || value > high) {
            return outOfRange;
        }
        return std::nullopt;
    };
}

double valueOf(const TextField& field) {
    return core::leadingNumber(field.text);
}

// (change + 100) / 100 in single precision, from the change held as single.
float changeFactor(const TextField& field) {
    return (static_cast<float>(valueOf(field)) + 100.0f) / 100.0f;
}

} // namespace

GenerateScreen::GenerateScreen(core::ProgramState& state) : state_(state) {
    reset();
}

void GenerateScreen::chooseInFile(const std::string& path) {
    inFilePath = path;
    inFileText = core::bareFileName(path);
}

void GenerateScreen::chooseOutFile(const std::string& path) {
    outFilePath = path;
    outFileText = core::bareFileName(path);
}

void GenerateScreen::pickInFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickOpenFile(InFilter, state_.defaultDir)) {
        chooseInFile(*path);
    }
}

void GenerateScreen::pickOutFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickSaveFile(OutFilter, state_.defaultDir, "OUT")) {
        chooseOutFile(*path);
    }
}

void GenerateScreen::reset() {
    state_.stopRequested.clear();
    inFileText = std::string(NotSelected);
    inFilePath.clear();
    outFileText = std::string(NotSelected);
    outFilePath.clear();
    eSize.reset(std::string(DefaultEnsemble));
    ensembleSize = 1;
    refreshGlobals();
    conditionalCheck = false;
    occurenceCheck = false;
    occurenceOption = Stochastic;
    preserveTotalsCheck = false;
    amountCheck = false;
    amountOption = NoOption;
    varianceCheck = false;
    trendCheck = false;
    trendOption = NoOption;
    for (TextField* field : {&frequencyChangeText, &amountFactorText, &amountAdditionText,
                             &varianceFactorText, &linearTrendText, &logisticTrendText}) {
        field->reset(std::string(DefaultChange));
    }
    expTrendText.reset(std::string(DefaultExpTrend));
    amountFactor = frequencyFactor = varianceFactor = 1.0f;
    amountAddition = linearTrend = logisticTrend = 0.0;
    expTrend = 1.0;
    lastResult.reset();
}

void GenerateScreen::refreshGlobals() {
    startDateText.reset(core::formatDate(state_.globalSDate));
    startDate = state_.globalSDate;
    thresholdText.reset(core::generalTextSingle(state_.thresh));
    threshold = state_.thresh;
}

bool GenerateScreen::checkAmountFactor(Dialogs& dialogs) {
    if (!amountFactorText.check(dialogs, rangeCheck("Factor must be a value between -100 and 100.",
                                                    "Factor must be between -100 and 100.", -100.0,
                                                    100.0))) {
        return false;
    }
    amountFactor = static_cast<float>((valueOf(amountFactorText) + 100.0) / 100.0);
    return true;
}

bool GenerateScreen::checkExpTrend(Dialogs& dialogs) {
    const bool ok = expTrendText.check(dialogs, [](const std::string& text) -> Message {
        if (!core::isNumeric(text) || core::leadingNumber(text) == 0.0) {
            return "Exponential trend must be a value other than zero.";
        }
        return std::nullopt;
    });
    if (ok) {
        expTrend = valueOf(expTrendText);
    }
    return ok;
}

bool GenerateScreen::checkAmountAddition(Dialogs& dialogs) {
    if (!amountAdditionText.check(
            dialogs, rangeCheck("Addition must be a value between -100 and 100.",
                                "Addition must be between -100 and 100.", -100.0, 100.0))) {
        return false;
    }
    amountAddition = valueOf(amountAdditionText);
    return true;
}

bool GenerateScreen::checkLinearTrend(Dialogs& dialogs) {
    if (!linearTrendText.check(
            dialogs, rangeCheck("Linear trend must be a value between -100 and 100.",
                                "Linear trend must be between -100 and 100.", -100.0, 100.0))) {
        return false;
    }
    linearTrend = valueOf(linearTrendText);
    return true;
}

bool GenerateScreen::checkLogisticTrend(Dialogs& dialogs) {
    if (!logisticTrendText.check(
            dialogs, rangeCheck("Logistic trend must be a value between -100 and 100.",
                                "Logistic trend must be between -100 and 100.", -100.0, 100.0))) {
        return false;
    }
    logisticTrend = valueOf(logisticTrendText);
    return true;
}

bool GenerateScreen::checkThreshold(Dialogs& dialogs) {
    if (!thresholdText.check(dialogs, rangeCheck("Threshold must be a value.",
                                                 "Threshold must be between -100 and 100.", -100.0,
                                                 100.0))) {
        return false;
    }
    threshold = valueOf(thresholdText);
    return true;
}

bool GenerateScreen::checkFrequencyChange(Dialogs& dialogs) {
    const std::string message = "Frequency change value must be between -99 and 100.";
    if (!frequencyChangeText.check(dialogs, rangeCheck(message, message, -99.0, 100.0))) {
        return false;
    }
    frequencyFactor = changeFactor(frequencyChangeText);
    return true;
}

bool GenerateScreen::checkVarianceFactor(Dialogs& dialogs) {
    const std::string message = "Factor must be a value.";
    if (!varianceFactorText.check(dialogs, rangeCheck(message, message, -100000.0, 100000.0))) {
        return false;
    }
    varianceFactor = changeFactor(varianceFactorText);
    return true;
}

bool GenerateScreen::checkStartDate(Dialogs& dialogs) {
    const bool ok = startDateText.check(dialogs, [](const std::string& text) -> Message {
        if (!core::parseDate(text)) {
            return "Start date is invalid - it must be in the format dd/mm/yyyy.";
        }
        return std::nullopt;
    });
    if (ok) {
        startDate = *core::parseDate(startDateText.text);
    }
    return ok;
}

bool GenerateScreen::checkEnsembleSize(Dialogs& dialogs) {
    if (!eSize.check(dialogs, rangeCheck("Ensemble Size must be a value between 1 and 100.",
                                         "Ensemble Size must be between 1 and 100.", 1.0,
                                         scenario::MaxMembers))) {
        return false;
    }
    ensembleSize = static_cast<int>(core::roundHalfEven(valueOf(eSize)));
    eSize.reset(std::to_string(ensembleSize));
    return true;
}

// The twenty checks in their order; every field is checked whichever treatments are ticked.
// A condition is asked only when its turn comes, as it may read a value that a field check
// before it has just set.
RunOutcome GenerateScreen::runChecks(Dialogs& dialogs) {
    using Step = std::function<bool()>;
    const auto refuseIf = [&dialogs](std::function<bool()> refused, std::string_view message) {
        return Step([&dialogs, refused, message] {
            if (refused()) {
                dialogs.error(message);
                return false;
            }
            return true;
        });
    };
    const auto field = [this, &dialogs](bool (GenerateScreen::*check)(Dialogs&)) {
        return Step([this, &dialogs, check] { return (this->*check)(dialogs); });
    };
    const std::vector<Step> steps = {
        refuseIf([this] { return inFilePath.size() < 5; }, "You must select an input file first."),
        refuseIf([this] { return outFilePath.empty(); },
                 "You must enter a filename to save results to."),
        refuseIf(
            [this] { return !occurenceCheck && !amountCheck && !trendCheck && !varianceCheck; },
            "You must select at least one treatment."),
        refuseIf([this] { return occurenceCheck && !conditionalCheck; },
                 "You cannot perform an occurrence treatment on data that are unconditional."),
        field(&GenerateScreen::checkAmountFactor),
        refuseIf([this] { return amountCheck && amountOption == Factor && amountFactor == 1.0f; },
                 NoAmountChange),
        field(&GenerateScreen::checkExpTrend),
        field(&GenerateScreen::checkAmountAddition),
        refuseIf(
            [this] { return amountCheck && amountOption == Addition && amountAddition == 0.0; },
            NoAmountChange),
        field(&GenerateScreen::checkLinearTrend),
        field(&GenerateScreen::checkLogisticTrend),
        field(&GenerateScreen::checkThreshold),
        field(&GenerateScreen::checkFrequencyChange),
        field(&GenerateScreen::checkVarianceFactor),
        field(&GenerateScreen::checkStartDate),
        field(&GenerateScreen::checkEnsembleSize),
        refuseIf(
            [this] {
                return occurenceCheck && occurenceOption == Stochastic && frequencyFactor == 1.0f;
            },
            "You are trying to perform an occurrence treatment but applying zero frequency "
            "change."),
        refuseIf([this] { return amountCheck && amountOption == NoOption; },
                 "You are trying to apply an amount but have not selected which treatment to "
                 "apply."),
        refuseIf([this] { return trendCheck && trendOption == NoOption; },
                 "You are trying to apply a trend but have not selected which treatment to "
                 "apply."),
        refuseIf([this] { return varianceCheck && varianceFactor == 1.0f; },
                 "You are trying to apply a variance change but have not entered an amount."),
    };
    for (const Step& step : steps) {
        if (!step()) {
            return RunOutcome::Refused;
        }
    }
    return RunOutcome::Done;
}

scenario::ScenarioRequest GenerateScreen::request() const {
    scenario::ScenarioRequest r;
    r.inPath = inFilePath;
    r.outPath = outFilePath;
    r.ensembleSize = ensembleSize;
    r.scope = {threshold, state_.globalMissingCode, conditionalCheck};
    r.start = {core::calendarInForce(state_), startDate};
    r.yearIndicator = state_.yearIndicator;
    if (occurenceCheck) {
        scenario::OccurrenceTreatment occurrence;
        occurrence.kind = occurenceOption == Forced ? scenario::OccurrenceKind::Forced
                                                    : scenario::OccurrenceKind::Stochastic;
        occurrence.frequencyFactor = frequencyFactor;
        occurrence.monthlyPercentages = state_.monthModification;
        occurrence.preserveTotals = preserveTotalsCheck;
        r.occurrence = occurrence;
    }
    if (amountCheck) {
        r.amount =
            scenario::AmountTreatment{amountOption == Addition ? scenario::AmountKind::Addition
                                                               : scenario::AmountKind::Factor,
                                      amountFactor, amountAddition};
    }
    if (varianceCheck) {
        r.varianceFactor = varianceFactor;
    }
    if (trendCheck) {
        const auto kind = trendOption == Exponential ? scenario::TrendKind::Exponential
                          : trendOption == Logistic  ? scenario::TrendKind::Logistic
                                                     : scenario::TrendKind::Linear;
        const double size = trendOption == Exponential ? expTrend
                            : trendOption == Logistic  ? logisticTrend
                                                       : linearTrend;
        r.trend = scenario::TrendTreatment{kind, size};
    }
    return r;
}

RunOutcome GenerateScreen::generate(Dialogs& dialogs, core::Progress& progress) {
    lastResult.reset();
    if (runChecks(dialogs) != RunOutcome::Done) {
        return RunOutcome::Refused;
    }
    auto refusal = outputOverInput(state_, {outFilePath}, {inFilePath});
    if (!refusal) {
        if (const auto firstLine = scenario::firstLineOf(inFilePath)) {
            refusal = scenario::sizeRefusal(*firstLine, ensembleSize);
        }
    }
    if (refusal) {
        dialogs.error(*refusal);
        return RunOutcome::Refused;
    }
    const auto cleanup = [this] { state_.stopRequested.clear(); };
    return guardedRun(
        dialogs,
        [&] {
            core::UniformRandom random;
            if (fixedSeed) {
                random.seed(*fixedSeed);
            } else {
                random.seedFromClock();
            }
            DialogNotifier notifier(dialogs);
            lastResult = scenario::runScenario(request(), random, progress, notifier);
            dialogs.message(ResultsTitle, scenario::resultsText(*lastResult), Icon::Information);
            cleanup();
            return RunOutcome::Done;
        },
        cleanup);
}

} // namespace varo::screens
