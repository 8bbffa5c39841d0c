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

double valueOf(const TextField& field) {
    return core::leadingNumber(field.text);
}

// A field that must hold a number from low to high (the limits pass): its value once it
// passes, nothing when it was refused.
std::optional<double> rangedValue(TextField& field, Dialogs& dialogs, double low, double high,
                                  const std::string& notNumber, const std::string& outside) {
    if (!field.check(dialogs, rangeCheck(low, high, notNumber, outside))) {
        return std::nullopt;
    }
    return valueOf(field);
}

// The fields from -100 to 100, whose two messages differ only by the field's name.
std::optional<double> hundredValue(TextField& field, Dialogs& dialogs, const std::string& name) {
    return rangedValue(field, dialogs, -100.0, 100.0,
                       name + " must be a value between -100 and 100.",
                       name + " must be between -100 and 100.");
}

bool store(double& into, std::optional<double> value) {
    if (value) {
        into = *value;
    }
    return value.has_value();
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
    inFile.choose(path);
}

void GenerateScreen::chooseOutFile(const std::string& path) {
    outFile.choose(path);
}

void GenerateScreen::pickInFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickOpenFile(filter::Any, state_.defaultDir)) {
        chooseInFile(*path);
    }
}

void GenerateScreen::pickOutFile(Dialogs& dialogs) {
    if (const auto path = dialogs.pickSaveFile(filter::Out, state_.defaultDir, "OUT")) {
        chooseOutFile(*path);
    }
}

void GenerateScreen::reset() {
    state_.stopRequested.clear();
    inFile.clear();
    outFile.clear();
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
    const auto factor = hundredValue(amountFactorText, dialogs, "Factor");
    if (factor) {
        amountFactor = static_cast<float>((*factor + 100.0) / 100.0);
    }
    return factor.has_value();
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
    return store(amountAddition, hundredValue(amountAdditionText, dialogs, "Addition"));
}

bool GenerateScreen::checkLinearTrend(Dialogs& dialogs) {
    return store(linearTrend, hundredValue(linearTrendText, dialogs, "Linear trend"));
}

bool GenerateScreen::checkLogisticTrend(Dialogs& dialogs) {
    return store(logisticTrend, hundredValue(logisticTrendText, dialogs, "Logistic trend"));
}

bool GenerateScreen::checkThreshold(Dialogs& dialogs) {
    return store(threshold,
                 rangedValue(thresholdText, dialogs, -100.0, 100.0, "Threshold must be a value.",
                             "Threshold must be between -100 and 100."));
}

bool GenerateScreen::checkFrequencyChange(Dialogs& dialogs) {
    const std::string message = "Frequency change value must be between -99 and 100.";
    if (!rangedValue(frequencyChangeText, dialogs, -99.0, 100.0, message, message)) {
        return false;
    }
    frequencyFactor = changeFactor(frequencyChangeText);
    return true;
}

bool GenerateScreen::checkVarianceFactor(Dialogs& dialogs) {
    const std::string message = "Factor must be a value.";
    if (!rangedValue(varianceFactorText, dialogs, -100000.0, 100000.0, message, message)) {
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
    const auto size = rangedValue(eSize, dialogs, 1.0, scenario::MaxMembers,
                                  "Ensemble Size must be a value between 1 and 100.",
                                  "Ensemble Size must be between 1 and 100.");
    if (!size) {
        return false;
    }
    ensembleSize = static_cast<int>(core::roundHalfEven(*size));
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
        refuseIf([this] { return inFile.path.size() < 5; }, "You must select an input file first."),
        refuseIf([this] { return outFile.path.empty(); },
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
    r.inPath = inFile.path;
    r.outPath = outFile.path;
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
    auto refusal = outputOverInput(state_, {outFile.path}, {inFile.path});
    if (!refusal) {
        if (const auto firstLine = scenario::firstLineOf(inFile.path)) {
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
