#include "screens/file_choice.hpp"

#include "core/series_file.hpp"

#include <algorithm>
#include <cctype>

namespace varo::screens {

bool hasExtension(std::string_view path, std::string_view upperExtension) {
    if (path.size() < upperExtension.size()) {
        return false;
    }
    const std::string_view last = path.substr(path.size() - upperExtension.size());
    std::string lower(upperExtension);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return last == upperExtension || last == lower;
}

void ChosenFile::choose(const std::string& chosen) {
    path = chosen;
    text = core::bareFileName(chosen);
}

void ChosenFile::clear(std::string_view none) {
    path.clear();
    text = std::string(none);
}

} // namespace varo::screens
