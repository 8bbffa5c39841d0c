#include "calibration/cross_validation.hpp"

#include "calibration/model_transforms.hpp"
#include "core/failure.hpp"

#include <cmath>
#include <optional>

namespace varo::calibration {

namespace {

// Rows of the table (0-based) by stage and metric. The amounts of a conditional model take
// the rows the occurrence leaves free.
enum UnconditionalRow { SeRow = 0, SpearmanRow = 1, BiasRow = 2, RSquaredRow = 3, DwRow = 4 };
enum OccurrenceRow { PropCorrectRow = 0, OccurrenceSeRow = 4, OccurrenceRSquaredRow = 5 };
enum AmountRow { AmountSpearmanRow = 1, AmountSeRow = 2, AmountRSquaredRow = 3 };

MatrixObject rowsOf(const MatrixObject& m, const std::vector<int>& rows) {
    MatrixObject out(static_cast<int>(rows.size()), m.columns());
    for (size_t i = 0; i < rows.size(); ++i) {
        out.cells().row(static_cast<Eigen::Index>(i)) = m.cells().row(rows[i]);
    }
    return out;
}

MatrixObject leastSquaresBeta(const MatrixObject& x, const MatrixObject& y) {
    const MatrixObject xt = x.transpose();
    return xt.multiply(x).invert().multiply(xt.multiply(y));
}

// Observed and predicted values of the used rows, and the pairs that count.
struct Pairs {
    std::vector<double> observed;
    std::vector<double> predicted;
    double missing = -999.0;

    bool counts(size_t i) const { return observed[i] != missing && predicted[i] != missing; }
    int uncounted() const {
        int u = 0;
        for (size_t i = 0; i < observed.size(); ++i) {
            u += counts(i) ? 0 : 1;
        }
        return u;
    }
    int counted() const { return static_cast<int>(observed.size()) - uncounted(); }

    double standardError() const {
        const int n = counted();
        if (n < 2) {
            return missing;
        }
        double sum = 0.0;
        for (size_t i = 0; i < observed.size(); ++i) {
            if (counts(i)) {
                sum += (observed[i] - predicted[i]) * (observed[i] - predicted[i]);
            }
        }
        return std::sqrt(sum / (n - 1));
    }

    double rSquared() const {
        const int n = counted();
        if (n == 0) {
            return missing;
        }
        double so = 0, sp = 0, soo = 0, spp = 0, sop = 0;
        for (size_t i = 0; i < observed.size(); ++i) {
            if (counts(i)) {
                so += observed[i];
                sp += predicted[i];
                soo += observed[i] * observed[i];
                spp += predicted[i] * predicted[i];
                sop += observed[i] * predicted[i];
            }
        }
        const double sxx = soo - so * so / n;
        const double syy = spp - sp * sp / n;
        const double sxy = sop - so * sp / n;
        return sxx * syy == 0.0 ? missing : sxy * sxy / (sxx * syy);
    }

    double proportionCorrect() const {
        const int n = counted();
        if (n == 0) {
            return missing;
        }
        int hits = 0;
        for (size_t i = 0; i < observed.size(); ++i) {
            if (counts(i) && ((observed[i] == 0.0 && predicted[i] < 0.5) ||
                              (observed[i] == 1.0 && predicted[i] >= 0.5))) {
                ++hits;
            }
        }
        return static_cast<double>(hits) / n;
    }

    double durbinWatson() const {
        double differences = 0.0;
        double squares = 0.0;
        bool first = true;
        double previous = 0.0;
        for (size_t i = 0; i < observed.size(); ++i) {
            if (!counts(i)) {
                continue;
            }
            const double e = observed[i] - predicted[i];
            squares += e * e;
            if (!first) {
                differences += (e - previous) * (e - previous);
            }
            previous = e;
            first = false;
        }
        return squares > 0.0 ? differences / squares : missing;
    }

