// The checks of a fit period that the screening and calibration screens share: each date
// must be a date, the end must not lie before the start, and the period must lie within
// the record of the settings. Each answers the message it refuses with.
#pragma once

#include "core/program_state.hpp"

#include <optional>
#include <string>

namespace varo::screens {

std::optional<std::string> fitStartRefusal(const std::string& startText, const std::string& endText,
                                           const core::ProgramState& state);
std::optional<std::string> fitEndRefusal(const std::string& startText, const std::string& endText,
                                         const core::ProgramState& state);

} // namespace varo::screens
