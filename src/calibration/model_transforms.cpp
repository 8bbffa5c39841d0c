#include "calibration/model_transforms.hpp"

#include "core/notices.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace varo::calibration {

namespace {

bool isWet(double value, float thresh) {
    return static_cast<float>(value) > thresh;
}

// Keeps the rows of X and Y for which `keep` holds, in order, and cuts both to the count.
template <typename Keep>
void compactRows(MatrixObject& x, MatrixObject& y, Keep keep) {
    int kept = 0;
    for (int r = 0; r < y.rows(); ++r) {
        if (!keep(y.getValue(r, 0))) {
            continue;
        }
        if (kept != r) {
            x.cells().row(kept) = x.cells().row(r);
            y.setValue(kept, 0, y.getValue(r, 0));
        }
        ++kept;
    }
    x.resize(kept, x.columns());
    y.resize(kept, 1);
}

// ---------------------------------------------------------------------------------------
// The normal curve, integrated by trapezoids of width 0.0001 for at most 50,000 steps.

constexpr double TwoPi = 6.2831854;
constexpr double Delta = 0.0001;
constexpr int StepLimit = 50000;

double density(double z) {
    return std::exp(-z * z / 2.0) / std::sqrt(TwoPi);
}

struct NormalWalk {
    double z = 0.0;
    double area = 0.5;
    bool missingDensity = false; // the density equalled the missing code on the way
};

// From z = 0 downwards while the area left of z is above `a`.
NormalWalk descendTo(double a, double missingCode) {
    NormalWalk walk;
    double previous = density(0.0);
    walk.missingDensity = previous == missingCode;
    for (int step = 0; step < StepLimit && walk.area > a; ++step) {
        walk.z -= Delta;
        const double f = density(walk.z);
        walk.missingDensity = walk.missingDensity || f == missingCode;
        walk.area -= (f + previous) * Delta * 0.5;
        previous = f;
    }
    return walk;
}

// Upwards from where the walk stands while its area is below `target`.
void ascendTo(NormalWalk& walk, double target) {
    double previous = density(walk.z);
    for (int step = 0; step < StepLimit && walk.area < target; ++step) {
        walk.z += Delta;
        const double f = density(walk.z);
        walk.area += (f + previous) * Delta * 0.5;
        previous = f;
    }
}

// Replaces Y by the normal scores of its ranks; the walk goes up the curve once for all rows.
void inverseNormal(MatrixObject& y, double missingCode) {
    const int n = y.rows();
    MatrixObject ranked(n, 2);
    for (int r = 0; r < n; ++r) {
        ranked.setValue(r, 0, y.getValue(r, 0));
        ranked.setValue(r, 1, r + 1);
    }
    ranked.sortRows(0);
    NormalWalk walk = descendTo(1.0 / (n + 1), missingCode);
    if (n > 0) {
        ranked.setValue(0, 0, walk.z);
    }
    const double spacing = n > 1 ? (1.0 - 2.0 * walk.area) / (n - 1) : 0.0;
    double target = walk.area;
    for (int r = 1; r < n; ++r) {
        target += spacing;
        ascendTo(walk, target);
        ranked.setValue(r, 0, walk.z);
    }
    ranked.sortRows(1);
    for (int r = 0; r < n; ++r) {
        y.setValue(r, 0, ranked.getValue(r, 0));
    }
}

// ---------------------------------------------------------------------------------------
// Box-Cox

double boxCoxValue(double value, double lamda) {
    return (std::pow(value, lamda) - 1.0) / lamda;
}

void boxCox(MatrixObject& y, AmountTransform& transform, double missingCode) {
    const int n = y.rows();
    // The first row is left out of the search for the shift, and is not shifted.
    double smallest = 9999.0;
    for (int r = 1; r < n; ++r) {
        smallest = std::min(smallest, y.getValue(r, 0));
    }
    if (smallest < 0.0) {
        transform.shift = std::fabs(smallest);
        for (int r = 1; r < n; ++r) {
            y.setValue(r, 0, y.getValue(r, 0) + transform.shift);
        }
    }
    bool tooFew = false;
    const auto search = [&](double lower, double upper, double step) {
        const double found = findLamda(lower, upper, step, y, missingCode, tooFew);
        if (found == missingCode) {
            throw core::RunStopped(std::string(LamdaFailureText) +
                                   (tooFew ? TooFewForLamdaText : ""));
        }
        return found;
    };
    double lamda = search(-2.0, 2.0, 0.25);
    lamda = search(lamda - 0.25, lamda + 0.25, 0.1);
    lamda = search(lamda - 0.1, lamda + 0.1, 0.01);
    transform.lamda = lamda;
    for (int r = 0; r < n; ++r) {
        const double value = y.getValue(r, 0);
        double result = 0.0;
        if (lamda != 0.0) {
            result = boxCoxValue(value, lamda);
        } else {
            result = value == 0.0 ? -5.0 : std::log(value);
        }
        y.setValue(r, 0, result - transform.shift);
    }
}

// Fourth root or log; negative amounts are dropped, and fewer than 11 rows left stop the run.
void rootOrLog(MatrixObject& x, MatrixObject& y, int code, double missingCode,
               const std::string& groupName) {
    int negatives = 0;
    for (int r = 0; r < y.rows(); ++r) {
        const double value = y.getValue(r, 0);
        if (value < 0.0) {
            y.setValue(r, 0, missingCode);
            ++negatives;
        } else {
            y.setValue(r, 0, code == TransformFourthRoot ? std::pow(value, 0.25) : std::log(value));
        }
    }
    if (negatives == 0) {
        return;
    }
    const int left = y.rows() - negatives;
    if (left < 11) {
        throw SilentStop("Only " + std::to_string(left) + " amounts of " + groupName +
                         " are left after dropping " + std::to_string(negatives) +
                         " negative ones for the " +
                         (code == TransformFourthRoot ? "fourth root" : "natural log") +
                         "; the amount model needs at least 11.");
    }
    compactRows(x, y, [missingCode](double value) { return value != missingCode; });
}

} // namespace

