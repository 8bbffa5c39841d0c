#include "core/results_table.hpp"

#include "core/number_format.hpp"

#include <algorithm>
#include <cmath>

namespace varo::core {

ResultsTable::Row& ResultsTable::addRow(std::string label, const std::vector<double>& values,
                                        double missingCode) {
    Row row{std::move(label), {}};
    row.cells.reserve(values.size());
    for (const double value : values) {
        const bool missing = value == missingCode || !std::isfinite(value);
        row.cells.push_back(Cell{missing ? std::nullopt : std::optional<double>(value), false});
    }
    rows.push_back(std::move(row));
    return rows.back();
}

std::string ResultsTable::cellText(const Cell& cell) const {
    return cell.value ? formatPattern(*cell.value, numberPattern) : missingText;
}

std::optional<size_t> ResultsTable::columnIndex(std::string_view name) const {
    const auto found = std::find(columns.begin(), columns.end(), name);
    if (found == columns.end()) {
        return std::nullopt;
    }
    return static_cast<size_t>(found - columns.begin());
}

std::vector<std::optional<double>> ResultsTable::column(size_t index) const {
    std::vector<std::optional<double>> values;
    values.reserve(rows.size());
    for (const Row& row : rows) {
        values.push_back(index < row.cells.size() ? row.cells[index].value : std::nullopt);
    }
    return values;
}

namespace {

void appendAligned(std::string& line, const std::string& text, size_t width, bool left) {
    const std::string padding(width > text.size() ? width - text.size() : 0, ' ');
    line += left ? text + padding : padding + text;
}

} // namespace

std::vector<std::string> tableLines(const ResultsTable& table) {
    std::vector<std::vector<std::string>> grid;
    grid.push_back({table.rowHeading});
    grid.back().insert(grid.back().end(), table.columns.begin(), table.columns.end());
    for (const auto& row : table.rows) {
        grid.push_back({row.label});
        for (const auto& cell : row.cells) {
            grid.back().push_back(table.cellText(cell));
        }
    }
    std::vector<size_t> widths;
    for (const auto& line : grid) {
        widths.resize(std::max(widths.size(), line.size()), 0);
        for (size_t c = 0; c < line.size(); ++c) {
            widths[c] = std::max(widths[c], line[c].size());
        }
    }
    std::vector<std::string> lines;
    if (!table.title.empty()) {
        lines.push_back(table.title);
    }
    for (const auto& entries : grid) {
        std::string line;
        for (size_t c = 0; c < entries.size(); ++c) {
            if (c > 0) {
                line += "  ";
            }
            appendAligned(line, entries[c], widths[c], c == 0);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(std::move(line));
    }
    return lines;
}

} // namespace varo::core
