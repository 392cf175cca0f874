#include <cli/context_commands.h>
#include <cli/context_search.h>
#include <cli/env_runtime.h>
#include <cli/input_files.h>
#include <cli/text_output.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>
#include <QFileInfo>
#include <QStringList>

namespace trv::cli {
namespace {

struct Form {
    bool all;
    bool asJson;
};

QStringList favoritesIn(const QString& directory) {
    QStringList paths;
    for (const std::wstring& path :
         CMachineContextUtils::sGetFavoriteMachineContext(toWide(directory))) {
        paths += QDir::toNativeSeparators(fromWide(path));
    }
    return paths;
}

// What there is instead of favourites.
QString nothingFoundText(const QString& directory, bool all) {
    if (all) return QStringLiteral("there are no contexts");
    const int others = contextsBelow(directory).size();
    const QString text = QStringLiteral("no context has the name of its directory");
    if (others == 0) return text + QStringLiteral(", and there are no other contexts");
    if (others == 1) return text + QStringLiteral("; 1 other context is there, list it with --all");
    return text + QStringLiteral("; %1 other contexts are there, list them with --all").arg(others);
}

ExitStatus listIn(const QString& directory, Form form, const Console& console) {
    const QString reason = whyNotListed(directory);
    if (!reason.isEmpty()) return fail(directory, reason, console);
    const QStringList paths = form.all ? contextsBelow(directory) : favoritesIn(directory);
    if (paths.isEmpty()) {
        console.err << qUtf8Printable(
            QStringLiteral("trvfiles: %1: %2\n")
                .arg(shown(directory), nothingFoundText(directory, form.all)));
    }
    if (form.asJson) {
        printJson({{QStringLiteral("directory"), directory},
                   {QStringLiteral("contexts"), QJsonArray::fromStringList(paths)}},
                  console.out);
        return done;
    }
    for (const QString& path : paths)
        console.out << qUtf8Printable(shown(path)) << '\n';
    return done;
}

ExitStatus listFavorites(RuntimeMessages& messages, Form form, const Console& console) {
    const QString directory = QDir::toNativeSeparators(
        fromWide(CMachineContextUtils::sGetFavoriteMachineContextDirectoryW()));
    if (!directory.isEmpty()) return listIn(directory, form, console);
    if (!printReports(messages.takeReports(), console)) {
        console.err << "trvfiles: there is no favourite directory: set TRV_MCTX_DEF or TRVHOME, "
                       "or give DIR\n";
    }
    return failed;
}

ExitStatus list(const QCommandLineParser& call, const Console& console) {
    const Form form = {call.isSet(QStringLiteral("all")), call.isSet(QStringLiteral("json"))};
    const QStringList directories = call.positionalArguments();
    if (!directories.isEmpty()) return listIn(directories.at(0), form, console);
    return askInstallationIfAny(call, console,
                                [&](RuntimeMessages& messages, const Console& results) {
                                    return listFavorites(messages, form, results);
                                });
}

void printDefault(const QString& file, int position, bool asJson, const Console& console) {
    const bool isThere = !file.isEmpty();
    if (asJson) {
        printJson({{QStringLiteral("file"), isThere ? QJsonValue(file) : QJsonValue()},
                   {QStringLiteral("position"), isThere ? QJsonValue(position) : QJsonValue()}},
                  console.out);
    } else if (isThere) {
        console.out << qUtf8Printable(shown(file)) << '\n';
    } else {
        console.err << "trvfiles: there is no default context: no name has a machine position, "
                       "such as [MACHINE_POSITION_1].mctx\n";
    }
}

ExitStatus choose(const QCommandLineParser& call, const Console& console) {
    QStringList files = call.positionalArguments();
    if (files.size() == 1 && QFileInfo(resolved(files.at(0))).isDir()) {
        const QString directory = files.at(0);
        const QString reason = whyNotListed(directory);
        if (!reason.isEmpty()) return fail(directory, reason, console);
        files = contextsIn(directory);
    }
    std::vector<std::wstring> names;
    for (const QString& file : files) {
        const QFileInfo info(resolved(file));
        if (!info.isFile()) {
            return fail(file, QStringLiteral("there is no file of that name"), console);
        }
        names.push_back(toWide(info.fileName()));
    }
    int index = -1;
    int position = -1;
    const bool isFound =
        CMachineContextUtils::sGetDefaultMachineContext(std::move(names), index, position);
    printDefault(isFound ? files.at(index) : QString(), position,
                 call.isSet(QStringLiteral("json")), console);
    return isFound ? done : negative;
}

}  // namespace

Command contextListCommand() {
    Command command;
    command.name = QStringLiteral("context list");
    command.arguments = QStringLiteral("[--root DIR] [--all] [--json] [DIR]");
    command.summary = QStringLiteral("List the favourite machine contexts");
    command.details = QStringLiteral(
        "Prints the path of each context below DIR that has the name of its directory.\n"
        "Without DIR it searches the favourite directory of the installation:\n"
        "TRV_MCTX_DEF, or else $TRVHOME\\standard\\machine_context. If there is no such\n"
        "context, a note says how many others there are.\n");
    command.examples += QStringLiteral("trvfiles context list --json");
    command.examples += QStringLiteral("trvfiles context list --all .");
    command.options = {
        rootOption(),
        QCommandLineOption(QStringLiteral("all"),
                           QStringLiteral("List every context below DIR, whatever its name is")),
        jsonOption()};
    command.operand = QStringLiteral("directory");
    command.minFiles = 0;
    command.run = list;
    return command;
}

Command contextDefaultCommand() {
    Command command;
    command.name = QStringLiteral("context default");
    command.arguments = QStringLiteral("[--json] FILE... | DIR");
    command.summary = QStringLiteral("Show which machine context is the default one");
    command.details = QStringLiteral(
        "Prints its path. Among the files, or the context files in DIR, it is the one\n"
        "with the highest machine position in its name, for example\n"
        "[MACHINE_POSITION_2].mctx. Exit status: 0 there is one, 1 there is none, 2 an\n"
        "error.\n");
    command.examples += QStringLiteral("trvfiles context default .");
    command.options = {jsonOption()};
    command.maxFiles = Command::anyNumber;
    command.run = choose;
    return command;
}

}  // namespace trv::cli
