#include "screens/settings_override.hpp"

#include "core/numeric_text.hpp"
#include "core/settings.hpp"
#include "screens/settings_screens.hpp"

#include <algorithm>
#include <cctype>

namespace varo::screens {

namespace {

bool equalNoCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

bool setBoolean(Dialogs& dialogs, std::string_view key, const std::string& value, bool& field) {
    if (equalNoCase(value, "true")) {
        field = true;
        return true;
    }
    if (equalNoCase(value, "false")) {
        field = false;
        return true;
    }
    dialogs.error(std::string(key) + " must be True or False.");
    return false;
}

// A whole number within the choices, or the message.
bool chooseOne(Dialogs& dialogs, std::string_view key, const std::string& value,
               const std::vector<int>& choices, int& chosen) {
    if (core::isNumeric(value)) {
        const double number = core::leadingNumber(value);
        for (int choice : choices) {
            if (number == choice) {
                chosen = choice;
                return true;
            }
        }
    }
    std::string list;
    for (size_t i = 0; i < choices.size(); ++i) {
        list += (i == 0                    ? ""
                 : i + 1 == choices.size() ? " or "
                                           : ", ") +
                std::to_string(choices[i]);
    }
    dialogs.error(std::string(key) + " must be " + list + ".");
    return false;
}

} // namespace

const std::vector<std::string_view>& settingsFileKeys() {
    static const std::vector<std::string_view> keys = [] {
        std::vector<std::string_view> all(core::SettingsScreenKeys);
        all.insert(all.end(), core::AdvSettingsScreenKeys.begin(),
                   core::AdvSettingsScreenKeys.end());
        all.push_back("Splash");
        return all;
    }();
    return keys;
}

std::string_view canonicalSettingKey(std::string_view key) {
    for (std::string_view known : settingsFileKeys()) {
        if (equalNoCase(known, key)) {
            return known;
        }
    }
    return {};
}

bool overrideSetting(core::ProgramState& state, Dialogs& dialogs, std::string_view rawKey,
                     const std::string& value) {
    const std::string_view key = canonicalSettingKey(rawKey);
    if (key.empty()) {
        std::string known;
        for (std::string_view name : settingsFileKeys()) {
            known += (known.empty() ? "" : ", ") + std::string(name);
        }
        dialogs.error("There is no setting '" + std::string(rawKey) + "'. The settings are " +
                      known + ".");
        return false;
    }
    SettingsScreen settings(state);
    AdvSettingsScreen advanced(state);
    int choice = 0;
    if (key == "YearIndicator") {
        if (!chooseOne(dialogs, key, value, {366, 365, 360}, choice)) {
            return false;
        }
        settings.selectYearDays(choice == 365 ? 1 : choice == 360 ? 2 : 0);
        return true;
    }
    if (key == "GlobalSDate") {
        settings.sDateText.text = value;
        return settings.checkStartDate(dialogs);
    }
    if (key == "GlobalEDate") {
        settings.eDateText.text = value;
        return settings.checkEndDate(dialogs);
    }
    if (key == "Thresh") {
        settings.rainThreshText.text = value;
        return settings.checkThreshold(dialogs);
    }
    if (key == "GlobalMissingCode") {
        settings.missingCodeText.text = value;
        return settings.checkMissingCode(dialogs);
    }
    if (key == "DefaultDir") {
        settings.setDefaultDir(value);
        return true;
    }
    if (key == "PrecN") {
        advanced.precRndText.text = value;
        return advanced.checkPrecRnd(dialogs);
    }
    if (key == "INIFile") {
        advanced.setSettingsFile(value);
        return true;
    }
    if (key == "BiasCorrection") {
        advanced.biasText.text = value;
        return advanced.checkBias(dialogs);
    }
    if (key == "ConditionalThresh") {
        advanced.conditionalThreshText.text = value;
        return advanced.checkConditionalThresh(dialogs);
    }
    if (key == "ModelTransformation") {
        if (!chooseOne(dialogs, key, value, {1, 2, 3, 4, 5}, choice)) {
            return false;
        }
        advanced.selectTransformation(choice - 1);
        return true;
    }
    if (key == "OptimisationChoice") {
        if (!chooseOne(dialogs, key, value, {1, 2}, choice)) {
            return false;
        }
        advanced.selectOptimisation(choice - 1);
        return true;
    }
    if (key == "ConditionalSelection") {
        if (!chooseOne(dialogs, key, value, {1, 2}, choice)) {
            return false;
        }
        advanced.selectConditional(choice - 1);
        return true;
    }
    bool flag = false;
    if (!setBoolean(dialogs, key, value, flag)) {
        return false;
    }
    if (key == "AllowNeg") {
        settings.setAllowNeg(flag);
    } else if (key == "RandomSeed") {
        settings.setRandomSeed(flag);
    } else if (key == "ApplyStepwise") {
        advanced.setStepwise(flag);
    } else if (key == "AICWanted") {
        state.aicWanted = flag;
    } else {
        state.splash = flag;
    }
    return true;
}

} // namespace varo::screens
