#include <cli/diagnostic_codes.h>
#include <cli/input_files.h>
#include <cli/source_text.h>
#include <cli/stream_copy.h>
#include <cli/text_output.h>
#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/assembly/xml_tags.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace trv::cli {
namespace {

bool isPipeOrDevice(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir();
}

Problem standardInputIsNotWritten() {
    return {eFileIOOpenError, QStringLiteral("standard input cannot be written")};
}

Problem pathOfCopy(const StreamCopy& copy, QString& path) {
    if (!copy.problem.isEmpty()) {
        return {eFileIOOpenError, copy.problem, 0, 0, QStringLiteral("stream-not-read")};
    }
    path = copy.path;
    return {};
}

// A reader of one kind says of another kind only what it misses.
Problem explained(Problem problem, const LoadedFile& file, FileKind expected) {
    if (problem.status == eFileIOOpenError) return problem;
    const FileKind kind = file.kind();
    if (kind == FileKind::unknown || kind == expected) return problem;
    return {eFileIOContentError, otherKindText(kind), 0, 0, QStringLiteral("other-kind")};
}

// The parser reports the place at which it misses an end tag.
void nameUnclosedTag(const QString& name, Problem& problem) {
    const bool isUnclosed = problem.reason == QLatin1String("tag mismatch") ||
                            problem.reason == QLatin1String("unexpected end of file");
    if (!isUnclosed) return;
    const SourceText source = SourceText::ofFile(name, SourceText::Lines::ofXml);
    const XmlTag tag = unclosedTag(source.text());
    if (tag.name.isEmpty()) return;
    constexpr int maxLength = 40;
    const int line = source.placeOf(tag.begin).line;
    problem.reason += QStringLiteral(": <%1> of line %2 is not closed")
                          .arg(beginningOf(tag.name, maxLength), QString::number(line));
    problem.code = QStringLiteral("element-not-closed");
    problem.fields = {{QStringLiteral("subject"), tag.name}, {QStringLiteral("startLine"), line}};
}

void moveNotes(CFileFault& fault, Notes* notes) {
    if (notes != nullptr) *notes = std::move(fault.notes);
}

}  // namespace

Problem problemOf(EFileIOStatus status, const CFileFault& fault) {
    if (status == eFileIOSuccess) return {};
    return {status,       QString::fromStdString(fault.reason),   fault.line,
            fault.column, codeOf(fault.cause, fault.systemError), fieldsOf(fault)};
}

Problem systemProblem(EFileIOStatus status, int error) {
    CFileFault fault;
    set_system_fault(&fault, error);
    return problemOf(status, fault);
}

QString statusName(EFileIOStatus status) {
    switch (status) {
        case eFileIOSuccess:
            return QStringLiteral("eFileIOSuccess");
        case eFileIOOpenError:
            return QStringLiteral("eFileIOOpenError");
        case eFileIOShortWrite:
            return QStringLiteral("eFileIOShortWrite");
        case eFileIOContentError:
            return QStringLiteral("eFileIOContentError");
        case eFileIOStructureError:
            return QStringLiteral("eFileIOStructureError");
    }
    return QString::number(status);
}

QString displayName(const QString& name) {
    return isStandardInput(name) ? QStringLiteral("standard input") : name;
}

QString headingText(const QString& kind, const QString& name) {
    const QString end = QStringLiteral("\n\n");
    return name.isEmpty() ? kind + end : kind + QLatin1Char(' ') + shown(displayName(name)) + end;
}

QString problemText(const Problem& problem) {
    QString place;
    if (problem.line > 0) place = QStringLiteral("line %1").arg(problem.line);
    if (problem.line > 0 && problem.column > 0) {
        place += QStringLiteral(", column %1").arg(problem.column);
    }
    if (problem.line > 0) place += QStringLiteral(": ");
    return statusName(problem.status) + QStringLiteral(": ") + place + shown(problem.reason);
}

ExitStatus report(const QString& name, const Problem& problem, const Console& console) {
    const QString text =
        QStringLiteral("trvfiles: %1: %2\n").arg(shown(displayName(name)), problemText(problem));
    console.err << qUtf8Printable(text);
    return failed;
}

QString otherKindText(FileKind kind) {
    switch (kind) {
        case FileKind::assembly:
            return QStringLiteral("this is an assembly; try 'trvfiles assembly tree'");
        case FileKind::axis:
            return QStringLiteral("this is an axis file; try 'trvfiles axis show'");
        case FileKind::machineContext:
            return QStringLiteral("this is a machine context; try 'trvfiles show'");
        case FileKind::unknown:
            break;
    }
    return {};
}

ExitStatus fail(const QString& name, const QString& reason, const Console& console) {
    console.err << qUtf8Printable(
        QStringLiteral("trvfiles: %1: %2\n").arg(shown(displayName(name)), reason));
    return failed;
}

Problem notRegular() {
    return {eFileIOOpenError, QStringLiteral("not a regular file"), 0, 0,
            QStringLiteral("not-a-regular-file")};
}

QString resolved(const QString& name) {
    return QFileInfo(QDir(QString()), nativePath(name)).absoluteFilePath();
}

Problem readablePath(const QString& name, QString& path) {
    if (isStandardInput(name)) return pathOfCopy(copyOfStandardInput(), path);
    path = resolved(name);
    if (isRegularFile(path)) return {};
    if (isPipe(path)) return pathOfCopy(copyOfPipe(path), path);
    return isPipeOrDevice(path) ? notRegular() : Problem();
}

