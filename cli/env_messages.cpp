#include <cli/env_commands.h>
#include <cli/env_message_file.h>
#include <cli/env_runtime.h>
#include <cli/input_files.h>
#include <cli/suggestion.h>
#include <cli/text_output.h>
#include <trvfiles/environment/entry_text.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <iterator>

namespace trv::cli {
namespace {

void printSections(const std::vector<Section>& sections, std::ostream& out) {
    for (const Section& section : sections) {
        out << qUtf8Printable(QStringLiteral("[%1]\n").arg(shown(section.name)));
        if (section.messages.empty()) continue;
        // Lines and numbers ascend, so the last message has the widest ones. Only after line 65535,
        // from which lines count anew, a column may be too narrow: then it is not aligned.
        const int lineWidth = QString::number(section.messages.back().line).size();
        const int numberWidth = QString::number(section.messages.back().number).size();
        for (const Message& message : section.messages) {
            out << qUtf8Printable(
                QStringLiteral("  line %1  %2  %3\n")
                    .arg(QString::number(message.line).rightJustified(lineWidth),
                         QString::number(message.number).rightJustified(numberWidth),
                         shown(message.text)));
        }
    }
}

QJsonObject json(const Message& message) {
    // A message that is not an entry has neither name nor value: null in JSON.
    const bool entry = is_entry(message.text);
    return {
        {QStringLiteral("number"), message.number},
        {QStringLiteral("line"), message.line},
        {QStringLiteral("text"), fromNarrow(message.text)},
        {QStringLiteral("name"),
         entry ? QJsonValue(fromNarrow(std::string(entry_name(message.text)))) : QJsonValue()},
        {QStringLiteral("value"),
         entry ? QJsonValue(fromNarrow(std::string(entry_value(message.text)))) : QJsonValue()},
    };
}

QJsonObject json(const QString& name, const std::vector<Section>& sections) {
    QJsonArray array;
    for (const Section& section : sections) {
        QJsonArray messages;
        for (const Message& message : section.messages)
            messages.append(json(message));
        array.append(QJsonObject{{QStringLiteral("name"), fromNarrow(section.name)},
                                 {QStringLiteral("messages"), messages}});
    }
    return {{QStringLiteral("file"), name}, {QStringLiteral("sections"), array}};
}

// A file may have several sections of one name.
std::vector<Section> sectionsNamed(const QString& name, const std::vector<Section>& sections) {
    const std::string asked = toNarrow(name);
    std::vector<Section> found;
    std::copy_if(sections.begin(), sections.end(), std::back_inserter(found),
                 [&](const Section& section) { return section.name == asked; });
    return found;
}

void reportMissing(const QString& file, const QString& name, const std::vector<Section>& sections,
                   const Console& console) {
    QStringList names;
    for (const Section& section : sections)
        names += fromNarrow(section.name);
    console.err << qUtf8Printable(
        QStringLiteral("trvfiles: %1: there is no section [%2]%3\n")
            .arg(shown(displayName(file)), shown(name), shown(suggestionFor(name, names))));
}

ExitStatus print(const QCommandLineParser& call, const Console& console) {
    const QStringList arguments = call.positionalArguments();
    const QString& name = arguments.at(0);
    const MessageFile file = loadMessageFile(name);
    if (file.result == load_result::missing) {
        console.err << qUtf8Printable(
            QStringLiteral("trvfiles: %1: %2\n")
                .arg(shown(displayName(name)), shown(file.whyMissing.reason)));
        return failed;
    }
    // The reason has been reported, and is printed when this returns.
    if (file.result == load_result::failed) return failed;
    const bool asJson = call.isSet(QStringLiteral("json"));
    const bool asksForOne = arguments.size() > 1;
    std::vector<Section> named;
    if (asksForOne) named = sectionsNamed(arguments.at(1), file.sections);
    const std::vector<Section>& sections = asksForOne ? named : file.sections;
    const bool isMissing = asksForOne && sections.empty();
    if (isMissing) reportMissing(name, arguments.at(1), file.sections, console);
    if (asJson) {
        printJson(json(name, sections), console.out);
    } else {
        printSections(sections, console.out);
    }
    return isMissing ? negative : done;
}

ExitStatus messages(const QCommandLineParser& call, const Console& console) {
    return askInstallationIfAny(call, console, [&](RuntimeMessages&, const Console& results) {
        return print(call, results);
    });
}

}  // namespace

Command envMessagesCommand() {
    Command command;
    command.name = QStringLiteral("env messages");
    command.arguments = QStringLiteral("[--root DIR] [--json] FILE [SECTION]");
    command.summary = QStringLiteral("Show a message file");
    command.details = QStringLiteral(
        "Prints the sections with their messages. Each message has its line in the file\n"
        "and its number in the section. Conditions in the file are evaluated for the\n"
        "installation. Exit status: 0 done, 1 the section is missing, 2 an error.\n");
    command.examples +=
        QStringLiteral("trvfiles env messages ../installation/texts/messages.msg vise");
    command.options = {rootOption(), jsonOption()};
    command.maxFiles = 2;
    command.run = messages;
    return command;
}

}  // namespace trv::cli
