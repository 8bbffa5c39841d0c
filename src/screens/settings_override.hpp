// Setting one settings-file key from a "KEY=VALUE" text, through the same field checks
// and couplings as the settings screens (the command line's --set and `settings set`).
#pragma once

#include "core/program_state.hpp"
#include "screens/dialogs.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace varo::screens {

// Every key of the settings file, in the order `settings show` lists them.
const std::vector<std::string_view>& settingsFileKeys();

// Sets the key in the state; a refused value shows its check's message and answers false.
// Keys are matched without regard to case.
bool overrideSetting(core::ProgramState& state, Dialogs& dialogs, std::string_view key,
                     const std::string& value);

// The canonical spelling of a key, empty when there is no such key.
std::string_view canonicalSettingKey(std::string_view key);

} // namespace varo::screens
