// varo screen correlation|variance|scatter PREDICTAND PREDICTOR...: the predictor screening
// of the screening screen, printing its report or the scatter points (or JSON with --json),
// with -o FILE saving the report as text, as the screen's Save key does, and for the
// scatter analysis with --plot FILE its chart as a picture.
#include "cli/commands.hpp"
#include "cli/plot_option.hpp"

#include "core/number_format.hpp"
#include "screens/chart_sources.hpp"
#include "screens/screen_vars_screen.hpp"

#include <algorithm>
#include <cctype>
#include <optional>

namespace varo::cli {

namespace {

struct ScreenOptions {
    std::string analysis;
    std::string predictand;
    std::vector<std::string> predictors;
    std::optional<std::string> fitStart;
    std::optional<std::string> fitEnd;
    std::string period = "annual";
    std::string process = "unconditional";
    bool autoregression = false;
    std::optional<std::string> sigLevel;
    std::string output;
    PlotOptions plot;
};

// The period list's entries by their lower-case names.
int periodEntryOf(const core::ProgramState& state, const std::string& name) {
    const auto entries = screens::periodEntries(state);
    for (size_t i = 0; i < entries.size(); ++i) {
        std::string lower = entries[i];
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (lower == name) {
            return static_cast<int>(i);
        }
    }
    return 0;
}

Json commonJson(const ScreenOptions& options, const screens::ScreenVarsScreen& screen) {
    Json document;
    document["analysis"] = options.analysis;
    document["predictand"] = screen.predictand.text;
    document["predictors"] = screen.fileList;
    document["fitStart"] = screen.fsDate.text;
    document["fitEnd"] = screen.feDate.text;
    document["process"] = options.process;
    return document;
}

Json correlationJson(const ScreenOptions& options, const screens::ScreenVarsScreen& screen) {
    const auto& data = *screen.data;
    Json document = commonJson(options, screen);
    document["period"] = options.period;
    document["missingValues"] = data.missingValues;
    document["missingRows"] = data.missingRows;
    document["thresholdRows"] = data.thresholdRows;
    document["n"] = screen.correlation->n;
    return document;
}

Json varianceJson(const ScreenOptions& options, const screens::ScreenVarsScreen& screen) {
    Json document = commonJson(options, screen);
    document["sigLevel"] = screen.sigLevelText.text;
    document["totalMissing"] = screen.variance->reportedMissing();
    return document;
}

// With -o, the lines as the screen's Save key writes a report.
int saveLines(CliContext& context, const ScreenOptions& options,
              const std::vector<std::string>& lines) {
    if (options.output.empty()) {
        return ExitDone;
    }
    if (!screens::saveReportText(lines, options.output, context.dialogs())) {
        return ExitFailed;
    }
    context.reportWritten("Report", options.output);
    return ExitDone;
}

Json scatterJson(const ScreenOptions& options, const screens::ScreenVarsScreen& screen) {
    const auto& data = *screen.scatterPoints;
    Json document = commonJson(options, screen);
    document["period"] = options.period;
    document["title"] = data.title;
    document["xTitle"] = data.xTitle;
    document["yTitle"] = data.yTitle;
    document["missingCount"] = data.missingCount;
    auto points = Json::array();
    for (const auto& point : data.points) {
        points.push_back({point.x, point.y});
    }
    document["points"] = points;
    return document;
}

// The chart's points: its title, the axis titles, then one "x y" line a point.
std::vector<std::string> scatterLines(const screening::ScatterData& data) {
    std::vector<std::string> lines{data.title, data.xTitle + " " + data.yTitle};
    for (const auto& point : data.points) {
        lines.push_back(core::generalText(point.x) + " " + core::generalText(point.y));
    }
    return lines;
}

int runScatter(CliContext& context, const ScreenOptions& options,
               screens::ScreenVarsScreen& screen) {
    const auto outcome = screen.scatter(context.dialogs(), context.progress());
    if (outcome != screens::RunOutcome::Done) {
        return exitCodeFor(outcome);
    }
    const auto lines = scatterLines(*screen.scatterPoints);
    if (context.options.json) {
        context.printJson(scatterJson(options, screen));
    }
    for (const std::string& line : lines) {
        context.printLine(line);
    }
    if (const int failed = saveLines(context, options, lines)) {
        return failed;
    }
    return writePlot(context, options.plot,
                     screens::scatterAnalysisChart(*screen.scatterPoints, context.state));
}

// Only the scatter analysis draws a chart; its picture must not replace an input.
int checkPlot(CliContext& context, const ScreenOptions& options) {
    if (!options.plot.path.empty() && options.analysis != "scatter") {
        context.dialogs().error("--plot: only the scatter analysis draws a chart; " +
                                options.analysis + " makes a report.");
        return ExitRefused;
    }
    std::vector<std::string> inputs{options.predictand};
    inputs.insert(inputs.end(), options.predictors.begin(), options.predictors.end());
    return checkPlotOptions(context, options.plot, inputs);
}

int runScreen(CliContext& context, const ScreenOptions& options) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    if (const int refused = checkPlot(context, options)) {
        return refused;
    }
    screens::ScreenVarsScreen screen(context.state);
    auto& dialogs = context.dialogs();
    screen.choosePredictand(options.predictand);
    screen.choosePredictors(options.predictors, dialogs);
    if (options.fitStart) {
        screen.fsDate.text = *options.fitStart;
    }
    if (options.fitEnd) {
        screen.feDate.text = *options.fitEnd;
    }
    if (options.sigLevel) {
        screen.sigLevelText.text = *options.sigLevel;
    }
    screen.datesCombo = periodEntryOf(context.state, options.period);
    screen.setProcess(options.process == "conditional" ? screens::ScreenVarsScreen::Conditional
                                                       : screens::ScreenVarsScreen::Unconditional,
                      dialogs);
    screen.setAutoregression(options.autoregression, dialogs);
    if (options.analysis == "scatter") {
        return runScatter(context, options, screen);
    }
    const bool correlation = options.analysis == "correlation";
    const auto outcome = correlation ? screen.correlate(dialogs, context.progress())
                                     : screen.explainVariance(dialogs, context.progress());
    if (outcome != screens::RunOutcome::Done) {
        return exitCodeFor(outcome);
    }
    if (context.options.json) {
        Json document =
            correlation ? correlationJson(options, screen) : varianceJson(options, screen);
        addTables(document, screen.tables);
        document["report"] = screen.report->lines;
        context.printJson(document);
    } else {
        for (const std::string& line : screen.report->lines) {
            context.printLine(line);
        }
    }
    return saveLines(context, options, screen.report->lines);
}

std::vector<std::string> periodNames() {
    return {"annual",   "winter",    "spring",  "summer",   "autumn",  "january",
            "february", "march",     "april",   "may",      "june",    "july",
            "august",   "september", "october", "november", "december"};
}

} // namespace

void addScreenCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto options = std::make_shared<ScreenOptions>();
    CLI::App* command = app.add_subcommand(
        "screen",
        "Screen predictors: correlation matrix, explained variance by month, or scatter points");
    oneOf(command->add_option("ANALYSIS", options->analysis, "correlation, variance or scatter")
              ->required(),
          {"correlation", "variance", "scatter"});
    command->add_option("PREDICTAND", options->predictand, "Predictand file")
        ->required()
        ->type_name(kind::File);
    command
        ->add_option("PREDICTOR", options->predictors,
                     "Predictor files, in order (scatter: one, or none with --autoregression)")
        ->type_name(kind::File);
    command
        ->add_option("--start", options->fitStart,
                     "First day of the analysis (default: the settings' start date)")
        ->type_name(kind::Date);
    command
        ->add_option("--end", options->fitEnd,
                     "Last day of the analysis (default: the settings' end date)")
        ->type_name(kind::Date);
    addHiddenAlias(command, "--fit-start", options->fitStart);
    addHiddenAlias(command, "--fit-end", options->fitEnd);
    oneOf(command->add_option("--period", options->period,
                              "Period of the year (correlation and scatter)"),
          periodNames());
    oneOf(command->add_option("--process", options->process,
                              "unconditional (default) or conditional"),
          {"conditional", "unconditional"});
    command->add_flag("--autoregression", options->autoregression,
                      "Add the predictand's previous day as a predictor");
    command
        ->add_option("--sig-level", options->sigLevel,
                     "Significance level of explained variance (default 0.05)")
        ->type_name(kind::Number);
    command
        ->add_option("-o,--output", options->output,
                     "Also save the report (or the scatter points) as text to this file")
        ->type_name(kind::File);
    addPlotOptions(command, options->plot);
    command->callback([&, options] { result.exitCode = runScreen(context, *options); });
}

} // namespace varo::cli
