#include "calibration/regression.hpp"

#include "calibration_test_support.hpp"
#include "core/failure.hpp"
#include "support/failure_checks.hpp"

#include <cmath>
#include <gtest/gtest.h>

using namespace varo::calibration;
using varo::testing::centredObjective;
using varo::testing::column;
using varo::testing::CountingProgress;
using varo::testing::readDesign;
using varo::testing::RecordingNotifier;

namespace {

constexpr double Missing = -999.0;

const std::string RegressionData = std::string(VARO_TEST_DATA) + "/calibration/regression/";

// A problem of tests/data/calibration/regression and its numbers from reference.txt, made by
// make_reference.py there with numpy (least squares) and scipy's linprog (the
// least-absolute-deviations optimum).
struct Reference {
    std::string name;
    int rows = 0;
    int predictors = 0;
    std::vector<double> ols;
    double ladObjective = 0.0;
};

std::vector<Reference> loadReference() {
    const auto lines = varo::testing::referenceLines(RegressionData + "reference.txt");
    std::vector<Reference> all;
    for (const char* name : {"small", "wide"}) {
        const auto& size = lines.at(name).at(0);
        const size_t i = all.size();
        all.push_back({name, static_cast<int>(size.at(0)), static_cast<int>(size.at(1)),
                       lines.at("ols").at(i), lines.at("lad_objective").at(i).at(0)});
    }
    return all;
}

struct Fixture {
    CountingProgress progress;
    RecordingNotifier notifier;
    FitEnvironment environment{progress, notifier};
};

// A design of n rows: x1 a slow wave, x2 a fast one, y from both with a kink halfway so
// that the halves of a Chow test differ.
varo::testing::Design wavyDesign(int n) {
    varo::testing::Design d{MatrixObject(n, 3), MatrixObject(n, 1)};
    for (int r = 0; r < n; ++r) {
        const double x1 = std::sin(r * 0.37) * 3.0;
        const double x2 = std::cos(r * 1.91) + 0.1 * r;
        d.x.setValue(r, 0, 1.0);
        d.x.setValue(r, 1, x1);
        d.x.setValue(r, 2, x2);
        d.y.setValue(r, 0, 2.0 + 0.5 * x1 - x2 + (r >= n / 2 ? 1.5 * x1 : 0.0) + std::sin(r * 7.3));
    }
    return d;
}

} // namespace

TEST(FitModel, LeastSquaresAndTheSimplexMatchAnIndependentComputation) {
    for (const Reference& reference : loadReference()) {
        SCOPED_TRACE(reference.name);
        auto design = readDesign(RegressionData + reference.name + ".dat", reference.rows,
                                 reference.predictors);
        Fixture f;
        const FitResult ls = fitModel(design.x, design.y, FitMethod::LeastSquares, f.environment);
        ASSERT_EQ(ls.beta.rows(), reference.predictors + 1);
        for (int j = 0; j <= reference.predictors; ++j) {
            EXPECT_NEAR(ls.beta.getValue(j, 0), reference.ols[static_cast<size_t>(j)],
                        1e-7 * (1.0 + std::fabs(reference.ols[static_cast<size_t>(j)])))
                << "coefficient " << j;
        }
        EXPECT_EQ(f.progress.reports, 0); // least squares never yields

        // Least absolute deviations: the slopes reach the linear programming optimum.
        const FitResult lad =
            fitModel(design.x, design.y, FitMethod::LeastAbsoluteDeviations, f.environment);
        EXPECT_NEAR(centredObjective(design.x, design.y, lad.beta), reference.ladObjective,
                    1e-7 * reference.ladObjective);
        EXPECT_GT(f.progress.reports, reference.predictors); // one yield an iteration
        EXPECT_TRUE(f.notifier.warnings.empty());
        // The constant passes through the means: the fitted mean is the mean of Y.
        EXPECT_NEAR(lad.fitted.columnSum(0) / reference.rows, lad.meanY, 1e-8);
    }
}

TEST(FitModel, PerfectFitFloorsTheResidualSumOfSquares) {
    for (FitMethod method : {FitMethod::LeastSquares, FitMethod::LeastAbsoluteDeviations}) {
        MatrixObject x(12, 2);
        MatrixObject y(12, 1);
        for (int r = 0; r < 12; ++r) {
            x.setValue(r, 0, 1.0);
            x.setValue(r, 1, r);
            y.setValue(r, 0, 4.0 - 0.5 * r);
        }
        Fixture f;
        std::vector<ResidualPair> pairs;
        ScoreOptions options;
        const FitScore score = fitAndScore(x, y, method, options, f.environment, {}, pairs);
        EXPECT_EQ(score.fit.residualSS, 0.0001);
        EXPECT_NEAR(score.fit.beta.getValue(1, 0), -0.5, 1e-12);
        EXPECT_NEAR(score.standardError, std::sqrt(0.0001 / 11), 1e-15);
        EXPECT_GT(score.standardError, 0.0);
        EXPECT_TRUE(pairs.empty()); // pairs are kept only when asked
    }
}

TEST(FitModel, NoRowsDivideByZero) {
    Fixture f;
    EXPECT_TRUE(varo::testing::failsWith(
        [&] {
            fitModel(MatrixObject(0, 2), MatrixObject(0, 1), FitMethod::LeastSquares,
                     f.environment);
        },
        11)); // no rows at all
}

