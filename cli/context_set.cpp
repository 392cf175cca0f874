#include <cli/context_commands.h>
#include <cli/context_fields.h>
#include <cli/context_rewrite.h>
#include <cli/env_runtime.h>
#include <cli/file_output.h>
#include <cli/input_files.h>
#include <cli/text_output.h>

#include <QStringList>

#include <algorithm>
#include <memory>
#include <vector>

namespace trv::cli {
namespace {

struct Assignment {
    const ContextField* field;
    QString value;
};

// Parses "section.key=value".
//
// @return what is wrong with it; empty if nothing is
QString readAssignment(const QString& text, Assignment& assignment) {
    const int sign = text.indexOf(QLatin1Char('='));
    const QString name = text.left(sign);
    if (sign < 0) return QStringLiteral("'%1' is not of the form section.key=value").arg(text);
    if (name == QLatin1String("header.version")) {
        return QStringLiteral("header.version cannot be set: the writer sets it");
    }
    assignment.field = findContextField(name);
    if (assignment.field == nullptr) return QStringLiteral("unknown field '%1'").arg(name);
    assignment.value = text.mid(sign + 1);
    CMachineContextData ignored;
    return setContextField(*assignment.field, assignment.value, ignored);
}

QString readAssignments(const QStringList& texts, std::vector<Assignment>& assignments) {
    for (const QString& text : texts) {
        Assignment next = {};
        QString mistake = readAssignment(text, next);
        if (!mistake.isEmpty()) return mistake;
        for (const Assignment& earlier : assignments) {
            if (earlier.field != next.field) continue;
            return QStringLiteral("%1 is set twice").arg(nameOf(*next.field));
        }
        assignments.push_back(next);
    }
    return {};
}

// What would be lost, except the old values of the new fields; empty if nothing would be lost.
QString whyNotWritten(const QString& name, const std::vector<Assignment>& assignments,
                      bool mayDropLines) {
    QStringList newFields;
    for (const Assignment& assignment : assignments)
        newFields += nameOf(*assignment.field);
    const RewriteLoss loss = rewriteLoss(name, newFields);
    if (!loss.reason.isEmpty()) {
        return QStringLiteral("%1 '%2' would change: %3; set it too")
            .arg(loss.field, shown(loss.value), loss.reason);
    }
    if (loss.line == 0 || mayDropLines) return {};
    return QStringLiteral("line %1 would be lost: '%2'; --drop-unknown drops such lines")
        .arg(QString::number(loss.line), shown(loss.lineText));
}

ExitStatus save(const QString& name, const CMachineContextData& data, file_replacement* held,
                const Console& console) {
    RuntimeMessages messages(console.err);
    const Problem problem = writeContext(name, data, held);
    if (printReports(messages.takeReports(), console)) return failed;
    return problem ? report(name, problem, console) : done;
}

// One call of the command, file by file.
class Setting {
public:
    Setting(const QCommandLineParser& call, const std::vector<Assignment>& assignments,
            int fileCount, const Console& console)
        : assignments_(assignments),
          mayDropLines_(call.isSet(QStringLiteral("drop-unknown"))),
          asJson_(call.isSet(QStringLiteral("json"))),
          isAlone_(fileCount == 1),
          console_(console),
          output_(fileCount, Heading::blankLine, console.out) {}

    ExitStatus run(const QString& name) {
        // The file is held from reading to writing, so that no change of another process is lost.
        const std::unique_ptr<file_replacement> held = holdFile(name);
        ContextFile context;
        if (const Problem problem = readAsContext(name, context)) {
            return report(name, problem, console_);
        }
        const QString reason = whyNotWritten(name, assignments_, mayDropLines_);
        if (!reason.isEmpty()) return fail(name, reason, console_);

        for (const Assignment& assignment : assignments_)
            setContextField(*assignment.field, assignment.value, context.data);
        const ExitStatus status = save(name, context.data, held.get(), console_);
        return status == done ? printValues(name) : status;
    }

    void end() {
        if (asJson_) output_.endJson();
    }

private:
    ExitStatus printValues(const QString& name) {
        ContextFile written;
        if (const Problem problem = readContext(name, written)) {
            return report(name, problem, console_);
        }
        if (asJson_) {
            printAsJson(name, written.data);
            return done;
        }
        const QString start = isAlone_ ? QString() : shown(name) + QStringLiteral(": ");
        for (const Assignment& assignment : assignments_) {
            const ContextField& field = *assignment.field;
            console_.out << qUtf8Printable(
                QStringLiteral("%1%2=%3\n")
                    .arg(start, nameOf(field), shown(storedValue(field, written.data))));
        }
        return done;
    }

    void printAsJson(const QString& name, const CMachineContextData& written) {
        ContextFieldList fields;
        for (const Assignment& assignment : assignments_)
            fields.push_back(assignment.field);
        const QJsonObject object = contextJson(name, fields, written);
        output_.writeJson([&](JsonWriter& json) { json.addAll(object); });
    }

    const std::vector<Assignment>& assignments_;
    const bool mayDropLines_;
    const bool asJson_;
    const bool isAlone_;
    const Console& console_;
    FileOutput output_;
};

// Whether an argument after the first one is an assignment, or is meant as one. A file whose name
// has a "=" is given with a directory, as in "./a=b.mctx": no field has a separator in its name.
bool isAssignment(const QString& argument) {
    const int sign = argument.indexOf(QLatin1Char('='));
    if (sign < 0) return findContextField(argument) != nullptr;
    const QString name = argument.left(sign);
    return !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\'));
}

ExitStatus set(const QCommandLineParser& call, const Console& console) {
    const QString command = QStringLiteral("context set");
    const QStringList arguments = call.positionalArguments();
    const auto firstAssignment = std::find_if(arguments.begin() + 1, arguments.end(), isAssignment);
    const int fileCount = static_cast<int>(firstAssignment - arguments.begin());
    std::vector<Assignment> assignments;
    const QString mistake = readAssignments(arguments.mid(fileCount), assignments);
    if (!mistake.isEmpty()) return refuseCall(console, command, mistake);
    if (assignments.empty()) {
        return refuseCall(console, command,
                          QStringLiteral("an assignment section.key=value is missing"));
    }
    Setting setting(call, assignments, fileCount, console);
    ExitStatus status = done;
    for (const QString& name : arguments.mid(0, fileCount)) {
        if (setting.run(name) != done) status = failed;
    }
    setting.end();
    return status;
}

}  // namespace

Command contextSetCommand() {
    Command command;
    command.name = QStringLiteral("context set");
    command.arguments = QStringLiteral("[OPTION...] FILE... section.key=value...");
    command.summary = QStringLiteral("Change fields of machine contexts");
    QString fields;
    for (const ContextField& field : contextFields())
        fields += QStringLiteral("  %1\n").arg(nameOf(field));
    command.details =
        QStringLiteral(
            "Prints the new values as they are in the file. Rejects a value that the file\n"
            "would not give back, and a file of which something would be lost. A failure of\n"
            "one file does not stop the others. Fields:\n") +
        fields;
    command.examples +=
        QStringLiteral("trvfiles context set bracket-left.mctx machine.proximity=2.5");
    command.options = {
        QCommandLineOption(QStringLiteral("drop-unknown"),
                           QStringLiteral("Write the file without comments and unknown lines")),
        jsonOption()};
    command.operand = QStringLiteral("file name or assignment");
    command.minFiles = 2;
    command.maxFiles = Command::anyNumber;
    command.run = set;
    return command;
}

}  // namespace trv::cli
