// ScreenVarsFrm: the screening screen. The person picks a predictand file and up to 12
// predictor files from a folder's list, a fit period, a period of the year and a process,
// and gets either the correlation matrix with partial correlations or the table of
// explained variance by month, as a report in character columns.
#pragma once

#include "core/program_state.hpp"
#include "screening/correlation.hpp"
#include "screening/explained_variance.hpp"
#include "screening/report_text.hpp"
#include "screening/scatter.hpp"
#include "screening/screening_data.hpp"
#include "screens/dialogs.hpp"
#include "screens/file_choice.hpp"
#include "screens/predictor_picker.hpp"
#include "screens/screen_run.hpp"
#include "screens/text_field.hpp"

#include <optional>
#include <string>
#include <vector>

namespace varo::screens {

// Writes report lines as a text file, each ended by carriage return and line feed. A file
// that cannot be written gets the failure box, and a partly written one is removed. True
// when the file was written.
bool saveReportText(const std::vector<std::string>& lines, const std::string& path,
                    Dialogs& dialogs);

// The entries of the period list: 0 "Annual", 1 to 4 the seasons, 5 to 16 the months.
std::vector<std::string> periodEntries(const core::ProgramState& state);

class ScreenVarsScreen {
public:
    static constexpr int Conditional = 0;
    static constexpr int Unconditional = 1;

    explicit ScreenVarsScreen(core::ProgramState& state);

    // Inputs.
    ChosenFile predictand; // PtandText
    PredictorPicker predictors;
    std::string sDate; // the record's dates, shown
    std::string eDate;
    TextField fsDate;
    TextField feDate;
    int datesCombo = 0;
    int parmOpt = Unconditional;
    bool autoRegressionTick = false;
    TextField sigLevelText{"0.05"};
    float sigLevel = 0.05f;

    // The last run's predictor names (FileList) and results.
    std::vector<std::string> fileList;
    std::optional<screening::ScreeningData> data;
    std::optional<screening::CorrelationResult> correlation;
    std::optional<screening::ExplainedVariance> variance;
    std::optional<screening::ReportText> report;
    // The report's results as tables, by the names JSON gives them: "correlations" and
    // "partials" of a correlation; "results" (significant r squared, the best picked out)
    // and every month's "n", "r", "rSquared", "t" and "p" of an explained variance.
    std::vector<core::NamedTable> tables;
    std::optional<screening::ScatterData> scatterPoints;

    // The predictand picker opens on the folder of the last predictand chosen, else on
    // the default folder; the choice is remembered in the program state.
    void choosePredictand(const std::string& path);
    void pickPredictand(Dialogs& dialogs);

    // Selects items of the list; more than 12 shows a warning (the selection stands).
    void selectPredictorItems(const std::vector<size_t>& indices, Dialogs& dialogs);
    // Selects predictor files by path, in the order given (the command line's way).
    void choosePredictors(const std::vector<std::string>& paths, Dialogs& dialogs);

    void setProcess(int option, Dialogs& dialogs);
    void setAutoregression(bool ticked, Dialogs& dialogs);

    // Field checks, when a field loses the focus and again when a run starts.
    bool checkFitStart(Dialogs& dialogs);
    bool checkFitEnd(Dialogs& dialogs);
    bool checkSigLevel(Dialogs& dialogs);

    // The analyses.
    RunOutcome correlate(Dialogs& dialogs, core::Progress& progress);
    RunOutcome explainVariance(Dialogs& dialogs, core::Progress& progress);
    // The points of the scatter chart: one predictor, or with the autoregression the
    // predictand's previous day, against the predictand.
    RunOutcome scatter(Dialogs& dialogs, core::Progress& progress);

    // The report of the last analysis as a text file (`saveReportText`), as it stands on
    // the screen with the best predictors marked '*'. With no report yet it says so.
    bool saveReport(const std::string& path, Dialogs& dialogs);
    // The Save key: picks the file (on the default folder) and saves the report to it;
    // the path written, if it was.
    std::optional<std::string> pickAndSaveReport(Dialogs& dialogs);

    void reset();
    // Shows the record's dates afresh after the settings changed.
    void refreshGlobals();

private:
    bool checkSelection(Dialogs& dialogs, bool limitTo12);
    screening::ScreeningRequest request() const;
    void clearResults();
    void warnIfTooMany(Dialogs& dialogs) const;

    core::ProgramState& state_;
};

} // namespace varo::screens
