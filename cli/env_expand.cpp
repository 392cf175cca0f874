#include <cli/env_commands.h>
#include <cli/env_expansion.h>
#include <cli/env_runtime.h>
#include <cli/text_output.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <string>
#include <utility>

namespace trv::cli {
namespace {

// An undefined reference still gives a text, with the null text in its place: it is printed, and
// the exit status says that something is missing.
ExitStatus expandText(const QString& text, bool asPath, const Console& console) {
    UndefinedReferences undefined;
    Expansion expansion =
        expand(toNarrow(text), asPath, [&](const lookup_event& lookup) { undefined.add(lookup); });
    if (is_expand_error(expansion.code)) {
        printFailure(text, codeText(expansion.code), console);
        return failed;
    }
    const std::string result =
        asPath ? native_path(expansion.text.c_str()) : std::move(expansion.text);
    console.out << qUtf8Printable(shown(result)) << '\n';
    if (expansion.code != EXP_UNDEFINED) return done;
    printUndefined(text, undefined, console);
    return negative;
}

ExitStatus expandAll(const QCommandLineParser& call, const Console& console) {
    const bool asPath = call.isSet(QStringLiteral("path"));
    return askInstallation(call, console, [&](RuntimeMessages&, const Console& results) {
        ExitStatus status = done;
        for (const QString& text : call.positionalArguments())
            status = std::max(status, expandText(text, asPath, results));
        return status;
    });
}

}  // namespace

Command envExpandCommand() {
    Command command;
    command.name = QStringLiteral("env expand");
    command.arguments = QStringLiteral("[--root DIR] [--path] TEXT...");
    command.summary = QStringLiteral("Replace the references in texts");
    command.details = QStringLiteral(
        "Prints a line for each text. In a shell, write a text with \"$\" or \"?\" in single\n"
        "quotes. Without --path separators do not change. Exit status: 0 done, 1 a\n"
        "reference is not defined, 2 an error.\n");
    command.examples += QStringLiteral("trvfiles env expand '$TRVHOME/site'");
    command.options = {
        rootOption(),
        QCommandLineOption(QStringLiteral("path"),
                           QStringLiteral("Print paths, with the separators of the system"))};
    command.operand = QStringLiteral("text");
    command.maxFiles = Command::anyNumber;
    command.run = expandAll;
    return command;
}

}  // namespace trv::cli
