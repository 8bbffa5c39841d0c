#include "cli_test_support.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo::testing;

namespace {

const std::string Data = std::string(VARO_TEST_DATA) + "/weathergen";

// reg.PAR with two predictor files of 400 days from 01/01/1960 in the test's folder.
std::string writeLongModel(const TempDir& dir) {
    std::string values;
    for (int day = 0; day < 400; ++day) {
        values += std::to_string(day % 7) + ".5\r\n";
    }
    dir.write("reg_p1.dat", values);
    dir.write("reg_p2.dat", values);
    return dir.write("reg.PAR", readFile(Data + "/reg.PAR"));
}

int countLines(const std::string& text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

TEST(CliGenerate, RepeatsTheReferenceRunToTheByte) {
    TempDir dir;
    const auto run = runVaro(dir, {"--set",        "RandomSeed=False",
                                   "--set",        "YearIndicator=360",
                                   "--set",        "Thresh=0.1",
                                   "--set",        "AllowNeg=False",
                                   "generate",     Data + "/stochastic.PAR",
                                   "--predictors", Data,
                                   "-o",           dir.path("run.OUT"),
                                   "--start",      "15/01/1961",
                                   "--days",       "60",
                                   "--ensemble",   "5"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "Synthesis completed.\n");
    EXPECT_EQ(readFile(dir.path("run.OUT")), readFile(Data + "/stochastic.OUT"));
    EXPECT_EQ(readFile(dir.path("run.SIM")), readFile(Data + "/stochastic.SIM"));
}

TEST(CliGenerate, DefaultsAreTheScreensStartLengthAndEnsemble) {
    TempDir dir;
    const auto model = writeLongModel(dir);
    const auto run = runVaro(dir, {"--json", "--set", "GlobalSDate=01/01/1960", "generate", model,
                                   "--predictors", dir.folder(), "-o", dir.path("run.OUT")});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto report = nlohmann::json::parse(run.out);
    EXPECT_EQ(report["start"], "01/01/1960");
    EXPECT_EQ(report["days"], 365);
    EXPECT_EQ(report["ensemble"], 20);
    EXPECT_EQ(report["process"], "Unconditional");
    EXPECT_EQ(report["autoregressive"], true);
    EXPECT_EQ(report["predictors"], (nlohmann::json{"reg_p1.dat", "reg_p2.dat"}));
    const std::string out = readFile(dir.path("run.OUT"));
    EXPECT_EQ(countLines(out), 365);
    EXPECT_EQ(out.find("\r\n"), 20u * 14);
}

TEST(CliGenerate, ARefusedModelExitsTwoAndAFailedRunOneWithoutFiles) {
    TempDir dir;
    const auto model = writeLongModel(dir);
    const auto run = [&](const std::string& par, const std::string& folder) {
        return runVaro(dir, {"generate", par, "--predictors", folder, "-o", dir.path("run.OUT"),
                             "--start", "01/01/1960", "--days", "30"});
    };
    const auto wrongKind = run(dir.path("model.Par"), dir.folder());
    EXPECT_EQ(wrongKind.exitCode, 2);
    EXPECT_EQ(wrongKind.err, "Error Message: You must select a .PAR file.\n");

    const auto noPredictors = run(model, dir.path("elsewhere"));
    EXPECT_EQ(noPredictors.exitCode, 1);
    EXPECT_NE(noPredictors.err.find("\nFile not found.\nreg_p1.dat.  Check Predictor Directory is "
                                    "set correctly and/or file exists in archive.\n"),
              std::string::npos);
    EXPECT_FALSE(fileExists(dir.path("run.OUT")));
    EXPECT_FALSE(fileExists(dir.path("run.SIM")));
}
