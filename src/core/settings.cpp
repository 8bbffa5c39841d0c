#include "core/settings.hpp"

#include "core/ini_file.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace varo::core {

namespace {

// ---------------------------------------------------------------------------------------
// Written forms, by the type of the field.

std::string settingText(bool value) {
    return value ? "True" : "False";
}
std::string settingText(float value) {
    return generalTextSingle(value);
}
std::string settingText(double value) {
    return generalText(value);
}
std::string settingText(std::int16_t value) {
    return std::to_string(value);
}
std::string settingText(const Date& value) {
    return formatDate(value);
}
std::string settingText(const std::string& value) {
    return value;
}
std::string settingText(const ModelTransformation& value) {
    return generalTextSingle(value.number());
}

template <auto Field>
std::string written(const ProgramState& state) {
    return settingText(state.*Field);
}

// ---------------------------------------------------------------------------------------
// Values read or typed for a key.

void storeNumber(float& field, double value) {
    field = static_cast<float>(value);
}
void storeNumber(double& field, double value) {
    field = value;
}
void storeNumber(std::int16_t& field, double value) {
    field = static_cast<std::int16_t>(roundHalfEven(value));
}
void storeNumber(ModelTransformation& field, double value) {
    field = ModelTransformation::fromNumber(static_cast<float>(value));
}

// Any number, in the field's width (an integer field rounds half to even).
template <auto Field>
bool useNumber(ProgramState& state, std::string_view value) {
    if (!isNumeric(value)) {
        return false;
    }
    storeNumber(state.*Field, leadingNumber(value));
    return true;
}

template <auto Field>
bool useDate(ProgramState& state, std::string_view value) {
    const auto date = parseDate(value);
    if (date) {
        state.*Field = *date;
    }
    return date.has_value();
}

// A text starting "True" or "False"; other text is unusable.
template <auto Field>
bool useFlag(ProgramState& state, std::string_view value) {
    if (textStartsTrue(value)) {
        state.*Field = true;
    } else if (textStartsFalse(value)) {
        state.*Field = false;
    } else {
        return false;
    }
    return true;
}

// At start, Splash and AICWanted are true exactly when the text starts "True".
template <auto Field>
bool useTrueOnly(ProgramState& state, std::string_view value) {
    state.*Field = textStartsTrue(value);
    return true;
}

// A typed flag that passed `flagRefusal`: "true" or "false" in any case.
template <auto Field>
bool setFlag(ProgramState& state, std::string_view value) {
    state.*Field = equalNoCase(value, "true");
    return true;
}

bool useYearLength(ProgramState& state, long long yearLength) {
    if (yearLength != 360 && yearLength != 365 && yearLength != 366) {
        return false;
    }
    state.yearIndicator = static_cast<std::int16_t>(yearLength);
    return true;
}

bool useYearLengthAtStart(ProgramState& state, std::string_view value) {
    return isNumeric(value) && useYearLength(state, roundedInteger(value));
}

// The Settings screen's Load tests the range before it rounds.
bool loadYearLength(ProgramState& state, std::string_view value) {
    const auto yearLength = numberIn(value, 360, 366);
    return yearLength && useYearLength(state, roundHalfEven(*yearLength));
}

// At start, the integer part: anything but 1 becomes 2.
template <auto Field>
bool useOneOrTwoAtStart(ProgramState& state, std::string_view value) {
    if (!isNumeric(value)) {
        return false;
    }
    state.*Field = static_cast<std::int16_t>(std::trunc(leadingNumber(value)) == 1.0 ? 1 : 2);
    return true;
}

// On the screen, exactly 1 or 2.
template <auto Field>
bool loadOneOrTwo(ProgramState& state, std::string_view value) {
    const auto choice = numberIn(value, 1, 2);
    if (!choice || (*choice != 1.0 && *choice != 2.0)) {
        return false;
    }
    state.*Field = static_cast<std::int16_t>(*choice);
    return true;
}

bool setOptimisation(ProgramState& state, std::string_view value) {
    chooseOptimisation(state, static_cast<int>(leadingNumber(value)));
    return true;
}

bool useConditionalThreshAtStart(ProgramState& state, std::string_view value) {
    if (!isNumeric(value)) {
        return false;
    }
    const double threshold = leadingNumber(value);
    state.conditionalThresh =
        threshold < 0.05 || threshold > 0.95 ? 0.5f : static_cast<float>(threshold);
    return true;
}

bool loadStepwise(ProgramState& state, std::string_view value) {
    if (!useFlag<&ProgramState::applyStepwise>(state, value)) {
        return false;
    }
    chooseStepwise(state, state.applyStepwise);
    return true;
}

bool setStepwise(ProgramState& state, std::string_view value) {
    chooseStepwise(state, equalNoCase(value, "true"));
    return true;
}

bool useDefaultDirAtStart(ProgramState& state, std::string_view value) {
    state.defaultDir = std::string(trimBlanks(value));
    state.defaultDirInitial = state.defaultDir;
    return true;
}

bool loadDefaultDir(ProgramState& state, std::string_view value) {
    state.defaultDir = std::string(value);
    return true;
}

// Kept absolute, so that the saved folder means the same from any working folder.
bool setDefaultDir(ProgramState& state, std::string_view value) {
    state.defaultDir = absolutePath(value);
    return true;
}

// From this key on, the load at start reads the file it names.
bool useSettingsFileAtStart(ProgramState& state, std::string_view value) {
    const std::string_view path = trimBlanks(value);
    if (path.empty()) {
        return false;
    }
    state.settingsFile = std::string(path);
    return true;
}

bool loadSettingsFile(ProgramState& state, std::string_view value) {
    if (value.empty()) {
        return false;
    }
    state.settingsFile = std::string(value);
    return true;
}

// A settings file names itself, so it must do so from any folder; an empty path changes
// nothing.
bool setSettingsFile(ProgramState& state, std::string_view value) {
    if (!value.empty()) {
        state.settingsFile = absolutePath(value);
    }
    return true;
}

// ---------------------------------------------------------------------------------------
// Checks of typed values.

std::optional<std::string> anyValue(std::string_view, const ProgramState&, std::string_view) {
    return std::nullopt;
}

std::optional<std::string> flagRefusal(std::string_view key, const ProgramState&,
                                       std::string_view value) {
    if (equalNoCase(value, "true") || equalNoCase(value, "false")) {
        return std::nullopt;
    }
    return std::string(key) + " must be True or False.";
}

// A number equal to one of the choices: "YearIndicator must be 366, 365 or 360."
template <int... Choices>
std::optional<std::string> choiceRefusal(std::string_view key, const ProgramState&,
                                         std::string_view value) {
    if (isNumeric(value) && ((leadingNumber(value) == Choices) || ...)) {
        return std::nullopt;
    }
    const std::vector<int> choices{Choices...};
    std::string list;
    for (size_t i = 0; i < choices.size(); ++i) {
        list += (i == 0                    ? ""
                 : i + 1 == choices.size() ? " or "
                                           : ", ") +
                std::to_string(choices[i]);
    }
    return std::string(key) + " must be " + list + ".";
}

std::optional<std::string> startDateRefusal(std::string_view, const ProgramState& state,
                                            std::string_view value) {
    return standardDateRefusal(value, formatDate(state.globalEDate), true);
}

std::optional<std::string> endDateRefusal(std::string_view, const ProgramState& state,
                                          std::string_view value) {
    return standardDateRefusal(value, formatDate(state.globalSDate), false);
}

std::optional<std::string> missingCodeRefusal(std::string_view, const ProgramState&,
                                              std::string_view value) {
    if (isNumeric(value)) {
        return std::nullopt;
    }
    return "Missing data identifier must be a number.";
}

// 0 and 1000 pass, whatever the message says.
std::optional<std::string> thresholdRefusal(std::string_view, const ProgramState&,
                                            std::string_view value) {
    return rangeRefusal(value, 0.0, 1000.0, "Threshold must be a value.",
                        "Threshold must be positive and less than 1000.");
}

std::optional<std::string> varianceInflationRefusal(std::string_view, const ProgramState&,
                                                    std::string_view value) {
    constexpr std::string_view message = "Random number size must be a value between 0 and 100.";
    return rangeRefusal(value, 0.0, 100.0, message, message);
}

// 0 and 2 both fail.
std::optional<std::string> biasRefusal(std::string_view, const ProgramState&,
                                       std::string_view value) {
    return rangeRefusal(value, 0.0, 2.0, "Bias correction must be a value less than two.",
                        "Bias correction must be positive and less than two.", RangeEnds::Excluded);
}

std::optional<std::string> conditionalThreshRefusal(std::string_view, const ProgramState&,
                                                    std::string_view value) {
    constexpr std::string_view message =
        "Conditional threshold must be a value between 0.05 and 0.95.";
    return rangeRefusal(value, 0.05, 0.95, message, message);
}

// The order of the load at start, without the last reading of ApplyStepwise.
const std::string_view StartupOrder[] = {"YearIndicator",
                                         "GlobalSDate",
                                         "GlobalEDate",
                                         "AllowNeg",
                                         "RandomSeed",
                                         "ApplyStepwise",
                                         "Thresh",
                                         "GlobalMissingCode",
                                         "PrecN",
                                         "INIFile",
                                         "DefaultDir",
                                         "BiasCorrection",
                                         "ModelTransformation",
                                         "Splash",
                                         "AICWanted",
                                         "OptimisationChoice",
                                         "ConditionalSelection",
                                         "ConditionalThresh"};

const std::string_view SettingsLoadOrder[] = {"YearIndicator", "GlobalSDate",      "GlobalEDate",
                                              "AllowNeg",      "RandomSeed",       "Thresh",
                                              "DefaultDir",    "GlobalMissingCode"};

const std::string_view AdvSettingsLoadOrder[] = {"PrecN",
                                                 "INIFile",
                                                 "BiasCorrection",
                                                 "ModelTransformation",
                                                 "OptimisationChoice",
                                                 "ApplyStepwise",
                                                 "AICWanted",
                                                 "ConditionalSelection",
                                                 "ConditionalThresh"};

} // namespace

