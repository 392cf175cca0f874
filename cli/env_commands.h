#pragma once

/// @file
/// The commands of the group "env", one source each.

#include <cli/command.h>

namespace trv::cli {

Command envListCommand();
Command envExplainCommand();
Command envExpandCommand();
Command envFindCommand();
Command envMessagesCommand();
Command envCheckCommand();

}  // namespace trv::cli
