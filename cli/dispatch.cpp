#include <cli/command_table.h>
#include <cli/dispatch.h>
#include <cli/help_text.h>
#include <cli/suggestion.h>
#include <cli/text_output.h>
#include <trvfiles/version.h>

#include <QStringBuilder>

#include <algorithm>

namespace trv::cli {
namespace {

void print(std::ostream& stream, const QString& text) {
    stream << qUtf8Printable(text);
}

bool asksForHelp(const QString& argument) {
    return argument == QLatin1String("--help") || argument == QLatin1String("-h");
}

bool asksForVersion(const QString& argument) {
    return argument == QLatin1String("--version") || argument == QLatin1String("-v");
}

QString unknownOption(const QString& name, const QStringList& known) {
    return QStringLiteral("unknown option '%1'%2").arg(name, suggestionFor(name, known));
}

// Qt's sentence in the form of the command's own reasons: without the capital and the full stop.
QString asReason(QString sentence) {
    if (sentence.endsWith(QLatin1Char('.'))) sentence.chop(1);
    return sentence.left(1).toLower() % sentence.mid(1);
}

// Why the parser rejects a call.
QString mistakeOf(const Command& command, const QCommandLineParser& parser) {
    if (parser.unknownOptionNames().isEmpty()) return asReason(parser.errorText());
    QStringList known = typedNames(helpOption());
    for (const QCommandLineOption& option : command.options)
        known += typedNames(option);
    const QString name = parser.unknownOptionNames().constFirst();
    return unknownOption((name.size() == 1 ? QLatin1String("-") : QLatin1String("--")) % name,
                         known);
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
    if (!understood) return refuseCall(console, command.name, mistakeOf(command, parser));

    const QStringList operands = parser.positionalArguments();
    if (operands.size() < command.minFiles) {
        return refuseCall(console, command.name,
                          QStringLiteral("a %1 is missing").arg(command.operand));
    }
    if (operands.size() > command.maxFiles) {
        return refuseCall(console, command.name,
                          QStringLiteral("'%1' is one %2 too many")
                              .arg(operands.at(command.maxFiles), command.operand));
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

ExitStatus run(const QStringList& arguments, const Console& console) {
    const CommandGroup commands = allCommands();
    if (arguments.isEmpty()) {
        print(console.out, overview(commands, {}));
        return done;
    }
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
            QStringList known = {QStringLiteral("--help")};
            if (words.isEmpty()) known += QStringLiteral("--version");
            return refuseCall(console, group, unknownOption(argument, known));
        }
        const QStringList next = nextWords(commands, words);
        words += argument;
        const auto command =
            std::find_if(commands.begin(), commands.end(),
                         [&](const Command& candidate) { return startsWith(candidate, words); });
        if (command == commands.end()) {
            return refuseCall(console, group,
                              QStringLiteral("unknown command '%1'%2")
                                  .arg(argument, suggestionFor(argument, next)));
        }
        if (command->name == words.join(QLatin1Char(' '))) {
            return runCommand(*command, arguments.mid(words.size()), console);
        }
    }
    return refuseCall(console, words.join(QLatin1Char(' ')),
                      QStringLiteral("a command is missing"));
}

}  // namespace trv::cli
