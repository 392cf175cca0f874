#pragma once

/// @file
/// The commands of the group "context", and what they share.

#include <cli/command.h>
#include <cli/input_files.h>

#include <QString>

namespace trv::cli {

Command contextListCommand();
Command contextDefaultCommand();
Command contextCreateCommand();
Command contextGetCommand();
Command contextSetCommand();

/// Reads a file that has to be a machine context.
Problem readAsContext(const QString& name, ContextFile& context);

/// The path of a file in a directory, as the commands print it.
QString pathIn(const QString& directory, const QString& file);

}  // namespace trv::cli
