#include <cli/assembly_difference.h>
#include <cli/assembly_edit.h>
#include <cli/assembly_edits.h>
#include <cli/assembly_loss.h>
#include <cli/assembly_save.h>
#include <cli/difference_json.h>
#include <cli/input_files.h>
#include <cli/text_output.h>
#include <trvfiles/text/open_file.h>

#include <QFile>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace trv::cli {
namespace {

enum class Outcome { changed, unchanged, failed };

Outcome failedWith(const QString& name, const Problem& problem, const Console& console) {
    report(name, problem, console);
    return Outcome::failed;
}

Outcome failedWith(const QString& name, const QString& reason, const Console& console) {
    fail(name, reason, console);
    return Outcome::failed;
}

Problem readForEdit(const QString& name, CTrvAssemblyData& assembly,
                    std::vector<CFileFault::Note>& notes) {
    FileKind kind = FileKind::unknown;
    if (Problem problem = findKind(name, kind)) return problem;
    if (kind != FileKind::assembly) return {eFileIOContentError, otherKindText(kind)};
    return readAssembly(name, assembly, &notes);
}

// What of the file the record does not hold, human-readable; empty if nothing.
QString whatIsLost(const QString& name, const std::vector<CFileFault::Note>& notes) {
    if (!notes.empty()) {
        const CFileFault::Note& note = notes.front();
        QString text = shown(QString::fromStdString(note.text));
        if (note.line == 0) return text;
        return QStringLiteral("line %1: %2").arg(QString::number(note.line), text);
    }
    platform::file_handle handle;
    QFile file;
    if (!openForRead(resolved(name), handle, file)) return {};
    const AssemblyLoss loss = findAssemblyLoss(file);
    if (loss.line == 0) return {};
    return QStringLiteral("line %1: %2 would be lost")
        .arg(QString::number(loss.line), shown(loss.what));
}

// The edits of a call, file by file.
class Edit {
public:
    // @param json  in the array of files; nullptr if text is printed
    Edit(const QCommandLineParser& call, const AssemblyEdits& edits, JsonWriter* json,
         const Console& console)
        : edits_(edits),
          json_(json),
          console_(console),
          isDryRun_(call.isSet(QStringLiteral("dry-run"))),
          isForced_(call.isSet(QStringLiteral("force"))),
          isAlone_(call.positionalArguments().size() == 1) {}

    Outcome run(const QString& name) const {
        // The file is held from reading to writing, so that no change of another process is lost.
        const std::unique_ptr<file_replacement> held = isDryRun_ ? nullptr : holdFile(name);
        CTrvAssemblyData assembly;
        std::vector<CFileFault::Note> notes;
        if (const Problem problem = readForEdit(name, assembly, notes)) {
            return failedWith(name, problem, console_);
        }
        const ComponentBody& root = ComponentBody::of(assembly.getRootComponent());
        std::vector<ComponentPlace> places;
        const QString mistake = findPlaces(edits_, root, places);
        if (!mistake.isEmpty()) return failedWith(name, mistake, console_);
        if (!wouldChange(edits_, places, root)) {
            printUnchanged(name);
            return Outcome::unchanged;
        }

        const QString loss = isForced_ ? QString() : whatIsLost(name, notes);
        if (!loss.isEmpty()) {
            return failedWith(
                name, loss + QStringLiteral("; --force writes the file as it is read"), console_);
        }
        const CTrvAssemblyData before = assembly;
        applyEdits(edits_, places, ComponentBody::editable(assembly.getRootComponent()));
        const Problem problem =
            isDryRun_ ? whyNotSaved(assembly) : saveAssembly(name, assembly, held.get());
        if (problem) return failedWith(name, problem, console_);
        printChanged(name, before, assembly);
        return Outcome::changed;
    }

private:
    void printUnchanged(const QString& name) const {
        if (json_ == nullptr) return;
        beginJson(name, false);
        json_->beginArray("differences");
        json_->endArray();
        json_->endObject();
    }

    void printChanged(const QString& name, const CTrvAssemblyData& before,
                      const CTrvAssemblyData& after) const {
        if (json_ != nullptr) {
            beginJson(name, true);
            addDifferences(before, after, *json_);
            json_->endObject();
            return;
        }
        if (!isAlone_) console_.out << qUtf8Printable(shown(name)) << ":\n";
        printDifferences(before, after, console_.out);
    }

    void beginJson(const QString& name, bool isChanged) const {
        json_->beginObject();
        json_->add("file", name);
        json_->addBoolean("changed", isChanged);
    }

    const AssemblyEdits& edits_;
    JsonWriter* const json_;
    const Console& console_;
    const bool isDryRun_;
    const bool isForced_;
    const bool isAlone_;
};

void printSummary(int changed, int failures, int files, bool isDryRun, const Console& console) {
    QString text = QStringLiteral("trvfiles: %1 of %2 %3")
                       .arg(QString::number(changed),
                            counted(static_cast<unsigned>(files), QStringLiteral("file"),
                                    QStringLiteral("files")),
                            isDryRun ? QStringLiteral("would change") : QStringLiteral("changed"));
    if (failures != 0) text += QStringLiteral(", %1 failed").arg(failures);
    console.err << qUtf8Printable(text) << '\n';
}

ExitStatus edit(const QCommandLineParser& call, const Console& console) {
    AssemblyEdits edits;
    const QString mistake = readEdits(call, edits);
    if (!mistake.isEmpty()) return refuseCall(console, QStringLiteral("assembly edit"), mistake);

    const QStringList names = call.positionalArguments();
    std::optional<JsonWriter> json;
    if (call.isSet(QStringLiteral("json"))) json.emplace(console.out).beginArray("files");
    const Edit editing(call, edits, json ? &*json : nullptr, console);
    int changed = 0;
    int failures = 0;
    for (const QString& name : names) {
        const Outcome outcome = editing.run(name);
        if (outcome == Outcome::changed) ++changed;
        if (outcome == Outcome::failed) ++failures;
    }
    if (json) {
        json->endArray();
        json->end();
    }
    if (names.size() > 1 || changed + failures == 0) {
        printSummary(changed, failures, names.size(), call.isSet(QStringLiteral("dry-run")),
                     console);
    }
    return failures == 0 ? done : failed;
}

}  // namespace

Command assemblyEditCommand() {
    Command command;
    command.name = QStringLiteral("assembly edit");
    command.arguments = QStringLiteral("EDIT... FILE...");
    command.summary = QStringLiteral("Change assemblies");
    command.details = QStringLiteral(
        "Prints the changes of each file as 'assembly diff' does. A PATH is that of\n"
        "'assembly diff'; an index may be left out after a name that no sibling has. A\n"
        "key is name, comment, translation (X,Y,Z) or enabled (0 or 1). A file with an\n"
        "edit that fails is not written, and the others are. An EDIT is --rename-file,\n"
        "--set, --enable or --disable; each may be given several times.\n");
    command.examples += QStringLiteral(
        "trvfiles assembly edit --rename-file geometry/vise-jaw.stl=j.stl bracket.xml");
    command.examples +=
        QStringLiteral("trvfiles assembly edit --disable 'Bracket OP10/Right vise' bracket.xml");
    command.options = editOptions();
    command.options +=
        {QCommandLineOption(QStringLiteral("dry-run"), QStringLiteral("Write no file")),
         QCommandLineOption(QStringLiteral("force"),
                            QStringLiteral("Write a file of which something is lost")),
         jsonOption()};
    command.maxFiles = Command::anyNumber;
    command.run = edit;
    return command;
}

}  // namespace trv::cli
