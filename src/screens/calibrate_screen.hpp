// CalibrateFrm: the calibration screen. The person names a predictand, one or more
// predictor files, a fit period, a model type (monthly, seasonal, annual), a process
// (conditional or unconditional), the lag term and the Chow test, and a parameter file;
// the run fits the model, writes the parameter file and shows the report.
//
// The date, folds and histogram fields are checked when they lose the focus and again at
// the start of a run; a refused entry shows its message and the field takes its last good
// value again. A run checks the inputs in a fixed order and stops at the first refusal.
// The parameter file is written only when the whole run succeeds; then the report is made
// and, when the plot choice asks for one, the residual scatter or histogram.
#pragma once

#include "calibration/calibrate_driver.hpp"
#include "calibration/calibration_report.hpp"
#include "charts/chart_model.hpp"
#include "core/program_state.hpp"
#include "core/progress.hpp"
#include "screens/dialogs.hpp"
#include "screens/file_choice.hpp"
#include "screens/predictor_picker.hpp"
#include "screens/screen_run.hpp"
#include "screens/text_field.hpp"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varo::screens {

class CalibrateScreen {
public:
    static constexpr std::string_view NoParFile = "*.PAR";
    static constexpr std::string_view DefaultFolds = "2";
    static constexpr std::string_view DefaultHistogramCategories = "20";

    enum ModelOption { Monthly = 0, Seasonal = 1, Annual = 2 };
    enum ProcessOption { Conditional = 0, Unconditional = 1 };
    enum GraphOption { NoGraph = 0, ScatterPlot = 1, Histogram = 2 };

    explicit CalibrateScreen(core::ProgramState& state);

    // Inputs, named after the screen's controls.
    ChosenFile predictand;      // PtandText
    PredictorPicker predictors; // in model order
    TextField fsDate;
    TextField feDate;
    std::string noOfDays;
    int modelType = Monthly;
    int parmOpt = Unconditional;
    bool autoRegressionCheck = false;
    bool xValidationCheck = false;
    TextField noOfFoldsText{std::string(DefaultFolds)};
    bool includeChow = false;
    int graphType = NoGraph;
    TextField histogramCatsText{std::string(DefaultHistogramCategories)};
    std::string parFileText{NoParFile};

    // The mean ratio of each month: 1.0 when the screen opens, then what inverse-normal
    // runs leave.
    std::array<double, 12> meanRatio{};

    // What the last run produced.
    std::optional<calibration::CalibrationResults> results;
    std::optional<calibration::CalibrationReport> report;
    // The fitted coefficients by month, season or year (both stages of a conditional
    // model), and what a stepwise search chose: shown after the report.
    std::vector<core::ResultsTable> coefficients;
    std::vector<std::string> stepwiseLines;
    // The residual plot that GraphType asked for (the amounts' residuals of a conditional
    // model), for the chart screen; none with the choice "None".
    std::optional<charts::ChartModel> residualPlot;
    // Why a run ended without a word (a transformation that could not go on), for the
    // command line; the desktop shows nothing.
    std::string silentStopReason;

    void pickPredictand(Dialogs& dialogs);
    void chooseParFile(const std::string& path);
    void pickParFile(Dialogs& dialogs);

    // Field checks, run when a field loses the focus and again at the start of a run.
    bool checkFitStart(Dialogs& dialogs);
    bool checkFitEnd(Dialogs& dialogs);
    bool checkFolds(Dialogs& dialogs);
    bool checkHistogramCategories(Dialogs& dialogs);

    // The toolbar's calibrate key: the checks in order, then the run, the parameter file
    // and the report.
    RunOutcome calibrate(Dialogs& dialogs, core::Progress& progress);
    // The report as text, empty before a successful run.
    std::string reportText() const;
    // The report, the coefficient tables and the stepwise choice as text, as the results
    // window saves it.
    std::string resultsText() const;
    // The toolbar's reset key: the fields as the screen opened them.
    void reset();
    // Shows the settings' dates afresh after they changed.
    void refreshGlobals();

private:
    bool checkInputs(Dialogs& dialogs);
    bool checkParFileName(Dialogs& dialogs);
    calibration::CalibrationRequest request() const;
    std::optional<charts::ChartModel>
    residualChart(const std::vector<calibration::ResidualPair>& pairs) const;
    std::vector<std::string> inputPaths() const;
    void updateNoOfDays();
    void clearResults();
    void cleanup();

    core::ProgramState& state_;
};

} // namespace varo::screens
