// Each command adds itself to the command line here.
#pragma once

#include "cli/cli_context.hpp"

#include <CLI/CLI.hpp>

namespace varo::cli {

// A command's callback stores its exit status here.
struct CommandResult {
    int exitCode = ExitDone;
};

void addSettingsCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addQcCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addTransformCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addScreenCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addGenerateCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addStatsCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addDemoCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addCalibrateCommand(CLI::App& app, CliContext& context, CommandResult& result);

inline void addCommands(CLI::App& app, CliContext& context, CommandResult& result) {
    addSettingsCommand(app, context, result);
    addQcCommand(app, context, result);
    addTransformCommand(app, context, result);
    addScreenCommand(app, context, result);
    addCalibrateCommand(app, context, result);
    addGenerateCommand(app, context, result);
    addStatsCommand(app, context, result);
    addDemoCommand(app, context, result);
}

} // namespace varo::cli
