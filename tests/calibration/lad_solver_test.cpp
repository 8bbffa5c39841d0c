// The least-absolute-deviations simplex on problems that take its rarer paths: a
// degenerate exact fit, tied costs and ratios, a day that can only flip to its other bound,
// no predictor at all, a stop request between iterations and the predictor limit. The
// optima come from tests/data/calibration/regression/make_reference.py (scipy's linprog).
#include "calibration/regression.hpp"

#include "calibration_test_support.hpp"
#include "core/failure.hpp"
#include "support/failure_checks.hpp"

#include <gtest/gtest.h>

using namespace varo::calibration;
using varo::testing::centredObjective;
using varo::testing::column;
using varo::testing::CountingProgress;
using varo::testing::readDesign;
using varo::testing::RecordingNotifier;

namespace {

const std::string SimplexData = std::string(VARO_TEST_DATA) + "/calibration/regression/";

struct Fixture {
    explicit Fixture(long stopAt = 0) : progress(stopAt) {}
    CountingProgress progress;
    RecordingNotifier notifier;
    FitEnvironment environment{progress, notifier};
};

// X with its column of ones from the predictor columns.
MatrixObject design(const std::vector<std::vector<double>>& predictors) {
    const int rows = static_cast<int>(predictors.empty() ? 0 : predictors.front().size());
    MatrixObject x(rows, static_cast<int>(predictors.size()) + 1);
    for (int r = 0; r < rows; ++r) {
        x.setValue(r, 0, 1.0);
        for (size_t j = 0; j < predictors.size(); ++j) {
            x.setValue(r, static_cast<int>(j) + 1, predictors[j][static_cast<size_t>(r)]);
        }
    }
    return x;
}

} // namespace

TEST(DualSimplex, ReachesTheOptimumOfTiedAndFlippingProblems) {
    const auto reference = varo::testing::referenceLines(SimplexData + "reference.txt");
    for (const std::string name : {"ties", "flip"}) {
        SCOPED_TRACE(name);
        const auto& size = reference.at(name).at(0);
        auto problem = readDesign(SimplexData + name + ".dat", static_cast<int>(size.at(0)),
                                  static_cast<int>(size.at(1)));
        Fixture f;
        const MatrixObject beta = leastAbsoluteDeviations(
            problem.x, problem.y, problem.y.columnSum(0) / problem.y.rows(), f.environment);
        const double optimum = reference.at(name + "_objective").at(0).at(0);
        EXPECT_NEAR(centredObjective(problem.x, problem.y, beta), optimum, 1e-9 * optimum);
        if (reference.count(name + "_slopes") > 0) {
            const auto& slopes = reference.at(name + "_slopes").at(0);
            for (size_t j = 0; j < slopes.size(); ++j) {
                EXPECT_NEAR(beta.getValue(static_cast<int>(j) + 1, 0), slopes[j], 1e-6) << j;
            }
        }
        EXPECT_TRUE(f.notifier.warnings.empty());
    }
}

TEST(DualSimplex, AnExactFitOfRepeatedRowsComesOutExactly) {
    // Every residual is zero at the optimum: the most degenerate problem there is.
    std::vector<double> x1;
    std::vector<double> x2;
    std::vector<double> y;
    for (int r = 0; r < 30; ++r) {
        x1.push_back(r % 5);
        x2.push_back((r * 7) % 4);
        y.push_back(3.0 - 0.5 * x1.back() + 0.25 * x2.back());
    }
    const MatrixObject x = design({x1, x2});
    const MatrixObject ys = column(y);
    Fixture f;
    const MatrixObject beta = leastAbsoluteDeviations(x, ys, ys.columnSum(0) / 30, f.environment);
    EXPECT_NEAR(beta.getValue(0, 0), 3.0, 1e-12);
    EXPECT_NEAR(beta.getValue(1, 0), -0.5, 1e-12);
    EXPECT_NEAR(beta.getValue(2, 0), 0.25, 1e-12);
    EXPECT_TRUE(f.notifier.warnings.empty());
}

TEST(DualSimplex, WithoutPredictorsEveryDayBelowTheMeanFlipsAndTheConstantIsTheMean) {
    // No predictor rows to leave: each day whose cost lies below the tolerance flips to its
    // upper bound, one iteration each, and one more iteration finds nothing to enter.
    const MatrixObject ones = column(std::vector<double>(5, 1.0));
    const MatrixObject y = column({1.0, 2.0, 3.0, 4.0 - 1e-9, 10.0 + 1e-9});
    Fixture f;
    const MatrixObject beta = leastAbsoluteDeviations(ones, y, 4.0, f.environment);
    ASSERT_EQ(beta.rows(), 1);
    EXPECT_EQ(beta.getValue(0, 0), 4.0);
    // Three days lie below the mean; the fourth by less than the tolerance does not flip.
    EXPECT_EQ(f.progress.reports, 4);
}

TEST(DualSimplex, AStopRequestBetweenIterationsEndsTheFit) {
    const auto problem = readDesign(SimplexData + "ties.dat", 60, 2);
    Fixture f(3);
    f.environment.setProgress(40, 80, "Calibrating Stepwise Models");
    EXPECT_THROW(
        leastAbsoluteDeviations(problem.x, problem.y, problem.y.columnSum(0) / 60, f.environment),
        varo::core::Cancelled);
    // Each iteration re-reports where the run stands; the third asked for the stop.
    EXPECT_EQ(f.progress.reports, 3);
    EXPECT_EQ(f.progress.lastCurrent, 40);
    EXPECT_EQ(f.progress.lastTotal, 80);
    EXPECT_EQ(f.progress.captions, std::vector<std::string>{"Calibrating Stepwise Models"});
    EXPECT_TRUE(f.notifier.warnings.empty());
}

TEST(DualSimplex, TakesAtMostTwentyPredictors) {
    std::vector<std::vector<double>> predictors(MaxSimplexPredictors + 1);
    for (size_t j = 0; j < predictors.size(); ++j) {
        for (int r = 0; r < 40; ++r) {
            predictors[j].push_back(static_cast<double>((r * (j + 3)) % 11));
        }
    }
    const MatrixObject y = column(std::vector<double>(40, 1.0));
    Fixture f;
    EXPECT_TRUE(varo::testing::failsWith(
        [&] { leastAbsoluteDeviations(design(predictors), y, 1.0, f.environment); },
        varo::core::failure::FileTooLarge, "at most 20 predictors; this model has 21"));
    EXPECT_EQ(f.progress.reports, 0);
}
