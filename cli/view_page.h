#pragma once

/// @file
/// The page of `trvfiles view`: one document with everything in it.

#include <cli/page_parts.h>
#include <cli/scene.h>
#include <cli/scene_files.h>

#include <ostream>
#include <string_view>

namespace trv::cli {

/// Whether a file that begins with this text is a page of this command, of any version.
///
/// @param beginning  of at least 256 bytes if the file has as many
bool isPage(std::string_view beginning);

/// Writes the data of a page as a JSON object on one line; docs/command.md lists the keys.
///
/// @param files  gets the geometry files of the assemblies
void writeSceneData(const Scene& scene, SceneFiles& files, std::ostream& out);

/// Writes a page. Its policy allows the scripts and the styles of `parts` by their hashes, and
/// nothing from a network.
///
/// @param files  gets the geometry files of the assemblies
/// @throws std::runtime_error if a geometry file cannot be read any more
void writePage(const Scene& scene, const PageParts& parts, SceneFiles& files, std::ostream& out);

}  // namespace trv::cli
