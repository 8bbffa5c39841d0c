#include "cli_test_support.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo::testing;

namespace {

std::string data(const std::string& name) {
    return std::string(VARO_TEST_DATA) + "/statistics/" + name;
}

const std::string Basic = "Mean,Maximum,Minimum,Median,Variance,Sum,Max_NTot,ACF";
const std::string Wet = "Wet-days%,Dry-spell,Wet-spell,Max_wspel,SD_WetSpell,POP,POP_Tot,Med_Wet";
const std::string More = "IQR,POT,PBT,Percentile,Skewness,Count,Max_Range,Min_Range";
const std::string Dry =
    "Mean,Max_dspel,SD_DrySpell,Wet_Persis,Dry_Persis,Persis_Corr,Med_Dry,Count";
const std::string Ensemble = "Mean,Maximum,Minimum,Sum,Variance,Count,Percentile,Max_NTot";
const std::string Delta = "Mean,Maximum,Variance,Count,Sum,Median,Max_NTot,ACF";

struct GoldenRun {
    std::string expected;
    std::vector<std::string> args; // after "stats IN -o OUT"
    std::string input;
};

// The runs whose results files tests/data/statistics/make_reference.py computes
// independently; the options here repeat that script's settings.
const std::vector<GoldenRun> GoldenRuns = {
    {"expected_observed_basic.txt",
     {"--observed", "--start", "01/01/1961", "--end", "31/12/1964", "--stats", Basic, "--nday",
      "3"},
     "observed.dat"},
    {"expected_observed_wet.txt",
     {"--start", "15/03/1961", "--end", "20/10/1964", "--stats", Wet, "--pop-percentile", "80"},
     "observed.dat"},
    {"expected_observed_more.txt",
     {"--start", "15/03/1961", "--end", "20/10/1964", "--stats", More, "--pot-threshold", "10",
      "--pbt-threshold", "0.5", "--percentile", "90"},
     "observed.dat"},
    {"expected_observed_dry.txt",
     {"--set", "Thresh=0.5", "--start", "01/01/1961", "--end", "31/12/1964", "--stats", Dry},
     "observed.dat"},
    {"expected_ensemble_member1.txt",
     {"--member", "1", "--start", "01/01/1961", "--end", "31/12/1963", "--stats", Ensemble},
     "ensemble3.OUT"},
    {"expected_ensemble_mean.txt",
     {"--ensemble-mean", "--start", "01/01/1961", "--end", "31/12/1963", "--stats", Ensemble},
     "ensemble3.OUT"},
    // The SIM file's year length rules, not the settings'.
    {"expected_cal360.txt",
     {"--start", "01/03/1961", "--end", "01/03/1962", "--stats", "Mean,Sum,Count,Maximum"},
     "cal360.OUT"},
    {"expected_cal365.txt",
     {"--set", "YearIndicator=360", "--start", "01/02/1961", "--end", "28/02/1962", "--stats",
      "Mean,Sum,Count,Max_NTot"},
     "cal365.OUT"},
    {"expected_delta.txt",
     {"--ensemble-mean", "--stats", Delta, "--delta", "percentage", "--base",
      "01/01/1961:31/12/1962", "--period-a", "01/01/1963:31/12/1964", "--period-b",
      "01/01/1965:31/12/1966", "--period-c", "01/01/1967:31/12/1968"},
     "deltas.OUT"},
};

CliRun runStats(const TempDir& dir, const std::string& input, const std::string& output,
                std::vector<std::string> options) {
    std::vector<std::string> args;
    // --set is a global option and goes before the command.
    for (size_t i = 0; i + 1 < options.size();) {
        if (options[i] == "--set") {
            args.push_back(options[i]);
            args.push_back(options[i + 1]);
            options.erase(options.begin() + static_cast<long>(i),
                          options.begin() + static_cast<long>(i) + 2);
        } else {
            ++i;
        }
    }
    args.insert(args.end(), {"stats", input, "-o", output});
    args.insert(args.end(), options.begin(), options.end());
    return runVaro(dir, args);
}

} // namespace

TEST(CliStats, ResultsFilesMatchTheIndependentComputationByteForByte) {
    for (const GoldenRun& golden : GoldenRuns) {
        SCOPED_TRACE(golden.expected);
        TempDir dir;
        const std::string output = dir.path("results.txt");
        const auto run = runStats(dir, data(golden.input), output, golden.args);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(readFile(output), readFile(data(golden.expected)));
        EXPECT_EQ(run.out, "Summary statistics saved to results.txt.\n");
    }
}

