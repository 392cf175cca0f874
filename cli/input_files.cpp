#include <cli/input_files.h>
#include <cli/stream_copy.h>
#include <cli/text_output.h>
#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

namespace trv::cli {
namespace {

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

Problem problemOf(EFileIOStatus status, const CFileFault& fault) {
    if (status == eFileIOSuccess) return {};
    const QString reason = QString::fromStdString(fault.reason);
    if (fault.line == 0) return {status, reason};
    const QString line = QString::number(fault.line);
    if (fault.column == 0) return {status, QStringLiteral("line %1: %2").arg(line, reason)};
    return {
        status,
        QStringLiteral("line %1, column %2: %3").arg(line, QString::number(fault.column), reason)};
}

Problem notRegular() {
    return {eFileIOOpenError, notRegularText()};
}

Problem standardInputIsNotWritten() {
    return {eFileIOOpenError, QStringLiteral("standard input cannot be written")};
}

Problem pathOfCopy(const StreamCopy& copy, QString& path) {
    if (!copy.problem.isEmpty()) return {eFileIOOpenError, copy.problem};
    path = copy.path;
    return {};
}

}  // namespace

QString displayName(const QString& name) {
    return isStandardInput(name) ? QStringLiteral("standard input") : name;
}

QString problemText(const Problem& problem) {
    return QStringLiteral("%1: %2").arg(statusName(problem.status), shown(problem.reason));
}

ExitStatus report(const QString& name, const Problem& problem, const Console& console) {
    const QString text =
        QStringLiteral("trvfiles: %1: %2\n").arg(shown(displayName(name)), problemText(problem));
    console.err << qUtf8Printable(text);
    return failed;
}

QString notRegularText() {
    return QStringLiteral("not a regular file");
}

QString resolved(const QString& name) {
    return QFileInfo(QDir(QString()), nativePath(name)).absoluteFilePath();
}

Problem readablePath(const QString& name, QString& path) {
    if (isStandardInput(name)) return pathOfCopy(copyOfStandardInput(), path);
    path = resolved(name);
    const QFileInfo info(path);
    if (!info.exists() || info.isFile() || info.isDir()) return {};
    if (isPipe(path)) return pathOfCopy(copyOfPipe(path), path);
    return notRegular();
}

Problem findKind(const QString& name, FileKind& kind) {
    kind = FileKind::unknown;
    QString path;
    if (Problem problem = readablePath(name, path)) return problem;
    CFileFault fault;
    const platform::file_handle file = openForRead(path, platform::file_mode::text, &fault);
    if (file == nullptr) return problemOf(eFileIOOpenError, fault);
    kind = kindOf(file.get());
    if (kind == FileKind::unknown) return {eFileIOContentError, whyUnknown(file.get())};
    return {};
}

Problem readAssembly(const QString& name, CTrvAssemblyData& data,
                     std::vector<CFileFault::Note>* notes) {
    QString path;
    if (Problem problem = readablePath(name, path)) return problem;
    setInvalidDataPolicy();
    CFileFault fault;
    const EFileIOStatus status = CTrvAssemblyIO(path).read(data, &fault);
    if (notes != nullptr) *notes = std::move(fault.notes);
    return problemOf(status, fault);
}

Problem readAxis(const QString& name, AxisFile& axis) {
    QString path;
    if (Problem problem = readablePath(name, path)) return problem;
    AxisContent content;
    CFileFault fault;
    const EFileIOStatus status = readAxisFile(path, content, &fault);
    if (status != eFileIOSuccess) return problemOf(status, fault);
    axis.matrix = content.matrix;
    std::copy_n(content.tags.begin(), content.tagCount, axis.tags.begin());
    return {};
}

Problem writeAxis(const QString& name, const AxisFile& axis) {
    if (isStandardInput(name)) return standardInputIsNotWritten();
    const std::string text = axisFileText(axis.matrix, axis.tags[0], axis.tags[1], axis.tags[2]);
    CFileFault fault;
    return problemOf(writeAxisFile(resolved(name), text, &fault), fault);
}

Problem readContext(const QString& name, ContextFile& context) {
    QString path;
    if (Problem problem = readablePath(name, path)) return problem;
    CFileFault fault;
    const EFileIOStatus status = CMachineContextIO(path).read(context.data, &fault);
    for (const CFileFault::Note& note : fault.notes) {
        if (note.kind != CFileFault::Note::Kind::missingSection) continue;
        context.missingSections += QString::fromStdString(note.subject);
    }
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
    std::string narrow;
    if (!isOpenable(path) || !runtimePath(path, narrow)) return nullptr;
    return std::make_unique<file_replacement>(narrow);
}

QString whyNotListed(const QString& name) {
    std::error_code error = std::make_error_code(std::errc::no_such_file_or_directory);
    if (isOpenable(name)) std::filesystem::directory_iterator(systemPath(name), error);
    return error ? QString::fromStdString(error.default_error_condition().message()) : QString();
}

}  // namespace trv::cli
