#include <cli/command_table.h>
#include <cli/completion.h>
#include <cli/suggestion.h>

namespace trv::cli {
namespace {

struct Shell {
    QString name;
    QString (*script)(const CommandGroup& commands);
};

ExitStatus completion(const QCommandLineParser& call, const Console& console) {
    const Shell shells[] = {{QStringLiteral("bash"), bashCompletion},
                            {QStringLiteral("zsh"), zshCompletion},
                            {QStringLiteral("fish"), fishCompletion}};
    const QString name = call.positionalArguments().at(0);
    QStringList known;
    for (const Shell& shell : shells) {
        known += shell.name;
        if (name != shell.name) continue;
        console.out << qUtf8Printable(shell.script(allCommands()));
        return done;
    }
    return refuseCall(console, QStringLiteral("completion"),
                      QStringLiteral("unknown shell '%1'%2").arg(name, suggestionFor(name, known)));
}

}  // namespace

CommandGroup completionCommand() {
    Command command;
    command.name = QStringLiteral("completion");
    command.arguments = QStringLiteral("bash | zsh | fish");
    command.summary = QStringLiteral("Print a script that completes calls in a shell");
    command.details = QStringLiteral(
        "For bash: add 'eval \"$(trvfiles completion bash)\"' to ~/.bashrc. For zsh: write\n"
        "it to a file _trvfiles in a directory of fpath. For fish: write it to\n"
        "~/.config/fish/completions/trvfiles.fish.\n");
    command.examples += QStringLiteral("trvfiles completion bash");
    command.operand = QStringLiteral("shell");
    command.run = completion;
    return {command};
}

}  // namespace trv::cli
