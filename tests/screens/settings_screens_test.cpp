#include "core/settings.hpp"
#include "screens/settings_screens.hpp"
#include "support/scripted_dialogs.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <functional>

using namespace varo;
using varo::testing::readFile;
using varo::testing::ScriptedDialogs;
using varo::testing::TempDir;

namespace {
struct SettingsFixture : ::testing::Test {
    core::ProgramState state;
    ScriptedDialogs dialogs;
    TempDir dir;
    SettingsFixture() {
        core::initialiseState(state);
        state.settingsFile = dir.path("VARO.INI");
        state.defaultSettingsFile = state.settingsFile;
    }
};
} // namespace

// Each entry field that holds a settings key: a value that passes goes into the state, a
// refused one shows its message and the last good value comes back.
TEST_F(SettingsFixture, KeyFieldsSetTheStateOrRestoreTheLastGoodValue) {
    screens::SettingsScreen settings(state);
    screens::AdvSettingsScreen advanced(state);
    struct Case {
        screens::TextField* field;
        std::function<bool()> check;
        std::string_view key;
        std::string good;
        std::string written; // the key's written form after the good value
        std::string bad;
    };
    const Case cases[] = {
        {&settings.missingCodeText, [&] { return settings.checkMissingCode(dialogs); },
         "GlobalMissingCode", "-99", "-99", "x"},
        {&settings.rainThreshText, [&] { return settings.checkThreshold(dialogs); }, "Thresh",
         "1000", "1000", "1000.5"},
        {&settings.sDateText, [&] { return settings.checkStartDate(dialogs); }, "GlobalSDate",
         "1/1/1971", "01/01/1971", "01/01/1995"},
        {&settings.eDateText, [&] { return settings.checkEndDate(dialogs); }, "GlobalEDate",
         "31/12/1980", "31/12/1980", "31/02/1980"},
        {&advanced.biasText, [&] { return advanced.checkBias(dialogs); }, "BiasCorrection", "1.99",
         "1.99", "2"},
        {&advanced.precRndText, [&] { return advanced.checkPrecRnd(dialogs); }, "PrecN", "6.5", "6",
         "100.5"},
        {&advanced.conditionalThreshText, [&] { return advanced.checkConditionalThresh(dialogs); },
         "ConditionalThresh", "0.95", ".95", "0.04"},
    };
    for (const Case& c : cases) {
        c.field->text = c.good;
        EXPECT_TRUE(c.check()) << c.key;
        EXPECT_EQ(core::writtenSettingValue(state, c.key), c.written) << c.key;
        const std::string shown = c.field->text;
        const size_t boxes = dialogs.errors().size();
        c.field->text = c.bad;
        EXPECT_FALSE(c.check()) << c.key;
        EXPECT_EQ(dialogs.errors().size(), boxes + 1) << c.key;
        EXPECT_EQ(c.field->text, shown) << c.key;
        EXPECT_EQ(core::writtenSettingValue(state, c.key), c.written) << c.key;
    }
    // The variance inflation shows the integer it became.
    EXPECT_EQ(advanced.precRndText.text, "6");
}

