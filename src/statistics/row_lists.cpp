#include "statistics/row_lists.hpp"

#include "core/record_calendar.hpp"

namespace varo::statistics {

int seasonRow(int month) {
    return 12 + core::seasonOfMonth(month);
}

RowLayout::RowLayout(const std::vector<PeriodDay>& days) {
    for (size_t d = 0; d < days.size(); ++d) {
        const PeriodDay& day = days[d];
        if (d > 0) {
            const PeriodDay& previous = days[d - 1];
            if (day.month != previous.month) {
                rows_[previous.month].push_back(BlockEndMark);
            }
            if (seasonRow(day.month) != seasonRow(previous.month)) {
                rows_[seasonRow(previous.month)].push_back(BlockEndMark);
            }
            if (day.year != previous.year) {
                rows_[AnnualRow].push_back(BlockEndMark);
            }
        }
        const auto index = static_cast<std::int32_t>(d);
        rows_[day.month].push_back(index);
        rows_[seasonRow(day.month)].push_back(index);
        rows_[AnnualRow].push_back(index);
    }
    if (!days.empty()) {
        const int month = days.back().month;
        rows_[month].push_back(BlockEndMark);
        rows_[seasonRow(month)].push_back(BlockEndMark);
        rows_[AnnualRow].push_back(BlockEndMark);
    }
    for (int row = 1; row <= CalendarRowCount; ++row) {
        rows_[row].push_back(RowEndMark);
    }
}

void RowLayout::fill(const double* memberValues, double missingCode, float thresh,
                     MemberRows& rows) const {
    for (int row = 1; row <= CalendarRowCount; ++row) {
        const auto& layout = rows_[row];
        auto& values = rows.values[row];
        auto& kinds = rows.kinds[row];
        // Appended rather than resized: every entry is written, none needs clearing first.
        values.clear();
        kinds.clear();
        values.reserve(layout.size());
        kinds.reserve(layout.size());
        for (const std::int32_t entry : layout) {
            if (entry >= 0) {
                const double value = memberValues[entry];
                values.push_back(value);
                kinds.push_back(kindOf(value, missingCode, thresh));
            } else if (entry == BlockEndMark) {
                values.push_back(BlockEnd);
                kinds.push_back(Kind::BlockEnd);
            } else {
                values.push_back(RowEnd);
                kinds.push_back(Kind::RowEnd);
            }
        }
    }
}

void classifyEntries(MemberRows& rows, double missingCode, float thresh) {
    for (int row = 1; row <= CalendarRowCount; ++row) {
        const auto& values = rows.values[row];
        auto& kinds = rows.kinds[row];
        kinds.resize(values.size());
        for (size_t i = 0; i < values.size(); ++i) {
            kinds[i] = kindOf(values[i], missingCode, thresh);
        }
    }
}

int blocksWithData(const std::vector<Kind>& kinds) {
    int blocks = 0;
    bool holdsData = false;
    for (const Kind kind : kinds) {
        if (kind == Kind::BlockEnd) {
            blocks += holdsData ? 1 : 0;
            holdsData = false;
        } else if (isReal(kind)) {
            holdsData = true;
        }
    }
    return blocks;
}

} // namespace varo::statistics
