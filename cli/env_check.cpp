#include <cli/env_commands.h>
#include <cli/env_message_file.h>
#include <cli/env_origin.h>
#include <cli/env_runtime.h>
#include <cli/input_files.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace trv::cli {
namespace {

struct Finding {
    /// Below 1 for a finding that belongs to no line.
    int line;
    QString text;
    QString code;
    /// What the code is about, for programs.
    QJsonObject fields;
};

struct CheckedFile {
    QString name;
    std::vector<Finding> findings;
    /// Whether it was loaded, at least in part.
    bool isRead = false;
    std::vector<Section> sections;
};

// A fault in the file is shown with its line, without the name, which begins every line. Any other
// report, such as one about the work zone that a condition asks for, is shown as it is.
Finding findingOf(const RuntimeMessages::Report& report, const std::string& file) {
    if (!report.fault) return {0, fromNarrow(report.text), report.code, {}};
    const RuntimeMessages::Fault& fault = *report.fault;
    QJsonObject fields;
    if (!fault.subject.empty()) fields.insert(QStringLiteral("subject"), fromNarrow(fault.subject));
    if (fault.file == file) return {fault.line, fromNarrow(fault.text), report.code, fields};
    fields.insert(QStringLiteral("path"), nativeSpelling(fault.file));
    if (fault.line > 0) fields.insert(QStringLiteral("pathLine"), fault.line);
    return {0, fromNarrow(report.text), report.code, fields};
}

std::size_t entryCount(const std::vector<Section>& sections) {
    std::size_t entries = 0;
    for (const Section& section : sections)
        entries += section.messages.size();
    return entries;
}

QString contentText(const std::vector<Section>& sections) {
    return QStringLiteral("%1, %2").arg(
        counted(sections.size(), QStringLiteral("section"), QStringLiteral("sections")),
        counted(entryCount(sections), QStringLiteral("entry"), QStringLiteral("entries")));
}

CheckedFile checkedFile(const QString& name, RuntimeMessages& messages) {
    CheckedFile checked = {name, {}, false, {}};
    // The reports of the start have been printed: these belong to the file and its conditions.
    MessageFile file = loadMessageFile(name);
    checked.isRead = file.result != load_result::missing;
    if (!checked.isRead) {
        const Problem& why = file.whyMissing;
        checked.findings.push_back({0, why.reason, why.code, why.fields});
        return checked;
    }
    for (const RuntimeMessages::Report& report : messages.takeReports())
        checked.findings.push_back(findingOf(report, toNarrow(displayName(name))));
    checked.sections = std::move(file.sections);
    return checked;
}

void printText(const CheckedFile& checked, std::ostream& out) {
    const auto print = [&](const QString& line) {
        out << qUtf8Printable(
            QStringLiteral("%1: %2\n").arg(shown(displayName(checked.name)), line));
    };
    for (const Finding& finding : checked.findings) {
        const QString text = shown(finding.text);
        print(finding.line > 0
                  ? QStringLiteral("line %1: %2").arg(QString::number(finding.line), text)
                  : text);
    }
    if (checked.findings.empty()) {
        print(QStringLiteral("ok (%1)").arg(contentText(checked.sections)));
    }
}

QJsonObject json(const CheckedFile& checked) {
    const auto count = [&](std::size_t number) {
        return checked.isRead ? QJsonValue(static_cast<qint64>(number)) : QJsonValue();
    };
    QJsonArray findings;
    for (const Finding& finding : checked.findings) {
        QJsonObject json = finding.fields;
        json.insert(QStringLiteral("line"),
                    finding.line > 0 ? QJsonValue(finding.line) : QJsonValue());
        json.insert(QStringLiteral("code"), finding.code);
        findings.append(json);
    }
    return {{QStringLiteral("file"), checked.name},
            {QStringLiteral("ok"), checked.findings.empty()},
            {QStringLiteral("findings"), findings},
            {QStringLiteral("sections"), count(checked.sections.size())},
            {QStringLiteral("entries"), count(entryCount(checked.sections))}};
}

ExitStatus checkAll(const QCommandLineParser& call, RuntimeMessages& messages,
                    const Console& console) {
    ExitStatus status = done;
    std::optional<JsonWriter> writer;
    if (call.isSet(QStringLiteral("json"))) writer.emplace(console.out).beginArray("files");
    for (const QString& name : call.positionalArguments()) {
        const CheckedFile checked = checkedFile(name, messages);
        if (!checked.findings.empty()) status = negative;
        if (writer) {
            writer->addElement(json(checked));
        } else {
            printText(checked, console.out);
        }
    }
    if (writer) {
        writer->endArray();
        writer->end();
    }
    return status;
}

ExitStatus check(const QCommandLineParser& call, const Console& console) {
    // Only conditions need an installation: a file without one is checked anywhere.
    return askInstallationIfAny(call, console,
                                [&](RuntimeMessages& messages, const Console& results) {
                                    return checkAll(call, messages, results);
                                });
}

}  // namespace

Command envCheckCommand() {
    Command command;
    command.name = QStringLiteral("env check");
    command.arguments = QStringLiteral("[--root DIR] [--json] FILE...");
    command.summary = QStringLiteral("Check message and configuration files");
    command.details = QStringLiteral(
        "Prints a line for each fault, or a summary of a file without faults. Conditions\n"
        "in the files are evaluated for the installation. Exit status: 0 no file has\n"
        "faults, 1 a file has faults, 2 an error.\n");
    command.examples += QStringLiteral("trvfiles env check ../installation/site/environ.cfg");
    command.options = {rootOption(), jsonOption()};
    command.maxFiles = Command::anyNumber;
    command.run = check;
    return command;
}

}  // namespace trv::cli
