#include <cli/command_table.h>

namespace trv::cli {

CommandGroup allCommands() {
    CommandGroup commands;
    for (const CommandGroup& group : {
             showCommand(),
             checkCommand(),
             viewCommand(),
             assemblyCommands(),
             axisCommands(),
             contextCommands(),
             envCommands(),
             helpCommand(),
             completionCommand(),
             manualCommand(),
         }) {
        commands.insert(commands.end(), group.begin(), group.end());
    }
    return commands;
}

QStringList wordsOf(const Command& command) {
    return command.name.split(QLatin1Char(' '));
}

bool startsWith(const Command& command, const QStringList& words) {
    return wordsOf(command).mid(0, words.size()) == words;
}

QStringList nextWords(const CommandGroup& commands, const QStringList& words) {
    QStringList next;
    for (const Command& command : commands) {
        if (startsWith(command, words)) next += wordsOf(command).mid(words.size(), 1);
    }
    next.removeDuplicates();
    return next;
}

QCommandLineOption jsonOption() {
    return QCommandLineOption(QStringLiteral("json"), QStringLiteral("Print JSON"));
}

QCommandLineOption helpOption() {
    return QCommandLineOption({QStringLiteral("h"), QStringLiteral("help")},
                              QStringLiteral("Show this help"));
}

QStringList typedNames(const QCommandLineOption& option) {
    QStringList names;
    for (const QString& name : option.names())
        names += (name.size() == 1 ? QLatin1String("-") : QLatin1String("--")) + name;
    return names;
}

}  // namespace trv::cli
