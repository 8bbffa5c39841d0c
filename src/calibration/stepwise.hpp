// Stepwise selection: an exhaustive search over every non-empty subset of the selected
// predictors, keeping the subset with the highest criterion.
//
// Subsets come in a fixed order: the single predictors, then the full set, then the
// subsets of each size from 2 to k - 1 in the order of a recursion that puts larger
// positions last. Each subset is fitted by `fitModel`; its criterion is AIC or BIC built
// on L = ln(sqrt(RegressionSS / N)), where RegressionSS = beta' X' Y - (sum Y)^2 / N, and
// the highest wins (the first of equals). A subset whose fit fails or whose regression sum
// of squares is not positive cannot win.
#pragma once

#include "calibration/regression.hpp"

#include <vector>

namespace varo::calibration {

inline constexpr int MaxStepwisePredictors = 8;
inline constexpr const char* StepwiseCaption = "Calibrating Stepwise Models";
inline constexpr const char* NoOptimumText = "Unable  to determine an optimum set of predictors "
                                             "from those selected. Please try an alternative";

// Subsets of positions 1..k, each in ascending order, in the order they are tried.
std::vector<std::vector<int>> makeSubsets(int k);

// The criterion of a fit with p columns of X (the constant included) on N rows.
double stepwiseCriterion(double regressionSS, int rows, int columns, bool aicWanted);

// Tries every subset of the predictor columns of X, showing progress under "Calibrating
// Stepwise Models" and throwing `core::Cancelled` on a stop request, and answers the
// chosen positions (1-based columns of X). With no subset to choose the run stops with its
// message (`core::RunStopped`).
std::vector<int> selectPredictors(const MatrixObject& x, const MatrixObject& y, FitMethod method,
                                  bool aicWanted, FitEnvironment& environment);

// X cut down to the constant and the chosen columns, in their order.
MatrixObject subsetColumns(const MatrixObject& x, const std::vector<int>& chosen);

} // namespace varo::calibration
