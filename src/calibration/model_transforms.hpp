// The conditional process: the occurrence series, the wet days of the amount model, and the
// transformations of amounts with their inverses.
//
// A day is wet when its value, as a single-precision number, is strictly above `Thresh`.
// Amounts are transformed before the amount fit by the setting ModelTransformation:
// 1 none, 2 fourth root, 3 natural log, 4 inverse normal (normal scores of the ranks, by
// trapezoid integration of the normal density), 5 Box-Cox (with a right shift and a
// three-stage search for lamda). The back-transform turns the observed and fitted series
// of the amount fit into amounts again, for the statistics.
//
// A transformation that cannot go on stops the run: the Box-Cox search with its message
// (`core::RunStopped`), the others without a word (`SilentStop`, whose text says why for
// the command line and the tests; the desktop shows nothing).
#pragma once

#include "core/program_state.hpp"

#include "calibration/matrix_object.hpp"

#include <stdexcept>
#include <string>

namespace varo::calibration {

using core::TransformBoxCox;
using core::TransformFourthRoot;
using core::TransformInverseNormal;
using core::TransformLog;
using core::TransformNone;

// A stop of the run that shows no message.
class SilentStop : public std::runtime_error {
public:
    explicit SilentStop(const std::string& reason) : std::runtime_error(reason) {}
};

inline constexpr const char* LamdaFailureText =
    "Sorry an error has occurred calculating the optimum lamda transform.";
inline constexpr const char* TooFewForLamdaText =
    " There are insufficient data for a Box Cox transformation.  Try an alternative "
    "transformation.";

// Y becomes 1.0 on wet days and 0.0 on the others.
void makeOccurrence(MatrixObject& y, float thresh);

// Removes the rows of X and Y whose Y is not wet, keeping the order of the others.
void keepWetDays(MatrixObject& x, MatrixObject& y, float thresh);

// What a transformation leaves for its back-transform.
struct AmountTransform {
    int code = TransformNone;
    double lamda = 0.0;
    double shift = 0.0;
    MatrixObject sortedAmounts; // inverse normal: the amounts before the transformation
};

// Transforms Y in place (and drops rows of X and Y that a root or log cannot take).
// `groupName` names the month or season in the reasons of a stop.
AmountTransform applyModelTransformation(MatrixObject& x, MatrixObject& y, int code,
                                         double missingCode, const std::string& groupName);

// The lamda of lower, lower + step, ... up to upper whose transformed series has the
// smallest |mean - median| / (upper quartile - lower quartile); the missing code when no
// lamda could be judged. `tooFew` is set when a lamda had fewer than 50 usable values.
double findLamda(double lower, double upper, double step, const MatrixObject& series,
                 double missingCode, bool& tooFew);

// Turns the observed and fitted copies of an amount fit back into amounts; cells holding
// the missing code stay as they are.
void backTransform(MatrixObject& observed, MatrixObject& fitted, const AmountTransform& transform,
                   double missingCode);

// Sum of Y over the sum of the fitted values X times beta; 1.0 when the latter is 0.
double meanRatioOfFit(const MatrixObject& x, const MatrixObject& beta, const MatrixObject& y);

} // namespace varo::calibration
