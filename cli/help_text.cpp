#include <cli/command_table.h>
#include <cli/help_text.h>

#include <QList>
#include <QPair>
#include <QStringBuilder>

#include <algorithm>

namespace trv::cli {
namespace {

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

}  // namespace

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
        "\n'trvfiles help COMMAND' explains a command, with examples.\n"
        "'trvfiles --version' prints the version.\n"
        "Exit status: 0 done, 1 a negative answer, 2 an error.\n");
    return usage % QLatin1String("Commands:\n") % table(lines) % closing;
}

QString explanation(const Command& command) {
    QList<QPair<QString, QString>> lines;
    for (const QCommandLineOption& option : command.options + QList({helpOption()})) {
        const QString value =
            option.valueName().isEmpty() ? QString() : QLatin1Char(' ') % option.valueName();
        const QString names = typedNames(option).join(QLatin1String(", "));
        lines.append({names % value, option.description()});
    }
    QString examples;
    for (const QString& example : command.examples)
        examples += QLatin1String("  ") % example % QLatin1Char('\n');
    if (!examples.isEmpty()) examples.prepend(QLatin1String("\nExamples:\n"));
    const QString arguments =
        command.arguments.isEmpty() ? QString() : QLatin1Char(' ') % command.arguments;
    return QStringLiteral("Usage: trvfiles %1%2\n\n%3.\n%4\nOptions:\n%5%6")
        .arg(command.name, arguments, command.summary, command.details, table(lines), examples);
}

}  // namespace trv::cli
