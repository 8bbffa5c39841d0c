// varo calibrate PREDICTAND PREDICTOR... -o MODEL.PAR [options]: the calibration screen's
// run. The model type, process, fit period, lag term and Chow test come from the options;
// the transformation, optimisation, stepwise and criterion settings from the settings file
// or --set. The report and the fitted coefficients go to stdout, as JSON with --json; the
// parameter file written is named on stderr. --plot FILE draws the residual plot that
// --graph chooses (the scatter when --graph is not given).
#include "cli/commands.hpp"
#include "cli/plot_option.hpp"

#include "calibration/calibration_report.hpp"
#include "screens/calibrate_screen.hpp"

#include <map>
#include <optional>

namespace varo::cli {

namespace {

struct CalibrateOptions {
    std::string predictand;
    std::vector<std::string> predictors;
    std::string parFile;
    std::string model = "monthly";
    std::string process = "unconditional";
    std::optional<std::string> fitStart;
    std::optional<std::string> fitEnd;
    bool autoregression = false;
    bool chow = false;
    std::optional<std::string> folds;
    std::optional<std::string> graph;
    std::optional<std::string> histogramBins;
    PlotOptions plot;
    bool yes = false;
};

using Screen = screens::CalibrateScreen;

Json jsonReport(const Screen& screen, const CalibrateOptions& options,
                const std::vector<std::string>& warnings) {
    const calibration::CalibrationResults& results = *screen.results;
    const std::vector<core::ResultsTable>& statistics = screen.report->tables;
    Json document;
    document["parameterFile"] = screen.parFileText;
    document["predictand"] = results.parameters.predictandName;
    document["predictors"] = results.parameters.predictorNames;
    document["model"] = options.model;
    document["process"] = options.process;
    document["autoregression"] = results.parameters.autoregression;
    document["fitStart"] = screen.fsDate.text;
    document["fitEnd"] = screen.feDate.text;
    document["months"] = tableJson(statistics.at(0));
    if (statistics.size() > 1) {
        document["amounts"] = tableJson(statistics[1]);
    }
    document["coefficients"] = tablesJson(screen.coefficients);
    if (results.stepwise) {
        const calibration::StepwiseChoice& choice = *results.stepwise;
        document["stepwise"] = {{"criterion", choice.aic ? "AIC" : "BIC"},
                                {"candidates", choice.candidates},
                                {"chosen", choice.chosen},
                                {"criterionValue", choice.criterion},
                                {"subsetsTried", choice.subsetsTried}};
    }
    document["warnings"] = warnings;
    return document;
}

void printReport(CliContext& context, const std::string& text) {
    size_t start = 0;
    while (start < text.size()) {
        const size_t end = text.find('\n', start);
        context.printLine(text.substr(start, end - start));
        start = end + 1;
    }
}

// The fitted coefficients and the stepwise choice, after the report (not with --quiet).
void printCoefficients(CliContext& context, const Screen& screen) {
    if (context.options.quiet) {
        return;
    }
    for (const core::ResultsTable& table : screen.coefficients) {
        context.printLine("");
        context.printTable(table);
    }
    if (!screen.stepwiseLines.empty()) {
        context.printLine("");
    }
    for (const std::string& line : screen.stepwiseLines) {
        context.printLine(line);
    }
}

// The plot choice: --graph, or the scatter when only --plot is given. A plot needs a file
// to be drawn into and a file needs a plot, each refused without the other.
std::optional<int> graphChoice(CliContext& context, const CalibrateOptions& options) {
    static const std::map<std::string, int> graphs{{"none", Screen::NoGraph},
                                                   {"scatter", Screen::ScatterPlot},
                                                   {"histogram", Screen::Histogram}};
    const std::string graph =
        options.graph.value_or(options.plot.path.empty() ? "none" : "scatter");
    if (graph != "none" && options.plot.path.empty()) {
        context.dialogs().error("--graph " + graph +
                                " draws a chart: name its picture with --plot FILE.png or "
                                "--plot FILE.svg.");
        return std::nullopt;
    }
    if (graph == "none" && !options.plot.path.empty()) {
        context.dialogs().error("--plot: --graph none draws no chart; choose --graph scatter "
                                "or --graph histogram.");
        return std::nullopt;
    }
    return graphs.at(graph);
}

int runCalibrate(CliContext& context, CalibrateOptions& options) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    const auto graph = graphChoice(context, options);
    if (!graph) {
        return ExitRefused;
    }
    std::vector<std::string> inputs{options.predictand};
    inputs.insert(inputs.end(), options.predictors.begin(), options.predictors.end());
    if (const int refused = checkPlotOptions(context, options.plot, inputs)) {
        return refused;
    }
    context.options.yes = context.options.yes || options.yes;
    Screen screen(context.state);
    screen.predictand.choose(options.predictand);
    screen.predictors.choose(options.predictors);
    screen.chooseParFile(options.parFile);
    static const std::map<std::string, int> models{
        {"monthly", Screen::Monthly}, {"seasonal", Screen::Seasonal}, {"annual", Screen::Annual}};
    screen.modelType = models.at(options.model);
    screen.parmOpt = options.process == "conditional" ? Screen::Conditional : Screen::Unconditional;
    screen.autoRegressionCheck = options.autoregression;
    screen.includeChow = options.chow;
    if (options.folds) {
        screen.xValidationCheck = true;
        screen.noOfFoldsText.text = *options.folds;
    }
    screen.graphType = *graph;
    if (options.histogramBins) {
        screen.histogramCatsText.text = *options.histogramBins;
    }
    if (options.fitStart) {
        screen.fsDate.text = *options.fitStart;
    }
    if (options.fitEnd) {
        screen.feDate.text = *options.fitEnd;
    }
    const auto outcome = screen.calibrate(context.dialogs(), context.progress());
    context.progress().finish();
    if (!screen.silentStopReason.empty()) {
        context.err << "Calibration stopped: " << screen.silentStopReason << '\n';
    }
    if (outcome == screens::RunOutcome::Done) {
        context.reportWritten("Parameter file", screen.parFileText);
        if (context.options.json) {
            context.printJson(jsonReport(screen, options, context.dialogs().warnings()));
        } else {
            printReport(context, screen.reportText());
            printCoefficients(context, screen);
        }
        if (screen.residualPlot) {
            return writePlot(context, options.plot, *screen.residualPlot,
                             screen.graphType == Screen::Histogram ? "Residual histogram"
                                                                   : "Residual scatter");
        }
    }
    return exitCodeFor(outcome);
}

} // namespace

void addCalibrateCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto options = std::make_shared<CalibrateOptions>();
    CLI::App* calibrate = app.add_subcommand(
        "calibrate", "Calibration: fit the model by month, season or year and write the "
                     "parameter file");
    calibrate->add_option("PREDICTAND", options->predictand, "Predictand data file")
        ->required()
        ->type_name(kind::File);
    calibrate->add_option("PREDICTOR", options->predictors, "Predictor data files, in model order")
        ->required()
        ->type_name(kind::File);
    addOutputOption(calibrate, options->parFile, "Parameter file to write (.PAR or .par)",
                    {"--out"});
    oneOf(calibrate->add_option("--model", options->model, "monthly (default), seasonal or annual"),
          {"monthly", "seasonal", "annual"});
    oneOf(calibrate->add_option("--process", options->process,
                                "unconditional (default) or conditional"),
          {"conditional", "unconditional"});
    calibrate
        ->add_option("--start", options->fitStart,
                     "First day of the fit (default: the settings' start date)")
        ->type_name(kind::Date);
    calibrate
        ->add_option("--end", options->fitEnd,
                     "Last day of the fit (default: the settings' end date)")
        ->type_name(kind::Date);
    addHiddenAlias(calibrate, "--fit-start", options->fitStart);
    addHiddenAlias(calibrate, "--fit-end", options->fitEnd);
    calibrate->add_flag("--autoregression", options->autoregression,
                        "Include the lag term (the previous day's predictand)");
    calibrate->add_flag("--chow", options->chow, "Calculate the Chow statistic");
    calibrate
        ->add_option("--cross-validation", options->folds,
                     "Cross-validate each group with this many folds (2 to 10)")
        ->type_name(kind::Integer);
    oneOf(calibrate->add_option("--graph", options->graph,
                                "Residual plot drawn by --plot: scatter (the default with "
                                "--plot), histogram or none"),
          {"none", "scatter", "histogram"});
    calibrate
        ->add_option("--histogram-bins", options->histogramBins,
                     "Bars of the residual histogram, 5 to 100 (default 20)")
        ->type_name(kind::Integer);
    addPlotOptions(calibrate, options->plot);
    calibrate->add_flag("--yes", options->yes,
                        "Answer Yes to the question before a stepwise search");
    calibrate->callback([&, options] {
        requireOutput(options->parFile);
        result.exitCode = runCalibrate(context, *options);
    });
}

} // namespace varo::cli
