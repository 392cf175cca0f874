#include <cli/env_commands.h>
#include <cli/env_expansion.h>
#include <cli/env_lookup.h>
#include <cli/env_runtime.h>
#include <cli/text_output.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/facade/text_conversion.h>

namespace trv::cli {
namespace {

struct Explanation {
    Subject subject;
    Value value;
    Definitions definitions;
    /// Of the value.
    Expansion expansion;

    bool refersToOthers() const { return value.text.find_first_of("$?") != std::string::npos; }
};

Explanation explanationOf(const Subject& subject, RuntimeMessages& messages) {
    Explanation explanation;
    explanation.subject = subject;
    explanation.value = lookUp(subject);
    explanation.definitions = definitionsOf(subject);
    if (explanation.refersToOthers()) {
        explanation.expansion = expand(explanation.value.text, false, messages);
    }
    return explanation;
}

QString reasonText(const Explanation& explanation) {
    const std::size_t definitions = explanation.definitions.inOrder.size();
    if (explanation.value.origin.empty())
        return QStringLiteral("the temporary directory of the work zone");
    if (explanation.value.fromEnvironment) {
        return definitions == 0 ? QStringLiteral("the installation does not define it")
                                : QStringLiteral("the process environment goes before all files");
    }
    if (definitions > 1) return QStringLiteral("the definition that was read last wins");
    return QStringLiteral("the only definition that counts");
}

void printDefinitions(const char* title, const std::vector<Definition>& definitions,
                      std::ostream& out) {
    if (definitions.empty()) return;
    out << '\n' << title << '\n';
    for (const Definition& definition : definitions) {
        QString text =
            QStringLiteral("  %1\n    %2\n").arg(shown(definition.entry), shown(definition.origin));
        if (definition.extends) {
            text += QStringLiteral("    + is '%1'\n").arg(shown(definition.extended));
        }
        out << qUtf8Printable(text);
    }
}

void printExpansion(const Expansion& expansion, std::ostream& out) {
    const QString result = is_expand_error(expansion.code)
                               ? codeText(expansion.code)
                               : QLatin1String("= ") + shown(expansion.text);
    out << qUtf8Printable(QStringLiteral("\nExpanded\n  %1\n").arg(result));
    for (const std::string& lookup : expansion.lookups)
        out << qUtf8Printable(QStringLiteral("    %1\n").arg(shown(lookup)));
}

void printText(const Explanation& explanation, std::ostream& out) {
    const Value& value = explanation.value;
    const QString reason = reasonText(explanation);
    out << qUtf8Printable(
        QStringLiteral("%1 = %2\n%3\n")
            .arg(shown(explanation.subject.text()), shown(value.text),
                 value.origin.empty() ? reason
                                      : QStringLiteral("%1: %2").arg(shown(value.origin), reason)));
    printDefinitions("Definitions, oldest first", explanation.definitions.inOrder, out);
    printDefinitions("Never looked at", explanation.definitions.hidden, out);
    if (explanation.refersToOthers()) printExpansion(explanation.expansion, out);
}

QJsonArray json(const std::vector<Definition>& definitions) {
    QJsonArray array;
    for (const Definition& definition : definitions) {
        const bool isFromFile = !definition.file.empty();
        array.append(QJsonObject{
            {QStringLiteral("entry"), fromNarrow(definition.entry)},
            {QStringLiteral("file"),
             isFromFile ? QJsonValue(fromNarrow(definition.file)) : QJsonValue()},
            {QStringLiteral("line"), isFromFile ? QJsonValue(definition.line) : QJsonValue()},
            {QStringLiteral("extended"),
             definition.extends ? QJsonValue(fromNarrow(definition.extended)) : QJsonValue()},
        });
    }
    return array;
}

QJsonArray json(const std::vector<std::string>& texts) {
    QJsonArray array;
    for (const std::string& text : texts)
        array.append(fromNarrow(text));
    return array;
}

QJsonObject json(const Explanation& explanation) {
    const Value& value = explanation.value;
    const Expansion& expansion = explanation.expansion;
    QJsonObject object = {
        {QStringLiteral("name"), fromNarrow(explanation.subject.text())},
        {QStringLiteral("defined"), value.isDefined},
    };
    if (!value.isDefined) return object;
    object.insert(QStringLiteral("value"), fromNarrow(value.text));
    object.insert(QStringLiteral("origin"), fromNarrow(value.origin));
    object.insert(QStringLiteral("fromEnvironment"), value.fromEnvironment);
    object.insert(QStringLiteral("reason"), reasonText(explanation));
    object.insert(QStringLiteral("definitions"), json(explanation.definitions.inOrder));
    object.insert(QStringLiteral("hidden"), json(explanation.definitions.hidden));
    const bool refers = explanation.refersToOthers();
    object.insert(QStringLiteral("expanded"),
                  is_expand_error(expansion.code)
                      ? QJsonValue()
                      : QJsonValue(fromNarrow(refers ? expansion.text : value.text)));
    object.insert(QStringLiteral("lookups"), json(expansion.lookups));
    return object;
}

ExitStatus explain(const QCommandLineParser& call, const Console& console) {
    const Subject subject = subjectOf(toNarrow(call.positionalArguments().at(0)));
    return askInstallation(call, console, [&](RuntimeMessages& messages, const Console& results) {
        const Explanation explanation = explanationOf(subject, messages);
        const bool isDefined = explanation.value.isDefined;
        if (call.isSet(QStringLiteral("json"))) {
            printJson(json(explanation), results.out);
        } else if (isDefined) {
            printText(explanation, results.out);
        } else {
            results.out << qUtf8Printable(shown(subject.text())) << " is not defined\n";
        }
        return isDefined ? done : negative;
    });
}

}  // namespace

Command envExplainCommand() {
    Command command;
    command.name = QStringLiteral("env explain");
    command.arguments = QStringLiteral("[--root DIR] [--json] NAME");
    command.summary = QStringLiteral("Tell why a variable has its value");
    command.details = QStringLiteral(
        "Prints the value that a program gets, every definition of it and what its references\n"
        "are replaced by. \"?NAME\" explains a path list; a shell wants quotes around it. Exit\n"
        "status: 0 it is defined, 1 it is not, 2 an error.\n");
    command.options = {rootOption(), jsonOption()};
    command.operand = QStringLiteral("name");
    command.run = explain;
    return command;
}

}  // namespace trv::cli
