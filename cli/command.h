#pragma once

/// @file
/// The description of a subcommand: its name, its help, its options and its function.

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>
#include <QStringList>

#include <limits>
#include <ostream>
#include <vector>

namespace trv::cli {

/// The exit status of the process.
enum ExitStatus : int {
    /// Done, and the answer is yes, if there is a question.
    done = 0,
    /// Done, and the answer is no: files differ, a file cannot be read.
    negative = 1,
    /// Not done: wrong arguments, a file that cannot be read or written.
    failed = 2
};

/// The streams for texts in UTF-8: results go to `out`, everything else to `err`.
struct Console {
    std::ostream& out;
    std::ostream& err;
    /// The columns of the terminal that the stream is connected to; 0 if it is none.
    int outColumns = 0;
    int errColumns = 0;
};

/// One subcommand.
struct Command {
    static constexpr int anyNumber = std::numeric_limits<int>::max();

    /// The words after "trvfiles", for example "assembly tree".
    QString name;
    /// The arguments after the name, as in the help; empty if there are none. A further call is on
    /// a line of its own, indented and with the name.
    QString arguments;
    /// One line for the list of commands.
    QString summary;
    /// The lines of the help after the summary, each with its line end. A line has at most 80
    /// columns.
    QString details;
    /// Calls for the help, each in a line of at most 78 columns. They work in the project directory
    /// of the sample.
    QStringList examples;
    QList<QCommandLineOption> options;
    /// The name of one argument in messages.
    QString operand = QStringLiteral("file name");
    int minFiles = 1;
    int maxFiles = 1;
    /// Called with an allowed number of arguments.
    ExitStatus (*run)(const QCommandLineParser& call, const Console& console) = nullptr;
};

using CommandGroup = std::vector<Command>;

// One function for each file of subcommands; command_table.cpp lists them.
CommandGroup showCommand();
CommandGroup checkCommand();
CommandGroup viewCommand();
CommandGroup assemblyCommands();
CommandGroup axisCommands();
CommandGroup contextCommands();
CommandGroup envCommands();
CommandGroup helpCommand();
CommandGroup completionCommand();
CommandGroup manualCommand();

/// Prints why a call is rejected, and the call that prints the help.
///
/// @param command  the words after "trvfiles"; empty if no command was recognised
/// @param reason   lower case and without a full stop, because it follows a colon
/// @return the exit status of the command
ExitStatus refuseCall(const Console& console, const QString& command, const QString& reason);

/// The option "--json", the same for every command.
QCommandLineOption jsonOption();

/// The option "--help", which every command has.
QCommandLineOption helpOption();

/// The names of an option as they are typed: "-h", "--help".
QStringList typedNames(const QCommandLineOption& option);

}  // namespace trv::cli
