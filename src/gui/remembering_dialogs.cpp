#include "gui/remembering_dialogs.hpp"

#include <filesystem>

namespace varo::gui {

void RememberingDialogs::setScreen(std::string name, bool picksPredictorFolder) {
    screen_ = std::move(name);
    picksPredictorFolder_ = picksPredictorFolder;
}

std::string RememberingDialogs::openingFolder(std::string_view asked) const {
    const auto found = lastFolders_.find(Place{screen_, std::string(asked)});
    return found == lastFolders_.end() ? std::string(asked) : found->second;
}

std::optional<std::string>
RememberingDialogs::rememberFileFolder(std::string_view asked, std::optional<std::string> picked) {
    if (picked) {
        lastFolders_[Place{screen_, std::string(asked)}] =
            std::filesystem::path(*picked).parent_path().string();
    }
    return picked;
}

std::optional<std::string> RememberingDialogs::pickOpenFile(std::string_view filter,
                                                            std::string_view startFolder) {
    return rememberFileFolder(startFolder, inner_.pickOpenFile(filter, openingFolder(startFolder)));
}

std::optional<std::string> RememberingDialogs::pickSaveFile(std::string_view filter,
                                                            std::string_view startFolder,
                                                            std::string_view defaultExtension) {
    return rememberFileFolder(
        startFolder, inner_.pickSaveFile(filter, openingFolder(startFolder), defaultExtension));
}

std::optional<std::string> RememberingDialogs::pickFolder(std::string_view startFolder) {
    if (!picksPredictorFolder_) {
        const auto picked = inner_.pickFolder(openingFolder(startFolder));
        if (picked) {
            lastFolders_[Place{screen_, std::string(startFolder)}] = *picked;
        }
        return picked;
    }
    const auto picked = inner_.pickFolder(
        predictorFolder_.empty() ? startFolder : std::string_view(predictorFolder_));
    if (picked) {
        predictorFolder_ = *picked;
    }
    return picked;
}

} // namespace varo::gui
