// Runs a program as a child process under watch: its own environment and working folder,
// no standard input, its output captured (up to a cap), a time limit after which it is
// killed, an optional address-space limit and, when the test runs as root, optionally the
// identity of an unprivileged user so that permission bits take effect. A callback runs
// every few milliseconds while the child lives, to interrupt it at the right moment.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace varo::robustness {

struct ChildRequest {
    std::vector<std::string> arguments;   // the program's path first
    std::vector<std::string> environment; // KEY=VALUE, the whole environment of the child
    std::string workingFolder;
    std::chrono::milliseconds timeLimit{10000};
    std::optional<unsigned long long> addressSpaceLimit; // bytes
    bool unprivileged = false; // when root: run as the user and group "nobody"
    // Called with the child's id while it runs; answers false once it has nothing left to do.
    std::function<bool(pid_t)> whileRunning;
};

struct ChildResult {
    bool timedOut = false;
    int exitCode = -1; // -1 when ended by a signal
    int signal = 0;
    std::string out; // at most `CaptureLimit` bytes each
    std::string err;
    size_t outBytes = 0; // everything the child wrote, also past the cap
    size_t errBytes = 0;
    long maxResidentKiB = 0;
};

inline constexpr size_t CaptureLimit = 1 << 20;

// The user and group a test running as root hands unreadable-file cases to.
inline constexpr uid_t UnprivilegedId = 65534;

ChildResult runChild(const ChildRequest& request);

// True when the process has a handler of its own installed for the signal.
bool catchesSignal(pid_t pid, int signal);

} // namespace varo::robustness
