#include "calibration/stepwise.hpp"

#include "core/failure.hpp"

#include <cmath>

namespace varo::calibration {

namespace {

constexpr double NoCriterion = -99999.0;

// Subsets of r of the positions 1..n, each followed by `built`.
void subsetsOfSize(int n, int r, const std::vector<int>& built,
                   std::vector<std::vector<int>>& out) {
    if (n == r) {
        std::vector<int> subset;
        for (int i = 1; i <= n; ++i) {
            subset.push_back(i);
        }
        subset.insert(subset.end(), built.begin(), built.end());
        out.push_back(std::move(subset));
    } else if (r == 1) {
        for (int i = 1; i <= n; ++i) {
            std::vector<int> subset{i};
            subset.insert(subset.end(), built.begin(), built.end());
            out.push_back(std::move(subset));
        }
    } else {
        subsetsOfSize(n - 1, r, built, out);
        std::vector<int> withN{n};
        withN.insert(withN.end(), built.begin(), built.end());
        subsetsOfSize(n - 1, r - 1, withN, out);
    }
}

} // namespace

std::vector<std::vector<int>> makeSubsets(int k) {
    std::vector<std::vector<int>> subsets;
    for (int i = 1; i <= k; ++i) {
        subsets.push_back({i});
    }
    if (k >= 2) {
        subsetsOfSize(k, k, {}, subsets);
    }
    for (int r = 2; r <= k - 1; ++r) {
        subsetsOfSize(k, r, {}, subsets);
    }
    return subsets;
}

double stepwiseCriterion(double regressionSS, int rows, int columns, bool aicWanted) {
    // A sum of squares that is not positive gives no number here, and such a subset never
    // wins the comparison below.
    const double l = std::log(std::sqrt(regressionSS / rows));
    const int p = columns - 1;
    return aicWanted ? rows * l + 2.0 * p : rows * l + p * std::log(static_cast<double>(rows));
}

MatrixObject subsetColumns(const MatrixObject& x, const std::vector<int>& chosen) {
    MatrixObject cut(x.rows(), static_cast<int>(chosen.size()) + 1);
    cut.cells().col(0) = x.cells().col(0);
    for (size_t i = 0; i < chosen.size(); ++i) {
        cut.cells().col(static_cast<int>(i) + 1) = x.cells().col(chosen[i]);
    }
    return cut;
}

StepwiseSelection selectPredictors(const MatrixObject& x, const MatrixObject& y, FitMethod method,
                                   bool aicWanted, FitEnvironment& environment) {
    const auto subsets = makeSubsets(x.columns() - 1);
    if (subsets.size() > static_cast<size_t>(MaxStepwiseSubsets)) {
        throw core::Failure(core::failure::FileTooLarge,
                            "The stepwise search keeps the criteria of at most " +
                                std::to_string(MaxStepwiseSubsets) + " subsets; " +
                                std::to_string(x.columns() - 1) + " candidates make " +
                                std::to_string(subsets.size()) +
                                ". Select fewer predictors (at most 7 with the lag term).");
    }
    const int n = y.rows();
    const double sumY = y.columnSum(0);
    const double correction = sumY * sumY / n;
    double best = NoCriterion;
    const std::vector<int>* chosen = nullptr;
    for (size_t s = 0; s < subsets.size(); ++s) {
        environment.progress.report(static_cast<long>((s + 1) * 100 / subsets.size()), 100,
                                    StepwiseCaption);
        environment.progress.throwIfStopped();
        const MatrixObject trial = subsetColumns(x, subsets[s]);
        double criterion = NoCriterion;
        try {
            const FitResult fit = fitModel(trial, y, method, environment);
            const double explained =
                fit.beta.transpose().multiply(trial.transpose().multiply(y)).getValue(0, 0);
            criterion = stepwiseCriterion(explained - correction, n, trial.columns(), aicWanted);
        } catch (const core::Failure&) {
            criterion = NoCriterion;
        }
        if (criterion > best) {
            best = criterion;
            chosen = &subsets[s];
        }
    }
    if (chosen == nullptr) {
        throw core::RunStopped(NoOptimumText);
    }
    return {*chosen, best, static_cast<int>(subsets.size())};
}

} // namespace varo::calibration
