#include "calibration/matrix_object.hpp"

#include "core/failure.hpp"

#include <Eigen/LU>
#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

namespace varo::calibration {

namespace {

// The matrix is inverted after scaling its rows and then its columns to a largest entry of
// 1, so that the test for singularity does not depend on the units of the data: a constant
// column beside geopotential heights of some 5500 m is far from singular. In the scaled
// matrix a pivot smaller than this share of the largest counts as zero. Exactly dependent
// columns of data stored in single precision leave pivots near 1e-15 there.
constexpr double SingularPivotShare = 1e-12;

std::string shapeText(int rows, int columns) {
    return std::to_string(rows) + " by " + std::to_string(columns);
}

[[noreturn]] void failShapes(const char* operation, const MatrixObject& left,
                             const MatrixObject& right) {
    throw core::Failure(core::failure::FileTooLarge, std::string("Matrix ") + operation + " of a " +
                                                         shapeText(left.rows(), left.columns()) +
                                                         " and a " +
                                                         shapeText(right.rows(), right.columns()) +
                                                         " matrix: the shapes do not fit.");
}

} // namespace

MatrixObject::MatrixObject(int rows, int columns) : cells_(Eigen::MatrixXd::Zero(rows, columns)) {}

void MatrixObject::failIndex(int row, int column) const {
    throw core::Failure(core::failure::FileTooLarge,
                        "Matrix cell (" + std::to_string(row) + ", " + std::to_string(column) +
                            ") lies outside a " + shapeText(rows(), columns()) + " matrix.");
}

void MatrixObject::resize(int newRows, int newColumns) {
    if (newRows < 0 || newColumns < 0) {
        throw core::Failure(core::failure::FileTooLarge, "A matrix cannot have the shape " +
                                                             shapeText(newRows, newColumns) + ".");
    }
    if (newRows == rows() && newColumns == columns()) {
        return;
    }
    cells_.conservativeResizeLike(Eigen::MatrixXd::Zero(newRows, newColumns));
}

MatrixObject MatrixObject::clone() const {
    return MatrixObject(Eigen::MatrixXd(cells_));
}

MatrixObject MatrixObject::invert() const {
    static constexpr const char* Singular = "Matrix is singular and cannot be inverted.";
    if (rows() != columns() || rows() == 0) {
        throw core::Failure(core::failure::SingularMatrix, Singular);
    }
    const Eigen::VectorXd rowScale = cells_.cwiseAbs().rowwise().maxCoeff();
    if ((rowScale.array() == 0.0).any()) {
        throw core::Failure(core::failure::SingularMatrix, Singular);
    }
    Eigen::MatrixXd scaled = rowScale.cwiseInverse().asDiagonal() * cells_;
    const Eigen::VectorXd columnScale = scaled.cwiseAbs().colwise().maxCoeff().transpose();
    if ((columnScale.array() == 0.0).any()) {
        throw core::Failure(core::failure::SingularMatrix, Singular);
    }
    scaled = scaled * columnScale.cwiseInverse().asDiagonal();
    Eigen::FullPivLU<Eigen::MatrixXd> lu(scaled);
    lu.setThreshold(SingularPivotShare);
    if (!lu.isInvertible()) {
        throw core::Failure(core::failure::SingularMatrix, Singular);
    }
    return MatrixObject(Eigen::MatrixXd(columnScale.cwiseInverse().asDiagonal() * lu.inverse() *
                                        rowScale.cwiseInverse().asDiagonal()));
}

MatrixObject MatrixObject::multiply(const MatrixObject& other) const {
    if (columns() != other.rows()) {
        failShapes("product", *this, other);
    }
    return MatrixObject(Eigen::MatrixXd(cells_ * other.cells_));
}

MatrixObject MatrixObject::subtract(const MatrixObject& other) const {
    if (rows() != other.rows() || columns() != other.columns()) {
        failShapes("difference", *this, other);
    }
    return MatrixObject(Eigen::MatrixXd(cells_ - other.cells_));
}

MatrixObject MatrixObject::transpose() const {
    return MatrixObject(Eigen::MatrixXd(cells_.transpose()));
}

void MatrixObject::sortRows(int keyColumn) {
    if (rows() == 0) {
        return;
    }
    checkIndex(0, keyColumn);
    std::vector<int> order(static_cast<size_t>(rows()));
    std::iota(order.begin(), order.end(), 0);
    const auto key = cells_.col(keyColumn);
    // A value that is not a number sorts last, so that the order stays well defined.
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return key(a) < key(b) || (!std::isnan(key(a)) && std::isnan(key(b)));
    });
    Eigen::MatrixXd sorted(rows(), columns());
    for (int r = 0; r < rows(); ++r) {
        sorted.row(r) = cells_.row(order[static_cast<size_t>(r)]);
    }
    cells_ = std::move(sorted);
}

double MatrixObject::columnSum(int column) const {
    if (rows() == 0) {
        if (column < 0 || column >= columns()) {
            failIndex(0, column);
        }
        return 0.0;
    }
    checkIndex(0, column);
    return cells_.col(column).sum();
}

} // namespace varo::calibration
