// One hostile input through one command, and the rule every such run must keep.
//
// A case is a folder of its own with a private settings file (VARO.INI) and a private home
// folder, the inputs the case writes, and often the files of an earlier run. The real `varo`
// program runs in that folder as a child process, with a time limit and a memory limit. The
// rule it must keep:
//   - it ends by itself (no hang) and not by a signal or a sanitizer report;
//   - a refused input ends with exit status 1 or 2 and a message that names the problem:
//     the texts the case asks for (the file's name, the value) and, where the input has
//     lines, the line;
//   - a refused run changes nothing in the folder, byte or modification time: no input,
//     no earlier output, no file added; an accepted or interrupted run changes only the
//     files it writes, and an interrupted one names each of them;
//   - messages stay short (16 KiB at most) and hold no raw control bytes.
//
// A case may name the fault it guards against; a failing case's message names it.
#pragma once

#include "robustness/child_process.hpp"

#include <chrono>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace varo::robustness {

// Either: the input is odd but not wrong, and a run may take it or refuse it.
enum class Expect { Refused, Accepted, Interrupted, Either };

// The faults a case guards against, named in its failure message.
enum class Guards {
    None,
    EarlyOutput,   // output opened (and emptied) before the inputs were checked
    SameFile,      // an output that is one of the inputs
    SettingsWrite, // a settings write over a file it could not read or that is no settings file
    Memory,        // allocation failure not caught; a token held whole
    SimMessage,    // a SIM file problem without file, line or reason
    NotANumber,    // a value that is no number read as 0 or in part
    Quoting,       // byte-order mark, control bytes, long tokens in messages
    Blame,         // the message blames the wrong file or the wrong problem
    ExitStatus,    // an error with exit status 0, Ctrl-C without the file, a nameless refusal
    Found,         // a fault the corpus itself found in the readers
};

const char* guardsText(Guards cause);

struct Case {
    std::string name;
    std::string folder;                 // absolute; the child's working folder
    std::vector<std::string> arguments; // after the program, relative paths from the folder
    bool privateSettings = true;        // put "--settings VARO.INI" first
    Expect expect = Expect::Refused;
    // Texts the message of a refusal (or the warning of an accepted run) must hold, and
    // when not 0 the line it must name.
    std::vector<std::string> mentions;
    long line = 0;
    std::set<std::string> writes; // relative paths a finished run may change or add
    Guards guards = Guards::None; // the fault the case guards against, named when it fails
    bool unprivileged = false;
    std::optional<unsigned long long> addressSpace; // replaces the default limit
    long residentLimitKiB = 0;                      // when not 0, a bound on resident memory
    std::chrono::milliseconds timeLimit{30000};
    std::function<bool(pid_t)> whileRunning;
    // Further checks of an accepted run; answers the problems found.
    std::function<std::vector<std::string>(const ChildResult&)> check;

    std::string path(const std::string& relative) const { return folder + "/" + relative; }
    // Writes a file of the case (folders on the way are made) and answers its relative path.
    std::string write(const std::string& relative, const std::string& content) const;
    void makeFolder(const std::string& relative) const;
    void symlink(const std::string& target, const std::string& relative) const;
};

// Runs the cases of one kind and reports them at the end.
class CaseRunner {
public:
    explicit CaseRunner(std::string kind);
    ~CaseRunner();
    CaseRunner(const CaseRunner&) = delete;
    CaseRunner& operator=(const CaseRunner&) = delete;

    // A new case with its folder, holding the private settings file and home folder.
    Case start(const std::string& name, const std::string& settings);
    void run(const Case& c);
    // One test failure listing every case that broke the rule.
    void report() const;

private:
    std::vector<std::string> problemsOf(const Case& c, const ChildResult& result,
                                        const std::vector<std::string>& changed) const;

    std::string kind_;
    std::string root_;
    int count_ = 0;
    std::vector<std::string> failures_;
    std::vector<std::pair<double, std::string>> seconds_; // each case's run time
};

// The program under test: the build's own, or the one VARO_ROBUSTNESS_PROGRAM names.
std::string varoProgram();
// True when the program is built with the address sanitizer, which cannot run under an
// address-space limit.
bool sanitizedBuild();
// The environment of every child: a private home, the sanitizers told to exit with status 86.
std::vector<std::string> childEnvironment(const std::string& home, bool memoryCase);
// A made folder for test files, with the given prefix, under the temporary folder.
std::string makeTemporaryFolder(const std::string& prefix);
// Text cut and shown safely for a report.
std::string shown(const std::string& text, size_t limit = 200);

} // namespace varo::robustness
