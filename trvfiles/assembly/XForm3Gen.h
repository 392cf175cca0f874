#pragma once

/// @file
/// Placements: 4x4 matrices for row vectors.

namespace Math {

/// A placement: sixteen numbers, a 4x4 matrix stored row by row and applied to row vectors.
///
/// Rows 0, 1 and 2 are the images of the x, y and z axes with 0 in the fourth column; row 3 is the
/// translation, in the project's length unit, with 1 in the fourth column. A default-constructed
/// placement is the identity. Nothing is normalised or checked.
///
/// Threads: a plain value; const operations may run at once.
template <class T>
struct XForm3Gen {
    /// The entry in row `row` and column `column`. REQUIRES: both are 0 to 3.
    T& operator()(int row, int column) { return entries[4 * row + column]; }
    const T& operator()(int row, int column) const { return entries[4 * row + column]; }

    /// The sixteen entries, row by row; valid as long as the placement lives.
    T* data() { return entries; }
    const T* data() const { return entries; }

    /// The placement that applies this one first and `parent` second, so that
    /// `local * parent` is child-to-world. A full product: the fourth columns are multiplied as
    /// well.
    XForm3Gen operator*(const XForm3Gen& parent) const {
        XForm3Gen product;
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 4; ++column) {
                T sum = (*this)(row, 0) * parent(0, column);
                for (int k = 1; k < 4; ++k)
                    sum += (*this)(row, k) * parent(k, column);
                product(row, column) = sum;
            }
        }
        return product;
    }

private:
    T entries[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
};

}  // namespace Math
