#pragma once

/// @file
/// The texts of the help, made from the table of commands.

#include <cli/command.h>

#include <QString>
#include <QStringList>

namespace trv::cli {

/// The list of the commands whose names start with these words.
QString overview(const CommandGroup& commands, const QStringList& words);

/// The help of one command.
QString explanation(const Command& command);

}  // namespace trv::cli
