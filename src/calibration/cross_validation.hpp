// Cross validation: k-fold tests of a group's model before its main fit, by least squares
// whatever the optimisation setting.
//
// N rows give F = N / folds rows a fold (truncated); the first folds * F rows are used and
// the rest never enter. Each fold in turn is predicted from a fit on the other used rows.
// A full series (an unconditional model, or the occurrence of a conditional one) is scored
// by standard error, R squared and, for occurrence, the proportion correct, or for an
// unconditional model Spearman's rank correlation, Durbin-Watson and bias. The wet amounts
// of a conditional model are transformed fold by fold as the amount model is, predicted,
// transformed back, and scored by R squared, standard error and Spearman.
//
// Cross validation never ends a run: what cannot be computed stays at the missing code, and
// each of its messages shows at most once a run, in an "Error Message" box.
#pragma once

#include "calibration/calibration_report.hpp"
#include "calibration/matrix_object.hpp"
#include "core/notices.hpp"

#include <set>
#include <string>
#include <vector>

namespace varo::calibration {

inline constexpr const char* CvTooFewText =
    "Sorry - insufficient data for all cross validation metrics to be calculated.";
inline constexpr const char* CvMetricsText = "Sorry - an error has occurred in the cross "
                                             "validation.  Not all cross validation metrics can "
                                             "be calculated.";
inline constexpr const char* CvInverseText =
    "Sorry - an error has occurred in the cross validation.  Not all cross validation metrics "
    "can be calculated as insufficient data can be inverse transformed.";
inline constexpr const char* CvTransformText = "Sorry - an error has occurred during cross "
                                               "validation.  Not all cross validation metrics "
                                               "can be calculated.";

// The table of a run and its messages shown so far.
class CrossValidation {
public:
    CrossValidation(int folds, double missingCode, core::Notifier& notifier);

    // A full series: the occurrence of a conditional model, or an unconditional model.
    void validate(const MatrixObject& x, const MatrixObject& y, bool occurrence,
                  const std::vector<int>& months);
    // The wet amounts of a conditional model, before their transformation.
    void validateAmounts(const MatrixObject& x, const MatrixObject& y, int transformation,
                         const std::vector<int>& months);

    const CrossValidationTable& table() const { return table_; }

private:
    void say(const char* text);
    void store(int row, double value, const std::vector<int>& months);

    int folds_;
    double missing_;
    core::Notifier& notifier_;
    CrossValidationTable table_{};
    std::set<std::string> shown_;
};

// Spearman's rank correlation of two columns over n rows: ranks by place in ascending
// order, ties not averaged; 1 - 6 D / (n (n^2 - 1)).
double spearman(const std::vector<double>& observed, const std::vector<double>& predicted);

} // namespace varo::calibration
