#include <cli/context_commands.h>
#include <cli/context_fields.h>
#include <cli/file_output.h>
#include <cli/suggestion.h>
#include <cli/text_output.h>

#include <QFileInfo>
#include <QStringList>

#include <algorithm>

namespace trv::cli {
namespace {

QStringList fieldNames() {
    QStringList names;
    for (const ContextField& field : contextFields())
        names += nameOf(field);
    return names;
}

QString unknownName(const QString& name) {
    return QStringLiteral("neither a file nor a field is named '%1'%2")
        .arg(name, suggestionFor(name, fieldNames()));
}

// Whether a text that names no file is a field that is not written correctly. No field has a
// separator of paths.
bool isLikeAField(const QString& text) {
    if (text.contains(QLatin1Char('/')) || text.contains(QLatin1Char('\\'))) return false;
    const QString section = text.section(QLatin1Char('.'), 0, 0) + QLatin1Char('.');
    const QStringList names = fieldNames();
    return !nearestName(text, names).isEmpty() ||
           std::any_of(names.begin(), names.end(),
                       [&](const QString& name) { return name.startsWith(section); });
}

// Divides the arguments into files and fields. The files are first.
//
// @return what is wrong with them; empty if nothing is
QString readArguments(const QStringList& arguments, QStringList& files, ContextFieldList& fields) {
    for (const QString& argument : arguments) {
        if (const ContextField* field = findContextField(argument)) {
            fields.push_back(field);
            continue;
        }
        const bool isFile = QFileInfo::exists(resolved(argument));
        if (!isFile && (!fields.empty() || isLikeAField(argument))) return unknownName(argument);
        if (!fields.empty()) {
            return QStringLiteral("the file '%1' is after a field; files are first").arg(argument);
        }
        files += argument;
    }
    return files.isEmpty() ? QStringLiteral("a file name is missing") : QString();
}

// Prints a value that another program may use. What shown() would escape is noted, except the
// backslash.
//
// @param start  what precedes the value on its line
void printValue(const QString& name, const QString& start, const ContextField& field,
                const CMachineContextData& data, const Console& console) {
    const QString value = storedValue(field, data);
    const QString text = shownUnquoted(value);
    console.out << qUtf8Printable(start + text) << '\n';
    if (text == value) return;
    console.err << qUtf8Printable(
        QStringLiteral("trvfiles: %1: note: %2 has hidden characters, which are printed as "
                       "escapes; --json prints the exact value\n")
            .arg(shown(name), nameOf(field)));
}

ExitStatus get(const QCommandLineParser& call, const Console& console) {
    QStringList files;
    ContextFieldList fields;
    const QString mistake = readArguments(call.positionalArguments(), files, fields);
    if (!mistake.isEmpty()) return refuseCall(console, QStringLiteral("context get"), mistake);
    const bool withNames = fields.empty();
    if (withNames) {
        for (const ContextField& field : contextFields())
            fields.push_back(&field);
    }
    const bool asJson = call.isSet(QStringLiteral("json"));
    FileOutput output(files.size(), Heading::blankLine, console.out);
    ExitStatus status = done;
    for (const QString& name : files) {
        ContextFile context;
        if (const Problem problem = readAsContext(name, context)) {
            status = report(name, problem, console);
            continue;
        }
        if (asJson) {
            const QJsonObject object = contextJson(name, fields, context.data);
            output.writeJson([&](JsonWriter& json) { json.addAll(object); });
            continue;
        }
        const QString prefix = files.size() == 1 ? QString() : shown(name) + QStringLiteral(": ");
        for (const ContextField* field : fields) {
            const QString start = withNames ? prefix + nameOf(*field) + QLatin1Char('=') : prefix;
            printValue(name, start, *field, context.data, console);
        }
    }
    if (asJson) output.endJson();
    return status;
}

}  // namespace

Command contextGetCommand() {
    Command command;
    command.name = QStringLiteral("context get");
    command.arguments = QStringLiteral("[--json] FILE... [section.key...]");
    command.summary = QStringLiteral("Print fields of machine contexts");
    command.details = QStringLiteral(
        "Prints the values of the fields, one on a line. For several files the name of\n"
        "the file precedes the value. Without a field, all fields are printed in the\n"
        "form that 'context set' takes. Fields:\n");
    for (const QString& name : fieldNames())
        command.details += QStringLiteral("  %1\n").arg(name);
    command.examples += QStringLiteral("trvfiles context get bracket-left.mctx machine.name");
    command.examples +=
        QStringLiteral("trvfiles context get bracket-left.mctx bracket-right.mctx header.comment");
    command.options = {jsonOption()};
    command.operand = QStringLiteral("file name");
    command.maxFiles = Command::anyNumber;
    command.run = get;
    return command;
}

}  // namespace trv::cli
