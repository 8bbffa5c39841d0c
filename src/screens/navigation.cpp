#include "screens/navigation.hpp"

#include "core/ini_file.hpp"
#include "core/series_file.hpp"
#include "core/settings.hpp"

namespace varo::screens {

const std::vector<ToolbarKey>& hubToolbar() {
    static const std::vector<ToolbarKey> keys = {
        {ScreenKey::Home, "tb2Home", "Home", "Back to the start screen", "home"},
        {ScreenKey::Quality, "tb2Quality", "Quality", "Quality control: check a data file",
         "quality"},
        {ScreenKey::Transform, "tb2Transform", "Transform", "Transform a data file", "transform"},
        {ScreenKey::Screen, "tb2Screen", "Screen",
         "Screen variables: correlate predictors with the predictand", "screen"},
        {ScreenKey::Calibrate, "tb2Calibrate", "Calibrate", "Calibrate a model", "calibrate"},
        {ScreenKey::WeatherGen, "tb2WeatherGen", "Generate",
         "Weather generator: synthesise daily series from a model", "generate"},
        {ScreenKey::AnalyseData, "tb2AnalyseData", "Statistics",
         "Summary statistics of observed or modelled series", "stats"},
        {ScreenKey::Diagnostics, "tb2Diagnostics", "Diagnostics",
         "Compare observed and modelled series", "diagnose"},
        {ScreenKey::Generate, "tb2Generate", "Scenario", "Scenario generator: perturb a series",
         "scenario"},
        {ScreenKey::Compare, "tb2Compare", "Compare", "Compare results: chart two results files",
         "compare"},
        {ScreenKey::TSPlot, "tb2TSPlot", "Time Series", "Time-series analysis of up to five files",
         "timeseries"},
    };
    return keys;
}

const ToolbarKey* findToolbarKey(std::string_view shortName) {
    for (const ToolbarKey& key : hubToolbar()) {
        if (key.shortName == shortName) {
            return &key;
        }
    }
    return nullptr;
}

void startProgram(core::ProgramState& state, const std::string& settingsFile) {
    core::initialiseState(state);
    // The settings file saves its own path (INIFile), which must name it from any folder.
    state.settingsFile = core::absolutePath(settingsFile);
    state.defaultSettingsFile = state.settingsFile;
    core::loadStartupSettings(state);
}

void startProgram(core::ProgramState& state) {
    startProgram(state, core::defaultSettingsPath());
}

void IntroScreen::start() {
    if (splashCheck) {
        core::writeProfileString(state_.settingsFile, core::SettingsSection, "Splash", "False");
    }
}

bool confirmExit(Dialogs& dialogs) {
    return dialogs.askYesNo("Exit VARO?", "Do you really want to exit VARO?", Icon::Exclamation);
}

bool confirmCancel(Dialogs& dialogs) {
    return dialogs.askYesNo("Cancel?", "Do you really want to cancel processing?", Icon::Question);
}

} // namespace varo::screens
