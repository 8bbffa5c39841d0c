#include "cli_test_support.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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

TEST(CliCalibrate, JsonCarriesBothStagesAndCrossValidationErrorsRunToTheEndButExitOne) {
    TempDir dir;
    const auto par = dir.path("COND.par");
    const auto json = runVaro(
        dir, calibrateArgs(par, {"--process", "conditional", "--chow", "--model", "seasonal"},
                           {"--json"}));
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

    const auto folds = runVaro(dir, calibrateArgs(par,
                                                  {"--process", "conditional", "--cross-validation",
                                                   "10", "--end", "31/12/1961"},
                                                  {"--json"}));
    // The run goes on to the end and writes its file; the error it showed makes the exit 1.
    ASSERT_EQ(folds.exitCode, 1) << folds.err;
    EXPECT_TRUE(varo::testing::fileExists(par));
    EXPECT_EQ(folds.err, "Error Message: Sorry - insufficient data for all cross validation "
                         "metrics to be calculated.\n");
    const auto validated = nlohmann::json::parse(folds.out);
    EXPECT_TRUE(validated["crossValidation"][0]["propCorrect"].is_null());
    EXPECT_TRUE(validated["amountCrossValidation"][0]["spearman"].is_null());
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

    args.push_back("--autoregression");
    const auto refusedLag = runVaro(dir, args);
    EXPECT_EQ(refusedLag.exitCode, 2);
    EXPECT_TRUE(contains(refusedLag.err, "autoregression with the stepwise")) << refusedLag.err;
}
