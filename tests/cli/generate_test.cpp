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
    const std::string sim = " 2 \r\n 12 \r\n 366 \r\n01/01/1960\r\n 365 \r\n#FALSE#\r\n 20 \r\n";
    EXPECT_EQ(readFile(dir.path("run.SIM")).substr(0, sim.size()), sim);
}

TEST(CliGenerate, RefusedInputExitsTwoWithTheScreensMessage) {
    TempDir dir;
    const auto model = writeLongModel(dir);
    const auto refusal = [&](std::vector<std::string> extra) {
        std::vector<std::string> args = {"generate",   model, "--predictors",
                                         dir.folder(), "-o",  dir.path("run.OUT")};
        args.insert(args.end(), extra.begin(), extra.end());
        const auto run = runVaro(dir, args);
        EXPECT_EQ(run.exitCode, 2) << run.err;
        EXPECT_FALSE(fileExists(dir.path("run.OUT")));
        return run.err;
    };
    EXPECT_EQ(refusal({"--ensemble", "0"}),
              "Error Message: Ensemble Size must be between 1 and 100.\n");
    EXPECT_EQ(refusal({"--ensemble", "many"}),
              "Error Message: Ensemble Size must be a value between 1 and 100.\n");
    EXPECT_EQ(refusal({"--start", "30/02/1960"}),
              "Error Message: Fit start date is invalid - it must be in the format dd/mm/yyyy.\n");
    EXPECT_EQ(refusal({"--start", "31/12/1959"}),
              "Warning: Fit start date should be later than record start date.\n");
    EXPECT_EQ(refusal({"--start", "01/01/1960", "--days", "10001"}),
              "Warning: Fit length should be shorter than record length.\n");

    const auto wrongKind = runVaro(dir, {"generate", dir.path("model.Par"), "--predictors",
                                         dir.folder(), "-o", dir.path("run.OUT")});
    EXPECT_EQ(wrongKind.exitCode, 2);
    EXPECT_EQ(wrongKind.err, "Error Message: You must select a .PAR file.\n");
}

TEST(CliGenerate, BadFilesExitOneAndLeaveOnlyWhatTheRunHadOpened) {
    TempDir dir;
    const auto model = writeLongModel(dir);
    const std::string text = readFile(model);
    const auto run = [&](const std::string& par, const std::string& folder) {
        return runVaro(dir, {"generate", par, "--predictors", folder, "-o", dir.path("run.OUT"),
                             "--start", "01/01/1960", "--days", "30"});
    };

    const auto noPredictors = run(model, dir.path("elsewhere"));
    EXPECT_EQ(noPredictors.exitCode, 1);
    EXPECT_NE(noPredictors.err.find("\nFile not found.\nreg_p1.dat.  Check Predictor Directory is "
                                    "set correctly and/or file exists in archive.\n"),
              std::string::npos);
    EXPECT_FALSE(fileExists(dir.path("run.OUT")));
    EXPECT_FALSE(fileExists(dir.path("run.SIM")));

    std::string garbled = text;
    garbled.replace(garbled.find("0.750"), 5, "0.7S0");
    const auto badField = run(dir.write("garbled.PAR", garbled), dir.folder());
    EXPECT_EQ(badField.exitCode, 1);
    EXPECT_NE(badField.err.find("Column 2 (characters 15 to 28) of line 15 of '" +
                                dir.path("garbled.PAR") + "' holds '0.7S0', not a number"),
              std::string::npos)
        << badField.err;
    // The run had created both files before it read the rows; they stay, empty.
    EXPECT_EQ(readFile(dir.path("run.OUT")), "");
    EXPECT_EQ(readFile(dir.path("run.SIM")), "");

    const auto truncated =
        run(dir.write("cut.PAR", text.substr(0, text.find("01/01/1960"))), dir.folder());
    EXPECT_EQ(truncated.exitCode, 1);
    EXPECT_NE(truncated.err.find("Input past end of file."), std::string::npos);
    EXPECT_NE(truncated.err.find("cut.PAR' ends after line 3."), std::string::npos);

    dir.write("reg_p2.dat", "1\r\n2\r\n");
    const auto shortPredictor = run(model, dir.folder());
    EXPECT_EQ(shortPredictor.exitCode, 1);
    EXPECT_NE(shortPredictor.err.find("Reading past the end of '" + dir.path("reg_p2.dat")),
              std::string::npos);
    EXPECT_EQ(countLines(readFile(dir.path("run.OUT"))), 2);
    EXPECT_EQ(readFile(dir.path("run.SIM")), "");
}
