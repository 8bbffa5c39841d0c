#include "cli/cli.hpp"

#ifdef VARO_CHART_RENDER
#include "gui/charts/chart_render.hpp"
#endif

#include <iostream>

int main(int argc, char** argv) {
    const std::vector<std::string> args(argv + 1, argv + argc);
#ifdef VARO_CHART_RENDER
    varo::gui::QtChartExporter exporter;
    return varo::cli::runCli(args, std::cout, std::cerr, &exporter);
#else
    return varo::cli::runCli(args, std::cout, std::cerr);
#endif
}
