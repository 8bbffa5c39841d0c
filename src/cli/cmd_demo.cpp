// varo demo [DIR]: writes the sample data set into DIR and runs the work on it, step by
// step, as a person would from the command line: quality check, screening, calibration of
// a precipitation and a temperature model, generation from observed and from a climate
// model's predictors, summary statistics with deltas, scenarios of the observed series;
// then prints a short summary.
#include "cli/commands.hpp"

#include "cli/cli.hpp"
#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/series_file.hpp"
#include "sampledata/sample_data.hpp"
#include "series/parameter_file.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace varo::cli {

namespace {

struct DemoOptions {
    std::string folder = "demo-output";
    bool shortRun = false; // six observed years and five members, for tests
};

// A step failed; its messages have been printed.
struct StepFailed {
    int exitCode;
};

// Runs varo commands against the demo's own settings file, echoing each command line as
// a person would type it, and keeps the files they write.
class DemoRunner {
public:
    DemoRunner(CliContext& context, std::string folder)
        : context_(context), folder_(std::move(folder)) {}

    std::string path(const std::string& name) const { return folder_ + "/" + name; }

    // Runs one command; its report goes to `reportFile` (when named) and, for --json
    // commands, comes back parsed.
    Json run(const std::vector<std::string>& args, bool json, const std::string& reportFile = {},
             const std::string& reportHolds = {}) {
        std::vector<std::string> full{"--settings", path("VARO.INI"), "--quiet"};
        if (json) {
            full.emplace_back("--json");
        }
        full.insert(full.end(), args.begin(), args.end());
        echo(args);
        std::ostringstream out;
        std::ostringstream err;
        const int exitCode = runCli(full, out, err);
        if (exitCode != ExitDone) {
            context_.err << err.str();
            throw StepFailed{exitCode};
        }
        if (!reportFile.empty()) {
            std::ofstream(path(reportFile)) << out.str();
            wrote(reportFile, reportHolds);
        }
        return json ? Json::parse(out.str()) : Json();
    }

    // A file the demo wrote and what it holds, for the closing list.
    void wrote(const std::string& name, const std::string& holds) {
        written_.emplace_back(name, holds);
    }
    const std::vector<std::pair<std::string, std::string>>& written() const { return written_; }

private:
    void echo(const std::vector<std::string>& args) const {
        std::string line = "$ varo";
        for (const std::string& arg : args) {
            line += ' ' + arg;
        }
        context_.printLine(line);
    }

