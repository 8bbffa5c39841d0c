#include "cli/cli.hpp"

#include "cli/commands.hpp"

#include <algorithm>

namespace varo::cli {

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

    std::vector<std::string> reversed(args.rbegin(), args.rend());
    try {
        const InterruptGuard interrupts;
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error, out, err);
        return code == 0 ? ExitDone : ExitRefused;
    }
    context.progress().finish();
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
