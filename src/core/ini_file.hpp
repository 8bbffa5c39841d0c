// Initialisation files: "[SECTION]" headers and "key=value" lines.
//
// Reading returns a default text for an absent key, with section and key names compared
// without regard to case, the value trimmed and cut to fit a buffer of `bufferSize`
// characters (one of them the terminator). An absent file reads like a file with every key
// absent. Writing creates the file (and its folder) or replaces a key's line in place,
// keeping every other line; the new file replaces the old in one rename, so a failed write
// never leaves a half-written file.
#pragma once

#include <string>
#include <string_view>

namespace varo::core {

std::string readProfileString(const std::string& path, std::string_view section,
                              std::string_view key, std::string_view defaultText,
                              size_t bufferSize);

// False when the file could not be written.
bool writeProfileString(const std::string& path, std::string_view section, std::string_view key,
                        std::string_view value);

} // namespace varo::core
