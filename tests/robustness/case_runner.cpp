#include "robustness/case_runner.hpp"

#include "robustness/folder_snapshot.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

namespace varo::robustness {

namespace fs = std::filesystem;

namespace {

// A sanitizer's report ends the child with this status (and a text on stderr).
constexpr int SanitizerExit = 86;
constexpr size_t MessageLimit = 16 * 1024;

bool keepFolders() {
    return std::getenv("VARO_ROBUSTNESS_KEEP") != nullptr;
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// "line 12" in any case, not followed by another digit.
bool namesLine(const std::string& message, long line) {
    const std::string text = lower(message);
    const std::string wanted = "line " + std::to_string(line);
    for (size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + 1)) {
        const size_t after = at + wanted.size();
        if (after >= text.size() || !std::isdigit(static_cast<unsigned char>(text[after]))) {
            return true;
        }
    }
    return false;
}

void checkMentions(const Case& c, const std::string& err, std::vector<std::string>& problems) {
    for (const std::string& mention : c.mentions) {
        if (err.find(mention) == std::string::npos) {
            problems.push_back("the message does not name '" + shown(mention, 60) + "'");
        }
    }
    if (c.line != 0 && !namesLine(err, c.line)) {
        problems.push_back("the message does not name line " + std::to_string(c.line));
    }
}

std::string sanitizerLine(const std::string& err) {
    for (const char* mark : {"ERROR: AddressSanitizer", "ERROR: LeakSanitizer",
                             "runtime error:", "AddressSanitizer:", "Sanitizer CHECK failed"}) {
        const size_t at = err.find(mark);
        if (at != std::string::npos) {
            const size_t start = err.rfind('\n', at);
            const size_t from = start == std::string::npos ? 0 : start + 1;
            return err.substr(from, err.find('\n', at) - from);
        }
    }
    return {};
}

std::string firstControlByte(const std::string& err) {
    for (const char c : err) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte < 0x20 && c != '\n' && c != '\r' && c != '\t') || byte == 0x7f) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "0x%02x", byte);
            return hex;
        }
    }
    return {};
}

std::string commandLine(const Case& c) {
    std::string line = "varo";
    for (const std::string& argument : c.arguments) {
        line += ' ' + (argument.empty() || argument.find(' ') != std::string::npos
                           ? "'" + argument + "'"
                           : argument);
    }
    return shown(line, 300);
}

std::string bareName(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

void writeBytes(const std::string& path, const std::string& content) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
    if (!out) {
        throw std::runtime_error("cannot write test file " + path);
    }
}

} // namespace

const char* guardsText(Guards cause) {
    switch (cause) {
    case Guards::None:
        return "";
    case Guards::EarlyOutput:
        return "output opened before the inputs were checked";
    case Guards::SameFile:
        return "an output that is one of the inputs";
    case Guards::SettingsWrite:
        return "settings written over a file not read or not a settings file";
    case Guards::Memory:
        return "out of memory, or a token held whole";
    case Guards::SimMessage:
        return "SIM file message without file, line or reason";
    case Guards::NotANumber:
        return "a value that is no number read as a number";
    case Guards::Quoting:
        return "byte-order mark, control bytes or long tokens";
    case Guards::Blame:
        return "the message blames the wrong file or problem";
    case Guards::ExitStatus:
        return "exit status or message of the command line";
    case Guards::Found:
        return "a fault the corpus found in the readers";
    }
    return "";
}

std::string shown(const std::string& text, size_t limit) {
    std::string result;
    for (const char c : text.substr(0, limit)) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            result += "\\n";
        } else if (byte < 0x20 || byte == 0x7f) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02x", byte);
            result += hex;
        } else {
            result += c;
        }
    }
    if (text.size() > limit) {
        result += "... (" + std::to_string(text.size()) + " bytes)";
    }
    return result;
}

std::string varoProgram() {
    // Another build of the program may be put to the same corpus.
    const char* other = std::getenv("VARO_ROBUSTNESS_PROGRAM");
    return other != nullptr ? other : VARO_PROGRAM;
}

bool sanitizedBuild() {
#ifdef VARO_SANITIZED
    return true;
#else
    return false;
#endif
}

