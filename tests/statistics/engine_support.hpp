// Small helpers for the statistics tests: lists written by hand and a progress that
// records its captions or asks for a stop.
#pragma once

#include "core/failure.hpp"
#include "core/progress.hpp"
#include "statistics/row_lists.hpp"
#include "statistics/statistics_engine.hpp"

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

// Records the captions in the order they first appear after another; asks for a stop
// after `stopAfter` reports (never when negative).
class RecordingProgress final : public core::Progress {
public:
    explicit RecordingProgress(long stopAfter = -1) : stopAfter_(stopAfter) {}
    void report(long, long, std::string_view caption) override {
        ++reports_;
        if (captions.empty() || captions.back() != caption) {
            captions.emplace_back(caption);
        }
    }
    bool stopRequested() override { return stopAfter_ >= 0 && reports_ > stopAfter_; }
    std::vector<std::string> captions;

private:
    long stopAfter_;
    long reports_ = 0;
};

} // namespace varo::testing
