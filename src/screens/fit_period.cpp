#include "screens/fit_period.hpp"

#include "core/dates.hpp"

namespace varo::screens {

namespace {
bool endsBeforeStart(const std::string& startText, const std::string& endText) {
    const auto start = core::parseDate(startText);
    const auto end = core::parseDate(endText);
    return start && end && core::dayDifference(*start, *end) < 0;
}
} // namespace

std::optional<std::string> fitStartRefusal(const std::string& startText, const std::string& endText,
                                           const core::ProgramState& state) {
    const auto start = core::parseDate(startText);
    if (!start) {
        return "Start date is invalid - it must be in the format dd/mm/yyyy.";
    }
    if (endsBeforeStart(startText, endText)) {
        return "End date must be later than start date.";
    }
    if (core::dayDifference(state.globalSDate, *start) < 0) {
        return "Fit start date must be later than record start date.";
    }
    return std::nullopt;
}

std::optional<std::string> fitEndRefusal(const std::string& startText, const std::string& endText,
                                         const core::ProgramState& state) {
    const auto end = core::parseDate(endText);
    if (!end) {
        return "End date is invalid - it must be in the format dd/mm/yyyy.";
    }
    if (endsBeforeStart(startText, endText)) {
        return "End date must be later than start date.";
    }
    if (core::dayDifference(*end, state.globalEDate) < 0) {
        return "Fit end date must be earlier than record end date.";
    }
    return std::nullopt;
}

} // namespace varo::screens
