#include "cli_test_support.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo::testing;

namespace {
const std::string Data = std::string(VARO_TEST_DATA) + "/screening/";

std::vector<std::string> screenArgs(const std::string& analysis) {
    return {
        "screen", analysis,    Data + "predictand.dat", Data + "p1_mslp.dat", Data + "p2_p500.dat",
        "--end",  "31/12/1963"};
}
} // namespace

TEST(CliScreen, CorrelationJsonCarriesItsTablesAndTheReport) {
    TempDir dir;
    auto args = screenArgs("correlation");
    args.insert(args.begin(), "--json");
    args.insert(args.end(), {"--period", "july"});
    const auto run = runVaro(dir, args);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto report = nlohmann::json::parse(run.out);
    EXPECT_EQ(report["correlations"]["columns"].size(), 3u);
    ASSERT_EQ(report["correlations"]["rows"].size(), 3u);
    EXPECT_NEAR(report["correlations"]["rows"][1]["values"][1].get<double>(), 1.0, 1e-6);
    EXPECT_EQ(report["partials"]["columns"], (nlohmann::json{"Partial r", "P value"}));
    EXPECT_EQ(report["partials"]["rows"][0]["label"], "p1_mslp.dat");
    EXPECT_EQ(report["report"][8], "CORRELATION MATRIX");
    EXPECT_EQ(report["report"][10], "Analysis Period: 01/01/1961 - 31/12/1963 (July)");
}

// The report's table holds r squared of the significant months alone (null elsewhere); the
// tables of each statistic hold every month.
TEST(CliScreen, VarianceJsonCarriesTheReportsTableAndEveryStatistic) {
    TempDir dir;
    auto variance = screenArgs("variance");
    variance.insert(variance.begin(), "--json");
    variance.insert(variance.end(),
                    {"--process", "conditional", "--autoregression", "--sig-level", "0.01"});
    const auto explained = runVaro(dir, variance);
    ASSERT_EQ(explained.exitCode, 0) << explained.err;
    EXPECT_EQ(explained.err, "Warning: Can only apply autoregression analysis to unconditional "
                             "process.\n");
    const auto document = nlohmann::json::parse(explained.out);
    const auto& results = document["results"];
    ASSERT_EQ(results["rows"].size(), 3u);
    EXPECT_EQ(results["rows"][2]["label"], "Autoregression");
    EXPECT_EQ(results["columns"][0], "JAN");
    for (size_t row = 0; row < 3; ++row) {
        for (size_t month = 0; month < 12; ++month) {
            const double p = document["p"]["rows"][row]["values"][month].get<double>();
            EXPECT_EQ(results["rows"][row]["values"][month].is_null(),
                      static_cast<float>(p) > 0.01f)
                << row << "," << month;
        }
    }
    EXPECT_EQ(document["report"][2], "   Significance level: 0.01");
}

TEST(CliScreen, ScatterPrintsTheChartsPoints) {
    TempDir dir;
    const auto run = runVaro(dir, {"screen", "scatter", Data + "predictand.dat",
                                   Data + "p1_mslp.dat", "--end", "03/01/1961"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "0 missing value(s): predictand.dat\n"
                       "p1_mslp.dat predictand.dat\n"
                       "1011.31 -2.65\n1008.86 -12.28\n1014.2 -11.81\n");
}

// A refusal exits 2, a failure of the run 1.
TEST(CliScreen, BadRunsExitTwoOrOne) {
    TempDir dir;
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

// -o saves what is printed as the screen's Save key writes it (CR LF line ends) and names
// the file; a file it cannot write gets the failure text and exit 1.
TEST(CliScreen, OutputSavesTheReportAsText) {
    TempDir dir;
    for (const std::string analysis : {"variance", "scatter"}) {
        SCOPED_TRACE(analysis);
        auto args = screenArgs(analysis);
        if (analysis == "scatter") {
            args.erase(args.begin() + 4); // one predictor
        }
        const std::string report = dir.path(analysis + ".txt");
        args.insert(args.end(), {"-o", report});
        const auto run = runVaro(dir, args);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        std::string expected;
        for (size_t at = 0, end; (end = run.out.find('\n', at)) != std::string::npos;
             at = end + 1) {
            expected += run.out.substr(at, end - at) + "\r\n";
        }
        EXPECT_GT(expected.size(), 40u);
        EXPECT_EQ(readFile(report), expected);
        EXPECT_EQ(run.err, "Report written: " + report + "\n");
    }
    auto args = screenArgs("correlation");
    args.insert(args.end(), {"--output", dir.path("missing/report.txt")});
    const auto failed = runVaro(dir, args);
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(failed.err.rfind("Error Message: ", 0), 0u) << failed.err;
    EXPECT_NE(failed.err.find(dir.path("missing/report.txt")), std::string::npos) << failed.err;
    EXPECT_FALSE(fileExists(dir.path("missing/report.txt")));
}

// --plot hands the scatter analysis's chart to the exporter; JSON keeps the points and the
// missing count. Only the scatter draws, and its picture may not replace an input.
TEST(CliScreen, ScatterPlotsItsChartAndOtherAnalysesRefusePlot) {
    TempDir dir;
    RecordingExporter exporter;
    const std::string picture = dir.path("scatter.png");
    const auto run =
        runWith(dir,
                {"--json", "screen", "scatter", Data + "predictand.dat", Data + "p1_mslp.dat",
                 "--end", "31/12/1963", "--plot", picture, "--plot-size", "300x200"},
                &exporter);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto document = nlohmann::json::parse(run.out);
    EXPECT_EQ(document["missingCount"], 6);
    EXPECT_EQ(document["points"].size(), 1089u);
    ASSERT_EQ(exporter.charts.size(), 1u);
    const auto& chart = exporter.charts[0];
    EXPECT_EQ(chart.screen, varo::charts::ChartScreen::Scatter);
    EXPECT_EQ(chart.title, "6 missing value(s): predictand.dat");
    EXPECT_EQ(chart.series.at(0).x.size(), 1089u);
    EXPECT_EQ(chart.series[0].x[0], document["points"][0][0].get<double>());
    EXPECT_EQ(exporter.sizes[0], (varo::charts::PictureSize{300, 200}));
    EXPECT_EQ(run.err, "Chart written: " + picture + "\n");

    struct Case {
        std::vector<std::string> args;
        std::string message;
    };
    const std::string input = dir.write("input.png", "1\n2\n3\n");
    const std::vector<Case> refused = {
        {{"correlation", Data + "predictand.dat", Data + "p1_mslp.dat", "--plot", picture},
         "Error Message: --plot: only the scatter analysis draws a chart; correlation makes a "
         "report.\n"},
        {{"scatter", input, Data + "p1_mslp.dat", "--plot", input},
         "Error Message: The output file '" + input + "' is the same file as the input file '" +
             input + "': writing it would destroy the input. Choose another output file.\n"},
    };
    for (const Case& test : refused) {
        std::vector<std::string> args = {"screen"};
        args.insert(args.end(), test.args.begin(), test.args.end());
        const auto refusal = runWith(dir, args, &exporter);
        EXPECT_EQ(refusal.exitCode, 2);
        EXPECT_EQ(refusal.err, test.message);
        EXPECT_TRUE(refusal.out.empty());
    }
    EXPECT_EQ(exporter.charts.size(), 1u);
    EXPECT_EQ(readFile(input), "1\n2\n3\n");
}
