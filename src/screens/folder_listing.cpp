#include "screens/folder_listing.hpp"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace varo::screens {

namespace {
std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}
} // namespace

std::vector<std::string> folderDataFiles(const std::string& folder) {
    namespace fs = std::filesystem;
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        std::string name = it->path().filename().string();
        std::error_code kind;
        if (!name.empty() && name.front() != '.' && it->is_regular_file(kind)) {
            names.push_back(std::move(name));
        }
    }
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return lowerCase(a) < lowerCase(b);
    });
    return names;
}

} // namespace varo::screens
