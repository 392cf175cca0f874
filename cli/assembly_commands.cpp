#include <cli/assembly_difference.h>
#include <cli/assembly_edit.h>
#include <cli/assembly_report.h>
#include <cli/command.h>
#include <cli/difference_json.h>
#include <cli/input_files.h>
#include <cli/text_output.h>

namespace trv::cli {
namespace {

ExitStatus tree(const QCommandLineParser& call, const Console& console) {
    const QString name = call.positionalArguments().at(0);
    CTrvAssemblyData assembly;
    if (const Problem problem = readAssembly(name, assembly)) return report(name, problem, console);
    printTree(assembly, console.out);
    return done;
}

ExitStatus list(const QCommandLineParser& call, const Console& console) {
    const bool asJson = call.isSet(QStringLiteral("json"));
    const bool asCsv = call.isSet(QStringLiteral("csv"));
    if (asJson && asCsv) {
        return refuseCall(console, QStringLiteral("assembly list"),
                          QStringLiteral("--json and --csv exclude each other"));
    }
    const QString name = call.positionalArguments().at(0);
    CTrvAssemblyData assembly;
    if (const Problem problem = readAssembly(name, assembly)) return report(name, problem, console);
    if (asJson) {
        printJson(placementsJson(name, assembly), console.out);
    } else if (asCsv) {
        printPlacementsAsCsv(assembly, console.out);
    } else {
        printPlacements(assembly, console.out);
    }
    return done;
}

ExitStatus diff(const QCommandLineParser& call, const Console& console) {
    const QStringList names = call.positionalArguments();
    CTrvAssemblyData assemblies[2];
    for (int i = 0; i < 2; ++i) {
        if (const Problem problem = readAssembly(names.at(i), assemblies[i])) {
            return report(names.at(i), problem, console);
        }
    }
    if (call.isSet(QStringLiteral("json"))) {
        const bool found = printDifferencesAsJson({names.at(0), assemblies[0]},
                                                  {names.at(1), assemblies[1]}, console.out);
        return found ? negative : done;
    }
    if (printDifferences(assemblies[0], assemblies[1], console.out)) return negative;
    console.out << "The assemblies are equal\n";
    return done;
}

}  // namespace

CommandGroup assemblyCommands() {
    Command showTree;
    showTree.name = QStringLiteral("assembly tree");
    showTree.arguments = QStringLiteral("FILE");
    showTree.summary = QStringLiteral("Show the components of an assembly");
    showTree.details = QStringLiteral(
        "Prints a line for each component: its name, its geometry file, its placement in\n"
        "its parent's frame, its comment. Axes are printed if they are not those of the\n"
        "parent.\n");
    showTree.examples += QStringLiteral("trvfiles assembly tree bracket.xml");
    showTree.run = tree;

    Command listFiles;
    listFiles.name = QStringLiteral("assembly list");
    listFiles.arguments = QStringLiteral("[--json | --csv] FILE");
    listFiles.summary = QStringLiteral("List the placed geometry files of an assembly");
    listFiles.details = QStringLiteral(
        "Prints a line for each placed file: its name, its translation and its three axis\n"
        "vectors in the assembly's frame. Disabled components are left out.\n");
    listFiles.examples += QStringLiteral("trvfiles assembly list bracket.xml");
    listFiles.examples += QStringLiteral("trvfiles assembly list --csv bracket.xml");
    listFiles.options = {
        jsonOption(),
        QCommandLineOption(QStringLiteral("csv"),
                           QStringLiteral("Print comma-separated values with a header line"))};
    listFiles.run = list;

    Command compare;
    compare.name = QStringLiteral("assembly diff");
    compare.arguments = QStringLiteral("[--json] FILE FILE");
    compare.summary = QStringLiteral("Show the differences between two assemblies");
    compare.details = QStringLiteral(
        "Prints a line for each difference beyond the tolerances. Components are paired\n"
        "by content, name and geometry file: what was added, removed or moved among its\n"
        "siblings is one line. Differences in vec3 are noted and do not count.\n"
        "Exit status: 0 equal, 1 different, 2 an error.\n");
    compare.options = {jsonOption()};
    compare.examples += QStringLiteral("trvfiles assembly diff bracket.xml bracket-rev-b.xml");
    compare.minFiles = 2;
    compare.maxFiles = 2;
    compare.run = diff;
    return {showTree, listFiles, compare, assemblyEditCommand()};
}

}  // namespace trv::cli
