// Least absolute deviations by a bounded dual simplex on centred data.
//
// The problem solved is the dual of the fit: minimise the sum of (y - ybar) u over the days
// subject to (X - xbar)' u = 0 with every u between 0 and 2. The tableau has one row a
// predictor and a last row of reduced costs, and one column a day after a first column
// holding the values of the variables in the rows. A row's variable is its value plus the
// column's entry times the entering variable. Predictors start in the rows, held at 0,
// and leave them as the simplex pivots; a day's variable flips between its bounds (cost
// 2) while its own range is the shortest step. When no reduced cost lies below -t the
// coefficients stand in the last row under the predictors' columns, and the constant is
// the one that passes through the means.
//
// The leaving row is the one whose variable reaches a bound first: a positive entry drives
// the variable up to its upper bound 2 (the row then leaves at that bound, marked by a
// negative identity), a negative entry down to 0. The step to the bound is kept as a
// ratio of the opposite sign so that the largest ratio wins and earlier rows win ties.
// Indices of rows, columns and identities count from 1, since the signs of the identities
// carry the bound a variable sits on.
#include "calibration/regression.hpp"

#include "core/failure.hpp"

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

namespace varo::calibration {

namespace {

class DualSimplex {
public:
    DualSimplex(const MatrixObject& x, const MatrixObject& y, double meanY)
        : k_(x.columns() - 1), n_(y.rows()), height_(k_ + 1),
          tableau_(static_cast<size_t>(height_) * static_cast<size_t>(n_ + 1), 0.0),
          xbar_(static_cast<size_t>(k_ + 1), 0.0), rowId_(static_cast<size_t>(k_ + 1), 0),
          colId_(static_cast<size_t>(n_ + 2), 0), cost_(static_cast<size_t>(k_ + n_ + 1), 0.0),
          ybar_(meanY) {
        for (int j = 1; j <= k_; ++j) {
            xbar_[j] = x.columnSum(j) / n_;
        }
        const auto& xs = x.cells();
        const auto& ys = y.cells();
        for (int r = 1; r <= n_; ++r) {
            double* column = &at(1, r + 1);
            for (int j = 1; j <= k_; ++j) {
                column[j - 1] = xs(r - 1, j) - xbar_[j];
            }
            column[k_] = ys(r - 1, 0) - ybar_;
            colId_[r + 1] = k_ + r;
            cost_[k_ + r] = 2.0;
        }
        for (int i = 1; i <= k_; ++i) {
            rowId_[i] = i;
        }
    }

    // Iterates until no column may enter; yields before each iteration.
    void solve(FitEnvironment& environment) {
        for (;;) {
            environment.yield();
            const int pc = enteringColumn();
            if (pc == 0) {
                return;
            }
            const Leaving leaving = leavingRow(pc);
            const int id = std::abs(colId_[pc]);
            const double q = cost_[id];
            if (-q >= leaving.ratio || leaving.row == 0) {
                flip(pc, q);
            } else {
                pivot(pc, leaving);
            }
        }
    }

    // The constant (through the means) and the coefficients; `dependent` tells whether a
    // predictor never left the rows.
    MatrixObject coefficients(bool& dependent) const {
        std::vector<double> coef(static_cast<size_t>(k_ + 1), 0.0);
        double constant = ybar_;
        for (int c = 2; c <= n_ + 1; ++c) {
            const int id = std::abs(colId_[c]);
            if (id <= k_) {
                const double value = at(k_ + 1, c);
                coef[id] = colId_[c] < 0 ? -value : value;
                constant -= coef[id] * xbar_[id];
            }
        }
        MatrixObject beta(k_ + 1, 1);
        beta.setValue(0, 0, constant);
        for (int j = 1; j <= k_; ++j) {
            beta.setValue(j, 0, coef[j]);
        }
        dependent = false;
        for (int i = 1; i <= k_; ++i) {
            if (std::abs(rowId_[i]) <= k_) {
                dependent = true;
            }
        }
        return beta;
    }

private:
    struct Leaving {
        double ratio = -1.0e10;
        int row = 0; // signed: negative when the row leaves at its upper bound
        double bound = 0.0;
    };

