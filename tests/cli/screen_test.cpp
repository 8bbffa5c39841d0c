#include "cli_test_support.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo::testing;

namespace {
const std::string Data = std::string(VARO_TEST_DATA) + "/screening/";

std::vector<std::string> screenArgs(const std::string& analysis) {
    return {"screen",
            analysis,
            Data + "predictand.dat",
            Data + "p1_mslp.dat",
            Data + "p2_p500.dat",
            "--end",
            "31/12/1963"};
}
} // namespace

TEST(CliScreen, JsonCarriesTheNumbersAndTheReport) {
    TempDir dir;
    auto args = screenArgs("correlation");
    args.insert(args.begin(), "--json");
    args.insert(args.end(), {"--period", "july"});
    const auto run = runVaro(dir, args);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto report = nlohmann::json::parse(run.out);
    EXPECT_EQ(report["series"].size(), 3u);
    EXPECT_EQ(report["correlations"].size(), 3u);
    EXPECT_EQ(report["partials"].size(), 2u);
    EXPECT_EQ(report["partials"][0]["name"], "p1_mslp.dat");
    EXPECT_EQ(report["report"][8], "CORRELATION MATRIX");
    EXPECT_EQ(report["report"][10], "Analysis Period: 01/01/1961 - 31/12/1963 (July)");

    auto variance = screenArgs("variance");
    variance.insert(variance.begin(), "--json");
    variance.insert(variance.end(),
                    {"--process", "conditional", "--autoregression", "--sig-level", "0.01"});
    const auto explained = runVaro(dir, variance);
    ASSERT_EQ(explained.exitCode, 0) << explained.err;
    EXPECT_EQ(explained.err, "Warning: Can only apply autoregression analysis to unconditional "
                             "process.\n");
    const auto table = nlohmann::json::parse(explained.out);
    EXPECT_EQ(table["results"].size(), 3u);
    EXPECT_EQ(table["results"][2]["name"], "Autoregression");
    EXPECT_EQ(table["results"][0]["months"][0]["month"], "JAN");
    EXPECT_EQ(table["report"][2], "   Significance level: 0.01");
}

TEST(CliScreen, ScatterPrintsTheChartsPointsAndBadRunsExitTwoOrOne) {
    TempDir dir;
    const auto run = runVaro(dir, {"screen", "scatter", Data + "predictand.dat",
                                   Data + "p1_mslp.dat", "--end", "03/01/1961"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "0 missing value(s): predictand.dat\n"
                       "p1_mslp.dat predictand.dat\n"
                       "1011.31 -2.65\n1008.86 -12.28\n1014.2 -11.81\n");
    const auto none = runVaro(dir, {"screen", "scatter", Data + "predictand.dat"});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.err, "Error Message: You must select one predictor to plot with.\n");
    // The files hold three years, the default period thirty.
    auto whole = screenArgs("variance");
    whole.resize(whole.size() - 2);
    const auto shortFiles = runVaro(dir, whole);
    EXPECT_EQ(shortFiles.exitCode, 1);
    EXPECT_NE(shortFiles.err.find("Input past end of file."), std::string::npos);
}
