// Small series for the scenario tests: members built day by day, warnings kept.
#pragma once

#include "core/notices.hpp"
#include "scenario/scenario_data.hpp"

#include <string>
#include <vector>

namespace varo::testing {

inline scenario::ScenarioData scenarioOf(std::vector<std::vector<double>> members) {
    scenario::ScenarioData data;
    data.dayCount = members.empty() ? 0 : static_cast<long>(members.front().size());
    data.members = std::move(members);
    return data;
}

// Keeps the warnings a run gives.
class KeptWarnings final : public core::Notifier {
public:
    std::vector<std::string> titles;
    std::vector<std::string> texts;
    void warning(std::string_view title, std::string_view text) override {
        titles.emplace_back(title);
        texts.emplace_back(text);
    }
    void information(std::string_view, std::string_view) override {}
};

inline long countAbove(const std::vector<double>& values, double threshold) {
    long count = 0;
    for (const double value : values) {
        count += value != -999.0 && value > threshold ? 1 : 0;
    }
    return count;
}

} // namespace varo::testing
