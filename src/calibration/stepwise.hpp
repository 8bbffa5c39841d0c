// Stepwise selection: an exhaustive search over every non-empty subset of the selected
// predictors, keeping the subset with the highest criterion.
//
// Subsets come in a fixed order: the single predictors, then the full set, then the
// subsets of each size from 2 to k - 1 in the order of a recursion that puts larger
// positions last. Each subset is fitted by `fitModel`; its criterion is AIC or BIC built
// on L = ln(sqrt(RegressionSS / N)), where RegressionSS = beta' X' Y - (sum Y)^2 / N, and
// the highest wins (the first of equals). A subset whose fit fails or whose regression sum
// of squares is not positive cannot win.
//
// With the lag term the lag column is the last candidate, like one more predictor, so the
// search may keep it or leave it out. The criteria of at most 500 subsets are kept: eight
// predictors and the lag term (511 subsets) are too many.
#pragma once

#include "calibration/regression.hpp"

#include <vector>

namespace varo::calibration {

inline constexpr int MaxStepwisePredictors = 8;
inline constexpr int MaxStepwiseSubsets = 500;
inline constexpr const char* StepwiseCaption = "Calibrating Stepwise Models";
inline constexpr const char* NoOptimumText = "Unable  to determine an optimum set of predictors "
                                             "from those selected. Please try an alternative";

// Subsets of positions 1..k, each in ascending order, in the order they are tried.
std::vector<std::vector<int>> makeSubsets(int k);

// The criterion of a fit with p columns of X (the constant included) on N rows.
double stepwiseCriterion(double regressionSS, int rows, int columns, bool aicWanted);

struct StepwiseSelection {
    std::vector<int> positions; // chosen columns of X (1-based, the constant is column 0)
    double criterion = 0.0;     // of the chosen subset
    int subsetsTried = 0;
};

// Tries every subset of the predictor columns of X, showing progress under "Calibrating
// Stepwise Models" and throwing `core::Cancelled` on a stop request, and answers the
// chosen subset. With no subset to choose the run stops with its message
// (`core::RunStopped`); more than 500 subsets fail with 9 before any is tried.
StepwiseSelection selectPredictors(const MatrixObject& x, const MatrixObject& y, FitMethod method,
                                   bool aicWanted, FitEnvironment& environment);

// X cut down to the constant and the chosen columns, in their order.
MatrixObject subsetColumns(const MatrixObject& x, const std::vector<int>& chosen);

} // namespace varo::calibration
