#include <cli/env_commands.h>
#include <cli/env_expansion.h>
#include <cli/env_runtime.h>
#include <cli/text_output.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <optional>
#include <string>

namespace trv::cli {
namespace {

struct ExpandedText {
    QString text;
    Expansion expansion;
    UndefinedReferences undefined;

    bool isError() const { return is_expand_error(expansion.code); }
};

ExpandedText expandedText(const QString& text, bool asPath) {
    ExpandedText expanded = {text, {}, {}};
    expanded.expansion = expand(toNarrow(text), asPath, [&](const lookup_event& lookup) {
        expanded.undefined.add(lookup);
    });
    std::string& result = expanded.expansion.text;
    if (asPath) result = native_path(result.c_str());
    return expanded;
}

// An undefined reference still gives a text, with the null text in its place: it is printed, and
// the exit status says that something is missing.
void printText(const ExpandedText& expanded, const Console& console) {
    if (expanded.isError()) return;
    console.out << qUtf8Printable(shown(expanded.expansion.text)) << '\n';
    printUndefined(expanded.text, expanded.undefined, console);
}

QJsonObject json(const ExpandedText& expanded) {
    return {
        {QStringLiteral("text"), expanded.text},
        {QStringLiteral("expanded"),
         expanded.isError() ? QJsonValue() : QJsonValue(fromNarrow(expanded.expansion.text))},
        {QStringLiteral("status"), codeName(expanded.expansion.code)},
        {QStringLiteral("code"), expanded.expansion.code},
        {QStringLiteral("undefined"), expanded.undefined.json()},
    };
}

// Reports an error in both forms of output: a caller need not parse a document to see it.
ExitStatus statusOf(const ExpandedText& expanded, const Console& console) {
    if (expanded.isError()) {
        printFailure(expanded.text, codeText(expanded.expansion.code), console);
        return failed;
    }
    return expanded.expansion.code == EXP_UNDEFINED ? negative : done;
}

ExitStatus expandAll(const QCommandLineParser& call, const Console& console) {
    const bool asPath = call.isSet(QStringLiteral("path"));
    const bool asJson = call.isSet(QStringLiteral("json"));
    return askInstallation(call, console, [&](RuntimeMessages&, const Console& results) {
        ExitStatus status = done;
        std::optional<JsonWriter> writer;
        if (asJson) writer.emplace(results.out).beginArray("texts");
        for (const QString& text : call.positionalArguments()) {
            const ExpandedText expanded = expandedText(text, asPath);
            if (writer) {
                writer->addElement(json(expanded));
            } else {
                printText(expanded, results);
            }
            status = std::max(status, statusOf(expanded, results));
        }
        if (writer) {
            writer->endArray();
            writer->end();
        }
        return status;
    });
}

}  // namespace

Command envExpandCommand() {
    Command command;
    command.name = QStringLiteral("env expand");
    command.arguments = QStringLiteral("[--root DIR] [--path] [--json] TEXT...");
    command.summary = QStringLiteral("Replace the references in texts");
    command.details = QStringLiteral(
        "Prints a line for each text. In a shell, write a text with \"$\" or \"?\" in single\n"
        "quotes. Without --path separators do not change. Exit status: 0 done, 1 a\n"
        "reference is not defined, 2 an error.\n");
    command.examples += QStringLiteral("trvfiles env expand '$TRVHOME/site'");
    command.options = {
        rootOption(),
        QCommandLineOption(QStringLiteral("path"),
                           QStringLiteral("Print paths, with the separators of the system")),
        jsonOption()};
    command.operand = QStringLiteral("text");
    command.maxFiles = Command::anyNumber;
    command.run = expandAll;
    return command;
}

}  // namespace trv::cli
