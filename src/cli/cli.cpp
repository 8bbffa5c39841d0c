#include "cli/cli.hpp"

#include "cli/commands.hpp"

#include <algorithm>

namespace varo::cli {

int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    CliContext context(out, err);
    CommandResult result;

    CLI::App app{"VARO: statistical downscaling of daily climate data", "varo"};
    app.set_version_flag("--version", "varo 0.1.0");
    app.require_subcommand(1);
    app.add_option("--settings", context.options.settingsFile,
                   "Settings file to use instead of ~/.config/varo/VARO.INI");
    app.add_option("--set", context.options.overrides,
                   "Override a setting for this run only, KEY=VALUE (any settings-file key)");
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

} // namespace varo::cli
