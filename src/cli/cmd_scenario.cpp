// varo scenario IN -o OUT.OUT [treatments]: the scenario generator's run, as on its
// screen. Each option fills its field and ticks its treatment; a field without an option
// keeps the screen's default, and every field goes through the screen's checks in their
// order, so a value is refused with the screen's message.
#include "cli/commands.hpp"

#include "screens/generate_screen.hpp"

#include <optional>

namespace varo::cli {

namespace {

struct ScenarioOptions {
    std::string input;
    std::string output;
    std::optional<std::string> start;
    std::optional<std::string> ensemble;
    std::optional<std::string> threshold;
    bool conditional = false;
    std::optional<std::string> occurrence;
    bool forced = false;
    bool preserveTotals = false;
    std::optional<std::string> amountFactor;
    std::optional<std::string> amountAddition;
    std::optional<std::string> variance;
    std::optional<std::string> trend;
    std::optional<std::string> trendSize;
};

constexpr const char* Help = R"(Scenario generator: perturb a daily series into a what-if scenario.

The input holds one value a day, or one line a day of ensemble members in 14-character
zones (an OUT file); the output is an OUT file (no SIM file is written). Treatments run in
this order: occurrence, amount, variance, trend. Percentages are changes: --occurrence -10
is 10 % fewer wet days, --amount-factor 20 makes wet amounts 20 % larger, --variance 50
makes the variance 50 % larger. --forced makes each month's wet days the wet-day
percentage profile of the settings, given for one run with --set ZoMText1=P ... --set
ZoMText12=P (January to December). A linear trend is a change per year; exponential and
logistic trends reach their size on the last day. With --conditional the treatments work
on the values above the threshold only (wet days), and a trend is a percentage of them.
Defaults are those of the screen: start the settings' GlobalSDate, one member, the
settings' threshold; treatment values 0, the exponential trend 1.)";

void setField(screens::TextField& field, const std::optional<std::string>& value) {
    if (value) {
        field.text = *value;
    }
}

int trendOption(const std::string& word) {
    using Screen = screens::GenerateScreen;
    return word == "exponential" ? Screen::Exponential
           : word == "logistic"  ? Screen::Logistic
                                 : Screen::Linear;
}

void fillScreen(screens::GenerateScreen& screen, const ScenarioOptions& options) {
    using Screen = screens::GenerateScreen;
    screen.chooseInFile(options.input);
    screen.chooseOutFile(options.output);
    setField(screen.startDateText, options.start);
    setField(screen.eSize, options.ensemble);
    setField(screen.thresholdText, options.threshold);
    screen.conditionalCheck = options.conditional;
    screen.occurenceCheck = options.occurrence.has_value();
    setField(screen.frequencyChangeText, options.occurrence);
    screen.occurenceOption = options.forced ? Screen::Forced : Screen::Stochastic;
    screen.preserveTotalsCheck = options.preserveTotals;
    if (options.amountFactor || options.amountAddition) {
        screen.amountCheck = true;
        screen.amountOption = options.amountFactor ? Screen::Factor : Screen::Addition;
    }
    setField(screen.amountFactorText, options.amountFactor);
    setField(screen.amountAdditionText, options.amountAddition);
    screen.varianceCheck = options.variance.has_value();
    setField(screen.varianceFactorText, options.variance);
    if (options.trend) {
        screen.trendCheck = true;
        screen.trendOption = trendOption(*options.trend);
        screens::TextField* sizes[] = {&screen.linearTrendText, &screen.expTrendText,
                                       &screen.logisticTrendText};
        setField(*sizes[screen.trendOption], options.trendSize);
    }
}

int runScenario(CliContext& context, const ScenarioOptions& options) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    screens::GenerateScreen screen(context.state);
    fillScreen(screen, options);
    const auto outcome = screen.generate(context.dialogs(), context.progress());
    if (outcome == screens::RunOutcome::Done) {
        context.reportWritten("OUT file", screen.outFile.path);
        if (context.options.json) {
            const auto& result = *screen.lastResult;
            nlohmann::ordered_json document;
            document["days"] = result.dayCount;
            document["lamda"] =
                result.lamda ? nlohmann::ordered_json(*result.lamda) : nlohmann::ordered_json();
            document["warnings"] = context.dialogs().warnings();
            context.printJson(document);
        }
    }
    return exitCodeFor(outcome);
}

} // namespace

void addScenarioCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto options = std::make_shared<ScenarioOptions>();
    CLI::App* command = app.add_subcommand(
        "scenario", "Scenario generator: occurrence, amount, variance and trend treatments");
    command->footer(Help);
    command->add_option("IN", options->input, "Daily series file, or an OUT file of members")
        ->required()
        ->type_name(kind::File);
    addOutputOption(command, options->output, "OUT file to write (replaced)");
    command
        ->add_option("--start", options->start,
                     "Date of the first value (default: the settings' start date)")
        ->type_name(kind::Date);
    command->add_option("--ensemble", options->ensemble, "Members, 1 to 100 (default 1)")
        ->type_name(kind::Integer);
    command
        ->add_option("--threshold", options->threshold,
                     "Event threshold, -100 to 100 (default: the settings' threshold)")
        ->type_name(kind::Number);
    command->add_flag("--conditional", options->conditional,
                      "Treat only the values above the threshold (wet days)");
    CLI::Option* occurrence =
        command
            ->add_option("--occurrence", options->occurrence,
                         "Occurrence: change of the wet days in %, -99 to 100 (needs "
                         "--conditional)")
            ->type_name("PCT");
    command
        ->add_flag("--forced", options->forced,
                   "Occurrence: each month's wet days to the settings' ZoMText1..12 %")
        ->needs(occurrence);
    command
        ->add_flag("--preserve-totals", options->preserveTotals,
                   "Occurrence: keep each member's total of wet values")
        ->needs(occurrence);
    CLI::Option* factor = command
                              ->add_option("--amount-factor", options->amountFactor,
                                           "Amount: change of the values in %, -100 to 100")
                              ->type_name("PCT");
    command->add_option("--amount-add", options->amountAddition, "Amount: value added, -100 to 100")
        ->type_name(kind::Number)
        ->excludes(factor);
    command->add_option("--variance", options->variance, "Variance: change in %")->type_name("PCT");
    CLI::Option* trend = oneOf(
        command->add_option("--trend", options->trend, "Trend: its shape (needs --trend-size)"),
        {"linear", "exponential", "logistic"});
    CLI::Option* trendSize =
        command
            ->add_option("--trend-size", options->trendSize,
                         "Trend: change a year (linear, -100 to 100), or reached by the last "
                         "day (exponential, not 0; logistic, -100 to 100)")
            ->type_name(kind::Number);
    trend->needs(trendSize);
    trendSize->needs(trend);
    command->callback([&, options] {
        requireOutput(options->output);
        result.exitCode = runScenario(context, *options);
    });
}

} // namespace varo::cli
