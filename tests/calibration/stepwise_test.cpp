#include "calibration/stepwise.hpp"

#include "calibration_test_support.hpp"
#include "core/failure.hpp"
#include "core/notices.hpp"
#include "support/failure_checks.hpp"

#include <cmath>
#include <gtest/gtest.h>

using namespace varo::calibration;

TEST(Stepwise, SubsetsComeSinglesFirstThenTheFullSetThenPairs) {
    EXPECT_EQ(makeSubsets(1), (std::vector<std::vector<int>>{{1}}));
    EXPECT_EQ(makeSubsets(3),
              (std::vector<std::vector<int>>{{1}, {2}, {3}, {1, 2, 3}, {1, 2}, {1, 3}, {2, 3}}));
    const auto four = makeSubsets(4);
    ASSERT_EQ(four.size(), 15u);
    EXPECT_EQ(four[4], (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(four[5], (std::vector<int>{1, 2}));
    EXPECT_EQ(four[10], (std::vector<int>{3, 4}));
    EXPECT_EQ(four[11], (std::vector<int>{1, 2, 3})); // then the triples
    EXPECT_EQ(four[14], (std::vector<int>{2, 3, 4}));
    EXPECT_EQ(makeSubsets(8).size(), 255u);
}

TEST(Stepwise, CriterionIsTheLargestWithTheRegressionSumInsideTheLogarithm) {
    const double l = std::log(std::sqrt(50.0 / 100));
    EXPECT_DOUBLE_EQ(stepwiseCriterion(50.0, 100, 3, true), 100 * l + 2 * 2);
    EXPECT_DOUBLE_EQ(stepwiseCriterion(50.0, 100, 3, false), 100 * l + 2 * std::log(100.0));
    EXPECT_TRUE(std::isnan(stepwiseCriterion(-1.0, 100, 3, true)));
}

namespace {

// Columns 1 and 2 are the same predictor; the response follows it.
struct TwinPredictors {
    static constexpr int Rows = 40;
    MatrixObject x{Rows, 3};
    MatrixObject y{Rows, 1};
    varo::core::SilentNotifier notifier;
    TwinPredictors() {
        for (int r = 0; r < Rows; ++r) {
            const double v = std::sin(r * 0.9);
            x.setValue(r, 0, 1.0);
            x.setValue(r, 1, v);
            x.setValue(r, 2, v);
            y.setValue(r, 0, 1.0 + 2.0 * v + 0.1 * std::cos(r * 3.1));
        }
    }
};

} // namespace

// The singles tie and the first stays; the pair, singular, cannot win.
TEST(Stepwise, TiesGoToTheFirstAndFailedSubsetsCannotWin) {
    TwinPredictors twins;
    varo::testing::CountingProgress progress;
    FitEnvironment environment{progress, twins.notifier};
    const StepwiseSelection selection =
        selectPredictors(twins.x, twins.y, FitMethod::LeastSquares, true, environment);
    EXPECT_EQ(selection.positions, std::vector<int>{1});
    EXPECT_EQ(selection.subsetsTried, 3);
    EXPECT_EQ(progress.captions, std::vector<std::string>{"Calibrating Stepwise Models"});
    EXPECT_EQ(progress.lastCurrent, 100);
}

// A constant response explains nothing: no subset can be judged.
TEST(Stepwise, AResponseWithoutSpreadStopsWithItsMessage) {
    TwinPredictors twins;
    varo::testing::CountingProgress progress;
    FitEnvironment environment{progress, twins.notifier};
    MatrixObject flat(TwinPredictors::Rows, 1);
    flat.cells().setConstant(2.0);
    EXPECT_EQ(varo::testing::stopMessage([&] {
                  selectPredictors(twins.x, flat, FitMethod::LeastSquares, true, environment);
              }),
              "Unable  to determine an optimum set of predictors from those selected. Please try "
              "an alternative");
}

TEST(Stepwise, AStopIsSeenBetweenSubsets) {
    TwinPredictors twins;
    varo::testing::CountingProgress stopping(2);
    FitEnvironment stopped{stopping, twins.notifier};
    EXPECT_THROW(selectPredictors(twins.x, twins.y, FitMethod::LeastSquares, true, stopped),
                 varo::core::Cancelled);
    EXPECT_EQ(stopping.reports, 2);
}
