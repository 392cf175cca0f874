#include <cli/env_commands.h>
#include <cli/env_directories.h>
#include <cli/env_expansion.h>
#include <cli/env_lookup.h>
#include <cli/env_runtime.h>
#include <cli/suggestion.h>
#include <cli/text_output.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/text/text_conversion.h>

#include <string>
#include <vector>

namespace trv::cli {
namespace {

struct Explanation {
    Subject subject;
    Value value;
    Definitions definitions;
    /// The expanded value, and each lookup. Only set if the value has references.
    Expansion expansion;
    std::vector<Lookup> lookups;
    /// Only set for a path list.
    std::vector<ListedDirectory> directories;

    bool refersToOthers() const { return value.text.find_first_of("$?") != std::string::npos; }
};

Explanation explanationOf(const Subject& subject) {
    Explanation explanation;
    explanation.subject = subject;
    explanation.value = lookUp(subject);
    explanation.definitions = definitionsOf(subject);
    if (explanation.refersToOthers()) {
        explanation.expansion = expand(
            explanation.value.text, false,
            [&](const lookup_event& event) { explanation.lookups.push_back(lookupOf(event)); });
    }
    if (subject.isPath && explanation.value.isDefined)
        explanation.directories = directoriesOf(subject, explanation.value);
    return explanation;
}

// The rule of the runtime by which a value was chosen.
struct Reason {
    const char* name;
    const char* text;
};

Reason reasonOf(const Explanation& explanation) {
    const std::size_t definitions = explanation.definitions.inOrder.size();
    if (explanation.value.origin.kind == Origin::Kind::workZone) {
        return {"workZone", "the temporary directory"};
    }
    if (explanation.value.isFromEnvironment()) {
        if (definitions == 0) return {"notInFiles", "the installation does not define it"};
        return {"environmentFirst", "the process environment goes before all files"};
    }
    if (definitions > 1) return {"lastDefinition", "the definition that was read last wins"};
    return {"onlyDefinition", "the only definition that counts"};
}

// The value before a definition. It is cut if it is long: each definition of a list shows more of
// it, so a history of n definitions would print a text that grows as the square of n.
QString extendedText(const Definition& definition, bool all) {
    constexpr int maxShown = 200;
    if (definition.isBeyondLimits) {
        return QStringLiteral("+ is a value beyond the limits of the runtime");
    }
    const QString text = fromNarrow(definition.extended);
    if (all || text.size() <= maxShown) return QStringLiteral("+ is '%1'").arg(shown(text));
    return QStringLiteral("+ is '%1' (%2 characters; --all shows them)")
        .arg(shown(beginningOf(text, maxShown)), QString::number(text.size()));
}

void printDefinitions(const char* title, const History& definitions, bool all, std::ostream& out) {
    if (definitions.size() == 0) return;
    out << '\n' << title << '\n';
    const auto show = [&](const Definition& definition) {
        QString text = QStringLiteral("  %1\n    %2\n")
                           .arg(shown(definition.entry), originText(definition.origin));
        if (definition.extends) {
            text += QStringLiteral("    %1\n").arg(extendedText(definition, all));
        }
        out << qUtf8Printable(text);
    };
    definitions.forEach(all, show, [&] {
        out << "  ... " << definitions.leftOut(all) << " more; --all shows them\n";
    });
}

void printExpansion(const Explanation& explanation, std::ostream& out) {
    const Expansion& expansion = explanation.expansion;
    const QString result = is_expand_error(expansion.code)
                               ? codeText(expansion.code)
                               : QLatin1String("= ") + shown(expansion.text);
    out << qUtf8Printable(QStringLiteral("\nExpanded\n  %1\n").arg(result));
    for (const Lookup& lookup : explanation.lookups)
        out << qUtf8Printable(QStringLiteral("    %1\n").arg(lookupText(lookup)));
}

void printDirectories(const std::vector<ListedDirectory>& directories, std::ostream& out) {
    if (directories.empty()) return;
    out << "\nDirectories, in the order of a search\n";
    for (const ListedDirectory& directory : directories) {
        const QString missing = QStringLiteral("; does not exist");
        out << qUtf8Printable(QStringLiteral("  %1  (%2%3)\n")
                                  .arg(shown(nativeSpelling(directory.path)),
                                       originText(directory.origin),
                                       directory.exists ? QString() : missing));
    }
}

void printText(const Explanation& explanation, bool all, std::ostream& out) {
    const Value& value = explanation.value;
    out << qUtf8Printable(QStringLiteral("%1 = %2\n%3: %4\n")
                              .arg(shown(explanation.subject.text()), shown(value.text),
                                   originText(value.origin),
                                   QString::fromLatin1(reasonOf(explanation).text)));
    printDefinitions("Definitions, oldest first", explanation.definitions.inOrder, all, out);
    printDefinitions("Never looked at", explanation.definitions.hidden, all, out);
    if (explanation.refersToOthers()) printExpansion(explanation, out);
    printDirectories(explanation.directories, out);
}

QJsonObject json(const Definition& definition) {
    const bool isKnown = definition.extends && !definition.isBeyondLimits;
    QJsonObject object = {
        {QStringLiteral("entry"), fromNarrow(definition.entry)},
        {QStringLiteral("extends"), definition.extends},
        {QStringLiteral("extended"),
         isKnown ? QJsonValue(fromNarrow(definition.extended)) : QJsonValue()},
    };
    addOrigin(definition.origin, object);
    return object;
}

QJsonObject json(const ListedDirectory& directory) {
    QJsonObject object = {{QStringLiteral("path"), nativeSpelling(directory.path)},
                          {QStringLiteral("exists"), directory.exists}};
    addOrigin(directory.origin, object);
    return object;
}

// Element by element: the array of a long history is never in memory as a whole.
void writeDefinitions(const char* key, const History& definitions, bool all, JsonWriter& json) {
    json.beginArray(key);
    definitions.forEach(
        all, [&](const Definition& definition) { json.addElement(cli::json(definition)); }, [] {});
    json.endArray();
    json.add((std::string(key) + "LeftOut").c_str(), static_cast<qint64>(definitions.leftOut(all)));
}

QJsonValue expandedJson(const Explanation& explanation) {
    if (is_expand_error(explanation.expansion.code)) return {};
    return fromNarrow(explanation.refersToOthers() ? explanation.expansion.text
                                                   : explanation.value.text);
}

// The keys are in alphabetical order, as QJsonDocument writes those of the other commands.
void printJson(const Explanation& explanation, bool all, std::ostream& out) {
    const Value& value = explanation.value;
    QJsonObject origin;
    addOrigin(value.origin, origin);
    JsonWriter json(out);
    json.add("defined", true);
    writeDefinitions("definitions", explanation.definitions.inOrder, all, json);
    if (explanation.subject.isPath) {
        json.beginArray("directories");
        for (const ListedDirectory& directory : explanation.directories)
            json.addElement(cli::json(directory));
        json.endArray();
    }
    json.add("expanded", expandedJson(explanation));
    json.add("file", origin.value(QStringLiteral("file")));
    json.add("fromEnvironment", value.isFromEnvironment());
    writeDefinitions("hidden", explanation.definitions.hidden, all, json);
    json.add("line", origin.value(QStringLiteral("line")));
    json.beginArray("lookups");
    for (const Lookup& lookup : explanation.lookups)
        json.addElement(lookupJson(lookup));
    json.endArray();
    json.add("name", fromNarrow(explanation.subject.text()));
    json.add("origin", origin.value(QStringLiteral("origin")));
    json.add("reason", QString::fromLatin1(reasonOf(explanation).name));
    json.add("value", fromNarrow(value.text));
    json.end();
}

// The names of variables and path lists, as Subject::text() gives them.
QStringList definedNames() {
    QStringList names;
    for (const bool isPath : {false, true}) {
        for (const std::string& name : variableNames(isPath).names)
            names += fromNarrow(Subject{isPath, name}.text());
    }
    return names;
}

// JSON is printed for an undefined variable too, so that a script can distinguish it from an error.
ExitStatus reportUndefined(const Subject& subject, bool asJson, const Console& console) {
    const QString name = fromNarrow(subject.text());
    const QStringList names = definedNames();
    if (asJson) {
        const QString nearest = nearestName(name, names);
        cli::printJson({{QStringLiteral("defined"), false},
                        {QStringLiteral("name"), name},
                        {QStringLiteral("suggestion"),
                         nearest.isEmpty() ? QJsonValue() : QJsonValue(nearest)}},
                       console.out);
    } else {
        console.err << qUtf8Printable(QStringLiteral("trvfiles: %1 is not defined%2\n")
                                          .arg(shown(name), shown(suggestionFor(name, names))));
    }
    return negative;
}

ExitStatus explain(const QCommandLineParser& call, const Console& console) {
    const Subject subject = subjectOf(toNarrow(call.positionalArguments().at(0)));
    const bool all = call.isSet(QStringLiteral("all"));
    return askInstallation(call, console, [&](RuntimeMessages& messages, const Console&) {
        const Explanation explanation = explanationOf(subject);
        if (messages.hasFatalReport()) return failed;
        // Printed directly and not buffered: it may be large, and no further report can follow.
        const bool asJson = call.isSet(QStringLiteral("json"));
        if (!explanation.value.isDefined) return reportUndefined(subject, asJson, console);
        if (asJson) {
            printJson(explanation, all, console.out);
        } else {
            printText(explanation, all, console.out);
        }
        return done;
    });
}

}  // namespace

Command envExplainCommand() {
    Command command;
    command.name = QStringLiteral("env explain");
    command.arguments = QStringLiteral("[--root DIR] [--all] [--json] NAME");
    command.summary = QStringLiteral("Explain why a variable has its value");
    command.details = QStringLiteral(
        "Prints the value that a program gets, every definition of it, and the\n"
        "replacement of each reference. If there are many definitions, it prints the\n"
        "first and the last ones. \"?NAME\" explains a path list, with its directories;\n"
        "write it in quotes in a shell. Exit status: 0 the name is defined, 1 it is not,\n"
        "2 an error.\n");
    command.examples += QStringLiteral("trvfiles env explain POST_OPTIONS");
    command.examples += QStringLiteral("trvfiles env explain '?CFG'");
    command.options = {
        rootOption(),
        QCommandLineOption(QStringLiteral("all"), QStringLiteral("Print every definition in full")),
        jsonOption()};
    command.operand = QStringLiteral("name");
    command.run = explain;
    return command;
}

}  // namespace trv::cli
