// varo generate MODEL.PAR --predictors DIR -o RUN.OUT [--start D] [--days N] [--ensemble N]:
// the weather generator's run. The record fields come from the parameter file as "View
// Details" fills them; start, length and ensemble size default to the screen's own.
#include "cli/commands.hpp"

#include "screens/synthesize_screen.hpp"
#include "series/simulation_files.hpp"

#include <optional>

namespace varo::cli {

namespace {

struct GenerateOptions {
    std::string parameterFile;
    std::string predictorFolder;
    std::string outFile;
    std::optional<std::string> start;
    std::optional<std::string> days;
    std::optional<std::string> ensemble;
};

Json jsonReport(const screens::SynthesizeScreen& screen, const std::vector<std::string>& warnings) {
    Json document;
    document["out"] = screen.outFile.path;
    document["sim"] = series::simPathFor(screen.outFile.path);
    document["start"] = screen.fStartText.text;
    document["days"] = std::stol(screen.fLengthText.text);
    document["ensemble"] = std::stoi(screen.eSize.text);
    document["process"] = screen.processLabel;
    document["autoregressive"] = screen.autoRegressLabel == "True";
    document["predictand"] = screen.predictorList.empty() ? "" : screen.predictorList.front();
    document["predictors"] = screen.predictorList.empty()
                                 ? std::vector<std::string>{}
                                 : std::vector<std::string>(screen.predictorList.begin() + 1,
                                                            screen.predictorList.end());
    document["warnings"] = warnings;
    return document;
}

int runGenerate(CliContext& context, const GenerateOptions& options) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    screens::SynthesizeScreen screen(context.state);
    screen.parFile.choose(options.parameterFile);
    screen.setPredictorFolder(options.predictorFolder);
    screen.outFile.choose(options.outFile);
    const auto details = screen.viewDetails(context.dialogs());
    if (details != screens::RunOutcome::Done) {
        return exitCodeFor(details);
    }
    screen.fStartText.text = options.start.value_or(core::formatDate(context.state.globalSDate));
    screen.fLengthText.text =
        options.days.value_or(std::string(screens::SynthesizeScreen::DefaultLength));
    screen.eSize.text =
        options.ensemble.value_or(std::string(screens::SynthesizeScreen::DefaultEnsemble));
    const auto outcome = screen.synthesize(context.dialogs(), context.progress());
    if (outcome == screens::RunOutcome::Cancelled && screen.outputStarted) {
        context.progress().finish();
        context.err << "Cancelled: '" << screen.outFile.path
                    << "' is incomplete: it holds only the days written before the cancel, and '"
                    << series::simPathFor(screen.outFile.path) << "' is empty.\n";
    }
    if (outcome == screens::RunOutcome::Done) {
        context.reportWritten("OUT file", screen.outFile.path);
        context.reportWritten("SIM file", series::simPathFor(screen.outFile.path));
        if (context.options.json) {
            context.printJson(jsonReport(screen, context.dialogs().warnings()));
        }
    }
    return exitCodeFor(outcome);
}

} // namespace

void addGenerateCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto options = std::make_shared<GenerateOptions>();
    CLI::App* generate = app.add_subcommand(
        "generate", "Weather generator: ensembles of daily series from a parameter file");
    generate->add_option("MODEL", options->parameterFile, "Parameter file (.PAR) of a calibration")
        ->required()
        ->type_name(kind::File);
    generate->add_option("--predictors", options->predictorFolder, "Folder of the predictor files")
        ->required()
        ->type_name(kind::Folder);
    addOutputOption(generate, options->outFile, "OUT file to write; the SIM file goes beside it",
                    {"--out"});
    generate
        ->add_option("--start", options->start,
                     "First day to simulate (default: the settings' start date)")
        ->type_name(kind::Date);
    generate->add_option("--days", options->days, "Days to simulate (default 365)")
        ->type_name(kind::Integer);
    generate->add_option("--ensemble", options->ensemble, "Ensemble members, 1 to 100 (default 20)")
        ->type_name(kind::Integer);
    generate->callback([&, options] {
        requireOutput(options->outFile);
        result.exitCode = runGenerate(context, *options);
    });
}

} // namespace varo::cli
