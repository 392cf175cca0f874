#include <cli/assembly_commands.h>
#include <cli/file_output.h>
#include <cli/input_files.h>
#include <cli/placement_list.h>

namespace trv::cli {
namespace {

ExitStatus listAsText(const QStringList& names, const Console& console) {
    FileOutput output(names.size(), Heading::name, console.out);
    return printEachFile(names, console, [&](const QString& name) -> Problem {
        CTrvAssemblyData assembly;
        if (Problem problem = readAssembly(name, assembly)) return problem;
        printPlacements(assembly, output.beginText(name));
        return {};
    });
}

// One table for all files.
ExitStatus listAsCsv(const QStringList& names, bool isRaw, const Console& console) {
    bool hasHeader = false;
    return printEachFile(names, console, [&](const QString& name) -> Problem {
        CTrvAssemblyData assembly;
        if (Problem problem = readAssembly(name, assembly)) return problem;
        if (!hasHeader) printCsvHeader(console.out);
        hasHeader = true;
        printPlacementsAsCsv(name, assembly, isRaw, console.out);
        return {};
    });
}

ExitStatus listAsJson(const QStringList& names, const Console& console) {
    FileOutput output(names.size(), Heading::name, console.out);
    const ExitStatus status = printEachFile(names, console, [&](const QString& name) -> Problem {
        CTrvAssemblyData assembly;
        if (Problem problem = readAssembly(name, assembly)) return problem;
        output.writeJson([&](JsonWriter& json) { writePlacements(name, assembly, json); });
        return {};
    });
    output.endJson();
    return status;
}

ExitStatus list(const QCommandLineParser& call, const Console& console) {
    const bool asJson = call.isSet(QStringLiteral("json"));
    const bool asCsv = call.isSet(QStringLiteral("csv"));
    const bool isRaw = call.isSet(QStringLiteral("raw"));
    if (asJson && asCsv) {
        return refuseCall(console, QStringLiteral("assembly list"),
                          QStringLiteral("--json and --csv exclude each other"));
    }
    if (isRaw && !asCsv) {
        return refuseCall(console, QStringLiteral("assembly list"),
                          QStringLiteral("--raw is only for --csv"));
    }
    const QStringList names = call.positionalArguments();
    if (asJson) return listAsJson(names, console);
    return asCsv ? listAsCsv(names, isRaw, console) : listAsText(names, console);
}

}  // namespace

Command assemblyListCommand() {
    Command command;
    command.name = QStringLiteral("assembly list");
    command.arguments = QStringLiteral("[--json | --csv [--raw]] FILE...");
    command.summary = QStringLiteral("List the placed geometry files of an assembly");
    command.details = QStringLiteral(
        "Prints a line for each placed file: its name, its translation and its three axis\n"
        "vectors in the assembly's frame. Disabled components are left out. JSON and CSV\n"
        "also have the path of the component. \"-\" is standard input. A file that cannot\n"
        "be read is reported, the others are listed; the exit status is then 2.\n");
    command.examples += QStringLiteral("trvfiles assembly list bracket.xml");
    command.examples +=
        QStringLiteral("trvfiles assembly list --csv bracket.xml bracket-rev-b.xml");
    command.options = {
        jsonOption(),
        QCommandLineOption(QStringLiteral("csv"),
                           QStringLiteral("Print comma-separated values with a header line")),
        QCommandLineOption(QStringLiteral("raw"),
                           QStringLiteral("Print texts like =A1 without a quote before them"))};
    command.maxFiles = Command::anyNumber;
    command.run = list;
    return command;
}

}  // namespace trv::cli
