#pragma once

/// @file
/// What a page shows: one assembly, or two that are compared, or none; and coordinate frames.

#include <cli/command.h>
#include <cli/scene_frames.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <QString>
#include <QStringList>

#include <vector>

namespace trv::cli {

struct SceneAssembly {
    /// Of the file, as it was given.
    QString name;
    CTrvAssemblyData data;
};

struct Scene {
    /// The name of the first file.
    QString title;
    /// None, one, or two that are compared: the old one and the new one.
    std::vector<SceneAssembly> assemblies;
    std::vector<SceneFrame> frames;
};

/// Reads the files of a call of "view". Every file that cannot be read is reported, and a wrong
/// number of assemblies is rejected.
///
/// @param isComparison  whether there have to be two assemblies; else there is at most one
/// @return `done` if the whole scene is read
ExitStatus readScene(const QStringList& names, bool isComparison, const Console& console,
                     Scene& scene);

}  // namespace trv::cli
