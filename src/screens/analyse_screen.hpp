// AnalyseFrm ("Summary Statistics"): the person picks an observed series or a modelled
// OUT file, a results file, one ensemble member or the ensemble mean, and an analysis
// period, or asks for the changes of the statistics selection screen's Periods A, B and C
// against its base period; the run computes the statistics flagged on that screen and
// writes the results file.
#pragma once

#include "core/program_state.hpp"
#include "core/results_table.hpp"
#include "screens/dialogs.hpp"
#include "screens/screen_run.hpp"
#include "screens/text_field.hpp"
#include "series/simulation_files.hpp"
#include "statistics/analysis_run.hpp"
#include "statistics/results_file.hpp"

#include <optional>
#include <string>

namespace varo::screens {

class AnalyseScreen {
public:
    enum class Source { Observed, Modelled };

    explicit AnalyseScreen(core::ProgramState& state);

    // Inputs.
    Source sourceButton = Source::Modelled;
    std::string inputFileText; // the data file's path
    std::string saveFileText;  // the results file's path
    bool ensembleMeanCheck = false;
    TextField ensembleNumber{"1"};
    TextField startDateText; // analysis period, dd/mm/yyyy
    TextField endDateText;
    // Delta statistics: the base period and Periods A, B and C of the statistics selection
    // screen instead of the analysis period.
    bool deltaCheck = false;

    // Shown: the days of the analysis period, and the SIM file's items ("View Details").
    std::string noOfDaysText;
    std::string fileNPredictors;
    std::string fileSeasonCode;
    std::string fileYearLength;
    std::string fileNDays;
    std::string fileEnsembleSize;
    std::string fileStartDate;

    // What the last run computed, the labels of its report and its tables, for the
    // command line.
    std::optional<statistics::AnalysisResults> results;
    statistics::ReportLabels labels;
    std::optional<statistics::ResultsTables> tables;
    std::string resultsPath; // the results file they were written to

    void pickInputFile(Dialogs& dialogs);
    void pickSaveFile(Dialogs& dialogs);

    // "View Details": shows the SIM file's items; false with a message when it cannot.
    bool showFileDetails(Dialogs& dialogs);

    // Field checks on leaving the field.
    bool checkEnsembleNumber(Dialogs& dialogs);
    bool checkStartDate(Dialogs& dialogs);
    bool checkEndDate(Dialogs& dialogs);

    // The run: every check in order, then the statistics and the results file.
    RunOutcome run(Dialogs& dialogs, core::Progress& progress);

    // The last run's tables in the results file's order (`statistics::ResultsTables`);
    // empty before a run has succeeded.
    std::vector<core::NamedTable> resultTables() const;

private:
    std::optional<std::string>
    runRefusal(const std::optional<series::SimulationDescription>& description,
               const std::string& simProblem) const;
    void showDetails(const series::SimulationDescription& description);
    void showDays();
    statistics::AnalysisRequest
    buildRequest(const std::optional<series::SimulationDescription>& description) const;
    std::optional<std::string> periodBeforeData(const statistics::AnalysisRequest& request) const;
    statistics::ReportLabels buildLabels(const statistics::AnalysisRequest& request) const;

    core::ProgramState& state_;
};

} // namespace varo::screens
