#include "statistics/results_file.hpp"

#include "core/failure.hpp"
#include "engine_support.hpp"
#include "support/temp_dir.hpp"

#include <gtest/gtest.h>

using namespace varo;
using namespace varo::statistics;
using namespace varo::testing;

namespace {

ReportLabels twoColumns() {
    ReportLabels labels;
    labels.fileName = "run.OUT";
    labels.startDate = "01/01/1961";
    labels.endDate = "31/12/1990";
    labels.members = "ALL";
    labels.columns = {column::Mean, column::Sum};
    labels.columnNames = {"Mean", "Sum"};
    const char* names[] = {"January", "February", "March",     "April",   "May",      "June",
                           "July",    "August",   "September", "October", "November", "December",
                           "Winter",  "Spring",   "Summer",    "Autumn",  "Annual"};
    for (int row = 1; row <= CalendarRowCount; ++row) {
        labels.rowNames[row] = names[row - 1];
    }
    labels.periodStart = {"01/01/2011", "01/01/2041", "01/01/2071"};
    labels.periodEnd = {"31/12/2040", "31/12/2070", "31/12/2099"};
    return labels;
}

// The lines of a text, split at CR LF.
std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    size_t start = 0;
    for (size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2) {
        result.push_back(text.substr(start, end - start));
    }
    EXPECT_EQ(start, text.size()) << "text must end with CR LF";
    return result;
}

} // namespace

TEST(ResultsText, HeaderTableAndSeparatorsWithoutGrouping) {
    AnalysisResults results;
    results.base.values = filledTable(0.0);
    results.base.values[1][column::Mean] = 1234.5;
    results.base.values[1][column::Sum] = -0.0004;
    results.base.values[17][column::Mean] = Missing;
    results.base.values[17][column::Sum] = 2.0625; // ties go to the even digit
    const auto text =
        lines(resultsText(twoColumns(), resultTables(twoColumns(), results, Missing)));
    ASSERT_EQ(text.size(), 22u);
    EXPECT_EQ(text[0], "SUMMARY STATISTICS FOR: run.OUT");
    EXPECT_EQ(text[1], "Analysis Start Date: 01/01/1961");
    EXPECT_EQ(text[2], "Analysis End Date: 31/12/1990");
    EXPECT_EQ(text[3], "Ensemble Member(s): ALL");
    EXPECT_EQ(text[4], "Month,Mean,Sum");
    EXPECT_EQ(text[5], "January,1234.500,0.000,");
    EXPECT_EQ(text[6], "February,0.000,0.000,");
    EXPECT_EQ(text[21], "Annual,-999.000,2.062,");
}

TEST(ResultsText, DeviationsDeltasAndTests) {
    AnalysisResults results;
    results.base.values = filledTable(1.0);
    results.base.deviations = filledTable(0.5);
    DeltaResults delta;
    for (size_t p = 0; p < 3; ++p) {
        delta.deltas[p] = filledTable(10.0 * static_cast<double>(p + 1));
        for (auto& test : delta.tests[p]) {
            test = {1.5, 12.5};
        }
    }
    delta.tests[0][1] = {Missing, Missing};
    delta.tests[1][1] = {0.0, 0.4}; // degrees of freedom that round to 0 print nothing
    results.delta = delta;
    auto labels = twoColumns();
    labels.deltaKind = AbsoluteDelta;
    const ResultsTables tables = resultTables(labels, results, Missing);
    const auto text = lines(resultsText(labels, tables));
    ASSERT_EQ(text.size(), 22u + 20u + 2u + 3u * 20u + 2u * 20u);
    EXPECT_EQ(text[22], "");
    EXPECT_EQ(text[23], "Standard Deviations of Results");
    EXPECT_EQ(text[24], "Month,Mean,Sum");
    EXPECT_EQ(text[25], "January,0.500,0.500,");
    EXPECT_EQ(text[42], "");
    EXPECT_EQ(text[43], "DELTA STATISTICS for run.OUT (absolute difference)");
    EXPECT_EQ(text[44], "");
    EXPECT_EQ(text[45], "Period A: 01/01/2011 to 31/12/2040");
    EXPECT_EQ(text[46], "Month,Mean,Sum");
    EXPECT_EQ(text[47], "January,10.000,10.000,");
    EXPECT_EQ(text[85], "Period C: 01/01/2071 to 31/12/2099");
    EXPECT_EQ(text[104], "");
    EXPECT_EQ(text[105], "T Test Results");
    EXPECT_EQ(text[106], "Period,Period A,Period B,Period C");
    EXPECT_EQ(text[107], "January,-999.000,0.000,1.500,");
    EXPECT_EQ(text[108], "February,1.500,1.500,1.500,");
    EXPECT_EQ(text[125], "Degrees of Freedom for T Test");
    EXPECT_EQ(text[126], "Period,Period A,Period B,Period C");
    EXPECT_EQ(text[127], "January,-999,,12,");
    EXPECT_EQ(text[128], "February,12,12,12,");

    // The same tables under their tab names; a t value above 1.96 alone is picked out.
    std::vector<std::string> names;
    for (const auto& named : tables.named()) {
        names.push_back(named.name);
    }
    EXPECT_EQ(names,
              (std::vector<std::string>{"Statistics", "Standard deviations", "Period A", "Period B",
                                        "Period C", "T test", "Degrees of freedom"}));
    EXPECT_EQ(tables.delta->periods[0].title,
              "Period A: 01/01/2011 to 31/12/2040, absolute difference");
    EXPECT_FALSE(tables.delta->tTest.rows[1].cells[0].highlighted);
    results.delta->tests[0][2].t = 1.97;
    EXPECT_TRUE(resultTables(labels, results, Missing).delta->tTest.rows[1].cells[0].highlighted);
}

TEST(ResultsFile, WrittenWholeOrNotAtAll) {
    TempDir dir;
    writeResultsFile(dir.path("r.txt"), "a\r\nb\r\n");
    EXPECT_EQ(readFile(dir.path("r.txt")), "a\r\nb\r\n");
    EXPECT_THROW(writeResultsFile(dir.path("none/r.txt"), "a\r\n"), core::Failure);
    EXPECT_FALSE(fileExists(dir.path("none/r.txt")));
    // A folder in the way is reported and left alone.
    EXPECT_THROW(writeResultsFile(dir.folder(), "a\r\n"), core::Failure);
    EXPECT_TRUE(fileExists(dir.folder()));
}
