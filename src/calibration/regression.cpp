#include "calibration/regression.hpp"

#include "core/failure.hpp"
#include "core/numeric_text.hpp"

#include <cmath>
#include <optional>
#include <utility>

namespace varo::calibration {

FitMethod fitMethodOf(int optimisationChoice) {
    return optimisationChoice == 2 ? FitMethod::LeastAbsoluteDeviations : FitMethod::LeastSquares;
}

void FitEnvironment::yield() {
    progress.report(progressCurrent, progressTotal, caption);
    progress.throwIfStopped();
}

namespace {

MatrixObject leastSquares(const MatrixObject& x, const MatrixObject& y) {
    const MatrixObject xt = x.transpose();
    return xt.multiply(x).invert().multiply(xt.multiply(y));
}

} // namespace

FitResult fitModel(const MatrixObject& x, const MatrixObject& y, FitMethod method,
                   FitEnvironment& environment) {
    const int n = y.rows();
    if (n == 0) {
        throw core::Failure(core::failure::DivisionByZero,
                            "A model cannot be fitted to no data: the group has no rows left.");
    }
    FitResult result;
    result.meanY = y.columnSum(0) / n;
    result.beta = method == FitMethod::LeastAbsoluteDeviations
                      ? leastAbsoluteDeviations(x, y, result.meanY, environment)
                      : leastSquares(x, y);
    result.fitted = x.multiply(result.beta);
    result.residuals = y.subtract(result.fitted);
    double sum = 0.0;
    for (int r = 0; r < n; ++r) {
        const double difference = result.fitted.getValue(r, 0) - y.getValue(r, 0);
        sum += difference * difference;
    }
    result.residualSS = sum < ResidualSSFloor ? ResidualSSFloor : sum;
    return result;
}

double chowStatistic(double rss, double rss1, double rss2, int rows, int predictors) {
    const double split = rss1 + rss2;
    if (!(split > 0.0)) {
        return 0.0;
    }
    return ((rss - rss1 - rss2) / split) * (rows - 2.0 * predictors) / predictors;
}

namespace {

// The residual sums of squares of the first H rows and of the last N - H rows, or nothing
// when either half has fewer than 11 rows. X and Y are put back as they were.
std::optional<std::pair<double, double>> chowHalves(MatrixObject& x, MatrixObject& y,
                                                    FitMethod method, FitEnvironment& environment) {
    const int n = y.rows();
    const int first = static_cast<int>(core::roundHalfEven(n / 2.0));
    const int second = n - first;
    if (first < 11 || second < 11) {
        return std::nullopt;
    }
    MatrixObject xAll = x.clone();
    MatrixObject yAll = y.clone();
    x.resize(first, x.columns());
    y.resize(first, 1);
    const double rss1 = fitModel(x, y, method, environment).residualSS;
    x.resize(second, x.columns());
    y.resize(second, 1);
    for (int r = 0; r < second; ++r) {
        for (int c = 0; c < x.columns(); ++c) {
            x.setValue(r, c, xAll.getValue(first + r, c));
        }
        y.setValue(r, 0, yAll.getValue(first + r, 0));
    }
    const double rss2 = fitModel(x, y, method, environment).residualSS;
    x = std::move(xAll);
    y = std::move(yAll);
    return std::make_pair(rss1, rss2);
}

} // namespace

FitScore fitAndScore(MatrixObject& x, MatrixObject& y, FitMethod method,
                     const ScoreOptions& options, FitEnvironment& environment,
                     const BackTransform& backTransform, std::vector<ResidualPair>& pairs) {
    const double missing = options.missingCode;
    std::optional<std::pair<double, double>> halves;
    if (options.includeChow) {
        halves = chowHalves(x, y, method, environment);
    }
    FitScore score;
    score.fit = fitModel(x, y, method, environment);
    const int n = y.rows();
    const int predictors = x.columns() - 1;
    score.chow =
        halves ? chowStatistic(score.fit.residualSS, halves->first, halves->second, n, predictors)
               : missing;
    score.observedCopy = y.clone();
    score.fittedCopy = score.fit.fitted.clone();
    if (options.conditional && options.readyForAmounts && backTransform) {
        backTransform(score.observedCopy, score.fittedCopy);
    }
    score.propCorrect = options.conditional && !options.readyForAmounts
                            ? proportionCorrect(score.observedCopy, score.fittedCopy, missing)
                            : missing;
    score.standardError = standardError(score.fit.residualSS, n, missing);
    score.rSquared = rSquared(score.observedCopy, score.fittedCopy, missing);
    if (options.keepResidualPairs) {
        pairs.reserve(pairs.size() + static_cast<size_t>(n));
        for (int r = 0; r < n; ++r) {
            pairs.push_back({score.fit.fitted.getValue(r, 0), score.fit.residuals.getValue(r, 0)});
        }
    }
    return score;
}

double rSquared(const MatrixObject& observed, const MatrixObject& fitted, double missingCode) {
    const int n = observed.rows();
    double sumO = 0.0, sumF = 0.0, sumOO = 0.0, sumFF = 0.0, sumOF = 0.0;
    int uncounted = 0;
    for (int r = 0; r < n; ++r) {
        const double o = observed.getValue(r, 0);
        const double f = fitted.getValue(r, 0);
        if (o == missingCode || f == missingCode) {
            ++uncounted;
            continue;
        }
        sumO += o;
        sumF += f;
        sumOO += o * o;
        sumFF += f * f;
        sumOF += o * f;
    }
    if (uncounted >= n - 2) {
        return missingCode;
    }
    const double counted = n - uncounted;
    const double sxx = sumOO - sumO * sumO / counted;
    const double syy = sumFF - sumF * sumF / counted;
    const double sxy = sumOF - sumO * sumF / counted;
    if (sxx == 0.0 || syy == 0.0) {
        return missingCode;
    }
    return sxy * sxy / (sxx * syy);
}

double proportionCorrect(const MatrixObject& observed, const MatrixObject& fitted,
                         double missingCode) {
    const int n = observed.rows();
    int hits = 0;
    int uncounted = 0;
    for (int r = 0; r < n; ++r) {
        const double o = observed.getValue(r, 0);
        const double f = fitted.getValue(r, 0);
        if (o == missingCode || f == missingCode) {
            ++uncounted;
        } else if ((o == 0.0 && f < 0.5) || (o == 1.0 && f >= 0.5)) {
            ++hits;
        }
    }
    if (uncounted == n) {
        return missingCode;
    }
    return static_cast<double>(hits) / (n - uncounted);
}

double standardError(double residualSS, int rows, double missingCode) {
    if (rows < 2) {
        return missingCode;
    }
    const double se = std::sqrt(residualSS / (rows - 1));
    return se < ResidualSSFloor ? ResidualSSFloor : se;
}

double durbinWatson(const MatrixObject& residuals, double missingCode) {
    const int n = residuals.rows();
    double differences = 0.0;
    double squares = 0.0;
    for (int r = 0; r < n; ++r) {
        const double e = residuals.getValue(r, 0);
        squares += e * e;
        if (r > 0) {
            const double step = e - residuals.getValue(r - 1, 0);
            differences += step * step;
        }
    }
    return squares > 0.0 ? differences / squares : missingCode;
}

} // namespace varo::calibration