std::span<const SettingKey> settingsTable() {
    using enum SettingScreen;
    using enum SettingType;
    using S = ProgramState;
    static const SettingKey table[] = {
        {"YearIndicator", Integer, Settings, ValueBuffer, written<&S::yearIndicator>,
         useYearLengthAtStart, loadYearLength, "Sorry - unable to load year indicator data from ",
         choiceRefusal<366, 365, 360>, loadYearLength},
        {"GlobalSDate", Date, Settings, ValueBuffer, written<&S::globalSDate>,
         useDate<&S::globalSDate>, useDate<&S::globalSDate>,
         "Sorry - unable to load start date from ", startDateRefusal, useDate<&S::globalSDate>},
        {"GlobalEDate", Date, Settings, ValueBuffer, written<&S::globalEDate>,
         useDate<&S::globalEDate>, useDate<&S::globalEDate>,
         "Sorry - unable to load end date from ", endDateRefusal, useDate<&S::globalEDate>},
        {"AllowNeg", Flag, Settings, ValueBuffer, written<&S::allowNeg>, useFlag<&S::allowNeg>,
         useFlag<&S::allowNeg>, "Sorry - unable to load 'Allow Negative' indicator from ",
         flagRefusal, setFlag<&S::allowNeg>},
        {"RandomSeed", Flag, Settings, ValueBuffer, written<&S::randomSeed>,
         useFlag<&S::randomSeed>, useFlag<&S::randomSeed>,
         "Sorry - unable to load 'Random Seed' indicator from ", flagRefusal,
         setFlag<&S::randomSeed>},
        {"Thresh", Number, Settings, ValueBuffer, written<&S::thresh>, useNumber<&S::thresh>,
         useNumber<&S::thresh>, "Sorry - unable to load threshold value from ", thresholdRefusal,
         useNumber<&S::thresh>},
        {"GlobalMissingCode", Number, Settings, ValueBuffer, written<&S::globalMissingCode>,
         useNumber<&S::globalMissingCode>, useNumber<&S::globalMissingCode>,
         "Sorry - unable to load 'Missing Data Identifier' from ", missingCodeRefusal,
         useNumber<&S::globalMissingCode>},
        {"DefaultDir", Path, Settings, DirectoryBuffer, written<&S::defaultDir>,
         useDefaultDirAtStart, loadDefaultDir, "Sorry - unable to load default directory from ",
         anyValue, setDefaultDir},
        {"PrecN", Integer, AdvSettings, ValueBuffer, written<&S::precN>, useNumber<&S::precN>,
         useNumber<&S::precN>, "Sorry - unable to load variance inflator value from ",
         varianceInflationRefusal, useNumber<&S::precN>},
        {"INIFile", Path, AdvSettings, DirectoryBuffer, written<&S::settingsFile>,
         useSettingsFileAtStart, loadSettingsFile,
         "Sorry - unable to load settings file name from ", anyValue, setSettingsFile},
        {"BiasCorrection", Number, AdvSettings, ValueBuffer, written<&S::biasCorrection>,
         useNumber<&S::biasCorrection>, useNumber<&S::biasCorrection>,
         "Sorry - unable to load unconditional bias correction value from ", biasRefusal,
         useNumber<&S::biasCorrection>},
        {"ModelTransformation", Number, AdvSettings, ValueBuffer, written<&S::modelTransformation>,
         useNumber<&S::modelTransformation>, useNumber<&S::modelTransformation>,
         "Sorry - unable to load model transformation value from ", choiceRefusal<1, 2, 3, 4, 5>,
         useNumber<&S::modelTransformation>},
        {"OptimisationChoice", Integer, AdvSettings, ValueBuffer, written<&S::optimisationChoice>,
         useOneOrTwoAtStart<&S::optimisationChoice>, loadOneOrTwo<&S::optimisationChoice>,
         "Sorry - unable to load model optimisation option from ", choiceRefusal<1, 2>,
         setOptimisation},
        {"ConditionalSelection", Integer, AdvSettings, ValueBuffer,
         written<&S::conditionalSelection>, useOneOrTwoAtStart<&S::conditionalSelection>,
         loadOneOrTwo<&S::conditionalSelection>,
         "Sorry - unable to load conditional selection option from ", choiceRefusal<1, 2>,
         loadOneOrTwo<&S::conditionalSelection>},
        // Range-tested at start only.
        {"ConditionalThresh", Number, AdvSettings, ValueBuffer, written<&S::conditionalThresh>,
         useConditionalThreshAtStart, useNumber<&S::conditionalThresh>,
         "Sorry - unable to load conditional threshold value from ", conditionalThreshRefusal,
         useNumber<&S::conditionalThresh>},
        // At start ApplyStepwise is read twice (see loadStartupSettings).
        {"ApplyStepwise", Flag, AdvSettings, ValueBuffer, written<&S::applyStepwise>,
         useFlag<&S::applyStepwise>, loadStepwise,
         "Sorry - unable to load stepwise indicator value from ", flagRefusal, setStepwise},
        {"AICWanted", Flag, AdvSettings, ValueBuffer, written<&S::aicWanted>,
         useTrueOnly<&S::aicWanted>, useFlag<&S::aicWanted>,
         "Sorry - unable to load AIC/BIC indicator value from ", flagRefusal,
         setFlag<&S::aicWanted>},
        {"Splash", Flag, Intro, ValueBuffer, written<&S::splash>, useTrueOnly<&S::splash>, nullptr,
         "", flagRefusal, setFlag<&S::splash>},
    };
    return table;
}

