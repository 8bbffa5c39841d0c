// The row lists of an analysis period: for each of the 17 calendar rows (months 1 to 12,
// seasons 13 to 16 Winter to Autumn, the year 17) the period's values in date order, with
// the sentinel `BlockEnd` closing each block (one month occurrence in a month row, one
// season occurrence in a season row, one calendar year in the year row) and `RowEnd`
// closing the list.
//
// The layout of the lists depends only on the days of the period, so it is built once and
// filled for each ensemble member in turn from the member's values. A datum that happens
// to equal a sentinel acts as that sentinel; nothing guards against it.
#pragma once

#include "series/period_reader.hpp"
#include "statistics/statistic_columns.hpp"

#include <array>
#include <cstdint>
#include <vector>

namespace varo::statistics {

inline constexpr double BlockEnd = 32766.0;
inline constexpr double RowEnd = 32767.0;

using series::PeriodDay;

// The calendar row of a month's season: 13 Winter (December to February) to 16 Autumn.
int seasonRow(int month);

// What an entry of a list is: the missing code, a sentinel (a datum equal to one counts as
// one), or a real value at or below the wet-day threshold (Dry) or above it (Wet), the
// value rounded to single precision for the comparison.
enum class Kind : std::uint8_t { Missing, BlockEnd, RowEnd, Dry, Wet };

inline bool isReal(Kind kind) {
    return kind >= Kind::Dry;
}
inline bool isSentinel(Kind kind) {
    return kind == Kind::BlockEnd || kind == Kind::RowEnd;
}
inline Kind kindOf(double value, double missingCode, float thresh) {
    if (value == missingCode) {
        return Kind::Missing;
    }
    if (value == BlockEnd) {
        return Kind::BlockEnd;
    }
    if (value == RowEnd) {
        return Kind::RowEnd;
    }
    return static_cast<float>(value) > thresh ? Kind::Wet : Kind::Dry;
}

// One member's 17 lists, indexed 1 to 17, with the kind of each entry; a list's size is
// its RowLength, the RowEnd included.
struct MemberRows {
    std::array<std::vector<double>, CalendarRowCount + 1> values;
    std::array<std::vector<Kind>, CalendarRowCount + 1> kinds;
};

// Sets the kinds of lists whose values were written by hand.
void classifyEntries(MemberRows& rows, double missingCode, float thresh);

class RowLayout {
public:
    // Appends each day to its month row, season row and row 17, closing the previous
    // month's, season's and year's block whenever those change from one day to the
    // next, and every open block after the last day; then closes all 17 lists.
    explicit RowLayout(const std::vector<PeriodDay>& days);

    // Fills the member's lists and their kinds from its values, one a day in the order of
    // the days.
    void fill(const double* memberValues, double missingCode, float thresh, MemberRows& rows) const;

    // Entries of a row: a day's index, or one of the marks below.
    static constexpr std::int32_t BlockEndMark = -1;
    static constexpr std::int32_t RowEndMark = -2;
    const std::vector<std::int32_t>& entries(int row) const { return rows_[row]; }

private:
    std::array<std::vector<std::int32_t>, CalendarRowCount + 1> rows_;
};

// The blocks of a list that hold at least one real value.
int blocksWithData(const std::vector<Kind>& kinds);

} // namespace varo::statistics