Problem whyKindIsUnknown(const LoadedFile& file) {
    if (file.readError != 0) return systemProblem(eFileIOContentError, file.readError);
    if (file.beginning.empty()) {
        return {eFileIOContentError, QStringLiteral("the file is empty"), 0, 0,
                QStringLiteral("file-empty")};
    }
    return {eFileIOContentError,
            QStringLiteral("neither an assembly, nor an axis file, nor a machine context"), 0, 0,
            QStringLiteral("kind-unknown")};
}

Problem findKind(const QString& name, FileKind& kind) {
    kind = FileKind::unknown;
    LoadedFile file;
    if (Problem problem = load(name, file)) return problem;
    kind = file.kind();
    return kind == FileKind::unknown ? whyKindIsUnknown(file) : Problem();
}

Problem readAssembly(const QString& name, CTrvAssemblyData& data, Notes* notes) {
    LoadedFile file;
    if (Problem problem = load(name, file)) return problem;
    return readAssembly(file, data, notes);
}

Problem readAssembly(const LoadedFile& file, CTrvAssemblyData& data, Notes* notes) {
    setInvalidDataPolicy();
    CFileFault fault;
    const EFileIOStatus status = file.isWhole
                                     ? CTrvAssemblyIO::readBytes(file.beginning, data, &fault)
                                     : CTrvAssemblyIO(file.path).read(data, &fault);
    moveNotes(fault, notes);
    if (status == eFileIOSuccess) return {};
    Problem problem = explained(problemOf(status, fault), file, FileKind::assembly);
    nameUnclosedTag(file.name, problem);
    return problem;
}

Problem readAxis(const QString& name, AxisFile& axis, Notes* notes) {
    LoadedFile file;
    if (Problem problem = load(name, file)) return problem;
    return readAxis(file, axis, notes);
}

Problem readAxis(const LoadedFile& file, AxisFile& axis, Notes* notes) {
    AxisContent content;
    CFileFault fault;
    const EFileIOStatus status = file.isWholeText() ? readAxisBytes(file.beginning, content, &fault)
                                                    : readAxisFile(file.path, content, &fault);
    moveNotes(fault, notes);
    if (status != eFileIOSuccess) return explained(problemOf(status, fault), file, FileKind::axis);
    axis.matrix = content.matrix;
    std::copy_n(content.tags.begin(), content.tagCount, axis.tags.begin());
    return {};
}

Problem writeAxis(const QString& name, const AxisFile& axis, file_replacement* held) {
    if (Problem problem = whyNotHeld(name, held)) return problem;
    const int failure = held->write_and_replace(
        axisFileText(axis.matrix, axis.tags[0], axis.tags[1], axis.tags[2]));
    return failure == 0 ? Problem() : systemProblem(eFileIOShortWrite, failure);
}

Problem readContext(const QString& name, ContextFile& context, Notes* notes) {
    LoadedFile file;
    if (Problem problem = load(name, file)) return problem;
    return readContext(file, context, notes);
}

Problem readContext(const LoadedFile& file, ContextFile& context, Notes* notes) {
    CFileFault fault;
    const EFileIOStatus status =
        file.isWholeText() ? CMachineContextIO::readText(file.beginning, context.data, &fault)
                           : CMachineContextIO(file.path).read(context.data, &fault);
    int withoutHeader = 0;
    for (const CFileFault::Note& note : fault.notes) {
        if (note.kind != CFileFault::Note::Kind::missingSection) continue;
        context.missingSections += QString::fromStdString(note.subject);
        if (note.line == 0) ++withoutHeader;
    }
    // A text without any section is read as a context that has its defaults.
    constexpr int alwaysWritten = 4;
    if (withoutHeader == alwaysWritten) {
        if (Problem problem = explained({}, file, FileKind::machineContext)) return problem;
    }
    moveNotes(fault, notes);
    return problemOf(status, fault);
}

Problem writeContext(const QString& name, const CMachineContextData& data, file_replacement* held) {
    if (isStandardInput(name)) return standardInputIsNotWritten();
    CFileFault fault;
    return problemOf(CMachineContextIO(resolved(name)).write(data, held, &fault), fault);
}

std::unique_ptr<file_replacement> holdFile(const QString& name) {
    if (isStandardInput(name)) return nullptr;
    const QString path = resolved(name);
    const QFileInfo info(path);
    std::string narrow;
    if (!isOpenable(path) || !runtimePath(path, narrow)) return nullptr;
    // With enough rights, a device would be replaced like a file.
    if (info.exists() && !info.isFile()) return nullptr;
    return std::make_unique<file_replacement>(narrow);
}

Problem whyNotHeld(const QString& name, const file_replacement* held) {
    if (held != nullptr) {
        return held->is_open() ? Problem() : systemProblem(eFileIOOpenError, held->open_failure());
    }
    if (isStandardInput(name)) return standardInputIsNotWritten();
    const QString path = resolved(name);
    if (!isOpenable(path)) return {eFileIOOpenError, QStringLiteral("not a valid file name")};
    if (QFileInfo(path).isDir()) return systemProblem(eFileIOOpenError, EISDIR);
    if (isPipeOrDevice(path)) return notRegular();
    return {eFileIOOpenError,
            QStringLiteral("the local code page lacks a character of the file name")};
}

QString whyNotListed(const QString& name) {
    std::error_code error = std::make_error_code(std::errc::no_such_file_or_directory);
    if (isOpenable(name)) std::filesystem::directory_iterator(systemPath(name), error);
    return error ? QString::fromStdString(error.default_error_condition().message()) : QString();
}

}  // namespace trv::cli
