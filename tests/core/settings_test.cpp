#include "core/settings.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo::core;
using varo::testing::TempDir;

namespace {
ProgramState stateReading(const std::string& path) {
    ProgramState state;
    initialiseState(state);
    state.settingsFile = path;
    loadStartupSettings(state);
    return state;
}
} // namespace

TEST(LoadStartupSettings, WithoutYearIndicatorNothingChanges) {
    TempDir dir;
    const auto state = stateReading(dir.write("a.ini", "[VARO]\r\nThresh=5\r\nPrecN=3\r\n"));
    EXPECT_EQ(state.thresh, 0.0f);
    EXPECT_EQ(state.precN, 12);
    const auto none = stateReading(dir.path("none.ini"));
    EXPECT_EQ(none.yearIndicator, 366);
}

TEST(LoadStartupSettings, ReadsEveryKeyAndRecalculatesGlobalDays) {
    TempDir dir;
    const auto state = stateReading(dir.write(
        "a.ini",
        "[VARO]\r\nYearIndicator=360\r\nGlobalSDate=1/1/1971\r\nGlobalEDate=31/12/1980\r\n"
        "AllowNeg=False\r\nRandomSeed=Falsehood\r\nThresh=0.3\r\nGlobalMissingCode=-99.5\r\n"
        "PrecN=6.5\r\nDefaultDir= /data \r\nBiasCorrection=0.8\r\nModelTransformation=4\r\n"
        "Splash=False\r\nAICWanted=Nope\r\nOptimisationChoice=1\r\n"
        "ConditionalSelection=2\r\nConditionalThresh=0.7\r\n"));
    EXPECT_EQ(state.yearIndicator, 360);
    EXPECT_EQ(state.yearLengthRow, 2);
    EXPECT_EQ(state.globalSDate, "01/01/1971");
    EXPECT_EQ(state.globalDays, 3653);
    EXPECT_FALSE(state.allowNeg);
    EXPECT_FALSE(state.randomSeed);
    EXPECT_EQ(state.thresh, 0.3f);
    EXPECT_EQ(state.globalMissingCode, -99.5);
    EXPECT_EQ(state.precN, 6); // rounded half to even
    EXPECT_EQ(state.defaultDir, "/data");
    EXPECT_EQ(state.defaultDirInitial, "/data");
    EXPECT_EQ(state.biasCorrection, 0.8f);
    EXPECT_EQ(state.modelTransformation, 4.0f);
    EXPECT_FALSE(state.splash);
    EXPECT_FALSE(state.aicWanted);
    EXPECT_EQ(state.optimisationChoice, 1);
    EXPECT_EQ(state.conditionalSelection, 2);
    EXPECT_EQ(state.conditionalThresh, 0.7f);
}

TEST(LoadStartupSettings, UnusableValuesLeaveFieldsAlone) {
    TempDir dir;
    const auto state = stateReading(
        dir.write("a.ini", "[VARO]\r\nYearIndicator=300\r\nGlobalSDate=31/02/1971\r\nThresh=abc\r\n"
                           "AllowNeg=yes\r\nPrecN=\r\n"));
    EXPECT_EQ(state.yearIndicator, 366);
    EXPECT_EQ(state.globalSDate, "01/01/1961");
    EXPECT_EQ(state.thresh, 0.0f);
    EXPECT_TRUE(state.allowNeg);
    EXPECT_EQ(state.precN, 12);
}

TEST(LoadStartupSettings, IniFileRedirectsTheRemainingKeys) {
    TempDir dir;
    const auto second =
        dir.write("other.ini", "[VARO]\r\nThresh=9\r\nPrecN=9\r\nBiasCorrection=0.5\r\n"
                               "DefaultDir=/second\r\nApplyStepwise=True\r\n");
    const auto first =
        dir.write("first.ini", "[VARO]\r\nYearIndicator=365\r\nThresh=1\r\nPrecN=4\r\n"
                               "ApplyStepwise=False\r\nINIFile=" +
                                   second + "\r\nBiasCorrection=1.5\r\nDefaultDir=/first\r\n");
    const auto state = stateReading(first);
    EXPECT_EQ(state.yearIndicator, 365);
    EXPECT_EQ(state.thresh, 1.0f);
    EXPECT_EQ(state.precN, 4);
    EXPECT_EQ(state.settingsFile, second);
    EXPECT_EQ(state.biasCorrection, 0.5f);
    EXPECT_EQ(state.defaultDir, "/second");
    // The second reading of ApplyStepwise, from the second file, wins and forces OLS.
    EXPECT_TRUE(state.applyStepwise);
    EXPECT_EQ(state.optimisationChoice, 1);
}

TEST(LoadStartupSettings, OddValuesOfTheModelOptions) {
    TempDir dir;
    const auto state = stateReading(dir.write(
        "a.ini", "[VARO]\r\nYearIndicator=366\r\nConditionalThresh=0.99\r\nOptimisationChoice=7\r\n"
                 "ConditionalSelection=1.9\r\n"));
    EXPECT_EQ(state.conditionalThresh, 0.5f);
    EXPECT_EQ(state.optimisationChoice, 2);
    EXPECT_EQ(state.conditionalSelection, 1); // integer part of 1.9
    EXPECT_FALSE(state.applyStepwise);
}

TEST(SettingsFile, WrittenForms) {
    ProgramState state;
    initialiseState(state);
    state.thresh = 0.1f;
    EXPECT_EQ(writtenSettingValue(state, "Thresh"), ".1");
    EXPECT_EQ(writtenSettingValue(state, "GlobalMissingCode"), "-999");
    EXPECT_EQ(writtenSettingValue(state, "AllowNeg"), "True");
    EXPECT_EQ(writtenSettingValue(state, "YearIndicator"), "366");
    EXPECT_EQ(writtenSettingValue(state, "ModelTransformation"), "1");
    EXPECT_EQ(SettingsScreenKeys.size(), 8u);
    EXPECT_EQ(AdvSettingsScreenKeys.size(), 9u);
}

TEST(LoadStartupSettings, NumbersBeyondRangeAndAByteOrderMark) {
    TempDir dir;
    const auto state = stateReading(
        dir.write("VARO.INI", "\xEF\xBB\xBF[VARO]\r\nYearIndicator=360\r\nThresh=1e999\r\n"
                              "GlobalMissingCode=-1e999\r\nBiasCorrection=1.5\r\n"));
    EXPECT_EQ(state.yearIndicator, 360);
    EXPECT_EQ(state.thresh, 0.0f);
    EXPECT_EQ(state.globalMissingCode, -999.0);
    EXPECT_EQ(state.biasCorrection, 1.5f);
}

TEST(SettingsFileProblem, NamesTheFileAndWhyItIsNotUsed) {
    TempDir dir;
    const auto data = dir.write("data.dat", "1\r\n");
    EXPECT_EQ(settingsFileProblem(data), "The settings file '" + data +
                                             "' is not used: it has no [VARO] section, so it is "
                                             "not a settings file.");
    EXPECT_FALSE(settingsFileProblem(dir.path("absent.INI")));
    EXPECT_FALSE(settingsFileProblem(dir.write("VARO.INI", "[VARO]\r\n")));
}
