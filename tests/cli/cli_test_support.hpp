// Runs the command line in-process with its own settings file and captures its output.
#pragma once

#include "cli/cli.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace varo::testing {

struct CliRun {
    int exitCode = 0;
    std::string out;
    std::string err;
};

// Every run gets --settings in the test's folder, so no test touches a real settings file.
inline CliRun runVaroAsTyped(std::vector<std::string> args);

inline CliRun runVaro(const TempDir& dir, std::vector<std::string> args) {
    args.insert(args.begin(), {"--settings", dir.path("VARO.INI")});
    return runVaroAsTyped(std::move(args));
}

// While it lives, the process works in `folder`, as after a `cd`.
class WorkingFolder {
public:
    explicit WorkingFolder(const std::filesystem::path& folder)
        : previous_(std::filesystem::current_path()) {
        std::filesystem::create_directories(folder);
        std::filesystem::current_path(folder);
    }
    ~WorkingFolder() { std::filesystem::current_path(previous_); }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    std::filesystem::path previous_;
};

// Runs the command line as typed, without a settings file of the test's choosing.
inline CliRun runVaroAsTyped(std::vector<std::string> args) {
    std::ostringstream out;
    std::ostringstream err;
    CliRun run;
    run.exitCode = varo::cli::runCli(args, out, err);
    run.out = out.str();
    run.err = err.str();
    return run;
}

} // namespace varo::testing
