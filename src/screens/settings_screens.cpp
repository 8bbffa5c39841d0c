#include "screens/settings_screens.hpp"

#include "core/dates.hpp"
#include "core/ini_file.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"
#include "core/settings.hpp"

#include <functional>
#include <optional>
#include <vector>

namespace varo::screens {

namespace {

const char* const MonthNames[12] = {"January",   "February", "March",    "April",
                                    "May",       "June",     "July",     "August",
                                    "September", "October",  "November", "December"};

// A key a screen loads: its unusable-value message and what a usable value does.
struct LoadedKey {
    std::string_view key;
    std::string_view message;
    std::function<bool(const std::string&)> use;
};

// Loads the keys in order from the settings file, one box for each key that cannot be
// used. When the first key is absent altogether nothing is loaded.
void loadKeys(Dialogs& dialogs, const std::string& path, const std::vector<LoadedKey>& keys) {
    for (size_t i = 0; i < keys.size(); ++i) {
        const std::string value = core::readSetting(path, keys[i].key);
        if (i == 0 && value == core::MissingText) {
            dialogs.error("Sorry - unable to load data from " + path + ".");
            return;
        }
        if (value == core::MissingText || !keys[i].use(value)) {
            dialogs.error(std::string(keys[i].message) + path + ".");
        }
    }
}

// Writes the keys in order; only the first write is tested, as a partial save can only
// follow a first write that worked.
bool saveKeys(const core::ProgramState& state, const std::vector<std::string_view>& keys) {
    bool firstWritten = true;
    for (size_t i = 0; i < keys.size(); ++i) {
        const bool written =
            core::writeProfileString(state.settingsFile, core::SettingsSection, keys[i],
                                     core::writtenSettingValue(state, keys[i]));
        if (i == 0) {
            firstWritten = written;
        }
    }
    return firstWritten;
}

// The reason a save failed, as a line to follow its message, when there is one to tell.
std::string whyNotSaved(const std::string& path) {
    const auto problem = core::settingsFileProblem(path);
    return problem ? "\r\n" + *problem : std::string();
}

std::optional<bool> trueOrFalse(const std::string& value) {
    if (core::textStartsTrue(value)) {
        return true;
    }
    if (core::textStartsFalse(value)) {
        return false;
    }
    return std::nullopt;
}

bool useBoolean(const std::string& value, bool& field) {
    const auto flag = trueOrFalse(value);
    if (flag) {
        field = *flag;
    }
    return flag.has_value();
}

std::optional<double> numberIn(const std::string& text, double low, double high) {
    if (!core::isNumeric(text)) {
        return std::nullopt;
    }
    const double value = core::leadingNumber(text);
    if (value < low || value > high) {
        return std::nullopt;
    }
    return value;
}

} // namespace

// ---------------------------------------------------------------------------------------
// Settings

SettingsScreen::SettingsScreen(core::ProgramState& state) : state_(state) {
    showState();
}

void SettingsScreen::showState() {
    sDateText.reset(state_.globalSDate);
    eDateText.reset(state_.globalEDate);
    rainThreshText.reset(core::generalTextSingle(state_.thresh));
    missingCodeText.reset(core::generalText(state_.globalMissingCode));
    yearDays = state_.yearIndicator == 365 ? 1 : state_.yearIndicator == 360 ? 2 : 0;
    allowNegCheck = state_.allowNeg;
    randomSeedCheck = state_.randomSeed;
    defaultDir = state_.defaultDir;
}

bool SettingsScreen::checkMissingCode(Dialogs& dialogs) {
    const bool ok =
        missingCodeText.check(dialogs, [](const std::string& text) -> std::optional<std::string> {
            if (!core::isNumeric(text)) {
                return "Missing data identifier must be a number.";
            }
            return std::nullopt;
        });
    if (ok) {
        state_.globalMissingCode = core::leadingNumber(missingCodeText.text);
    }
    return ok;
}

bool SettingsScreen::checkDate(Dialogs& dialogs, TextField& field, bool isStart) {
    const auto date = core::parseDate(field.text);
    if (!date) {
        dialogs.error(isStart ? "Start date is invalid - it must be in the format dd/mm/yyyy."
                              : "End date is invalid - it must be in the format dd/mm/yyyy.");
        field.text = field.lastGood;
        return false;
    }
    const auto other = core::parseDate(isStart ? eDateText.text : sDateText.text);
    if (!other) {
        field.lastGood = field.text;
        return true;
    }
    const long gap =
        isStart ? core::dayDifference(*date, *other) : core::dayDifference(*other, *date);
    bool ok = true;
    if (gap < 1) {
        dialogs.error(isStart ? "Start date should be earlier than end date."
                              : "End date should be later than start date.");
        field.text = field.lastGood;
        ok = false;
    } else {
        field.lastGood = field.text;
    }
    // Whatever now stands in the field goes into the state, the restored text included.
    if (const auto shown = core::parseDate(field.text)) {
        (isStart ? state_.globalSDate : state_.globalEDate) = core::formatDate(*shown);
        core::recalculateGlobalDays(state_);
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
    const bool ok =
        rainThreshText.check(dialogs, [](const std::string& text) -> std::optional<std::string> {
            if (!core::isNumeric(text)) {
                return "Threshold must be a value.";
            }
            const double value = core::leadingNumber(text);
            if (value < 0.0 || value > 1000.0) {
                return "Threshold must be positive and less than 1000.";
            }
            return std::nullopt;
        });
    if (ok) {
        state_.thresh = static_cast<float>(core::leadingNumber(rainThreshText.text));
    }
    return ok;
}

void SettingsScreen::selectYearDays(int index) {
    yearDays = index;
    core::setYearIndicator(state_, index == 1 ? 365 : index == 2 ? 360 : 366);
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
    // Kept absolute, so that the saved folder means the same from any working folder.
    defaultDir = core::absolutePath(folder);
    state_.defaultDir = defaultDir;
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
    core::setYearIndicator(state_, 366);
    state_.thresh = 0.0f;
    state_.globalMissingCode = -999.0;
    state_.globalSDate = "01/01/1961";
    state_.globalEDate = "31/12/1990";
    state_.globalDays = 10957;
    state_.allowNeg = true;
    state_.randomSeed = true;
    state_.defaultDir = state_.defaultDirInitial;
    showState();
}

void SettingsScreen::load(Dialogs& dialogs) {
    core::ProgramState& s = state_;
    loadKeys(dialogs, s.settingsFile,
             {{"YearIndicator", "Sorry - unable to load year indicator data from ",
               [&s](const std::string& v) {
                   const auto year = numberIn(v, 360, 366);
                   const long long rounded = year ? core::roundHalfEven(*year) : 0;
                   if (rounded != 360 && rounded != 365 && rounded != 366) {
                       return false;
                   }
                   core::setYearIndicator(s, static_cast<int>(rounded));
                   return true;
               }},
              {"GlobalSDate", "Sorry - unable to load start date from ",
               [&s](const std::string& v) {
                   const auto date = core::parseDate(v);
                   if (date) {
                       s.globalSDate = core::formatDate(*date);
                       core::recalculateGlobalDays(s);
                   }
                   return date.has_value();
               }},
              {"GlobalEDate", "Sorry - unable to load end date from ",
               [&s](const std::string& v) {
                   const auto date = core::parseDate(v);
                   if (date) {
                       s.globalEDate = core::formatDate(*date);
                       core::recalculateGlobalDays(s);
                   }
                   return date.has_value();
               }},
              {"AllowNeg", "Sorry - unable to load 'Allow Negative' indicator from ",
               [&s](const std::string& v) { return useBoolean(v, s.allowNeg); }},
              {"RandomSeed", "Sorry - unable to load 'Random Seed' indicator from ",
               [&s](const std::string& v) { return useBoolean(v, s.randomSeed); }},
              {"Thresh", "Sorry - unable to load threshold value from ",
               [&s](const std::string& v) {
                   if (!core::isNumeric(v)) {
                       return false;
                   }
                   s.thresh = static_cast<float>(core::leadingNumber(v));
                   return true;
               }},
              {"DefaultDir", "Sorry - unable to load default directory from ",
               [&s](const std::string& v) {
                   s.defaultDir = v;
                   return true;
               }},
              {"GlobalMissingCode", "Sorry - unable to load 'Missing Data Identifier' from ",
               [&s](const std::string& v) {
                   if (!core::isNumeric(v)) {
                       return false;
                   }
                   s.globalMissingCode = core::leadingNumber(v);
                   return true;
               }}});
    showState();
}

bool SettingsScreen::save(Dialogs& dialogs) {
    apply(dialogs);
    if (!saveKeys(state_, core::SettingsScreenKeys)) {
        dialogs.error("Sorry, unable to save data to " + state_.settingsFile + ".\r\n" +
                      "Please check file name and path in advanced settings." +
                      whyNotSaved(state_.settingsFile));
        return false;
    }
    dialogs.message("Settings Saved", "Settings saved to " + state_.settingsFile + ".",
                    Icon::Information);
    return true;
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
    const float code = state_.modelTransformation;
    transOption = code >= 1.0f && code <= 5.0f && code == static_cast<float>(static_cast<int>(code))
                      ? static_cast<int>(code) - 1
                      : -1;
    optimisationOption = state_.optimisationChoice == 2 ? 1 : 0;
    stepwiseCheck = state_.applyStepwise;
    aicOption = state_.aicWanted ? 0 : 1;
}

bool AdvSettingsScreen::checkBias(Dialogs& dialogs) {
    const bool ok =
        biasText.check(dialogs, [](const std::string& text) -> std::optional<std::string> {
            if (!core::isNumeric(text)) {
                return "Bias correction must be a value less than two.";
            }
            const double value = core::leadingNumber(text);
            if (value >= 2.0 || value <= 0.0) {
                return "Bias correction must be positive and less than two.";
            }
            return std::nullopt;
        });
    if (ok) {
        state_.biasCorrection = static_cast<float>(core::leadingNumber(biasText.text));
    }
    return ok;
}

bool AdvSettingsScreen::checkPrecRnd(Dialogs& dialogs) {
    const bool ok =
        precRndText.check(dialogs, [](const std::string& text) -> std::optional<std::string> {
            if (!numberIn(text, 0.0, 100.0)) {
                return "Random number size must be a value between 0 and 100.";
            }
            return std::nullopt;
        });
    if (ok) {
        state_.precN =
            static_cast<std::int16_t>(core::roundHalfEven(core::leadingNumber(precRndText.text)));
        precRndText.reset(std::to_string(state_.precN));
    }
    return ok;
}

bool AdvSettingsScreen::checkConditionalThresh(Dialogs& dialogs) {
    const bool ok = conditionalThreshText.check(
        dialogs, [](const std::string& text) -> std::optional<std::string> {
            if (!numberIn(text, 0.05, 0.95)) {
                return "Conditional threshold must be a value between 0.05 and 0.95.";
            }
            return std::nullopt;
        });
    if (ok) {
        state_.conditionalThresh =
            static_cast<float>(core::leadingNumber(conditionalThreshText.text));
    }
    return ok;
}

bool AdvSettingsScreen::checkMonthModification(Dialogs& dialogs, int monthIndex) {
    TextField& field = zomText[static_cast<size_t>(monthIndex)];
    const std::string message = std::string("Modification value for ") + MonthNames[monthIndex] +
                                " must be between 0 and 100.";
    const bool ok =
        field.check(dialogs, [&message](const std::string& text) -> std::optional<std::string> {
            if (!numberIn(text, 0.0, 100.0)) {
                return message;
            }
            return std::nullopt;
        });
    if (ok) {
        state_.monthModification[static_cast<size_t>(monthIndex)] =
            static_cast<float>(core::leadingNumber(field.text));
    }
    return ok;
}

void AdvSettingsScreen::setSettingsFile(const std::string& path) {
    settingsFileText = core::absolutePath(path);
    if (!path.empty()) {
        state_.settingsFile = settingsFileText;
    }
}

void AdvSettingsScreen::selectConditional(int index) {
    conditionalOption = index;
    state_.conditionalSelection = static_cast<std::int16_t>(index + 1);
}

void AdvSettingsScreen::selectOptimisation(int index) {
    optimisationOption = index;
    state_.optimisationChoice = static_cast<std::int16_t>(index + 1);
    if (index == 1) {
        stepwiseCheck = false;
        state_.applyStepwise = false;
    }
}

void AdvSettingsScreen::selectTransformation(int index) {
    transOption = index;
    state_.modelTransformation = static_cast<float>(index + 1);
}

void AdvSettingsScreen::setStepwise(bool ticked) {
    stepwiseCheck = ticked;
    state_.applyStepwise = ticked;
    if (ticked) {
        // Stepwise regression needs ordinary least squares.
        optimisationOption = 0;
        state_.optimisationChoice = 1;
    }
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
    state_.modelTransformation = 1.0f;
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
    core::ProgramState& s = state_;
    loadKeys(dialogs, s.settingsFile,
             {{"PrecN", "Sorry - unable to load variance inflator value from ",
               [&s](const std::string& v) {
                   if (!core::isNumeric(v)) {
                       return false;
                   }
                   s.precN = static_cast<std::int16_t>(core::roundHalfEven(core::leadingNumber(v)));
                   return true;
               }},
              {"INIFile", "Sorry - unable to load settings file name from ",
               [&s](const std::string& v) {
                   if (v.empty()) {
                       return false;
                   }
                   s.settingsFile = v;
                   return true;
               }},
              {"BiasCorrection", "Sorry - unable to load unconditional bias correction value from ",
               [&s](const std::string& v) {
                   if (!core::isNumeric(v)) {
                       return false;
                   }
                   s.biasCorrection = static_cast<float>(core::leadingNumber(v));
                   return true;
               }},
              {"ModelTransformation", "Sorry - unable to load model transformation value from ",
               [&s](const std::string& v) {
                   if (!core::isNumeric(v)) {
                       return false;
                   }
                   s.modelTransformation = static_cast<float>(core::leadingNumber(v));
                   return true;
               }},
              {"OptimisationChoice", "Sorry - unable to load model optimisation option from ",
               [&s](const std::string& v) {
                   const auto choice = numberIn(v, 1, 2);
                   if (!choice || (*choice != 1.0 && *choice != 2.0)) {
                       return false;
                   }
                   s.optimisationChoice = static_cast<std::int16_t>(*choice);
                   return true;
               }},
              {"ApplyStepwise", "Sorry - unable to load stepwise indicator value from ",
               [&s](const std::string& v) {
                   if (!useBoolean(v, s.applyStepwise)) {
                       return false;
                   }
                   if (s.applyStepwise) {
                       s.optimisationChoice = 1;
                   }
                   return true;
               }},
              {"AICWanted", "Sorry - unable to load AIC/BIC indicator value from ",
               [&s](const std::string& v) { return useBoolean(v, s.aicWanted); }},
              {"ConditionalSelection", "Sorry - unable to load conditional selection option from ",
               [&s](const std::string& v) {
                   const auto choice = numberIn(v, 1, 2);
                   if (!choice || (*choice != 1.0 && *choice != 2.0)) {
                       return false;
                   }
                   s.conditionalSelection = static_cast<std::int16_t>(*choice);
                   return true;
               }},
              {"ConditionalThresh", "Sorry - unable to load conditional threshold value from ",
               [&s](const std::string& v) {
                   // Not range-tested here, unlike the load at start.
                   if (!core::isNumeric(v)) {
                       return false;
                   }
                   s.conditionalThresh = static_cast<float>(core::leadingNumber(v));
                   return true;
               }}});
    showState();
}

bool AdvSettingsScreen::save(Dialogs& dialogs) {
    apply(dialogs);
    if (!saveKeys(state_, core::AdvSettingsScreenKeys)) {
        dialogs.error("Sorry, unable to save data to " + state_.settingsFile + ".\r\n" +
                      "Please check file name and path of settings file." +
                      whyNotSaved(state_.settingsFile));
        return false;
    }
    dialogs.message("Settings Saved", "Advanced settings saved to " + state_.settingsFile + ".",
                    Icon::Information);
    return true;
}

} // namespace varo::screens
