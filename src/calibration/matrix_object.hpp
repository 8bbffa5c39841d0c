// The dense matrix on which all fitting runs.
//
// A `MatrixObject` holds rows by columns of 64-bit floats with zero-based indices. A new
// object is 0 by 0 until `resize`. Operations that make a matrix (`invert`, `multiply`,
// `subtract`, `transpose`, `clone`) return a new object and leave their operands alone;
// `resize` and `sortRows` change the object itself. Objects are moved, never copied by
// accident: `clone` is the one way to get an independent copy.
//
// Failures are `core::Failure`s: an index out of range or operands of the wrong shapes are
// failure 9 (an array bound overrun) with a description of the shapes, and inverting a
// singular matrix is failure 1306, "Matrix is singular and cannot be inverted."
#pragma once

#include <Eigen/Core>

namespace varo::calibration {

class MatrixObject {
public:
    MatrixObject() = default;
    MatrixObject(int rows, int columns);
    MatrixObject(MatrixObject&&) noexcept = default;
    MatrixObject& operator=(MatrixObject&&) noexcept = default;
    MatrixObject(const MatrixObject&) = delete;
    MatrixObject& operator=(const MatrixObject&) = delete;

    int rows() const { return static_cast<int>(cells_.rows()); }
    int columns() const { return static_cast<int>(cells_.cols()); }

    double getValue(int row, int column) const {
        checkIndex(row, column);
        return cells_(row, column);
    }
    void setValue(int row, int column, double value) {
        checkIndex(row, column);
        cells_(row, column) = value;
    }

    // Sets the shape. Cells inside both the old and the new shape keep their values; new
    // cells are 0.
    void resize(int rows, int columns);
    MatrixObject clone() const;

    // The inverse; a singular (or non-square) matrix fails with 1306.
    MatrixObject invert() const;
    // this times other.
    MatrixObject multiply(const MatrixObject& other) const;
    // this minus other.
    MatrixObject subtract(const MatrixObject& other) const;
    MatrixObject transpose() const;
    // Sorts the rows in place, ascending by the key column; whole rows move and rows with
    // equal keys keep their order.
    void sortRows(int keyColumn);
    double columnSum(int column) const;

    // The storage, for the solvers' inner loops (column-major).
    const Eigen::MatrixXd& cells() const { return cells_; }
    Eigen::MatrixXd& cells() { return cells_; }

private:
    explicit MatrixObject(Eigen::MatrixXd cells) : cells_(std::move(cells)) {}
    void checkIndex(int row, int column) const {
        if (row < 0 || column < 0 || row >= rows() || column >= columns()) {
            failIndex(row, column);
        }
    }
    [[noreturn]] void failIndex(int row, int column) const;

    Eigen::MatrixXd cells_;
};

} // namespace varo::calibration
