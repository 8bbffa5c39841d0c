#include "cli_test_support.hpp"
#include "support/results_file_tables.hpp"

#include <algorithm>
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

// Leading "--set NAME=VALUE" pairs are global options and go before the command.
CliRun runStats(const TempDir& dir, const std::string& input, const std::string& output,
                const std::vector<std::string>& options) {
    auto rest = options.begin();
    while (rest != options.end() && *rest == "--set") {
        rest += 2;
    }
    std::vector<std::string> args(options.begin(), rest);
    args.insert(args.end(), {"stats", input, "-o", output});
    args.insert(args.end(), rest, options.end());
    return runVaro(dir, args);
}

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

// The tables printed on stdout: after a blank line, a title, a heading and one line a row.
// Labels stand left and numbers right, columns apart by at least two blanks, so the right
// end of each heading ends its column, and an empty cell stays a cell.
std::vector<TextTable> printedTables(const std::string& out) {
    const auto lines = splitAt(out, "\n");
    std::vector<TextTable> tables;
    for (size_t i = 0; i + 2 < lines.size(); ++i) {
        if (!lines[i].empty()) {
            continue;
        }
        std::vector<std::string> rows;
        size_t labelsEnd = 0;
        for (size_t r = i + 2; r < lines.size() && !lines[r].empty(); ++r) {
            rows.push_back(lines[r]);
            labelsEnd = std::max(labelsEnd, std::min(lines[r].find("  "), lines[r].size()));
        }
        const std::string heading = rows.front() + "  ";
        std::vector<size_t> ends{labelsEnd};
        for (size_t c = labelsEnd; c + 1 < heading.size(); ++c) {
            if (heading[c] != ' ' && heading.compare(c + 1, 2, "  ") == 0) {
                ends.push_back(c + 1);
            }
        }
        TextTable table;
        for (const std::string& row : rows) {
            const std::string line = row + std::string(heading.size(), ' ');
            std::vector<std::string> cells{trimmed(line.substr(0, labelsEnd))};
            for (size_t c = 1; c < ends.size(); ++c) {
                cells.push_back(trimmed(line.substr(ends[c - 1], ends[c] - ends[c - 1])));
            }
            table.push_back(cells);
        }
        tables.push_back(table);
    }
    return tables;
}

} // namespace

namespace {
// An ensemble mean with deltas: every kind of table, and missing cells where Period C has
// no autumn.
const std::vector<std::string> EveryTable = {"--ensemble-mean",
                                              "--stats",
                                              "Mean,Variance,Count,ACF",
                                              "--delta",
                                              "absolute",
                                              "--base",
                                              "01/01/1961:31/12/1962",
                                              "--period-a",
                                              "01/01/1963:31/12/1964",
                                              "--period-b",
                                              "01/01/1965:31/12/1966",
                                              "--period-c",
                                              "01/01/1967:30/06/1967"};
} // namespace

TEST(CliStats, PrintedTablesAreTheResultsFilesTables) {
    TempDir dir;
    const auto run = runStats(dir, data("deltas.OUT"), dir.path("r.txt"), EveryTable);
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto expected = resultsFileTables(readFile(dir.path("r.txt")));
    ASSERT_EQ(expected.size(), 7u); // statistics, deviations, three deltas, T, degrees
    EXPECT_EQ(printedTables(run.out), expected) << run.out;
    EXPECT_NE(run.out.find("\nAutumn   "), std::string::npos);
    EXPECT_NE(run.out.find("-999.000"), std::string::npos);
}

TEST(CliStats, QuietPrintsNoTableButWritesTheSameFile) {
    TempDir dir;
    ASSERT_EQ(runStats(dir, data("deltas.OUT"), dir.path("r.txt"), EveryTable).exitCode, 0);
    auto quiet = EveryTable;
    quiet.insert(quiet.begin(), "--quiet");
    const auto silent = runStats(dir, data("deltas.OUT"), dir.path("q.txt"), quiet);
    ASSERT_EQ(silent.exitCode, 0) << silent.err;
    EXPECT_EQ(silent.out, "");
    EXPECT_EQ(readFile(dir.path("q.txt")), readFile(dir.path("r.txt")));
}

