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
    for (const auto& value : file.table->column(*file.statistic)) {
        values.push_back(value.value_or(charts::NoValue));
    }
    return values;
}

std::vector<std::string> rowLabels(const core::ResultsTable& table) {
    std::vector<std::string> labels;
    for (const auto& row : table.rows) {
        labels.push_back(row.label);
    }
    return labels;
}

bool hasPick(const CompareResultsScreen::ResultsFile& file) {
    return file.table && file.statistic;
}

std::string seriesLabel(const CompareResultsScreen::ResultsFile& file) {
    return file.fileName() + ": " + file.table->columns[*file.statistic];
}

} // namespace

const std::vector<std::string>& CompareResultsScreen::ResultsFile::statisticList() const {
    return table ? table->columns : NoStatistics;
}

std::string CompareResultsScreen::ResultsFile::fileName() const {
    return table ? std::filesystem::path(path).filename().string() : fileText;
}

CompareResultsScreen::CompareResultsScreen(core::ProgramState& state)
    : chartOption(state.chartKind == 1 ? Bar : Line), state_(state) {}

bool CompareResultsScreen::chooseFile(size_t which, const std::string& path, Dialogs& dialogs) {
    try {
        ResultsFile chosen;
        chosen.table = statistics::readResultsTable(path, state_.globalMissingCode);
        chosen.path = path;
        chosen.fileText = chosen.fileName();
        files[which] = std::move(chosen);
    } catch (const core::Failure& failure) {
        dialogs.error(core::reportFailureText(failure.number(), failure.description()));
        return false;
    }
    if (which == 1 && hasPick(files[0])) {
        pickStatistic(1, files[0].table->columns[*files[0].statistic]);
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
    const auto index = file.table ? file.table->columnIndex(name) : std::nullopt;
    if (!index) {
        return false;
    }
    file.statistic = index;
    if (which == 0 && files[1].table && files[1].table->columnIndex(name)) {
        files[1].statistic = files[1].table->columnIndex(name);
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
    return charts::resultChart(chartOption == Bar, rowLabels(*files[0].table), std::move(series),
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
    for (size_t row = 0; row < compared.front()->table->rows.size(); ++row) {
        core::ResultsTable::Row line{compared.front()->table->rows[row].label, {}};
        for (const ResultsFile* file : compared) {
            line.cells.push_back({file->table->rows[row].cells[*file->statistic].value, false});
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
