#include <cli/assembly_commands.h>
#include <cli/assembly_difference.h>
#include <cli/input_files.h>

namespace trv::cli {
namespace {

ExitStatus diff(const QCommandLineParser& call, const Console& console) {
    CTrvAssemblyData assemblies[2];
    for (int i = 0; i < 2; ++i) {
        const QString name = call.positionalArguments().at(i);
        if (const Problem problem = readAssembly(name, assemblies[i])) {
            return report(name, problem, console);
        }
    }
    if (printDifferences(assemblies[0], assemblies[1], console.out)) return negative;
    console.out << "The assemblies are equal\n";
    return done;
}

}  // namespace

CommandGroup assemblyCommands() {
    Command compare;
    compare.name = QStringLiteral("assembly diff");
    compare.arguments = QStringLiteral("FILE FILE");
    compare.summary = QStringLiteral("Show the differences between two assemblies");
    compare.details = QStringLiteral(
        "Prints a line for each difference beyond the tolerances. Differences in vec3 are\n"
        "noted and do not count. Exit status: 0 equal, 1 different, 2 an error.\n");
    compare.examples += QStringLiteral("trvfiles assembly diff bracket.xml bracket-rev-b.xml");
    compare.minFiles = 2;
    compare.maxFiles = 2;
    compare.run = diff;
    return {assemblyTreeCommand(), assemblyListCommand(), compare};
}

}  // namespace trv::cli
