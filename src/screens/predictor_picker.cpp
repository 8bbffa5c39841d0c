#include "screens/predictor_picker.hpp"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace varo::screens {

namespace {
std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}
} // namespace

std::string predictorDescription(const core::ProgramState& state, std::string_view fileName) {
    const std::string name = lowerCase(fileName);
    size_t earliest = std::string::npos;
    std::string description;
    for (const auto& entry : state.predictorTable) {
        const size_t at = name.find(entry.code);
        if (at < earliest) {
            earliest = at;
            description = entry.description;
        }
    }
    return description;
}

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

void PredictorPicker::setFolder(const std::string& chosen) {
    folder = chosen;
    selected.clear();
    files = folderDataFiles(chosen);
}

void PredictorPicker::pickFolder(Dialogs& dialogs) {
    if (const auto chosen = dialogs.pickFolder(folder)) {
        setFolder(*chosen);
    }
}

void PredictorPicker::selectItems(const std::vector<size_t>& items) {
    std::vector<size_t> inOrder = items;
    std::sort(inOrder.begin(), inOrder.end());
    inOrder.erase(std::unique(inOrder.begin(), inOrder.end()), inOrder.end());
    selected.clear();
    for (const size_t item : inOrder) {
        if (item < files.size()) {
            selected.push_back(pathOf(item));
        }
    }
}

std::string PredictorPicker::pathOf(size_t item) const {
    return (std::filesystem::path(folder) / files.at(item)).string();
}

bool PredictorPicker::isSelected(size_t item) const {
    return std::find(selected.begin(), selected.end(), pathOf(item)) != selected.end();
}

} // namespace varo::screens
