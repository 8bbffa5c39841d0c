#include "core/failure.hpp"
#include "support/failure_checks.hpp"
#include "weathergen/daily_synthesis.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace varo;
using series::ParameterFile;
using weathergen::DailySynthesis;
using weathergen::ReferenceSample;
using weathergen::SynthesisSettings;

namespace {

// A month's row as the file holds it: intercept, coefficients (the lag last when there is
// one), standard error, R squared.
series::MonthParameters occurrenceRow(const std::vector<double>& row) {
    series::MonthParameters month;
    if (row.size() >= 2) {
        month.coefficients.assign(row.begin(), row.end() - 2);
        month.standardError = row[row.size() - 2];
        month.rSquared = row.back();
    }
    return month;
}

// An amount row: intercept, scale, coefficients, standard error, R squared.
series::AmountParameters amountRow(const std::vector<double>& row) {
    series::AmountParameters amount;
    if (row.size() >= 4) {
        amount.constant = row[0];
        amount.meanRatio = row[1];
        amount.coefficients.assign(row.begin() + 2, row.end() - 2);
        amount.standardError = row[row.size() - 2];
        amount.rSquared = row.back();
    }
    return amount;
}

// One predictor, no lag; the same rows in every month unless a test changes them.
ParameterFile model(bool conditional, int transform, const std::vector<double>& occurrence,
                    const std::vector<double>& amount = {}) {
    ParameterFile m;
    m.predictorNames = {"x.dat"};
    m.conditional = conditional;
    m.transformation = static_cast<core::TransformationCode>(transform);
    m.months.fill(occurrenceRow(occurrence));
    m.amounts.fill(amountRow(amount));
    return m;
}

SynthesisSettings noiseFree() {
    SynthesisSettings s;
    s.precN = 0;
    s.conditionalSelection = 2;
    return s;
}

// A synthesis of `members` members drawing from a fresh fixed random stream.
struct Ensemble {
    core::UniformRandom random;
    DailySynthesis synthesis;
    size_t members;
    Ensemble(const ParameterFile& m, const SynthesisSettings& s, int n)
        : synthesis(m, s, n, random), members(static_cast<size_t>(n)) {}

    // The members' values of a day of `month` with predictor value x.
    std::vector<double> day(double x, int month = 1) {
        std::vector<double> values(members);
        synthesis.synthesizeDay(month, &x, values.data());
        return values;
    }
};

// One member's value for one day with predictor value x.
double oneDay(const ParameterFile& m, const SynthesisSettings& s, double x) {
    return Ensemble(m, s, 1).day(x)[0];
}

double floorAbove(float thresh) {
    return static_cast<double>(thresh) + 0.001;
}

} // namespace

TEST(Noise, IsTheSinglePrecisionSumOfPrecNUniformsLessHalfPrecNTimesTheError) {
    // Intercept 0, coefficient 0, standard error 2: the values are the noise itself.
    const ParameterFile m = model(false, 1, {0.0, 0.0, 2.0, 0.0});
    SynthesisSettings s = noiseFree();
    s.precN = 3;
    core::UniformRandom expected;
    for (double value : Ensemble(m, s, 2).day(0.0)) {
        float sum = 0.0f;
        for (int i = 0; i < 3; ++i) {
            sum += expected.next();
        }
        EXPECT_EQ(value, (static_cast<double>(sum) - 1.5) * 2.0);
    }
}

TEST(FirstStage, LaggedValuesStartFromTheInterceptOfTheFirstMonth) {
    ParameterFile m = model(false, 1, {}, {});
    m.autoregression = true;
    for (int month = 1; month <= 12; ++month) {
        // intercept, coefficient, lag coefficient, standard error, R squared
        m.months[month - 1] = occurrenceRow({month * 1.0, 1.0, 0.5, 0.0, 0.0});
    }
    Ensemble run(m, noiseFree(), 3);
    run.synthesis.startLaggedValues(3);
    for (int member = 1; member <= 3; ++member) {
        EXPECT_EQ(run.synthesis.laggedValue(member), 3.0);
    }
    EXPECT_EQ(run.day(2.0, 4)[0], 4.0 + 2.0 + 0.5 * 3.0);
    EXPECT_EQ(run.day(2.0, 4)[2], 4.0 + 2.0 + 0.5 * 7.5);
}

TEST(FirstStage, NegativeValuesAreCutToZeroOnlyWhenAllowNegIsOff) {
    const ParameterFile m = model(false, 1, {-1.0, 0.5, 0.0, 0.0});
    SynthesisSettings s = noiseFree();
    EXPECT_EQ(oneDay(m, s, 1.0), -0.5);
    s.allowNeg = false;
    EXPECT_EQ(oneDay(m, s, 1.0), 0.0);
}

