// The command line as a library function, so that tests run it without a process.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace varo::charts {
class ChartExporter;
}

namespace varo::cli {

// Runs one command line (without the program name). Exit status: 0 done, 1 run-time
// failure, 2 refused input, 130 cancelled.
int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);
// The same with the exporter that draws the pictures of --plot (null: none can be drawn).
int runCli(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
           charts::ChartExporter* chartExporter);

} // namespace varo::cli
