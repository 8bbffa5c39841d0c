// Each command adds itself to the command line here.
#pragma once

#include "cli/cli_context.hpp"
#include "cli/json_output.hpp"

#include <CLI/CLI.hpp>

namespace varo::cli {

// How --help shows the kind of value an option takes.
namespace kind {
inline constexpr const char* Date = "DD/MM/YYYY";
inline constexpr const char* Period = "START:END";
inline constexpr const char* Number = "NUMBER";
inline constexpr const char* Integer = "INT";
inline constexpr const char* File = "FILE";
inline constexpr const char* Folder = "DIR";
} // namespace kind

// Adds -o/--output, the one spelling of a command's output file, with older spellings as
// hidden aliases. The command's callback calls `requireOutput` before it runs.
void addOutputOption(CLI::App* command, std::string& target, const std::string& description,
                     const std::vector<std::string>& hiddenAliases = {});
// Refuses a run without an output file as the parser refuses a missing required option.
void requireOutput(const std::string& target);
// Adds a hidden older spelling of an option, storing into the same place.
template <typename T>
void addHiddenAlias(CLI::App* command, const std::string& name, T& target) {
    command->add_option(name, target)->group("");
}

// Restricts an option to a list of words, shown in --help as "word|word|...".
CLI::Option* oneOf(CLI::Option* option, const std::vector<std::string>& words);

// A command's callback stores its exit status here.
struct CommandResult {
    int exitCode = ExitDone;
};

void addSettingsCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addQcCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addTransformCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addScreenCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addGenerateCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addScenarioCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addStatsCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addDemoCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addCalibrateCommand(CLI::App& app, CliContext& context, CommandResult& result);
void addCompareCommand(CLI::App& app, CliContext& context, CommandResult& result);

inline void addCommands(CLI::App& app, CliContext& context, CommandResult& result) {
    addSettingsCommand(app, context, result);
    addQcCommand(app, context, result);
    addTransformCommand(app, context, result);
    addScreenCommand(app, context, result);
    addCalibrateCommand(app, context, result);
    addGenerateCommand(app, context, result);
    addScenarioCommand(app, context, result);
    addStatsCommand(app, context, result);
    addCompareCommand(app, context, result);
    addDemoCommand(app, context, result);
}

} // namespace varo::cli
