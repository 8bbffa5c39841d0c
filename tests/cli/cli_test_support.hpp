// Runs the command line in-process with its own settings file and captures its output.
#pragma once

#include "cli/cli.hpp"
#include "support/temp_dir.hpp"

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
inline CliRun runVaro(const TempDir& dir, std::vector<std::string> args) {
    args.insert(args.begin(), {"--settings", dir.path("VARO.INI")});
    std::ostringstream out;
    std::ostringstream err;
    CliRun run;
    run.exitCode = varo::cli::runCli(args, out, err);
    run.out = out.str();
    run.err = err.str();
    return run;
}

} // namespace varo::testing
