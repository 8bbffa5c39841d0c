#include "cli/cli.hpp"

#include "cli/commands.hpp"
#include "core/failure.hpp"
#include "core/quoted_text.hpp"

#include <algorithm>
#include <new>
#include <optional>

namespace varo::cli {

namespace {

// The global options that take a value in the next word.
bool takesValue(const std::string& option) {
    return option == "--settings" || option == "--set";
}

// A word where a command (or a command's own command, as in `settings show`) must stand
// that names none, with the words before it; the parser would only say that a command is
// required.
struct UnknownCommand {
    std::string words;      // "settings shw"
    const CLI::App* within; // the program, or the command whose commands it should name
};

std::optional<UnknownCommand> unknownCommand(const CLI::App& app,
                                             const std::vector<std::string>& args) {
    const CLI::App* current = &app;
    std::string words;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& word = args[i];
        if (!word.empty() && word.front() == '-') {
            i += takesValue(word) ? 1 : 0;
            continue;
        }
        const auto commands = current->get_subcommands({});
        if (commands.empty()) {
            return std::nullopt;
        }
        words += (words.empty() ? "" : " ") + word;
        const auto named = std::find_if(commands.begin(), commands.end(),
                                        [&](const CLI::App* c) { return c->check_name(word); });
        if (named == commands.end()) {
            return UnknownCommand{words, current};
        }
        current = *named;
    }
    return std::nullopt;
}

std::string commandNames(const CLI::App& app) {
    std::string names;
    for (const CLI::App* command : app.get_subcommands({})) {
        names += (names.empty() ? "" : ", ") + command->get_name();
    }
    return names;
}

} // namespace

int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    return runCli(args, out, err, nullptr);
}

int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
           charts::ChartExporter* chartExporter) {
    CliContext context(out, err);
    context.chartExporter = chartExporter;
    CommandResult result;

    CLI::App app{"VARO: statistical downscaling of daily climate data", "varo"};
    app.set_version_flag("--version", "varo 0.1.0");
    app.require_subcommand(1);
    // Global options may stand anywhere on the line: a command passes the options it does
    // not know on to the program.
    app.fallthrough();
    app.footer("Global options may stand anywhere on the line. Dates are DD/MM/YYYY; a period "
               "is START:END.\nExit status: 0 done, 1 run-time failure, 2 refused input, 130 "
               "cancelled.");
    app.add_option("--settings", context.options.settingsFile,
                   "Settings file to use instead of ~/.config/varo/VARO.INI")
        ->type_name(kind::File);
    app.add_option("--set", context.options.overrides,
                   "Override a setting for this run only (any settings-file key)")
        ->type_name("KEY=VALUE");
    app.add_flag("--json", context.options.json, "Print results as JSON");
    app.add_flag("--quiet", context.options.quiet, "Print no progress and no information messages");
    app.add_flag("--yes", context.options.yes, "Answer Yes to every question");
    addCommands(app, context, result);

    if (const auto unknown = unknownCommand(app, args)) {
        const std::string of =
            unknown->within == &app ? std::string() : "of " + unknown->within->get_name() + " ";
        err << "Unknown command " << core::quotedInput(unknown->words) << ". The commands " << of
            << "are: " << commandNames(*unknown->within)
            << ".\nRun with --help for more information.\n";
        return ExitRefused;
    }
    std::vector<std::string> reversed(args.rbegin(), args.rend());
    try {
        const InterruptGuard interrupts;
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error, out, err);
        return code == 0 ? ExitDone : ExitRefused;
    } catch (const std::bad_alloc&) {
        // Runs catch this themselves; this is the last line for what runs outside them.
        context.progress().finish();
        context.dialogs().error(
            core::reportFailureText(core::failure::OutOfMemory, screens::OutOfMemoryText));
        return ExitFailed;
    }
    context.progress().finish();
    // A run that showed an error box did not end as it should have, even when it went on
    // to the end (a cross validation that could not be computed, a save that failed).
    if (result.exitCode == ExitDone && context.dialogs().errorShown()) {
        return ExitFailed;
    }
    return result.exitCode;
}

void addOutputOption(CLI::App* command, std::string& target, const std::string& description,
                     const std::vector<std::string>& hiddenAliases) {
    command->add_option("-o,--output", target, description + " (required)")->type_name(kind::File);
    for (const std::string& alias : hiddenAliases) {
        addHiddenAlias(command, alias, target);
    }
}

CLI::Option* oneOf(CLI::Option* option, const std::vector<std::string>& words) {
    std::string shown;
    for (const std::string& word : words) {
        shown += (shown.empty() ? "" : "|") + word;
    }
    return option->check(CLI::Validator(CLI::IsMember(words)).description(""))->type_name(shown);
}

void requireOutput(const std::string& target) {
    if (target.empty()) {
        throw CLI::RequiredError("-o,--output");
    }
}

} // namespace varo::cli
