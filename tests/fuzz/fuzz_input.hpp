// The fuzzer's bytes as a file that the readers open by path, as they open the user's
// files: an anonymous file in memory, reached through /proc/self/fd. Failures the readers
// report (`core::Failure`) are the expected answer to bad bytes; anything else that
// escapes a target (another exception, a crash, a sanitizer report) is a finding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace varo::fuzz {

class InputFile {
public:
    InputFile(const std::uint8_t* data, std::size_t size) : fd_(::memfd_create("input", 0)) {
        if (fd_ < 0) {
            throw std::runtime_error("memfd_create failed");
        }
        std::size_t written = 0;
        while (written < size) {
            const ssize_t got = ::write(fd_, data + written, size - written);
            if (got <= 0) {
                throw std::runtime_error("writing the input failed");
            }
            written += static_cast<std::size_t>(got);
        }
        path_ = "/proc/self/fd/" + std::to_string(fd_);
    }
    ~InputFile() { ::close(fd_); }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    const std::string& path() const { return path_; }

private:
    int fd_;
    std::string path_;
};

// A path in the temporary folder of this process, for targets that also write files.
inline std::string scratchPath(const std::string& name) {
    return "/tmp/varo-fuzz-" + std::to_string(::getpid()) + "-" + name;
}

} // namespace varo::fuzz
