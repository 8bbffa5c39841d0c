// varo demo [DIR]: writes sample data into DIR and runs the work on it.
#include "cli/commands.hpp"

#include "core/dates.hpp"
#include "core/number_format.hpp"
#include "core/random.hpp"
#include "core/series_file.hpp"
#include "screens/quality_screen.hpp"

#include <cmath>
#include <filesystem>
#include <numbers>

namespace varo::cli {

namespace {

// A daily precipitation series for 1961-1990: wet days follow a two-state chain with a
// seasonal cycle, amounts are exponential, and every 500th day is missing.
std::string writeSamplePrecipitation(const std::string& folder, double missingCode) {
    const std::string path = folder + "/precip.dat";
    core::TextFileWriter file(path);
    core::UniformRandom random;
    const core::NumberFormat format("0.0");
    const long days = core::daysInclusive(core::Date{1, 1, 1961}, core::Date{31, 12, 1990});
    bool wet = false;
    for (long day = 0; day < days; ++day) {
        const double season =
            std::cos(2.0 * std::numbers::pi * static_cast<double>(day % 365) / 365.0);
        const double wetChance = (wet ? 0.65 : 0.3) + 0.1 * season;
        wet = random.next() < wetChance;
        const double amount = wet ? -4.0 * std::log(1.0 - random.next()) + 0.1 : 0.0;
        file.writeLine(day % 500 == 499 ? core::generalText(missingCode) : format.format(amount));
    }
    file.close();
    return path;
}

int runDemo(CliContext& context, const std::string& folder) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        context.dialogs().error("Cannot create the folder '" + folder + "': " + error.message() +
                                ".");
        return ExitFailed;
    }
    const std::string precipitation =
        writeSamplePrecipitation(folder, context.state.globalMissingCode);
    context.printLine("Sample data written to " + folder + ":");
    context.printLine("  " + precipitation);
    context.printLine("");
    context.printLine("Quality check of " + core::bareFileName(precipitation) + ":");
    screens::QualityScreen quality(context.state);
    quality.chooseFile(precipitation);
    const auto outcome = quality.check(context.dialogs(), context.progress());
    if (outcome != screens::RunOutcome::Done) {
        return exitCodeFor(outcome);
    }
    context.printLine("  values " + quality.totalText + ", missing " + quality.missingText +
                      ", mean " + quality.meanText + ", wet days " + quality.threshCountText +
                      ", largest " + quality.maxText);
    return ExitDone;
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
