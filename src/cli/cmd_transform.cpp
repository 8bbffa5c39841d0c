// varo transform IN -o OUT --op NAME: a new data file from an old one, as on the transform
// screen, with the same checks, messages and files.
#include "cli/commands.hpp"

#include "screens/transform_screen.hpp"

#include <optional>

namespace varo::cli {

namespace {

struct TransformOptions {
    std::string input;
    std::string output;
    std::string operation;
    std::optional<std::string> columns;
    std::optional<std::string> lag;
    bool wrap = false;
    std::optional<std::string> threshold;
    std::optional<std::string> extract;
    bool copySim = false;
    std::optional<std::string> lamda;
    std::optional<std::string> shift;
};

void setField(screens::TextField& field, const std::optional<std::string>& value) {
    if (value) {
        field.text = *value;
    }
}

Json jsonReport(const TransformOptions& options, const screens::TransformScreen::Report& report) {
    Json document;
    document["operation"] = options.operation;
    document["input"] = options.input;
    document["output"] = options.output;
    document["rows"] = report.counts.rows;
    document["missing"] = report.counts.missing;
    document["notConverted"] = report.counts.notConverted;
    if (report.lamda) {
        document["lamda"] = *report.lamda;
        document["shift"] = *report.shift;
    }
    if (!report.copiedSimFile.empty()) {
        document["simCopy"] = report.copiedSimFile;
    }
    document["report"] = withUnixLineEnds(report.text);
    return document;
}

int runTransform(CliContext& context, const TransformOptions& options) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    screens::TransformScreen screen(context.state);
    screen.input.choose(options.input);
    screen.output.choose(options.output);
    screen.option = dataprep::findTransformOption(options.operation)->code;
    setField(screen.colsText, options.columns);
    setField(screen.lagText, options.lag);
    screen.wrapCheck = options.wrap;
    setField(screen.binomialText, options.threshold);
    if (options.extract) {
        screen.extractEnsembleCheck = true;
        screen.ensembleExtractText.text = *options.extract;
    }
    screen.simCheck = options.copySim;
    setField(screen.lamdaValText, options.lamda);
    setField(screen.leftShiftText, options.shift);
    const auto outcome = screen.transform(context.dialogs(), context.progress());
    if (outcome == screens::RunOutcome::Cancelled && screen.outputStarted) {
        context.progress().finish();
        context.err << "Cancelled: '" << options.output
                    << "' is incomplete: it holds only what was written before the cancel.\n";
    }
    if (outcome == screens::RunOutcome::Done) {
        context.reportWritten("Data file", options.output);
        if (!screen.lastReport->copiedSimFile.empty()) {
            context.reportWritten("SIM file", screen.lastReport->copiedSimFile);
        }
        if (context.options.json) {
            context.printJson(jsonReport(options, *screen.lastReport));
        }
    }
    return exitCodeFor(outcome);
}

} // namespace

void addTransformCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto options = std::make_shared<TransformOptions>();
    std::vector<std::string> names;
    for (const auto& option : dataprep::transformOptions()) {
        names.emplace_back(option.name);
    }
    CLI::App* command =
        app.add_subcommand("transform", "Make a new data file from an old one, value by value");
    command->add_option("IN", options->input, "Data file to transform")
        ->required()
        ->type_name(kind::File);
    addOutputOption(command, options->output, "File to write (replaced)");
    // The output file used to stand second on the line; it still may.
    command->add_option("OUT", options->output, "The file to write, as with -o")
        ->type_name(kind::File);
    oneOf(command->add_option("--op", options->operation, "The transformation")->required(), names);
    command->add_option("--columns", options->columns, "Columns in the input file, 1 to 100")
        ->type_name(kind::Integer);
    command->add_option("--lag", options->lag, "Lag: rows up (positive) or down (negative)")
        ->type_name(kind::Integer);
    command->add_flag("--wrap", options->wrap,
                      "Lag: wrap rows round instead of filling with the missing code");
    command
        ->add_option("--threshold", options->threshold,
                     "Binomial: 1 above this value, 0 otherwise (default: the threshold)")
        ->type_name(kind::Number);
    command
        ->add_option("--extract", options->extract,
                     "Write only this column, one value to a line, unchanged")
        ->type_name(kind::Integer);
    command->add_flag("--copy-sim", options->copySim,
                      "Also copy the input's SIM file, beside the input, named after the output");
    command->add_option("--lamda", options->lamda, "Inverse Box-Cox: lamda, -2 to 2")
        ->type_name(kind::Number);
    command->add_option("--shift", options->shift, "Inverse Box-Cox: shift, 0 to 100")
        ->type_name(kind::Number);
    command->callback([&, options] {
        requireOutput(options->output);
        result.exitCode = runTransform(context, *options);
    });
}

} // namespace varo::cli
