// TransformFrm: the transform screen. The person picks a data file and an output file,
// chooses one of 17 operations and its inputs (columns, lag, threshold, the column to
// extract, Box-Cox lamda and shift), and the run writes the new file and shows the
// closing report.
#pragma once

#include "core/program_state.hpp"
#include "dataprep/box_cox.hpp"
#include "dataprep/transform.hpp"
#include "screens/dialogs.hpp"
#include "screens/file_choice.hpp"
#include "screens/screen_run.hpp"
#include "screens/text_field.hpp"

#include <optional>
#include <string>

namespace varo::screens {

class TransformScreen {
public:
    static constexpr std::string_view NotEntered = "Not entered";
    static constexpr std::string_view CompleteTitle = "Transformation complete";

    explicit TransformScreen(core::ProgramState& state);

    // Inputs as the screen shows them.
    ChosenFile input;              // SelectFileText
    ChosenFile output{NotEntered}; // SaveFileText
    TextField colsText{"1"};
    int option = dataprep::transform::NaturalLog; // Option1, codes 1 to 17
    TextField lagText{"0"};
    bool wrapCheck = false;
    TextField binomialText;
    bool extractEnsembleCheck = false;
    TextField ensembleExtractText{"1"};
    bool simCheck = false;
    TextField lamdaValText{"1"};
    TextField leftShiftText{"0"};

    // Values of the fields as their last passed checks left them.
    int columns = 1;
    int lag = 0;
    float threshold = 0.0f;
    int ensemble = 1;
    double lamda = 1.0;
    double shift = 0.0;

    // What the last run reported, for the command line.
    struct Report {
        dataprep::TransformCounts counts;
        std::optional<double> lamda; // the forward Box-Cox run's optimum
        std::optional<double> shift;
        std::string text;          // the closing box
        std::string copiedSimFile; // the description file's copy, when one was made
    };
    std::optional<Report> lastReport;
    // Set once the last run began writing its output as it read (a Box-Cox run writes only
    // at its end): a run that ends early after that leaves the output incomplete.
    bool outputStarted = false;

    // "Wrap numbers round or fill gaps with missing code (-999) "
    std::string wrapCaption() const;

    // Field checks, each when its field loses the focus; a refused entry shows its message
    // and the field gets its last good value back.
    bool checkLamda(Dialogs& dialogs);
    bool checkShift(Dialogs& dialogs);
    bool checkBinomial(Dialogs& dialogs);
    // Also refuses a column count below the column to extract, which then goes back to 1.
    bool checkColumns(Dialogs& dialogs);
    bool checkEnsemble(Dialogs& dialogs);
    bool checkLag(Dialogs& dialogs);

    // The file pickers, opening on the default folder.
    void pickInput(Dialogs& dialogs);
    void pickOutput(Dialogs& dialogs);

    // The toolbar's transform key.
    RunOutcome transform(Dialogs& dialogs, core::Progress& progress);
    // The toolbar's reset key.
    void reset();

private:
    RunOutcome runChecks(Dialogs& dialogs);
    std::optional<std::string> outputOverInput() const;
    Report runOperation(core::Progress& progress);

    core::ProgramState& state_;
};

} // namespace varo::screens
