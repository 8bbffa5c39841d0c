// varo demo [DIR]: writes sample data into DIR and runs the work on it.
#include "cli/commands.hpp"

#include "core/series_file.hpp"
#include "sampledata/sample_data.hpp"
#include "screens/quality_screen.hpp"

namespace varo::cli {

namespace {

// Runs the quality check of one file and prints a line of its findings.
bool checkQuality(CliContext& context, const std::string& file) {
    screens::QualityScreen quality(context.state);
    quality.chooseFile(file);
    if (quality.check(context.dialogs(), context.progress()) != screens::RunOutcome::Done) {
        return false;
    }
    context.printLine("  " + core::bareFileName(file) + ": " + quality.totalText + " values, " +
                      quality.missingText + " missing, mean " + quality.meanText + ", range " +
                      quality.minText + " to " + quality.maxText + ", above threshold " +
                      quality.threshCountText);
    return true;
}

int runDemo(CliContext& context, const std::string& folder) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    sampledata::SampleFiles files;
    const auto written = screens::guardedRun(
        context.dialogs(),
        [&] {
            sampledata::SampleOptions options;
            options.missingCode = context.state.globalMissingCode;
            files = sampledata::writeSampleData(folder, options);
            return screens::RunOutcome::Done;
        },
        [] {});
    if (written != screens::RunOutcome::Done) {
        return exitCodeFor(written);
    }
    context.printLine("Sample data written to " + folder + "/: precip.dat, tmax.dat (1961-1990),");
    context.printLine(
        "  predictors/ and future/ (" + std::to_string(files.predictorFiles.size()) +
        " predictors, observed 1961-1990 and a climate model's 1961-2099 on a 360-day calendar)");
    context.printLine("");
    context.printLine("Quality check:");
    const bool checked = checkQuality(context, files.precipitation) &&
                         checkQuality(context, files.maximumTemperature);
    return checked ? ExitDone : ExitFailed;
}

} // namespace

void addDemoCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto folder = std::make_shared<std::string>("demo-output");
    CLI::App* demo =
        app.add_subcommand("demo", "Write sample data into DIR and run the work on it");
    demo->add_option("DIR", *folder, "Folder for the sample data and results")
        ->capture_default_str();
    demo->callback([&, folder] { result.exitCode = runDemo(context, *folder); });
}

} // namespace varo::cli
