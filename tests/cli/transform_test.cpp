#include "cli_test_support.hpp"
#include "core/number_format.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo::testing;

TEST(CliTransform, WritesTheFileAndPrintsTheClosingReport) {
    TempDir dir;
    const auto in = dir.write("in.dat", "1\r\n0\r\n-999\r\n");
    const auto run = runVaro(dir, {"transform", in, dir.path("out.dat"), "--op", "ln"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(readFile(dir.path("out.dat")),
              "0.000000      \r\n-999          \r\n-999          \r\n");
    EXPECT_EQ(run.out, "3 rows processed.\n1 missing value(s) in file (not transformed).\n"
                       "1 value(s) could not be converted (overflow would occur),\n"
                       " - therefore written to file as -999 (current missing code).\n");
}

// Each option reaches its field of the screen: the file written shows it.
TEST(CliTransform, OptionsReachTheirFields) {
    TempDir dir;
    const auto ensemble = dir.write("ens.OUT", "1 2 3\r\n4 -999 6\r\n");
    const auto abc = dir.write("abc.dat", "1\r\n2\r\n3\r\n");
    struct Case {
        std::vector<std::string> options;
        std::string input;
        std::string written;
    };
    const std::vector<Case> cases = {
        {{"--op", "copy", "--columns", "3", "--extract", "2"}, ensemble, " 2 \r\n-999 \r\n"},
        {{"--op", "lag", "--lag", "-1", "--wrap"},
         abc,
         " 3            \r\n 1            \r\n 2            \r\n"},
        {{"--op", "binomial", "--threshold", "2"},
         abc,
         " 0            \r\n 0            \r\n 1            \r\n"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> args{"transform", c.input, dir.path("out.dat")};
        args.insert(args.end(), c.options.begin(), c.options.end());
        const auto run = runVaro(dir, args);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(readFile(dir.path("out.dat")), c.written) << c.options[1];
    }
}

TEST(CliTransform, JsonCarriesTheCountsAndTheDescriptionsCopy) {
    TempDir dir;
    const auto in = dir.write("ens.OUT", "1 2 3\r\n4 -999 6\r\n");
    dir.write("ens.SIM", "sim\r\n");
    const auto run = runVaro(dir, {"--json", "transform", in, dir.path("member2.dat"), "--op",
                                   "copy", "--columns", "3", "--extract", "2", "--copy-sim"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(readFile(dir.path("member2.SIM")), "sim\r\n");
    const auto report = nlohmann::json::parse(run.out);
    EXPECT_EQ(report["rows"], 2);
    EXPECT_EQ(report["missing"], 1);
    EXPECT_EQ(report["simCopy"], dir.path("member2.SIM"));
    EXPECT_EQ(report["report"], "2 rows processed.\n1 missing value(s) in extracted ensemble.");
}

TEST(CliTransform, BoxCoxAndItsInverseRoundTrip) {
    TempDir dir;
    std::string values;
    for (int i = 1; i <= 60; ++i) {
        values += std::to_string(i * i % 97 + 1) + "\r\n";
    }
    const auto in = dir.write("in.dat", values);
    const auto forward =
        runVaro(dir, {"--json", "transform", in, dir.path("bc.dat"), "--op", "boxcox"});
    ASSERT_EQ(forward.exitCode, 0) << forward.err;
    const auto report = nlohmann::json::parse(forward.out);
    EXPECT_EQ(report["shift"], 0.0);
    const std::string lamda = varo::core::generalText(report["lamda"].get<double>());
    const auto back = runVaro(dir, {"transform", dir.path("bc.dat"), dir.path("back.dat"), "--op",
                                    "unboxcox", "--lamda", lamda});
    EXPECT_EQ(back.exitCode, 0) << back.err;
    EXPECT_EQ(back.out, "60 rows processed.\nNo missing values in file.\n");
}

TEST(CliTransform, RefusalsExitTwoAndFailuresOne) {
    TempDir dir;
    const auto in = dir.write("in.dat", "1 2\r\n3\r\n");
    EXPECT_EQ(runVaro(dir, {"transform", in, dir.path("o.dat"), "--op", "sin"}).exitCode, 2);
    const auto columns =
        runVaro(dir, {"transform", in, dir.path("o.dat"), "--op", "copy", "--columns", "101"});
    EXPECT_EQ(columns.exitCode, 2);
    EXPECT_EQ(columns.err, "Error Message: Number of columns must be a value between 1 and 100.\n");
    const auto lag =
        runVaro(dir, {"transform", in, dir.path("o.dat"), "--op", "lag", "--lag", "-3"});
    EXPECT_EQ(lag.exitCode, 1);
    EXPECT_EQ(lag.err, "Error Message: Negative lag value is too 'large' for this file - file "
                       "contains only 3 rows.\n");
    EXPECT_EQ(readFile(dir.path("o.dat")), "");
}