const SettingKey* findSettingKey(std::string_view name) {
    for (const SettingKey& key : settingsTable()) {
        if (equalNoCase(key.name, name)) {
            return &key;
        }
    }
    return nullptr;
}

const SettingKey& settingKey(std::string_view name) {
    for (const SettingKey& key : settingsTable()) {
        if (key.name == name) {
            return key;
        }
    }
    throw std::logic_error("no settings key " + std::string(name));
}

std::vector<const SettingKey*> keysSavedBy(SettingScreen screen) {
    std::vector<const SettingKey*> keys;
    for (const SettingKey& key : settingsTable()) {
        if (key.screen == screen) {
            keys.push_back(&key);
        }
    }
    return keys;
}

std::vector<const SettingKey*> keysLoadedBy(SettingScreen screen) {
    std::vector<const SettingKey*> keys;
    const std::span<const std::string_view> order =
        screen == SettingScreen::Settings      ? std::span(SettingsLoadOrder)
        : screen == SettingScreen::AdvSettings ? std::span(AdvSettingsLoadOrder)
                                               : std::span<const std::string_view>();
    for (std::string_view name : order) {
        keys.push_back(&settingKey(name));
    }
    return keys;
}

std::string readSetting(const std::string& path, std::string_view key) {
    const SettingKey* row = findSettingKey(key);
    return readProfileString(path, SettingsSection, key, MissingText,
                             row != nullptr ? row->buffer : ValueBuffer);
}

