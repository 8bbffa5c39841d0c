#include "cli_test_support.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo::testing;

namespace {

// Six years of daily data from 01/01/1961 (see tests/data/calibration/driver/make_data.py).
const std::string Data = std::string(VARO_TEST_DATA) + "/calibration/driver";

std::vector<std::string> withRecord(std::vector<std::string> args) {
    args.insert(args.begin(),
                {"--set", "GlobalSDate=01/01/1961", "--set", "GlobalEDate=31/12/1966"});
    return args;
}

std::vector<std::string> calibrateArgs(const std::string& par, std::vector<std::string> extra) {
    std::vector<std::string> args{
        "calibrate", Data + "/rain.dat", Data + "/mslp.dat", Data + "/shum.dat", "-o", par};
    args.insert(args.end(), extra.begin(), extra.end());
    return withRecord(args);
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(CliCalibrate, WritesTheParameterFileAndPrintsTheReport) {
    TempDir dir;
    const auto par = dir.path("MODEL.PAR");
    const auto run =
        runVaro(dir, calibrateArgs(par, {"--model", "annual", "--fit-start", "01/01/1962"}));
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

TEST(CliCalibrate, ConditionalReportAndJson) {
    TempDir dir;
    const auto par = dir.path("COND.par");
    const auto text = runVaro(
        dir, calibrateArgs(par, {"--process", "conditional", "--chow", "--autoregression"}));
    ASSERT_EQ(text.exitCode, 0) << text.err;
    EXPECT_TRUE(contains(text.out, "Autoregression\n"));
    EXPECT_TRUE(
        contains(text.out, "Month         RSquared      SE            Prop Correct  Chow\n"));
    EXPECT_TRUE(contains(text.out, "\nConditional Statistics\nMonth         RSquared      SE      "
                                   "      Chow\n"));

    const auto json = runVaro(dir, [&] {
        auto args =
            calibrateArgs(par, {"--process", "conditional", "--chow", "--model", "seasonal"});
        args.insert(args.begin(), "--json");
        return args;
    }());
    ASSERT_EQ(json.exitCode, 0) << json.err;
    const auto report = nlohmann::json::parse(json.out);
    EXPECT_EQ(report["process"], "conditional");
    EXPECT_EQ(report["predictors"], (nlohmann::json{"mslp.dat", "shum.dat"}));
    ASSERT_EQ(report["months"].size(), 12u);
    EXPECT_TRUE(report["months"][0].contains("propCorrect"));
    EXPECT_EQ(report["months"][0]["rSquared"], report["months"][11]["rSquared"]); // one season
    EXPECT_EQ(report["months"][0]["chowCritical"], 3.0); // two predictors, 100 days and more
    ASSERT_EQ(report["amounts"].size(), 12u);
    EXPECT_GT(report["amounts"][5]["rSquared"].get<double>(), 0.0);
    EXPECT_TRUE(report["warnings"].empty());
    EXPECT_FALSE(report.contains("crossValidation"));
}

TEST(CliCalibrate, CrossValidationAddsColumnsAndItsMessagesDoNotStopTheRun) {
    TempDir dir;
    const auto par = dir.path("CV.PAR");
    const auto text = runVaro(dir, calibrateArgs(par, {"--cross-validation", "5"}));
    ASSERT_EQ(text.exitCode, 0) << text.err;
    EXPECT_TRUE(contains(text.out, "Unconditional Statistics" + std::string(32, ' ') +
                                       "Cross Validation Results\n"))
        << text.out;
    EXPECT_TRUE(contains(text.out, "D-Watson      RSquared      SE            D-Watson      "
                                   "Spearman      Bias\n"));

    auto args = calibrateArgs(
        par, {"--process", "conditional", "--cross-validation", "10", "--fit-end", "31/12/1961"});
    args.insert(args.begin(), "--json");
    const auto json = runVaro(dir, args);
    ASSERT_EQ(json.exitCode, 0) << json.err;
    EXPECT_EQ(json.err, "Error Message: Sorry - insufficient data for all cross validation "
                        "metrics to be calculated.\n");
    const auto report = nlohmann::json::parse(json.out);
    EXPECT_TRUE(report["crossValidation"][0]["propCorrect"].is_null());
    EXPECT_TRUE(report["amountCrossValidation"][0]["spearman"].is_null());

    const auto refused = runVaro(dir, calibrateArgs(par, {"--cross-validation", "11"}));
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.err,
              "Error Message: Number of folds cannot be less than 2 or greater than 10.\n");
}

TEST(CliCalibrate, TheWeatherGeneratorRunsTheModel) {
    TempDir dir;
    const auto par = dir.path("GEN.PAR");
    ASSERT_EQ(runVaro(dir, calibrateArgs(par, {"--process", "conditional"})).exitCode, 0);
    const auto generate =
        runVaro(dir, withRecord({"--set", "RandomSeed=False", "generate", par, "--predictors", Data,
                                 "-o", dir.path("RUN.OUT"), "--days", "30", "--ensemble", "2"}));
    EXPECT_EQ(generate.exitCode, 0) << generate.err;
    EXPECT_TRUE(fileExists(dir.path("RUN.SIM")));
}

TEST(CliCalibrate, BadInputGetsItsMessageAndNoFile) {
    TempDir dir;
    const auto par = dir.path("BAD.PAR");
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string message;
    };
    const std::vector<Case> cases{
        {calibrateArgs(dir.path("NOEXT"), {}), 2,
         "Error Message: PAR file name must end in .PAR or .par\n"},
        {calibrateArgs(par, {"--fit-start", "31/12/1960"}), 2,
         "Error Message: Fit start date must be later than record start date.\n"},
        {calibrateArgs(par, {"--fit-end", "01/01/1967"}), 2,
         "Error Message: Fit end date must be earlier than record end date.\n"},
        {calibrateArgs(par, {"--fit-start", "31/02/1962"}), 2,
         "Error Message: Start date is invalid - it must be in the format dd/mm/yyyy.\n"},
        {calibrateArgs(par, {"--fit-start", "01/01/1965", "--fit-end", "01/01/1964"}), 2,
         "Error Message: End date must be later than start date.\n"},
        {withRecord({"calibrate", Data + "/rain.dat", dir.path("none.dat"), "-o", par}), 1,
         "File not found.\nCannot open '" + dir.path("none.dat") + "': no such file.\n"},
        {withRecord({"--set", "GlobalEDate=31/12/1967", "calibrate", Data + "/rain.dat",
                     Data + "/mslp.dat", "-o", par}),
         1, "Input past end of file.\nPlease check global program settings.\n"},
        {withRecord({"--set", "ApplyStepwise=True", "calibrate", Data + "/rain.dat",
                     Data + "/mslp.dat", Data + "/mslp.dat", Data + "/mslp.dat", Data + "/mslp.dat",
                     Data + "/mslp.dat", Data + "/mslp.dat", Data + "/mslp.dat", Data + "/mslp.dat",
                     Data + "/mslp.dat", "-o", par, "--model", "annual"}),
         2, "Error Message: You cannot select more than 8 predictors for the stepwise approach.\n"},
    };
    for (const Case& c : cases) {
        const auto run = runVaro(dir, c.args);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err;
        EXPECT_TRUE(contains(run.err, c.message)) << run.err;
        EXPECT_FALSE(fileExists(par)) << run.err;
        EXPECT_FALSE(fileExists(dir.path("NOEXT")));
    }

    std::string words = readFile(Data + "/shum.dat");
    words.replace(words.find("\r\n", 300) + 2, 4, "wet!");
    const auto bad = dir.write("words.dat", words);
    const auto run = runVaro(dir, withRecord({"calibrate", Data + "/rain.dat", bad, "-o", par}));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(contains(run.err, "words.dat' is not a number.")) << run.err;
    EXPECT_FALSE(fileExists(par));

    std::vector<std::string> many{"--set", "OptimisationChoice=2", "calibrate", Data + "/rain.dat"};
    many.insert(many.end(), 21, Data + "/mslp.dat");
    many.insert(many.end(), {"-o", par, "--model", "annual"});
    const auto simplex = runVaro(dir, withRecord(many));
    EXPECT_EQ(simplex.exitCode, 1);
    EXPECT_TRUE(contains(simplex.err, "at most 20 predictors; this model has 21.")) << simplex.err;
    EXPECT_FALSE(fileExists(par));
}

TEST(CliCalibrate, BoxCoxWithTooFewWetDaysStopsWithItsMessage) {
    TempDir dir;
    const auto par = dir.path("BOX.PAR");
    auto args = calibrateArgs(par, {"--process", "conditional", "--fit-end", "31/12/1961"});
    args.insert(args.begin(), {"--set", "ModelTransformation=5"});
    const auto run = runVaro(dir, args);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "Error Message: Sorry an error has occurred calculating the optimum lamda "
                       "transform. There are insufficient data for a Box Cox transformation.  "
                       "Try an alternative transformation.\n");
    EXPECT_FALSE(fileExists(par));
}

TEST(CliCalibrate, StepwiseAsksFirstAndNamesTheChosenPredictors) {
    TempDir dir;
    const auto par = dir.path("STEP.PAR");
    auto args = calibrateArgs(par, {"--model", "annual"});
    args.insert(args.begin(), {"--set", "ApplyStepwise=True"});
    const auto refused = runVaro(dir, args);
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_TRUE(contains(refused.err, "Stepwise regression is selected."));
    EXPECT_FALSE(fileExists(par));

    args.push_back("--yes");
    const auto accepted = runVaro(dir, args);
    ASSERT_EQ(accepted.exitCode, 0) << accepted.err;
    EXPECT_TRUE(contains(readFile(par), "rain.dat\r\nmslp.dat\r\nshum.dat\r\n"));

    auto lagged = args;
    lagged.push_back("--autoregression");
    const auto refusedLag = runVaro(dir, lagged);
    EXPECT_EQ(refusedLag.exitCode, 2);
    EXPECT_TRUE(contains(refusedLag.err, "You cannot include autoregression with the stepwise"));
}
