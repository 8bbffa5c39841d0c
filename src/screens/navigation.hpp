// The opening screen, the hub's toolbar in the order of the work, and leaving the program.
#pragma once

#include "core/program_state.hpp"
#include "screens/dialogs.hpp"

#include <string_view>
#include <vector>

namespace varo::screens {

// The work screens, in the order of the hub's toolbar.
enum class ScreenKey {
    Home,
    Quality,
    Transform,
    Screen,
    Calibrate,
    WeatherGen,
    AnalyseData,
    Diagnostics,
    Generate,
    Compare,
    TSPlot,
};

struct ToolbarKey {
    ScreenKey key;
    std::string_view name;    // tb2Quality
    std::string_view caption; // shown on the toolbar
    std::string_view toolTip;
    std::string_view shortName; // for the command line and --screen
};

// Home first, then the work screens in the order of the work.
const std::vector<ToolbarKey>& hubToolbar();
const ToolbarKey* findToolbarKey(std::string_view shortName);

// Where the person is: going to another screen replaces the current one, and the key of
// the screen already showing does nothing.
class Hub {
public:
    ScreenKey current() const { return current_; }
    // True when the screen changes.
    bool go(ScreenKey key) {
        if (key == current_) {
            return false;
        }
        current_ = key;
        return true;
    }

private:
    ScreenKey current_ = ScreenKey::Home;
};

// Start of the program: every field to its initial value, then the silent load of the
// settings file (the default one, or another the command line names).
void startProgram(core::ProgramState& state, const std::string& settingsFile);
void startProgram(core::ProgramState& state);

// The opening screen. It waits only when Splash is on.
class IntroScreen {
public:
    explicit IntroScreen(core::ProgramState& state) : state_(state) {}

    bool splashCheck = false; // "Do not show this splash screen again"

    bool waits() const { return state_.splash; }
    // StartButton: writes Splash=False when the box is ticked, at once and alone.
    void start();

private:
    core::ProgramState& state_;
};

// "Exit VARO?": true when the answer is Yes.
bool confirmExit(Dialogs& dialogs);

// "Cancel?": true when the person confirms a cancel of the run in progress.
bool confirmCancel(Dialogs& dialogs);

} // namespace varo::screens
