#pragma once

/// @file
/// The files that the arguments of a command mean: a file is itself, a directory is what is in it.

#include <QString>
#include <QStringList>

#include <vector>

namespace trv::cli {

struct FoundFile {
    /// As given, or the name of the directory as given and the path in it.
    QString name;
    /// Whether the argument is a directory: then the file may be none of the project.
    bool isFromDirectory = false;
    /// Why a directory cannot be listed; then the name is that of the directory.
    QString listingError = {};
};

/// Whether an argument is a directory.
bool isDirectory(const QString& name);

/// The files of all arguments, those of a directory in the order of their names. Hidden files and
/// directories are left out, and so is everything but regular files and links to them. Links to
/// directories are not followed, so that no directory is searched twice.
///
/// @param isRecursive  whether directories below are searched as well
std::vector<FoundFile> findFiles(const QStringList& arguments, bool isRecursive);

}  // namespace trv::cli
