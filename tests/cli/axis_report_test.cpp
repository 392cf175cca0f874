#include <cli/axis_report.h>

#include <QJsonDocument>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace trv::cli {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

constexpr AxisMatrix identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr AxisMatrix turned = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1};
constexpr AxisMatrix mirrored = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1};
constexpr AxisMatrix scaled = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1};
constexpr AxisMatrix flat = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 5, 6, 7, 1};

AxisMatrix changed(AxisMatrix matrix, std::size_t element, double value) {
    matrix[element] = value;
    return matrix;
}

TEST(AxisTraits, KnowTheIdentity) {
    EXPECT_TRUE(traitsOf(identity).identity);
    EXPECT_TRUE(traitsOf(changed(identity, 12, 1e-7)).identity);
    EXPECT_FALSE(traitsOf(changed(identity, 12, 2e-6)).identity);
    EXPECT_FALSE(traitsOf(changed(identity, 15, 0)).identity);
    EXPECT_FALSE(traitsOf(changed(identity, 3, notANumber)).identity);
}

TEST(AxisTraits, KnowOrthonormalAxes) {
    EXPECT_TRUE(traitsOf(turned).orthonormal);
    EXPECT_TRUE(traitsOf(mirrored).orthonormal);
    EXPECT_FALSE(traitsOf(scaled).orthonormal);
    EXPECT_FALSE(traitsOf(changed(identity, 1, 0.001)).orthonormal);
    EXPECT_FALSE(traitsOf(changed(identity, 1, notANumber)).orthonormal);
}

