// SynthesizeFrm: the weather generator's screen. The person picks a parameter file from a
// calibration, a folder of predictor files and an OUT file, a start date, a length and an
// ensemble size, and gets an OUT file of daily values per member with a SIM file beside it.
//
// "View Details" fills the record fields (predictor count, record start and length,
// process and autoregression labels, the list of files) and the calibration's fit period
// from the parameter file; a run needs them, since its checks compare the fit period with
// the record.
#pragma once

#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "screens/dialogs.hpp"
#include "screens/file_choice.hpp"
#include "screens/screen_run.hpp"
#include "screens/text_field.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace varo::series {
struct ParameterFile;
}

namespace varo::screens {

class SynthesizeScreen {
public:
    static constexpr std::string_view Unknown = "unknown";
    static constexpr std::string_view UnknownLabel = "Unknown";
    static constexpr std::string_view DefaultLength = "365";
    static constexpr std::string_view DefaultEnsemble = "20";

    explicit SynthesizeScreen(core::ProgramState& state);

    ChosenFile parFile; // ParFileText
    ChosenFile outFile; // OutFileText
    std::string noOfPredText{"0"};
    std::string rStartText{Unknown};
    std::string rLengthText{Unknown};
    TextField fStartText;
    TextField fLengthText{std::string(DefaultLength)};
    TextField eSize{std::string(DefaultEnsemble)};
    std::string predictorFolder;            // Dir2
    std::vector<std::string> predictorList; // the predictand's name, then the predictors'
    std::string autoRegressLabel{UnknownLabel};
    std::string processLabel{UnknownLabel};
    // Set once the last run created its OUT and SIM files: a run that ends early after
    // that leaves them incomplete.
    bool outputStarted = false;

    void setPredictorFolder(const std::string& folder);
    void pickParFile(Dialogs& dialogs);
    void pickOutFile(Dialogs& dialogs);
    void pickPredictorFolder(Dialogs& dialogs);

    // The parameter-file check: a path, of at least five characters, ending ".PAR" or ".par".
    bool checkParameterFile(Dialogs& dialogs);
    // "View Details": fills the screen from the parameter file without a run.
    RunOutcome viewDetails(Dialogs& dialogs);
    // The toolbar's synthesize key: the checks in order, then the run. Everything the run
    // reads is read and checked before its first file is written; an OUT or SIM path that
    // is one of those inputs refuses the run.
    RunOutcome synthesize(Dialogs& dialogs, core::Progress& progress);
    // The toolbar's reset key: every field back to its default.
    void reset();
    // Shows the global start date afresh after the settings changed.
    void refreshGlobals();

private:
    bool checkEnsembleSize(Dialogs& dialogs);
    bool checkFitStart(Dialogs& dialogs);
    bool checkFitLength(Dialogs& dialogs);
    bool checkOutputFile(Dialogs& dialogs);
    void showHeader(const series::ParameterFile& header, bool forRun);
    void cleanup();

    core::ProgramState& state_;
};

} // namespace varo::screens