TEST(CliStats, JsonCarriesTheTablesDeltasAndTests) {
    TempDir dir;
    const auto document = runVaro(
        dir, {"--json", "stats", data("deltas.OUT"), "-o", dir.path("r3.txt"), "--ensemble-mean",
              "--stats", "Mean,Variance,Count,ACF", "--delta", "absolute", "--base",
              "01/01/1961:31/12/1962", "--period-a", "01/01/1963:31/12/1964", "--period-b",
              "01/01/1965:31/12/1966", "--period-c", "01/01/1967:30/06/1967"});
    ASSERT_EQ(document.exitCode, 0) << document.err;
    const auto report = nlohmann::json::parse(document.out);
    EXPECT_EQ(report["file"], "deltas.OUT");
    EXPECT_EQ(report["members"], "ALL");
    EXPECT_EQ(report["statistics"], (nlohmann::json{"Mean", "Variance", "ACF", "Count"}));
    ASSERT_EQ(report["table"].size(), 17u);
    EXPECT_EQ(report["table"][16]["period"], "Annual");
    EXPECT_EQ(report["standardDeviations"].size(), 17u);
    const auto& delta = report["delta"];
    EXPECT_EQ(delta["kind"], "absolute");
    EXPECT_EQ(delta["periods"][2]["end"], "30/06/1967");
    // Period C has no autumn: its deltas and tests are null there.
    EXPECT_TRUE(delta["periods"][2]["table"][15]["Mean"].is_null());
    EXPECT_TRUE(delta["tTest"][15]["Period C"].is_null());
    EXPECT_GE(delta["tTest"][16]["Period A"].get<double>(), 0.0);
    EXPECT_GT(delta["degreesOfFreedom"][16]["Period A"].get<double>(), 100.0);
    // The file says the same as the JSON.
    const std::string text = readFile(dir.path("r3.txt"));
    char line[64];
    std::snprintf(line, sizeof line, "\r\nAnnual,%.3f,", report["table"][16]["Mean"].get<double>());
    EXPECT_NE(text.find(line), std::string::npos) << line;
}

TEST(CliStats, BadInputGetsItsMessageAndNoResultsFile) {
    TempDir dir;
    const std::string out = dir.path("r.txt");
    struct Case {
        std::vector<std::string> options;
        std::string input;
        int exitCode;
        std::string message;
    };
    const std::string sorry = "Error Message: Sorry - an error has occurred - please check all "
                              "selections and try again.\n";
    const Case cases[] = {
        {{"--stats", "Mean,Maximum,Minimum,Median,Variance,IQR,POT,PBT,Sum"},
         "ensemble3.OUT",
         2,
         "Error Message: You can select up to a maximum of eight statistics only.\n"},
        {{"--member", "4"},
         "ensemble3.OUT",
         2,
         "Error Message: Ensemble member does not exist in data file.\n"},
        {{"--start", "31/12/1962", "--end", "01/01/1961"},
         "ensemble3.OUT",
         2,
         "Error Message: Analysis end date must be later than analysis start date.\n"},
        {{"--start", "01/01/1961", "--end", "31/12/1970"},
         "ensemble3.OUT",
         1,
         sorry + "Input past end of file.\nPlease check global program settings.\n"},
        {{"--nday", "1"},
         "ensemble3.OUT",
         2,
         "Error Message: N-day total must be a value between 2 and 100.\n"},
        {{"--base", "01/01/1961"},
         "ensemble3.OUT",
         2,
         "Error Message: --base takes START:END (dd/mm/yyyy:dd/mm/yyyy), not '01/01/1961'.\n"},
        {{"--period-b", "01/01/2041:01/01/2091"},
         "ensemble3.OUT",
         2,
         "Error Message: Period B period must be less than 50 years.\n"},
        {{"--modelled"},
         "observed.dat",
         2,
         "Error Message: You must select an appropriate scenario file for modelled analyses.\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.options.front() + " " + c.options.back());
        const auto run = runStats(dir, data(c.input), out, c.options);
        EXPECT_EQ(run.exitCode, c.exitCode);
        EXPECT_EQ(run.err.substr(0, c.message.size()), c.message) << run.err;
        EXPECT_FALSE(fileExists(out));
    }
    const auto unknown = runStats(dir, data("ensemble3.OUT"), out, {"--stats", "Mean,Average"});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_EQ(unknown.err.rfind("Error Message: Unknown statistic 'Average' in --stats.", 0), 0u);

    // A missing or garbled SIM file.
    dir.write("lonely.OUT", readFile(data("ensemble3.OUT")));
    const auto lonely = runStats(dir, dir.path("lonely.OUT"), out, {});
    EXPECT_EQ(lonely.exitCode, 2);
    EXPECT_EQ(lonely.err,
              "Error Message: An error occurred opeing the *.SIM file. Please try again.\n");
    dir.write("lonely.SIM", " 2 \r\n 1 \r\n 366 \r\n1961-01-01\r\n");
    EXPECT_EQ(runStats(dir, dir.path("lonely.OUT"), out, {}).err, lonely.err);
    // A garbled OUT line names the file, line and member.
    dir.write("lonely.SIM", readFile(data("ensemble3.SIM")));
    std::string garbled = readFile(data("ensemble3.OUT"));
    garbled.replace(garbled.find("\r\n") + 2 + 14, 5, "abcde");
    dir.write("lonely.OUT", garbled);
    const auto bad = runStats(dir, dir.path("lonely.OUT"), out, {"--end", "31/12/1961"});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_NE(bad.err.find("Line 2 of '" + dir.path("lonely.OUT") +
                           "' holds no number for ensemble member 2"),
              std::string::npos)
        << bad.err;
    EXPECT_FALSE(fileExists(out));
}