TEST(MissingDays, WriteTheCodeEverywhereDrawNothingAndKeepTheLags) {
    ParameterFile m = model(false, 1, {1.0, 1.0, 0.0, 3.0, 0.0});
    m.autoregression = true;
    m.months.fill(occurrenceRow({1.0, 1.0, 0.5, 3.0, 0.0}));
    SynthesisSettings s;
    s.missingCode = -99.0;
    Ensemble run(m, s, 4);
    run.synthesis.startLaggedValues(1);
    const auto first = run.day(2.0);
    EXPECT_EQ(run.day(-99.0), std::vector<double>(4, -99.0));
    for (int member = 0; member < 4; ++member) {
        EXPECT_EQ(run.synthesis.laggedValue(member + 1), first[static_cast<size_t>(member)]);
    }
    // The day after is the day the same run without the missing one between gives.
    Ensemble without(m, s, 4);
    without.synthesis.startLaggedValues(1);
    without.day(2.0);
    EXPECT_EQ(run.day(2.0), without.day(2.0));
}

TEST(Occurrence, AFixedThresholdCountsAProbabilityEqualToItAsWetAndDrawsFollowTheProbability) {
    // Amount: intercept 5 and scale 1, so a wet day shows 5.
    const std::vector<double> amount = {5.0, 1.0, 0.0, 0.0, 0.0};
    SynthesisSettings s = noiseFree();
    s.conditionalThresh = 0.5f;
    EXPECT_EQ(oneDay(model(true, 1, {0.5, 0.0, 0.0, 0.0}, amount), s, 0.0), 5.0);
    EXPECT_EQ(oneDay(model(true, 1, {0.4999999, 0.0, 0.0, 0.0}, amount), s, 0.0), 0.0);

    // Drawn: the share of wet members is the probability; a probability of 1 is always wet
    // (u < 1), one below 0 never is.
    s.conditionalSelection = 1;
    for (const auto& [probability, share] : {std::pair{1.0, 1.0}, {-0.25, 0.0}, {0.3, 0.3}}) {
        const ParameterFile m = model(true, 1, {probability, 0.0, 0.0, 0.0}, amount);
        Ensemble run(m, s, 100);
        long wet = 0;
        for (int day = 0; day < 200; ++day) {
            const auto values = run.day(0.0);
            wet += std::count(values.begin(), values.end(), 5.0);
        }
        EXPECT_NEAR(wet / 20000.0, share, share == 0.3 ? 0.015 : 0.0) << probability;
    }
}

TEST(Amounts, AtOrBelowTheThresholdBecomeJustAboveItWhateverAllowNegSays) {
    SynthesisSettings s = noiseFree();
    s.thresh = 0.3f;
    s.allowNeg = false;
    const auto wetAmount = [&](double intercept) {
        return oneDay(model(true, 1, {1.0, 0.0, 0.0, 0.0}, {intercept, 1.0, 0.0, 0.0, 0.0}), s,
                      0.0);
    };
    EXPECT_EQ(wetAmount(0.3), floorAbove(0.3f)); // equal in single precision
    EXPECT_EQ(wetAmount(-4.0), floorAbove(0.3f));
    EXPECT_EQ(wetAmount(0.3000001), 0.3000001);
    s.thresh = 0.0f;
    EXPECT_EQ(wetAmount(0.0), floorAbove(0.0f));
}

TEST(Amounts, TransformationsBackFromTheModelScaleWithBias) {
    SynthesisSettings s = noiseFree();
    s.biasCorrection = 0.5f;
    const std::vector<double> wet = {1.0, 0.0, 0.0, 0.0};
    // y = scale * (intercept + coefficient * x) = 2 * (-1 + 0.5 * 1) = -1
    const std::vector<double> amount = {-1.0, 2.0, 0.5, 0.0, 0.0};
    EXPECT_EQ(oneDay(model(true, core::TransformFourthRoot, wet, amount), s, 1.0), 0.5);
    EXPECT_EQ(oneDay(model(true, core::TransformLog, wet, amount), s, 1.0), 0.5 * std::exp(-1.0));
    // x = 3: y = 2 * 0.5 = 1; none keeps 0.5 * 1
    EXPECT_EQ(oneDay(model(true, core::TransformNone, wet, amount), s, 3.0), 0.5);
    // x = -5: y = -7; the fourth power is positive
    EXPECT_EQ(oneDay(model(true, core::TransformFourthRoot, wet, amount), s, -5.0), 0.5 * 2401.0);
}

