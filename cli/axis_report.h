#pragma once

/// @file
/// What the commands print about a placement.

#include <cli/input_files.h>
#include <trvfiles/axis/axis_file.h>

#include <QJsonObject>
#include <QString>

namespace trv::cli {

struct AxisTraits {
    /// No element differs from the identity's by more than 1e-6, and all are numbers.
    bool identity = false;
    /// The axes have length 1 and are at right angles, within the precision of six decimals.
    bool orthonormal = false;
    /// The axes form a left-handed system: the determinant of the block is below 0.
    bool mirror = false;
    /// The axes do not span space: there is no inverse.
    bool singular = false;
    /// Sixteen zeros if the placement is singular.
    AxisMatrix inverse = {};
};

AxisTraits traitsOf(const AxisMatrix& matrix);

/// The placement, its inverse and its traits: several lines. The first one names the file, unless
/// the name is empty.
QString axisText(const QString& name, const AxisFile& axis);

/// The same as JSON; docs/command.md lists the keys.
QJsonObject axisJson(const QString& name, const AxisFile& axis);

/// A few words: "axis, identity" or "axis, orthonormal, mirror, tags 3 0 7".
QString axisSummary(const AxisFile& axis);

}  // namespace trv::cli
