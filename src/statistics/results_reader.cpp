#include "statistics/results_reader.hpp"
#include "statistics/results_file.hpp"

#include "core/failure.hpp"
#include "core/number_format.hpp"
#include "core/numeric_text.hpp"
#include "core/series_file.hpp"

#include <fstream>
#include <sstream>
#include <string_view>

namespace varo::statistics {

namespace {

// The file's lines, whatever their ends.
std::vector<std::string> linesOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        throw core::Failure(core::failure::FileNotFound,
                            "Cannot open results file '" + path + "'.");
    }
    std::stringstream content;
    content << in.rdbuf();
    return core::splitLines(content.str());
}

std::vector<std::string> fieldsOf(std::string_view line) {
    std::vector<std::string> fields;
    size_t begin = 0;
    while (true) {
        const size_t comma = line.find(',', begin);
        fields.emplace_back(core::trimBlanks(line.substr(begin, comma - begin)));
        if (comma == std::string_view::npos) {
            return fields;
        }
        begin = comma + 1;
    }
}

bool isHeading(std::string_view line) {
    const std::string_view trimmed = core::trimBlanks(line);
    return trimmed == "Month" || trimmed.substr(0, 6) == "Month,";
}

std::string where(const std::string& path, size_t lineIndex) {
    return "Results file '" + path + "', line " + std::to_string(lineIndex + 1);
}

void readRow(core::ResultsTable& table, const std::string& path, const std::string& line,
             size_t lineIndex) {
    std::vector<std::string> fields = fieldsOf(line);
    const size_t statistics = table.columns.size();
    if (fields.size() > statistics + 1 && fields.back().empty()) {
        fields.pop_back(); // the comma that closes every value
    }
    if (fields.size() < statistics + 1) {
        throw core::Failure(core::failure::TypeMismatch,
                            where(path, lineIndex) + ": the row '" + fields.front() + "' has " +
                                std::to_string(fields.size() - 1) +
                                " value(s) where the heading names " + std::to_string(statistics) +
                                " statistic(s).");
    }
    core::ResultsTable::Row& row = table.rows.emplace_back();
    row.label = fields.front();
    for (size_t s = 0; s < statistics; ++s) {
        const std::string& text = fields[s + 1];
        if (!core::isNumeric(text)) {
            throw core::Failure(core::failure::TypeMismatch, where(path, lineIndex) + ": '" + text +
                                                                 "' under '" + table.columns[s] +
                                                                 "' is not a number.");
        }
        const double value = core::leadingNumber(text);
        const bool missing = core::formatPattern(value, ValuePattern) == table.missingText;
        row.cells.push_back({missing ? std::nullopt : std::optional<double>(value), false});
    }
}

} // namespace

core::ResultsTable readResultsTable(const std::string& path, double missingCode) {
    const std::vector<std::string> lines = linesOf(path);
    core::ResultsTable table;
    table.numberPattern = std::string(ValuePattern);
    // Values are written by the pattern: one that reads as the code written so is missing.
    table.missingText = core::formatPattern(missingCode, ValuePattern);
    size_t heading = 0;
    while (heading < lines.size() && !isHeading(lines[heading])) {
        ++heading;
    }
    if (heading == lines.size()) {
        return table;
    }
    std::vector<std::string> names = fieldsOf(lines[heading]);
    table.rowHeading = names.front();
    table.columns.assign(names.begin() + 1, names.end());
    while (!table.columns.empty() && table.columns.back().empty()) {
        table.columns.pop_back();
    }
    if (table.columns.empty()) {
        return table;
    }
    for (int row = 1; row <= ComparedRowCount; ++row) {
        const size_t index = heading + static_cast<size_t>(row);
        if (index >= lines.size() || core::trimBlanks(lines[index]).empty()) {
            const std::string place =
                index >= lines.size()
                    ? "Results file '" + path + "' ends on line " + std::to_string(lines.size())
                    : where(path, index) + " is empty";
            throw core::Failure(core::failure::InputPastEnd,
                                place + ": the table that starts on line " +
                                    std::to_string(heading + 1) + " has only " +
                                    std::to_string(row - 1) + " of its " +
                                    std::to_string(ComparedRowCount) + " rows.");
        }
        readRow(table, path, lines[index], index);
    }
    return table;
}

} // namespace varo::statistics
