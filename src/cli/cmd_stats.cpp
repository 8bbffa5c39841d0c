// varo stats IN -o RESULTS.TXT: the summary statistics of an observed series or a modelled
// OUT file, through the statistics selection screen (statistics and parameters) and the
// summary statistics screen (source, member, period, run), printing the tables it wrote.
#include "cli/commands.hpp"

#include "core/numeric_text.hpp"
#include "core/quoted_text.hpp"
#include "screens/analyse_screen.hpp"
#include "screens/file_choice.hpp"
#include "screens/stats_select_screen.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <functional>
#include <optional>

namespace varo::cli {

namespace {

struct StatsOptions {
    std::string input;
    std::string output;
    bool observed = false;
    bool modelled = false;
    std::optional<std::string> member;
    bool ensembleMean = false;
    std::optional<std::string> start;
    std::optional<std::string> end;
    std::optional<std::string> stats;
    std::optional<std::string> percentile;
    std::optional<std::string> potThreshold;
    std::optional<std::string> pbtThreshold;
    std::optional<std::string> nDay;
    std::optional<std::string> popPercentile;
    std::optional<std::string> delta;
    std::array<std::optional<std::string>, 4> periods; // base, A, B, C
};

constexpr const char* Help = R"(Summary statistics by month, season and year into a results file.

Defaults are those of the screens: the statistics flagged in the statistic table (Mean,
Maximum, Minimum, Variance and Sum at first), percentile 95, peaks-over and peaks-below
thresholds 0, N-day total 5, POP percentile 90, ensemble member 1, and the analysis
period of the settings (GlobalSDate to GlobalEDate). A file ending in .OUT or .out is
modelled (its SIM file gives the members, year length and start date), any other file
observed (one number a day from GlobalSDate, the calendar of the settings). --delta or
any period option makes a delta run: the base period (default 01/01/1961:31/12/1990)
against Periods A (2011-2040), B (2041-2070) and C (2071-2099), percentage differences
unless --delta absolute. Dates are DD/MM/YYYY; a period is START:END, two dates, as in
--base 01/01/1961:31/12/1990. The tables written to the results file are printed as well
(not with --quiet); --json gives them as data instead.)";

std::string lowerCase(std::string text) {
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

// Ticks exactly the named statistics, through the screen's eight-tick limit.
bool selectStatistics(CliContext& context, screens::StatsSelectScreen& screen,
                      const std::string& list) {
    for (int i = 1; i <= screens::StatsSelectScreen::BoxCount; ++i) {
        screen.check1[i] = false;
    }
    size_t begin = 0;
    while (begin <= list.size()) {
        size_t comma = list.find(',', begin);
        if (comma == std::string::npos) {
            comma = list.size();
        }
        const std::string name = list.substr(begin, comma - begin);
        begin = comma + 1;
        if (name.empty()) {
            continue;
        }
        int index = 0;
        for (int i = 1; i <= screens::StatsSelectScreen::BoxCount && index == 0; ++i) {
            if (lowerCase(screen.statisticName(i)) == lowerCase(name)) {
                index = i;
            }
        }
        if (index == 0) {
            std::string known;
            for (int i = 1; i <= screens::StatsSelectScreen::BoxCount; ++i) {
                known += (i > 1 ? ", " : "") + screen.statisticName(i);
            }
            context.dialogs().error("Unknown statistic '" + name +
                                    "' in --stats. Statistics: " + known + ".");
            return false;
        }
        if (!screen.click(context.dialogs(), index, true)) {
            return false;
        }
    }
    return true;
}

bool setField(screens::TextField& field, const std::optional<std::string>& value,
              const std::function<bool()>& check) {
    if (!value) {
        return true;
    }
    field.text = *value;
    return check();
}

bool setPeriod(CliContext& context, screens::StatsSelectScreen& screen,
               screens::StatsSelectScreen::Period period, const std::optional<std::string>& text,
               const char* option) {
    if (!text) {
        return true;
    }
    const size_t colon = text->find(':');
    if (colon == std::string::npos) {
        context.dialogs().error(std::string(option) +
                                " takes START:END (DD/MM/YYYY:DD/MM/YYYY), not " +
                                core::quotedInput(*text) + ".");
        return false;
    }
    screen.startText(period).text = text->substr(0, colon);
    screen.endText(period).text = text->substr(colon + 1);
    return screen.checkStart(context.dialogs(), period) &&
           screen.checkEnd(context.dialogs(), period);
}

// The statistics selection screen: choices from the options, written into the state.
bool applySelection(CliContext& context, const StatsOptions& options) {
    screens::StatsSelectScreen screen(context.state);
    auto& dialogs = context.dialogs();
    if (options.stats && !selectStatistics(context, screen, *options.stats)) {
        return false;
    }
    const bool fieldsOk = setField(screen.addPercentText, options.percentile,
                                   [&] { return screen.checkAddPercent(dialogs); }) &&
                          setField(screen.poThreshText, options.potThreshold,
                                   [&] { return screen.checkPoThresh(dialogs); }) &&
                          setField(screen.pbtThreshText, options.pbtThreshold,
                                   [&] { return screen.checkPbtThresh(dialogs); }) &&
                          setField(screen.nDayTotalText, options.nDay,
                                   [&] { return screen.checkNDayTotal(dialogs); }) &&
                          setField(screen.precPotText, options.popPercentile,
                                   [&] { return screen.checkPrecPot(dialogs); });
    if (!fieldsOk) {
        return false;
    }
    using Period = screens::StatsSelectScreen::Period;
    if (!setPeriod(context, screen, Period::Base, options.periods[0], "--base") ||
        !setPeriod(context, screen, Period::A, options.periods[1], "--period-a") ||
        !setPeriod(context, screen, Period::B, options.periods[2], "--period-b") ||
        !setPeriod(context, screen, Period::C, options.periods[3], "--period-c")) {
        return false;
    }
    if (options.delta) {
        screen.deltaOption = *options.delta == "absolute" ? 1 : 0;
    }
    screen.leave();
    return true;
}

Json jsonReport(const screens::AnalyseScreen& screen) {
    const auto& labels = screen.labels;
    const statistics::ResultsTables& tables = *screen.tables;
    Json document;
    document["file"] = labels.fileName;
    document["results"] = core::bareFileName(screen.saveFileText);
    document["start"] = labels.startDate;
    document["end"] = labels.endDate;
    document["members"] = labels.members;
    document["statistics"] = labels.columnNames;
    document["table"] = tableJson(tables.statistics);
    if (tables.deviations) {
        document["standardDeviations"] = tableJson(*tables.deviations);
    }
    if (tables.delta) {
        Json delta;
        delta["kind"] = labels.deltaKind == statistics::AbsoluteDelta ? "absolute" : "percentage";
        Json periods = Json::array();
        for (size_t p = 0; p < tables.delta->periods.size(); ++p) {
            periods.push_back({{"period", std::string("Period ") + static_cast<char>('A' + p)},
                               {"start", labels.periodStart[p]},
                               {"end", labels.periodEnd[p]},
                               {"table", tableJson(tables.delta->periods[p])}});
        }
        delta["periods"] = std::move(periods);
        delta["tTest"] = tableJson(tables.delta->tTest);
        delta["degreesOfFreedom"] = tableJson(tables.delta->degrees);
        document["delta"] = std::move(delta);
    }
    return document;
}

// The tables of the results file as aligned text after the run's message, a blank line
// before each.
void printTables(CliContext& context, const std::vector<core::NamedTable>& tables) {
    if (context.options.json || context.options.quiet) {
        return;
    }
    for (const auto& shown : tables) {
        context.out << '\n';
        context.printTable(shown.table);
    }
}

int runStats(CliContext& context, const StatsOptions& options) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    if (!applySelection(context, options)) {
        return ExitRefused;
    }
    screens::AnalyseScreen screen(context.state);
    screen.inputFileText = options.input;
    screen.saveFileText = options.output;
    const bool modelled =
        options.modelled || (!options.observed && screens::isOutFile(options.input));
    screen.sourceButton = modelled ? screens::AnalyseScreen::Source::Modelled
                                   : screens::AnalyseScreen::Source::Observed;
    screen.ensembleMeanCheck = options.ensembleMean;
    if (options.member) {
        screen.ensembleNumber.text = *options.member;
    }
    if (options.start) {
        screen.startDateText.text = *options.start;
    }
    if (options.end) {
        screen.endDateText.text = *options.end;
    }
    screen.deltaCheck = options.delta.has_value() ||
                        std::any_of(options.periods.begin(), options.periods.end(),
                                    [](const auto& period) { return period.has_value(); });
    const auto outcome = screen.run(context.dialogs(), context.progress());
    if (outcome == screens::RunOutcome::Done) {
        context.reportWritten("Results file", options.output);
    }
    if (outcome == screens::RunOutcome::Done && context.options.json) {
        context.printJson(jsonReport(screen));
    } else if (outcome == screens::RunOutcome::Done) {
        printTables(context, screen.resultTables());
    }
    return exitCodeFor(outcome);
}

} // namespace

void addStatsCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto options = std::make_shared<StatsOptions>();
    CLI::App* stats = app.add_subcommand("stats", "Summary statistics of a series or OUT file");
    stats->footer(Help);
    stats->add_option("IN", options->input, "Observed data file or modelled OUT file")
        ->required()
        ->type_name(kind::File);
    addOutputOption(stats, options->output, "Results file to write");
    auto* observed = stats->add_flag("--observed", options->observed,
                                     "Observed data: one number a day (default unless .OUT)");
    auto* modelled = stats->add_flag("--modelled", options->modelled,
                                     "Modelled OUT file with its SIM file (default for .OUT)");
    observed->excludes(modelled);
    auto* member = stats->add_option("--member", options->member, "Ensemble member (default 1)")
                       ->type_name(kind::Integer);
    auto* mean = stats->add_flag("--ensemble-mean", options->ensembleMean,
                                 "Mean and standard deviation over all members");
    member->excludes(mean);
    stats
        ->add_option("--start", options->start,
                     "First day of the analysis (default: the settings' start date)")
        ->type_name(kind::Date);
    stats
        ->add_option("--end", options->end,
                     "Last day of the analysis (default: the settings' end date)")
        ->type_name(kind::Date);
    stats
        ->add_option("--stats", options->stats,
                     "Statistics to compute, comma-separated, at most eight (e.g. "
                     "Mean,Max_NTot,Wet-spell)")
        ->type_name("NAME,...");
    stats->add_option("--percentile", options->percentile, "Percentile of 'Percentile' (95)")
        ->type_name(kind::Number);
    stats->add_option("--pot-threshold", options->potThreshold, "Threshold of POT (0)")
        ->type_name(kind::Number);
    stats->add_option("--pbt-threshold", options->pbtThreshold, "Threshold of PBT (0)")
        ->type_name(kind::Number);
    stats->add_option("--nday", options->nDay, "Days of Max_NTot, 2 to 100 (5)")
        ->type_name(kind::Integer);
    stats
        ->add_option("--pop-percentile", options->popPercentile,
                     "Percentile of the year's wet days that POP counts above (90)")
        ->type_name(kind::Number);
    oneOf(stats->add_option("--delta", options->delta, "Delta run: percentage or absolute"),
          {"percentage", "absolute"});
    stats->add_option("--base", options->periods[0], "Base period of a delta run")
        ->type_name(kind::Period);
    stats->add_option("--period-a", options->periods[1], "Period A of a delta run")
        ->type_name(kind::Period);
    stats->add_option("--period-b", options->periods[2], "Period B of a delta run")
        ->type_name(kind::Period);
    stats->add_option("--period-c", options->periods[3], "Period C of a delta run")
        ->type_name(kind::Period);
    stats->callback([&, options] {
        requireOutput(options->output);
        result.exitCode = runStats(context, *options);
    });
}

} // namespace varo::cli
