#include "cli_test_support.hpp"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

using namespace varo::testing;

namespace {

// Six years of daily data from 01/01/1961 (see tests/data/calibration/driver/make_data.py).
const std::string Data = std::string(VARO_TEST_DATA) + "/calibration/driver";

// calibrate rain.dat mslp.dat shum.dat -o PAR EXTRA over the record of the data; `global`
// options go before the command.
std::vector<std::string> calibrateArgs(const std::string& par, std::vector<std::string> extra,
                                       std::vector<std::string> global = {}) {
    global.insert(global.end(), {"--set", "GlobalSDate=01/01/1961", "--set",
                                 "GlobalEDate=31/12/1966", "calibrate", Data + "/rain.dat",
                                 Data + "/mslp.dat", Data + "/shum.dat", "-o", par});
    global.insert(global.end(), extra.begin(), extra.end());
    return global;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(CliCalibrate, WritesTheParameterFileAndPrintsTheReport) {
    TempDir dir;
    const auto par = dir.path("MODEL.PAR");
    const auto run =
        runVaro(dir, calibrateArgs(par, {"--model", "annual", "--start", "01/01/1962"}));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    std::string golden = readFile(Data + "/annual_unconditional.PAR");
    golden.replace(golden.rfind("DATA/"), 4, Data);
    EXPECT_EQ(readFile(par), golden);
    EXPECT_EQ(run.out.rfind("Predictand: rain.dat\nPredictors: mslp.dat\n            shum.dat\n"
                            "\nUnconditional Statistics\nMonth         RSquared      SE            "
                            "D-Watson\nJanuary        0.3145        2.9525",
                            0),
              0u)
        << run.out;
    EXPECT_TRUE(contains(run.out, "\nMean           0.3145"));
    EXPECT_FALSE(contains(run.out, "Chow"));
}

// The report's tables by month, each with its mean, and the coefficients of both stages by
// season, the amounts' with the inverse normal transformation's mean ratio.
TEST(CliCalibrate, JsonCarriesTheTablesOfBothStages) {
    TempDir dir;
    const auto json =
        runVaro(dir, calibrateArgs(dir.path("COND.par"),
                                   {"--process", "conditional", "--chow", "--model", "seasonal"},
                                   {"--json", "--set", "ModelTransformation=4"}));
    ASSERT_EQ(json.exitCode, 0) << json.err;
    const auto report = nlohmann::json::parse(json.out);
    EXPECT_EQ(report["process"], "conditional");
    EXPECT_EQ(report["predictors"], (nlohmann::json{"mslp.dat", "shum.dat"}));
    const auto& months = report["months"];
    EXPECT_EQ(months["title"], "Unconditional Statistics");
    EXPECT_EQ(months["columns"], (nlohmann::json{"RSquared", "SE", "Prop Correct", "Chow"}));
    ASSERT_EQ(months["rows"].size(), 13u);
    EXPECT_EQ(months["rows"][12]["label"], "Mean");
    EXPECT_EQ(months["rows"][0]["values"][0], months["rows"][11]["values"][0]); // one season
    EXPECT_FALSE(months.contains("columnGroups"));
    EXPECT_EQ(report["amounts"]["columns"], (nlohmann::json{"RSquared", "SE", "Chow"}));
    EXPECT_GT(report["amounts"]["rows"][5]["values"][0].get<double>(), 0.0);
    const auto& coefficients = report["coefficients"];
    ASSERT_EQ(coefficients.size(), 2u);
    EXPECT_EQ(coefficients[0]["title"], "Occurrence Model Coefficients");
    EXPECT_EQ(coefficients[0]["rowHeading"], "Season");
    EXPECT_EQ(coefficients[1]["title"], "Amount Model Coefficients");
    EXPECT_EQ(coefficients[1]["columns"],
              (nlohmann::json{"Constant", "mslp.dat", "shum.dat", "Mean Ratio"}));
    ASSERT_EQ(coefficients[1]["rows"].size(), 4u);
    EXPECT_EQ(coefficients[1]["rows"][2]["label"], "Summer");
    EXPECT_FALSE(report.contains("stepwise"));
    EXPECT_TRUE(report["warnings"].empty());
}

// The run goes on to the end and writes its file; the error it showed makes the exit 1. The
// metrics that could not be computed are null in the cross-validation columns.
TEST(CliCalibrate, CrossValidationThatCannotBeComputedRunsToTheEndButExitsOne) {
    TempDir dir;
    const auto par = dir.path("COND.par");
    const auto folds = runVaro(dir, calibrateArgs(par,
                                                  {"--process", "conditional", "--cross-validation",
                                                   "10", "--end", "31/12/1961"},
                                                  {"--json"}));
    ASSERT_EQ(folds.exitCode, 1) << folds.err;
    EXPECT_TRUE(varo::testing::fileExists(par));
    EXPECT_EQ(folds.err, "Error Message: Sorry - insufficient data for all cross validation "
                         "metrics to be calculated.\nParameter file written: " +
                             par + "\n");
    const auto validated = nlohmann::json::parse(folds.out);
    const auto& months = validated["months"];
    EXPECT_EQ(months["columnGroups"],
              (nlohmann::json::parse(R"([{"title":"Cross Validation Results","firstColumn":3}])")));
    EXPECT_EQ(months["columns"][3], "Prop Correct");
    EXPECT_TRUE(months["rows"][0]["values"][3].is_null());
    EXPECT_EQ(validated["amounts"]["columns"][4], "Spearman");
    EXPECT_TRUE(validated["amounts"]["rows"][0]["values"][4].is_null());
}

TEST(CliCalibrate, RefusalsExitTwoFailuresOneAndNeitherLeavesAFile) {
    TempDir dir;
    const auto par = dir.path("BAD.PAR");
    const auto refused = runVaro(dir, calibrateArgs(par, {"--start", "31/12/1960"}));
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.err, "Error Message: Fit start date must be later than record start date.\n");

    auto args = calibrateArgs(par, {});
    std::replace(args.begin(), args.end(), Data + "/shum.dat", dir.path("none.dat"));
    const auto failed = runVaro(dir, args);
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_TRUE(contains(failed.err, "File not found.\nCannot open '" + dir.path("none.dat") +
                                         "': no such file.\n"))
        << failed.err;
    EXPECT_FALSE(fileExists(par));
}

TEST(CliCalibrate, StepwiseAsksFirstAndNamesTheChosenPredictors) {
    TempDir dir;
    const auto par = dir.path("STEP.PAR");
    auto args = calibrateArgs(par, {"--model", "annual"}, {"--set", "ApplyStepwise=True"});
    const auto refused = runVaro(dir, args);
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_TRUE(contains(refused.err, "Stepwise regression is selected."));
    EXPECT_FALSE(fileExists(par));

    args.push_back("--yes");
    const auto accepted = runVaro(dir, args);
    ASSERT_EQ(accepted.exitCode, 0) << accepted.err;
    EXPECT_TRUE(contains(readFile(par), "rain.dat\r\nmslp.dat\r\nshum.dat\r\n"));
    EXPECT_TRUE(contains(accepted.out, "\nStepwise selection (AIC) tried 3 subsets of mslp.dat, "
                                       "shum.dat\nChosen: mslp.dat, shum.dat (criterion "))
        << accepted.out;
}

// tests/data/calibration/stepwise_lag/make_reference.py: the chosen subsets and their
// coefficients by numpy; the parameter file holds them to three decimals.
TEST(CliCalibrate, StepwiseWithTheLagTermWritesWhatTheSearchKept) {
    const std::string lagData = std::string(VARO_TEST_DATA) + "/calibration/stepwise_lag/";
    struct Case {
        std::vector<std::string> predictors;
        std::string names;      // lines 12 on of the parameter file
        std::string lagLine;    // line 11
        std::string januaryRow; // the start of the line after the names
    };
    const Case cases[] = {
        {{"a.dat", "dup.dat", "b.dat"},
         "y.dat\r\na.dat\r\nb.dat\r\n",
         "True",
         "0.990         0.796         -0.307        0.554         "},
        {{"a.dat", "ylag.dat"},
         "y.dat\r\na.dat\r\nylag.dat\r\n",
         "False",
         "0.935         0.763         0.573         "},
    };
    TempDir dir;
    for (const Case& c : cases) {
        const auto par = dir.path("LAG.PAR");
        std::vector<std::string> args{
            "--set", "GlobalSDate=01/01/1961", "--set",     "GlobalEDate=30/04/1961",
            "--set", "ApplyStepwise=True",     "calibrate", lagData + "y.dat"};
        for (const std::string& name : c.predictors) {
            args.push_back(lagData + name);
        }
        args.insert(args.end(), {"-o", par, "--model", "annual", "--autoregression", "--yes"});
        const auto run = runVaro(dir, args);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const std::string text = readFile(par);
        EXPECT_TRUE(contains(text, "\r\n" + c.lagLine + "\r\n" + c.names + c.januaryRow)) << text;
        // The weather generator reads the file as written.
        const auto generated = runVaro(
            dir, {"--set", "GlobalSDate=01/01/1961", "generate", par, "--predictors", lagData, "-o",
                  dir.path("LAG.OUT"), "--start", "01/01/1961", "--days", "30", "--ensemble", "2"});
        EXPECT_EQ(generated.exitCode, 0) << generated.err;
    }
}

TEST(CliCalibrate, NamesTheFileItWroteAndPrintsTheCoefficientsAsItHoldsThem) {
    TempDir dir;
    const auto par = dir.path("MODEL.PAR");
    const auto run = runVaro(dir, calibrateArgs(par, {"--model", "seasonal"}));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.err, "Parameter file written: " + par + "\n");
    // Each season's row of the table is the constant and the two coefficients that the
    // parameter file holds for the season's first month.
    const std::string file = readFile(par);
    const size_t rows = file.find("\r\n", file.find("shum.dat\r\n")) + 2;
    const auto monthRow = [&](int month) {
        size_t at = rows;
        for (int m = 1; m < month; ++m) {
            at = file.find("\r\n", at) + 2;
        }
        std::istringstream values(file.substr(at, file.find("\r\n", at) - at));
        std::string constant;
        std::string first;
        std::string second;
        values >> constant >> first >> second;
        return constant + "  " + first + "  " + second;
    };
    EXPECT_TRUE(contains(run.out, "\nModel Coefficients\nSeason  Constant  mslp.dat  shum.dat\n"))
        << run.out;
    for (const auto& [season, month] : std::vector<std::pair<std::string, int>>{
             {"Winter", 1}, {"Spring", 3}, {"Summer", 6}, {"Autumn", 9}}) {
        const std::string row = monthRow(month);
        EXPECT_TRUE(contains(run.out, season)) << season;
        const size_t line = run.out.find("\n" + season + " ");
        ASSERT_NE(line, std::string::npos) << season;
        std::istringstream printed(run.out.substr(line + 1, run.out.find('\n', line + 1) - line));
        std::string label;
        std::string a;
        std::string b;
        std::string c;
        printed >> label >> a >> b >> c;
        EXPECT_EQ(a + "  " + b + "  " + c, row) << season;
    }
}