TEST(Chow, RunsFromTwentyTwoRowsWithHalvesRoundedToEven) {
    ScoreOptions options;
    options.missingCode = Missing;
    options.includeChow = true;
    std::vector<ResidualPair> pairs;
    {
        auto d = wavyDesign(21); // H = 10: no test
        Fixture f;
        const FitScore score =
            fitAndScore(d.x, d.y, FitMethod::LeastSquares, options, f.environment, {}, pairs);
        EXPECT_EQ(score.chow, Missing);
    }
    for (int n : {22, 25, 27}) {
        SCOPED_TRACE(n);
        auto d = wavyDesign(n);
        const auto xBefore = d.x.clone();
        Fixture f;
        const FitScore score =
            fitAndScore(d.x, d.y, FitMethod::LeastSquares, options, f.environment, {}, pairs);
        // Independent halves: H = 11, 12 (12.5 to even) and 14 (13.5 to even).
        const int h = n == 22 ? 11 : n == 25 ? 12 : 14;
        auto first = wavyDesign(n);
        first.x.resize(h, 3);
        first.y.resize(h, 1);
        MatrixObject xLast(n - h, 3);
        MatrixObject yLast(n - h, 1);
        for (int r = h; r < n; ++r) {
            for (int c = 0; c < 3; ++c) {
                xLast.setValue(r - h, c, d.x.getValue(r, c));
            }
            yLast.setValue(r - h, 0, d.y.getValue(r, 0));
        }
        const double rss1 =
            fitModel(first.x, first.y, FitMethod::LeastSquares, f.environment).residualSS;
        const double rss2 =
            fitModel(xLast, yLast, FitMethod::LeastSquares, f.environment).residualSS;
        const double expected =
            ((score.fit.residualSS - rss1 - rss2) / (rss1 + rss2)) * (n - 2.0 * 2) / 2;
        EXPECT_NEAR(score.chow, expected, 1e-9 * std::fabs(expected));
        EXPECT_GT(score.chow, 0.0);
        // X and Y are whole again after the test.
        ASSERT_EQ(d.x.rows(), n);
        EXPECT_EQ(d.x.getValue(n - 1, 2), xBefore.getValue(n - 1, 2));
    }
    EXPECT_EQ(chowStatistic(5.0, 0.0, 0.0, 40, 2), 0.0); // halves fitted exactly
}

// Pairs are appended after what was there; a fit that is not of occurrence, or without the
// Chow test, leaves those scores missing.
TEST(FitAndScore, KeepsResidualPairsWhenAsked) {
    auto d = wavyDesign(30);
    Fixture f;
    std::vector<ResidualPair> pairs{{1.0, 2.0}};
    ScoreOptions options;
    options.missingCode = Missing;
    options.keepResidualPairs = true;
    const FitScore score =
        fitAndScore(d.x, d.y, FitMethod::LeastSquares, options, f.environment, {}, pairs);
    ASSERT_EQ(pairs.size(), 31u); // appended after what was there
    EXPECT_EQ(pairs[1].fitted, score.fit.fitted.getValue(0, 0));
    EXPECT_NEAR(pairs[30].fitted + pairs[30].residual, d.y.getValue(29, 0), 1e-12);
    EXPECT_EQ(score.propCorrect, Missing); // not an occurrence fit
    EXPECT_EQ(score.chow, Missing);        // not asked for
}

TEST(FitStatistics, ProportionCorrectCountsTheHalfAsWet) {
    const auto observed = column({0, 0, 1, 1, 1, Missing, 0});
    const auto fitted = column({0.49, 0.5, 0.5, 0.49, 0.9, 0.9, Missing});
    // Hits: row 0 (0, 0.49) and rows 2, 4; rows 5, 6 are not counted.
    EXPECT_DOUBLE_EQ(proportionCorrect(observed, fitted, Missing), 3.0 / 5.0);
    EXPECT_EQ(proportionCorrect(column({Missing}), column({1}), Missing), Missing);
    // Only exactly 1.0 counts as an observed event.
    EXPECT_EQ(proportionCorrect(column({0.999}), column({0.9}), Missing), 0.0);
}

TEST(FitStatistics, RSquaredLeavesOutMissingPairs) {
    const auto observed = column({1, 2, 3, 4, Missing});
    const auto fitted = column({2, 4, 6, 8.5, 3});
    const double r2 = rSquared(observed, fitted, Missing);
    // Over the four counted pairs: Sxx = 5, Syy = 23.1875, Sxy = 10.75.
    EXPECT_NEAR(r2, 10.75 * 10.75 / (5 * 23.1875), 1e-14);
    // Uncounted rows reaching N - 2 give the missing code, as does a flat series.
    EXPECT_EQ(rSquared(column({1, 2, Missing, Missing}), column({1, 2, 3, 4}), Missing), Missing);
    EXPECT_NE(rSquared(column({1, 2, 4, Missing}), column({1, 2, 3, 4}), Missing), Missing);
    EXPECT_EQ(rSquared(column({2, 2, 2}), column({1, 2, 3}), Missing), Missing);
}

TEST(FitStatistics, StandardErrorAndDurbinWatson) {
    EXPECT_EQ(standardError(8.0, 1, Missing), Missing);
    EXPECT_DOUBLE_EQ(standardError(8.0, 3, Missing), 2.0);
    EXPECT_EQ(standardError(1e-12, 3, Missing), 0.0001);
    // Residuals 1, -1, 1: differences 4 + 4 over squares 3.
    EXPECT_DOUBLE_EQ(durbinWatson(column({1, -1, 1}), Missing), 8.0 / 3.0);
    EXPECT_EQ(durbinWatson(column({0, 0, 0}), Missing), Missing);
}
