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

nlohmann::ordered_json number(double value, double missing) {
    return value == missing ? nlohmann::ordered_json() : nlohmann::ordered_json(value);
}

nlohmann::ordered_json monthRows(const core::ProgramState& state,
                                 const calibration::CalibrationResults& results, size_t first,
                                 const char* third, bool chow) {
    const double missing = state.globalMissingCode;
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (size_t m = 0; m < 12; ++m) {
        const calibration::MonthStatistics& row = results.statistics[first + m];
        nlohmann::ordered_json month;
        month["month"] = state.periodNames[m + 1];
        month["rSquared"] = number(row.rSquared, missing);
        month["standardError"] = number(row.standardError, missing);
        if (third != nullptr) {
            month[third] = number(row.third, missing);
        }
        if (chow) {
            month["chow"] = number(row.chow, missing);
            const double critical = calibration::chowCriticalValue(row.rows, row.predictors);
            month["chowCritical"] = critical;
            month["chowAboveCritical"] = row.chow != missing && row.chow > critical;
        }
        rows.push_back(std::move(month));
    }
    return rows;
}

// The cross-validation metrics of a stage by name and row of the table.
nlohmann::ordered_json
crossValidationRows(const core::ProgramState& state, const calibration::CrossValidationTable& table,
                    const std::vector<std::pair<const char*, int>>& metrics) {
    const double missing = state.globalMissingCode;
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (size_t m = 0; m < 12; ++m) {
        nlohmann::ordered_json month;
        month["month"] = state.periodNames[m + 1];
        for (const auto& [name, row] : metrics) {
            month[name] = number(table[static_cast<size_t>(row)][m], missing);
        }
        rows.push_back(std::move(month));
    }
    return rows;
}

nlohmann::ordered_json jsonReport(const core::ProgramState& state, const Screen& screen,
                                  const CalibrateOptions& options,
                                  const std::vector<std::string>& warnings) {
    const calibration::CalibrationResults& results = *screen.results;
    const bool conditional = screen.parmOpt == Screen::Conditional;
    nlohmann::ordered_json document;
    document["parameterFile"] = screen.parFileText;
    document["predictand"] = results.parameters.predictandName;
    document["predictors"] = results.parameters.predictorNames;
    document["model"] = options.model;
    document["process"] = options.process;
    document["autoregression"] = results.parameters.autoregression;
    document["fitStart"] = screen.fsDate.text;
    document["fitEnd"] = screen.feDate.text;
    document["months"] = monthRows(state, results, 0, conditional ? "propCorrect" : "durbinWatson",
                                   screen.includeChow);
    if (conditional) {
        document["amounts"] = monthRows(state, results, 12, nullptr, screen.includeChow);
    }
    if (results.crossValidation) {
        const auto& table = *results.crossValidation;
        document["crossValidation"] =
            conditional
                ? crossValidationRows(state, table,
                                      {{"propCorrect", 0}, {"standardError", 4}, {"rSquared", 5}})
                : crossValidationRows(state, table,
                                      {{"rSquared", 3},
                                       {"standardError", 0},
                                       {"durbinWatson", 4},
                                       {"spearman", 1},
                                       {"bias", 2}});
        if (conditional) {
            document["amountCrossValidation"] = crossValidationRows(
                state, table, {{"rSquared", 3}, {"standardError", 2}, {"spearman", 1}});
        }
    }
    nlohmann::ordered_json coefficients = nlohmann::ordered_json::array();
    for (const core::ResultsTable& table : screen.coefficients) {
        coefficients.push_back(tableJson(table));
    }
    document["coefficients"] = coefficients;
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
            context.printJson(
                jsonReport(context.state, screen, options, context.dialogs().warnings()));
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