TEST(AxisTraits, TakeRoundedRotationsForOrthonormal) {
    // Every element has the largest deviation from a rotation that six decimals allow.
    for (int degrees = 0; degrees < 360; ++degrees) {
        const double angle = degrees * 3.14159265358979 / 180;
        const double cosine = std::round(std::cos(angle) * 1e6) / 1e6;
        const double sine = std::round(std::sin(angle) * 1e6) / 1e6;
        const AxisMatrix lines = {cosine, -sine, 0, 0, sine, cosine, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        EXPECT_TRUE(traitsOf(affineInverse(lines)).orthonormal) << degrees;
    }
}

TEST(AxisTraits, KnowAMirrorByItsDeterminant) {
    EXPECT_TRUE(traitsOf(mirrored).mirror);
    EXPECT_FALSE(traitsOf(turned).mirror);
    EXPECT_FALSE(traitsOf(flat).mirror);
    EXPECT_TRUE(traitsOf({0, 3, 0, 0, 2, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}).mirror);
    EXPECT_FALSE(traitsOf({0, 3, 0, 0, 0, 0, 2, 0, 1, 0, 0, 0, 0, 0, 0, 1}).mirror);
    EXPECT_FALSE(traitsOf(changed(mirrored, 0, notANumber)).mirror);
}

TEST(AxisTraits, KnowSingularAxes) {
    EXPECT_TRUE(traitsOf(flat).singular);
    EXPECT_EQ(traitsOf(flat).inverse, AxisMatrix{});
    EXPECT_FALSE(traitsOf(identity).singular);
    EXPECT_FALSE(traitsOf(changed(identity, 0, notANumber)).singular);
}

TEST(AxisText, ShowsMatrixInverseTraitsAndTags) {
    EXPECT_EQ(axisText(QStringLiteral("a.ref"), {turned, {3, 0, 7}}).toStdString(),
              "Axis file a.ref\n"
              "\n"
              "Matrix\n"
              "  x axis           0.000000      1.000000      0.000000      0.000000\n"
              "  y axis          -1.000000      0.000000      0.000000      0.000000\n"
              "  z axis           0.000000      0.000000      1.000000      0.000000\n"
              "  translation     10.000000     20.000000     30.000000      1.000000\n"
              "\n"
              "Inverse\n"
              "  x axis           0.000000     -1.000000      0.000000      0.000000\n"
              "  y axis           1.000000      0.000000      0.000000      0.000000\n"
              "  z axis           0.000000      0.000000      1.000000      0.000000\n"
              "  translation    -20.000000     10.000000    -30.000000      1.000000\n"
              "\n"
              "Identity     no\n"
              "Orthonormal  yes\n"
              "Mirror       no\n"
              "Singular     no\n"
              "Tags         3 0 7\n");
}

TEST(AxisText, ShowsThatThereIsNoInverse) {
    const std::string text = axisText(QStringLiteral("a\nb"), {flat, {-1, 5, -1}}).toStdString();
    EXPECT_EQ(text,
              "Axis file a\\x0ab\n"
              "\n"
              "Matrix\n"
              "  x axis           1.000000      0.000000      0.000000      0.000000\n"
              "  y axis           0.000000      1.000000      0.000000      0.000000\n"
              "  z axis           0.000000      0.000000      0.000000      0.000000\n"
              "  translation      5.000000      6.000000      7.000000      1.000000\n"
              "\n"
              "Inverse: none\n"
              "\n"
              "Identity     no\n"
              "Orthonormal  no\n"
              "Mirror       no\n"
              "Singular     yes\n"
              "Tags         - 5 -\n");
}

TEST(AxisText, ShowsNoZeroWithASign) {
    const AxisMatrix tiny = changed(changed(identity, 12, -0.0), 13, -4e-7);
    EXPECT_NE(axisText(QStringLiteral("a"), {tiny, {-1, -1, -1}})
                  .indexOf(QStringLiteral(
                      "  translation      0.000000      0.000000      0.000000      1.000000\n")),
              -1);
}

TEST(AxisText, KeepsLongNumbersApart) {
    const AxisMatrix far = changed(changed(identity, 12, 1e14), 13, -infinity);
    EXPECT_NE(axisText(QStringLiteral("a"), {far, {-1, -1, -1}})
                  .indexOf(QStringLiteral("  translation 100000000000000.000000          -inf")),
              -1);
}

TEST(AxisJson, HasEveryKey) {
    const QByteArray json = QJsonDocument(axisJson(QStringLiteral("a\nb"), {turned, {3, 0, -1}}))
                                .toJson(QJsonDocument::Compact);
    EXPECT_EQ(json.toStdString(),
              "{\"file\":\"a\\nb\",\"identity\":false,"
              "\"inverse\":[0,-1,0,0,1,0,0,0,0,0,1,0,-20,10,-30,1],\"kind\":\"axis\","
              "\"matrix\":[0,1,0,0,-1,0,0,0,0,0,1,0,10,20,30,1],\"mirror\":false,"
              "\"orthonormal\":true,\"singular\":false,\"tags\":[3,0,null]}");
}

TEST(AxisJson, HasANullInverseForASingularMatrix) {
    const QJsonObject json = axisJson(QStringLiteral("a"), {flat, {-1, -1, -1}});
    EXPECT_TRUE(json.value(QStringLiteral("inverse")).isNull());
    EXPECT_TRUE(json.value(QStringLiteral("singular")).toBool());
}

TEST(AxisSummary, NamesTraitsAndTags) {
    const auto summary = [](const AxisMatrix& matrix, std::array<int, 3> tags = {-1, -1, -1}) {
        return axisSummary({matrix, tags}).toStdString();
    };
    EXPECT_EQ(summary(identity), "axis, identity");
    EXPECT_EQ(summary(turned, {3, 0, 7}), "axis, orthonormal, tags 3 0 7");
    EXPECT_EQ(summary(mirrored, {5, -1, -1}), "axis, orthonormal, mirror, tags 5 - -");
    EXPECT_EQ(summary(scaled), "axis, not orthonormal");
    EXPECT_EQ(summary(flat), "axis, singular");
}

}  // namespace
}  // namespace trv::cli
