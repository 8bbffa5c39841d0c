// A table of results as a person reads it: a title, labelled rows, named columns (with
// headings over groups of them) and a number or a missing mark in each cell, some cells
// picked out. Every run hands its results on as tables (the calibration report and its
// coefficients, the screening reports, summary statistics, a results file read back, the
// compared columns), so that the text writers, the desktop's results view, JSON output,
// charts and compare all read one type, whatever computed it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varo::core {

struct ResultsTable {
    struct Cell {
        std::optional<double> value; // empty: missing, shown as the table's missing text
        bool highlighted = false;    // a value to pick out (a best predictor, a test passed)
    };
    struct Row {
        std::string label;
        std::vector<Cell> cells; // one a column
    };
    // A heading over the columns from `firstColumn` (0-based) to the next group's first.
    struct ColumnGroup {
        std::string title;
        size_t firstColumn = 0;
    };

    std::string title;
    std::string rowHeading; // heading of the label column, such as "Month" or "Period"
    std::vector<std::string> columns;
    std::vector<ColumnGroup> columnGroups;
    std::vector<Row> rows;
    // Format pattern of every number in text (`formatPattern`), and the text of a missing cell.
    std::string numberPattern = "0.000";
    std::string missingText = "N/A";

    // Appends a row; values equal to `missingCode` (or not finite) become missing cells.
    Row& addRow(std::string label, const std::vector<double>& values, double missingCode);
    // The cell's text: the formatted number or the missing text.
    std::string cellText(const Cell& cell) const;
    // The first column of that name, or nothing.
    std::optional<size_t> columnIndex(std::string_view name) const;
    // A column's values, row by row (empty where missing).
    std::vector<std::optional<double>> column(size_t index) const;
};

// A table with the short name a tab or a JSON key shows it by.
struct NamedTable {
    std::string name;
    ResultsTable table;
};

// The table as lines of text: the title, a heading line, then one line a row, every column
// right-aligned to its widest entry and separated by two blanks.
std::vector<std::string> tableLines(const ResultsTable& table);

} // namespace varo::core
