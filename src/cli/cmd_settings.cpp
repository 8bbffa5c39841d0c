// varo settings show | set KEY VALUE | reset
#include "cli/commands.hpp"

#include "core/ini_file.hpp"
#include "core/settings.hpp"
#include "screens/settings_override.hpp"
#include "screens/settings_screens.hpp"

namespace varo::cli {

namespace {

bool isBooleanKey(std::string_view key) {
    return key == "AllowNeg" || key == "RandomSeed" || key == "ApplyStepwise" ||
           key == "AICWanted" || key == "Splash";
}

bool isTextKey(std::string_view key) {
    return key == "GlobalSDate" || key == "GlobalEDate" || key == "DefaultDir" || key == "INIFile";
}

bool isIntegerKey(std::string_view key) {
    return key == "YearIndicator" || key == "PrecN" || key == "OptimisationChoice" ||
           key == "ConditionalSelection";
}

// Numbers as numbers, flags as booleans, dates and paths as text.
nlohmann::ordered_json jsonValue(std::string_view key, const std::string& written) {
    if (isBooleanKey(key)) {
        return written == "True";
    }
    if (isTextKey(key)) {
        return written;
    }
    if (isIntegerKey(key)) {
        return std::stoll(written);
    }
    return std::stod(written);
}

int showSettings(CliContext& context) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    nlohmann::ordered_json document = nlohmann::ordered_json::object();
    for (std::string_view key : screens::settingsFileKeys()) {
        const std::string written = core::writtenSettingValue(context.state, key);
        if (context.options.json) {
            document[std::string(key)] = jsonValue(key, written);
        } else {
            context.out << key << '=' << written << '\n';
        }
    }
    if (context.options.json) {
        context.printJson(document);
    }
    return ExitDone;
}

bool writeKeys(const core::ProgramState& state, const std::vector<std::string_view>& keys) {
    for (std::string_view key : keys) {
        if (!core::writeProfileString(state.settingsFile, core::SettingsSection, key,
                                      core::writtenSettingValue(state, key))) {
            return false;
        }
    }
    return true;
}

int setSetting(CliContext& context, const std::string& key, const std::string& value) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    if (!screens::overrideSetting(context.state, context.dialogs(), key, value)) {
        return ExitRefused;
    }
    if (const auto problem = core::settingsFileProblem(context.state.settingsFile)) {
        context.dialogs().error("Sorry, unable to save data to " + context.state.settingsFile +
                                ".\r\n" + *problem);
        return ExitRefused;
    }
    // Every key is written, so that a file made by `settings set` alone loads at start,
    // which needs YearIndicator to be present.
    const std::string_view canonical = screens::canonicalSettingKey(key);
    std::vector<std::string_view> keys(core::SettingsScreenKeys);
    keys.insert(keys.end(), core::AdvSettingsScreenKeys.begin(), core::AdvSettingsScreenKeys.end());
    if (!writeKeys(context.state, keys)) {
        context.dialogs().error("Sorry, unable to save data to " + context.state.settingsFile +
                                ".");
        return ExitFailed;
    }
    context.dialogs().message(
        "Settings Saved", std::string(canonical) + " saved to " + context.state.settingsFile + ".",
        screens::Icon::Information);
    return ExitDone;
}

// Both screens' Reset, then both screens' Save, as a person would do on the desktop.
int resetSettings(CliContext& context) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    screens::SettingsScreen settings(context.state);
    screens::AdvSettingsScreen advanced(context.state);
    settings.reset();
    advanced.reset();
    const bool saved = settings.save(context.dialogs());
    return advanced.save(context.dialogs()) && saved ? ExitDone : ExitFailed;
}

} // namespace

void addSettingsCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    CLI::App* settings = app.add_subcommand("settings", "Show, change or reset the settings file");
    settings->require_subcommand(1);

    CLI::App* show = settings->add_subcommand("show", "Print every setting as KEY=VALUE");
    show->callback([&] { result.exitCode = showSettings(context); });

    const auto setArgs = std::make_shared<std::pair<std::string, std::string>>();
    CLI::App* set = settings->add_subcommand("set", "Change one setting and save it");
    set->add_option("KEY", setArgs->first, "Settings-file key, e.g. Thresh")
        ->required()
        ->type_name("NAME");
    set->add_option("VALUE", setArgs->second, "New value")->required()->type_name("VALUE");
    set->callback(
        [&, setArgs] { result.exitCode = setSetting(context, setArgs->first, setArgs->second); });

    CLI::App* reset =
        settings->add_subcommand("reset", "Put every setting back to its factory value and save");
    reset->callback([&] { result.exitCode = resetSettings(context); });
}

} // namespace varo::cli
