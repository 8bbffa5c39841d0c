// One day of the weather generator: from the day's predictor values and the month's
// model rows, one simulated value for every ensemble member.
//
// The random numbers are drawn in one fixed order, so that a run from the fixed seed
// repeats to the bit: first a noise draw for every member (also in a conditional model,
// where it is thrown away), then one uniform number per member for a stochastic
// occurrence decision, then a noise draw for every wet member in turn. A noise draw is
// the single-precision sum of PrecN uniform numbers, less PrecN / 2, times the standard
// error; with PrecN 0 nothing is drawn. A day with a missing predictor draws nothing.
//
// Amounts of a conditional model go back through the model transformation (none, fourth
// root, natural log, inverse normal by a reference sample, Box-Cox) and are then raised
// to just above the event threshold when they fall at or below it.
#pragma once

#include "core/program_state.hpp"
#include "core/random.hpp"
#include "series/parameter_file.hpp"

#include <array>
#include <vector>

namespace varo::weathergen {

// The largest ensemble a run makes.
inline constexpr int MaxEnsembleSize = 100;

// The settings a synthesis reads.
struct SynthesisSettings {
    int precN = 12;
    bool allowNeg = true;
    int conditionalSelection = 1; // 1 stochastic, 2 fixed threshold
    float conditionalThresh = 0.5f;
    float biasCorrection = 1.0f;
    float thresh = 0.0f;
    double missingCode = -999.0;

    static SynthesisSettings fromState(const core::ProgramState& state);
};

// The standard normal density with the constant of the integrating routines.
double normalDensity(double x);

// Sorts values[1..n] of a one-based array ascending by Shell's method with halving gaps,
// floor(1e-05 + 2 ln n) passes; values[0] is not touched.
void shellSortOneBased(std::vector<double>& values);

// The lower bound of the normal scores: stepping down from 0 by 0.0001 with trapezoids
// until the area left of the score is at most `tail` (at most 50,000 steps).
double findZMin(double tail);

// The observed amounts of the calibration period that inverse normal scores map onto.
class ReferenceSample {
public:
    // The largest sample a run can hold.
    static constexpr long Capacity = 15000;

    // `values` in file order, missing codes and dry days included; sorted here.
    ReferenceSample(const std::vector<double>& values, float thresh);

    // Index (1-based) of the first value above the threshold, 0 when there is none.
    long firstWet() const { return firstWet_; }
    long wetCount() const { return wetCount_; }
    double zMin() const { return zMin_; }
    double zSpan() const { return zSpan_; }
    // Ascending, one-based (element 0 unused).
    const std::vector<double>& sorted() const { return sorted_; }

    // The amount of a normal score: the sample value at the rank of the trapezoid area
    // from zMin to z (100 trapezoids), never beyond the largest value. Requires a wet value.
    double amountForScore(double z) const;

private:
    std::vector<double> sorted_;
    long firstWet_ = 0;
    long wetCount_ = 0;
    double zMin_ = 0.0;
    double zSpan_ = 0.0;
};

class DailySynthesis {
public:
    // `sample` is needed for the inverse normal transformation only; the model, sample and
    // random stream must outlive this object. The ensemble size is 1 to 100.
    DailySynthesis(const series::ParameterFile& model, const SynthesisSettings& settings,
                   int ensembleSize, core::UniformRandom& random,
                   const ReferenceSample* sample = nullptr);

    // Every member's lagged value becomes the intercept of the month's occurrence row.
    void startLaggedValues(int month);

    // One day of the month (1 to 12). `predictors` holds the day's value of each predictor
    // in the order of the model; `memberValues` receives ensembleSize values. A day with a
    // missing predictor gives the missing code for every member, draws nothing and leaves
    // the lagged values alone. Throws failure 6 when a value overflows.
    void synthesizeDay(int month, const double* predictors, double* memberValues);

    int ensembleSize() const { return ensembleSize_; }
    double laggedValue(int member) const { return lagged_[static_cast<size_t>(member - 1)]; }

private:
    // The noise of one member from its PrecN uniform numbers.
    double noise(const float* draws, double standardError) const;
    // Draws the uniform numbers of the noise of `members` members, PrecN each, in order.
    const float* drawNoiseFor(int members);
    [[noreturn]] static void overflowed(int member);
    double amountFromTransformed(double y, const series::MonthParameters& rows) const;
    double boxCoxAmount(double y, const series::MonthParameters& rows) const;

    const series::ParameterFile& model_;
    SynthesisSettings settings_;
    int ensembleSize_;
    core::UniformRandom& random_;
    const ReferenceSample* sample_;
    int predictorCount_;
    bool autoRegressive_;
    bool conditional_;
    core::TransformationCode transformCode_;
    std::array<double, MaxEnsembleSize> lagged_{};
    std::vector<float> draws_; // room for the uniform numbers of one stage
};

} // namespace varo::weathergen
