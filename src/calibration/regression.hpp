// Fitting one linear model of Y on X, and the statistics of a fit.
//
// `fitModel` fits by ordinary least squares (inverse of X'X times X'Y) or by least absolute
// deviations (a bounded dual simplex on centred data whose constant passes through the
// means). `fitAndScore` wraps it with the Chow test and the statistics the report and the
// parameter file carry. X has a first column of 1.0 and one column a predictor; Y has one
// column. Statistics that cannot be computed hold the missing code.
//
// The simplex yields once an iteration: it re-reports the progress point of the run in hand
// and throws `core::Cancelled` on a stop request. Its warning about linearly dependent
// predictors is shown at most once a run, through the run's `core::Notifier`.
#pragma once

#include "calibration/matrix_object.hpp"
#include "core/notices.hpp"
#include "core/progress.hpp"

#include <functional>
#include <string>
#include <vector>

namespace varo::calibration {

enum class FitMethod {
    LeastSquares = 1,
    LeastAbsoluteDeviations = 2,
};

// The method of the setting OptimisationChoice: 2 is the dual simplex, anything else least
// squares.
FitMethod fitMethodOf(int optimisationChoice);

inline constexpr int MaxSimplexPredictors = 20;
inline constexpr double SimplexTolerance = 1.0e-8;
inline constexpr double ResidualSSFloor = 0.0001;
inline constexpr const char* DependencyWarningTitle = "Warning";
inline constexpr const char* DependencyWarningText = "Linear dependencies between predictors.";

// What a fit shares with the run it belongs to: where progress stands (re-reported by the
// simplex each iteration, which is where a stop request gets in) and the warning flag.
struct FitEnvironment {
    core::Progress& progress;
    core::Notifier& notifier;
    long progressCurrent = 0;
    long progressTotal = 100;
    std::string caption = "Calibrating Model";
    bool dependencyWarned = false;

    // Re-reports the progress point and throws `core::Cancelled` on a stop request.
    void yield();
    void setProgress(long current, long total, std::string text) {
        progressCurrent = current;
        progressTotal = total;
        caption = std::move(text);
    }
};

struct FitResult {
    MatrixObject beta;      // k + 1 rows: the constant, then one coefficient a predictor
    MatrixObject fitted;    // X times beta
    MatrixObject residuals; // Y minus fitted
    double residualSS = 0.0;
    double meanY = 0.0;
};

// Fits Y on X. Least squares fails with 1306 on a singular X'X; the simplex takes at most
// 20 predictors (failure 9 beyond), and a fit without rows fails with 11.
FitResult fitModel(const MatrixObject& x, const MatrixObject& y, FitMethod method,
                   FitEnvironment& environment);

// The least-absolute-deviations coefficients alone (constant first), as `fitModel` uses
// them; `meanY` is the mean of Y.
MatrixObject leastAbsoluteDeviations(const MatrixObject& x, const MatrixObject& y, double meanY,
                                     FitEnvironment& environment);

struct ResidualPair {
    double fitted = 0.0;
    double residual = 0.0;
};

struct ScoreOptions {
    double missingCode = -999.0;
    bool includeChow = false;
    // A conditional model's occurrence fit (proportion correct) or amount fit (statistics
    // on back-transformed values).
    bool conditional = false;
    bool readyForAmounts = false;
    bool keepResidualPairs = false;
};

// Turns the observed and fitted copies of an amount fit back into amounts.
using BackTransform = std::function<void(MatrixObject& observed, MatrixObject& fitted)>;

struct FitScore {
    FitResult fit;
    double standardError = 0.0;
    double rSquared = 0.0;
    double chow = 0.0;
    double propCorrect = 0.0;
    MatrixObject observedCopy;
    MatrixObject fittedCopy;
};

// Fits, with the Chow test first when asked (on the first H = N / 2 rows, halves to even,
// and the last N - H, when both are at least 11), then scores the fit. X and Y are the
// same afterwards. Residual pairs of the fit are appended to `pairs` when kept.
FitScore fitAndScore(MatrixObject& x, MatrixObject& y, FitMethod method,
                     const ScoreOptions& options, FitEnvironment& environment,
                     const BackTransform& backTransform, std::vector<ResidualPair>& pairs);

// ((RSS - RSS1 - RSS2) / (RSS1 + RSS2)) * (N - 2k) / k; 0 when RSS1 + RSS2 is not above 0.
double chowStatistic(double rss, double rss1, double rss2, int rows, int predictors);

// Sxy^2 / (Sxx Syy) over the pairs without the missing code; the missing code when the
// uncounted pairs reach N - 2 or a sum of squares is 0.
double rSquared(const MatrixObject& observed, const MatrixObject& fitted, double missingCode);

// Hits of a 0/1 occurrence fit: observed 0 with fitted below 0.5, observed 1 with fitted
// 0.5 or above, over the pairs without the missing code.
double proportionCorrect(const MatrixObject& observed, const MatrixObject& fitted,
                         double missingCode);

// Square root of RSS / (N - 1), floored at 0.0001; the missing code below 2 rows.
double standardError(double residualSS, int rows, double missingCode);

// Sum of squared successive differences of the residuals over their sum of squares; the
// missing code when that is not above 0.
double durbinWatson(const MatrixObject& residuals, double missingCode);

} // namespace varo::calibration