std::vector<std::string> loadScreenSettings(ProgramState& state, SettingScreen screen) {
    std::vector<std::string> refusals;
    const auto keys = keysLoadedBy(screen);
    for (size_t i = 0; i < keys.size(); ++i) {
        // Each key is read from the file in force, which a loaded INIFile changes.
        const std::string value = readSetting(state.settingsFile, keys[i]->name);
        if (i == 0 && value == MissingText) {
            return {"Sorry - unable to load data from " + state.settingsFile + "."};
        }
        if (value == MissingText || !keys[i]->onLoad(state, value)) {
            refusals.push_back(std::string(keys[i]->loadMessage) + state.settingsFile + ".");
        }
    }
    return refusals;
}

SettingsWritten writeSettings(const ProgramState& state,
                              const std::vector<const SettingKey*>& keys) {
    SettingsWritten result{true, true};
    for (size_t i = 0; i < keys.size(); ++i) {
        const bool done = writeProfileString(state.settingsFile, SettingsSection, keys[i]->name,
                                             keys[i]->written(state));
        result.first = i == 0 ? done : result.first;
        result.all = result.all && done;
    }
    return result;
}

std::string writtenSettingValue(const ProgramState& state, std::string_view key) {
    return settingKey(key).written(state);
}

namespace {

// The wet-day percentage profile of the advanced settings, ZoMText1 to ZoMText12 (January
// first), is not kept in the settings file; `--set` gives it for one run. The month a key
// names, or 0.
int profileMonth(std::string_view name) {
    for (int month = 1; month <= 12; ++month) {
        if (equalNoCase(name, "ZoMText" + std::to_string(month))) {
            return month;
        }
    }
    return 0;
}

// A percentage of the profile, checked as its field on the advanced settings screen.
std::optional<std::string> assignProfile(ProgramState& state, int month, std::string_view value) {
    if (auto refusal =
            monthModificationRefusal(state.periodNames[static_cast<size_t>(month)], value)) {
        return refusal;
    }
    state.monthModification[static_cast<size_t>(month - 1)] =
        static_cast<float>(leadingNumber(value));
    return std::nullopt;
}

} // namespace

