// The predictor files of a screen: a folder, the files it lists, the ones selected and their
// count. Screening and calibration pick their predictors with it, as will any screen that
// reads several predictor files: the desktop shows the list and passes on the selection,
// the command line names the files.
#pragma once

#include "core/program_state.hpp"
#include "screens/dialogs.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace varo::screens {

// The files a predictor list shows: the regular files of a folder, hidden ones left out,
// sorted by name without regard to case. A folder that cannot be read lists nothing.
std::vector<std::string> folderDataFiles(const std::string& folder);

// The description of a predictor file from the predictor table: the table code that
// stands earliest in the file's name ("mslp.dat", "obs_mslp_1961.dat"), letters compared
// without regard to case; empty when no code stands in it.
std::string predictorDescription(const core::ProgramState& state, std::string_view fileName);

struct PredictorPicker {
    std::string folder;                // Dir2
    std::vector<std::string> files;    // File2: the folder's files, by name
    std::vector<std::string> selected; // full paths, in list order (or as given)

    // Lists the folder's files and clears the selection.
    void setFolder(const std::string& chosen);
    // The folder picker, opening on the folder shown.
    void pickFolder(Dialogs& dialogs);
    // Selects items of the list (0-based, in any order; repeats and items past the end are
    // passed over); the selection takes them in list order.
    void selectItems(const std::vector<size_t>& items);
    // Predictor files given by path, in the order given (the command line's way).
    void choose(const std::vector<std::string>& paths) { selected = paths; }
    // The full path of a list item, and whether it is selected.
    std::string pathOf(size_t item) const;
    bool isSelected(size_t item) const;
    size_t count() const { return selected.size(); }
};

} // namespace varo::screens
