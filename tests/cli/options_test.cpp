// The command line's habits shared by every command: global options anywhere, one spelling
// for the output file, value kinds in --help, and files written named on stderr.
#include "cli_test_support.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo::testing;

namespace {
const std::string Screening = std::string(VARO_TEST_DATA) + "/screening/";

const std::string DataFile = "1\r\n2\r\n3\r\n-999\r\n5\r\n";
} // namespace

TEST(CliOptions, GlobalOptionsGiveTheSameOutputWhereverTheyStand) {
    TempDir dir;
    const auto file = dir.write("a.dat", DataFile);
    const std::vector<std::vector<std::string>> placements{
        {"--json", "qc", file},
        {"qc", "--json", file},
        {"qc", file, "--json"},
        {"qc", file, "--set", "Thresh=2", "--json"},
        {"--set", "Thresh=2", "qc", file, "--json"},
    };
    std::vector<CliRun> runs;
    for (const auto& args : placements) {
        runs.push_back(runVaro(dir, args));
        ASSERT_EQ(runs.back().exitCode, 0) << runs.back().err;
        EXPECT_TRUE(nlohmann::json::accept(runs.back().out)) << runs.back().out;
    }
    EXPECT_EQ(runs[1].out, runs[0].out);
    EXPECT_EQ(runs[2].out, runs[0].out);
    EXPECT_EQ(runs[4].out, runs[3].out);
    EXPECT_NE(runs[3].out, runs[0].out); // the threshold override took effect after the file
}

TEST(CliOptions, SettingsFileAfterTheCommandIsTheOneRead) {
    TempDir dir;
    const auto file = dir.write("a.dat", DataFile);
    const auto other = dir.path("other.ini");
    std::ostringstream out;
    std::ostringstream err;
    ASSERT_EQ(varo::cli::runCli({"settings", "set", "Thresh", "2", "--settings", other}, out, err),
              0)
        << err.str();
    out.str("");
    ASSERT_EQ(varo::cli::runCli({"qc", file, "--settings", other, "--json"}, out, err), 0)
        << err.str();
    EXPECT_EQ(nlohmann::json::parse(out.str())["aboveThreshold"], 2);
}

TEST(CliOptions, OutputIsDashOEverywhereWithOlderSpellingsAccepted) {
    TempDir dir;
    const auto in = dir.write("in.dat", DataFile);
    struct Case {
        std::vector<std::string> args;
        std::string written;
    };
    const std::vector<Case> cases{
        {{"transform", in, "-o", dir.path("a.dat"), "--op", "square"}, "a.dat"},
        {{"transform", in, "--output", dir.path("b.dat"), "--op", "square"}, "b.dat"},
        {{"transform", in, dir.path("c.dat"), "--op", "square"}, "c.dat"},
        {{"stats", in, "--output", dir.path("r.txt"), "--start", "01/01/1961", "--end",
          "05/01/1961"},
         "r.txt"},
    };
    for (const auto& c : cases) {
        const auto run = runVaro(dir, c.args);
        EXPECT_EQ(run.exitCode, 0) << c.written << ": " << run.err;
        EXPECT_TRUE(fileExists(dir.path(c.written))) << c.written;
    }
    for (const std::string_view command : {"transform", "stats", "calibrate", "generate"}) {
        std::vector<std::string> args{std::string(command), in};
        if (command == "transform") {
            args.insert(args.end(), {"--op", "square"});
        } else if (command == "calibrate") {
            args.push_back(in);
        } else if (command == "generate") {
            args.insert(args.end(), {"--predictors", dir.folder()});
        }
        const auto run = runVaro(dir, args);
        EXPECT_EQ(run.exitCode, 2) << command;
        EXPECT_NE(run.err.find("-o,--output is required"), std::string::npos) << command;
    }
}

TEST(CliOptions, FitPeriodIsStartAndEndWithTheOlderSpellingsHidden) {
    TempDir dir;
    const std::vector<std::string> base{"--json", "screen", "correlation",
                                        Screening + "predictand.dat", Screening + "p1_mslp.dat"};
    auto current = base;
    current.insert(current.end(), {"--start", "02/01/1961", "--end", "31/12/1962"});
    auto older = base;
    older.insert(older.end(), {"--fit-start", "02/01/1961", "--fit-end", "31/12/1962"});
    const auto a = runVaro(dir, current);
    const auto b = runVaro(dir, older);
    ASSERT_EQ(a.exitCode, 0) << a.err;
    ASSERT_EQ(b.exitCode, 0) << b.err;
    EXPECT_EQ(a.out, b.out);
    EXPECT_EQ(nlohmann::json::parse(a.out)["fitEnd"], "31/12/1962");

    const auto help = runVaro(dir, {"screen", "--help"});
    EXPECT_EQ(help.out.find("--fit-start"), std::string::npos);
    EXPECT_NE(help.out.find("--start DD/MM/YYYY"), std::string::npos);
}

