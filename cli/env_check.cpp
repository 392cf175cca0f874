#include <cli/env_commands.h>
#include <cli/env_message_file.h>
#include <cli/env_runtime.h>
#include <cli/input_files.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <string>

namespace trv::cli {
namespace {

// A fault in the file is shown with its line, without the name, which begins every line. Any other
// report, such as one about the work zone that a condition asks for, is shown as it is.
QString findingText(const RuntimeMessages::Report& report, const std::string& file) {
    if (!report.fault || report.fault->file != file) return shown(report.text);
    const QString fault = shown(report.fault->text);
    const int line = report.fault->line;
    return line > 0 ? QStringLiteral("line %1: %2").arg(QString::number(line), fault) : fault;
}

QString contentText(const std::vector<Section>& sections) {
    std::size_t entries = 0;
    for (const Section& section : sections)
        entries += section.messages.size();
    return QStringLiteral("%1, %2").arg(
        counted(sections.size(), QStringLiteral("section"), QStringLiteral("sections")),
        counted(entries, QStringLiteral("entry"), QStringLiteral("entries")));
}

QStringList findingsOn(const QString& name, RuntimeMessages& messages, QString& content) {
    // The reports of the start have been printed: these belong to the file and its conditions.
    const MessageFile file = loadMessageFile(name);
    if (file.result == load_result::missing) return {file.whyMissing};
    QStringList findings;
    for (const RuntimeMessages::Report& report : messages.takeReports())
        findings += findingText(report, toNarrow(displayName(name)));
    content = contentText(file.sections);
    return findings;
}

ExitStatus checkAll(const QStringList& names, RuntimeMessages& messages, const Console& console) {
    ExitStatus status = done;
    for (const QString& name : names) {
        QString content;
        QStringList lines = findingsOn(name, messages, content);
        if (!lines.isEmpty()) {
            status = negative;
        } else {
            lines += QStringLiteral("ok (%1)").arg(content);
        }
        for (const QString& line : lines)
            console.out << qUtf8Printable(
                QStringLiteral("%1: %2\n").arg(shown(displayName(name)), line));
    }
    return status;
}

ExitStatus check(const QCommandLineParser& call, const Console& console) {
    // Only conditions need an installation: a file without one is checked anywhere.
    return askInstallationIfAny(call, console,
                                [&](RuntimeMessages& messages, const Console& results) {
                                    return checkAll(call.positionalArguments(), messages, results);
                                });
}

}  // namespace

Command envCheckCommand() {
    Command command;
    command.name = QStringLiteral("env check");
    command.arguments = QStringLiteral("[--root DIR] FILE...");
    command.summary = QStringLiteral("Check message and configuration files");
    command.details = QStringLiteral(
        "Prints a line for each fault, or a summary of a file without faults. Conditions\n"
        "in the files are evaluated for the installation. Exit status: 0 no file has\n"
        "faults, 1 a file has faults, 2 an error.\n");
    command.examples += QStringLiteral("trvfiles env check ../installation/site/environ.cfg");
    command.options = {rootOption()};
    command.maxFiles = Command::anyNumber;
    command.run = check;
    return command;
}

}  // namespace trv::cli
