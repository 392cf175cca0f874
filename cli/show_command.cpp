#include <cli/assembly_report.h>
#include <cli/assembly_tree.h>
#include <cli/axis_report.h>
#include <cli/command.h>
#include <cli/context_report.h>
#include <cli/file_output.h>
#include <cli/input_files.h>
#include <cli/terminal_text.h>

namespace trv::cli {
namespace {

class Show {
public:
    Show(const QCommandLineParser& call, const TextForm& form, std::ostream& out)
        : asJson_(call.isSet(QStringLiteral("json"))),
          namesFiles_(!call.isSet(QStringLiteral("no-filename"))),
          form_{form, false, !call.isSet(QStringLiteral("no-guides"))},
          output_(call.positionalArguments().size(), Heading::blankLine, out) {}

    Problem show(const QString& name) {
        FileKind kind = FileKind::unknown;
        Problem problem = findKind(name, kind);
        switch (kind) {
            case FileKind::assembly:
                return showAssembly(name);
            case FileKind::axis:
                return showAxis(name);
            case FileKind::machineContext:
                return showContext(name);
            case FileKind::unknown:
                break;
        }
        return problem;
    }

    void end() {
        if (asJson_) output_.endJson();
    }

private:
    Problem showAssembly(const QString& name) {
        CTrvAssemblyData assembly;
        if (Problem problem = readAssembly(name, assembly)) return problem;
        const ComponentSelection everything;
        if (asJson_) {
            output_.writeJson(
                [&](JsonWriter& json) { writeAssembly(name, assembly, &everything, json); });
            return {};
        }
        std::ostream& out = output_.beginText(name);
        printAssemblyHead(inHeading(name), assembly, out);
        out << '\n';
        printTree(assembly, everything, form_, out);
        return {};
    }

    Problem showAxis(const QString& name) {
        AxisFile axis;
        if (Problem problem = readAxis(name, axis)) return problem;
        print(name, axisJson(name, axis), axisText(inHeading(name), axis));
        return {};
    }

    Problem showContext(const QString& name) {
        ContextFile context;
        if (Problem problem = readContext(name, context)) return problem;
        print(name, contextJson(name, context), contextText(inHeading(name), context));
        return {};
    }

    QString inHeading(const QString& name) const { return namesFiles_ ? name : QString(); }

    void print(const QString& name, const QJsonObject& object, const QString& text) {
        if (asJson_) {
            output_.writeJson([&](JsonWriter& json) { json.addAll(object); });
        } else {
            output_.beginText(name) << qUtf8Printable(text);
        }
    }

    bool asJson_;
    bool namesFiles_;
    TreeForm form_;
    FileOutput output_;
};

ExitStatus show(const QCommandLineParser& call, const Console& console) {
    TextForm form;
    const QString mistake = readTextForm(call, console, form);
    if (!mistake.isEmpty()) return refuseCall(console, QStringLiteral("show"), mistake);
    const QStringList names = call.positionalArguments();
    Show files(call, form, console.out);
    const ExitStatus status =
        printEachFile(names, console, [&](const QString& name) { return files.show(name); });
    files.end();
    return status;
}

}  // namespace

CommandGroup showCommand() {
    Command command;
    command.name = QStringLiteral("show");
    command.arguments = QStringLiteral("[OPTION...] FILE...");
    command.summary = QStringLiteral("Show an assembly, an axis file or a machine context");
    command.details = QStringLiteral(
        "The content of the file decides its kind. \"-\" is standard input. A file that\n"
        "cannot be read is reported, the others are shown; the exit status is then 2.\n");
    command.examples += QStringLiteral("trvfiles show bracket.xml");
    command.examples += QStringLiteral("trvfiles show --json bracket-left.mctx");
    command.examples += QStringLiteral("trvfiles show bracket.xml table-a30.dat bracket-left.mctx");
    const QCommandLineOption noFilename(QStringLiteral("no-filename"),
                                        QStringLiteral("Leave out the file name in the heading"));
    command.options = {jsonOption(), noFilename, noGuidesOption(), colorOption()};
    command.maxFiles = Command::anyNumber;
    command.run = show;
    return {command};
}

}  // namespace trv::cli
