#include "cli_test_support.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace varo::testing;

namespace {
// Every key in its written form, in the order `settings show` lists them.
std::string everyKey(const std::string& path) {
    return "YearIndicator=360\nGlobalSDate=01/01/1971\nGlobalEDate=31/12/1980\n"
           "AllowNeg=False\nRandomSeed=False\nThresh=.3\nGlobalMissingCode=-99.5\n"
           "DefaultDir=/data/rain\nPrecN=6\nINIFile=" +
           path +
           "\nBiasCorrection=.8\nModelTransformation=7\nOptimisationChoice=1\n"
           "ConditionalSelection=2\nConditionalThresh=.7\nApplyStepwise=True\n"
           "AICWanted=False\nSplash=False\n";
}

std::string asSettingsFile(std::string lines) {
    std::string text = "[VARO]\r\n";
    for (char c : lines) {
        text += c == '\n' ? std::string("\r\n") : std::string(1, c);
    }
    return text;
}
} // namespace

TEST(CliSettings, ShowListsEveryKeyAsTheFileHoldsIt) {
    TempDir dir;
    const std::string path = dir.path("VARO.INI");
    dir.write("VARO.INI", asSettingsFile(everyKey(path)));
    const auto run = runVaro(dir, {"settings", "show"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, everyKey(path));
}

TEST(CliSettings, JsonShowHasTypedValues) {
    TempDir dir;
    const std::string path = dir.path("VARO.INI");
    dir.write("VARO.INI", asSettingsFile(everyKey(path)));
    const auto run = runVaro(dir, {"--json", "--set", "Thresh=0.1", "settings", "show"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const nlohmann::json expected = {{"YearIndicator", 360},
                                     {"GlobalSDate", "01/01/1971"},
                                     {"GlobalEDate", "31/12/1980"},
                                     {"AllowNeg", false},
                                     {"RandomSeed", false},
                                     {"Thresh", 0.1},
                                     {"GlobalMissingCode", -99.5},
                                     {"DefaultDir", "/data/rain"},
                                     {"PrecN", 6},
                                     {"INIFile", path},
                                     {"BiasCorrection", 0.8},
                                     {"ModelTransformation", 7.0},
                                     {"OptimisationChoice", 1},
                                     {"ConditionalSelection", 2},
                                     {"ConditionalThresh", 0.7},
                                     {"ApplyStepwise", true},
                                     {"AICWanted", false},
                                     {"Splash", false}};
    const auto shown = nlohmann::json::parse(run.out);
    EXPECT_EQ(shown, expected);
    EXPECT_TRUE(shown["PrecN"].is_number_integer());
    EXPECT_TRUE(shown["ModelTransformation"].is_number_float());
}

TEST(CliSettings, SetSavesAFileTheNextStartLoads) {
    TempDir dir;
    const auto saved = runVaro(dir, {"settings", "set", "YearIndicator", "360"});
    EXPECT_EQ(saved.exitCode, 0) << saved.err;
    EXPECT_EQ(saved.out, "YearIndicator saved to " + dir.path("VARO.INI") + ".\n");
    const auto shown = runVaro(dir, {"--json", "settings", "show"});
    EXPECT_EQ(nlohmann::json::parse(shown.out)["YearIndicator"], 360);
}

TEST(CliSettings, SetRefusesABadValueAndSavesNothing) {
    TempDir dir;
    const auto refused = runVaro(dir, {"settings", "set", "ConditionalThresh", "0.99"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(refused.err,
              "Error Message: Conditional threshold must be a value between 0.05 and 0.95.\n");
    EXPECT_EQ(nlohmann::json::parse(
                  runVaro(dir, {"--json", "settings", "show"}).out)["ConditionalThresh"],
              0.5);
}

TEST(CliSettings, ResetWritesFactoryValuesWithDualSimplex) {
    TempDir dir;
    runVaro(dir, {"settings", "set", "Thresh", "2"});
    const auto reset = runVaro(dir, {"settings", "reset"});
    EXPECT_EQ(reset.exitCode, 0);
    EXPECT_NE(reset.out.find("Settings saved to "), std::string::npos);
    EXPECT_NE(reset.out.find("Advanced settings saved to "), std::string::npos);
    const auto settings = nlohmann::json::parse(runVaro(dir, {"--json", "settings", "show"}).out);
    EXPECT_EQ(settings["Thresh"], 0.0);
    EXPECT_EQ(settings["OptimisationChoice"], 2);
}

TEST(CliSettings, GarbageSettingsFileNeverStopsAStart) {
    TempDir dir;
    dir.write("VARO.INI", "no section here\r\n=\r\n[VARO\r\nYearIndicator=abc\r\n\x01\x02\r\n");
    const auto run = runVaro(dir, {"--json", "settings", "show"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(nlohmann::json::parse(run.out)["YearIndicator"], 366);
}

TEST(CliUsage, UnknownCommandsAndOptionsAreRefused) {
    TempDir dir;
    EXPECT_EQ(runVaro(dir, {"frobnicate"}).exitCode, 2);
    EXPECT_EQ(runVaro(dir, {"qc"}).exitCode, 2);
    EXPECT_EQ(runVaro(dir, {"--set", "nonsense", "settings", "show"}).exitCode, 2);
    const auto help = runVaro(dir, {"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("qc"), std::string::npos);
}

// Paths are stored as they resolve where they were given, so that the settings file still
// names itself and the folder after a `cd`.
TEST(CliSettings, RelativeSettingsPathsAreStoredAbsoluteAndSurviveACd) {
    TempDir dir;
    const std::filesystem::path home = dir.folder();
    {
        WorkingFolder here(home);
        const auto set = runVaroAsTyped(
            {"--settings", "study/VARO.INI", "settings", "set", "DefaultDir", "study/./data"});
        ASSERT_EQ(set.exitCode, 0) << set.err;
        EXPECT_EQ(set.out, "DefaultDir saved to " + (home / "study/VARO.INI").string() + ".\n");
    }
    const std::string written = readFile((home / "study/VARO.INI").string());
    EXPECT_NE(written.find("INIFile=" + (home / "study/VARO.INI").string() + "\r\n"),
              std::string::npos)
        << written;
    EXPECT_NE(written.find("DefaultDir=" + (home / "study/data").string() + "\r\n"),
              std::string::npos)
        << written;

    // After the cd the file is found by its new relative name and keeps naming itself.
    WorkingFolder inside(home / "study");
    const auto again = runVaroAsTyped({"--settings", "VARO.INI", "settings", "set", "Thresh", "2"});
    ASSERT_EQ(again.exitCode, 0) << again.err;
    EXPECT_EQ(again.out, "Thresh saved to " + (home / "study/VARO.INI").string() + ".\n");
    EXPECT_FALSE(fileExists((home / "study/study/VARO.INI").string()));
    const auto shown = nlohmann::json::parse(
        runVaroAsTyped({"--settings", "VARO.INI", "--json", "settings", "show"}).out);
    EXPECT_EQ(shown["Thresh"], 2.0);
    EXPECT_EQ(shown["DefaultDir"], (home / "study/data").string());

    std::filesystem::create_directories(home / "other");
    const auto redirected = runVaroAsTyped(
        {"--settings", "VARO.INI", "settings", "set", "INIFile", "../other/VARO.INI"});
    ASSERT_EQ(redirected.exitCode, 0) << redirected.err;
    EXPECT_EQ(redirected.out, "INIFile saved to " + (home / "other/VARO.INI").string() + ".\n");
}