std::optional<std::string> monthModificationRefusal(std::string_view monthName,
                                                    std::string_view text) {
    const std::string message =
        "Modification value for " + std::string(monthName) + " must be between 0 and 100.";
    return rangeRefusal(text, 0.0, 100.0, message, message);
}

std::optional<std::string> assignSetting(ProgramState& state, std::string_view name,
                                         std::string_view value) {
    if (const int month = profileMonth(name)) {
        return assignProfile(state, month, value);
    }
    const SettingKey* key = findSettingKey(name);
    if (key == nullptr) {
        std::string known;
        for (const SettingKey& each : settingsTable()) {
            known += (known.empty() ? "" : ", ") + std::string(each.name);
        }
        return "There is no setting '" + std::string(name) + "'. The settings are " + known +
               ", and for one run ZoMText1 to ZoMText12.";
    }
    if (auto refusal = key->refusal(key->name, state, value)) {
        return refusal;
    }
    key->set(state, value);
    return std::nullopt;
}

std::optional<std::string> standardDateRefusal(std::string_view text, std::string_view otherText,
                                               bool isStart) {
    const auto date = parseDate(text);
    if (!date) {
        return isStart ? "Start date is invalid - it must be in the format dd/mm/yyyy."
                       : "End date is invalid - it must be in the format dd/mm/yyyy.";
    }
    const auto other = parseDate(otherText);
    if (!other) {
        return std::nullopt;
    }
    const long gap = isStart ? dayDifference(*date, *other) : dayDifference(*other, *date);
    if (gap < 1) {
        return isStart ? "Start date should be earlier than end date."
                       : "End date should be later than start date.";
    }
    return std::nullopt;
}

void chooseOptimisation(ProgramState& state, int choice) {
    state.optimisationChoice = static_cast<std::int16_t>(choice);
    if (choice == 2) {
        state.applyStepwise = false;
    }
}

void chooseStepwise(ProgramState& state, bool stepwise) {
    state.applyStepwise = stepwise;
    if (stepwise) {
        state.optimisationChoice = 1;
    }
}

bool textStartsTrue(std::string_view text) {
    return text.substr(0, 4) == "True";
}
bool textStartsFalse(std::string_view text) {
    return text.substr(0, 5) == "False";
}

std::optional<std::string> settingsFileProblem(const std::string& path) {
    if (const auto problem = iniFileProblem(path, SettingsSection)) {
        return "The settings file '" + path + "' is not used: " + *problem + ".";
    }
    return std::nullopt;
}

void loadStartupSettings(ProgramState& state) {
    if (readSetting(state.settingsFile, "YearIndicator") == MissingText) {
        return;
    }
    // Each key is read from the file in force, which INIFile may change part way.
    for (std::string_view name : StartupOrder) {
        const SettingKey& key = settingKey(name);
        const std::string value = readSetting(state.settingsFile, key.name);
        if (value != MissingText) {
            key.atStart(state, value);
        }
    }
    // ApplyStepwise is read once more, last: a text starting "True" turns it on, with
    // ordinary least squares, and anything else, an absent key too, turns it off.
    chooseStepwise(state, textStartsTrue(readSetting(state.settingsFile, "ApplyStepwise")));
}

} // namespace varo::core
