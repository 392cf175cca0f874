#include <cli/assembly_report.h>
#include <cli/axis_report.h>
#include <cli/command.h>
#include <cli/context_report.h>
#include <cli/input_files.h>
#include <cli/text_output.h>

#include <algorithm>
#include <vector>

namespace trv::cli {
namespace {

Problem checkAssembly(const QString& name, QString& summary) {
    CTrvAssemblyData assembly;
    std::vector<CFileFault::Note> notes;
    if (Problem problem = readAssembly(name, assembly, &notes)) return problem;
    summary = assemblySummary(assembly);
    const auto isLeftOut = [](const CFileFault::Note& note) {
        return note.kind == CFileFault::Note::Kind::leftOut;
    };
    const auto first = std::find_if(notes.begin(), notes.end(), isLeftOut);
    if (first != notes.end()) {
        summary += QStringLiteral(", %1 left out for an incomplete <Orientation>, first in line %2")
                       .arg(QString::number(std::count_if(first, notes.end(), isLeftOut)),
                            QString::number(first->line));
    }
    return {};
}

Problem checkAxis(const QString& name, QString& summary) {
    AxisFile axis;
    if (Problem problem = readAxis(name, axis)) return problem;
    summary = axisSummary(axis);
    return {};
}

Problem checkContext(const QString& name, QString& summary) {
    ContextFile context;
    if (Problem problem = readContext(name, context)) return problem;
    summary = contextSummary(context);
    return {};
}

// @param summary  the content of the file in a few words; written if there is no problem
Problem checkFile(const QString& name, QString& summary) {
    FileKind kind = FileKind::unknown;
    Problem problem = findKind(name, kind);
    switch (kind) {
        case FileKind::assembly:
            return checkAssembly(name, summary);
        case FileKind::axis:
            return checkAxis(name, summary);
        case FileKind::machineContext:
            return checkContext(name, summary);
        case FileKind::unknown:
            break;
    }
    return problem;
}

ExitStatus check(const QCommandLineParser& call, const Console& console) {
    ExitStatus status = done;
    for (const QString& name : call.positionalArguments()) {
        QString summary;
        const Problem problem = checkFile(name, summary);
        if (problem) status = negative;
        const QString verdict =
            problem ? problemText(problem) : QStringLiteral("ok (%1)").arg(summary);
        console.out << qUtf8Printable(
            QStringLiteral("%1: %2\n").arg(shown(displayName(name)), verdict));
    }
    return status;
}

}  // namespace

CommandGroup checkCommand() {
    Command command;
    command.name = QStringLiteral("check");
    command.arguments = QStringLiteral("FILE...");
    command.summary = QStringLiteral("Check that files can be read");
    command.details = QStringLiteral(
        "Prints a line for each file. Exit status: 0 all files can be read, 1 a file\n"
        "cannot be read, 2 an error.\n");
    command.examples +=
        QStringLiteral("trvfiles check bracket.xml bracket-left.mctx table-a30.dat");
    command.maxFiles = Command::anyNumber;
    command.run = check;
    return {command};
}

}  // namespace trv::cli
