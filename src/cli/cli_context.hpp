// What every command shares: the global options, the program state loaded from the
// settings file with the --set overrides, and the command line's faces of `Dialogs` and
// `Progress`.
#pragma once

#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "core/results_table.hpp"
#include "screens/dialogs.hpp"
#include "screens/screen_run.hpp"

#include <chrono>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace varo::charts {
class ChartExporter;
}

namespace varo::cli {

inline constexpr int ExitDone = 0;
inline constexpr int ExitFailed = 1;
inline constexpr int ExitRefused = 2;
inline constexpr int ExitCancelled = 130;

int exitCodeFor(screens::RunOutcome outcome);

struct GlobalOptions {
    std::string settingsFile;
    std::vector<std::string> overrides; // KEY=VALUE
    bool json = false;
    bool quiet = false;
    bool yes = false;
};

// Messages: errors go to stderr as "Error Message: " and the text, warnings as their title
// and text; information boxes go to stdout unless --quiet or --json. Questions are
// answered Yes only with --yes. There are no file pickers.
class CliDialogs final : public screens::Dialogs {
public:
    CliDialogs(std::ostream& out, std::ostream& err, const GlobalOptions& options)
        : out_(out), err_(err), options_(options) {}

    void message(std::string_view title, std::string_view text, screens::Icon icon) override;
    bool askYesNo(std::string_view title, std::string_view text, screens::Icon icon) override;
    std::optional<std::string> pickOpenFile(std::string_view, std::string_view) override {
        return std::nullopt;
    }
    std::optional<std::string> pickSaveFile(std::string_view, std::string_view,
                                            std::string_view) override {
        return std::nullopt;
    }
    std::optional<std::string> pickFolder(std::string_view) override { return std::nullopt; }

    // Texts of the warnings shown, for --json reports.
    const std::vector<std::string>& warnings() const { return warnings_; }
    // True once an "Error Message" has been printed.
    bool errorShown() const { return errorShown_; }

private:
    std::ostream& out_;
    std::ostream& err_;
    const GlobalOptions& options_;
    std::vector<std::string> warnings_;
    bool errorShown_ = false;
};

// A bar on stderr when it is a terminal; Ctrl-C asks for a stop.
class CliProgress final : public core::Progress {
public:
    CliProgress(std::ostream& err, bool terminal, const GlobalOptions& options)
        : err_(err), terminal_(terminal), options_(options) {}
    ~CliProgress() override;
    void report(long current, long total, std::string_view caption) override;
    bool stopRequested() override;
    void finish();

private:
    std::ostream& err_;
    bool terminal_;
    const GlobalOptions& options_;
    bool drawn_ = false;
    std::chrono::steady_clock::time_point lastDraw_{};
};

class CliContext {
public:
    CliContext(std::ostream& out, std::ostream& err);

    std::ostream& out;
    std::ostream& err;
    GlobalOptions options;
    core::ProgramState state;
    // Draws --plot pictures; null in a build without the desktop program.
    charts::ChartExporter* chartExporter = nullptr;

    // Loads the settings file (the default one, or --settings) and applies the --set
    // overrides through the settings screens' checks. Answers 0, or the exit status of a
    // refused override.
    int prepareState();

    CliDialogs& dialogs() { return dialogs_; }
    CliProgress& progress() { return progress_; }

    // Prints a JSON document on stdout.
    void printJson(const nlohmann::ordered_json& document);
    // Prints a line of a text report on stdout unless --json.
    void printLine(const std::string& text);
    // Prints a results table as aligned text on stdout, unless --json or --quiet.
    void printTable(const core::ResultsTable& table);
    // Names a file the command wrote, on stderr unless --quiet: "<what> written: <path>".
    void reportWritten(std::string_view what, const std::string& path);

private:
    void warnOfIgnoredSettings(const std::string& path);

    CliDialogs dialogs_;
    CliProgress progress_;
};

// While it lives, Ctrl-C asks the running command to stop instead of ending the process.
class InterruptGuard {
public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

private:
    void (*previous_)(int) = nullptr;
};

// Newlines in the system's texts are CR LF; a terminal wants LF.
std::string withUnixLineEnds(std::string_view text);

} // namespace varo::cli
