#include <cli/rotation.h>
#include <cli/text_output.h>

#include <algorithm>
#include <cmath>

namespace trv::cli {
namespace {

constexpr double unitX[] = {1, 0, 0};
constexpr double unitY[] = {0, 1, 0};
constexpr double unitZ[] = {0, 0, 1};
// Numbers within it are printed as 0.
constexpr double halfOfLastDecimal = 5e-7;

double product(const double one[3], const double other[3]) {
    return one[0] * other[0] + one[1] * other[1] + one[2] * other[2];
}

// Rounding to six decimals changes the product of two unit vectors by less than 2e-6.
bool isRotation(const Orientation& orientation) {
    constexpr double tolerance = 1e-5;
    const double* vectors[] = {orientation.vec1, orientation.vec2, orientation.vec3};
    for (int one = 0; one < 3; ++one) {
        for (int other = one; other < 3; ++other) {
            const double expected = one == other ? 1 : 0;
            // Written so that a NaN fails.
            if (!(std::fabs(product(vectors[one], vectors[other]) - expected) <= tolerance)) {
                return false;
            }
        }
    }
    const double* a = orientation.vec1;
    const double* b = orientation.vec2;
    const double cross[] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                            a[0] * b[1] - a[1] * b[0]};
    return product(cross, orientation.vec3) > 0;
}

// A rotation as a quaternion, which has the half angle: it is exact for small angles and for those
// near 180 degrees, unlike the trace of the matrix.
struct Quaternion {
    double scalar;
    double vector[3];
};

// Shepperd's method: computes the largest of the four numbers first, because the others are
// divided by it.
Quaternion quaternionOf(const double m[3][3]) {
    const double trace = m[0][0] + m[1][1] + m[2][2];
    const int largest = m[0][0] >= std::max(m[1][1], m[2][2]) ? 0 : m[1][1] >= m[2][2] ? 1 : 2;
    if (trace >= m[largest][largest]) {
        const double scalar = std::sqrt(1 + trace) / 2;
        const double divisor = 4 * scalar;
        return {scalar,
                {(m[2][1] - m[1][2]) / divisor, (m[0][2] - m[2][0]) / divisor,
                 (m[1][0] - m[0][1]) / divisor}};
    }
    const int i = largest;
    const int j = (i + 1) % 3;
    const int k = (i + 2) % 3;
    Quaternion result = {};
    result.vector[i] = std::sqrt(1 + m[i][i] - m[j][j] - m[k][k]) / 2;
    const double divisor = 4 * result.vector[i];
    result.vector[j] = (m[j][i] + m[i][j]) / divisor;
    result.vector[k] = (m[k][i] + m[i][k]) / divisor;
    result.scalar = (m[k][j] - m[j][k]) / divisor;
    return result;
}

bool isNegative(const double axis[3]) {
    const double* first =
        std::find_if(axis, axis + 3, [](double v) { return std::fabs(v) > halfOfLastDecimal; });
    return first != axis + 3 && *first < 0;
}

Rotation rotationOf(const Quaternion& quaternion) {
    constexpr double degreesPerRadian = 57.29577951308232;
    Rotation rotation;
    const double length = std::sqrt(product(quaternion.vector, quaternion.vector));
    if (length == 0) return rotation;
    rotation.degrees = 2 * std::atan2(length, quaternion.scalar) * degreesPerRadian;
    for (int i = 0; i < 3; ++i)
        rotation.axis[i] = quaternion.vector[i] / length;
    if (isNegative(rotation.axis)) {
        for (double& component : rotation.axis)
            component = -component;
        rotation.degrees = -rotation.degrees;
    }
    // The angle of the quaternion is in [-360, 360].
    if (rotation.degrees > 180 + halfOfLastDecimal) rotation.degrees -= 360;
    if (rotation.degrees <= -180 + halfOfLastDecimal) rotation.degrees += 360;
    return rotation;
}

bool isPrintedLike(const double axis[3], const double other[3]) {
    return std::equal(axis, axis + 3, other, [](double one, double two) {
        return std::fabs(one - two) <= halfOfLastDecimal;
    });
}

QString axisText(const double axis[3]) {
    if (isPrintedLike(axis, unitX)) return QStringLiteral("x");
    if (isPrintedLike(axis, unitY)) return QStringLiteral("y");
    if (isPrintedLike(axis, unitZ)) return QStringLiteral("z");
    return roundedVectorText(axis);
}

}  // namespace

std::optional<Rotation> rotationOf(const Orientation& orientation) {
    return rotationBetween({unitX, unitY, unitZ}, orientation);
}

std::optional<Rotation> rotationBetween(const Orientation& from, const Orientation& to) {
    if (!isRotation(from) || !isRotation(to)) return std::nullopt;
    double matrix[3][3];
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            matrix[row][column] = to.vec1[row] * from.vec1[column] +
                                  to.vec2[row] * from.vec2[column] +
                                  to.vec3[row] * from.vec3[column];
        }
    }
    return rotationOf(quaternionOf(matrix));
}

QString rotationText(const Rotation& rotation) {
    return QStringLiteral("%1° about %2")
        .arg(roundedText(rotation.degrees), axisText(rotation.axis));
}

}  // namespace trv::cli
