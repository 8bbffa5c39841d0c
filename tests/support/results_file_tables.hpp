// The tables of a summary statistics results file as cell texts, to compare with what the
// command line prints and the desktop program shows.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace varo::testing {

// Rows of cell texts, the heading row first.
using TextTable = std::vector<std::vector<std::string>>;

inline std::vector<std::string> splitAt(const std::string& text, const std::string& end) {
    std::vector<std::string> parts;
    size_t begin = 0;
    for (size_t at = text.find(end); at != std::string::npos; at = text.find(end, begin)) {
        parts.push_back(text.substr(begin, at - begin));
        begin = at + end.size();
    }
    return parts;
}

// Each heading line ("Month,..." or "Period,...") and the 17 lines after it, split at
// commas; the empty field after a row's last comma is checked and dropped.
inline std::vector<TextTable> resultsFileTables(const std::string& text) {
    const auto lines = splitAt(text, "\r\n");
    std::vector<TextTable> tables;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].rfind("Month,", 0) != 0 && lines[i].rfind("Period,", 0) != 0) {
            continue;
        }
        TextTable table;
        for (size_t r = i; r <= i + 17 && r < lines.size(); ++r) {
            auto fields = splitAt(lines[r] + ",", ",");
            if (r > i) {
                EXPECT_TRUE(fields.back().empty()) << lines[r];
                fields.pop_back();
            }
            table.push_back(fields);
        }
        tables.push_back(table);
    }
    return tables;
}

} // namespace varo::testing
