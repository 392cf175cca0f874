#pragma once

/// @file
/// The machine context files of directories, whatever their names are before ".mctx". Their paths
/// have the separators of the system.

#include <QString>
#include <QStringList>

namespace trv::cli {

/// The paths of the context files in a directory, by name.
QStringList contextsIn(const QString& directory);

/// The paths of the context files in a directory and below it. Those of a directory come before
/// those of its subdirectories, each by name. Subdirectories whose names begin with a dot are
/// ignored. A directory to which several links lead is searched once.
QStringList contextsBelow(const QString& directory);

}  // namespace trv::cli
