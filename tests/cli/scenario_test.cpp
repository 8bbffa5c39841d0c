// varo scenario: options mapped to the screen's fields and checks, the "Results" text and
// JSON, and bad input refused with its message and exit status, the input never touched.
#include "cli_test_support.hpp"

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo;
using varo::testing::fileExists;
using varo::testing::readFile;
using varo::testing::runVaro;
using varo::testing::TempDir;

namespace {

// Two members of 20 days: member 1 wet on every other day, member 2 on every fourth.
std::string twoMembers() {
    std::string text;
    for (int d = 0; d < 20; ++d) {
        const std::string first = d % 2 == 0 ? "2.500" : "0.000";
        const std::string second = d % 4 == 0 ? "10.000" : "0.000";
        text += first + std::string(14 - first.size(), ' ') + second +
                std::string(14 - second.size(), ' ') + "\r\n";
    }
    return text;
}

long wetDays(const std::string& out, int member) {
    long count = 0;
    size_t start = 0;
    while (start < out.size()) {
        const size_t end = out.find("\r\n", start);
        if (std::stod(out.substr(start + 14 * static_cast<size_t>(member - 1), 14)) > 0.0) {
            ++count;
        }
        start = end + 2;
    }
    return count;
}

} // namespace

TEST(CliScenario, RunPrintsTheResultsTextAndWritesTheFile) {
    TempDir dir;
    const std::string in = dir.write("in.OUT", twoMembers());
    const auto run =
        runVaro(dir, {"scenario", in, "-o", dir.path("out.OUT"), "--ensemble", "2", "--conditional",
                      "--occurrence", "-50", "--preserve-totals", "--amount-factor", "20",
                      "--trend", "linear", "--trend-size", "5"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "Scenario Generated.\n20 days processed.\n");
    EXPECT_EQ(run.err, "OUT file written: " + dir.path("out.OUT") + "\n");
    const std::string out = readFile(dir.path("out.OUT"));
    EXPECT_EQ(wetDays(out, 1), 5); // 10 less half of them
    EXPECT_EQ(wetDays(out, 2), 3); // 5 less 2.5, rounded to even
    EXPECT_EQ(out.size(), twoMembers().size());
    EXPECT_FALSE(fileExists(dir.path("out.SIM")));
}

TEST(CliScenario, JsonGivesDaysLamdaAndWarnings) {
    TempDir dir;
    std::string wet;
    for (int d = 1; d <= 40; ++d) {
        wet += std::to_string(d % 5 == 0 ? 0.0 : 1.0 + d * 0.25) + "\n";
    }
    const std::string in = dir.write("in.dat", wet);
    auto run = runVaro(dir, {"--json", "scenario", in, "-o", dir.path("out.OUT"), "--conditional",
                             "--variance", "30"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    auto json = nlohmann::json::parse(run.out);
    EXPECT_EQ(json["days"], 40);
    EXPECT_TRUE(json["lamda"].is_number());
    EXPECT_EQ(json["warnings"], nlohmann::json::array());

    run = runVaro(dir, {"--json", "scenario", dir.write("dry.dat", "0\n0\n"), "-o",
                        dir.path("out.OUT"), "--conditional", "--occurrence", "10"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    json = nlohmann::json::parse(run.out);
    EXPECT_EQ(json["days"], 2);
    EXPECT_TRUE(json["lamda"].is_null());
    EXPECT_EQ(json["warnings"], nlohmann::json::array({"Warning - there are zero rainfall days "
                                                       "available so the data cannot be "
                                                       "manipulated."}));
}

// The forced occurrence reaches the profile given with --set for this run.
TEST(CliScenario, ForcedOccurrenceTakesTheProfileFromSet) {
    TempDir dir;
    std::string text;
    for (int d = 0; d < 31; ++d) {
        text += d < 20 ? "3\n" : "0\n";
    }
    const std::string in = dir.write("jan.dat", text);
    auto run =
        runVaro(dir, {"--set", "ZoMText1=10", "scenario", in, "-o", dir.path("out.OUT"),
                      "--conditional", "--occurrence", "0", "--forced", "--start", "01/01/2001"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const std::string out = readFile(dir.path("out.OUT"));
    EXPECT_EQ(wetDays(out, 1), 3); // 10 % of 31, rounded
    run = runVaro(dir, {"--set", "ZoMText1=101", "scenario", in, "-o", dir.path("out.OUT"),
                        "--conditional", "--occurrence", "0", "--forced"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.err,
              "Error Message: Modification value for January must be between 0 and 100.\n");
}

// Unused fields keep the screen's defaults, and every field is checked in the screen's
// order whatever is ticked.
TEST(CliScenario, OptionsAreRefusedWithTheScreensMessages) {
    TempDir dir;
    const std::string in = dir.write("in.dat", "1\n2\n3\n");
    struct Case {
        std::vector<std::string> options;
        std::string message;
    };
    const std::vector<Case> cases = {
        {{}, "You must select at least one treatment."},
        {{"--occurrence", "10"},
         "You cannot perform an occurrence treatment on data that are unconditional."},
        {{"--amount-factor", "150"}, "Factor must be between -100 and 100."},
        {{"--amount-factor", "0"},
         "You are trying to apply an amount treatment but applying no change."},
        {{"--amount-add", "0"},
         "You are trying to apply an amount treatment but applying no change."},
        {{"--trend", "exponential", "--trend-size", "0"},
         "Exponential trend must be a value other than zero."},
        {{"--trend", "logistic", "--trend-size", "x"},
         "Logistic trend must be a value between -100 and 100."},
        {{"--variance", "10", "--threshold", "-100.5"}, "Threshold must be between -100 and 100."},
        {{"--conditional", "--occurrence", "-100"},
         "Frequency change value must be between -99 and 100."},
        {{"--conditional", "--occurrence", "0"},
         "You are trying to perform an occurrence treatment but applying zero frequency "
         "change."},
        {{"--variance", "0"},
         "You are trying to apply a variance change but have not entered an amount."},
        {{"--variance", "5", "--start", "1961-01-01"},
         "Start date is invalid - it must be in the format dd/mm/yyyy."},
        {{"--variance", "5", "--ensemble", "101"}, "Ensemble Size must be between 1 and 100."},
    };
    for (const Case& c : cases) {
        std::vector<std::string> args{"scenario", in, "-o", dir.path("out.OUT")};
        args.insert(args.end(), c.options.begin(), c.options.end());
        const auto run = runVaro(dir, args);
        EXPECT_EQ(run.exitCode, 2) << c.message << run.err;
        EXPECT_EQ(run.err, "Error Message: " + c.message + "\n");
        EXPECT_FALSE(fileExists(dir.path("out.OUT")));
    }
    // Options that belong together, or exclude each other, are the parser's refusals.
    for (const std::vector<std::string>& options :
         std::vector<std::vector<std::string>>{{"--forced"},
                                               {"--trend", "linear"},
                                               {"--trend-size", "2"},
                                               {"--amount-factor", "5", "--amount-add", "1"},
                                               {"--trend", "cubic", "--trend-size", "1"}}) {
        std::vector<std::string> args{"scenario", in, "-o", dir.path("out.OUT")};
        args.insert(args.end(), options.begin(), options.end());
        EXPECT_EQ(runVaro(dir, args).exitCode, 2) << options.front();
    }
}

// Bad input: its message and exit status, no output, and the input byte for byte and time
// for time as it was; an earlier output refused over stays too.
TEST(CliScenario, BadInputIsRefusedAndTouchesNothing) {
    TempDir dir;
    const std::string narrow = dir.write("narrow.OUT", "1.000         2.000\r\n");
    std::string big;
    for (int d = 0; d <= 75000; ++d) {
        big += "1\n";
    }
    const std::string tooLong = dir.write("long.dat", big);
    const std::string garbled = dir.write("garbled.dat", "1\n2\nthree\n");
    const std::string good = dir.write("good.dat", "1\n2\n");
    struct Case {
        std::string input;
        std::string output;
        std::vector<std::string> options;
        int exitCode;
        std::string message;
    };
    const std::string out = dir.path("out.OUT");
    const std::vector<Case> cases = {
        {narrow,
         out,
         {"--ensemble", "2"},
         2,
         "Data file seems to be wrong size for ensemble size entered - please check."},
        {tooLong, out, {}, 1, "holds more than 75000 days (line 75001)"},
        {garbled, out, {}, 1, "'three' on line 3, column 1 of '" + garbled + "' is not a number"},
        {good, good, {}, 2, good},
        {good,
         dir.folder() + "/../" + std::filesystem::path(dir.folder()).filename().string() +
             "/good.dat",
         {},
         2,
         "is the same file as the input file"},
        {good, dir.path("no-folder/out.OUT"), {}, 1, "does not exist or does not take new files"},
        {good, dir.folder(), {}, 1, "it is a folder"},
    };
    for (const Case& c : cases) {
        const std::string before = readFile(c.input);
        const auto time = std::filesystem::last_write_time(c.input);
        std::vector<std::string> args{"scenario", c.input,  "-o",           c.output,
                                      "--trend",  "linear", "--trend-size", "1"};
        args.insert(args.end(), c.options.begin(), c.options.end());
        const auto run = runVaro(dir, args);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.message << "\n" << run.err;
        EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
        EXPECT_EQ(run.err.rfind("Error Message: ", 0), 0u) << run.err;
        EXPECT_EQ(readFile(c.input), before);
        EXPECT_EQ(std::filesystem::last_write_time(c.input), time);
        EXPECT_FALSE(fileExists(out));
    }
}

TEST(CliScenario, EmptyInputProcessesNoDays) {
    TempDir dir;
    const auto run = runVaro(dir, {"scenario", dir.write("empty.dat", ""), "-o",
                                   dir.path("out.OUT"), "--amount-add", "1"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "Scenario Generated.\n0 days processed.\n");
    EXPECT_EQ(readFile(dir.path("out.OUT")), "");
}

// Twice the wet days of a member without dry days: the overflow message, exit 1, and the
// earlier output as it was.
TEST(CliScenario, OverflowStopsTheRunAndKeepsTheEarlierOutput) {
    TempDir dir;
    const std::string out = dir.write("out.OUT", "earlier\r\n");
    const auto run = runVaro(dir, {"scenario", dir.write("wet.dat", "1\n2\n3\n"), "-o", out,
                                   "--conditional", "--occurrence", "100"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err,
              "Error Message: You cannot add that many days as the dataset will overflow!\n");
    EXPECT_EQ(readFile(out), "earlier\r\n");
}
