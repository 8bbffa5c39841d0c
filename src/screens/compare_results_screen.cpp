#include "screens/compare_results_screen.hpp"

#include "charts/chart_builders.hpp"
#include "core/failure.hpp"

#include <filesystem>

namespace varo::screens {

namespace {

const std::vector<std::string> NoStatistics;

// The picked column with missing rows as NoValue.
std::vector<double> pickedColumn(const CompareResultsScreen::ResultsFile& file) {
    std::vector<double> values;
    for (const auto& value : file.table->values[*file.statistic]) {
        values.push_back(value ? *value : charts::NoValue);
    }
    return values;
}

bool hasPick(const CompareResultsScreen::ResultsFile& file) {
    return file.table && file.statistic;
}

std::string seriesLabel(const CompareResultsScreen::ResultsFile& file) {
    return file.fileName() + ": " + file.table->statistics[*file.statistic];
}

} // namespace

const std::vector<std::string>& CompareResultsScreen::ResultsFile::statisticList() const {
    return table ? table->statistics : NoStatistics;
}

std::string CompareResultsScreen::ResultsFile::fileName() const {
    return table ? std::filesystem::path(table->path).filename().string() : fileText;
}

CompareResultsScreen::CompareResultsScreen(core::ProgramState& state)
    : chartOption(state.chartKind == 1 ? Bar : Line), state_(state) {}

bool CompareResultsScreen::chooseFile(size_t which, const std::string& path, Dialogs& dialogs) {
    try {
        ResultsFile chosen;
        chosen.table = statistics::readResultsTable(path, state_.globalMissingCode);
        chosen.fileText = chosen.fileName();
        files[which] = std::move(chosen);
    } catch (const core::Failure& failure) {
        dialogs.error(core::reportFailureText(failure.number(), failure.description()));
        return false;
    }
    if (which == 1 && hasPick(files[0])) {
        pickStatistic(1, files[0].table->statistics[*files[0].statistic]);
    }
    return true;
}

void CompareResultsScreen::pickFile(size_t which, Dialogs& dialogs) {
    if (const auto path = dialogs.pickOpenFile(filter::Text, state_.defaultDir)) {
        chooseFile(which, *path, dialogs);
    }
}

void CompareResultsScreen::clearFile(size_t which) {
    files[which] = ResultsFile{};
}

bool CompareResultsScreen::pickStatistic(size_t which, const std::string& name) {
    ResultsFile& file = files[which];
    if (name.empty()) {
        file.statistic.reset();
        return true;
    }
    const auto index = file.table ? file.table->statisticIndex(name) : std::nullopt;
    if (!index) {
        return false;
    }
    file.statistic = index;
    if (which == 0 && files[1].table && files[1].table->statisticIndex(name)) {
        files[1].statistic = files[1].table->statisticIndex(name);
    }
    return true;
}

void CompareResultsScreen::selectChart(int option) {
    chartOption = option;
    state_.chartKind = static_cast<std::int16_t>(option == Bar ? 1 : 2);
}

std::optional<charts::ChartModel> CompareResultsScreen::plot(Dialogs& dialogs) {
    if (!files[0].table) {
        dialogs.error("You must select at least file 1.");
        return std::nullopt;
    }
    if (files[0].statisticList().empty()) {
        dialogs.error("No statistics to select in file 1.");
        return std::nullopt;
    }
    if (!files[0].statistic) {
        dialogs.error("You must select a statistic to plot from file 1.");
        return std::nullopt;
    }
    std::vector<charts::CategorySeries> series;
    for (const ResultsFile& file : files) {
        if (hasPick(file)) {
            series.push_back({seriesLabel(file), pickedColumn(file)});
        }
    }
    return charts::resultChart(chartOption == Bar, files[0].table->rowNames, std::move(series),
                               state_);
}

core::ResultsTable CompareResultsScreen::comparedTable() const {
    core::ResultsTable table;
    table.title = chartOption == Bar ? "VARO Bar Chart" : "VARO Line Chart";
    table.rowHeading = files[0].table ? files[0].table->rowHeading : "Month";
    std::vector<const ResultsFile*> compared;
    for (const ResultsFile& file : files) {
        if (hasPick(file)) {
            compared.push_back(&file);
            table.columns.push_back(seriesLabel(file));
        }
    }
    if (compared.empty()) {
        return table;
    }
    for (size_t row = 0; row < compared.front()->table->rowNames.size(); ++row) {
        core::ResultsTable::Row line{compared.front()->table->rowNames[row], {}};
        for (const ResultsFile* file : compared) {
            line.cells.push_back({file->table->values[*file->statistic][row], false});
        }
        table.rows.push_back(std::move(line));
    }
    return table;
}

void CompareResultsScreen::reset() {
    files = {};
    chartOption = state_.chartKind == 1 ? Bar : Line;
}

} // namespace varo::screens
