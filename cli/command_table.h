#pragma once

/// @file
/// All subcommands.

#include <cli/command.h>

#include <QString>
#include <QStringList>

namespace trv::cli {

/// In the order of the help.
CommandGroup allCommands();

/// The words of a command's name.
QStringList wordsOf(const Command& command);

/// Whether a command's name starts with these words. Every name starts with no words.
bool startsWith(const Command& command, const QStringList& words);

/// The words that may follow these ones in the name of a command, each once.
QStringList nextWords(const CommandGroup& commands, const QStringList& words);

}  // namespace trv::cli
