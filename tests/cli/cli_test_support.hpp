// Runs the command line in-process with its own settings file and captures its output, with
// or without a stand-in for the chart exporter.
#pragma once

#include "charts/chart_export.hpp"
#include "cli/cli.hpp"
#include "core/failure.hpp"
#include "support/temp_dir.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace varo::testing {

struct CliRun {
    int exitCode = 0;
    std::string out;
    std::string err;
};

// Every run gets --settings in the test's folder, so no test touches a real settings file;
// `exporter` draws --plot pictures (none: --plot is refused).
inline CliRun runWith(const TempDir& dir, std::vector<std::string> args,
                      charts::ChartExporter* exporter);

inline CliRun runVaro(const TempDir& dir, std::vector<std::string> args) {
    return runWith(dir, std::move(args), nullptr);
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

// Runs the command line as given, with the chart exporter (none: --plot is refused).
inline CliRun runCaptured(const std::vector<std::string>& args,
                          charts::ChartExporter* exporter = nullptr) {
    std::ostringstream out;
    std::ostringstream err;
    CliRun run;
    run.exitCode = varo::cli::runCli(args, out, err, exporter);
    run.out = out.str();
    run.err = err.str();
    return run;
}

// Runs the command line as typed, without a settings file of the test's choosing.
inline CliRun runVaroAsTyped(std::vector<std::string> args) {
    return runCaptured(args);
}

// Remembers what it was asked to draw; writes a stand-in file, or fails when told to.
class RecordingExporter : public charts::ChartExporter {
public:
    std::vector<charts::ChartModel> charts;
    std::vector<std::string> paths;
    std::vector<charts::PictureSize> sizes;
    bool fail = false;

    void save(const charts::ChartModel& chart, const std::string& path,
              charts::PictureSize size) override {
        if (fail) {
            throw core::Failure(core::failure::PathAccessError,
                                "Cannot write the chart to '" + path + "'.");
        }
        charts.push_back(chart);
        paths.push_back(path);
        sizes.push_back(size);
        std::ofstream(path) << "picture";
    }
};

inline CliRun runWith(const TempDir& dir, std::vector<std::string> args,
                      charts::ChartExporter* exporter) {
    args.insert(args.begin(), {"--settings", dir.path("VARO.INI")});
    return runCaptured(args, exporter);
}

} // namespace varo::testing
