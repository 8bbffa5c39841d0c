// The 30 summary statistics by their place in the statistic table. A statistic's place is
// also its column in every results table, and the groups below decide which passes a run
// needs and whether the run counts wet days only.
#pragma once

#include <array>
#include <initializer_list>

namespace varo::statistics {

inline constexpr int StatisticCount = 30;
inline constexpr int CalendarRowCount = 17; // 12 months, Winter to Autumn, the year
inline constexpr int AnnualRow = 17;
inline constexpr int MaximumSelected = 8;

// Columns of the results tables, 1-based as in the statistic table.
namespace column {
inline constexpr int Mean = 1;
inline constexpr int Maximum = 2;
inline constexpr int Minimum = 3;
inline constexpr int Median = 4;
inline constexpr int Variance = 5;
inline constexpr int Iqr = 6;
inline constexpr int Pot = 7;
inline constexpr int Pbt = 8;
inline constexpr int Percentile = 9;
inline constexpr int Sum = 10;
inline constexpr int Acf = 11;
inline constexpr int Skewness = 12;
inline constexpr int MaxNTot = 13;
inline constexpr int Count = 14;
inline constexpr int WetDaysPercent = 15;
inline constexpr int DrySpell = 16;
inline constexpr int WetSpell = 17;
inline constexpr int MaxDrySpell = 18;
inline constexpr int MaxWetSpell = 19;
inline constexpr int SdWetSpell = 20;
inline constexpr int SdDrySpell = 21;
inline constexpr int Pop = 22;
inline constexpr int PopTot = 23;
inline constexpr int MaxRange = 24;
inline constexpr int MinRange = 25;
inline constexpr int WetPersis = 26;
inline constexpr int DryPersis = 27;
inline constexpr int PersisCorr = 28;
inline constexpr int MedWet = 29;
inline constexpr int MedDry = 30;
} // namespace column

// Which statistics are selected, indexed by column; index 0 is unused.
using Selection = std::array<bool, StatisticCount + 1>;

// A results table: calendar rows 1 to 17 by statistic columns 1 to 30; index 0 unused.
using ResultTable = std::array<std::array<double, StatisticCount + 1>, CalendarRowCount + 1>;

// A table with every cell set to `value`.
ResultTable filledTable(double value);

bool anySelected(const Selection& selection, std::initializer_list<int> columns);
bool anySelectedIn(const Selection& selection, int first, int last);

// True when a precipitation statistic (columns 15 to 23 or 26 to 30) is flagged: every
// statistic of the run then counts wet days only. The two range statistics do not count.
bool wetFilterOn(const Selection& selection);

// Passes of a run, each needed only when one of its statistics is flagged.
bool needsRanges(const Selection& selection);
bool needsMoments(const Selection& selection);
bool needsSpells(const Selection& selection);
bool needsPercentiles(const Selection& selection);

} // namespace varo::statistics
