// CompareResultsFrm: one or two results files of summary statistics side by side. Picking a
// file reads its first table and lists its statistics; Plot checks that file 1 is there,
// that it has statistics and that one is picked, then hands the 17 calendar rows of the
// picked column of each file to the result chart, as bars or lines. Each series is
// labelled with the file's name, ": " and the statistic's name.
#pragma once

#include "charts/chart_model.hpp"
#include "core/program_state.hpp"
#include "core/results_table.hpp"
#include "screens/dialogs.hpp"
#include "screens/file_choice.hpp"
#include "statistics/results_reader.hpp"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varo::screens {

class CompareResultsScreen {
public:
    enum ChartOption { Bar = 0, Line = 1 };

    struct ResultsFile {
        std::string fileText{NotSelected}; // the file's name, or "Not selected"
        std::string path;
        std::optional<core::ResultsTable> table; // its first table
        std::optional<size_t> statistic;         // picked in the file's list

        const std::vector<std::string>& statisticList() const;
        std::string fileName() const; // the name without its folder
    };

    explicit CompareResultsScreen(core::ProgramState& state);

    std::array<ResultsFile, 2> files;
    int chartOption; // from ChartKind: 1 bars, 2 lines

    // Reads the file's first table and lists its statistics (a file with no table lists
    // none). A file that cannot be read shows the failure box and the choice stays as it
    // was; the answer is then false.
    bool chooseFile(size_t which, const std::string& path, Dialogs& dialogs);
    void pickFile(size_t which, Dialogs& dialogs);
    void clearFile(size_t which);
    // Picks a statistic of a file's list by its name (an empty name picks none); false when
    // the list has no such name. A pick in file 1 also picks the same name in file 2 when
    // file 2 has it.
    bool pickStatistic(size_t which, const std::string& name);
    // The bar or line option; the choice is kept in ChartKind while the program runs.
    void selectChart(int option);

    // Plot: the checks in order, then the chart.
    std::optional<charts::ChartModel> plot(Dialogs& dialogs);
    // The compared columns, a column a file, for text and JSON (after a successful plot).
    core::ResultsTable comparedTable() const;
    void reset();

private:
    core::ProgramState& state_;
};

} // namespace varo::screens
