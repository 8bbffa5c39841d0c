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

void RowLayout::fill(const double* memberValues, MemberRows& rows) const {
    for (int row = 1; row <= CalendarRowCount; ++row) {
        const auto& layout = rows_[row];
        auto& list = rows[row];
        list.resize(layout.size());
        for (size_t i = 0; i < layout.size(); ++i) {
            const std::int32_t entry = layout[i];
            list[i] =
                entry >= 0 ? memberValues[entry] : (entry == BlockEndMark ? BlockEnd : RowEnd);
        }
    }
}

int blocksWithData(const std::vector<double>& list, double missingCode) {
    int blocks = 0;
    bool holdsData = false;
    for (const double value : list) {
        if (value == BlockEnd) {
            blocks += holdsData ? 1 : 0;
            holdsData = false;
        } else if (isRealValue(value, missingCode)) {
            holdsData = true;
        }
    }
    return blocks;
}

} // namespace varo::statistics
