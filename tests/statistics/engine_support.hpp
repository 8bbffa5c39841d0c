// Small helpers for the statistics tests: lists written by hand and the settings that
// flag a few statistics.
#pragma once

#include "core/failure.hpp"
#include "core/progress.hpp"
#include "statistics/row_lists.hpp"
#include "statistics/statistics_engine.hpp"
#include "support/recording_progress.hpp"

#include <initializer_list>
#include <string>
#include <vector>

namespace varo::testing {

inline constexpr double BE = statistics::BlockEnd;
inline constexpr double RE = statistics::RowEnd;
inline constexpr double Missing = -999.0;

// Every row holds just its RowEnd (inactive) except those given.
inline statistics::MemberRows
rowsWith(std::initializer_list<std::pair<int, std::vector<double>>> lists) {
    statistics::MemberRows rows;
    for (int r = 1; r <= statistics::CalendarRowCount; ++r) {
        rows.values[r] = {RE};
    }
    for (const auto& [row, list] : lists) {
        rows.values[row] = list;
    }
    return rows;
}

inline statistics::EngineSettings settingsFor(std::initializer_list<int> columns) {
    statistics::EngineSettings settings;
    for (const int c : columns) {
        settings.selected[c] = true;
    }
    return settings;
}

} // namespace varo::testing