std::vector<std::string> childEnvironment(const std::string& home, bool memoryCase) {
    const auto inherited = [](const char* name, const std::string& more) {
        const char* value = std::getenv(name);
        const std::string base = value == nullptr ? "" : std::string(value) + ":";
        return std::string(name) + "=" + base + more;
    };
    const std::string exit = "exitcode=" + std::to_string(SanitizerExit);
    // Leaks are the business of the tests that run the commands in-process; looking for
    // them at the end of every one of hundreds of runs would double the time. Under the
    // address sanitizer the memory bound of a memory case is its resident-memory limit.
    const std::string asan =
        exit + ":detect_leaks=0" + (memoryCase ? ":hard_rss_limit_mb=512" : "");
    return {"PATH=/usr/local/bin:/usr/bin:/bin",
            "HOME=" + home,
            "XDG_CONFIG_HOME=" + home + "/.config",
            "LC_ALL=C",
            inherited("ASAN_OPTIONS", asan),
            inherited("UBSAN_OPTIONS", exit + ":halt_on_error=1:print_stacktrace=1"),
            inherited("LSAN_OPTIONS", exit)};
}

std::string makeTemporaryFolder(const std::string& prefix) {
    std::string pattern = (fs::temp_directory_path() / (prefix + "XXXXXX")).string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder");
    }
    // Cases that run as an unprivileged user must reach their folders.
    fs::permissions(pattern, fs::perms::owner_all | fs::perms::group_exec | fs::perms::group_read |
                                 fs::perms::others_exec | fs::perms::others_read);
    return pattern;
}

std::string Case::write(const std::string& relative, const std::string& content) const {
    const fs::path full = path(relative);
    fs::create_directories(full.parent_path());
    writeBytes(full.string(), content);
    return relative;
}

void Case::makeFolder(const std::string& relative) const {
    fs::create_directories(path(relative));
}

void Case::symlink(const std::string& target, const std::string& relative) const {
    fs::create_symlink(target, path(relative));
}

CaseRunner::CaseRunner(std::string kind)
    : kind_(std::move(kind)), root_(makeTemporaryFolder("varo-robustness-" + kind_ + "-")) {}

CaseRunner::~CaseRunner() {
    if (keepFolders()) {
        std::cout << "Case folders kept in " << root_ << '\n';
        return;
    }
    std::error_code error;
    // Give back what an unreadable-file case took away, so that all can be removed.
    for (auto it = fs::recursive_directory_iterator(root_, error);
         !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
        if (!it->is_symlink()) {
            fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, error);
        }
    }
    fs::remove_all(root_, error);
}

Case CaseRunner::start(const std::string& name, const std::string& settings) {
    Case c;
    c.name = name;
    c.folder = root_ + "/" + std::to_string(++count_);
    fs::create_directories(c.folder + "/home");
    c.write("VARO.INI", settings);
    return c;
}

void CaseRunner::run(const Case& c) {
    if (c.unprivileged) {
        // The folder and everything in it open to the unprivileged user, except what the
        // case made unreadable.
        std::error_code error;
        fs::permissions(c.folder, fs::perms::all, error);
        for (auto it = fs::recursive_directory_iterator(c.folder, error);
             !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
            if (!it->is_symlink() &&
                (fs::status(it->path()).permissions() & fs::perms::owner_read) != fs::perms::none) {
                fs::permissions(it->path(), fs::perms::all, error);
            }
        }
    }
    ChildRequest request;
    request.arguments = {varoProgram()};
    if (c.privateSettings) {
        request.arguments.insert(request.arguments.end(), {"--settings", "VARO.INI"});
    }
    request.arguments.insert(request.arguments.end(), c.arguments.begin(), c.arguments.end());
    request.environment = childEnvironment(c.path("home"), c.addressSpace.has_value());
    request.workingFolder = c.folder;
    request.timeLimit = c.timeLimit;
    if (!sanitizedBuild()) {
        request.addressSpaceLimit = c.addressSpace.value_or(4ULL << 30);
    }
    request.unprivileged = c.unprivileged;
    request.whileRunning = c.whileRunning;

    const FolderSnapshot before = snapshotFolder(c.folder);
    const auto started = std::chrono::steady_clock::now();
    const ChildResult result = runChild(request);
    seconds_.emplace_back(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count(), c.name);
    const FolderSnapshot after = snapshotFolder(c.folder);
    const auto problems = problemsOf(c, result, differences(before, after));

    std::ostringstream entry;
    entry << c.name << "\n    $ " << commandLine(c);
    for (const std::string& problem : problems) {
        entry << "\n    - " << problem;
    }
    if (!problems.empty()) {
        entry << "\n    stderr: " << shown(result.err, 400);
    }
    if (!problems.empty()) {
        if (c.guards != Guards::None) {
            entry << "\n    (guards against: " << guardsText(c.guards) << ")";
        }
        failures_.push_back(entry.str());
    }
}

