// The calibration of a model: read the files, fit each month, season or year, and gather
// the parameter file's content and the statistics of the report.
//
// For each group the main model is fitted on X (1.0, the predictors, the lag when asked)
// and Y; a conditional model fits it on the 0/1 occurrence series and then fits the amount
// model on the wet days, with the amounts transformed by the setting ModelTransformation
// and no lag term. Fits are by least squares or by the dual simplex (OptimisationChoice);
// the setting ApplyStepwise chooses the predictors of an annual unconditional model by an
// exhaustive search first (the lag term among the candidates). Nothing is written here:
// the caller writes the parameter file from the results once the run has succeeded.
//
// A run ends early with a failure (`core::Failure`: files, singular matrices, fixed
// limits), a message of its own (`core::RunStopped`: too few days in a group, the Box-Cox
// search, the stepwise search), a silent stop of a transformation (`SilentStop`) or a
// cancel (`core::Cancelled`). The linear-dependency warning of the simplex goes to the
// notifier at most once a run.
#pragma once

#include "calibration/day_cube.hpp"
#include "calibration/regression.hpp"
#include "series/parameter_file.hpp"

#include <optional>

#include <array>
#include <string>
#include <vector>

namespace varo::calibration {

// Rows by metric (1 to 6, stored 0 to 5), columns by month (0 to 11) and the mean (12).
// Unconditional: SE, Spearman, Bias, RSquared, D-Watson. Occurrence: Prop Correct in the
// first row, SE in the fifth, RSquared in the sixth; the amounts of a conditional model
// take the free rows: Spearman in the second, SE in the third, RSquared in the fourth.
using CrossValidationTable = std::array<std::array<double, 13>, 6>;

inline constexpr const char* InsufficientDataText = "Insufficient data available to build a model.";
inline constexpr const char* CalibratingCaption = "Calibrating Model";
// Coefficients, standard error and R squared of a month fill at most 50 columns.
inline constexpr int MaxParameterColumns = 50;

struct CalibrationRequest {
    CalibrationData data;
    std::string predictandName; // as the screen shows it
    std::string fitStartText;   // as entered
    bool conditional = false;
    bool autoregression = false;
    bool includeChow = false;
    int crossValidationFolds = 0; // 0: no cross validation
};

// One row of the report: a month of the main (occurrence) model or of the amount model.
struct MonthStatistics {
    double rSquared = 0.0;
    double standardError = 0.0;
    double third = 0.0; // Durbin-Watson of an unconditional model, else proportion correct
    double chow = 0.0;
    int rows = 0;       // of the fit, for the critical value of Chow
    int predictors = 0; // likewise: the lag term counts
};

// What a stepwise search chose.
struct StepwiseChoice {
    std::vector<std::string> candidates; // predictor names, then the lag term when asked for
    std::vector<std::string> chosen;     // in model order
    bool aic = true;                     // the criterion: AIC, else BIC
    double criterion = 0.0;              // of the chosen subset
    int subsetsTried = 0;
};

// How reports name the lag term.
inline constexpr const char* AutoregressionName = "Autoregression";

struct CalibrationResults {
    series::ParameterFile parameters; // autoregression: whether the model holds the lag term
    // Rows 0 to 11 the months of the main model, 12 to 23 those of the amount model.
    std::array<MonthStatistics, 24> statistics{};
    std::vector<ResidualPair> residualPairs; // of the amount fits in a conditional model
    bool dependencyWarned = false;
    std::optional<CrossValidationTable> crossValidation; // when it was asked for
    std::optional<StepwiseChoice> stepwise;              // when the search ran
};

// Runs a calibration. `meanRatio` holds the mean ratio of each month (January first): the
// inverse normal transformation sets the months it fits, and every other run leaves them
// as they were. With stepwise selection and the lag term, the lag is one of the candidates
// and the parameter file holds it only when the search kept it.
CalibrationResults calibrate(const core::ProgramState& state, const CalibrationRequest& request,
                             std::array<double, 12>& meanRatio, core::Progress& progress,
                             core::Notifier& notifier);

} // namespace varo::calibration
