#include <trvfiles/axis/axis_file.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using trv::affineInverse;
using Matrix = trv::AxisMatrix;

namespace {

const Matrix identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Matrix scaled(double factor) {
    Matrix matrix = identity;
    matrix[0] = factor;
    return matrix;
}

void expectNoNegativeZero(const Matrix& matrix) {
    for (const double element : matrix)
        EXPECT_FALSE(element == 0 && std::signbit(element));
}

}  // namespace

TEST(AffineInverse, LeavesTheIdentityWithoutANegativeZero) {
    EXPECT_EQ(affineInverse(identity), identity);
    expectNoNegativeZero(affineInverse(identity));
}

TEST(AffineInverse, NegatesATranslation) {
    const Matrix inverse = affineInverse({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10, 0, -30, 1});
    EXPECT_EQ(inverse, (Matrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -10, 0, 30, 1}));
    expectNoNegativeZero(inverse);
}

TEST(AffineInverse, InvertsTheTranslationBeforeTheRotation) {
    EXPECT_EQ(affineInverse({0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1, 2, 3, 1}),
              (Matrix{0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, -2, -3, -1, 1}));
    EXPECT_EQ(affineInverse({2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0.5, 0, 2, 4, 10, 1}),
              (Matrix{0.5, 0, 0, 0, 0, 0.25, 0, 0, 0, 0, 2, 0, -1, -1, -20, 1}));
    EXPECT_EQ(affineInverse({1, 2, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 3, 4, 5, 1}),
              (Matrix{1, -2, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -3, 2, -5, 1}));
}

TEST(AffineInverse, InvertsABlockWithoutZeros) {
    // The determinant is -1; all cofactors are whole numbers.
    EXPECT_EQ(affineInverse({1, 2, 3, 0, 2, 4, 5, 0, 3, 5, 6, 0, 1, 1, 1, 1}),
              (Matrix{1, -3, 2, 0, -3, 3, -1, 0, 2, -1, 0, 0, 0, 1, -1, 1}));
    // Not symmetric, with determinant 1.
    EXPECT_EQ(affineInverse({1, 2, 3, 0, 0, 1, 4, 0, 5, 6, 0, 0, 0, 0, 0, 1}),
              (Matrix{-24, 18, 5, 0, 20, -15, -4, 0, -5, 4, 1, 0, 0, 0, 0, 1}));
}

TEST(AffineInverse, IgnoresTheFourthColumn) {
    EXPECT_EQ(affineInverse({1, 0, 0, 5, 0, 1, 0, 6, 0, 0, 1, 7, 1, 2, 3, 8}),
              (Matrix{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -1, -2, -3, 1}));
}

TEST(AffineInverse, GivesZerosForADeterminantBelowItsLimit) {
    EXPECT_EQ(affineInverse(Matrix{}), Matrix{});
    EXPECT_EQ(affineInverse({1, 2, 3, 0, 2, 4, 6, 0, 0, 0, 1, 0, 9, 9, 9, 1}), Matrix{});
    EXPECT_EQ(affineInverse(scaled(std::nextafter(1e-10, 0))), Matrix{});
    EXPECT_EQ(affineInverse(scaled(-std::nextafter(1e-10, 0))), Matrix{});
}

TEST(AffineInverse, InvertsADeterminantOfExactlyItsLimit) {
    EXPECT_DOUBLE_EQ(affineInverse(scaled(1e-10))[0], 1e10);
    EXPECT_DOUBLE_EQ(affineInverse(scaled(-1e-10))[0], -1e10);
    EXPECT_DOUBLE_EQ(affineInverse(scaled(1e-10))[5], 1);
    EXPECT_EQ(affineInverse(scaled(1e-10))[15], 1);
}

TEST(AffineInverse, TreatsANanAsNotSingular) {
    const Matrix inverse = affineInverse(scaled(std::numeric_limits<double>::quiet_NaN()));
    for (const std::size_t element : {0U, 1U, 2U, 4U, 5U, 6U, 8U, 9U, 10U, 12U, 13U, 14U})
        EXPECT_TRUE(std::isnan(inverse[element])) << element;
    for (const std::size_t element : {3U, 7U, 11U})
        EXPECT_EQ(inverse[element], 0) << element;
    EXPECT_EQ(inverse[15], 1);
}