void makeOccurrence(MatrixObject& y, float thresh) {
    for (int r = 0; r < y.rows(); ++r) {
        y.setValue(r, 0, isWet(y.getValue(r, 0), thresh) ? 1.0 : 0.0);
    }
}

void keepWetDays(MatrixObject& x, MatrixObject& y, float thresh) {
    compactRows(x, y, [thresh](double value) { return isWet(value, thresh); });
}

AmountTransform applyModelTransformation(MatrixObject& x, MatrixObject& y, int code,
                                         double missingCode, const std::string& groupName) {
    AmountTransform transform;
    transform.code = code;
    switch (code) {
    case TransformFourthRoot:
    case TransformLog:
        rootOrLog(x, y, code, missingCode, groupName);
        break;
    case TransformInverseNormal:
        transform.sortedAmounts = y.clone();
        inverseNormal(y, missingCode);
        break;
    case TransformBoxCox:
        boxCox(y, transform, missingCode);
        break;
    default:
        break;
    }
    return transform;
}

double findLamda(double lower, double upper, double step, const MatrixObject& series,
                 double missingCode, bool& tooFew) {
    constexpr double Excluded = -99999.0;
    double best = 99999.0;
    double bestLamda = missingCode;
    for (double lamda = lower; lamda <= upper; lamda += step) {
        MatrixObject trial = series.clone();
        double sum = 0.0;
        int n = 0;
        int excluded = 0;
        for (int r = 0; r < trial.rows(); ++r) {
            const double value = trial.getValue(r, 0);
            double result = 0.0;
            if (lamda == 0.0 && value == 0.0) {
                trial.setValue(r, 0, Excluded);
                ++excluded;
                continue;
            }
            result = lamda == 0.0 ? std::log(value) : boxCoxValue(value, lamda);
            trial.setValue(r, 0, result);
            sum += result;
            ++n;
        }
        if (n < 50) {
            tooFew = true;
            continue;
        }
        const double mean = sum / n;
        trial.sortRows(0);
        const double median = trial.getValue(n / 2 + excluded, 0);
        const double lowerQuartile = trial.getValue(n / 4 + excluded, 0);
        const double upperQuartile = trial.getValue(n - n / 4, 0);
        const double spread = upperQuartile - lowerQuartile;
        const double statistic = spread > 0.0 ? (mean - median) / spread : missingCode;
        if (std::fabs(statistic) < best && statistic != missingCode) {
            best = std::fabs(statistic);
            bestLamda = lamda;
        }
    }
    return bestLamda;
}

namespace {

void inverseNormalBack(MatrixObject& observed, MatrixObject& fitted,
                       const AmountTransform& transform, double missingCode) {
    MatrixObject amounts = transform.sortedAmounts.clone();
    amounts.sortRows(0);
    const int n = amounts.rows();
    const double a = 1.0 / (n + 1);
    const NormalWalk lowest = descendTo(a, missingCode);
    if (lowest.missingDensity) {
        observed.cells().setConstant(missingCode);
        fitted.cells().setConstant(missingCode);
        return;
    }
    const double z0 = lowest.z;
    const double width = 1.0 - 2.0 * a;
    const auto amountOf = [&](double z) {
        if (!(z > z0)) {
            return amounts.getValue(0, 0);
        }
        const double h = (z - z0) / 100.0;
        double area = 0.0;
        for (int i = 0; i < 100; ++i) {
            area += (density(z0 + i * h) + density(z0 + (i + 1) * h)) * h * 0.5;
        }
        area = std::min(area, width);
        const int index = std::min(static_cast<int>(std::floor(n * area / width)), n - 1);
        return amounts.getValue(index, 0);
    };
    for (MatrixObject* copy : {&observed, &fitted}) {
        for (int r = 0; r < copy->rows(); ++r) {
            const double z = copy->getValue(r, 0);
            if (z != missingCode) {
                copy->setValue(r, 0, amountOf(z));
            }
        }
    }
}

double boxCoxBack(double value, const AmountTransform& transform, double missingCode) {
    double v = value + transform.shift;
    if (transform.lamda != 0.0) {
        v = transform.lamda * v + 1.0;
        if (!(v > 0.0)) {
            return missingCode;
        }
        v = std::log(v) / transform.lamda;
    }
    return std::exp(v) - transform.shift;
}

} // namespace

void backTransform(MatrixObject& observed, MatrixObject& fitted, const AmountTransform& transform,
                   double missingCode) {
    if (transform.code == TransformInverseNormal) {
        inverseNormalBack(observed, fitted, transform, missingCode);
        return;
    }
    if (transform.code == TransformNone) {
        return;
    }
    for (MatrixObject* copy : {&observed, &fitted}) {
        for (int r = 0; r < copy->rows(); ++r) {
            const double value = copy->getValue(r, 0);
            if (value == missingCode) {
                continue;
            }
            double amount = value;
            if (transform.code == TransformFourthRoot) {
                amount = value * value * value * value;
            } else if (transform.code == TransformLog) {
                amount = std::exp(value);
            } else {
                amount = boxCoxBack(value, transform, missingCode);
            }
            copy->setValue(r, 0, amount);
        }
    }
}

double meanRatioOfFit(const MatrixObject& x, const MatrixObject& beta, const MatrixObject& y) {
    const double fittedSum = x.multiply(beta).columnSum(0);
    if (fittedSum == 0.0) {
        return 1.0;
    }
    return y.columnSum(0) / fittedSum;
}

} // namespace varo::calibration
