#include <cli/command_table.h>
#include <cli/help_text.h>
#include <cli/suggestion.h>

#include <QStringBuilder>

#include <algorithm>

namespace trv::cli {
namespace {

ExitStatus help(const QCommandLineParser& call, const Console& console) {
    const CommandGroup commands = allCommands();
    const QStringList words = call.positionalArguments();
    for (int count = 1; count <= words.size(); ++count) {
        const QStringList known = nextWords(commands, words.mid(0, count - 1));
        const QString& word = words.at(count - 1);
        if (known.contains(word)) continue;
        return refuseCall(
            console, QStringLiteral("help"),
            QStringLiteral("unknown command '%1'%2").arg(word, suggestionFor(word, known)));
    }
    const QString name = words.join(QLatin1Char(' '));
    const auto command =
        std::find_if(commands.begin(), commands.end(),
                     [&](const Command& candidate) { return candidate.name == name; });
    const QString text =
        command == commands.end() ? overview(commands, words) : explanation(*command);
    console.out << qUtf8Printable(text);
    return done;
}

}  // namespace

CommandGroup helpCommand() {
    Command command;
    command.name = QStringLiteral("help");
    command.arguments = QStringLiteral("[COMMAND]");
    command.summary = QStringLiteral("Explain a command");
    command.details = QStringLiteral("Without a command it lists all of them.\n");
    command.examples += QStringLiteral("trvfiles help assembly diff");
    command.operand = QStringLiteral("command");
    command.minFiles = 0;
    command.maxFiles = Command::anyNumber;
    command.run = help;
    return {command};
}

}  // namespace trv::cli
