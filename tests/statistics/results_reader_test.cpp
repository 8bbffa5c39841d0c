#include "core/failure.hpp"
#include "statistics/results_reader.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using statistics::readResultsTable;
using varo::testing::TempDir;

namespace {

const char* const Rows[17] = {"January", "February", "March",     "April",   "May",      "June",
                              "July",    "August",   "September", "October", "November", "December",
                              "Winter",  "Spring",   "Summer",    "Autumn",  "Annual"};

// The head of a results file and its first table; row r holds r.250 and 10 * r.
std::string fileText(const std::string& lineEnd = "\r\n", int rows = 17) {
    std::string text = "SUMMARY STATISTICS FOR: rain.dat" + lineEnd +
                       "Analysis Start Date: 01/01/1961" + lineEnd +
                       "Analysis End Date: 31/12/1990" + lineEnd + "Ensemble Member(s): 1" +
                       lineEnd + "Month,Mean,Sum" + lineEnd;
    for (int r = 1; r <= rows; ++r) {
        text += std::string(Rows[r - 1]) + "," + std::to_string(r) + ".250," +
                std::to_string(10 * r) + ".000," + lineEnd;
    }
    return text;
}

// Statistic s of row r.
std::optional<double> value(const core::ResultsTable& table, size_t s, size_t r) {
    return table.rows.at(r).cells.at(s).value;
}

struct BadFile {
    const char* what;
    std::string text;
    int number;
    std::string message;
};

} // namespace

TEST(ResultsReader, ReadsTheHeadingAndTheSeventeenRowsWhateverTheLineEnds) {
    TempDir dir;
    for (const std::string lineEnd : {"\r\n", "\n", "\r"}) {
        const auto table = readResultsTable(dir.write("r.txt", fileText(lineEnd)), -999.0);
        EXPECT_EQ(table.rowHeading, "Month");
        EXPECT_EQ(table.columns, (std::vector<std::string>{"Mean", "Sum"}));
        ASSERT_EQ(table.rows.size(), 17u);
        EXPECT_EQ(table.rows[12].label, "Winter");
        EXPECT_EQ(value(table, 0, 0), 1.25);
        EXPECT_EQ(value(table, 1, 16), 170.0);
        EXPECT_EQ(table.columnIndex("Sum"), 1u);
        EXPECT_EQ(table.columnIndex("sum"), std::nullopt);
        EXPECT_EQ(table.cellText(table.rows[0].cells[0]), "1.250");
    }
}

TEST(ResultsReader, ReadsOnlyTheFirstTable) {
    TempDir dir;
    std::string text = fileText() + "\r\nStandard Deviations of Results\r\nMonth,Mean,Sum\r\n";
    text += "January,oops,\r\n"; // a second table is not read at all
    const auto table = readResultsTable(dir.write("r.txt", text), -999.0);
    EXPECT_EQ(value(table, 0, 0), 1.25);
}

TEST(ResultsReader, AValueWrittenAsTheMissingCodeIsMissing) {
    TempDir dir;
    std::string text = fileText();
    text.replace(text.find("3.250"), 5, "-999.000");
    text.replace(text.find("40.000"), 6, "-99.990");
    auto table = readResultsTable(dir.write("r.txt", text), -999.0);
    EXPECT_EQ(value(table, 0, 2), std::nullopt);
    EXPECT_EQ(table.cellText(table.rows[2].cells[0]), "-999.000");
    EXPECT_EQ(value(table, 1, 3), -99.99);
    // A code of more decimals than the file keeps is matched as the file writes it.
    table = readResultsTable(dir.path("r.txt"), -99.9904);
    EXPECT_EQ(value(table, 0, 2), -999.0);
    EXPECT_EQ(value(table, 1, 3), std::nullopt);
}

TEST(ResultsReader, AFileWithoutATableHasNoStatistics) {
    TempDir dir;
    for (const char* text : {"just text\r\n", "", "Month\r\n"}) {
        EXPECT_TRUE(readResultsTable(dir.write("a.txt", text), -999.0).columns.empty()) << text;
    }
}

TEST(ResultsReader, ABrokenTableNamesTheFileLineAndValue) {
    TempDir dir;
    const std::string path = dir.path("r.txt");
    std::string badNumber = fileText();
    badNumber.replace(badNumber.find("70.000"), 6, "7O.000");
    std::string shortRow = fileText();
    shortRow.replace(shortRow.find("4.250,40.000,"), 13, "4.250");
    std::string blankRow = fileText();
    blankRow.replace(blankRow.find("June"),
                     blankRow.find("\r\n", blankRow.find("June")) - blankRow.find("June"), "");
    const std::vector<BadFile> cases = {
        {"truncated", fileText("\r\n", 12), core::failure::InputPastEnd,
         "Results file '" + path +
             "' ends on line 17: the table that starts on line 5 has only "
             "12 of its 17 rows."},
        {"blank row", blankRow, core::failure::InputPastEnd,
         "Results file '" + path +
             "', line 11 is empty: the table that starts on line 5 has "
             "only 5 of its 17 rows."},
        {"not a number", badNumber, core::failure::TypeMismatch,
         "Results file '" + path + "', line 12: '7O.000' under 'Sum' is not a number."},
        {"too few values", shortRow, core::failure::TypeMismatch,
         "Results file '" + path +
             "', line 9: the row 'April' has 1 value(s) where the heading "
             "names 2 statistic(s)."},
    };
    for (const BadFile& test : cases) {
        dir.write("r.txt", test.text);
        try {
            readResultsTable(path, -999.0);
            ADD_FAILURE() << test.what << ": no failure";
        } catch (const core::Failure& failure) {
            EXPECT_EQ(failure.number(), test.number) << test.what;
            EXPECT_EQ(failure.description(), test.message) << test.what;
        }
    }
}

TEST(ResultsReader, AFileThatIsNotThereFailsWith53) {
    TempDir dir;
    try {
        readResultsTable(dir.path("none.txt"), -999.0);
        FAIL();
    } catch (const core::Failure& failure) {
        EXPECT_EQ(failure.number(), core::failure::FileNotFound);
        EXPECT_NE(failure.description().find("none.txt"), std::string::npos);
    }
}