std::vector<std::string> CaseRunner::problemsOf(const Case& c, const ChildResult& result,
                                                const std::vector<std::string>& changed) const {
    std::vector<std::string> problems;
    const std::string& err = result.err;
    if (result.timedOut) {
        problems.push_back("hang: killed after " + std::to_string(c.timeLimit.count() / 1000) +
                           " s");
    } else if (result.signal != 0) {
        problems.push_back("ended by signal " + std::to_string(result.signal) + " (" +
                           strsignal(result.signal) + ")");
    }
    if (const std::string report = sanitizerLine(err);
        !report.empty() || result.exitCode == SanitizerExit) {
        problems.push_back("sanitizer report: " + shown(report, 200));
    }
    if (err.find("terminate called") != std::string::npos) {
        problems.push_back("uncaught exception");
    }
    const int exit = result.exitCode;
    const bool ended = !result.timedOut && result.signal == 0 && exit != SanitizerExit;
    const Expect expect = c.expect != Expect::Either ? c.expect
                          : exit == 0                ? Expect::Accepted
                                                     : Expect::Refused;
    if (ended && expect == Expect::Refused) {
        if (exit != 1 && exit != 2) {
            problems.push_back("exit status " + std::to_string(exit) + ", expected 1 or 2");
        }
        if (err.empty()) {
            problems.push_back("no message");
        } else {
            checkMentions(c, err, problems);
        }
    } else if (ended && expect == Expect::Accepted) {
        if (exit != 0) {
            problems.push_back("exit status " + std::to_string(exit) + ", expected 0");
        }
        // A run that takes an odd input names it in a warning.
        if (c.expect == Expect::Accepted) {
            checkMentions(c, err, problems);
        }
    } else if (ended && expect == Expect::Interrupted && exit != 130) {
        problems.push_back("exit status " + std::to_string(exit) + ", expected 130");
    }
    if (result.errBytes > MessageLimit) {
        problems.push_back("a message of " + std::to_string(result.errBytes) + " bytes");
    }
    if (const std::string control = firstControlByte(err); !control.empty()) {
        problems.push_back("raw control byte " + control + " in the message");
    }
    const bool mayWrite = expect != Expect::Refused;
    for (const std::string& difference : changed) {
        const std::string path = difference.substr(difference.find(": ") + 2);
        if (!mayWrite || c.writes.count(path) == 0) {
            problems.push_back(difference);
        } else if (expect == Expect::Interrupted && err.find(bareName(path)) == std::string::npos) {
            problems.push_back("the partial file '" + path + "' is not named");
        }
    }
    if (c.residentLimitKiB != 0 && result.maxResidentKiB > c.residentLimitKiB) {
        problems.push_back("resident memory of " + std::to_string(result.maxResidentKiB / 1024) +
                           " MiB, more than " + std::to_string(c.residentLimitKiB / 1024));
    }
    if (ended && exit == 0 && expect == Expect::Accepted && c.check) {
        for (const std::string& problem : c.check(result)) {
            problems.push_back(problem);
        }
    }
    return problems;
}

void CaseRunner::report() const {
    std::cout << kind_ << ": " << count_ << " cases, " << failures_.size() << " failing\n";
    auto slowest = seconds_;
    std::sort(slowest.rbegin(), slowest.rend());
    slowest.resize(std::min<size_t>(slowest.size(), 3));
    std::cout << "Slowest:";
    for (const auto& [seconds, name] : slowest) {
        std::cout << " '" << shown(name, 60) << "' " << seconds << " s;";
    }
    std::cout << '\n';
    if (!failures_.empty()) {
        std::ostringstream list;
        for (const std::string& entry : failures_) {
            list << "  " << entry << '\n';
        }
        ADD_FAILURE() << failures_.size() << " of " << count_ << " " << kind_
                      << " cases broke the rule:\n"
                      << list.str();
    }
}

} // namespace varo::robustness