TEST(CliOptions, HelpNamesTheKindOfEveryValue) {
    TempDir dir;
    for (const std::vector<std::string>& command : {std::vector<std::string>{"qc"},
                                                    {"transform"},
                                                    {"screen"},
                                                    {"calibrate"},
                                                    {"generate"},
                                                    {"stats"},
                                                    {"demo"},
                                                    {"settings", "set"}}) {
        auto args = command;
        args.push_back("--help");
        const auto run = runVaro(dir, args);
        EXPECT_EQ(run.exitCode, 0) << command.back();
        EXPECT_EQ(run.out.find("TEXT"), std::string::npos) << run.out;
        EXPECT_EQ(run.out.find("dd/mm/yyyy"), std::string::npos) << run.out;
    }
    const auto stats = runVaro(dir, {"stats", "--help"});
    EXPECT_NE(stats.out.find("--percentile NUMBER"), std::string::npos);
    EXPECT_NE(stats.out.find("--nday INT"), std::string::npos);
    EXPECT_NE(stats.out.find("--base START:END"), std::string::npos);
}

TEST(CliOptions, FilesWrittenAreNamedOnStderrUnlessQuiet) {
    TempDir dir;
    const auto in = dir.write("in.dat", DataFile);
    struct Case {
        std::vector<std::string> args;
        std::string written;
    };
    const Case cases[] = {
        {{"transform", in, "-o", dir.path("sq.dat"), "--op", "square"},
         "Data file written: " + dir.path("sq.dat") + "\n"},
        {{"stats", in, "-o", dir.path("r.txt"), "--start", "01/01/1961", "--end", "05/01/1961"},
         "Results file written: " + dir.path("r.txt") + "\n"},
    };
    for (const Case& c : cases) {
        const auto loud = runVaro(dir, c.args);
        ASSERT_EQ(loud.exitCode, 0) << loud.err;
        EXPECT_EQ(loud.err, c.written);
        auto args = c.args;
        args.insert(args.begin(), "--quiet");
        const auto quiet = runVaro(dir, args);
        EXPECT_EQ(quiet.exitCode, 0);
        EXPECT_EQ(quiet.err, "");
    }
}

// A file that ends before the dates in force keeps the required lines of failure 62 and
// then says which file, where it ended and which dates asked for more.
TEST(CliOptions, FileEndingBeforeTheDatesInUseNamesThem) {
    TempDir dir;
    const std::string weathergen = std::string(VARO_TEST_DATA) + "/weathergen/";
    const std::string required = "Error Message: Sorry - an error has occurred - please check all "
                                 "selections and try again.\nInput past end of file.\nPlease "
                                 "check global program settings.\n";
    const std::string advice =
        ". Change the dates to match the file, or choose a file that covers them.\n";
    struct Case {
        std::vector<std::string> args;
        std::string hint;
    };
    const std::vector<Case> cases{
        {{"--set", "GlobalEDate=31/12/2099", "screen", "correlation", Screening + "predictand.dat",
          Screening + "p1_mslp.dat"},
         "'" + Screening +
             "predictand.dat' ends after line 1095, before the dates in use: record from "
             "01/01/1961 to 31/12/2099, fit 01/01/1961 to 31/12/2099, year length 366"},
        {{"--set", "GlobalEDate=31/12/2099", "--set", "YearIndicator=365", "calibrate",
          Screening + "predictand.dat", Screening + "p1_mslp.dat", "-o", dir.path("M.PAR"),
          "--start", "01/01/1962"},
         "'" + Screening +
             "predictand.dat' ends after line 1095, before the dates in use: record from "
             "01/01/1961 to 31/12/2099, fit 01/01/1962 to 31/12/2099, year length 365"},
        {{"--set", "YearIndicator=360", "generate", weathergen + "stochastic.PAR", "--predictors",
          weathergen, "-o", dir.path("run.OUT"), "--start", "15/01/1961", "--days", "5000",
          "--ensemble", "2"},
         "'" + weathergen +
             "st_p1.dat' ends after line 150, before the dates in use: record from 01/01/1961, "
             "run of 5000 days from 15/01/1961, year length 360"},
    };
    for (const Case& c : cases) {
        const auto run = runVaro(dir, c.args);
        EXPECT_EQ(run.exitCode, 1) << c.args[4];
        const size_t at = run.err.find(required);
        ASSERT_NE(at, std::string::npos) << run.err;
        EXPECT_EQ(run.err.substr(at + required.size()), c.hint + advice);
    }
    EXPECT_FALSE(fileExists(dir.path("M.PAR")));
}
