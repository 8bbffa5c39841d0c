// The statistics of one ensemble member over its 17 row lists, pass by pass.
//
// A run computes, for each member, a results table of 17 calendar rows by the 30
// statistics. The passes run in a fixed order (first pass, moments, N-day totals, lag-1
// autocorrelation, spells, median and percentiles) and each runs only when one of its
// statistics is flagged. The median pass sorts the lists in place and so comes last.
//
// Rules that the numbers depend on:
// - A real value is neither the missing code nor a sentinel. When a precipitation
//   statistic is flagged (`wetFilterOn`), only real values above the wet-day threshold
//   (compared in single precision) are counted, for every statistic of the run that
//   counts values, Mean and Maximum included.
// - An inactive row (no real value) holds the missing code in every column.
// - `Wet-days%` and `POP_Tot` are fractions; variance and skewness are population forms.
// - N-day totals and spells never cross a block end or (for spells) a missing day; the
//   N-day totals and the autocorrelation use every real value, whatever the wet filter.
// - `Sum` holds the plain total after the first pass; `finishSums` turns it into the
//   mean total per block once the block counts of all members are known.
#pragma once

#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "statistics/row_lists.hpp"
#include "statistics/statistic_columns.hpp"

#include <array>
#include <functional>
#include <string_view>
#include <vector>

namespace varo::statistics {

struct EngineSettings {
    Selection selected{};
    float thresh = 0.0f;
    double missingCode = -999.0;
    float percentile = 95.0f;
    float peaksOverThreshold = 0.0f;
    float peaksBelowThreshold = 0.0f;
    int nDayTotal = 5;
    float potPercentile = 90.0f;
    // The t tests of a delta run read the variance whether or not it is flagged.
    bool momentsForTests = false;
};

// The flags and parameters of the statistic table, the wet-day threshold and the missing
// value code as they stand in the program state.
EngineSettings engineSettingsFrom(const core::ProgramState& state);

// Progress captions of the passes.
namespace caption {
inline constexpr std::string_view AnalysingScenario = "Analysing Scenario";
inline constexpr std::string_view Statistics = "Calculating Statistics - Please Wait";
inline constexpr std::string_view Moments = "Calculating Moments - Please Wait";
inline constexpr std::string_view NDayTotal = "Calculating N Day Total - Please Wait";
inline constexpr std::string_view MaxNDayTotal = "Calculating Maximum N Day Total - Please Wait";
inline constexpr std::string_view Autocorrelation =
    "Calculating Autocorrelation Function - Please Wait";
inline constexpr std::string_view Precipitation =
    "Calculating Precipitation Statistics - Please Wait";
inline constexpr std::string_view MedianPercentiles =
    "Calculating Median and Percentiles - Please Wait";
} // namespace caption

// The passes, in the order a run makes them. Each fills its columns of `table` for one
// member's lists; `table` starts as `filledTable(0)`.
enum class Pass { First, Moments, NDayTotal, Autocorrelation, Spells, MedianPercentiles };

// The passes a selection needs, in order.
std::vector<Pass> passesFor(const EngineSettings& settings);
std::string_view passCaption(Pass pass);

// Called before each row of a pass with the row's number: reports progress and throws
// `core::Cancelled` on a stop request.
using RowStep = std::function<void(int row)>;

// Runs one pass over the 17 rows of one member's lists (their kinds set), filling the
// pass's columns of `table`. The median pass takes the rows from 17 down to 1, so that the year's
// values stand sorted before a month's or a season's, and leaves each list holding its counted
// values in ascending order: it runs last.
void runPass(Pass pass, MemberRows& rows, const EngineSettings& settings, ResultTable& table,
             const RowStep& beforeRow);

// Sets the kinds of the member's lists and runs every needed pass over them, reporting
// each row under the pass's caption and throwing `core::Cancelled` on a stop request.
ResultTable memberStatistics(MemberRows& rows, const EngineSettings& settings,
                             core::Progress& progress);

// `Sum` becomes the total over the row's block count (the largest count over the
// members of blocks holding a real value), or the missing code when that count is 0.
void finishSums(ResultTable& table, const std::array<int, CalendarRowCount + 1>& blockCounts,
                double missingCode);

// Sorts ascending by Shell's method, gaps 1, 4, 13, 40, ... (h = 3h + 1), the first being
// the largest h with 9h below n.
void shellSort(double* values, size_t count);

// The value at percentage `p` of an ascending list: position p (n - 1) / 100 + 1 (1-based),
// linear interpolation between the neighbours.
double percentileOfSorted(const double* sorted, size_t count, double p);

} // namespace varo::statistics
