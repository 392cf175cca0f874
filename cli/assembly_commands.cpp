#include <cli/assembly_commands.h>
#include <cli/assembly_difference.h>
#include <cli/assembly_edit.h>
#include <cli/difference_json.h>
#include <cli/input_files.h>

namespace trv::cli {
namespace {

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
    return {assemblyTreeCommand(), assemblyListCommand(), compare, assemblyEditCommand()};
}

}  // namespace trv::cli
