#include "cli/cli_context.hpp"

#include "core/quoted_text.hpp"
#include "core/settings.hpp"
#include "screens/navigation.hpp"

#include <atomic>
#include <csignal>
#include <iostream>
#include <unistd.h>

namespace varo::cli {

namespace {
std::atomic<bool> interrupted{false};

extern "C" void onInterrupt(int) {
    interrupted = true;
}

} // namespace

InterruptGuard::InterruptGuard() {
    interrupted = false;
    previous_ = std::signal(SIGINT, onInterrupt);
}

InterruptGuard::~InterruptGuard() {
    std::signal(SIGINT, previous_);
}

int exitCodeFor(screens::RunOutcome outcome) {
    switch (outcome) {
    case screens::RunOutcome::Done:
        return ExitDone;
    case screens::RunOutcome::Refused:
        return ExitRefused;
    case screens::RunOutcome::Failed:
        return ExitFailed;
    case screens::RunOutcome::Cancelled:
        return ExitCancelled;
    }
    return ExitFailed;
}

std::string withUnixLineEnds(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r') {
            if (i + 1 < text.size() && text[i + 1] == '\n') {
                continue;
            }
            result += '\n';
        } else {
            result += text[i];
        }
    }
    return result;
}

void CliDialogs::message(std::string_view title, std::string_view text, screens::Icon icon) {
    const std::string plain = withUnixLineEnds(text);
    switch (icon) {
    case screens::Icon::Error:
        err_ << "Error Message: " << plain << '\n';
        errorShown_ = true;
        break;
    case screens::Icon::Warning:
    case screens::Icon::Exclamation:
        warnings_.push_back(plain);
        err_ << title << ": " << plain << '\n';
        break;
    default:
        if (!options_.quiet && !options_.json) {
            out_ << plain << '\n';
        }
        break;
    }
}

bool CliDialogs::askYesNo(std::string_view title, std::string_view text, screens::Icon) {
    if (!options_.quiet) {
        err_ << title << ": " << withUnixLineEnds(text)
             << (options_.yes ? " Yes (--yes)" : " No (pass --yes to answer Yes)") << '\n';
    }
    return options_.yes;
}

CliProgress::~CliProgress() {
    finish();
}

void CliProgress::report(long current, long total, std::string_view caption) {
    if (!terminal_ || options_.quiet || total <= 0) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (drawn_ && now - lastDraw_ < std::chrono::milliseconds(100)) {
        return;
    }
    lastDraw_ = now;
    drawn_ = true;
    const long percent = std::clamp(current * 100 / total, 0L, 100L);
    const int width = 30;
    const int filled = static_cast<int>(percent * width / 100);
    err_ << '\r' << std::string(filled, '#') << std::string(width - filled, '.') << ' ' << percent
         << "% " << caption << "\x1b[K" << std::flush;
}

bool CliProgress::stopRequested() {
    return interrupted.exchange(false);
}

void CliProgress::finish() {
    if (drawn_) {
        err_ << "\r\x1b[K" << std::flush;
        drawn_ = false;
    }
}

CliContext::CliContext(std::ostream& outStream, std::ostream& errStream)
    : out(outStream), err(errStream), dialogs_(outStream, errStream, options),
      progress_(errStream, &errStream == &std::cerr && ::isatty(2) != 0, options) {}

// A settings file that the load passes over, because it cannot be read or is no settings
// file, would leave the factory settings in force without a word.
void CliContext::warnOfIgnoredSettings(const std::string& path) {
    if (const auto problem = core::settingsFileProblem(path)) {
        dialogs_.message("Warning", *problem + " None of its settings are in force.",
                         screens::Icon::Warning);
    }
}

int CliContext::prepareState() {
    const std::string settingsFile =
        options.settingsFile.empty() ? core::defaultSettingsPath() : options.settingsFile;
    warnOfIgnoredSettings(settingsFile);
    screens::startProgram(state, settingsFile);
    if (state.settingsFile != settingsFile) {
        warnOfIgnoredSettings(state.settingsFile);
    }
    for (const std::string& assignment : options.overrides) {
        const size_t equals = assignment.find('=');
        if (equals == std::string::npos) {
            dialogs_.error("--set takes KEY=VALUE, not " + core::quotedInput(assignment) + ".");
            return ExitRefused;
        }
        if (const auto refusal = core::assignSetting(state, assignment.substr(0, equals),
                                                     assignment.substr(equals + 1))) {
            dialogs_.error(*refusal);
            return ExitRefused;
        }
    }
    return ExitDone;
}

void CliContext::printJson(const nlohmann::ordered_json& document) {
    out << document.dump(2) << '\n';
}

void CliContext::printLine(const std::string& text) {
    if (!options.json) {
        out << text << '\n';
    }
}

void CliContext::printTable(const core::ResultsTable& table) {
    if (options.json || options.quiet) {
        return;
    }
    for (const std::string& line : core::tableLines(table)) {
        out << line << '\n';
    }
}

void CliContext::reportWritten(std::string_view what, const std::string& path) {
    if (!options.quiet) {
        err << what << " written: " << path << '\n';
    }
}

} // namespace varo::cli