TEST(Amounts, BoxCoxInvertsWithTheShiftAndGivesTheMissingCodeForANonPositiveArgument) {
    ParameterFile m =
        model(true, core::TransformBoxCox, {1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 1.0, 0.0, 0.0});
    SynthesisSettings s = noiseFree();
    s.biasCorrection = 2.0f;
    for (auto& month : m.months) {
        month.lamda = 0.5;
        month.shift = 1.0;
    }
    // y = 3: t = (3 + 1) * 0.5 + 1 = 3, t^(1/0.5) = 9, (9 - 1) * 2 = 16
    EXPECT_DOUBLE_EQ(oneDay(m, s, 3.0), 16.0);
    // y = -3: t = (-3 + 1) * 0.5 + 1 = 0, not positive: the missing code, not the floor
    EXPECT_EQ(oneDay(m, s, -3.0), s.missingCode);
    for (auto& month : m.months) {
        month.lamda = 0.0;
    }
    // lamda 0: exp(y + shift) - shift
    EXPECT_DOUBLE_EQ(oneDay(m, s, 1.0), (std::exp(2.0) - 1.0) * 2.0);

    // With noise, only the members whose argument falls below zero are missing.
    for (auto& month : m.months) {
        month.lamda = 1.0;
        month.shift = 0.0;
    }
    m.amounts.fill(amountRow({0.0, 1.0, 1.0, 3.0, 0.0}));
    s.precN = 12;
    const auto values = Ensemble(m, s, 100).day(0.0);
    const auto missing = std::count(values.begin(), values.end(), s.missingCode);
    EXPECT_GT(missing, 10);
    EXPECT_LT(missing, 90);
    EXPECT_TRUE(std::all_of(values.begin(), values.end(),
                            [&](double v) { return v == s.missingCode || v > 0.0; }));
}

TEST(Amounts, OverflowIsAFailure) {
    const ParameterFile m =
        model(true, core::TransformLog, {1.0, 0.0, 0.0, 0.0}, {0.0, 1.0, 1.0, 0.0, 0.0});
    EXPECT_TRUE(varo::testing::failsWith([&] { oneDay(m, noiseFree(), 1000.0); },
                                         core::failure::OverflowOccurred, "member 1"));
}

TEST(ReferenceSample, ShellSortSortsAscending) {
    std::mt19937 engine(7);
    std::uniform_int_distribution<int> pick(-20, 20);
    for (const int n : {0, 1, 2, 3, 17, 1000}) {
        std::vector<double> values(static_cast<size_t>(n) + 1, 0.0);
        for (int i = 1; i <= n; ++i) {
            values[static_cast<size_t>(i)] = pick(engine) * 0.5;
        }
        std::vector<double> expected = values;
        std::sort(expected.begin() + 1, expected.end());
        weathergen::shellSortOneBased(values);
        EXPECT_EQ(values, expected) << n;
    }
}

TEST(ReferenceSample, LowerScoreBoundFollowsTheNormalTail) {
    // Quantiles from tests/data/weathergen/normal_quantiles.py: the walk stops within one
    // step of 0.0001 below each.
    const std::pair<long, double> quantiles[] = {
        {10, -1.335177736}, {100, -2.330078923}, {1000, -3.090529138}, {15000, -3.820235256}};
    for (const auto& [wetCount, quantile] : quantiles) {
        const double zMin = weathergen::findZMin(1.0 / static_cast<double>(wetCount + 1));
        EXPECT_LE(zMin, quantile + 1e-6) << wetCount;
        EXPECT_GT(zMin, quantile - 0.0001 - 1e-6) << wetCount;
    }
    // The walk gives up after 50,000 steps.
    EXPECT_NEAR(weathergen::findZMin(1e-9), -5.0, 1e-9);
}

TEST(ReferenceSample, ScoresMapOntoTheWetValuesAndNeverBeyondTheLargest) {
    // Missing codes and dry days sort below the wet values; a value equal to the
    // threshold is dry.
    std::vector<double> values = {7, 0.1, 3, -999, 11, 1, 0, 9, 5, 2, 0.1, 4, 8, 10, 6, 0};
    ReferenceSample sample(values, 0.1f);
    EXPECT_EQ(sample.firstWet(), 6);
    EXPECT_EQ(sample.wetCount(), 11);
    EXPECT_EQ(sample.amountForScore(sample.zMin()), 1.0);
    EXPECT_EQ(sample.amountForScore(-40.0), 1.0);
    // Score 0 leaves half of the span: rank floor(11 / 2) above the first wet value.
    EXPECT_EQ(sample.amountForScore(0.0), 6.0);
    EXPECT_EQ(sample.amountForScore(0.8), 10.0);
    for (const double z : {3.0, 50.0, 1e300, HUGE_VAL}) {
        EXPECT_EQ(sample.amountForScore(z), 11.0) << z;
    }
}
