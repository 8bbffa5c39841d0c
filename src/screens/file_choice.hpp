// What the screens share about the files a person picks: the text of a file not chosen yet,
// the filters of the file pickers (in the form `Dialogs` takes), the extension tests that
// tell a parameter or OUT file by its name, and a chosen file with the name a screen shows.
#pragma once

#include <string>
#include <string_view>

namespace varo::screens {

inline constexpr std::string_view NotSelected = "Not selected";

namespace filter {
inline constexpr std::string_view Any = "All Files (*.*)|*.*";
// Data files: any file first, then DAT and TXT.
inline constexpr std::string_view Data =
    "All Files (*.*)|*.*|DAT Files (*.DAT)|*.DAT|TXT Files (*.TXT)|*.TXT";
// A screening predictand: DAT first.
inline constexpr std::string_view DatFirst = "DAT Files (*.DAT)|*.DAT|All Files (*.*)|*.*";
// A series to analyse: an OUT file first, then a data file.
inline constexpr std::string_view OutOrData =
    "OUT Files (*.OUT)|*.OUT|DAT Files (*.DAT)|*.DAT|TXT Files (*.TXT)|*.TXT|All Files (*.*)|*.*";
inline constexpr std::string_view Text = "TXT Files (*.TXT)|*.TXT|All Files (*.*)|*.*";
inline constexpr std::string_view Parameter = "PAR Files (*.PAR)|*.PAR|All Files (*.*)|*.*";
inline constexpr std::string_view Out = "OUT Files (*.OUT)|*.OUT|All Files (*.*)|*.*";
inline constexpr std::string_view Settings = "INI Files (*.INI)|*.INI|All Files (*.*)|*.*";
inline constexpr std::string_view Pictures = "PNG Files (*.PNG)|*.PNG|SVG Files (*.SVG)|*.SVG";
} // namespace filter

// True when the path ends in the extension as given or in lower case (".PAR" or ".par",
// not ".Par"): the screens tell file kinds so.
bool hasExtension(std::string_view path, std::string_view upperExtension);
inline bool isOutFile(std::string_view path) {
    return hasExtension(path, ".OUT");
}
inline bool isParameterFile(std::string_view path) {
    return hasExtension(path, ".PAR");
}

// A file picked on a screen: its full path, and what the screen shows for it, the bare name
// or, before a file is chosen, a text such as "Not selected".
struct ChosenFile {
    std::string path;
    std::string text{NotSelected};

    ChosenFile() = default;
    explicit ChosenFile(std::string_view none) : text(none) {}

    void choose(const std::string& chosen);
    // Back to no file, showing `none`.
    void clear(std::string_view none = NotSelected);
    bool chosen() const { return !path.empty(); }
};

} // namespace varo::screens
