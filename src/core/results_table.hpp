// A table of results as a person reads it: a title, labelled rows, named columns and a
// number or a missing mark in each cell. Runs hand their results on as tables so that the
// command line prints them, the desktop program shows them and JSON carries them from one
// value, whatever computed them.
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

    std::string title;
    std::string rowHeading; // heading of the label column, such as "Month" or "Period"
    std::vector<std::string> columns;
    std::vector<Row> rows;
    // Format pattern of every number in text (`formatPattern`), and the text of a missing cell.
    std::string numberPattern = "0.000";
    std::string missingText = "N/A";

    // Appends a row; values equal to `missingCode` (or not finite) become missing cells.
    Row& addRow(std::string label, const std::vector<double>& values, double missingCode);
    // The cell's text: the formatted number or the missing text.
    std::string cellText(const Cell& cell) const;
};

// The table as lines of text: the title, a heading line, then one line a row, every column
// right-aligned to its widest entry and separated by two blanks.
std::vector<std::string> tableLines(const ResultsTable& table);

} // namespace varo::core
