// --plot FILE.png|FILE.svg and --plot-size WIDTHxHEIGHT for the commands that make a
// chart. The path and size are checked before the command runs, so a refused picture
// costs no run and leaves no file; the picture is drawn by the chart exporter that the
// program was started with (none in a build without the desktop program).
#pragma once

#include "charts/chart_export.hpp"
#include "charts/chart_model.hpp"
#include "cli/cli_context.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace varo::cli {

struct PlotOptions {
    std::string path; // empty: no picture
    std::string size = "800x600";
};

void addPlotOptions(CLI::App* command, PlotOptions& options);

// Answers 0, or ExitRefused after an "Error Message" naming what is wrong: no exporter in
// this build, an unknown extension, a folder that does not exist, a bad size, a path that
// is one of the command's `inputs` (or the settings file in force).
int checkPlotOptions(CliContext& context, const PlotOptions& options,
                     const std::vector<std::string>& inputs = {});

// Draws the chart into the file and names it on stderr as `what` ("Chart written: F").
// Answers 0, or ExitFailed after the failure box; a failed picture leaves no file.
int writePlot(CliContext& context, const PlotOptions& options, const charts::ChartModel& chart,
              std::string_view what = "Chart");

} // namespace varo::cli
