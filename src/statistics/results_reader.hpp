// Reading back the first table of a summary statistics results file, for compare results:
// the statistic names of its heading and the 17 calendar rows of each column.
//
// The heading is the first line that starts with "Month," (or is "Month" alone, a table
// with no statistic); the 17 lines after it are the rows, each the row's name and one
// comma-separated value a statistic (a last empty field after the closing comma is
// allowed). A value written as the missing-value code is missing. Line ends may be CR LF,
// LF or CR. Whatever follows the first table (standard deviations, deltas, t tests) is not
// read.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace varo::statistics {

inline constexpr int ComparedRowCount = 17;

struct ResultsFileTable {
    std::string path;
    std::string rowHeading;              // "Month"
    std::vector<std::string> statistics; // empty when the file holds no table
    std::vector<std::string> rowNames;   // 17 names as the file has them
    // values[s][r]: statistic s in row r; empty where the file has the missing code.
    std::vector<std::vector<std::optional<double>>> values;

    // The statistic's place in the heading, matched exactly, or nothing.
    std::optional<size_t> statisticIndex(const std::string& name) const;
};

// Reads the file's first table. A file without a heading gives a table without
// statistics. Throws core::Failure naming the file, line and value: 53 when the file
// cannot be opened, 62 when the file ends before the 17th row, 13 for a row with too few
// values or a value that is not a number.
ResultsFileTable readResultsTable(const std::string& path, double missingCode);

} // namespace varo::statistics