TEST_F(SettingsFixture, StartAfterEndRestoresAndStoresTheRestoredDate) {
    screens::SettingsScreen screen(state);
    screen.sDateText.text = "01/01/1995";
    EXPECT_FALSE(screen.checkStartDate(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Start date should be earlier than end date.");
    EXPECT_EQ(screen.sDateText.text, "01/01/1961");
    EXPECT_EQ(core::formatDate(state.globalSDate), "01/01/1961");
    screen.sDateText.text = "1/1/1971";
    EXPECT_TRUE(screen.checkStartDate(dialogs));
    EXPECT_EQ(core::formatDate(state.globalSDate), "01/01/1971");
    EXPECT_EQ(core::globalDays(state), 7305);
    screen.eDateText.text = "31/02/1990";
    EXPECT_FALSE(screen.checkEndDate(dialogs));
    EXPECT_EQ(dialogs.lastText(), "End date is invalid - it must be in the format dd/mm/yyyy.");
    screen.eDateText.text = "01/01/1971";
    EXPECT_FALSE(screen.checkEndDate(dialogs));
    EXPECT_EQ(dialogs.lastText(), "End date should be later than start date.");
}

TEST_F(SettingsFixture, ApplyChecksInOrderAndStopsAtTheFirstRefusal) {
    screens::SettingsScreen screen(state);
    screen.missingCodeText.text = "abc";
    screen.rainThreshText.text = "-1";
    EXPECT_FALSE(screen.apply(dialogs));
    ASSERT_EQ(dialogs.errors().size(), 1u);
    EXPECT_EQ(dialogs.errors()[0], "Missing data identifier must be a number.");
    screen.selectYearDays(2);
    EXPECT_FALSE(screen.apply(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Threshold must be positive and less than 1000.");
    EXPECT_EQ(state.yearIndicator, 360);
}

TEST_F(SettingsFixture, SaveWritesEightKeysInOrderAndLoadReadsThemBack) {
    screens::SettingsScreen screen(state);
    screen.selectYearDays(1);
    screen.rainThreshText.text = "0.3";
    screen.setAllowNeg(false);
    screen.save(dialogs);
    EXPECT_EQ(dialogs.messages.back().title, "Settings Saved");
    EXPECT_EQ(dialogs.lastText(), "Settings saved to " + state.settingsFile + ".");
    EXPECT_EQ(readFile(state.settingsFile),
              "[VARO]\r\nYearIndicator=365\r\nGlobalSDate=01/01/1961\r\nGlobalEDate=31/12/1990\r\n"
              "AllowNeg=False\r\nRandomSeed=True\r\nThresh=.3\r\nGlobalMissingCode=-999\r\n"
              "DefaultDir=" +
                  state.defaultDir + "\r\n");
    screen.reset();
    EXPECT_EQ(state.yearIndicator, 366);
    EXPECT_EQ(state.thresh, 0.0f);
    EXPECT_EQ(screen.rainThreshText.text, "0");
    screen.load(dialogs);
    EXPECT_EQ(state.yearIndicator, 365);
    EXPECT_EQ(state.thresh, 0.3f);
    EXPECT_FALSE(state.allowNeg);
    EXPECT_EQ(screen.yearDays, 1);
}

TEST_F(SettingsFixture, LoadReportsEachUnusableKeyAndStopsWithoutYearIndicator) {
    dir.write("VARO.INI", "[VARO]\r\nYearIndicator=364\r\nGlobalSDate=x\r\nThresh=0.5\r\n");
    screens::SettingsScreen screen(state);
    screen.load(dialogs);
    const auto errors = dialogs.errors();
    const std::string path = state.settingsFile;
    ASSERT_EQ(errors.size(), 7u);
    EXPECT_EQ(errors[0], "Sorry - unable to load year indicator data from " + path + ".");
    EXPECT_EQ(errors[1], "Sorry - unable to load start date from " + path + ".");
    EXPECT_EQ(errors[2], "Sorry - unable to load end date from " + path + ".");
    EXPECT_EQ(errors[6], "Sorry - unable to load 'Missing Data Identifier' from " + path + ".");
    EXPECT_EQ(state.thresh, 0.5f);
    EXPECT_EQ(state.yearIndicator, 366);

    ScriptedDialogs fresh;
    dir.write("VARO.INI", "[VARO]\r\nThresh=0.7\r\n");
    screen.load(fresh);
    ASSERT_EQ(fresh.errors().size(), 1u);
    EXPECT_EQ(fresh.errors()[0], "Sorry - unable to load data from " + path + ".");
    EXPECT_EQ(state.thresh, 0.5f);
}

TEST_F(SettingsFixture, FailedSaveSaysWhereAndLeavesNoFile) {
    state.settingsFile = "/proc/varo-no-such-place/VARO.INI";
    screens::SettingsScreen screen(state);
    screen.save(dialogs);
    EXPECT_EQ(dialogs.lastText(),
              "Sorry, unable to save data to /proc/varo-no-such-place/VARO.INI.\r\n"
              "Please check file name and path in advanced settings.");
}

// A save never writes into a file that is no settings file; the required text is followed
// by what is wrong, and the file stays as it was.
TEST_F(SettingsFixture, SaveIntoAFileThatIsNoSettingsFileSaysWhyAndChangesNothing) {
    const std::string data = "1.5\r\n2.5\r\n";
    state.settingsFile = dir.write("rain.dat", data);
    const std::string why = "\r\nThe settings file '" + state.settingsFile +
                            "' is not used: it has no [VARO] section, so it is not a settings "
                            "file.";
    screens::SettingsScreen settings(state);
    EXPECT_FALSE(settings.save(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Sorry, unable to save data to " + state.settingsFile +
                                      ".\r\nPlease check file name and path in advanced "
                                      "settings." +
                                      why);
    screens::AdvSettingsScreen advanced(state);
    EXPECT_FALSE(advanced.save(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Sorry, unable to save data to " + state.settingsFile +
                                      ".\r\nPlease check file name and path of settings file." +
                                      why);
    EXPECT_EQ(readFile(state.settingsFile), data);
    state.settingsFile = dir.write("empty.INI", "");
    EXPECT_TRUE(settings.save(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Settings saved to " + state.settingsFile + ".");
}

TEST_F(SettingsFixture, ApplyChecksTheMonthProfileByName) {
    screens::AdvSettingsScreen screen(state);
    screen.zomText[8].text = "101";
    EXPECT_FALSE(screen.apply(dialogs));
    EXPECT_EQ(dialogs.lastText(), "Modification value for September must be between 0 and 100.");
    screen.zomText[8].text = "40";
    EXPECT_TRUE(screen.apply(dialogs));
    EXPECT_EQ(state.monthModification[8], 40.0f);
}

TEST_F(SettingsFixture, StepwiseAndDualSimplexExcludeEachOther) {
    screens::AdvSettingsScreen screen(state);
    screen.selectOptimisation(1);
    EXPECT_EQ(state.optimisationChoice, 2);
    screen.setStepwise(true);
    EXPECT_TRUE(state.applyStepwise);
    EXPECT_EQ(state.optimisationChoice, 1);
    EXPECT_EQ(screen.optimisationOption, 0);
    screen.selectOptimisation(1);
    EXPECT_FALSE(state.applyStepwise);
    EXPECT_FALSE(screen.stepwiseCheck);
}

TEST_F(SettingsFixture, AicOptionOnlyShowsTheCriterion) {
    screens::AdvSettingsScreen screen(state);
    screen.selectAic(1);
    EXPECT_TRUE(state.aicWanted);
    screen.save(dialogs);
    EXPECT_EQ(core::readSetting(state.settingsFile, "AICWanted"), "True");
}

TEST_F(SettingsFixture, ResetSelectsDualSimplexAndKeepsTheConditionalThreshold) {
    state.conditionalThresh = 0.7f;
    state.precN = 3;
    state.settingsFile = dir.path("other.ini");
    screens::AdvSettingsScreen screen(state);
    screen.reset();
    EXPECT_EQ(state.optimisationChoice, 2);
    EXPECT_EQ(state.conditionalThresh, 0.7f);
    EXPECT_EQ(state.precN, 12);
    EXPECT_EQ(state.settingsFile, state.defaultSettingsFile);
    EXPECT_EQ(screen.zomText[0].text, "0");
}

// A ModelTransformation that names no transformation is kept and selects no option; an
// option sets the code of its transformation.
TEST_F(SettingsFixture, TransformationOptionsFollowTheCode) {
    dir.write("VARO.INI", "[VARO]\r\nPrecN=8\r\nModelTransformation=7\r\n");
    screens::AdvSettingsScreen screen(state);
    screen.load(dialogs);
    EXPECT_EQ(screen.transOption, -1);
    EXPECT_EQ(screen.precRndText.text, "8");
    EXPECT_EQ(core::writtenSettingValue(state, "ModelTransformation"), "7");
    screen.selectTransformation(4);
    EXPECT_EQ(state.modelTransformation.code(), core::TransformBoxCox);
    dir.write("VARO.INI", "[VARO]\r\nPrecN=8\r\nModelTransformation=3\r\n");
    screen.load(dialogs);
    EXPECT_EQ(screen.transOption, 2);
}

TEST_F(SettingsFixture, AdvancedSaveWritesNineKeys) {
    screens::AdvSettingsScreen screen(state);
    screen.save(dialogs);
    EXPECT_EQ(dialogs.lastText(), "Advanced settings saved to " + state.settingsFile + ".");
    EXPECT_EQ(readFile(state.settingsFile),
              "[VARO]\r\nPrecN=12\r\nINIFile=" + state.settingsFile +
                  "\r\nBiasCorrection=1\r\nModelTransformation=1\r\nOptimisationChoice=1\r\n"
                  "ConditionalSelection=1\r\nConditionalThresh=.5\r\nApplyStepwise=False\r\n"
                  "AICWanted=True\r\n");
}
