// varo qc FILE: the quality check of a data file.
#include "cli/commands.hpp"

#include "screens/quality_screen.hpp"

namespace varo::cli {

namespace {

void printReport(CliContext& context, const screens::QualityScreen& screen) {
    context.printLine("Number of values in file: " + screen.totalText);
    context.printLine("Missing values: " + screen.missingText);
    context.printLine("Number of values ok: " + screen.totalOkText);
    context.printLine("Missing value code: " + screen.missingCodeText);
    context.printLine("Minimum: " + screen.minText);
    context.printLine("Maximum: " + screen.maxText);
    context.printLine("Mean: " + screen.meanText);
    context.printLine("Maximum difference: " + screen.maxDiffText + " (between " +
                      screen.maxDiffVal1Text + " and " + screen.maxDiffVal2Text + ")");
    context.printLine("Values above threshold: " + screen.threshCountText);
}

Json jsonReport(const dataprep::QualityResults& results, const std::vector<std::string>& warnings) {
    Json document;
    document["values"] = results.total;
    document["missing"] = results.missing;
    document["ok"] = results.ok;
    document["minimum"] = results.minimum;
    document["maximum"] = results.maximum;
    document["mean"] = numberJson(results.mean);
    document["maxDiff"] = results.maxDiff;
    document["maxDiffFirst"] = results.maxDiffFirst;
    document["maxDiffSecond"] = results.maxDiffSecond;
    document["aboveThreshold"] = results.aboveThreshold;
    document["warnings"] = warnings;
    return document;
}

int runQc(CliContext& context, const std::string& file) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    screens::QualityScreen screen(context.state);
    screen.file.choose(file);
    const auto outcome = screen.check(context.dialogs(), context.progress());
    if (outcome == screens::RunOutcome::Done) {
        if (context.options.json) {
            context.printJson(jsonReport(*screen.results, screen.warningsShown));
        } else {
            printReport(context, screen);
        }
    }
    return exitCodeFor(outcome);
}

} // namespace

void addQcCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto file = std::make_shared<std::string>();
    CLI::App* qc = app.add_subcommand("qc", "Quality check of a data file");
    qc->add_option("FILE", *file, "Data file to check")->required()->type_name(kind::File);
    qc->callback([&, file] { result.exitCode = runQc(context, *file); });
}

} // namespace varo::cli
