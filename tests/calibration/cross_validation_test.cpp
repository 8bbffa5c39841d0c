#include "calibration/cross_validation.hpp"

#include "calibration/calibrate_driver.hpp"
#include "calibration_test_support.hpp"
#include "core/dates.hpp"

#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

using namespace varo::calibration;
using varo::testing::CountingProgress;
using varo::testing::RecordingNotifier;

namespace {

constexpr double Missing = -999.0;
const std::string DataFolder = std::string(VARO_TEST_DATA) + "/calibration/driver";

// tests/data/calibration/driver/reference_cross_validation.txt, from
// make_cross_validation.py there (numpy and scipy).
std::map<std::string, std::vector<double>> reference() {
    std::ifstream in(DataFolder + "/reference_cross_validation.txt");
    std::map<std::string, std::vector<double>> all;
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string key;
        words >> key;
        double value = 0;
        while (words >> value) {
            all[key].push_back(value);
        }
    }
    return all;
}

CalibrationResults run(ModelType type, bool conditional, int folds, float transformation,
                       RecordingNotifier& notifier, varo::core::Date fitEnd = {31, 12, 1966}) {
    varo::core::ProgramState state;
    varo::core::initialiseState(state);
    state.globalSDate = "01/01/1961";
    state.globalEDate = "31/12/1966";
    state.modelTransformation = transformation;
    CalibrationRequest r;
    r.data.predictandPath = DataFolder + "/rain.dat";
    r.data.predictorPaths = {DataFolder + "/mslp.dat", DataFolder + "/shum.dat"};
    r.data.fitStart = {1, 1, 1962};
    r.data.fitEnd = fitEnd;
    r.data.fitDays = varo::core::dayDifference(r.data.fitStart, fitEnd) + 1;
    r.data.modelType = type;
    r.predictandName = "rain.dat";
    r.fitStartText = "01/01/1962";
    r.conditional = conditional;
    r.crossValidationFolds = folds;
    std::array<double, 12> meanRatio{};
    meanRatio.fill(1.0);
    CountingProgress progress;
    return calibrate(state, r, meanRatio, progress, notifier);
}

void expectNear(double ours, double theirs, const char* what) {
    EXPECT_NEAR(ours, theirs, 1e-9 * (1 + std::fabs(theirs))) << what;
}

} // namespace

TEST(CrossValidation, UnconditionalMetricsMatchAnIndependentComputation) {
    RecordingNotifier notifier;
    const auto results = run(ModelType::Annual, false, 5, 1.0f, notifier);
    ASSERT_TRUE(results.crossValidation.has_value());
    const auto& table = *results.crossValidation;
    const auto expected = reference().at("annual");
    expectNear(table[0][0], expected[0], "SE");
    expectNear(table[1][0], expected[1], "Spearman");
    expectNear(table[2][0], expected[2], "bias");
    expectNear(table[3][0], expected[3], "R squared");
    expectNear(table[4][0], expected[4], "Durbin-Watson");
    EXPECT_EQ(table[4][11], table[4][0]); // an annual model fills every month
    EXPECT_EQ(table[5][0], Missing);
    EXPECT_TRUE(notifier.warnings.empty());
}

TEST(CrossValidation, AmountsAreTransformedFoldByFoldAndScoredBack) {
    RecordingNotifier notifier;
    const auto results = run(ModelType::Monthly, true, 4, 2.0f, notifier);
    const auto& table = *results.crossValidation;
    const auto expected = reference().at("amounts");
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
    RecordingNotifier notifier;
    const auto results = run(ModelType::Monthly, true, 10, 1.0f, notifier, {31, 12, 1962});
    EXPECT_EQ(notifier.warnings,
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
