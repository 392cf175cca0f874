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
    /// `target` of an entry that holds a context of its own name. The search goes no further there.
    static constexpr int context = -1;

    QString name;
    /// The place in the graph of the directory that the entry leads to, or `context`.
    int target;
};

/// A directory as it really is: a link to it is an entry of another directory, not a second one.
struct ContextDirectory {
    /// The path by which it has been listed.
    QString path;
    /// By name, ignoring case. Hidden ones are left out, and names that no path can hold: on POSIX
    /// those that are not UTF-8 and those with a "\".
    std::vector<ContextEntry> entries;
};

/// Lists each directory that can be entered from a directory, through links too, once.
///
/// REQUIRES: isOpenable() is true of the directory's path.
///
/// @param start  the first one of the result; its own path is the beginning of all others that no
///               link leads to
std::vector<ContextDirectory> listContextDirectories(const QDir& start);

/// The path of an entry, as QDir::cd() makes it.
QString entryPath(const QString& directory, const QString& name);

/// The path of the context of a directory's name.
QString contextPath(const QString& directory, const QString& name);

/// Whether a context exists. A directory is none.
bool isContext(const QString& path);

}  // namespace trv
