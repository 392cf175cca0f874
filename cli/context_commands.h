#pragma once

/// @file
/// The commands of the group "context", and what they share.

#include <cli/command.h>

#include <QString>

namespace trv::cli {

Command contextListCommand();
Command contextDefaultCommand();
Command contextCreateCommand();
Command contextSetCommand();

/// The path of a file in a directory, as the commands print it.
QString pathIn(const QString& directory, const QString& file);

}  // namespace trv::cli