    CliContext& context_;
    std::string folder_;
    std::vector<std::pair<std::string, std::string>> written_;
};

std::string fixed(double value, int decimals) {
    return core::formatPattern(value, decimals == 1 ? "0.0" : decimals == 2 ? "0.00" : "0.000");
}

std::string signedFixed(double value, int decimals) {
    return (value >= 0.0 ? "+" : "") + fixed(value, decimals);
}

std::string padded(std::string text, size_t width) {
    if (text.size() < width) {
        text.insert(0, width - text.size(), ' ');
    }
    return text;
}

// A value of a results table of JSON output, by its row's label and its column's name.
double tableValue(const Json& table, const std::string& row, const std::string& column) {
    const Json& columns = table["columns"];
    const auto at = std::find(columns.begin(), columns.end(), column);
    for (const Json& entry : table["rows"]) {
        if (entry["label"] == row && at != columns.end()) {
            return entry["values"][static_cast<size_t>(at - columns.begin())].get<double>();
        }
    }
    throw core::Failure(core::failure::TypeMismatch,
                        "No value '" + column + "' of '" + row + "' in a results table.");
}

// The calibration report's mean of the months that have the statistic.
double meanOf(const Json& months, const std::string& statistic) {
    return tableValue(months, "Mean", statistic);
}

void printSkill(CliContext& context, const Json& precipitation, const Json& temperature,
                const series::ParameterFile& temperatureModel) {
    context.printLine("Skill of the models (calibration " +
                      precipitation["fitStart"].get<std::string>() + " to " +
                      precipitation["fitEnd"].get<std::string>() + ", mean of the months):");
    context.printLine("  precipitation occurrence: R squared " +
                      fixed(meanOf(precipitation["months"], "RSquared"), 3) +
                      ", proportion correct " +
                      fixed(meanOf(precipitation["months"], "Prop Correct"), 3));
    context.printLine("  precipitation amounts (fourth root): R squared " +
                      fixed(meanOf(precipitation["amounts"], "RSquared"), 3));
    context.printLine(
        "  maximum temperature: R squared " + fixed(meanOf(temperature["months"], "RSquared"), 3) +
        ", standard error " + fixed(meanOf(temperature["months"], "SE"), 2) +
        " deg C (the sample data's built-in noise: " + fixed(sampledata::TmaxNoise, 2) + ")");
    double temp = 0.0;
    double p500 = 0.0;
    double r850 = 0.0;
    for (const auto& month : temperatureModel.months) {
        temp += month.coefficients[1] / 12.0;
        p500 += month.coefficients[2] / 12.0;
        r850 += month.coefficients[3] / 12.0;
    }
    context.printLine("  temperature coefficients, fitted (known): temp " + fixed(temp, 2) + " (" +
                      fixed(sampledata::TmaxOnTemp, 2) + "), p500 " + fixed(p500, 2) + " (" +
                      fixed(sampledata::TmaxOnP500, 2) + "), r850 " + fixed(r850, 2) + " (" +
                      fixed(sampledata::TmaxOnR850, 2) + ")");
}

void printComparison(CliContext& context, const Json& observed, const Json& modelled,
                     const Json& observedTmax, const Json& modelledTmax,
                     const std::string& members) {
    context.printLine("Observed against modelled, " + observed["start"].get<std::string>() +
                      " to " + observed["end"].get<std::string>() + " (" + members +
                      " members, ensemble mean):");
    context.printLine("  season   wet days %     wet-day mean mm    max temperature C");
    context.printLine("           obs    mod       obs     mod        obs     mod");
    for (const std::string season : {"Winter", "Spring", "Summer", "Autumn", "Annual"}) {
        const auto value = [&](const Json& results, const char* statistic) {
            return tableValue(results["table"], season, statistic);
        };
        std::string line = "  " + season;
        line.append(9 - season.size(), ' ');
        line += padded(fixed(100.0 * value(observed, "Wet-days%"), 1), 5) +
                padded(fixed(100.0 * value(modelled, "Wet-days%"), 1), 7) +
                padded(fixed(value(observed, "Mean"), 2), 10) +
                padded(fixed(value(modelled, "Mean"), 2), 8) +
                padded(fixed(value(observedTmax, "Mean"), 2), 11) +
                padded(fixed(value(modelledTmax, "Mean"), 2), 8);
        context.printLine(line);
    }
}

void printProjection(CliContext& context, const Json& precipitation, const Json& temperature) {
    context.printLine(
        "Projected change, climate model against its own 1961-1990 (annual, ensemble mean):");
    context.printLine("  period       wet-day mean   wet days    max temperature");
    const Json& precipPeriods = precipitation["delta"]["periods"];
    const Json& tmaxPeriods = temperature["delta"]["periods"];
    for (size_t i = 0; i < precipPeriods.size(); ++i) {
        const Json& p = precipPeriods[i]["table"];
        const Json& t = tmaxPeriods[i]["table"];
        const std::string span = precipPeriods[i]["start"].get<std::string>().substr(6) + "-" +
                                 precipPeriods[i]["end"].get<std::string>().substr(6);
        context.printLine(
            "  " + span + "    " + padded(signedFixed(tableValue(p, "Annual", "Mean"), 1), 6) +
            " %     " + padded(signedFixed(tableValue(p, "Annual", "Wet-days%"), 1), 6) + " %    " +
            padded(signedFixed(tableValue(t, "Annual", "Mean"), 2), 6) + " deg C");
    }
}

void printScenarios(CliContext& context, const Json& observedRain, const Json& scenarioRain,
                    const Json& observedTmax, const Json& scenarioTmax,
                    const std::string& warming) {
    context.printLine("Scenarios against the observed series (annual, " +
                      observedRain["start"].get<std::string>() + " to " +
                      observedRain["end"].get<std::string>() + "):");
    const auto annual = [](const Json& results, const std::string& statistic) {
        return tableValue(results["table"], "Annual", statistic);
    };
    context.printLine("  precipitation, 10 % fewer wet days, total kept: wet days " +
                      fixed(100.0 * annual(observedRain, "Wet-days%"), 1) + " % -> " +
                      fixed(100.0 * annual(scenarioRain, "Wet-days%"), 1) + " %, mean " +
                      fixed(annual(observedRain, "Mean"), 2) + " -> " +
                      fixed(annual(scenarioRain, "Mean"), 2) + " mm");
    context.printLine("  maximum temperature, linear warming of " + warming +
                      " deg C a year: mean " + fixed(annual(observedTmax, "Mean"), 2) + " -> " +
                      fixed(annual(scenarioTmax, "Mean"), 2) + " deg C");
}

int runChain(CliContext& context, const DemoOptions& options) {
    DemoRunner demo(context, options.folder);
    sampledata::SampleOptions sample;
    sample.missingCode = context.state.globalMissingCode;
    if (options.shortRun) {
        sample.lastYear = 1966;
    }
    const sampledata::SampleFiles files = sampledata::writeSampleData(options.folder, sample);
    const std::string years =
        std::to_string(sample.firstYear) + "-" + std::to_string(sample.lastYear);
    const std::string futureYears =
        std::to_string(sample.futureFirstYear) + "-" + std::to_string(sample.futureLastYear);
    demo.wrote("precip.dat", "the station's observed daily precipitation, mm, " + years);
    demo.wrote("tmax.dat", "the station's observed daily maximum temperature, deg C, " + years);
    demo.wrote("predictors/", "eight observed predictors, one file a variable, " + years);
    demo.wrote("future/", "the same eight from a climate model, 360-day years, " + futureYears);
    const std::string members = options.shortRun ? "5" : "20";
    const std::string fitStart = "01/01/" + std::to_string(sample.firstYear);
    const std::string fitEnd = "31/12/" + std::to_string(sample.lastYear);
    const std::string observedDays = std::to_string(files.days);
    const std::string modelDays = std::to_string(files.futureDays);
    const std::string rain = demo.path("precip.dat");
    const std::string tmax = demo.path("tmax.dat");
    const auto observed = [&](const char* code) {
        return files.predictorFolder + "/" + sampledata::predictorFileName(code);
    };
    context.printLine("Sample data written to " + options.folder + "/ (see docs/sample-data.md).");
    context.printLine("The commands below use the demo's own settings file: each runs with");
    context.printLine("--settings " + demo.path("VARO.INI") + " before its command.");
    context.printLine("");

    // The record runs to 2099, so that the climate model's predictors can be run to the end.
    demo.run({"settings", "set", "RandomSeed", "False"}, false);
    demo.run({"settings", "set", "GlobalEDate", "31/12/2099"}, false);
    demo.wrote("VARO.INI", "the demo's settings: fixed random numbers, record end 31/12/2099");
    const Json rainQuality = demo.run({"qc", rain}, true);
    demo.run({"qc", tmax}, true);

    std::vector<std::string> screening{"screen", "correlation", rain};
    for (const char* code : sampledata::PredictorCodes) {
        screening.push_back(observed(code));
    }
    for (const char* option : {"--process", "conditional", "--start"}) {
        screening.emplace_back(option);
    }
    // Saved by the command itself, as the screening screen saves its report.
    screening.insert(screening.end(),
                     {fitStart, "--end", fitEnd, "-o", demo.path("screening.txt")});
    demo.run(screening, false);
    demo.wrote("screening.txt", "the screening report: correlations of the eight predictors "
                                "with wet-day occurrence");

    const Json rainModel = demo.run(
        {"--set", "ModelTransformation=2", "calibrate", rain, observed("p__z"), observed("r850"),
         observed("mslp"), observed("shum"), "-o", demo.path("precip.PAR"), "--process",
         "conditional", "--start", fitStart, "--end", fitEnd},
        true, "precip-calibration.json", "the precipitation model's calibration report, as JSON");
    demo.wrote("precip.PAR", "the precipitation model: wet-day occurrence and fourth-root "
                             "amounts, by month");
    const Json tmaxModel = demo.run(
        {"calibrate", tmax, observed("temp"), observed("p500"), observed("r850"), "-o",
         demo.path("tmax.PAR"), "--start", fitStart, "--end", fitEnd},
        true, "tmax-calibration.json", "the temperature model's calibration report, as JSON");
    demo.wrote("tmax.PAR", "the maximum temperature model on temp, p500 and r850, by month");

    for (const char* model : {"precip", "tmax"}) {
        const std::string par = demo.path(std::string(model) + ".PAR");
        demo.run({"generate", par, "--predictors", files.predictorFolder, "-o",
                  demo.path(std::string(model) + "-observed.OUT"), "--start", fitStart, "--days",
                  observedDays, "--ensemble", members},
                 false);
        demo.run({"--set", "YearIndicator=360", "generate", par, "--predictors", files.futureFolder,
                  "-o", demo.path(std::string(model) + "-model.OUT"), "--start", "01/01/1961",
                  "--days", modelDays, "--ensemble", members},
                 false);
        const std::string variable =
            std::string(model) == "precip" ? "precipitation" : "maximum temperature";
        const std::string fromObserved =
            members + " daily series of " + variable + " from the observed predictors, " + years;
        const std::string fromModel =
            members + " daily series of " + variable + " from the climate model, " + futureYears;
        for (const auto& [run, holds] : {std::pair{std::string(model) + "-observed", fromObserved},
                                         std::pair{std::string(model) + "-model", fromModel}}) {
            demo.wrote(run + ".OUT", holds);
            demo.wrote(run + ".SIM", "how " + run + ".OUT was made: members, first day, calendar");
        }
    }

    const std::vector<std::string> period{"--start", fitStart, "--end", fitEnd};
    const auto stats = [&](const std::string& input, const std::string& results,
                           const std::string& chosen, std::vector<std::string> more,
                           const std::string& holds) {
        std::vector<std::string> args{
            "stats", demo.path(input), "-o", demo.path(results), "--stats", chosen};
        args.insert(args.end(), more.begin(), more.end());
        const Json found = demo.run(args, true);
        demo.wrote(results, holds);
        return found;
    };
    std::vector<std::string> ensemble{"--ensemble-mean"};
    ensemble.insert(ensemble.end(), period.begin(), period.end());
    const Json rainObserved =
        stats("precip.dat", "precip-observed-stats.txt", "Mean,Wet-days%", period,
              "observed precipitation: wet-day mean and wet-day fraction by month, season, year");
    const Json rainModelled =
        stats("precip-observed.OUT", "precip-modelled-stats.txt", "Mean,Wet-days%", ensemble,
              "the same of the modelled precipitation: ensemble mean and standard deviation");
    const Json tmaxObserved = stats("tmax.dat", "tmax-observed-stats.txt", "Mean", period,
                                    "observed maximum temperature: mean by month, season and year");
    const Json tmaxModelled =
        stats("tmax-observed.OUT", "tmax-modelled-stats.txt", "Mean", ensemble,
              "the same of the modelled temperature: ensemble mean and standard deviation");
    const Json rainChange =
        stats("precip-model.OUT", "precip-change.txt", "Mean,Wet-days%",
              {"--ensemble-mean", "--delta", "percentage"},
              "the climate model's precipitation, % change from 1961-1990 to three later "
              "periods, t tests");
    const Json tmaxChange = stats(
        "tmax-model.OUT", "tmax-change.txt", "Mean", {"--ensemble-mean", "--delta", "absolute"},
        "the climate model's temperature, change in deg C from 1961-1990 to three later "
        "periods, t tests");

    // Scenarios of the observed series: 10 % fewer wet days with each total kept, and a
    // warming of 2 degrees over the record.
    const std::string warming = fixed(2.0 / (sample.lastYear - sample.firstYear + 1), 3);
    demo.run({"scenario", rain, "-o", demo.path("precip-scenario.OUT"), "--conditional",
              "--occurrence", "-10", "--preserve-totals"},
             false);
    demo.wrote("precip-scenario.OUT",
               "the observed precipitation with 10 % fewer wet days, the total kept");
    demo.run({"scenario", tmax, "-o", demo.path("tmax-scenario.OUT"), "--trend", "linear",
              "--trend-size", warming},
             false);
    demo.wrote("tmax-scenario.OUT", "the observed maximum temperature warming by " + warming +
                                        " deg C a year, 2 deg C over the record");
    std::vector<std::string> observedPeriod{"--observed"};
    observedPeriod.insert(observedPeriod.end(), period.begin(), period.end());
    const Json rainScenario =
        stats("precip-scenario.OUT", "precip-scenario-stats.txt", "Mean,Wet-days%", observedPeriod,
              "the precipitation scenario: wet-day mean and wet-day fraction");
    const Json tmaxScenario = stats("tmax-scenario.OUT", "tmax-scenario-stats.txt", "Mean",
                                    observedPeriod, "the temperature scenario: mean");

    context.printLine("");
    context.printLine("Summary");
    context.printLine(
        "Observed precipitation: " + std::to_string(rainQuality["values"].get<long>()) + " days, " +
        std::to_string(rainQuality["missing"].get<long>()) + " missing, mean " +
        fixed(rainQuality["mean"], 2) + " mm a day.");
    printSkill(context, rainModel, tmaxModel, series::readParameterFile(demo.path("tmax.PAR")));
    printComparison(context, rainObserved, rainModelled, tmaxObserved, tmaxModelled, members);
    printProjection(context, rainChange, tmaxChange);
    printScenarios(context, rainObserved, rainScenario, tmaxObserved, tmaxScenario, warming);
    context.printLine("");
    context.printLine("Files written in " + options.folder + "/:");
    size_t width = 0;
    for (const auto& file : demo.written()) {
        width = std::max(width, file.first.size());
    }
    for (const auto& [name, holds] : demo.written()) {
        context.printLine("  " + name + std::string(width - name.size() + 2, ' ') + holds);
    }
    return ExitDone;
}

int runDemo(CliContext& context, const DemoOptions& options) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    try {
        return runChain(context, options);
    } catch (const StepFailed& failed) {
        return failed.exitCode;
    } catch (const core::Failure& failure) {
        context.dialogs().error(core::reportFailureText(failure.number(), failure.description()));
        return ExitFailed;
    } catch (const nlohmann::json::exception& error) {
        context.dialogs().error(std::string("A step's report could not be read: ") + error.what());
        return ExitFailed;
    }
}

} // namespace

void addDemoCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto options = std::make_shared<DemoOptions>();
    CLI::App* demo =
        app.add_subcommand("demo", "Write sample data into DIR and run the whole chain on it");
    demo->add_option("DIR", options->folder, "Folder for the sample data and results")
        ->capture_default_str()
        ->type_name(kind::Folder);
    demo->add_flag("--short", options->shortRun,
                   "Six observed years and five members (a quick check)");
    demo->callback([&, options] { result.exitCode = runDemo(context, *options); });
}

} // namespace varo::cli
