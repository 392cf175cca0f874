#pragma once

/// @file
/// What a subcommand is: how it is called, what it says about itself, what runs.

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>

#include <limits>
#include <ostream>
#include <vector>

namespace trv::cli {

/// What the process ends with.
enum ExitStatus : int {
    /// Done, or the answer is yes.
    done = 0,
    /// Done, and the answer is no: files differ, a file is broken.
    negative = 1,
    /// Not done: bad usage, a file that cannot be read or written.
    failed = 2
};

/// Where the texts go, in UTF-8: results to `out`, everything else to `err`.
struct Console {
    std::ostream& out;
    std::ostream& err;
};

/// One subcommand.
struct Command {
    static constexpr int anyNumber = std::numeric_limits<int>::max();

    /// The words behind "trvfiles", such as "assembly tree".
    QString name;
    /// The arguments behind the name as the help shows them.
    QString arguments;
    /// One line for the list of commands.
    QString summary;
    /// What the help adds to the summary: lines, each with its end.
    QString details;
    QList<QCommandLineOption> options;
    /// What a message calls one of the arguments.
    QString operand = QStringLiteral("file name");
    int fewestFiles = 1;
    int mostFiles = 1;
    /// Called with the options and as many arguments as are allowed.
    ExitStatus (*run)(const QCommandLineParser& call, const Console& console) = nullptr;
};

using CommandGroup = std::vector<Command>;

// One function a file of subcommands; dispatch.cpp lists them.
CommandGroup showCommand();
CommandGroup checkCommand();
CommandGroup assemblyCommands();
CommandGroup axisCommands();
CommandGroup contextCommands();
CommandGroup envCommands();

/// Says what is wrong with a call and where help is.
///
/// @param command  the words behind "trvfiles", none of them where no command was recognised
/// @param reason   a sentence
/// @return what the command is to end with
ExitStatus refuseCall(const Console& console, const QString& command, const QString& reason);

/// "--json", as every command that has it means it.
QCommandLineOption jsonOption();

}  // namespace trv::cli