TEST(CliStats, ResultsFilesMatchTheIndependentComputationByteForByte) {
    for (const GoldenRun& golden : GoldenRuns) {
        SCOPED_TRACE(golden.expected);
        TempDir dir;
        const std::string output = dir.path("results.txt");
        const auto run = runStats(dir, data(golden.input), output, golden.args);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(readFile(output), readFile(data(golden.expected)));
        EXPECT_EQ(
            run.out.rfind("Summary statistics saved to results.txt.\n\nSummary statistics of " +
                              golden.input + ", ",
                          0),
            0u);
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
    const auto& rows = report["table"]["rows"];
    ASSERT_EQ(rows.size(), 17u);
    EXPECT_EQ(rows[16]["label"], "Annual");
    EXPECT_EQ(report["table"]["columns"], report["statistics"]);
    EXPECT_EQ(report["standardDeviations"]["rows"].size(), 17u);
    const auto& delta = report["delta"];
    EXPECT_EQ(delta["kind"], "absolute");
    EXPECT_EQ(delta["periods"][2]["end"], "30/06/1967");
    // Period C has no autumn: its deltas and tests are null there.
    EXPECT_TRUE(delta["periods"][2]["table"]["rows"][15]["values"][0].is_null());
    EXPECT_EQ(delta["tTest"]["columns"][2], "Period C");
    EXPECT_TRUE(delta["tTest"]["rows"][15]["values"][2].is_null());
    EXPECT_GE(delta["tTest"]["rows"][16]["values"][0].get<double>(), 0.0);
    EXPECT_GT(delta["degreesOfFreedom"]["rows"][16]["values"][0].get<double>(), 100.0);
    // The file says the same as the JSON.
    const std::string text = readFile(dir.path("r3.txt"));
    char line[64];
    std::snprintf(line, sizeof line, "\r\nAnnual,%.3f,", rows[16]["values"][0].get<double>());
    EXPECT_NE(text.find(line), std::string::npos) << line;
}

TEST(CliStats, BadInputGetsItsMessageAndNoResultsFile) {
    TempDir dir;
    const std::string out = dir.path("r.txt");
    const auto err = [&](const std::string& input, const std::vector<std::string>& options,
                         int exitCode) {
        const auto run = runStats(dir, data(input), out, options);
        EXPECT_EQ(run.exitCode, exitCode) << run.err;
        EXPECT_FALSE(fileExists(out));
        return run.err;
    };
    EXPECT_EQ(err("ensemble3.OUT", {"--stats", "Mean,Average"}, 2)
                  .rfind("Error Message: Unknown statistic 'Average' in --stats. Statistics: "
                         "Mean, ",
                         0),
              0u);
    EXPECT_EQ(err("ensemble3.OUT", {"--base", "01/01/1961"}, 2),
              "Error Message: --base takes START:END (DD/MM/YYYY:DD/MM/YYYY), not '01/01/1961'.\n");
    EXPECT_EQ(err("observed.dat", {"--modelled"}, 2),
              "Error Message: You must select an appropriate scenario file for modelled "
              "analyses.\n");
    EXPECT_EQ(err("ensemble3.OUT", {"--start", "01/01/1961", "--end", "31/12/1970"}, 1),
              "Error Message: Sorry - an error has occurred - please check all selections and "
              "try again.\nInput past end of file.\nPlease check global program settings.\n"
              "'" +
                  data("ensemble3.OUT") +
                  "' ends after line 1095, before the dates in use: record from 01/01/1961, "
                  "analysis period 01/01/1961 to 31/12/1970, year length 366. Change the dates "
                  "to match the file, or choose a file that covers them.\n");
}
