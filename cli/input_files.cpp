#include <cli/input_files.h>
#include <cli/text_output.h>
#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/invalid_data_policy.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/machine_context/CSectionedFile.h>
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

Problem systemProblem(EFileIOStatus status, int code) {
    return {status, QString::fromStdString(std::generic_category().message(code))};
}

platform::file_handle open(const QString& name, Problem& problem) {
    errno = 0;
    platform::file_handle file = openForRead(resolved(name), platform::file_mode::text);
    if (file == nullptr) problem = systemProblem(eFileIOOpenError, errno);
    return file;
}

// A pipe would be empty the second time, and a device may have no end.
bool canBeReadTwice(const QString& name) {
    const QFileInfo info(resolved(name));
    return !info.exists() || info.isFile() || info.isDir();
}

Problem notRegular() {
    return {eFileIOOpenError, notRegularText()};
}

QString faultText(const ParseFault& fault) {
    if (fault.line <= 0) return fault.reason;
    return QStringLiteral("line %1, column %2: %3")
        .arg(QString::number(fault.line), QString::number(fault.column), fault.reason);
}

Problem missingKeyProblem(const MissingKey& missing) {
    return {eFileIOContentError,
            QStringLiteral("line %1: section [%2] has no \"%3\"")
                .arg(QString::number(missing.headerLine), QString::fromStdString(missing.section),
                     QString::fromStdString(missing.key))};
}

// Keeps the number that saving ends with, which the status does not tell.
class ContextWriter final : public CMachineContextIO {
public:
    using CMachineContextIO::CMachineContextIO;

    int save(const char* fileName) override { return saved_ = CMachineContextIO::save(fileName); }
    int save(const char* fileName, file_replacement& held) override {
        return saved_ = CMachineContextIO::save(fileName, held);
    }

    /// 0, or the system's number of the failure, negated.
    int saved() const { return saved_; }

private:
    int saved_ = 0;
};

}  // namespace

QString problemText(const Problem& problem) {
    return QStringLiteral("%1: %2").arg(statusName(problem.status), shown(problem.reason));
}

ExitStatus report(const QString& name, const Problem& problem, const Console& console) {
    const QString text =
        QStringLiteral("trvfiles: %1: %2\n").arg(shown(name), problemText(problem));
    console.err << qUtf8Printable(text);
    return failed;
}

QString notRegularText() {
    return QStringLiteral("not a regular file");
}

QString resolved(const QString& name) {
    return QFileInfo(QDir(QString()), nativePath(name)).absoluteFilePath();
}

Problem findKind(const QString& name, FileKind& kind) {
    kind = FileKind::unknown;
    if (!canBeReadTwice(name)) return notRegular();
    Problem problem;
    const platform::file_handle file = open(name, problem);
    if (file == nullptr) return problem;
    kind = kindOf(file.get());
    if (kind == FileKind::unknown) return {eFileIOContentError, whyUnknown(file.get())};
    return {};
}

Problem readAssembly(const QString& name, CTrvAssemblyData& data, ReadReport* report) {
    setInvalidDataPolicy();
    ReadReport unasked;
    ReadReport& result = report == nullptr ? unasked : *report;
    const EFileIOStatus status = CTrvAssemblyIO(resolved(name)).read(data, &result);
    if (status == eFileIOSuccess) return {};
    Problem problem{status, faultText(result.fault)};
    // The system's own words for the reason, as with every other kind of file.
    if (status == eFileIOOpenError) open(name, problem);
    return problem;
}

// As the facade reads it, which does not tell the line, in one pass: the file may change.
Problem readAxis(const QString& name, AxisFile& axis) {
    if (!canBeReadTwice(name)) return notRegular();
    Problem problem;
    const platform::file_handle file = open(name, problem);
    if (file == nullptr) return problem;
    const AxisContent content = readAxisContent(file.get());
    if (content.faultyLine != 0) {
        return {eFileIOContentError,
                QStringLiteral("line %1: four numbers are expected").arg(content.faultyLine)};
    }
    axis.matrix = content.matrix;
    std::copy_n(content.tags.begin(), content.tagCount, axis.tags.begin());
    return {};
}

Problem writeAxis(const QString& name, const AxisFile& axis) {
    const std::string text = axisFileText(axis.matrix, axis.tags[0], axis.tags[1], axis.tags[2]);
    errno = 0;
    platform::file_handle file = openForWrite(resolved(name), platform::file_mode::text);
    if (file == nullptr) return systemProblem(eFileIOOpenError, errno);
    const bool written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    // Only closing tells whether everything arrived.
    if (std::fclose(file.release()) != 0 || !written) {
        return systemProblem(eFileIOShortWrite, errno);
    }
    return {};
}

Problem readContext(const QString& name, ContextFile& context) {
    if (!canBeReadTwice(name)) return notRegular();
    Problem problem;
    const platform::file_handle file = open(name, problem);
    if (file == nullptr) return problem;
    CSectionedFile sections;
    if (sections.parse(file.get()) != 0) {
        return {eFileIOOpenError, QStringLiteral("reading fails, or does not end at 256 MiB")};
    }
    MissingKey missing;
    const EFileIOStatus status = CMachineContextIO(resolved(name)).read(context.data, &missing);
    if (status == eFileIOContentError) return missingKeyProblem(missing);
    if (status != eFileIOSuccess)
        return {status, QStringLiteral("the file changes while it is read")};

    for (const char* section : {"header", "machine", "postpro", "clamping_system"}) {
        if (sections.section(section, true).lineCount() == 0) {
            context.missingSections += QString::fromLatin1(section);
        }
    }
    return {};
}

Problem writeContext(const QString& name, const CMachineContextData& data, file_replacement* held) {
    ContextWriter writer(resolved(name));
    const EFileIOStatus status = writer.write(data, held);
    if (status == eFileIOSuccess) return {};
    if (writer.saved() != 0) return systemProblem(status, -writer.saved());
    return {status, QStringLiteral("the record cannot be stored")};
}

std::unique_ptr<file_replacement> holdFile(const QString& name) {
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
