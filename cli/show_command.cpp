#include <cli/assembly_report.h>
#include <cli/axis_report.h>
#include <cli/command.h>
#include <cli/context_report.h>
#include <cli/input_files.h>
#include <cli/text_output.h>

namespace trv::cli {
namespace {

Problem showAssembly(const QString& name, bool asJson, std::ostream& out) {
    CTrvAssemblyData assembly;
    if (Problem problem = readAssembly(name, assembly)) return problem;
    if (asJson) {
        printJson(assemblyJson(name, assembly), out);
    } else {
        printAssembly(name, assembly, out);
    }
    return {};
}

Problem showAxis(const QString& name, bool asJson, std::ostream& out) {
    AxisFile axis;
    if (Problem problem = readAxis(name, axis)) return problem;
    if (asJson) {
        printJson(axisJson(name, axis), out);
    } else {
        out << qUtf8Printable(axisText(name, axis));
    }
    return {};
}

Problem showContext(const QString& name, bool asJson, std::ostream& out) {
    ContextFile context;
    if (Problem problem = readContext(name, context)) return problem;
    if (asJson) {
        printJson(contextJson(name, context), out);
    } else {
        out << qUtf8Printable(contextText(name, context));
    }
    return {};
}

ExitStatus show(const QCommandLineParser& call, const Console& console) {
    const QString name = call.positionalArguments().at(0);
    const bool asJson = call.isSet(QStringLiteral("json"));
    FileKind kind = FileKind::unknown;
    Problem problem = findKind(name, kind);
    switch (kind) {
        case FileKind::assembly:
            problem = showAssembly(name, asJson, console.out);
            break;
        case FileKind::axis:
            problem = showAxis(name, asJson, console.out);
            break;
        case FileKind::machineContext:
            problem = showContext(name, asJson, console.out);
            break;
        case FileKind::unknown:
            break;
    }
    return problem ? report(name, problem, console) : done;
}

}  // namespace

CommandGroup showCommand() {
    Command command;
    command.name = QStringLiteral("show");
    command.arguments = QStringLiteral("[--json] FILE");
    command.summary = QStringLiteral("Show an assembly, an axis file or a machine context");
    command.details = QStringLiteral("The content of the file decides its kind.\n");
    command.examples += QStringLiteral("trvfiles show bracket.xml");
    command.examples += QStringLiteral("trvfiles show --json bracket-left.mctx");
    command.options = {jsonOption()};
    command.run = show;
    return {command};
}

}  // namespace trv::cli
