#include <cli/command_table.h>
#include <cli/completion.h>

#include <QStringBuilder>

namespace trv::cli {
namespace {

// What an operand or the value of an option is, as the words of the scripts.
QString kindOf(const QString& placeholder) {
    if (placeholder.contains(QLatin1String("FILE")) || placeholder == QLatin1String("IN OUT")) {
        return QStringLiteral("files");
    }
    return placeholder.contains(QLatin1String("DIR")) ? QStringLiteral("directories")
                                                      : QStringLiteral("nothing");
}

// The values of an option such as "--color auto|always|never".
QStringList choicesOf(const QCommandLineOption& option) {
    const QStringList choices = option.valueName().split(QLatin1Char('|'));
    return choices.size() > 1 ? choices : QStringList();
}

QList<QCommandLineOption> optionsOf(const Command& command) {
    return command.options + QList<QCommandLineOption>{helpOption()};
}

// A text in single quotes, which each of the shells takes as it is.
QString quoted(QString text) {
    return QLatin1Char('\'') % text.replace(QLatin1Char('\''), QLatin1String("'\\''")) %
           QLatin1Char('\'');
}

// The words that may follow each incomplete command: nothing, and the names of the groups.
QList<QStringList> incompleteCommands(const CommandGroup& commands) {
    QList<QStringList> incomplete = {{}};
    for (const Command& command : commands) {
        const QStringList group = wordsOf(command).mid(0, 1);
        if (wordsOf(command).size() > 1 && !incomplete.contains(group)) incomplete.append(group);
    }
    return incomplete;
}

// The summary of the command that these words and the next one name, or what a group is.
QString summaryOf(const CommandGroup& commands, const QStringList& words) {
    const QString name = words.join(QLatin1Char(' '));
    for (const Command& command : commands) {
        if (command.name == name) return command.summary;
    }
    return QStringLiteral("Commands: ") % nextWords(commands, words).join(QLatin1String(", "));
}

QString allNamesOf(const Command& command) {
    QStringList names;
    for (const QCommandLineOption& option : optionsOf(command))
        names += typedNames(option);
    return names.join(QLatin1Char(' '));
}

// The branches of a "case" over the last word, for the options that take a value.
QString valueBranches(const Command& command) {
    QString branches;
    for (const QCommandLineOption& option : command.options) {
        if (option.valueName().isEmpty()) continue;
        const QStringList choices = choicesOf(option);
        const QString action =
            choices.isEmpty()
                ? QLatin1String("kind=") % kindOf(option.valueName())
                : QLatin1String("kind=words candidates=") % quoted(choices.join(QLatin1Char(' ')));
        branches += QLatin1String("                ") % typedNames(option).join(QLatin1Char('|')) %
                    QLatin1String(") ") % action % QLatin1String(" ;;\n");
    }
    return branches;
}

// The branches of a "case" over the words before the current one.
QString callBranches(const CommandGroup& commands) {
    QString branches;
    for (const QStringList& words : incompleteCommands(commands)) {
        branches += QLatin1String("        ") % quoted(words.join(QLatin1Char(' '))) %
                    QLatin1String(")\n            kind=words candidates=") %
                    quoted(nextWords(commands, words).join(QLatin1Char(' '))) %
                    QLatin1String("\n            ;;\n");
    }
    for (const Command& command : commands) {
        branches += QLatin1String("        ") % quoted(command.name) % QLatin1Char('|') %
                    quoted(command.name % QLatin1Char(' ')) % QLatin1String("*)\n") %
                    QLatin1String("            kind=") % kindOf(command.arguments) %
                    QLatin1String(" options=") % quoted(allNamesOf(command)) % QLatin1Char('\n');
        const QString values = valueBranches(command);
        if (!values.isEmpty()) {
            branches += QLatin1String("            case $last in\n") % values %
                        QLatin1String("            esac\n");
        }
        branches += QLatin1String("            ;;\n");
    }
    return branches;
}

// The part of the scripts for bash and zsh that sets the kind of the candidates. It reads the
// variables "call", the words before the current one; "word", the current one; and "last".
QString choiceOfCandidates(const CommandGroup& commands) {
    return QStringLiteral(
               "    local kind=nothing options= candidates= explains=\n"
               "    [[ $call == help || $call == 'help '* ]] && explains=yes call=${call#help}\n"
               "    call=${call# }\n"
               "    case $call in\n") %
           callBranches(commands) %
           QStringLiteral(
               "    esac\n"
               "    [[ -n $explains && $kind != words ]] && return 1\n"
               "    [[ $word == -* ]] && kind=words candidates=$options\n");
}

}  // namespace

QString bashCompletion(const CommandGroup& commands) {
    return QStringLiteral(
               "# Completes calls of trvfiles in bash.\n"
               "_trvfiles() {\n"
               "    local call=\"${COMP_WORDS[*]:1:COMP_CWORD-1}\" word=${COMP_WORDS[COMP_CWORD]}\n"
               "    local last=${COMP_WORDS[COMP_CWORD-1]}\n") %
           choiceOfCandidates(commands) %
           QStringLiteral(
               "    case $kind in\n"
               "        words) mapfile -t COMPREPLY < <(compgen -W \"$candidates\" -- \"$word\") "
               ";;\n"
               "        files) compopt -o filenames\n"
               "            mapfile -t COMPREPLY < <(compgen -f -- \"$word\") ;;\n"
               "        directories) compopt -o filenames\n"
               "            mapfile -t COMPREPLY < <(compgen -d -- \"$word\") ;;\n"
               "    esac\n"
               "}\n"
               "complete -F _trvfiles trvfiles\n");
}

QString zshCompletion(const CommandGroup& commands) {
    return QStringLiteral(
               "#compdef trvfiles\n"
               "# Completes calls of trvfiles in zsh.\n"
               "_trvfiles() {\n"
               "    local call=\"${words[2,CURRENT-1]}\" word=${words[CURRENT]}\n"
               "    local last=${words[CURRENT-1]}\n") %
           choiceOfCandidates(commands) %
           QStringLiteral(
               "    case $kind in\n"
               "        words) compadd -- ${=candidates} ;;\n"
               "        files) _files ;;\n"
               "        directories) _files -/ ;;\n"
               "    esac\n"
               "}\n"
               "if [[ ${funcstack[1]-} == _trvfiles ]]; then\n"
               "    _trvfiles \"$@\"\n"
               "else\n"
               "    compdef _trvfiles trvfiles\n"
               "fi\n");
}

QString fishCompletion(const CommandGroup& commands) {
    QString script = QStringLiteral(
        "# Completes calls of trvfiles in fish.\n"
        "function __trvfiles_words\n"
        "    set -l words (commandline -opc)\n"
        "    set -e words[1]\n"
        "    test \"$words[1]\" = help && set -e words[1]\n"
        "    string join ' ' -- $words\n"
        "end\n"
        "function __trvfiles_is\n"
        "    test \"$(__trvfiles_words)\" = \"$argv[1]\"\n"
        "end\n"
        "function __trvfiles_runs\n"
        "    string match -q -- \"$argv[1] *\" \"$(__trvfiles_words) \"\n"
        "    and not string match -q help (commandline -opc)[2]\n"
        "end\n"
        "complete -c trvfiles -f\n");
    for (const QStringList& words : incompleteCommands(commands)) {
        for (const QString& next : nextWords(commands, words)) {
            script += QLatin1String("complete -c trvfiles -n ") %
                      quoted(QLatin1String("__trvfiles_is \"") % words.join(QLatin1Char(' ')) %
                             QLatin1Char('"')) %
                      QLatin1String(" -a ") % next % QLatin1String(" -d ") %
                      quoted(summaryOf(commands, words + QStringList(next))) % QLatin1Char('\n');
        }
    }
    for (const Command& command : commands) {
        const QString condition =
            QLatin1String("complete -c trvfiles -n ") %
            quoted(QLatin1String("__trvfiles_runs \"") % command.name % QLatin1Char('"'));
        for (const QCommandLineOption& option : optionsOf(command)) {
            script += condition;
            for (const QString& name : option.names())
                script += (name.size() == 1 ? QLatin1String(" -s ") : QLatin1String(" -l ")) % name;
            const QString kind = kindOf(option.valueName());
            const QStringList choices = choicesOf(option);
            if (!option.valueName().isEmpty()) {
                script +=
                    kind == QLatin1String("files") ? QLatin1String(" -r") : QLatin1String(" -x");
            }
            if (!choices.isEmpty())
                script += QLatin1String(" -a ") % quoted(choices.join(QLatin1Char(' ')));
            if (kind == QLatin1String("files")) script += QLatin1String(" -F");
            if (kind == QLatin1String("directories")) {
                script += QLatin1String(" -a '(__fish_complete_directories)'");
            }
            script += QLatin1String(" -d ") % quoted(option.description()) % QLatin1Char('\n');
        }
        const QString kind = kindOf(command.arguments);
        if (kind == QLatin1String("files")) script += condition % QLatin1String(" -F\n");
        if (kind == QLatin1String("directories")) {
            script += condition % QLatin1String(" -a '(__fish_complete_directories)'\n");
        }
    }
    return script;
}

}  // namespace trv::cli
