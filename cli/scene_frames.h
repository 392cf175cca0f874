#pragma once

/// @file
/// The coordinate frames on a page: axis files, and the positions of machine contexts.

#include <cli/input_files.h>
#include <cli/text_output.h>

#include <QString>

#include <vector>

namespace trv::cli {

struct SceneFrame {
    /// The name of the file without its directory and its ending.
    QString label;
    /// The name of the file as it was given.
    QString path;
    /// "axis" or "context"
    const char* kind;
    AxisMatrix matrix;
};

/// Reads an axis file, or the axis file that a machine context names as its position. A frame with
/// a number that is not finite is a problem.
///
/// @param kind   FileKind::axis or FileKind::machineContext
/// @param frame  written if there is no problem
Problem readFrame(const QString& name, FileKind kind, SceneFrame& frame);

/// Adds the array "frames" to the current object.
void writeFrames(const std::vector<SceneFrame>& frames, JsonWriter& json);

}  // namespace trv::cli