    double& at(int row, int column) {
        return tableau_[static_cast<size_t>(column - 1) * height_ + (row - 1)];
    }
    double at(int row, int column) const {
        return tableau_[static_cast<size_t>(column - 1) * height_ + (row - 1)];
    }

    // The column with the smallest reduced cost below -t; the first of equals wins.
    int enteringColumn() const {
        int chosen = 0;
        double smallest = -SimplexTolerance;
        const double* cost = &tableau_[static_cast<size_t>(height_) + k_];
        for (int c = 2; c <= n_ + 1; ++c, cost += height_) {
            if (*cost < smallest) {
                smallest = *cost;
                chosen = c;
            }
        }
        return chosen;
    }

    Leaving leavingRow(int pc) const {
        Leaving best;
        for (int i = 1; i <= k_; ++i) {
            const double a = at(i, pc);
            if (std::fabs(a) < SimplexTolerance) {
                continue;
            }
            double d = at(i, 1);
            int sign = 1;
            if (a >= SimplexTolerance) {
                sign = -1;
                if (std::abs(rowId_[i]) > k_) {
                    d -= 2.0;
                }
            }
            const double ratio = d / a;
            if (ratio > best.ratio) {
                best.ratio = ratio;
                best.row = sign * i;
                best.bound = d;
            }
        }
        return best;
    }

    // The entering variable moves to its other bound without a change of basis.
    void flip(int pc, double q) {
        colId_[pc] = -colId_[pc];
        double* bounds = &at(1, 1);
        double* column = &at(1, pc);
        for (int i = 0; i < height_; ++i) {
            bounds[i] += q * column[i];
            column[i] = -column[i];
        }
    }

    void pivot(int pc, const Leaving& leaving) {
        double s = 1.0;
        int r = leaving.row;
        if (r < 0) {
            r = -r;
            rowId_[r] = -rowId_[r];
            at(r, 1) = leaving.bound;
            s = -1.0;
        }
        const double p = s * at(r, pc);
        double* pivotColumn = &at(1, pc);
        for (int i = 0; i < height_; ++i) {
            pivotColumn[i] /= p;
        }
        for (int c = 1; c <= n_ + 1; ++c) {
            if (c == pc) {
                continue;
            }
            double* column = &at(1, c);
            const double m = s * column[r - 1];
            if (m == 0.0) {
                continue;
            }
            for (int i = 0; i < height_; ++i) {
                column[i] -= m * pivotColumn[i];
            }
            column[r - 1] = -m / p;
        }
        pivotColumn[r - 1] = 1.0 / p;
        std::swap(colId_[pc], rowId_[r]);
    }

    int k_;
    int n_;
    int height_;
    std::vector<double> tableau_; // column-major, (k + 1) by (N + 1)
    std::vector<double> xbar_;
    std::vector<int> rowId_;
    std::vector<int> colId_;
    std::vector<double> cost_;
    double ybar_;
};

} // namespace

MatrixObject leastAbsoluteDeviations(const MatrixObject& x, const MatrixObject& y, double meanY,
                                     FitEnvironment& environment) {
    const int k = x.columns() - 1;
    if (k > MaxSimplexPredictors) {
        throw core::Failure(core::failure::FileTooLarge, "The dual simplex fits at most " +
                                                             std::to_string(MaxSimplexPredictors) +
                                                             " predictors; this model has " +
                                                             std::to_string(k) + ".");
    }
    DualSimplex simplex(x, y, meanY);
    simplex.solve(environment);
    bool dependent = false;
    MatrixObject beta = simplex.coefficients(dependent);
    if (dependent && !environment.dependencyWarned) {
        environment.notifier.warning(DependencyWarningTitle, DependencyWarningText);
        environment.dependencyWarned = true;
    }
    return beta;
}

} // namespace varo::calibration
