#include "core/ini_file.hpp"
#include "core/settings.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

using namespace varo::core;
using varo::testing::readFile;
using varo::testing::TempDir;

namespace {

ProgramState factoryState(const std::string& settingsFile) {
    ProgramState state;
    initialiseState(state);
    state.settingsFile = settingsFile;
    state.defaultSettingsFile = settingsFile;
    return state;
}

ProgramState stateReading(const std::string& path) {
    ProgramState state = factoryState(path);
    loadStartupSettings(state);
    return state;
}

// A settings file with the one key, after the first key of each load (at their factory
// values), which the loads need in order to go on.
std::string fileWith(const TempDir& dir, std::string_view key, const std::string& value) {
    std::string text = "[VARO]\r\n";
    if (key != "YearIndicator") {
        text += "YearIndicator=366\r\n";
    }
    if (key != "PrecN") {
        text += "PrecN=12\r\n";
    }
    return dir.write("VARO.INI", text + std::string(key) + "=" + value + "\r\n");
}

bool contains(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

// A value as a settings file holds it, and the written form of the key after the load at
// start and after its screen's Load; nothing where the load passes the value over.
struct ReadCase {
    std::string_view key;
    std::string value;
    std::optional<std::string> atStart;
    std::optional<std::string> onLoad;
};

const ReadCase ReadCases[] = {
    {"YearIndicator", "360", "360", "360"},
    {"YearIndicator", "359.6", "360", std::nullopt}, // the screen tests the range, then rounds
    {"YearIndicator", "364", std::nullopt, std::nullopt},
    {"YearIndicator", "abc", std::nullopt, std::nullopt},
    {"GlobalSDate", "1/1/1971", "01/01/1971", "01/01/1971"},
    {"GlobalSDate", "31/02/1971", std::nullopt, std::nullopt},
    {"GlobalEDate", "31/12/1980", "31/12/1980", "31/12/1980"},
    {"GlobalEDate", "1980", std::nullopt, std::nullopt},
    {"AllowNeg", "False", "False", "False"},
    {"AllowNeg", "Falsehood", "False", "False"},
    {"AllowNeg", "false", std::nullopt, std::nullopt},
    {"AllowNeg", "Fals", std::nullopt, std::nullopt},
    {"RandomSeed", "False", "False", "False"},
    {"RandomSeed", "no", std::nullopt, std::nullopt},
    {"Thresh", "0.3", ".3", ".3"},
    {"Thresh", "1e999", std::nullopt, std::nullopt},
    {"Thresh", "abc", std::nullopt, std::nullopt},
    {"GlobalMissingCode", "-99.5", "-99.5", "-99.5"},
    {"GlobalMissingCode", "", std::nullopt, std::nullopt},
    {"DefaultDir", "/data/rain", "/data/rain", "/data/rain"},
    {"PrecN", "6.5", "6", "6"},
    {"PrecN", "x", std::nullopt, std::nullopt},
    {"INIFile", "/nowhere/OTHER.INI", "/nowhere/OTHER.INI", "/nowhere/OTHER.INI"},
    {"INIFile", "", std::nullopt, std::nullopt},
    {"BiasCorrection", "0.8", ".8", ".8"},
    {"BiasCorrection", "0", "0", "0"}, // no range test on loading
    {"BiasCorrection", "x", std::nullopt, std::nullopt},
    {"ModelTransformation", "4", "4", "4"},
    {"ModelTransformation", "7", "7", "7"}, // names no transformation, but is kept
    {"ModelTransformation", "abc", std::nullopt, std::nullopt},
    {"OptimisationChoice", "2", "2", "2"},
    {"OptimisationChoice", "7", "2", std::nullopt},
    {"OptimisationChoice", "1.9", "1", std::nullopt},
    {"OptimisationChoice", "x", std::nullopt, std::nullopt},
    {"ConditionalSelection", "2", "2", "2"},
    {"ConditionalSelection", "1.9", "1", std::nullopt},
    {"ConditionalSelection", "x", std::nullopt, std::nullopt},
    {"ConditionalThresh", "0.7", ".7", ".7"},
    {"ConditionalThresh", "0.99", ".5", ".99"}, // range-tested at start only
    {"ConditionalThresh", "0.96", ".5", ".96"},
    {"ConditionalThresh", "0.95", ".95", ".95"},
    {"ConditionalThresh", "0.05", ".05", ".05"},
    {"ConditionalThresh", "0.04", ".5", ".04"},
    {"ConditionalThresh", "x", std::nullopt, std::nullopt},
    {"ApplyStepwise", "True", "True", "True"},
    {"ApplyStepwise", "yes", std::nullopt, std::nullopt},
    {"AICWanted", "False", "False", "False"},
    {"AICWanted", "Nope", "False", std::nullopt}, // at start only "True" is true
    {"AICWanted", "Tru", "False", std::nullopt},
    {"Splash", "False", "False", std::nullopt},
    {"Splash", "Nope", "False", std::nullopt},
};

std::string caseName(const ReadCase& c) {
    return std::string(c.key) + "=" + c.value;
}

} // namespace

TEST(SettingsTable, TheLoadAtStartReadsEveryKeyAndPassesOverUnusableValues) {
    TempDir dir;
    const std::string factoryPath = dir.path("VARO.INI");
    const ProgramState factory = factoryState(factoryPath);
    for (const ReadCase& c : ReadCases) {
        const ProgramState state = stateReading(fileWith(dir, c.key, c.value));
        const std::string expected = c.atStart.value_or(writtenSettingValue(factory, c.key));
        EXPECT_EQ(writtenSettingValue(state, c.key), expected) << caseName(c);
    }
}

TEST(SettingsTable, AScreenLoadReadsItsKeysAndReportsEachUnusableOne) {
    TempDir dir;
    for (const ReadCase& c : ReadCases) {
        const SettingKey& key = settingKey(c.key);
        if (key.screen == SettingScreen::Intro) {
            continue;
        }
        const std::string path = fileWith(dir, c.key, c.value);
        ProgramState state = factoryState(path);
        const ProgramState before = state;
        const auto refusals = loadScreenSettings(state, key.screen);
        const std::string refusal = std::string(key.loadMessage) + path + ".";
        EXPECT_EQ(contains(refusals, refusal), !c.onLoad) << caseName(c);
        const std::string expected = c.onLoad.value_or(writtenSettingValue(before, c.key));
        EXPECT_EQ(writtenSettingValue(state, c.key), expected) << caseName(c);
    }
}

TEST(SettingsTable, EachLoadReportsInItsOwnOrderAndStopsWithoutItsFirstKey) {
    TempDir dir;
    const std::string path = dir.write("VARO.INI", "[VARO]\r\nYearIndicator=1\r\nPrecN=x\r\n");
    const std::string from = " from " + path + ".";
    const std::vector<std::string> settings = {
        "Sorry - unable to load year indicator data" + from,
        "Sorry - unable to load start date" + from,
        "Sorry - unable to load end date" + from,
        "Sorry - unable to load 'Allow Negative' indicator" + from,
        "Sorry - unable to load 'Random Seed' indicator" + from,
        "Sorry - unable to load threshold value" + from,
        "Sorry - unable to load default directory" + from,
        "Sorry - unable to load 'Missing Data Identifier'" + from};
    const std::vector<std::string> advanced = {
        "Sorry - unable to load variance inflator value" + from,
        "Sorry - unable to load settings file name" + from,
        "Sorry - unable to load unconditional bias correction value" + from,
        "Sorry - unable to load model transformation value" + from,
        "Sorry - unable to load model optimisation option" + from,
        "Sorry - unable to load stepwise indicator value" + from,
        "Sorry - unable to load AIC/BIC indicator value" + from,
        "Sorry - unable to load conditional selection option" + from,
        "Sorry - unable to load conditional threshold value" + from};
    ProgramState state = factoryState(path);
    EXPECT_EQ(loadScreenSettings(state, SettingScreen::Settings), settings);
    EXPECT_EQ(loadScreenSettings(state, SettingScreen::AdvSettings), advanced);
    EXPECT_TRUE(loadScreenSettings(state, SettingScreen::Intro).empty());

    dir.write("VARO.INI", "[VARO]\r\nThresh=5\r\nBiasCorrection=0.5\r\n");
    const std::vector<std::string> noData = {"Sorry - unable to load data" + from};
    EXPECT_EQ(loadScreenSettings(state, SettingScreen::Settings), noData);
    EXPECT_EQ(loadScreenSettings(state, SettingScreen::AdvSettings), noData);
    EXPECT_EQ(state.thresh, 0.0f);
    EXPECT_EQ(state.biasCorrection, 1.0f);
}

namespace {

// A value typed for a key (`--set`): the written form it gives (nothing when it changes
// nothing) or the message that refuses it.
struct SetCase {
    std::string_view key;
    std::string value;
    std::optional<std::string> written;
    std::optional<std::string> refusal;
};

SetCase accepted(std::string_view key, std::string value, std::optional<std::string> written) {
    return {key, std::move(value), std::move(written), std::nullopt};
}
SetCase refused(std::string_view key, std::string value, std::string refusal) {
    return {key, std::move(value), std::nullopt, std::move(refusal)};
}

const std::string StartInvalid = "Start date is invalid - it must be in the format dd/mm/yyyy.";
const std::string EndInvalid = "End date is invalid - it must be in the format dd/mm/yyyy.";
const std::string ThreshRange = "Threshold must be positive and less than 1000.";
const std::string PrecNRange = "Random number size must be a value between 0 and 100.";
const std::string BiasRange = "Bias correction must be positive and less than two.";
const std::string ConditionalRange = "Conditional threshold must be a value between 0.05 and 0.95.";

const SetCase SetCases[] = {
    accepted("YearIndicator", "365", "365"),
    accepted("YearIndicator", "360.0", "360"),
    refused("YearIndicator", "364", "YearIndicator must be 366, 365 or 360."),
    refused("YearIndicator", "366abc", "YearIndicator must be 366, 365 or 360."),
    accepted("GlobalSDate", "1/1/1971", "01/01/1971"),
    accepted("GlobalSDate", "30/12/1990", "30/12/1990"),
    refused("GlobalSDate", "01/01/1991", "Start date should be earlier than end date."),
    refused("GlobalSDate", "31/12/1990", "Start date should be earlier than end date."),
    refused("GlobalSDate", "29/02/1961", StartInvalid),
    refused("GlobalSDate", "", StartInvalid),
    accepted("GlobalEDate", "02/01/1961", "02/01/1961"),
    refused("GlobalEDate", "01/01/1961", "End date should be later than start date."),
    refused("GlobalEDate", "31/02/1990", EndInvalid),
    accepted("AllowNeg", "false", "False"),
    accepted("AllowNeg", "FALSE", "False"),
    refused("AllowNeg", "Falsehood", "AllowNeg must be True or False."),
    accepted("RandomSeed", "False", "False"),
    refused("RandomSeed", "", "RandomSeed must be True or False."),
    accepted("Thresh", "1000", "1000"),
    accepted("Thresh", "0.25", ".25"),
    refused("Thresh", "1000.5", ThreshRange),
    refused("Thresh", "-0.1", ThreshRange),
    refused("Thresh", "", "Threshold must be a value."),
    accepted("GlobalMissingCode", "-99.5", "-99.5"),
    refused("GlobalMissingCode", "abc", "Missing data identifier must be a number."),
    refused("GlobalMissingCode", "1e999", "Missing data identifier must be a number."),
    accepted("DefaultDir", "/data/./rain/../snow", "/data/snow"),
    accepted("PrecN", "6.5", "6"),
    accepted("PrecN", "100", "100"),
    accepted("PrecN", "0", "0"),
    refused("PrecN", "100.5", PrecNRange),
    refused("PrecN", "-1", PrecNRange),
    accepted("INIFile", "/data/../OTHER.INI", "/OTHER.INI"),
    accepted("INIFile", "", std::nullopt),
    accepted("BiasCorrection", "1.99", "1.99"),
    refused("BiasCorrection", "2", BiasRange),
    refused("BiasCorrection", "0", BiasRange),
    refused("BiasCorrection", "x", "Bias correction must be a value less than two."),
    accepted("ModelTransformation", "5", "5"),
    refused("ModelTransformation", "2.5", "ModelTransformation must be 1, 2, 3, 4 or 5."),
    refused("ModelTransformation", "6", "ModelTransformation must be 1, 2, 3, 4 or 5."),
    accepted("OptimisationChoice", "2", "2"),
    refused("OptimisationChoice", "3", "OptimisationChoice must be 1 or 2."),
    accepted("ConditionalSelection", "2", "2"),
    refused("ConditionalSelection", "0", "ConditionalSelection must be 1 or 2."),
    accepted("ConditionalThresh", "0.95", ".95"),
    accepted("ConditionalThresh", "0.05", ".05"),
    refused("ConditionalThresh", "0.99", ConditionalRange),
    refused("ConditionalThresh", "0.04", ConditionalRange),
    accepted("ApplyStepwise", "TRUE", "True"),
    refused("ApplyStepwise", "1", "ApplyStepwise must be True or False."),
    accepted("AICWanted", "false", "False"),
    refused("AICWanted", "no", "AICWanted must be True or False."),
    accepted("Splash", "False", "False"),
    refused("Splash", "0", "Splash must be True or False."),
};

} // namespace

TEST(SettingsTable, ATypedValueIsCheckedAndSetOrRefusedWithTheKeysMessage) {
    const ProgramState factory = factoryState("/settings/VARO.INI");
    for (const SetCase& c : SetCases) {
        ProgramState state = factory;
        const std::string label = std::string(c.key) + "=" + c.value;
        EXPECT_EQ(assignSetting(state, c.key, c.value), c.refusal) << label;
        const std::string expected = c.written.value_or(writtenSettingValue(factory, c.key));
        EXPECT_EQ(writtenSettingValue(state, c.key), expected) << label;
    }
}

TEST(SettingsTable, KeysIgnoreCaseAndAnUnknownKeyNamesEveryKnownOne) {
    ProgramState state = factoryState("/settings/VARO.INI");
    EXPECT_EQ(assignSetting(state, "thresh", "0.5"), std::nullopt);
    EXPECT_EQ(state.thresh, 0.5f);
    EXPECT_EQ(assignSetting(state, "Colour", "red"),
              "There is no setting 'Colour'. The settings are YearIndicator, GlobalSDate, "
              "GlobalEDate, AllowNeg, RandomSeed, Thresh, GlobalMissingCode, DefaultDir, PrecN, "
              "INIFile, BiasCorrection, ModelTransformation, OptimisationChoice, "
              "ConditionalSelection, ConditionalThresh, ApplyStepwise, AICWanted, Splash, and "
              "for one run ZoMText1 to ZoMText12.");
}

// The wet-day percentage profile is set for one run by its field names, checked as on the
// advanced settings screen, and never written to the settings file.
TEST(SettingsTable, WetDayProfileIsSetForOneRunByItsFieldNames) {
    ProgramState state = factoryState("/settings/VARO.INI");
    EXPECT_EQ(assignSetting(state, "ZoMText1", "12.5"), std::nullopt);
    EXPECT_EQ(assignSetting(state, "zomtext12", "100"), std::nullopt);
    EXPECT_EQ(assignSetting(state, "ZoMText7", "0"), std::nullopt);
    EXPECT_EQ(state.monthModification[0], 12.5f);
    EXPECT_EQ(state.monthModification[11], 100.0f);
    for (const auto& [key, value, refusal] :
         std::vector<std::tuple<std::string, std::string, std::string>>{
             {"ZoMText2", "100.5", "Modification value for February must be between 0 and 100."},
             {"ZoMText3", "-1", "Modification value for March must be between 0 and 100."},
             {"ZoMText12", "wet", "Modification value for December must be between 0 and 100."},
         }) {
        EXPECT_EQ(assignSetting(state, key, value), refusal);
    }
    EXPECT_EQ(state.monthModification[1], 0.0f);
    EXPECT_EQ(assignSetting(state, "ZoMText13", "5")->rfind("There is no setting 'ZoMText13'", 0),
              0u);
    EXPECT_EQ(findSettingKey("ZoMText1"), nullptr);
}

// Stepwise regression needs ordinary least squares; the dual simplex clears it. A screen
// Load couples only the one way, and the load at start reads ApplyStepwise a second time,
// last, where only "True" keeps it.
TEST(SettingsTable, StepwiseAndOptimisationAreCoupled) {
    TempDir dir;
    ProgramState state = factoryState(dir.path("VARO.INI"));
    state.optimisationChoice = 2;
    ASSERT_EQ(assignSetting(state, "ApplyStepwise", "true"), std::nullopt);
    EXPECT_EQ(state.optimisationChoice, 1);
    ASSERT_EQ(assignSetting(state, "OptimisationChoice", "2"), std::nullopt);
    EXPECT_FALSE(state.applyStepwise);

    dir.write("VARO.INI", "[VARO]\r\nPrecN=12\r\nOptimisationChoice=2\r\nApplyStepwise=True\r\n");
    EXPECT_EQ(loadScreenSettings(state, SettingScreen::AdvSettings).size(), 6u);
    EXPECT_TRUE(state.applyStepwise);
    EXPECT_EQ(state.optimisationChoice, 1);
    state.applyStepwise = true;
    dir.write("VARO.INI", "[VARO]\r\nPrecN=12\r\nOptimisationChoice=2\r\n");
    loadScreenSettings(state, SettingScreen::AdvSettings);
    EXPECT_TRUE(state.applyStepwise);
    EXPECT_EQ(state.optimisationChoice, 2);

    const auto started =
        stateReading(dir.write("VARO.INI", "[VARO]\r\nYearIndicator=366\r\nOptimisationChoice=2\r\n"
                                           "ApplyStepwise=True\r\n"));
    EXPECT_TRUE(started.applyStepwise);
    EXPECT_EQ(started.optimisationChoice, 1);
}

TEST(SettingsTable, ValuesAreCutToTheBufferOfTheirKey) {
    TempDir dir;
    const std::string longValue(300, '7');
    for (const SettingKey& key : settingsTable()) {
        const std::string path = fileWith(dir, key.name, longValue);
        const size_t expected = key.name == "DefaultDir" || key.name == "INIFile" ? 199 : 29;
        EXPECT_EQ(readSetting(path, key.name), longValue.substr(0, expected)) << key.name;
    }
}

// Every key written in its written form loads and saves back to the same bytes, both
// through the load at start and through the screens' Loads.
TEST(SettingsTable, LoadThenSaveGivesTheSameFile) {
    TempDir dir;
    const std::string path = dir.path("VARO.INI");
    const std::string text = "[VARO]\r\nYearIndicator=360\r\nGlobalSDate=01/01/1971\r\n"
                             "GlobalEDate=31/12/1980\r\nAllowNeg=False\r\nRandomSeed=False\r\n"
                             "Thresh=.3\r\nGlobalMissingCode=-99.5\r\nDefaultDir=/data/rain\r\n"
                             "PrecN=6\r\nINIFile=" +
                             path +
                             "\r\nBiasCorrection=.8\r\nModelTransformation=7\r\n"
                             "OptimisationChoice=1\r\nConditionalSelection=2\r\n"
                             "ConditionalThresh=.7\r\nApplyStepwise=True\r\nAICWanted=False\r\n"
                             "Splash=False\r\n";
    std::vector<const SettingKey*> allKeys;
    for (const SettingKey& key : settingsTable()) {
        allKeys.push_back(&key);
    }

    dir.write("VARO.INI", text);
    const ProgramState started = stateReading(path);
    std::filesystem::remove(path);
    EXPECT_TRUE(writeSettings(started, allKeys).all);
    EXPECT_EQ(readFile(path), text);

    ProgramState loaded = factoryState(path);
    EXPECT_TRUE(loadScreenSettings(loaded, SettingScreen::Settings).empty());
    EXPECT_TRUE(loadScreenSettings(loaded, SettingScreen::AdvSettings).empty());
    loaded.splash = false;
    std::filesystem::remove(path);
    const SettingsWritten written = writeSettings(loaded, allKeys);
    EXPECT_TRUE(written.first && written.all);
    EXPECT_EQ(readFile(path), text);
}

TEST(LoadStartupSettings, WithoutYearIndicatorNothingChanges) {
    TempDir dir;
    const auto state = stateReading(dir.write("a.ini", "[VARO]\r\nThresh=5\r\nPrecN=3\r\n"));
    EXPECT_EQ(state.thresh, 0.0f);
    EXPECT_EQ(state.precN, 12);
    const auto none = stateReading(dir.path("none.ini"));
    EXPECT_EQ(none.yearIndicator, 366);
}

TEST(LoadStartupSettings, DatesGiveTheStandardPeriodAndTheFolderItsResetValue) {
    TempDir dir;
    const auto state =
        stateReading(dir.write("a.ini", "[VARO]\r\nYearIndicator=360\r\nGlobalSDate=1/1/1971\r\n"
                                        "GlobalEDate=31/12/1980\r\nDefaultDir= /data \r\n"));
    EXPECT_EQ(calendarInForce(state).yearLengthRow, 2);
    EXPECT_EQ(globalDays(state), 3653);
    EXPECT_EQ(state.defaultDir, "/data");
    EXPECT_EQ(state.defaultDirInitial, "/data");
}

TEST(LoadStartupSettings, IniFileRedirectsTheRemainingKeys) {
    TempDir dir;
    const auto second =
        dir.write("other.ini", "[VARO]\r\nThresh=9\r\nPrecN=9\r\nBiasCorrection=0.5\r\n"
                               "DefaultDir=/second\r\n");
    const auto first =
        dir.write("first.ini", "[VARO]\r\nYearIndicator=365\r\nThresh=1\r\nPrecN=4\r\n"
                               "ApplyStepwise=True\r\nINIFile=" +
                                   second + "\r\nBiasCorrection=1.5\r\nDefaultDir=/first\r\n");
    const auto state = stateReading(first);
    EXPECT_EQ(state.yearIndicator, 365);
    EXPECT_EQ(state.thresh, 1.0f);
    EXPECT_EQ(state.precN, 4);
    EXPECT_EQ(state.settingsFile, second);
    EXPECT_EQ(state.biasCorrection, 0.5f);
    EXPECT_EQ(state.defaultDir, "/second");
    // The second reading of ApplyStepwise comes from the second file, which lacks it.
    EXPECT_FALSE(state.applyStepwise);
}

TEST(LoadStartupSettings, AByteOrderMarkIsSkipped) {
    TempDir dir;
    const auto state = stateReading(
        dir.write("VARO.INI", "\xEF\xBB\xBF[VARO]\r\nYearIndicator=360\r\nBiasCorrection=1.5\r\n"));
    EXPECT_EQ(state.yearIndicator, 360);
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
