#pragma once

/// @file
/// The subcommands of "assembly" that have a source of their own.

#include <cli/command.h>

namespace trv::cli {

Command assemblyTreeCommand();
Command assemblyListCommand();

}  // namespace trv::cli
