#include "robustness/child_process.hpp"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <grp.h>
#include <poll.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace varo::robustness {

namespace {

std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const std::string& text : texts) {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

// A pipe whose reading end stays in this process, closed on exec and never blocking.
struct Pipe {
    int read = -1;
    int write = -1;
    Pipe() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) {
            throw std::runtime_error(std::string("pipe: ") + std::strerror(errno));
        }
        read = ends[0];
        write = ends[1];
        ::fcntl(read, F_SETFL, O_NONBLOCK);
    }
    ~Pipe() {
        closeRead();
        closeWrite();
    }
    void closeRead() {
        if (read >= 0) {
            ::close(read);
            read = -1;
        }
    }
    void closeWrite() {
        if (write >= 0) {
            ::close(write);
            write = -1;
        }
    }
};

// Only async-signal-safe calls between fork and exec.
[[noreturn]] void becomeChild(const ChildRequest& request, char* const* argv, char* const* envp,
                              const Pipe& out, const Pipe& err) {
    const int input = ::open("/dev/null", O_RDONLY);
    if (input < 0 || ::dup2(input, 0) < 0 || ::dup2(out.write, 1) < 0 || ::dup2(err.write, 2) < 0 ||
        ::chdir(request.workingFolder.c_str()) != 0) {
        ::_exit(126);
    }
    if (request.addressSpaceLimit) {
        const rlimit limit{*request.addressSpaceLimit, *request.addressSpaceLimit};
        ::setrlimit(RLIMIT_AS, &limit);
    }
    if (request.unprivileged && ::geteuid() == 0) {
        if (::setgroups(0, nullptr) != 0 || ::setgid(UnprivilegedId) != 0 ||
            ::setuid(UnprivilegedId) != 0) {
            ::_exit(126);
        }
    }
    ::execve(argv[0], argv, envp);
    static const char message[] = "exec failed\n";
    [[maybe_unused]] const auto written = ::write(2, message, sizeof message - 1);
    ::_exit(127);
}

// Reads what is there without blocking; false at the end of the stream.
bool drain(int fd, std::string& capture, size_t& total) {
    char chunk[65536];
    for (;;) {
        const ssize_t got = ::read(fd, chunk, sizeof chunk);
        if (got > 0) {
            total += static_cast<size_t>(got);
            const size_t room = CaptureLimit - std::min(CaptureLimit, capture.size());
            capture.append(chunk, std::min(room, static_cast<size_t>(got)));
            continue;
        }
        if (got < 0 && errno == EINTR) {
            continue;
        }
        return got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
    }
}

} // namespace

ChildResult runChild(const ChildRequest& request) {
    const auto argv = pointersTo(request.arguments);
    const auto envp = pointersTo(request.environment);
    Pipe out;
    Pipe err;
    const pid_t pid = ::fork();
    if (pid < 0) {
        throw std::runtime_error(std::string("fork: ") + std::strerror(errno));
    }
    if (pid == 0) {
        becomeChild(request, argv.data(), envp.data(), out, err);
    }
    out.closeWrite();
    err.closeWrite();

    ChildResult result;
    const auto deadline = std::chrono::steady_clock::now() + request.timeLimit;
    bool watching = static_cast<bool>(request.whileRunning);
    int status = 0;
    rusage usage{};
    for (;;) {
        pollfd fds[2] = {{out.read, POLLIN, 0}, {err.read, POLLIN, 0}};
        ::poll(fds, 2, 2);
        if (out.read >= 0 && !drain(out.read, result.out, result.outBytes)) {
            out.closeRead();
        }
        if (err.read >= 0 && !drain(err.read, result.err, result.errBytes)) {
            err.closeRead();
        }
        if (watching) {
            watching = request.whileRunning(pid);
        }
        const pid_t ended = ::wait4(pid, &status, WNOHANG, &usage);
        if (ended == pid) {
            break;
        }
        if (std::chrono::steady_clock::now() > deadline) {
            ::kill(pid, SIGKILL);
            ::wait4(pid, &status, 0, &usage);
            result.timedOut = true;
            break;
        }
    }
    for (auto* pipe : {&out, &err}) {
        if (pipe->read >= 0) {
            drain(pipe->read, pipe == &out ? result.out : result.err,
                  pipe == &out ? result.outBytes : result.errBytes);
        }
    }
    if (WIFEXITED(status)) {
        result.exitCode = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.signal = WTERMSIG(status);
    }
    result.maxResidentKiB = usage.ru_maxrss;
    return result;
}

bool catchesSignal(pid_t pid, int signal) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("SigCgt:", 0) == 0) {
            const unsigned long long mask = std::stoull(line.substr(7), nullptr, 16);
            return (mask >> (signal - 1)) & 1ULL;
        }
    }
    return false;
}

} // namespace varo::robustness
