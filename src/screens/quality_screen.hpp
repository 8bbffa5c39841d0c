// QualityFrm: the quality check screen. The person picks one data file and gets counts,
// extremes, mean and the largest jump; nothing is written.
#pragma once

#include "core/program_state.hpp"
#include "dataprep/quality_check.hpp"
#include "screens/dialogs.hpp"
#include "screens/file_choice.hpp"
#include "screens/screen_run.hpp"

#include <optional>
#include <string>
#include <vector>

namespace varo::screens {

class QualityScreen {
public:
    explicit QualityScreen(core::ProgramState& state);

    // Inputs.
    ChosenFile file; // SelectFileText
    std::string missingCodeText;

    // Results, blank until a check has run.
    std::string totalText;
    std::string missingText;
    std::string totalOkText;
    std::string minText;
    std::string maxText;
    std::string meanText;
    std::string maxDiffText;
    std::string maxDiffVal1Text;
    std::string maxDiffVal2Text;
    std::string threshCountText;

    // What the last check found, and the warnings it showed, for the command line.
    std::optional<dataprep::QualityResults> results;
    std::vector<std::string> warningsShown;

    // Opens the file picker on the default folder.
    void pickFile(Dialogs& dialogs);
    // The toolbar's check key.
    RunOutcome check(Dialogs& dialogs, core::Progress& progress);
    // The toolbar's reset key.
    void reset();
    // Shows the global values afresh after the settings changed.
    void refreshGlobals();

private:
    void clearResults();
    void showResults(const dataprep::QualityResults& found);

    core::ProgramState& state_;
};

} // namespace varo::screens
