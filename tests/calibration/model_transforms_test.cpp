#include "calibration/model_transforms.hpp"

#include "calibration_test_support.hpp"
#include "core/notices.hpp"
#include "support/failure_checks.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

using namespace varo::calibration;
using varo::testing::column;
using varo::testing::values;

namespace {

constexpr double Missing = -999.0;

// X with a constant column and the row number, so that moved rows can be recognised.
MatrixObject rowNumbers(int n) {
    MatrixObject x(n, 2);
    for (int r = 0; r < n; ++r) {
        x.setValue(r, 0, 1.0);
        x.setValue(r, 1, r);
    }
    return x;
}

// A month's amounts beside the row numbers, as its fit holds them before the transformation.
struct Amounts {
    MatrixObject x;
    MatrixObject y;
    explicit Amounts(const std::vector<double>& amounts)
        : x(rowNumbers(static_cast<int>(amounts.size()))), y(column(amounts)) {}
    AmountTransform apply(int code, const char* month = "May") {
        return applyModelTransformation(x, y, code, Missing, month);
    }
};

// Observed and fitted values back from the model scale.
struct Back {
    std::vector<double> observed;
    std::vector<double> fitted;
};
Back back(const std::vector<double>& observed, const std::vector<double>& fitted,
          const AmountTransform& transform) {
    MatrixObject o = column(observed);
    MatrixObject f = column(fitted);
    backTransform(o, f, transform, Missing);
    return {values(o), values(f)};
}

// A skewed sample: exp of evenly spread normal-like scores.
std::vector<double> lognormalSample(int n) {
    std::vector<double> out;
    for (int i = 1; i <= n; ++i) {
        const double u = (i - 0.5) / n;
        // A logistic stand-in for the normal quantile; symmetric, which is what matters.
        out.push_back(std::exp(0.6 * std::log(u / (1 - u))));
    }
    return out;
}

} // namespace

TEST(ConditionalProcess, WetMeansAboveTheThresholdInSinglePrecision) {
    MatrixObject y = column({0.0, 0.000001, 0.3, 0.30000001, -1.0});
    makeOccurrence(y, 0.0f);
    EXPECT_EQ(values(y), (std::vector<double>{0, 1, 1, 1, 0}));
    // 0.30000001 rounds to the single-precision 0.3 and is no event above a threshold of 0.3.
    MatrixObject atThreshold = column({0.3, 0.30000001, 0.3000001});
    makeOccurrence(atThreshold, 0.3f);
    EXPECT_EQ(values(atThreshold), (std::vector<double>{0, 0, 1}));
}

TEST(ConditionalProcess, KeepWetDaysCompactsRowsInOrder) {
    MatrixObject x = rowNumbers(6);
    MatrixObject y = column({0.0, 2.0, 0.0, 0.0, 5.0, 0.1});
    keepWetDays(x, y, 0.0f);
    EXPECT_EQ(values(y), (std::vector<double>{2.0, 5.0, 0.1}));
    EXPECT_EQ(values(x, 1), (std::vector<double>{1, 4, 5}));
    EXPECT_EQ(x.rows(), 3);
    MatrixObject dryX = rowNumbers(3);
    MatrixObject dry = column({0, 0, 0});
    keepWetDays(dryX, dry, 0.0f);
    EXPECT_EQ(dry.rows(), 0);
}

TEST(ModelTransformation, RootAndLogDropNegativeAmountsOrStopSilently) {
    std::vector<double> amounts(15, 16.0);
    amounts[3] = -2.0;
    Amounts rooted(amounts);
    const auto root = rooted.apply(TransformFourthRoot, "January");
    ASSERT_EQ(rooted.y.rows(), 14);
    EXPECT_EQ(rooted.y.getValue(3, 0), 2.0);
    EXPECT_EQ(rooted.x.getValue(3, 1), 4.0); // row 3 went, and its predictors with it

    for (int r : {0, 5, 7, 9}) {
        amounts[static_cast<size_t>(r)] = -1.0;
    }
    try {
        Amounts(amounts).apply(TransformLog, "March");
        FAIL();
    } catch (const SilentStop& stop) {
        EXPECT_NE(std::string(stop.what()).find("Only 10 amounts of March"), std::string::npos);
    }

    Amounts logged({std::exp(1.5), 1.0});
    const auto log = logged.apply(TransformLog);
    EXPECT_DOUBLE_EQ(logged.y.getValue(0, 0), 1.5);
    EXPECT_EQ(logged.y.rows(), 2); // no negatives: nothing is dropped, however few the rows

    const Back fromRoot = back({2.0, Missing}, {1.5, 0.5}, root);
    EXPECT_EQ(fromRoot.observed, (std::vector<double>{16.0, Missing}));
    EXPECT_EQ(fromRoot.fitted[1], 0.0625);
    const Back fromLog = back({1.5}, {0.0}, log);
    EXPECT_DOUBLE_EQ(fromLog.observed[0], std::exp(1.5));
    EXPECT_EQ(fromLog.fitted[0], 1.0);
}

