#pragma once

/// @file
/// From the arguments of the process to one subcommand.

#include <cli/command.h>

#include <QStringList>

namespace trv::cli {

/// Runs the command that the arguments ask for, or explains what there is.
///
/// @param arguments  without the program's own name
/// @return what the process is to end with, provided that what was printed can be written
ExitStatus run(const QStringList& arguments, const Console& console);

}  // namespace trv::cli