// --quiet keeps the report but leaves out the coefficients and names no file.
TEST(CliCalibrate, QuietPrintsNoCoefficients) {
    TempDir dir;
    const auto par = dir.path("MODEL.PAR");
    const auto quiet = runVaro(dir, calibrateArgs(par, {"--model", "seasonal"}, {"--quiet"}));
    ASSERT_EQ(quiet.exitCode, 0) << quiet.err;
    EXPECT_EQ(quiet.err, "");
    EXPECT_TRUE(contains(quiet.out, "Unconditional Statistics"));
    EXPECT_FALSE(contains(quiet.out, "Model Coefficients"));
}

// The parameter file keeps the predictand's path absolute, so that a model calibrated with
// a relative path is generated from another folder.
TEST(CliCalibrate, RelativePredictandPathSurvivesACd) {
    TempDir dir;
    const std::filesystem::path home = dir.folder();
    std::filesystem::create_directories(home / "data");
    for (const char* name : {"rain.dat", "mslp.dat", "shum.dat"}) {
        std::filesystem::copy_file(Data + "/" + name, home / "data" / name);
    }
    const std::vector<std::string> settings{"--settings", (home / "VARO.INI").string(),
                                            "--set",      "GlobalSDate=01/01/1961",
                                            "--set",      "GlobalEDate=31/12/1966",
                                            "--set",      "ModelTransformation=4",
                                            "--set",      "RandomSeed=False"};
    {
        WorkingFolder here(home);
        auto args = settings;
        args.insert(args.end(), {"calibrate", "data/rain.dat", "data/mslp.dat", "data/shum.dat",
                                 "-o", "model.PAR", "--process", "conditional"});
        const auto calibrated = runVaroAsTyped(args);
        ASSERT_EQ(calibrated.exitCode, 0) << calibrated.err;
    }
    const std::string par = readFile((home / "model.PAR").string());
    EXPECT_TRUE(contains(par, "\r\n" + (home / "data/rain.dat").string() + "\r\n")) << par;

    WorkingFolder elsewhere(home / "runs");
    auto args = settings;
    args.insert(args.end(), {"generate", "../model.PAR", "--predictors", "../data", "-o", "run.OUT",
                             "--start", "01/01/1961", "--days", "30", "--ensemble", "2"});
    const auto generated = runVaroAsTyped(args);
    EXPECT_EQ(generated.exitCode, 0) << generated.err;
    EXPECT_TRUE(fileExists((home / "runs/run.OUT").string()));
}

