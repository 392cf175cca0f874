#include <cli/input_files.h>
#include <cli/text_output.h>
#include <cli/view_command.h>
#include <cli/view_output.h>
#include <cli/view_page.h>
#include <trvfiles/support/platform_programs.h>
#include <trvfiles/text/text_conversion.h>

#include <utility>

namespace trv::cli {
namespace {

const QString commandName = QStringLiteral("view");
const QString standardOutput = QStringLiteral("-");

struct Files {
    QStringList assemblies;
    /// Axis files and machine contexts, with their kinds.
    std::vector<std::pair<QString, FileKind>> frames;
};

// Reports each file whose kind is not found.
ExitStatus sortFiles(const QStringList& names, const Console& console, Files& files) {
    ExitStatus status = done;
    for (const QString& name : names) {
        FileKind kind = FileKind::unknown;
        if (const Problem problem = findKind(name, kind)) {
            status = report(name, problem, console);
        } else if (kind == FileKind::assembly) {
            files.assemblies += name;
        } else {
            files.frames.emplace_back(name, kind);
        }
    }
    return status;
}

// What is wrong with the number of assemblies; empty if nothing is.
QString mistakeIn(const QStringList& assemblies, bool isComparison) {
    const auto count = [&] {
        return counted(static_cast<unsigned long long>(assemblies.size()),
                       QStringLiteral("assembly"), QStringLiteral("assemblies"));
    };
    if (isComparison && assemblies.size() != 2) {
        return QStringLiteral("--diff takes two assemblies, not %1")
            .arg(assemblies.isEmpty() ? QStringLiteral("none") : count());
    }
    if (!isComparison && assemblies.size() > 1) {
        return QStringLiteral("'%1' is one assembly too many; --diff compares two")
            .arg(assemblies.at(1));
    }
    return {};
}

ExitStatus readScene(const Files& files, const Console& console, Scene& scene) {
    ExitStatus status = done;
    for (const QString& name : files.assemblies) {
        scene.assemblies.push_back({name, {}});
        const Problem problem = readAssembly(name, scene.assemblies.back().data);
        if (problem) status = report(name, problem, console);
    }
    for (const auto& [name, kind] : files.frames) {
        SceneFrame frame;
        if (const Problem problem = readFrame(name, kind, frame)) {
            status = report(name, problem, console);
        } else {
            scene.frames.push_back(frame);
        }
    }
    return status;
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
    if (target.name == standardOutput) {
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
    if (call.isSet(QStringLiteral("open")) && output == standardOutput) {
        return QStringLiteral("--open is not valid with standard output");
    }
    return {};
}

ExitStatus view(const QCommandLineParser& call, const Console& console) {
    return viewFiles(call, console, embeddedPageParts());
}

}  // namespace

ExitStatus viewFiles(const QCommandLineParser& call, const Console& console,
                     const PageParts& parts) {
    const QStringList names = call.positionalArguments();
    if (const QString mistake = mistakeIn(call); !mistake.isEmpty()) {
        return refuseCall(console, commandName, mistake);
    }
    if (parts.scripts.empty()) {
        console.err << "trvfiles: this command was built without libjs-three, which the page "
                       "needs\n";
        return failed;
    }
    Files files;
    if (const ExitStatus status = sortFiles(names, console, files); status != done) return status;
    const QString mistake = mistakeIn(files.assemblies, call.isSet(QStringLiteral("diff")));
    if (!mistake.isEmpty()) return refuseCall(console, commandName, mistake);
    Scene scene = {displayName(names.constFirst()), {}, {}};
    if (const ExitStatus status = readScene(files, console, scene); status != done) return status;

    const PageTarget target = {call.isSet(QStringLiteral("output"))
                                   ? call.value(QStringLiteral("output"))
                                   : pageNameOf(names.constFirst()),
                               names, call.isSet(QStringLiteral("force"))};
    SceneFiles geometry;
    const ExitStatus status = writeTo(
        target, [&](std::ostream& out) { writePage(scene, parts, geometry, out); }, console);
    if (status != done) return status;
    geometry.reportHidden(console.err);
    return call.isSet(QStringLiteral("open")) ? openPage(target.name, console) : done;
}

CommandGroup viewCommand() {
    Command command;
    command.name = commandName;
    command.arguments = QStringLiteral(
        "[-o OUT] [--force] [--open] FILE...\n"
        "       trvfiles view --diff [-o OUT] [--force] [--open] FILE FILE...");
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
        QCommandLineOption(QStringLiteral("open"), QStringLiteral("Open the page in the browser"))};
    command.maxFiles = Command::anyNumber;
    command.run = view;
    return {command};
}

}  // namespace trv::cli
