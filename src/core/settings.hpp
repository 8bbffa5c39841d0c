// The settings file: one table of its keys, and the silent load at start.
//
// Every setting that a user may change and keep lives in `ProgramState` and, saved, in
// section [VARO] of the settings file under the key of the same name. A row of the table
// says how its key is written, read at start, loaded by its screen, checked when typed and
// put in force; the loads at start and on the screens, the screens' saves, `--set` and
// `settings show/set` all go through it. Reads use the default text "Missing" for an
// absent key and a 30-character buffer (200 for the two paths, DefaultDir and INIFile).
#pragma once

#include "core/program_state.hpp"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace varo::core {

inline constexpr std::string_view SettingsSection = "VARO";
inline constexpr std::string_view MissingText = "Missing";
inline constexpr size_t ValueBuffer = 30;
inline constexpr size_t DirectoryBuffer = 200;

// The screen whose Save writes a key: Splash is written by the opening screen alone.
enum class SettingScreen { Settings, AdvSettings, Intro };

// What a key's value is, for a typed listing of the settings.
enum class SettingType { Flag, Integer, Number, Date, Path };

struct SettingKey {
    // Puts a value read or typed for the key into the state; false, with the state as it
    // was, when the value cannot be used.
    using Use = bool (*)(ProgramState& state, std::string_view value);
    // The message that refuses a value typed for the key, or nothing.
    using Refusal = std::optional<std::string> (*)(std::string_view key, const ProgramState& state,
                                                   std::string_view value);

    std::string_view name;
    SettingType type;
    SettingScreen screen;
    size_t buffer;
    std::string (*written)(const ProgramState& state);
    Use atStart;                  // the silent load at start
    Use onLoad;                   // its screen's Load; nullptr when no screen loads it
    std::string_view loadMessage; // the Load's box for an unusable value, the path follows
    Refusal refusal;              // a field or `--set` value
    Use set;                      // a value that passed `refusal`, with its couplings
};

// Every key: the Settings screen's in the order its Save writes them, then the
// AdvSettings screen's, then Splash. This is also the order `settings show` lists them.
std::span<const SettingKey> settingsTable();
// The key of that name, compared without regard to case; nullptr when there is none.
const SettingKey* findSettingKey(std::string_view name);
// A key of the table by its exact name.
const SettingKey& settingKey(std::string_view name);
// The keys a screen's Save writes, in order.
std::vector<const SettingKey*> keysSavedBy(SettingScreen screen);
// The keys a screen's Load reads, in order; when the first is absent nothing is loaded.
std::vector<const SettingKey*> keysLoadedBy(SettingScreen screen);

// A screen's Load: its keys read in order from the settings file in force, each usable
// value put into the state. Answers the box of each key that could not be used ("Sorry -
// unable to load start date from " and the path), or the one box of a file that lacks the
// first key altogether, in which case nothing is loaded.
std::vector<std::string> loadScreenSettings(ProgramState& state, SettingScreen screen);

// Writes the keys in order, every one of them, to the settings file in force.
struct SettingsWritten {
    bool first; // the first write worked: all that a screen's Save tests
    bool all;
};
SettingsWritten writeSettings(const ProgramState& state,
                              const std::vector<const SettingKey*>& keys);

// Reads a key from a settings file with the buffer its key uses.
std::string readSetting(const std::string& path, std::string_view key);

// The text a save writes for a key: "True"/"False", integers, single and double precision
// numbers in their shortest form, dd/mm/yyyy dates and paths as they stand.
std::string writtenSettingValue(const ProgramState& state, std::string_view key);

// The check of one month's wet-day percentage of the advanced settings (0 to 100): the
// message naming the month, or nothing when the text passes.
std::optional<std::string> monthModificationRefusal(std::string_view monthName,
                                                    std::string_view text);

// Sets the key from a value typed for it (`--set`, `settings set`) through the checks and
// couplings of its screen: the message that refuses the key or the value, or nothing.
std::optional<std::string> assignSetting(ProgramState& state, std::string_view key,
                                         std::string_view value);

// The check of a standard date typed while the other one stands as `otherText`: the date
// must be a date and, when the other is one, lie at least a day before (start) or after
// (end) it.
std::optional<std::string> standardDateRefusal(std::string_view text, std::string_view otherText,
                                               bool isStart);

// The couplings of the model options: the dual simplex clears stepwise regression, and
// stepwise regression asks for ordinary least squares (choice 1).
void chooseOptimisation(ProgramState& state, int choice);
void chooseStepwise(ProgramState& state, bool stepwise);

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

} // namespace varo::core
