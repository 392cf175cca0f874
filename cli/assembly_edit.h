#pragma once

/// @file
/// The command "assembly edit".

#include <cli/command.h>

namespace trv::cli {

Command assemblyEditCommand();

}  // namespace trv::cli