// --plot draws the residual plot of --graph, the scatter when --graph is not given, and
// names what it drew; --histogram-bins sets the bars.
TEST(CliCalibrate, PlotDrawsTheResidualPlotThatGraphChooses) {
    TempDir dir;
    RecordingExporter exporter;
    const std::string picture = dir.path("residuals.svg");
    struct Case {
        std::vector<std::string> options;
        std::string title;
        size_t bars; // 0: the scatter
        std::string written;
    };
    const std::vector<Case> cases = {
        {{}, "Residual Plot", 0, "Residual scatter written: "},
        {{"--graph", "histogram", "--histogram-bins", "7"},
         "VARO Residual Histogram",
         7,
         "Residual histogram written: "},
    };
    for (const Case& test : cases) {
        std::vector<std::string> options = {"--model", "annual", "--plot", picture};
        options.insert(options.end(), test.options.begin(), test.options.end());
        const auto run = runWith(dir, calibrateArgs(dir.path("MODEL.PAR"), options), &exporter);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        ASSERT_FALSE(exporter.charts.empty());
        const auto& chart = exporter.charts.back();
        EXPECT_EQ(chart.title, test.title);
        EXPECT_EQ(chart.categories.size(), test.bars);
        EXPECT_TRUE(contains(run.err, test.written + picture + "\n")) << run.err;
    }
}

