#pragma once

/// @file
/// Scripts that complete calls of the command in a shell, made from the table of commands.

#include <cli/command.h>

#include <QString>

namespace trv::cli {

/// For bash: "eval" or a file in the directory of its completions.
QString bashCompletion(const CommandGroup& commands);

/// For zsh: a file "_trvfiles" in a directory of its "fpath".
QString zshCompletion(const CommandGroup& commands);

/// For fish: a file "trvfiles.fish" in its directory of completions.
QString fishCompletion(const CommandGroup& commands);

}  // namespace trv::cli
