#pragma once

/// @file
/// Finds and runs the subcommand for the arguments of the process.

#include <cli/command.h>

#include <QStringList>

namespace trv::cli {

/// Runs the command that the arguments name, or prints the help.
///
/// @param arguments  without the name of the program
/// @return the exit status of the process, if the output can be written
ExitStatus run(const QStringList& arguments, const Console& console);

}  // namespace trv::cli