// A plot choice without a picture, a picture without a plot and a bar count out of bounds
// are refused before anything is read or written.
TEST(CliCalibrate, GraphAndPlotRefusalsWriteNothing) {
    TempDir dir;
    RecordingExporter exporter;
    const std::string par = dir.path("MODEL.PAR");
    const std::string picture = dir.path("residuals.png");
    struct Case {
        std::vector<std::string> options;
        std::string message;
    };
    const std::vector<Case> cases = {
        {{"--graph", "histogram"},
         "--graph histogram draws a chart: name its picture with --plot FILE.png or --plot "
         "FILE.svg."},
        {{"--graph", "none", "--plot", picture},
         "--plot: --graph none draws no chart; choose --graph scatter or --graph histogram."},
        {{"--graph", "histogram", "--histogram-bins", "101", "--plot", picture},
         "Histogram catgeories cannot be less than 5 or greater than 100."},
        {{"--plot", Data + "/rain.dat"},
         "Cannot save the chart as '" + Data +
             "/rain.dat': the file name must end in .png or .svg."},
    };
    for (const Case& test : cases) {
        const auto run = runWith(dir, calibrateArgs(par, test.options), &exporter);
        EXPECT_EQ(run.exitCode, 2) << test.message;
        EXPECT_EQ(run.err, "Error Message: " + test.message + "\n");
        EXPECT_FALSE(fileExists(par));
        EXPECT_FALSE(fileExists(picture));
    }
    EXPECT_TRUE(exporter.charts.empty());
}
