// Reading back the first table of a summary statistics results file, for compare results:
// the statistic names of its heading and the 17 calendar rows of each column, as a results
// table like the one the summary statistics screen shows.
//
// The heading is the first line that starts with "Month," (or is "Month" alone, a table
// with no statistic); the 17 lines after it are the rows, each the row's name and one
// comma-separated value a statistic (a last empty field after the closing comma is
// allowed). A value written as the missing-value code is missing. Line ends may be CR LF,
// LF or CR. Whatever follows the first table (standard deviations, deltas, t tests) is not
// read.
#pragma once

#include "core/results_table.hpp"

#include <string>

namespace varo::statistics {

inline constexpr int ComparedRowCount = 17;

// Reads the file's first table: the heading's first name ("Month") as the row heading, the
// statistics as columns, the 17 rows by the names the file gives them, a value written as
// the missing-value code as a missing cell; numbers are shown "####0.000" as the file has
// them. A file without a heading gives a table without columns. Throws core::Failure
// naming the file, line and value: 53 when the file cannot be opened, 62 when the file ends
// before the 17th row, 13 for a row with too few values or a value that is not a number.
core::ResultsTable readResultsTable(const std::string& path, double missingCode);

} // namespace varo::statistics
