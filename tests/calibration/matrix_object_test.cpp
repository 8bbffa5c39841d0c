#include "calibration/matrix_object.hpp"

#include "support/failure_checks.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <utility>

using varo::calibration::MatrixObject;
using varo::testing::failsWith;

namespace {

MatrixObject fromRows(std::initializer_list<std::initializer_list<double>> rows) {
    MatrixObject m(static_cast<int>(rows.size()), static_cast<int>(rows.begin()->size()));
    int r = 0;
    for (const auto& row : rows) {
        int c = 0;
        for (double value : row) {
            m.setValue(r, c++, value);
        }
        ++r;
    }
    return m;
}

} // namespace

TEST(MatrixObject, ResizeKeepsTheOverlappingCellsAndZeroesNewOnes) {
    MatrixObject m = fromRows({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    m.resize(2, 3);
    EXPECT_EQ(m.getValue(0, 0), 1);
    EXPECT_EQ(m.getValue(1, 2), 6);
    m.resize(4, 4);
    EXPECT_EQ(m.getValue(1, 1), 5);
    EXPECT_EQ(m.getValue(2, 0), 0); // the cut row does not come back
    EXPECT_EQ(m.getValue(3, 3), 0);
    m.resize(4, 1);
    EXPECT_EQ(m.getValue(1, 0), 4);
}

TEST(MatrixObject, ArithmeticAndCloneReturnNewObjects) {
    const MatrixObject a = fromRows({{1, 2}, {3, 4}, {5, 6}});
    const MatrixObject b = fromRows({{1, 0, 2}, {0, 1, 3}});
    const MatrixObject product = a.multiply(b);
    ASSERT_EQ(product.rows(), 3);
    ASSERT_EQ(product.columns(), 3);
    EXPECT_EQ(product.getValue(2, 2), 5 * 2 + 6 * 3);
    const MatrixObject t = a.transpose();
    EXPECT_EQ(t.rows(), 2);
    EXPECT_EQ(t.getValue(1, 2), 6);
    const MatrixObject difference = a.subtract(fromRows({{1, 1}, {1, 1}, {1, 1}}));
    EXPECT_EQ(difference.getValue(2, 1), 5);
    EXPECT_EQ(a.getValue(2, 1), 6);
    EXPECT_EQ(a.columnSum(0), 9);
    EXPECT_EQ(a.columnSum(1), 12);
    MatrixObject copy = a.clone();
    copy.setValue(0, 0, 99);
    EXPECT_EQ(a.getValue(0, 0), 1);
    EXPECT_EQ(copy.getValue(2, 1), 6);
}

TEST(MatrixObject, InverseTimesMatrixIsIdentity) {
    const MatrixObject a = fromRows({{4, 7, 2}, {3, 6, 1}, {2, 5, 3}});
    const MatrixObject identity = a.multiply(a.invert());
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            EXPECT_NEAR(identity.getValue(r, c), r == c ? 1.0 : 0.0, 1e-12);
        }
    }
}

TEST(MatrixObject, SingularInverseFailsWith1306AndItsText) {
    // The third column is the sum of the first two, as a dependent design gives.
    const MatrixObject a = fromRows({{1, 2, 3}, {2, 0.5, 2.5}, {4, 1, 5}});
    try {
        (void)a.invert();
        FAIL() << "no failure";
    } catch (const varo::core::Failure& failure) {
        EXPECT_EQ(failure.number(), 1306);
        EXPECT_EQ(failure.description(), "Matrix is singular and cannot be inverted.");
    }
    EXPECT_TRUE(failsWith([] { (void)MatrixObject(2, 2).invert(); }, 1306));
    EXPECT_TRUE(failsWith([] { (void)MatrixObject(2, 3).invert(); }, 1306));
}

TEST(MatrixObject, SingularityDependsOnDependenceNotOnTheUnitsOfTheData) {
    // A constant column beside geopotential heights of some 5500 m, and beside a pressure
    // of 1013 hPa that moves by hundredths only: both designs are sound.
    for (const auto& [level, spread] : {std::pair{5500.0, 50.0}, std::pair{1013.0, 0.01}}) {
        MatrixObject x(11000, 3);
        for (int r = 0; r < 11000; ++r) {
            x.setValue(r, 0, 1.0);
            x.setValue(r, 1, static_cast<float>(level + spread * std::sin(r * 0.7)));
            x.setValue(r, 2, static_cast<float>(level * 0.5 + spread * std::cos(r * 1.3)));
        }
        const MatrixObject xtx = x.transpose().multiply(x);
        const MatrixObject product = xtx.multiply(xtx.invert());
        EXPECT_NEAR(product.getValue(1, 1), 1.0, 1e-4) << level;
        EXPECT_NEAR(product.getValue(2, 1), 0.0, 1e-4) << level;
    }
    // A third predictor that is the sum of the first two, stored in single precision as a
    // data file would hold it, is singular.
    MatrixObject x(3000, 4);
    for (int r = 0; r < 3000; ++r) {
        const float a = static_cast<float>(1000.0 + 10.0 * std::sin(r * 0.3));
        const float b = static_cast<float>(5.0 * std::cos(r * 0.11));
        x.setValue(r, 0, 1.0);
        x.setValue(r, 1, a);
        x.setValue(r, 2, b);
        x.setValue(r, 3, static_cast<float>(a + b));
    }
    const MatrixObject xtx = x.transpose().multiply(x);
    EXPECT_TRUE(failsWith([&] { (void)xtx.invert(); }, 1306));
}

TEST(MatrixObject, SortRowsMovesWholeRowsAndKeepsEquals) {
    MatrixObject m = fromRows({{3, 30}, {1, 10}, {2, 20}, {1, 11}});
    m.sortRows(0);
    EXPECT_EQ(m.getValue(0, 1), 10);
    EXPECT_EQ(m.getValue(1, 1), 11);
    EXPECT_EQ(m.getValue(2, 1), 20);
    EXPECT_EQ(m.getValue(3, 1), 30);
    m.sortRows(1);
    EXPECT_EQ(m.getValue(3, 0), 3);

    MatrixObject same = fromRows({{5, 1}, {5, 2}, {5, 3}});
    same.sortRows(0);
    double sum = 0;
    for (int r = 0; r < 3; ++r) {
        EXPECT_EQ(same.getValue(r, 0), 5);
        sum += same.getValue(r, 1);
    }
    EXPECT_EQ(sum, 6); // every row is still there
}

TEST(MatrixObject, BadIndicesAndShapesAreFailures) {
    MatrixObject m(2, 2);
    EXPECT_TRUE(failsWith([&] { (void)m.getValue(2, 0); }, 9));
    EXPECT_TRUE(failsWith([&] { m.setValue(0, -1, 1.0); }, 9));
    EXPECT_TRUE(failsWith([&] { (void)m.columnSum(2); }, 9));
    EXPECT_TRUE(failsWith([&] { m.sortRows(5); }, 9));
    EXPECT_TRUE(failsWith([&] { (void)m.multiply(MatrixObject(3, 1)); }, 9));
    EXPECT_TRUE(failsWith([&] { (void)m.subtract(MatrixObject(2, 1)); }, 9));
    EXPECT_TRUE(failsWith([&] { m.resize(-1, 2); }, 9));
}
