// Initialisation files: "[SECTION]" headers and "key=value" lines.
//
// Reading returns a default text for an absent key, with section and key names compared
// without regard to case, the value trimmed and cut to fit a buffer of `bufferSize`
// characters (one of them the terminator). An absent file reads like a file with every key
// absent, and so does one that cannot be read. A UTF-8 byte-order mark at the start is
// skipped. Writing creates the file (and its folder) or replaces a key's line in place,
// keeping every other line; the new file replaces the old in one rename, so a failed write
// never leaves a half-written file.
//
// A write goes only into a file that is absent, empty (blank lines at most), or holds the
// section's header: a file that cannot be read, or one that is something else (a data
// file named by mistake), is never replaced or written into. No file larger than
// `MaxIniFileSize` is read.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace varo::core {

inline constexpr size_t MaxIniFileSize = 1 << 20;

// Texts that match without regard to case, as section and key names do.
bool equalNoCase(std::string_view a, std::string_view b);

std::string readProfileString(const std::string& path, std::string_view section,
                              std::string_view key, std::string_view defaultText,
                              size_t bufferSize);

// Why the file at `path` cannot take the section's keys ("it cannot be read", "it has no
// [VARO] section, so it is not a settings file"), or nothing when it can.
std::optional<std::string> iniFileProblem(const std::string& path, std::string_view section);

// False when the file could not be written, or may not be (see `iniFileProblem`).
bool writeProfileString(const std::string& path, std::string_view section, std::string_view key,
                        std::string_view value);

} // namespace varo::core
