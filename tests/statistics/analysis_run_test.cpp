// A whole summary statistics run, from an OUT file of two members to its tables, against
// numbers computed straight from the definitions by tests/data/statistics/run/
// make_reference.py: each member, the ensemble mean and deviation, the block count of the
// sums taken over all members, and the change and t test of a delta run.
#include "statistics/analysis_run.hpp"

#include "core/failure.hpp"
#include "core/notices.hpp"
#include "core/series_file.hpp"
#include "support/failure_checks.hpp"
#include "support/recording_progress.hpp"
#include "support/reference_lines.hpp"
#include "support/temp_dir.hpp"

#include <cmath>
#include <gtest/gtest.h>

using namespace varo;
using namespace varo::statistics;
using varo::testing::RecordingProgress;

namespace {

const std::string RunData = std::string(VARO_TEST_DATA) + "/statistics/run/";

// The columns the reference holds, in its order.
constexpr std::array<int, 5> Columns{column::Mean, column::Maximum, column::Variance, column::Sum,
                                     column::Count};

const auto& reference() {
    static const auto lines = varo::testing::referenceLines(RunData + "reference.txt");
    return lines;
}

AnalysisRequest baseRun(EnsembleChoice ensemble) {
    AnalysisRequest request;
    request.source = {RunData + "run.OUT", 2, core::calendarForYearLength(365), {1, 1, 1961}};
    for (const int c : Columns) {
        request.settings.selected[static_cast<size_t>(c)] = true;
    }
    request.ensemble = ensemble;
    request.start = {1, 1, 1961};
    request.end = {31, 12, 1962};
    return request;
}

// Every row of `table` against the reference lines under `key` ("row v1 .. v5").
void expectTable(const ResultTable& table, const std::string& key) {
    for (const auto& line : reference().at(key)) {
        const auto row = static_cast<size_t>(line.at(0));
        for (size_t i = 0; i < Columns.size(); ++i) {
            const double expected = line.at(i + 1);
            EXPECT_NEAR(table[row][static_cast<size_t>(Columns[i])], expected,
                        1e-9 * (1.0 + std::fabs(expected)))
                << key << " row " << row << " column " << Columns[i];
        }
    }
}

} // namespace

TEST(AnalysisRun, EachMemberMatchesTheDefinitionsWithSumsOverEveryMembersBlocks) {
    core::NullProgress progress;
    for (const int member : {1, 2}) {
        const AnalysisResults results = runAnalysis(baseRun({false, member}), progress);
        expectTable(results.base.values, "member" + std::to_string(member));
        EXPECT_FALSE(results.base.deviations);
        EXPECT_FALSE(results.delta);
    }
}

TEST(AnalysisRun, TheEnsembleMeanAndDeviationOverTheMembers) {
    core::NullProgress progress;
    const AnalysisResults results = runAnalysis(baseRun({true, 0}), progress);
    expectTable(results.base.values, "mean");
    ASSERT_TRUE(results.base.deviations);
    expectTable(*results.base.deviations, "deviation");
}

TEST(AnalysisRun, AMemberTheFileDoesNotHoldStopsTheRun) {
    core::NullProgress progress;
    for (const int member : {0, 3}) {
        EXPECT_EQ(varo::testing::stopMessage([&] {
                      runAnalysis(baseRun({false, member}), progress);
                  }),
                  "Ensemble member does not exist in data file.")
            << member;
    }
    // A single series has no members to choose from.
    varo::testing::TempDir dir;
    std::string first;
    const std::string out = varo::testing::readFile(RunData + "run.OUT");
    for (const std::string& line : core::splitLines(out)) {
        first += line.substr(0, 14) + "\r\n";
    }
    AnalysisRequest single = baseRun({false, 7});
    single.source.path = dir.write("member1.dat", first);
    single.source.memberCount = 1;
    expectTable(runAnalysis(single, progress).base.values, "member1");
}

TEST(AnalysisRun, ADeltaRunComparesThePeriodsWithTheVarianceItWasNotAskedFor) {
    AnalysisRequest request = baseRun({false, 1});
    request.settings.selected = {};
    request.settings.selected[column::Mean] = true;
    request.deltas = true;
    request.periodStart.fill({1, 1, 1963});
    request.periodEnd.fill({31, 12, 1963});
    request.deltaKind = PercentageDelta;
    RecordingProgress progress;
    const AnalysisResults results = runAnalysis(request, progress);
    ASSERT_TRUE(results.delta);
    for (const auto& line : reference().at("change")) {
        const auto row = static_cast<size_t>(line.at(0));
        for (size_t p = 0; p < 3; ++p) {
            EXPECT_NEAR(results.delta->deltas[p][row][column::Mean], line.at(1), 1e-9) << row;
            EXPECT_NEAR(results.delta->tests[p][row].t, line.at(2), 1e-9) << row;
            EXPECT_NEAR(results.delta->tests[p][row].degreesOfFreedom, line.at(3), 1e-6) << row;
        }
        // Only the flagged statistic changes.
        EXPECT_EQ(results.delta->deltas[0][row][column::Maximum], -999.0);
    }
    // The base period starts with the file; each later period skips to its start.
    const std::vector<std::string> onePeriod{
        "Analysing Scenario", "Skipping Unnecessary Data", "Reading in Data",
        "Calculating Statistics - Please Wait", "Calculating Moments - Please Wait"};
    std::vector<std::string> expected(onePeriod.begin(), onePeriod.end());
    expected.erase(expected.begin() + 1);
    for (int p = 0; p < 3; ++p) {
        expected.insert(expected.end(), onePeriod.begin(), onePeriod.end());
    }
    EXPECT_EQ(progress.captions, expected);
}

TEST(AnalysisRun, AStopRequestEndsTheRunInAnyPhase) {
    // One report to start, 730 reading two years, then 17 a row list in each of two passes
    // over two members.
    for (const long stopAfter : {0L, 700L, 760L}) {
        RecordingProgress progress(stopAfter);
        EXPECT_THROW(runAnalysis(baseRun({true, 0}), progress), core::Cancelled) << stopAfter;
    }
}
