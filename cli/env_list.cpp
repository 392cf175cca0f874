#include <cli/env_commands.h>
#include <cli/env_lookup.h>
#include <cli/env_runtime.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

namespace trv::cli {
namespace {

struct Listing {
    bool ofPaths;
    VariableNames names;
};

// Calls `take` with each name and its value, one after the other: all values together may be large.
// "TMP" is left out, because looking it up may create a directory.
template <class Take>
void forEachVariable(const Listing& listing, Take take) {
    for (const std::string& name : listing.names.names) {
        const Subject subject = {listing.ofPaths, name};
        if (!isTemporaryDirectory(subject)) take(subject.text(), lookUp(subject));
    }
}

// A text without "=" ends the walk of for_each_variable() in a program. Such an error is hard to
// find.
void warnOf(const std::vector<Origin>& otherTexts, std::ostream& err) {
    for (const Origin& origin : otherTexts) {
        err << qUtf8Printable(
            QStringLiteral("trvfiles: warning: %1: there is no \"=\" in the variable\n")
                .arg(originText(origin)));
    }
}

void printText(const Listing& listing, bool withOrigin, std::ostream& out) {
    forEachVariable(listing, [&](const std::string& name, const Value& value) {
        QString line = QStringLiteral("%1 = %2").arg(shown(name), shown(value.text));
        if (withOrigin || value.isFromEnvironment()) {
            line += QStringLiteral("  (%1)").arg(originText(value.origin));
        }
        out << qUtf8Printable(line) << '\n';
    });
}

void printJson(const Listing& listing, std::ostream& out) {
    JsonWriter json(out);
    json.beginArray("variables");
    forEachVariable(listing, [&](const std::string& name, const Value& value) {
        QJsonObject object = {
            {QStringLiteral("name"), fromNarrow(name)},
            {QStringLiteral("value"), fromNarrow(value.text)},
            {QStringLiteral("fromEnvironment"), value.isFromEnvironment()},
        };
        addOrigin(value.origin, object);
        json.addElement(object);
    });
    json.endArray();
    json.end();
}

ExitStatus list(const QCommandLineParser& call, const Console& console) {
    return askInstallation(call, console, [&](RuntimeMessages&, const Console& results) {
        const bool ofPaths = call.isSet(QStringLiteral("paths"));
        const Listing listing = {ofPaths, variableNames(ofPaths)};
        warnOf(listing.names.otherTexts, results.err);
        if (call.isSet(QStringLiteral("json"))) {
            printJson(listing, results.out);
        } else {
            printText(listing, call.isSet(QStringLiteral("origin")), results.out);
        }
        return done;
    });
}

}  // namespace

Command envListCommand() {
    Command command;
    command.name = QStringLiteral("env list");
    command.arguments = QStringLiteral("[--root DIR] [--paths] [--origin] [--json]");
    command.summary = QStringLiteral("List the variables of an installation");
    command.details = QStringLiteral(
        "Prints a line for each variable, with the value that a program gets. If this is\n"
        "the value of the process environment, which has precedence over the files, the\n"
        "line says so. TMP is left out, because its lookup would create a directory.\n");
    command.examples += QStringLiteral("trvfiles env list --origin");
    command.examples += QStringLiteral("trvfiles env list --paths");
    command.options = {
        rootOption(),
        QCommandLineOption(QStringLiteral("paths"), QStringLiteral("List the path lists instead")),
        QCommandLineOption(QStringLiteral("origin"),
                           QStringLiteral("Print the origin of each value")),
        jsonOption()};
    command.operand = QStringLiteral("argument");
    command.minFiles = 0;
    command.maxFiles = 0;
    command.run = list;
    return command;
}

}  // namespace trv::cli
