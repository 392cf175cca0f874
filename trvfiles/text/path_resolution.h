#pragma once

/// @file
/// Which file a name in a directory means. There are two rules: what is read or written has a clean
/// path, and what is asked for has the path as it is spelled.
///
/// On POSIX all of it is text, and the file system is asked for nothing but the current directory:
/// Qt's own resolution takes the codec and the search paths that a host sets in Qt. On Windows,
/// where Qt does neither, Qt finds the drive, the share and the current directory.
///
/// Threads: any, as long as none of them changes the current directory.

#include <trvfiles/text/text_conversion.h>

#include <QString>

namespace trv {

/// Whether the path is the name of a resource that is compiled into the host, ":/x". It is absolute
/// and names no file.
bool isResource(const QString& path);

/// The path of a name with its directory in front of it, and "/" as separator on POSIX. An absolute
/// name is taken as it is. A relative or an empty directory is in the current one.
///
/// @return exact if everything is that the path consists of
HostPath absolutePath(const HostPath& directory, const HostPath& name);

/// The path for a read or a write: absolute, and clean ("sub/../f" is "f").
///
/// @return empty, which no file has, if the path is not exact, and for the names of the directory
///         itself: "", ".", "sub/.."
QString resolvedPath(const HostPath& directory, const HostPath& name);

}  // namespace trv
