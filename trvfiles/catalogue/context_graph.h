#pragma once

/// @file
/// The directories below one directory, and which of their entries are machine contexts.
///
/// Threads: any; a graph is not shared.

#include <QDir>
#include <QString>

#include <vector>

namespace trv {

/// An entry of a directory that is a directory or a link to one.
struct ContextEntry {
    /// `target` of an entry that contains a context with its own name. The search does not enter
    /// it.
    static constexpr int context = -1;

    QString name;
    /// The place in the graph of the directory that the entry leads to, or `context`.
    int target;
};

/// A real directory. A link to it is an entry of another directory, not a second ContextDirectory.
struct ContextDirectory {
    /// The path by which it has been listed.
    QString path;
    /// Sorted by name, ignoring case. Hidden ones are left out, and so are names that no path can
    /// hold: on POSIX those that are not UTF-8 and those with a "\".
    std::vector<ContextEntry> entries;
};

/// Lists each directory that can be entered from a directory, through links too, once.
///
/// REQUIRES: isOpenable() is true of the directory's path.
///
/// @param start  the first directory of the result. The paths of all directories that are reached
///               without a link begin with its path.
std::vector<ContextDirectory> listContextDirectories(const QDir& start);

/// The path of an entry, as QDir::cd() makes it.
QString entryPath(const QString& directory, const QString& name);

/// The path of the context of a directory's name.
QString contextPath(const QString& directory, const QString& name);

/// Whether a context exists. A directory is not a context.
bool isContext(const QString& path);

}  // namespace trv
