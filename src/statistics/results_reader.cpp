#include "statistics/results_reader.hpp"

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

void readRow(ResultsFileTable& table, const std::string& line, size_t lineIndex,
             const std::string& missingText) {
    std::vector<std::string> fields = fieldsOf(line);
    if (fields.size() > table.statistics.size() + 1 && fields.back().empty()) {
        fields.pop_back(); // the comma that closes every value
    }
    if (fields.size() < table.statistics.size() + 1) {
        throw core::Failure(core::failure::TypeMismatch,
                            where(table.path, lineIndex) + ": the row '" + fields.front() +
                                "' has " + std::to_string(fields.size() - 1) +
                                " value(s) where the heading names " +
                                std::to_string(table.statistics.size()) + " statistic(s).");
    }
    table.rowNames.push_back(fields.front());
    for (size_t s = 0; s < table.statistics.size(); ++s) {
        const std::string& text = fields[s + 1];
        if (!core::isNumeric(text)) {
            throw core::Failure(core::failure::TypeMismatch,
                                where(table.path, lineIndex) + ": '" + text + "' under '" +
                                    table.statistics[s] + "' is not a number.");
        }
        const bool missing =
            core::formatPattern(core::leadingNumber(text), "####0.000") == missingText;
        table.values[s].push_back(missing ? std::nullopt
                                          : std::optional<double>(core::leadingNumber(text)));
    }
}

} // namespace

std::optional<size_t> ResultsFileTable::statisticIndex(const std::string& name) const {
    for (size_t s = 0; s < statistics.size(); ++s) {
        if (statistics[s] == name) {
            return s;
        }
    }
    return std::nullopt;
}

ResultsFileTable readResultsTable(const std::string& path, double missingCode) {
    const std::vector<std::string> lines = linesOf(path);
    ResultsFileTable table;
    table.path = path;
    size_t heading = 0;
    while (heading < lines.size() && !isHeading(lines[heading])) {
        ++heading;
    }
    if (heading == lines.size()) {
        return table;
    }
    std::vector<std::string> names = fieldsOf(lines[heading]);
    table.rowHeading = names.front();
    table.statistics.assign(names.begin() + 1, names.end());
    while (!table.statistics.empty() && table.statistics.back().empty()) {
        table.statistics.pop_back();
    }
    if (table.statistics.empty()) {
        return table;
    }
    table.values.resize(table.statistics.size());
    // Values are written by "####0.000": one that reads as the code written so is missing.
    const std::string missingText = core::formatPattern(missingCode, "####0.000");
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
        readRow(table, lines[index], index, missingText);
    }
    return table;
}

} // namespace varo::statistics
