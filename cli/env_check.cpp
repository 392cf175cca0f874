#include <cli/env_commands.h>
#include <cli/env_message_file.h>
#include <cli/env_runtime.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <string_view>

namespace trv::cli {
namespace {

// A report without what every report on the file begins with: "line N: TEXT", or the text alone
// where it belongs to no line.
QString findingText(const std::string& report, const std::string& file) {
    const std::string beginning = "load_messages: file '" + file + "'";
    std::string_view rest = report;
    if (rest.substr(0, beginning.size()) != beginning) return shown(report);
    rest.remove_prefix(beginning.size());
    const std::size_t number = rest.find_first_of("-0123456789");
    const std::size_t behind = rest.find_first_not_of("-0123456789", number);
    const std::size_t text = rest.find_first_not_of(" :,", behind);
    if (text == std::string_view::npos) return shown(report);
    const QString line = fromNarrow(std::string(rest.substr(number, behind - number)));
    const QString finding = shown(std::string(rest.substr(text)));
    return line.toInt() > 0 ? QStringLiteral("line %1: %2").arg(line, finding) : finding;
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
    const MessageFile file = loadMessageFile(name);
    if (file.result == load_result::missing) return {file.whyMissing};
    QStringList findings;
    for (const RuntimeMessages::Report& report : messages.takeReports())
        findings += findingText(report.text, toNarrow(name));
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
            console.out << qUtf8Printable(QStringLiteral("%1: %2\n").arg(shown(name), line));
    }
    return status;
}

ExitStatus check(const QCommandLineParser& call, const Console& console) {
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
    command.options = {rootOption()};
    command.mostFiles = Command::anyNumber;
    command.run = check;
    return command;
}

}  // namespace trv::cli
