// Where the file pickers of the desktop program open, remembered while the program runs.
// A screen asks its pickers for a start folder, mostly the default folder of the settings.
// The first time a screen asks for a start folder its picker opens there; after that it
// opens on the folder of the file last picked on that screen from the same start. A screen
// that asks for another start folder (once the default folder has changed, say) gets that
// folder. The screens that pick predictor folders share one: the folder chosen on one of
// them is where the folder picker of the next opens. Messages and questions pass through.
#pragma once

#include "screens/dialogs.hpp"

#include <map>
#include <string>
#include <utility>

namespace varo::gui {

class RememberingDialogs final : public screens::Dialogs {
public:
    explicit RememberingDialogs(screens::Dialogs& inner) : inner_(inner) {}

    // The screen whose pickers are asked for from now on, by a name of its own, and whether
    // its folder picker chooses predictor folders.
    void setScreen(std::string name, bool picksPredictorFolder);

    void message(std::string_view title, std::string_view text, screens::Icon icon) override {
        inner_.message(title, text, icon);
    }
    bool askYesNo(std::string_view title, std::string_view text, screens::Icon icon) override {
        return inner_.askYesNo(title, text, icon);
    }
    std::optional<std::string> pickOpenFile(std::string_view filter,
                                            std::string_view startFolder) override;
    std::optional<std::string> pickSaveFile(std::string_view filter, std::string_view startFolder,
                                            std::string_view defaultExtension) override;
    std::optional<std::string> pickFolder(std::string_view startFolder) override;

private:
    using Place = std::pair<std::string, std::string>; // screen, start folder asked for

    std::string openingFolder(std::string_view asked) const;
    std::optional<std::string> rememberFileFolder(std::string_view asked,
                                                  std::optional<std::string> picked);

    screens::Dialogs& inner_;
    std::string screen_;
    bool picksPredictorFolder_ = false;
    std::map<Place, std::string> lastFolders_;
    std::string predictorFolder_;
};

} // namespace varo::gui