TEST(ModelTransformation, InverseNormalGivesNormalScoresOfTheRanks) {
    // Nine amounts in no order: their scores are the normal quantiles of 0.1 .. 0.9.
    const std::vector<double> amounts{7, 3, 9, 1, 5, 2, 8, 6, 4};
    Amounts a(amounts);
    const auto transform = a.apply(TransformInverseNormal);
    const double quantiles[10] = {0,   -1.2816, -0.8416, -0.5244, -0.2533,
                                  0.0, 0.2533,  0.5244,  0.8416,  1.2816};
    for (size_t r = 0; r < amounts.size(); ++r) {
        EXPECT_NEAR(a.y.getValue(static_cast<int>(r), 0),
                    quantiles[static_cast<size_t>(amounts[r])], 3e-4)
            << "amount " << amounts[r];
    }
    // Back again: each score finds its own amount.
    const Back b = back(values(a.y), {-5.0, 0.0, 5.0, Missing, 0.0, 0.0, 0.0, 0.0, 0.0}, transform);
    EXPECT_EQ(b.observed, amounts);
    // Below the lowest score the smallest amount, 0 the median, above the top the largest.
    EXPECT_EQ(std::vector<double>(b.fitted.begin(), b.fitted.begin() + 4),
              (std::vector<double>{1.0, 5.0, 9.0, Missing}));
}

TEST(ModelTransformation, BoxCoxFindsTheSymmetricPowerAndGoesBack) {
    // Squares of a symmetric sample are made symmetric by a power of about one half, and
    // an exponential of one by a power of about zero.
    std::vector<double> squares;
    for (const double v : lognormalSample(400)) {
        squares.push_back(std::pow(std::log(v) + 10.0, 2.0));
    }
    Amounts a(squares);
    const auto transform = a.apply(TransformBoxCox);
    EXPECT_NEAR(transform.lamda, 0.5, 0.05);
    EXPECT_EQ(transform.shift, 0.0);
    EXPECT_NEAR(a.y.getValue(7, 0), (std::pow(squares[7], transform.lamda) - 1) / transform.lamda,
                1e-12);
    EXPECT_NEAR(Amounts(lognormalSample(400)).apply(TransformBoxCox).lamda, 0.0, 0.05);

    const Back b =
        back(values(a.y), std::vector<double>(400, -1.0 / transform.lamda - 1.0), transform);
    EXPECT_NEAR(b.observed[7], squares[7], 1e-9);
    EXPECT_EQ(b.fitted[0], Missing); // lamda * v + 1 is not above 0
}

TEST(ModelTransformation, BoxCoxShiftLeavesTheFirstRowOut) {
    // A negative first row is neither searched nor shifted, so no fractional power can take
    // it and the search fails; shifted, it would have gone through.
    std::vector<double> sample = lognormalSample(100);
    sample[0] = -50.0;
    EXPECT_THROW(Amounts(sample).apply(TransformBoxCox), varo::core::RunStopped);

    sample[0] = 3.0;
    sample[5] = -2.0;
    Amounts a(sample);
    const auto shifted = a.apply(TransformBoxCox);
    EXPECT_EQ(shifted.shift, 2.0);
    const Back b = back(values(a.y), values(a.y), shifted);
    // The shifted minimum is 0, whose transform -1/lamda - shift lies on the edge of the
    // inverse: it cannot come back.
    EXPECT_EQ(b.observed[5], Missing);
    EXPECT_NEAR(b.observed[9], sample[9], 1e-9);
    // The unshifted first row comes back less the shift.
    EXPECT_NEAR(b.observed[0], 1.0, 1e-9);
}

TEST(ModelTransformation, BoxCoxWithTooFewWetDaysStopsWithTheTwoPartMessage) {
    const auto message = [](const std::vector<double>& values) {
        return varo::testing::stopMessage([&] { Amounts(values).apply(TransformBoxCox); });
    };
    EXPECT_EQ(message(lognormalSample(49)),
              "Sorry an error has occurred calculating the optimum lamda transform. There "
              "are insufficient data for a Box Cox transformation.  Try an alternative "
              "transformation.");
    // Enough values but no spread: the first part alone.
    EXPECT_EQ(message(std::vector<double>(60, 3.0)),
              "Sorry an error has occurred calculating the optimum lamda transform.");
}

TEST(ModelTransformation, FindLamdaTakesTheUpperQuartileWithoutTheExcludedCells) {
    // At lamda 0 zeros are excluded and sort first. The median and lower quartile are
    // counted past them, the upper quartile is not: with 30 zeros beside 50 values it falls
    // below the lower quartile, and lamda 0 cannot be judged.
    std::vector<double> series;
    for (int i = 1; i <= 50; ++i) {
        series.push_back(std::exp(i * 0.1 + (i % 3) * 0.01));
    }
    bool tooFew = false;
    EXPECT_EQ(findLamda(0.0, 0.0, 1.0, column(series), Missing, tooFew), 0.0);
    EXPECT_FALSE(tooFew);
    series.insert(series.end(), 30, 0.0);
    EXPECT_EQ(findLamda(0.0, 0.0, 1.0, column(series), Missing, tooFew), Missing);
    // Away from 0 the zeros count as values and the same series is judged.
    EXPECT_EQ(findLamda(0.5, 0.5, 1.0, column(series), Missing, tooFew), 0.5);
    series.resize(49);
    EXPECT_EQ(findLamda(-1.0, 1.0, 0.5, column(series), Missing, tooFew), Missing);
    EXPECT_TRUE(tooFew);
}

TEST(ModelTransformation, MeanRatioOfFit) {
    MatrixObject x = rowNumbers(3);
    EXPECT_DOUBLE_EQ(meanRatioOfFit(x, column({1.0, 1.0}), column({2, 4, 6})), 12.0 / 6.0);
    EXPECT_EQ(meanRatioOfFit(x, column({-1.0, 1.0}), column({2, 4, 6})), 1.0);
}
