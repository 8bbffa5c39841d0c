#include "screens/settings_screens.hpp"

#include "core/dates.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"
#include "core/settings.hpp"

#include <optional>

namespace varo::screens {

namespace {

const char* const MonthNames[12] = {"January",   "February", "March",    "April",
                                    "May",       "June",     "July",     "August",
                                    "September", "October",  "November", "December"};

// A field that holds a settings key: checked by the key's check, and on passing put in
// force with the key's couplings.
bool checkKeyField(Dialogs& dialogs, core::ProgramState& state, TextField& field,
                   std::string_view name) {
    const core::SettingKey& key = core::settingKey(name);
    const bool ok = field.check(
        dialogs, [&](const std::string& text) { return key.refusal(key.name, state, text); });
    if (ok) {
        key.set(state, field.text);
    }
    return ok;
}

void loadKeys(Dialogs& dialogs, core::ProgramState& state, core::SettingScreen screen) {
    for (const std::string& refusal : core::loadScreenSettings(state, screen)) {
        dialogs.error(refusal);
    }
}

// A screen's Save: only the first write is tested, as a partial save can only follow a
// first write that worked. A failure names the file, says where to look and, where it can
// tell, why.
bool saveKeys(Dialogs& dialogs, const core::ProgramState& state, core::SettingScreen screen,
              std::string_view whereToLook, std::string_view whatWasSaved) {
    const std::string& path = state.settingsFile;
    if (!core::writeSettings(state, core::keysSavedBy(screen)).first) {
        const auto problem = core::settingsFileProblem(path);
        dialogs.error("Sorry, unable to save data to " + path + ".\r\n" + std::string(whereToLook) +
                      (problem ? "\r\n" + *problem : std::string()));
        return false;
    }
    dialogs.message("Settings Saved", std::string(whatWasSaved) + " saved to " + path + ".",
                    Icon::Information);
    return true;
}

} // namespace

// ---------------------------------------------------------------------------------------
// Settings

SettingsScreen::SettingsScreen(core::ProgramState& state) : state_(state) {
    showState();
}

void SettingsScreen::showState() {
    sDateText.reset(core::formatDate(state_.globalSDate));
    eDateText.reset(core::formatDate(state_.globalEDate));
    rainThreshText.reset(core::generalTextSingle(state_.thresh));
    missingCodeText.reset(core::generalText(state_.globalMissingCode));
    yearDays = state_.yearIndicator == 365 ? 1 : state_.yearIndicator == 360 ? 2 : 0;
    allowNegCheck = state_.allowNeg;
    randomSeedCheck = state_.randomSeed;
    defaultDir = state_.defaultDir;
}

bool SettingsScreen::checkMissingCode(Dialogs& dialogs) {
    return checkKeyField(dialogs, state_, missingCodeText, "GlobalMissingCode");
}

bool SettingsScreen::checkDate(Dialogs& dialogs, TextField& field, bool isStart) {
    const std::string& other = isStart ? eDateText.text : sDateText.text;
    const bool bothDates = core::parseDate(field.text) && core::parseDate(other);
    const bool ok = field.check(dialogs, [&](const std::string& text) {
        return core::standardDateRefusal(text, other, isStart);
    });
    // When both were dates, whatever now stands in the field goes into the state, the
    // restored text included.
    const auto shown = core::parseDate(field.text);
    if (bothDates && shown) {
        (isStart ? state_.globalSDate : state_.globalEDate) = *shown;
    }
    return ok;
}

bool SettingsScreen::checkStartDate(Dialogs& dialogs) {
    return checkDate(dialogs, sDateText, true);
}
bool SettingsScreen::checkEndDate(Dialogs& dialogs) {
    return checkDate(dialogs, eDateText, false);
}

bool SettingsScreen::checkThreshold(Dialogs& dialogs) {
    return checkKeyField(dialogs, state_, rainThreshText, "Thresh");
}

void SettingsScreen::selectYearDays(int index) {
    yearDays = index;
    state_.yearIndicator = static_cast<std::int16_t>(index == 1 ? 365 : index == 2 ? 360 : 366);
}

void SettingsScreen::setAllowNeg(bool ticked) {
    allowNegCheck = ticked;
    state_.allowNeg = ticked;
}

void SettingsScreen::setRandomSeed(bool ticked) {
    randomSeedCheck = ticked;
    state_.randomSeed = ticked;
}

void SettingsScreen::setDefaultDir(const std::string& folder) {
    core::settingKey("DefaultDir").set(state_, folder);
    defaultDir = state_.defaultDir;
}

bool SettingsScreen::apply(Dialogs& dialogs) {
    if (!checkMissingCode(dialogs) || !checkStartDate(dialogs) || !checkEndDate(dialogs) ||
        !checkThreshold(dialogs)) {
        return false;
    }
    selectYearDays(yearDays);
    return true;
}

void SettingsScreen::reset() {
    state_.yearIndicator = 366;
    state_.thresh = 0.0f;
    state_.globalMissingCode = -999.0;
    state_.globalSDate = {1, 1, 1961};
    state_.globalEDate = {31, 12, 1990};
    state_.allowNeg = true;
    state_.randomSeed = true;
    state_.defaultDir = state_.defaultDirInitial;
    showState();
}

void SettingsScreen::load(Dialogs& dialogs) {
    loadKeys(dialogs, state_, core::SettingScreen::Settings);
    showState();
}

bool SettingsScreen::save(Dialogs& dialogs) {
    apply(dialogs);
    return saveKeys(dialogs, state_, core::SettingScreen::Settings,
                    "Please check file name and path in advanced settings.", "Settings");
}

// ---------------------------------------------------------------------------------------
// AdvSettings

AdvSettingsScreen::AdvSettingsScreen(core::ProgramState& state) : state_(state) {
    showState();
}

void AdvSettingsScreen::showState() {
    settingsFileText = state_.settingsFile;
    biasText.reset(core::generalTextSingle(state_.biasCorrection));
    precRndText.reset(std::to_string(state_.precN));
    conditionalThreshText.reset(core::generalTextSingle(state_.conditionalThresh));
    for (size_t m = 0; m < zomText.size(); ++m) {
        zomText[m].reset(core::generalTextSingle(state_.monthModification[m]));
    }
    conditionalOption = state_.conditionalSelection == 2 ? 1 : 0;
    const auto code = state_.modelTransformation.code();
    transOption = code ? core::transformationOption(*code) : -1;
    optimisationOption = state_.optimisationChoice == 2 ? 1 : 0;
    stepwiseCheck = state_.applyStepwise;
    aicOption = state_.aicWanted ? 0 : 1;
}

bool AdvSettingsScreen::checkBias(Dialogs& dialogs) {
    return checkKeyField(dialogs, state_, biasText, "BiasCorrection");
}

bool AdvSettingsScreen::checkPrecRnd(Dialogs& dialogs) {
    const bool ok = checkKeyField(dialogs, state_, precRndText, "PrecN");
    if (ok) {
        precRndText.reset(std::to_string(state_.precN));
    }
    return ok;
}

bool AdvSettingsScreen::checkConditionalThresh(Dialogs& dialogs) {
    return checkKeyField(dialogs, state_, conditionalThreshText, "ConditionalThresh");
}

bool AdvSettingsScreen::checkMonthModification(Dialogs& dialogs, int monthIndex) {
    TextField& field = zomText[static_cast<size_t>(monthIndex)];
    const bool ok = field.check(dialogs, [monthIndex](const std::string& text) {
        return core::monthModificationRefusal(MonthNames[monthIndex], text);
    });
    if (ok) {
        state_.monthModification[static_cast<size_t>(monthIndex)] =
            static_cast<float>(core::leadingNumber(field.text));
    }
    return ok;
}

void AdvSettingsScreen::setSettingsFile(const std::string& path) {
    settingsFileText = core::absolutePath(path);
    core::settingKey("INIFile").set(state_, path);
}

void AdvSettingsScreen::selectConditional(int index) {
    conditionalOption = index;
    state_.conditionalSelection = static_cast<std::int16_t>(index + 1);
}

void AdvSettingsScreen::selectOptimisation(int index) {
    core::chooseOptimisation(state_, index + 1);
    optimisationOption = index;
    stepwiseCheck = state_.applyStepwise;
}

void AdvSettingsScreen::selectTransformation(int index) {
    transOption = index;
    state_.modelTransformation = core::transformationOfOption(index);
}

void AdvSettingsScreen::setStepwise(bool ticked) {
    core::chooseStepwise(state_, ticked);
    stepwiseCheck = ticked;
    optimisationOption = state_.optimisationChoice == 2 ? 1 : 0;
}

void AdvSettingsScreen::selectAic(int index) {
    aicOption = index;
}

bool AdvSettingsScreen::apply(Dialogs& dialogs) {
    if (!checkBias(dialogs) || !checkPrecRnd(dialogs) || !checkConditionalThresh(dialogs)) {
        return false;
    }
    for (int m = 0; m < 12; ++m) {
        if (!checkMonthModification(dialogs, m)) {
            return false;
        }
    }
    return true;
}

void AdvSettingsScreen::reset() {
    state_.precN = state_.precNDefault;
    state_.biasCorrection = 1.0f;
    state_.settingsFile = state_.defaultSettingsFile;
    state_.modelTransformation = core::TransformNone;
    state_.conditionalSelection = 1;
    state_.applyStepwise = false;
    state_.monthModification.fill(0.0f);
    showState();
    // Reset selects "Dual simplex", and leaves the conditional threshold as it stands;
    // the AIC option shows AIC without changing the criterion in force.
    selectOptimisation(1);
    aicOption = 0;
    for (TextField& field : zomText) {
        field.reset("0");
    }
}

void AdvSettingsScreen::load(Dialogs& dialogs) {
    loadKeys(dialogs, state_, core::SettingScreen::AdvSettings);
    showState();
}

bool AdvSettingsScreen::save(Dialogs& dialogs) {
    apply(dialogs);
    return saveKeys(dialogs, state_, core::SettingScreen::AdvSettings,
                    "Please check file name and path of settings file.", "Advanced settings");
}

} // namespace varo::screens
