#include "cli_test_support.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo::testing;

TEST(CliQc, PrintsTheReportAndExitsZero) {
    TempDir dir;
    const auto file = dir.write("a.dat", "1\r\n5\r\n-999\r\n2.5\r\n");
    const auto run = runVaro(dir, {"qc", file});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.out.find("4 values processed in a.dat."), std::string::npos);
    EXPECT_NE(run.out.find("Number of values in file: 4\n"), std::string::npos);
    EXPECT_NE(run.out.find("Missing values: 1\n"), std::string::npos);
    EXPECT_NE(run.out.find("Mean: 2.83333\n"), std::string::npos);
}

TEST(CliQc, JsonReportCarriesEveryKeyAndTheWarnings) {
    TempDir dir;
    const auto file = dir.write("wide.dat", "1.000000 2.000000 3.000000\r\n4 5 6\r\n");
    const auto run = runVaro(dir, {"--json", "qc", file});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto report = nlohmann::json::parse(run.out);
    EXPECT_EQ(report["values"], 6);
    EXPECT_EQ(report["missing"], 0);
    EXPECT_EQ(report["ok"], 6);
    EXPECT_EQ(report["minimum"], 1.0);
    EXPECT_EQ(report["maximum"], 6.0);
    EXPECT_EQ(report["mean"], 3.5);
    EXPECT_EQ(report["maxDiff"], 1.0);
    EXPECT_EQ(report["maxDiffFirst"], 1.0);
    EXPECT_EQ(report["maxDiffSecond"], 2.0);
    EXPECT_EQ(report["aboveThreshold"], 6);
    ASSERT_EQ(report["warnings"].size(), 1u);
    EXPECT_NE(report["warnings"][0].get<std::string>().find("multiple columns"), std::string::npos);
    EXPECT_NE(run.err.find("Warning Message: File may contain"), std::string::npos);
}

TEST(CliQc, FailuresExitOneWithTheBoxText) {
    TempDir dir;
    const auto missing = runVaro(dir, {"qc", dir.path("none.dat")});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err.rfind("Error Message: Sorry - an error has occurred", 0), 0u);
    EXPECT_NE(missing.err.find("\nFile not found.\n"), std::string::npos);

    const auto empty = runVaro(dir, {"qc", dir.write("e.dat", "")});
    EXPECT_EQ(empty.exitCode, 1);
    EXPECT_NE(empty.err.find("Input past end of file.\nPlease check global program settings."),
              std::string::npos);

    const auto word = runVaro(dir, {"qc", dir.write("w.dat", "1\r\nabc\r\n")});
    EXPECT_EQ(word.exitCode, 1);
    EXPECT_NE(word.err.find("'abc' on line 2"), std::string::npos);

    const auto allMissing = runVaro(dir, {"qc", dir.write("m.dat", "-999\r\n-999\r\n")});
    EXPECT_EQ(allMissing.exitCode, 1);
    EXPECT_NE(allMissing.err.find("Division by zero."), std::string::npos);
}

TEST(CliQc, SetOverridesUseTheSettingsChecks) {
    TempDir dir;
    const auto file = dir.write("a.dat", "1\r\n5\r\n");
    const auto refused = runVaro(dir, {"--set", "Thresh=1000.5", "qc", file});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.err, "Error Message: Threshold must be positive and less than 1000.\n");
    const auto accepted = runVaro(dir, {"--json", "--set", "Thresh=1000", "qc", file});
    EXPECT_EQ(accepted.exitCode, 0);
    EXPECT_EQ(nlohmann::json::parse(accepted.out)["aboveThreshold"], 0);
    const auto code = runVaro(dir, {"--json", "--set", "GlobalMissingCode=5", "qc", file});
    EXPECT_EQ(nlohmann::json::parse(code.out)["missing"], 1);
    EXPECT_FALSE(fileExists(dir.path("VARO.INI"))); // --set never writes the settings file
}

TEST(CliQc, LineFeedAndCarriageReturnFilesDrawNoLineBreakWarning) {
    TempDir dir;
    for (const char* end : {"\r\n", "\n", "\r"}) {
        std::string content;
        for (int day = 0; day < 40; ++day) {
            content += std::to_string(day) + ".25" + end;
        }
        const auto run = runVaro(dir, {"qc", dir.write("a.dat", content), "--json"});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(run.err, "");
        const auto report = nlohmann::json::parse(run.out);
        EXPECT_EQ(report["values"], 40);
        EXPECT_TRUE(report["warnings"].empty());
    }
}
