#include <cli/input_files.h>
#include <cli/text_output.h>
#include <cli/view_command.h>
#include <cli/view_output.h>
#include <cli/view_page.h>
#include <trvfiles/support/platform_programs.h>
#include <trvfiles/text/text_conversion.h>

#include <functional>
#include <ostream>
#include <string>

namespace trv::cli {
namespace {

bool isStandardOutput(const QString& name) {
    return name == QLatin1String("-");
}

ExitStatus openPage(const QString& name, const Console& console) {
    const std::string reason = platform::open_on_desktop(systemPath(resolved(name)));
    if (reason.empty()) return done;
    return fail(
        name,
        QStringLiteral("the page is written, but not opened: ") + QString::fromStdString(reason),
        console);
}

// Writes to a file, or to standard output.
ExitStatus writeTo(const PageTarget& target, const std::function<void(std::ostream&)>& write,
                   const Console& console) {
    if (isStandardOutput(target.name)) {
        write(console.out);
        return done;
    }
    if (const Problem problem = savePage(target, write)) {
        return report(target.name, problem, console);
    }
    console.out << qUtf8Printable(shown(target.name)) << '\n';
    return done;
}

// What is wrong with the options; empty if nothing is.
QString mistakeIn(const QCommandLineParser& call) {
    const QString output = call.value(QStringLiteral("output"));
    if (call.isSet(QStringLiteral("output")) && output.isEmpty()) {
        return QStringLiteral("--output takes the name of a file");
    }
    if (call.isSet(QStringLiteral("open")) && isStandardOutput(output)) {
        return QStringLiteral("--open is not valid with standard output");
    }
    if (!call.isSet(QStringLiteral("json"))) return {};
    for (const char* const option : {"output", "force", "open"}) {
        if (!call.isSet(QLatin1String(option))) continue;
        return QStringLiteral("--json and --%1 exclude each other").arg(QLatin1String(option));
    }
    return {};
}

PageTarget targetOf(const QCommandLineParser& call) {
    const QStringList names = call.positionalArguments();
    const QString output = call.value(QStringLiteral("output"));
    return {output.isEmpty() ? pageNameOf(names.constFirst()) : output, names,
            call.isSet(QStringLiteral("force"))};
}

ExitStatus printData(const Scene& scene, const Console& console) {
    SceneFiles geometry;
    writeSceneData(scene, geometry, console.out);
    geometry.reportHidden(console.err);
    return done;
}

ExitStatus write(const Scene& scene, const PageParts& parts, const PageTarget& target,
                 const Console& console) {
    SceneFiles geometry;
    const ExitStatus status = writeTo(
        target, [&](std::ostream& out) { writePage(scene, parts, geometry, out); }, console);
    if (status == done) geometry.reportHidden(console.err);
    return status;
}

ExitStatus view(const QCommandLineParser& call, const Console& console) {
    return viewFiles(call, console, embeddedPageParts());
}

}  // namespace

ExitStatus viewFiles(const QCommandLineParser& call, const Console& console,
                     const PageParts& parts) {
    const QString mistake = mistakeIn(call);
    if (!mistake.isEmpty()) return refuseCall(console, QStringLiteral("view"), mistake);
    const bool isJson = call.isSet(QStringLiteral("json"));
    if (parts.scripts.empty() && !isJson) {
        console.err << "trvfiles: this command was built without libjs-three, which a page needs\n";
        return failed;
    }
    Scene scene;
    ExitStatus status =
        readScene(call.positionalArguments(), call.isSet(QStringLiteral("diff")), console, scene);
    if (status != done) return status;
    if (isJson) return printData(scene, console);
    const PageTarget target = targetOf(call);
    status = write(scene, parts, target, console);
    if (status != done || !call.isSet(QStringLiteral("open"))) return status;
    return openPage(target.name, console);
}

CommandGroup viewCommand() {
    Command command;
    command.name = QStringLiteral("view");
    command.arguments = QStringLiteral(
        "[--diff] [-o OUT] [--force] [--open] FILE...\n"
        "       trvfiles view --json [--diff] FILE...");
    command.summary = QStringLiteral("Write a page that shows an assembly in a browser");
    command.details = QStringLiteral(
        "The page is one file that needs no network: the geometry files in STL, OBJ and\n"
        "PLY are in it. Takes one assembly or none, and any number of axis files and of\n"
        "machine contexts, which are shown as coordinate frames; with --diff two\n"
        "assemblies, the old one first. The page is FILE.html in the current directory,\n"
        "named after the first file. Prints the name of the page. A geometry file that\n"
        "is not shown is reported, and the page has a box for it.\n");
    command.examples += QStringLiteral("trvfiles view bracket.xml");
    command.examples += QStringLiteral("trvfiles view bracket.xml table-a30.dat left-vise.ref");
    command.examples +=
        QStringLiteral("trvfiles view --diff bracket.xml bracket-rev-b.xml -o changes.html");
    command.options = {
        QCommandLineOption(QStringLiteral("diff"),
                           QStringLiteral("Show the differences between two assemblies")),
        QCommandLineOption({QStringLiteral("o"), QStringLiteral("output")},
                           QStringLiteral("The page; \"-\" is standard output"),
                           QStringLiteral("FILE")),
        QCommandLineOption(QStringLiteral("force"),
                           QStringLiteral("Replace a file that is not such a page")),
        QCommandLineOption(QStringLiteral("open"), QStringLiteral("Open the page in the browser")),
        QCommandLineOption(QStringLiteral("json"),
                           QStringLiteral("Print the data of the page instead"))};
    command.maxFiles = Command::anyNumber;
    command.run = view;
    return {command};
}

}  // namespace trv::cli
