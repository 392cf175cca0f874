#pragma once

/// @file
/// The angle and the axis of a rotation.
///
/// Threads: any.

#include <QString>

#include <optional>

namespace trv::cli {

/// The three axes of a component in its parent's frame. Points to vectors of three numbers that
/// live elsewhere.
struct Orientation {
    const double* vec1;
    const double* vec2;
    const double* vec3;
};

struct Rotation {
    /// In (-180, 180]. A positive angle turns counterclockwise for a viewer to whom the axis
    /// points.
    double degrees = 0;
    /// A unit vector. Its first component that is not 0 is positive.
    double axis[3] = {0, 0, 1};
};

/// The rotation that turns the axes of the parent to those of a component.
///
/// @return nothing if the axes do not have length 1, are not at right angles, or are left-handed;
///         the tolerance of a scalar product is 1e-5
std::optional<Rotation> rotationOf(const Orientation& orientation);

/// The rotation that turns the axes of one component to those of another one. Its axis is in the
/// frame of the parent.
///
/// @return nothing if one of the orientations is not a rotation, as for rotationOf()
std::optional<Rotation> rotationBetween(const Orientation& from, const Orientation& to);

/// "15° about z", "-90° about 0.6 0.8 0". The numbers are rounded to six decimals.
QString rotationText(const Rotation& rotation);

}  // namespace trv::cli
