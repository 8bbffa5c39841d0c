// varo settings show | set KEY VALUE | reset
#include "cli/commands.hpp"

#include "core/settings.hpp"
#include "screens/settings_screens.hpp"

namespace varo::cli {

namespace {

// Numbers as numbers, flags as booleans, dates and paths as text.
Json jsonValue(const core::SettingKey& key, const std::string& written) {
    switch (key.type) {
    case core::SettingType::Flag:
        return written == "True";
    case core::SettingType::Integer:
        return std::stoll(written);
    case core::SettingType::Number:
        return std::stod(written);
    case core::SettingType::Date:
    case core::SettingType::Path:
        break;
    }
    return written;
}

int showSettings(CliContext& context) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    Json document = Json::object();
    for (const core::SettingKey& key : core::settingsTable()) {
        const std::string written = key.written(context.state);
        if (context.options.json) {
            document[std::string(key.name)] = jsonValue(key, written);
        } else {
            context.out << key.name << '=' << written << '\n';
        }
    }
    if (context.options.json) {
        context.printJson(document);
    }
    return ExitDone;
}

int setSetting(CliContext& context, const std::string& name, const std::string& value) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    if (const auto refusal = core::assignSetting(context.state, name, value)) {
        context.dialogs().error(*refusal);
        return ExitRefused;
    }
    const std::string& path = context.state.settingsFile;
    if (const auto problem = core::settingsFileProblem(path)) {
        context.dialogs().error("Sorry, unable to save data to " + path + ".\r\n" + *problem);
        return ExitRefused;
    }
    // The keys of both screens are written, so that a file made by `settings set` alone
    // loads at start, which needs YearIndicator to be present.
    auto keys = core::keysSavedBy(core::SettingScreen::Settings);
    const auto advanced = core::keysSavedBy(core::SettingScreen::AdvSettings);
    keys.insert(keys.end(), advanced.begin(), advanced.end());
    if (!core::writeSettings(context.state, keys).all) {
        context.dialogs().error("Sorry, unable to save data to " + path + ".");
        return ExitFailed;
    }
    context.dialogs().message(
        "Settings Saved", std::string(core::findSettingKey(name)->name) + " saved to " + path + ".",
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
