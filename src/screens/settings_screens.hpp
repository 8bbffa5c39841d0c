// Settings and AdvSettings: the two screens on which the person changes the settings,
// with their field checks in the order Apply runs them, Load and Save of the settings
// file, and Reset. Changes are in force at once, saved or not.
#pragma once

#include "core/program_state.hpp"
#include "screens/dialogs.hpp"
#include "screens/file_choice.hpp"
#include "screens/text_field.hpp"

#include <array>
#include <string>

namespace varo::screens {

class SettingsScreen {
public:
    explicit SettingsScreen(core::ProgramState& state);

    TextField sDateText;
    TextField eDateText;
    TextField rainThreshText;
    TextField missingCodeText;
    int yearDays = 0; // 0 "Calendar (366)", 1 "365 (GCM)", 2 "360 (GCM)"
    bool allowNegCheck = true;
    bool randomSeedCheck = true;
    std::string defaultDir;

    // Field checks, run when a field loses the focus and again by Apply.
    bool checkMissingCode(Dialogs& dialogs);
    bool checkStartDate(Dialogs& dialogs);
    bool checkEndDate(Dialogs& dialogs);
    bool checkThreshold(Dialogs& dialogs);

    // Immediate controls.
    void selectYearDays(int index);
    void setAllowNeg(bool ticked);
    void setRandomSeed(bool ticked);
    void setDefaultDir(const std::string& folder);

    // True only when every check passes; stops at the first refusal.
    bool apply(Dialogs& dialogs);
    void reset();
    void load(Dialogs& dialogs);
    // False when the settings could not be saved; the box has said why.
    bool save(Dialogs& dialogs);
    // Shows the state's values in the controls.
    void showState();

private:
    bool checkDate(Dialogs& dialogs, TextField& field, bool isStart);

    core::ProgramState& state_;
};

class AdvSettingsScreen {
public:
    explicit AdvSettingsScreen(core::ProgramState& state);

    std::string settingsFileText;
    TextField biasText;
    TextField precRndText;
    TextField conditionalThreshText;
    std::array<TextField, 12> zomText;
    int conditionalOption = 0;  // 0 "Stochastic", 1 "Fixed threshold:"
    int transOption = 0;        // 0 None .. 4 Box Cox; -1 when the code selects none
    int optimisationOption = 0; // 0 "Ordinary Least Squares", 1 "Dual simplex"
    bool stepwiseCheck = false;
    int aicOption = 0; // shows AICWanted only: 0 true, 1 false

    bool checkBias(Dialogs& dialogs);
    bool checkPrecRnd(Dialogs& dialogs);
    bool checkConditionalThresh(Dialogs& dialogs);
    bool checkMonthModification(Dialogs& dialogs, int monthIndex);

    void setSettingsFile(const std::string& path);
    void selectConditional(int index);
    void selectOptimisation(int index);
    void selectTransformation(int index);
    void setStepwise(bool ticked);
    // Changes the display only: the choice is not in force and Save writes the old value.
    void selectAic(int index);

    bool apply(Dialogs& dialogs);
    void reset();
    void load(Dialogs& dialogs);
    // False when the settings could not be saved; the box has said why.
    bool save(Dialogs& dialogs);
    void showState();

private:
    core::ProgramState& state_;
};

} // namespace varo::screens
