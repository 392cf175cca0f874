#pragma once

/// @file
/// Which file a name in a directory means. There are two rules: a read or a write has a clean path,
/// a question about a name has the path as it is spelled.
///
/// On POSIX paths are resolved as text, and the file system is asked only for the current
/// directory: Qt's own resolution applies the codec and the search paths that a host sets in Qt. On
/// Windows Qt applies neither, so there Qt finds the drive, the share and the current directory.
///
/// Threads: any, as long as none of them changes the current directory.

#include <trvfiles/text/text_conversion.h>

#include <QString>

namespace trv {

/// Whether the path is the name of a resource that is compiled into the host, ":/x". Such a name is
/// absolute, and no file has it.
bool isResource(const QString& path);

/// The path of a name with its directory in front of it, and "/" as separator on POSIX. An absolute
/// name is taken as it is. A relative or an empty directory is in the current one.
///
/// @return exact if the name and the directories before it are
HostPath absolutePath(const HostPath& directory, const HostPath& name);

/// The path for a read or a write: absolute, and clean ("sub/../f" is "f").
///
/// @return empty, which no file has, if the path is not exact, and for the names of the directory
///         itself: "", ".", "sub/.."
QString resolvedPath(const HostPath& directory, const HostPath& name);

}  // namespace trv
