#include <cli/rotation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace trv::testing {
namespace {

// Three axes, by rows: the images of x, y and z.
struct Axes {
    double rows[3][3];

    operator cli::Orientation() const {  // NOLINT(google-explicit-constructor)
        return {rows[0], rows[1], rows[2]};
    }
};

constexpr double half = 0.5;
const double root = std::sqrt(3.0) / 2;
const Axes identity = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

std::string text(const Axes& axes) {
    const auto rotation = cli::rotationOf(axes);
    return rotation ? cli::rotationText(*rotation).toStdString() : "none";
}

std::string text(const Axes& from, const Axes& to) {
    const auto rotation = cli::rotationBetween(from, to);
    return rotation ? cli::rotationText(*rotation).toStdString() : "none";
}

TEST(Rotation, NamesAPrincipalAxis) {
    EXPECT_EQ(text({{{1, 0, 0}, {0, root, half}, {0, -half, root}}}), "30° about x");
    EXPECT_EQ(text({{{root, 0, -half}, {0, 1, 0}, {half, 0, root}}}), "30° about y");
    EXPECT_EQ(text({{{root, half, 0}, {-half, root, 0}, {0, 0, 1}}}), "30° about z");
}

TEST(Rotation, HasASignedAngle) {
    EXPECT_EQ(text({{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}}), "-90° about z");
    EXPECT_EQ(text({{{-half, -root, 0}, {root, -half, 0}, {0, 0, 1}}}), "-120° about z");
    EXPECT_EQ(text({{{-half, 0, -root}, {0, 1, 0}, {root, 0, -half}}}), "120° about y");
}

TEST(Rotation, PrintsAnotherAxisAsAVector) {
    // x becomes y, y becomes z, z becomes x.
    EXPECT_EQ(text({{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}}), "120° about 0.57735 0.57735 0.57735");
    EXPECT_EQ(text({{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}}), "-120° about 0.57735 0.57735 0.57735");
    // 90 degrees about (0.6, 0.8, 0).
    EXPECT_EQ(text({{{0.36, 0.48, -0.8}, {0.48, 0.64, 0.6}, {0.8, -0.6, 0}}}),
              "90° about 0.6 0.8 0");
}

TEST(Rotation, MayBeAHalfTurn) {
    EXPECT_EQ(text({{{1, 0, 0}, {0, -1, 0}, {0, 0, -1}}}), "180° about x");
    EXPECT_EQ(text({{{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}}}), "180° about y");
    EXPECT_EQ(text({{{-1, 0, 0}, {0, -1, 0}, {0, 0, 1}}}), "180° about z");
    EXPECT_EQ(text({{{-1, 1e-12, 0}, {-1e-12, -1, 0}, {0, 0, 1}}}), "180° about z");
    EXPECT_EQ(text({{{-1, -1e-12, 0}, {1e-12, -1, 0}, {0, 0, 1}}}), "180° about z");
    EXPECT_EQ(text({{{0, -1, 0}, {-1, 0, 0}, {0, 0, -1}}}), "180° about 0.707107 -0.707107 0");
}

TEST(Rotation, MayBeSmall) {
    EXPECT_EQ(text(identity), "0° about z");
    // 1e-6 radians.
    EXPECT_EQ(text({{{1, 1e-6, 0}, {-1e-6, 1, 0}, {0, 0, 1}}}), "0.000057° about z");
    EXPECT_EQ(text({{{1, -1e-6, 0}, {1e-6, 1, 0}, {0, 0, 1}}}), "-0.000057° about z");
}

TEST(Rotation, RequiresAxesOfLengthOneAtRightAngles) {
    EXPECT_EQ(text({{{2, 0, 0}, {0, 1, 0}, {0, 0, 1}}}), "none");
    EXPECT_EQ(text({{{1, 0, 0}, {0, 1, 0}, {0, 0, 0}}}), "none");
    EXPECT_EQ(text({{{1, 0, 0}, {0.6, 0.8, 0}, {0, 0, 1}}}), "none");
    EXPECT_EQ(text({{{1, 0, 0}, {0, 1.000004, 0}, {0, 0, 1}}}), "0° about z");
    EXPECT_EQ(text({{{1, 0, 0}, {0, 1.000006, 0}, {0, 0, 1}}}), "none");
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(text({{{1, 0, 0}, {0, 1, 0}, {0, notANumber, 1}}}), "none");
}

TEST(Rotation, RequiresRightHandedAxes) {
    EXPECT_EQ(text({{{1, 0, 0}, {0, 1, 0}, {0, 0, -1}}}), "none");
    EXPECT_EQ(text({{{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}}), "none");
}

TEST(Rotation, BetweenTwoOrientationsIsInTheFrameOfTheParent) {
    const Axes z30 = {{{root, half, 0}, {-half, root, 0}, {0, 0, 1}}};
    const Axes z90 = {{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}};
    EXPECT_EQ(text(z30, z90), "60° about z");
    EXPECT_EQ(text(z90, z30), "-60° about z");
    EXPECT_EQ(text(z90, z90), "0° about z");
    // z90, and then 90 degrees about the parent's x: the axes are z, -x and -y.
    EXPECT_EQ(text(z90, {{{0, 0, 1}, {-1, 0, 0}, {0, -1, 0}}}), "90° about x");
}

TEST(Rotation, BetweenTwoOrientationsRequiresBoth) {
    const Axes scaled = {{{2, 0, 0}, {0, 2, 0}, {0, 0, 2}}};
    EXPECT_EQ(text(identity, scaled), "none");
    EXPECT_EQ(text(scaled, identity), "none");
    EXPECT_EQ(text(scaled, scaled), "none");
}

}  // namespace
}  // namespace trv::testing
