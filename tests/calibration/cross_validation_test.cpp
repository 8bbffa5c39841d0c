#include "calibration/cross_validation.hpp"

#include "calibration_test_support.hpp"

#include <cmath>
#include <gtest/gtest.h>

using namespace varo::calibration;
using varo::testing::Calibrator;
using varo::testing::RecordingNotifier;

namespace {

constexpr double Missing = -999.0;

// tests/data/calibration/driver/reference_cross_validation.txt, from
// make_cross_validation.py there (numpy and scipy).
std::vector<double> reference(const std::string& key) {
    return varo::testing::referenceLines(varo::testing::DriverData +
                                         "/reference_cross_validation.txt")
        .at(key)
        .at(0);
}

CalibrationResults run(ModelType type, bool conditional, int folds, float transformation,
                       Calibrator& calibrator, varo::core::Date fitEnd = {31, 12, 1966}) {
    auto state = varo::testing::sixYearState();
    state.modelTransformation = varo::core::ModelTransformation::fromNumber(transformation);
    auto r = varo::testing::driverRequest(type, conditional, fitEnd);
    r.crossValidationFolds = folds;
    return calibrator(state, r);
}

void expectNear(double ours, double theirs, const char* what) {
    EXPECT_NEAR(ours, theirs, 1e-9 * (1 + std::fabs(theirs))) << what;
}

} // namespace

TEST(CrossValidation, UnconditionalMetricsMatchAnIndependentComputation) {
    Calibrator calibrator;
    const auto results = run(ModelType::Annual, false, 5, 1.0f, calibrator);
    ASSERT_TRUE(results.crossValidation.has_value());
    const auto& table = *results.crossValidation;
    const auto expected = reference("annual");
    const char* names[] = {"SE", "Spearman", "bias", "R squared", "Durbin-Watson"};
    for (size_t row = 0; row < 5; ++row) {
        expectNear(table[row][0], expected[row], names[row]);
    }
    EXPECT_EQ(table[4][11], table[4][0]); // an annual model fills every month
    EXPECT_EQ(table[5][0], Missing);
    EXPECT_TRUE(calibrator.notifier.warnings.empty());
}

TEST(CrossValidation, AmountsAreTransformedFoldByFoldAndScoredBack) {
    Calibrator calibrator;
    const auto results = run(ModelType::Monthly, true, 4, 2.0f, calibrator);
    const auto& table = *results.crossValidation;
    const auto expected = reference("amounts");
    expectNear(table[3][0], expected[0], "amount R squared");
    expectNear(table[2][0], expected[1], "amount SE");
    expectNear(table[1][0], expected[2], "amount Spearman");
    // The occurrence stage keeps its own rows.
    EXPECT_GT(table[0][0], 0.5);
    EXPECT_NE(table[4][0], Missing);
    EXPECT_NE(table[5][0], Missing);
}

TEST(CrossValidation, TooFewRowsAFoldSaysSoOnceAndTheRunGoesOn) {
    // One year: some 30 days a month give folds of 3 rows.
    Calibrator calibrator;
    const auto results = run(ModelType::Monthly, true, 10, 1.0f, calibrator, {31, 12, 1962});
    EXPECT_EQ(calibrator.notifier.warnings,
              std::vector<std::string>{"Error Message: Sorry - insufficient data for all cross "
                                       "validation metrics to be calculated."});
    for (const auto& row : *results.crossValidation) {
        EXPECT_EQ(row[0], Missing);
    }
    EXPECT_FALSE(results.parameters.months[0].coefficients.empty());
}

TEST(CrossValidation, RowsBeyondTheLastFoldNeverEnter) {
    // 105 rows in 10 folds use 100; whatever the last five hold changes nothing.
    const auto design = [](double tail) {
        varo::testing::Design d{MatrixObject(105, 2), MatrixObject(105, 1)};
        for (int r = 0; r < 105; ++r) {
            d.x.setValue(r, 0, 1.0);
            d.x.setValue(r, 1, std::sin(r * 0.7));
            d.y.setValue(r, 0, r < 100 ? 2.0 + std::sin(r * 0.7) + 0.3 * std::cos(r * 2.9) : tail);
        }
        return d;
    };
    RecordingNotifier notifier;
    CrossValidation a(10, Missing, notifier);
    CrossValidation b(10, Missing, notifier);
    const auto one = design(1e6);
    const auto other = design(-5.0);
    a.validate(one.x, one.y, false, {1});
    b.validate(other.x, other.y, false, {1});
    for (size_t row = 0; row < 5; ++row) {
        EXPECT_EQ(a.table()[row][0], b.table()[row][0]) << row;
        EXPECT_NE(a.table()[row][0], Missing) << row;
    }
    EXPECT_EQ(a.table()[0][1], Missing); // other months untouched
}

TEST(CrossValidation, SpearmanRanksTiesInRowOrder) {
    EXPECT_DOUBLE_EQ(spearman({1, 2, 3, 4}, {10, 20, 30, 40}), 1.0);
    EXPECT_DOUBLE_EQ(spearman({1, 2, 3, 4}, {40, 30, 20, 10}), -1.0);
    // Observed ties take ranks 1 and 2 in row order: D = 0 against 5, 6, 7, 8.
    EXPECT_DOUBLE_EQ(spearman({3, 3, 4, 5}, {5, 6, 7, 8}), 1.0);
    // ... and against a reversed pair the difference shows: D = 2.
    EXPECT_DOUBLE_EQ(spearman({3, 3, 4, 5}, {6, 5, 7, 8}), 1.0 - 6.0 * 2 / (4 * 15));
}