    double bias() const {
        const int n = counted();
        double so = 0.0;
        double sp = 0.0;
        for (size_t i = 0; i < observed.size(); ++i) {
            if (counts(i)) {
                so += observed[i];
                sp += predicted[i];
            }
        }
        if (n == 0 || so == 0.0) {
            return missing;
        }
        return (sp / n - so / n) / (so / n);
    }
};

} // namespace

double spearman(const std::vector<double>& observed, const std::vector<double>& predicted) {
    const int n = static_cast<int>(observed.size());
    const auto ranks = [n](const std::vector<double>& values) {
        MatrixObject table(n, 3);
        for (int r = 0; r < n; ++r) {
            table.setValue(r, 0, values[static_cast<size_t>(r)]);
            table.setValue(r, 1, r);
        }
        table.sortRows(0);
        for (int r = 0; r < n; ++r) {
            table.setValue(r, 2, r + 1);
        }
        table.sortRows(1);
        return table;
    };
    const MatrixObject o = ranks(observed);
    const MatrixObject p = ranks(predicted);
    double d = 0.0;
    for (int r = 0; r < n; ++r) {
        const double difference = o.getValue(r, 2) - p.getValue(r, 2);
        d += difference * difference;
    }
    return 1.0 - 6.0 * d / (static_cast<double>(n) * (static_cast<double>(n) * n - 1.0));
}

namespace {

// Ranks need every pair: with a fold left out the correlation cannot be formed.
double rankCorrelation(const Pairs& pairs) {
    return pairs.uncounted() == 0 ? spearman(pairs.observed, pairs.predicted) : pairs.missing;
}

} // namespace

namespace {

// Predictions of every used row from fits on the other folds, or nothing when a fold would
// hold fewer than 10 rows. A fold whose `predict` fails keeps missing predictions, and
// `failed` hears of it.
template <typename Predict, typename Failed>
std::optional<Pairs> foldPredictions(const MatrixObject& x, const MatrixObject& y, int folds,
                                     double missing, Predict predict, Failed failed) {
    const int perFold = y.rows() / folds;
    const int used = perFold * folds;
    if (perFold < 10) {
        return std::nullopt;
    }
    Pairs pairs{std::vector<double>(static_cast<size_t>(used)),
                std::vector<double>(static_cast<size_t>(used), missing), missing};
    for (int r = 0; r < used; ++r) {
        pairs.observed[static_cast<size_t>(r)] = y.getValue(r, 0);
    }
    for (int f = 0; f < folds; ++f) {
        std::vector<int> training;
        std::vector<int> test;
        for (int r = 0; r < used; ++r) {
            (r / perFold == f ? test : training).push_back(r);
        }
        try {
            MatrixObject xTrain = rowsOf(x, training);
            MatrixObject yTrain = rowsOf(y, training);
            const MatrixObject predicted = predict(xTrain, yTrain, rowsOf(x, test));
            for (int i = 0; i < perFold; ++i) {
                pairs.predicted[static_cast<size_t>(f * perFold + i)] = predicted.getValue(i, 0);
            }
        } catch (const core::Failure&) {
            failed();
        } catch (const core::RunStopped&) {
            failed();
        } catch (const SilentStop&) {
            failed();
        }
    }
    return pairs;
}

} // namespace

CrossValidation::CrossValidation(int folds, double missingCode, core::Notifier& notifier)
    : folds_(folds), missing_(missingCode), notifier_(notifier) {
    for (auto& row : table_) {
        row.fill(missingCode);
    }
}

void CrossValidation::say(const char* text) {
    if (shown_.insert(text).second) {
        notifier_.error(text);
    }
}

void CrossValidation::store(int row, double value, const std::vector<int>& months) {
    for (int month : months) {
        table_[static_cast<size_t>(row)][static_cast<size_t>(month - 1)] = value;
    }
}

void CrossValidation::validate(const MatrixObject& x, const MatrixObject& y, bool occurrence,
                               const std::vector<int>& months) {
    // A fold that cannot be fitted leaves its pairs out, without a word.
    const auto found = foldPredictions(
        x, y, folds_, missing_,
        [](const MatrixObject& xTrain, const MatrixObject& yTrain, const MatrixObject& xTest) {
            return xTest.multiply(leastSquaresBeta(xTrain, yTrain));
        },
        [] {});
    if (!found) {
        say(CvTooFewText);
        return;
    }
    const Pairs& pairs = *found;
    if (occurrence) {
        store(PropCorrectRow, pairs.proportionCorrect(), months);
        store(OccurrenceSeRow, pairs.standardError(), months);
        store(OccurrenceRSquaredRow, pairs.rSquared(), months);
        return;
    }
    store(SeRow, pairs.standardError(), months);
    store(SpearmanRow, rankCorrelation(pairs), months);
    store(BiasRow, pairs.bias(), months);
    store(RSquaredRow, pairs.rSquared(), months);
    store(DwRow, pairs.durbinWatson(), months);
    if (pairs.counted() < 2) {
        say(CvMetricsText);
    }
}

void CrossValidation::validateAmounts(const MatrixObject& x, const MatrixObject& y,
                                      int transformation, const std::vector<int>& months) {
    const auto found = foldPredictions(
        x, y, folds_, missing_,
        [&](MatrixObject& xTrain, MatrixObject& yTrain, const MatrixObject& xTest) {
            const AmountTransform transform =
                applyModelTransformation(xTrain, yTrain, transformation, missing_, "a fold");
            MatrixObject predicted = xTest.multiply(leastSquaresBeta(xTrain, yTrain));
            MatrixObject unused(predicted.rows(), 1);
            backTransform(unused, predicted, transform, missing_);
            return predicted;
        },
        [this] { say(CvTransformText); });
    if (!found) {
        say(CvTooFewText);
        return;
    }
    if (found->counted() < 11) {
        say(CvInverseText);
    }
    store(AmountRSquaredRow, found->rSquared(), months);
    store(AmountSeRow, found->standardError(), months);
    store(AmountSpearmanRow, rankCorrelation(*found), months);
}

} // namespace varo::calibration
