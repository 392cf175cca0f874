#include <cli/assembly_commands.h>
#include <cli/assembly_report.h>
#include <cli/assembly_tree.h>
#include <cli/file_output.h>
#include <cli/input_files.h>

#include <cstdint>

namespace trv::cli {
namespace {

struct TreeOptions {
    ComponentSelection selection;
    TreeForm form;
    bool asJson = false;
    bool isSummary = false;
};

// @return what is wrong with the options; empty if nothing is
QString readOptions(const QCommandLineParser& call, const Console& console, TreeOptions& options) {
    constexpr uint maxLevel = 1000000000;
    options.asJson = call.isSet(QStringLiteral("json"));
    options.isSummary = call.isSet(QStringLiteral("summary"));
    options.form.matrix = call.isSet(QStringLiteral("matrix"));
    options.form.hasGuides = !call.isSet(QStringLiteral("no-guides"));
    if (call.isSet(QStringLiteral("depth"))) {
        bool isNumber = false;
        const uint level = call.value(QStringLiteral("depth")).toUInt(&isNumber);
        if (!isNumber || level > maxLevel) {
            return QStringLiteral("--depth takes a whole number from 0 on, not '%1'")
                .arg(call.value(QStringLiteral("depth")));
        }
        options.selection.maxLevel = level;
    }
    if (call.isSet(QStringLiteral("match"))) {
        options.selection.match = call.value(QStringLiteral("match"));
        if (options.selection.match.isEmpty()) return QStringLiteral("--match takes a text");
    }
    if (options.isSummary && (options.selection.maxLevel || !options.selection.match.isEmpty())) {
        return QStringLiteral("--summary excludes --depth and --match");
    }
    return readTextForm(call, console, options.form.text);
}

// @return whether a component is printed
bool printText(const CTrvAssemblyData& assembly, const TreeOptions& options, std::ostream& out) {
    if (!options.isSummary) return printTree(assembly, options.selection, options.form, out);
    printCounts(assembly, out);
    return true;
}

ExitStatus tree(const QCommandLineParser& call, const Console& console) {
    TreeOptions options;
    const QString mistake = readOptions(call, console, options);
    if (!mistake.isEmpty()) {
        return refuseCall(console, QStringLiteral("assembly tree"), mistake);
    }
    const QStringList names = call.positionalArguments();
    FileOutput output(names.size(), Heading::name, console.out);
    bool isAnyPrinted = false;
    const ExitStatus status = printEachFile(names, console, [&](const QString& name) -> Problem {
        CTrvAssemblyData assembly;
        if (Problem problem = readAssembly(name, assembly)) return problem;
        if (options.asJson) {
            output.writeJson([&](JsonWriter& json) {
                const std::size_t count = writeAssembly(
                    name, assembly, options.isSummary ? nullptr : &options.selection, json);
                isAnyPrinted = isAnyPrinted || options.isSummary || count > 0;
            });
        } else {
            isAnyPrinted = printText(assembly, options, output.beginText(name)) || isAnyPrinted;
        }
        return {};
    });
    if (options.asJson) output.endJson();
    return status == done && !isAnyPrinted ? negative : status;
}

}  // namespace

Command assemblyTreeCommand() {
    Command command;
    command.name = QStringLiteral("assembly tree");
    command.arguments = QStringLiteral("[OPTION...] FILE...");
    command.summary = QStringLiteral("Show the components of an assembly");
    command.details = QStringLiteral(
        "Prints a line for each component: its name, its geometry file, its placement in\n"
        "its parent's frame, its comment. A terminal gets lines of its width. \"-\" is\n"
        "standard input. Exit status: 0 done, 1 no component matches, 2 an error; a file\n"
        "that cannot be read is reported, the others are shown.\n");
    command.examples += QStringLiteral("trvfiles assembly tree bracket.xml");
    command.examples += QStringLiteral("trvfiles assembly tree --depth 1 bracket.xml");
    command.examples += QStringLiteral("trvfiles assembly tree --match jaw bracket.xml");
    command.options = {
        QCommandLineOption(QStringLiteral("depth"), QStringLiteral("Only N levels below the root"),
                           QStringLiteral("N")),
        QCommandLineOption(QStringLiteral("match"),
                           QStringLiteral("Only components with TEXT in name, comment or file"),
                           QStringLiteral("TEXT")),
        QCommandLineOption(QStringLiteral("matrix"),
                           QStringLiteral("Print axis vectors instead of angles")),
        noGuidesOption(),
        QCommandLineOption(QStringLiteral("summary"), QStringLiteral("Print only the counts")),
        jsonOption(),
        colorOption()};
    command.maxFiles = Command::anyNumber;
    command.run = tree;
    return command;
}

}  // namespace trv::cli
