// The settings file: the keys, their written forms and the silent load at start.
//
// Every setting that a user may change and keep lives in `ProgramState` and, saved, in
// section [VARO] of the settings file under the key of the same name. Reads use the
// default text "Missing" for an absent key and a 30-character buffer (200 for the two
// paths, DefaultDir and INIFile).
#pragma once

#include "core/program_state.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varo::core {

inline constexpr std::string_view SettingsSection = "VARO";
inline constexpr std::string_view MissingText = "Missing";
inline constexpr size_t ValueBuffer = 30;
inline constexpr size_t DirectoryBuffer = 200;

// Keys in the order each screen's save writes them.
extern const std::vector<std::string_view> SettingsScreenKeys;    // 8 keys
extern const std::vector<std::string_view> AdvSettingsScreenKeys; // 9 keys

// Reads a key from a settings file with the buffer its key uses.
std::string readSetting(const std::string& path, std::string_view key);

// The text a save writes for a key, from the state: "True"/"False", integers, single and
// double precision numbers in their shortest form, dates and paths as they stand.
// Splash is written as "False" only; other keys return an empty text.
std::string writtenSettingValue(const ProgramState& state, std::string_view key);

// "True" when the first four characters say so; "False" likewise with five.
bool textStartsTrue(std::string_view text);
bool textStartsFalse(std::string_view text);

// Why the settings file at `path` can be neither read nor saved to, as a sentence that
// names it ("The settings file 'data.dat' is not used: it has no [VARO] section, so it is
// not a settings file."), or nothing when it is absent or a settings file. A settings file
// is recognised by its [VARO] section header; an empty file counts as one.
std::optional<std::string> settingsFileProblem(const std::string& path);

// Silent load at start: keys in the fixed order, each absent or unusable key leaving its
// field alone; a file without YearIndicator changes nothing at all. From the INIFile key
// on, the remaining keys come from the file that key names.
void loadStartupSettings(ProgramState& state);

// GlobalDays from the two standard dates, when both are dates.
void recalculateGlobalDays(ProgramState& state);

} // namespace varo::core
