#include "cli/plot_option.hpp"

#include "cli/commands.hpp"
#include "core/failure.hpp"
#include "screens/screen_run.hpp"

namespace varo::cli {

void addPlotOptions(CLI::App* command, PlotOptions& options) {
    command->add_option("--plot", options.path, "Save the chart as a picture (.png or .svg)")
        ->type_name(kind::File);
    command
        ->add_option("--plot-size", options.size,
                     "Size of the --plot picture in pixels (default 800x600)")
        ->type_name("WxH");
}

int checkPlotOptions(CliContext& context, const PlotOptions& options,
                     const std::vector<std::string>& inputs) {
    if (options.path.empty()) {
        return ExitDone;
    }
    if (context.chartExporter == nullptr) {
        context.dialogs().error("--plot: this varo was built without the desktop program, "
                                "whose renderer draws the charts; no picture can be made.");
        return ExitRefused;
    }
    if (const auto problem = charts::checkPicturePath(options.path)) {
        context.dialogs().error(*problem);
        return ExitRefused;
    }
    if (const auto refusal = screens::outputOverInput(context.state, {options.path}, inputs)) {
        context.dialogs().error(*refusal);
        return ExitRefused;
    }
    const auto size = charts::parsePictureSize(options.size);
    if (const auto* message = std::get_if<std::string>(&size)) {
        context.dialogs().error("--plot-size: " + *message);
        return ExitRefused;
    }
    return ExitDone;
}

int writePlot(CliContext& context, const PlotOptions& options, const charts::ChartModel& chart,
              std::string_view what) {
    if (options.path.empty()) {
        return ExitDone;
    }
    try {
        context.chartExporter->save(
            chart, options.path,
            std::get<charts::PictureSize>(charts::parsePictureSize(options.size)));
    } catch (const core::Failure& failure) {
        context.dialogs().error(core::reportFailureText(failure.number(), failure.description()));
        return ExitFailed;
    }
    context.reportWritten(what, options.path);
    return ExitDone;
}

} // namespace varo::cli
