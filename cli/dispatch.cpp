#include <cli/dispatch.h>
#include <cli/text_output.h>
#include <trvfiles/version.h>

#include <QStringBuilder>

#include <algorithm>

namespace trv::cli {
namespace {

CommandGroup allCommands() {
    CommandGroup commands;
    for (const CommandGroup& group : {
             showCommand(),
             checkCommand(),
             assemblyCommands(),
             axisCommands(),
             contextCommands(),
             envCommands(),
         }) {
        commands.insert(commands.end(), group.begin(), group.end());
    }
    return commands;
}

void print(std::ostream& stream, const QString& text) {
    stream << qUtf8Printable(text);
}

bool asksForHelp(const QString& argument) {
    return argument == QLatin1String("--help") || argument == QLatin1String("-h");
}

bool asksForVersion(const QString& argument) {
    return argument == QLatin1String("--version") || argument == QLatin1String("-v");
}

// Whether the command's name starts with these words. Every name starts with no words.
bool startsWith(const Command& command, const QStringList& words) {
    return command.name.split(QLatin1Char(' ')).mid(0, words.size()) == words;
}

// Lines of two columns. The first column is as wide as its widest text.
QString table(const QList<QPair<QString, QString>>& lines) {
    int width = 0;
    for (const auto& line : lines)
        width = std::max(width, line.first.size());
    QString text;
    for (const auto& line : lines) {
        text += QLatin1String("  ") % line.first.leftJustified(width) % QLatin1String("  ") %
                line.second % QLatin1Char('\n');
    }
    return text;
}

// The commands whose names start with these words.
QString overview(const CommandGroup& commands, const QStringList& words) {
    QList<QPair<QString, QString>> lines;
    for (const Command& command : commands) {
        if (startsWith(command, words)) lines.append({command.name, command.summary});
    }
    QString usage = QStringLiteral("Usage: trvfiles ");
    for (const QString& word : words)
        usage += word % QLatin1Char(' ');
    usage += QStringLiteral("COMMAND [ARGUMENT...]\n\n");
    if (words.isEmpty()) {
        usage += QStringLiteral(
            "Shows, checks, compares and writes project files of a machining workstation.\n\n");
    }
    const QString closing = QStringLiteral(
        "\n'trvfiles COMMAND --help' explains a command.\n"
        "'trvfiles --version' prints the version.\n"
        "Exit status: 0 done, 1 a negative answer, 2 an error.\n");
    return usage % QLatin1String("Commands:\n") % table(lines) % closing;
}

QCommandLineOption helpOption() {
    return QCommandLineOption({QStringLiteral("h"), QStringLiteral("help")},
                              QStringLiteral("Show this help"));
}

QString explanation(const Command& command) {
    QList<QPair<QString, QString>> lines;
    for (const QCommandLineOption& option : command.options + QList({helpOption()})) {
        QStringList names;
        for (const QString& name : option.names())
            names += (name.size() == 1 ? QLatin1String("-") : QLatin1String("--")) % name;
        const QString value =
            option.valueName().isEmpty() ? QString() : QLatin1Char(' ') % option.valueName();
        lines.append({names.join(QLatin1String(", ")) % value, option.description()});
    }
    return QStringLiteral("Usage: trvfiles %1 %2\n\n%3.\n%4\nOptions:\n%5")
        .arg(command.name, command.arguments, command.summary, command.details, table(lines));
}

ExitStatus runCommand(const Command& command, const QStringList& arguments,
                      const Console& console) {
    QCommandLineParser parser;
    parser.addOptions(command.options);
    parser.addOption(helpOption());
    // The parser takes the first text as the name of the program.
    const bool understood = parser.parse(QStringList(command.name) + arguments);
    if (parser.isSet(QStringLiteral("help"))) {
        print(console.out, explanation(command));
        return done;
    }
    if (!understood) return refuseCall(console, command.name, parser.errorText());

    const QStringList operands = parser.positionalArguments();
    if (operands.size() < command.fewestFiles) {
        return refuseCall(console, command.name,
                          QStringLiteral("A %1 is missing.").arg(command.operand));
    }
    if (operands.size() > command.mostFiles) {
        return refuseCall(console, command.name,
                          QStringLiteral("'%1' is one %2 too many.")
                              .arg(operands.at(command.mostFiles), command.operand));
    }
    return command.run(parser, console);
}

}  // namespace

ExitStatus refuseCall(const Console& console, const QString& command, const QString& reason) {
    const QString program =
        command.isEmpty() ? QStringLiteral("trvfiles") : QStringLiteral("trvfiles ") % command;
    print(console.err, QStringLiteral("%1: %2\nTry '%1 --help'.\n").arg(program, shown(reason)));
    return failed;
}

QCommandLineOption jsonOption() {
    return QCommandLineOption(QStringLiteral("json"), QStringLiteral("Print JSON"));
}

ExitStatus run(const QStringList& arguments, const Console& console) {
    const CommandGroup commands = allCommands();
    QStringList words;
    for (const QString& argument : arguments) {
        if (asksForHelp(argument)) {
            print(console.out, overview(commands, words));
            return done;
        }
        if (words.isEmpty() && asksForVersion(argument)) {
            print(console.out, QStringLiteral("trvfiles %1\n").arg(QLatin1String(version_text())));
            return done;
        }
        const QString group = words.join(QLatin1Char(' '));
        if (argument.size() > 1 && argument.startsWith(QLatin1Char('-'))) {
            return refuseCall(console, group, QStringLiteral("Unknown option '%1'.").arg(argument));
        }
        words += argument;
        const auto command =
            std::find_if(commands.begin(), commands.end(),
                         [&](const Command& candidate) { return startsWith(candidate, words); });
        if (command == commands.end()) {
            return refuseCall(console, group,
                              QStringLiteral("There is no command '%1'.").arg(argument));
        }
        if (command->name == words.join(QLatin1Char(' '))) {
            return runCommand(*command, arguments.mid(words.size()), console);
        }
    }
    return refuseCall(console, words.join(QLatin1Char(' ')),
                      QStringLiteral("A command is missing."));
}

}  // namespace trv::cli
