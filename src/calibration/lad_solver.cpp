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

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

namespace varo::calibration {

namespace {

// row -= multipliers * a, the inner loop of every pivot. Wider vector units are used where
// the processor has them; the products and differences are the same in every version.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__)
__attribute__((target_clones("avx2", "default")))
#endif
void subtractMultiple(double* __restrict row, const double* __restrict multipliers, double a,
                      size_t count) {
    for (size_t c = 0; c < count; ++c) {
        row[c] -= multipliers[c] * a;
    }
}

class DualSimplex {
public:
    DualSimplex(const MatrixObject& x, const MatrixObject& y, double meanY)
        : k_(x.columns() - 1), n_(y.rows()), width_(static_cast<size_t>(n_) + 1),
          tableau_(static_cast<size_t>(k_ + 1) * width_, 0.0), pivotRow_(width_, 0.0),
          xbar_(static_cast<size_t>(k_ + 1), 0.0), rowId_(static_cast<size_t>(k_ + 1), 0),
          colId_(static_cast<size_t>(n_ + 2), 0), cost_(static_cast<size_t>(k_ + n_ + 1), 0.0),
          ybar_(meanY) {
        for (int j = 1; j <= k_; ++j) {
            xbar_[j] = x.columnSum(j) / n_;
        }
        const auto& xs = x.cells();
        const auto& ys = y.cells();
        for (int j = 1; j <= k_; ++j) {
            double* row = &at(j, 1);
            for (int r = 1; r <= n_; ++r) {
                row[r] = xs(r - 1, j) - xbar_[j];
            }
        }
        double* costs = &at(k_ + 1, 1);
        for (int r = 1; r <= n_; ++r) {
            costs[r] = ys(r - 1, 0) - ybar_;
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
            const int pc = nextEntering_ >= 0 ? nextEntering_ : enteringColumn();
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

    // Row-major: a row's cells lie together, so that the search for the entering column
    // and the update of a pivot run along contiguous memory.
    double& at(int row, int column) {
        return tableau_[static_cast<size_t>(row - 1) * width_ + static_cast<size_t>(column - 1)];
    }
    const double& at(int row, int column) const {
        return tableau_[static_cast<size_t>(row - 1) * width_ + static_cast<size_t>(column - 1)];
    }

    // The column with the smallest reduced cost below -t; the first of equals wins.
    int enteringColumn() const {
        int chosen = 0;
        double smallest = -SimplexTolerance;
        const double* costs = &at(k_ + 1, 1);
        for (int c = 2; c <= n_ + 1; ++c) {
            if (costs[c - 1] < smallest) {
                smallest = costs[c - 1];
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
        nextEntering_ = -1;
        colId_[pc] = -colId_[pc];
        for (int i = 1; i <= k_ + 1; ++i) {
            at(i, 1) += q * at(i, pc);
            at(i, pc) = -at(i, pc);
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
        for (int i = 1; i <= k_ + 1; ++i) {
            at(i, pc) /= p;
        }
        // Multipliers of the pivot row; column pc takes none, so the update leaves it alone.
        const double* source = &at(r, 1);
        for (size_t c = 0; c < width_; ++c) {
            pivotRow_[c] = s * source[c];
        }
        pivotRow_[static_cast<size_t>(pc - 1)] = 0.0;
        // The reduced costs of a block are searched for the next entering column while the
        // block is at hand; blocks come in column order, so the first of equals still wins.
        constexpr size_t BlockWidth = 2048;
        nextEntering_ = 0;
        double smallest = -SimplexTolerance;
        const double* costs = &at(k_ + 1, 1);
        for (size_t first = 0; first < width_; first += BlockWidth) {
            const size_t length = std::min(BlockWidth, width_ - first);
            for (int i = 1; i <= k_ + 1; ++i) {
                if (i != r) {
                    subtractMultiple(&at(i, 1) + first, pivotRow_.data() + first, at(i, pc),
                                     length);
                }
            }
            for (size_t c = std::max<size_t>(first, 1); c < first + length; ++c) {
                if (costs[c] < smallest) {
                    smallest = costs[c];
                    nextEntering_ = static_cast<int>(c) + 1;
                }
            }
        }
        double* row = &at(r, 1);
        for (size_t c = 0; c < width_; ++c) {
            row[c] = -pivotRow_[c] / p;
        }
        at(r, pc) = 1.0 / p;
        std::swap(colId_[pc], rowId_[r]);
    }

    int k_;
    int n_;
    size_t width_;
    std::vector<double> tableau_; // row-major, (k + 1) by (N + 1)
    std::vector<double> pivotRow_;
    std::vector<double> xbar_;
    std::vector<int> rowId_;
    std::vector<int> colId_;
    std::vector<double> cost_;
    double ybar_;
    int nextEntering_ = -1; // found by the last pivot; -1 when the search must run again
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
