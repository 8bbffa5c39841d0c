// varo compare RESULTS1.TXT [RESULTS2.TXT] --stat NAME: one statistic of one or two results
// files side by side, row by row, through the compare results screen; with --plot the
// result chart as a picture.
#include "cli/commands.hpp"
#include "cli/plot_option.hpp"

#include "screens/compare_results_screen.hpp"

#include <optional>

namespace varo::cli {

namespace {

struct CompareOptions {
    std::string file1;
    std::string file2;
    std::optional<std::string> statistic;
    std::optional<std::string> statistic2;
    std::optional<std::string> kind;
    PlotOptions plot;
};

constexpr const char* Help =
    R"(Reads the first table of each results file (as written by varo stats) and sets the
17 rows (months, seasons, year) of the chosen statistic side by side: a table, or with
--json the rows of each file's column (missing values null). File 2 compares the same
statistic unless --stat2 names another. --kind chooses bars or lines for the chart
(default lines); --plot saves the chart as a PNG or SVG picture.)";

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        text += (text.empty() ? "" : ", ") + name;
    }
    return text;
}

// Picks the statistic in one file, or says which statistics the file has.
bool pickIn(CliContext& context, screens::CompareResultsScreen& screen, size_t which,
            const std::string& name) {
    if (screen.pickStatistic(which, name)) {
        return true;
    }
    const auto& file = screen.files[which];
    context.dialogs().error("Statistic '" + name + "' is not in file " + std::to_string(which + 1) +
                            " (" + file.fileName() +
                            "); its statistics are: " + joined(file.statisticList()) + ".");
    return false;
}

// File 2 compares only when it has the statistic asked for.
bool pickInFile2(CliContext& context, screens::CompareResultsScreen& screen,
                 const CompareOptions& options) {
    if (options.file2.empty()) {
        return true;
    }
    const auto& file2 = screen.files[1];
    if (file2.statisticList().empty()) {
        context.dialogs().error("File 2 (" + file2.fileName() + ") holds no table of statistics.");
        return false;
    }
    return pickIn(context, screen, 1, options.statistic2.value_or(*options.statistic));
}

int runCompare(CliContext& context, const CompareOptions& options) {
    if (const int refused = context.prepareState()) {
        return refused;
    }
    if (const int refused =
            checkPlotOptions(context, options.plot, {options.file1, options.file2})) {
        return refused;
    }
    screens::CompareResultsScreen screen(context.state);
    auto& dialogs = context.dialogs();
    if (!screen.chooseFile(0, options.file1, dialogs) ||
        (!options.file2.empty() && !screen.chooseFile(1, options.file2, dialogs))) {
        return ExitRefused;
    }
    if (options.kind) {
        screen.selectChart(*options.kind == "bar" ? screens::CompareResultsScreen::Bar
                                                  : screens::CompareResultsScreen::Line);
    }
    const bool file1Listed = !screen.files[0].statisticList().empty();
    if (options.statistic && file1Listed &&
        (!pickIn(context, screen, 0, *options.statistic) ||
         !pickInFile2(context, screen, options))) {
        return ExitRefused;
    }
    const auto chart = screen.plot(dialogs);
    if (!chart) {
        if (file1Listed) {
            context.err << "Give one with --stat NAME: " << joined(screen.files[0].statisticList())
                        << ".\n";
        }
        return ExitRefused;
    }
    const core::ResultsTable table = screen.comparedTable();
    if (context.options.json) {
        context.printJson(tableJson(table));
    } else {
        context.printTable(table);
    }
    return writePlot(context, options.plot, *chart);
}

} // namespace

void addCompareCommand(CLI::App& app, CliContext& context, CommandResult& result) {
    const auto options = std::make_shared<CompareOptions>();
    CLI::App* compare = app.add_subcommand("compare", "Compare a statistic of two results files");
    compare->footer(Help);
    compare->add_option("RESULTS1", options->file1, "Results file of varo stats")
        ->required()
        ->type_name(kind::File);
    compare->add_option("RESULTS2", options->file2, "Second results file (optional)")
        ->type_name(kind::File);
    compare->add_option("--stat", options->statistic, "Statistic to compare, as the file names it")
        ->type_name("NAME");
    compare
        ->add_option("--stat2", options->statistic2,
                     "Statistic of file 2, when it is not the one of --stat")
        ->type_name("NAME");
    oneOf(compare->add_option("--kind", options->kind, "Bars or lines (default lines)"),
          {"bar", "line"});
    addPlotOptions(compare, options->plot);
    compare->callback([&, options] { result.exitCode = runCompare(context, *options); });
}

} // namespace varo::cli
