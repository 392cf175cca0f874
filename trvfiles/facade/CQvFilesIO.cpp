#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/invalid_data_policy.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/facade/axis_file.h>
#include <trvfiles/facade/open_file.h>
#include <trvfiles/facade/text_conversion.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/support/platform.h>

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <utility>

namespace {

using trv::platform::file_handle;
using trv::platform::file_mode;

QDir directoryOf(const std::wstring& directory) {
    return QDir(trv::nativePath(trv::fromWide(directory)));
}

// Both resolutions give a path that cannot be opened as it is, without a warning of Qt's.

// Whether cleaning would leave an absolute path as it is, told without making a QFileInfo. A "."
// behind a "/" may be the beginning of a hidden name: then nothing is spared.
bool isCleanAbsolute(const QString& path) {
    const QChar slash = QLatin1Char('/');
    if (trv::platform::backslash_separates() || path.isEmpty() || path.front() != slash ||
        path.back() == slash) {
        return false;
    }
    const auto mayGo = [slash](QChar first, QChar second) {
        return first == slash && (second == slash || second == QLatin1Char('.'));
    };
    return std::adjacent_find(path.begin(), path.end(), mayGo) == path.end();
}

// For reads and writes: the path comes out clean.
QString resolved(const std::wstring& directory, const QString& name) {
    QString native = trv::nativePath(name);
    if (isCleanAbsolute(native)) return native;
    const bool isAbsolute = native.startsWith(QLatin1Char('/')) || QDir::isAbsolutePath(native);
    const QString path = isAbsolute ? native : directoryOf(directory).filePath(native);
    return trv::isOpenable(path) ? QFileInfo(path).absoluteFilePath() : path;
}

// For absoluteFileName() and isfileExists(): the path stays as it is joined.
QString joined(const std::wstring& directory, const QString& name) {
    const QDir base = directoryOf(directory);
    const QString native = trv::nativePath(name);
    return trv::isOpenable(base.path()) ? base.absoluteFilePath(native) : base.filePath(native);
}

EFileIOStatus readAssembly(const QString& path, CTrvAssemblyData& data) {
    trv::setInvalidDataPolicy();
    return CTrvAssemblyIO(path).read(data);
}

EFileIOStatus writeAssembly(const QString& path, const CTrvAssemblyData& data) {
    trv::setInvalidDataPolicy();
    return CTrvAssemblyIO(path).write(data);
}

EFileIOStatus readContext(const QString& path, CMachineContextData& data) {
    return CMachineContextIO(path).read(data);
}

EFileIOStatus writeContext(const QString& path, const CMachineContextData& data) {
    return CMachineContextIO(path).write(data);
}

bool copyBytes(const QString& source, const QString& destination) {
    // This order is part of the contract: a missing source leaves an empty destination.
    const file_handle to = trv::openForWrite(destination, file_mode::binary);
    const file_handle from = trv::openForRead(source, file_mode::binary);
    if (to == nullptr || from == nullptr) return false;

    char block[16384];
    std::size_t read = 0;
    while ((read = std::fread(block, 1, sizeof block, from.get())) != 0) {
        if (std::fwrite(block, 1, read, to.get()) != read) break;
    }
    return true;
}

}  // namespace

CQvFilesIO::CQvFilesIO(const char* directory)
    : directory_(trv::toWide(trv::fromNarrow(directory))) {}
CQvFilesIO::CQvFilesIO(const std::string& directory)
    : directory_(trv::toWide(trv::fromNarrow(directory))) {}
// NOLINTNEXTLINE(modernize-pass-by-value): the signature is part of the interface.
CQvFilesIO::CQvFilesIO(const std::wstring& directory) : directory_(directory) {}

CQvFilesIO::CQvFilesIO(const CQvFilesIO& other) = default;
CQvFilesIO::CQvFilesIO(CQvFilesIO&& other) noexcept = default;
CQvFilesIO& CQvFilesIO::operator=(const CQvFilesIO& other) = default;
CQvFilesIO& CQvFilesIO::operator=(CQvFilesIO&& other) noexcept = default;
CQvFilesIO::~CQvFilesIO() = default;

EFileIOStatus CQvFilesIO::readMachineContext(const char* name, CMachineContextData& data) {
    return readContext(resolved(directory_, trv::fromNarrow(name)), data);
}

EFileIOStatus CQvFilesIO::readMachineContext(std::wstring name, CMachineContextData& data) {
    return readContext(resolved(directory_, trv::fromWide(name)), data);
}

EFileIOStatus CQvFilesIO::writeMachineContext(const char* name, const CMachineContextData& data) {
    return writeContext(resolved(directory_, trv::fromNarrow(name)), data);
}

EFileIOStatus CQvFilesIO::writeMachineContext(std::wstring name, const CMachineContextData& data) {
    return writeContext(resolved(directory_, trv::fromWide(name)), data);
}

EFileIOStatus CQvFilesIO::sReadMachineContext(const std::wstring& path, CMachineContextData& data) {
    return readContext(trv::fromWide(path), data);
}

EFileIOStatus CQvFilesIO::sWriteMachineContext(const std::wstring& path,
                                               const CMachineContextData& data) {
    return writeContext(trv::fromWide(path), data);
}

EFileIOStatus CQvFilesIO::readTrvAssembly(const char* name, CTrvAssemblyData& data) {
    return readAssembly(resolved(directory_, trv::fromNarrow(name)), data);
}

EFileIOStatus CQvFilesIO::readTrvAssembly(std::wstring name, CTrvAssemblyData& data) {
    return readAssembly(resolved(directory_, trv::fromWide(name)), data);
}

EFileIOStatus CQvFilesIO::writeTrvAssembly(const char* name, const CTrvAssemblyData& data) {
    return writeAssembly(resolved(directory_, trv::fromNarrow(name)), data);
}

EFileIOStatus CQvFilesIO::writeTrvAssembly(std::wstring name, const CTrvAssemblyData& data) {
    return writeAssembly(resolved(directory_, trv::fromWide(name)), data);
}

EFileIOStatus CQvFilesIO::sReadTrvAssembly(const std::wstring& path, CTrvAssemblyData& data) {
    return readAssembly(trv::fromWide(path), data);
}

EFileIOStatus CQvFilesIO::sWriteTrvAssembly(const std::wstring& path,
                                            const CTrvAssemblyData& data) {
    return writeAssembly(trv::fromWide(path), data);
}

EFileIOStatus CQvFilesIO::readAxis(std::wstring fileName, double* matrix, int& tag1, int& tag2,
                                   int& tag3) {
    char buffer[4096];
    const file_handle file =
        trv::openForRead(resolved(directory_, trv::fromWide(fileName)), file_mode::text);
    if (file == nullptr) return eFileIOOpenError;
    static_cast<void>(std::setvbuf(file.get(), buffer, _IOFBF, sizeof buffer));
    const trv::AxisContent content = trv::readAxisContent(file.get());
    if (content.faultyLine != 0) return eFileIOContentError;

    if (matrix != nullptr) std::copy(content.matrix.begin(), content.matrix.end(), matrix);
    int* const tags[] = {&tag1, &tag2, &tag3};
    for (int i = 0; i < content.tagCount; ++i)
        *tags[i] = content.tags[static_cast<std::size_t>(i)];
    return eFileIOSuccess;
}

EFileIOStatus CQvFilesIO::writeAxis(std::wstring fileName, const double* matrix, int tag1, int tag2,
                                    int tag3) {
    trv::AxisMatrix written = {};
    if (matrix != nullptr) std::copy_n(matrix, written.size(), written.begin());
    const std::string text = trv::axisFileText(written, tag1, tag2, tag3);

    const file_handle file =
        trv::openForWrite(resolved(directory_, trv::fromWide(fileName)), file_mode::text);
    if (file == nullptr) return eFileIOOpenError;
    // What the disk does not take is not reported: hosts rely on the open alone.
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), file.get()));
    return eFileIOSuccess;
}

std::string CQvFilesIO::absoluteFileName(const std::string& name) const {
    return trv::toNarrow(joined(directory_, trv::fromNarrow(name)));
}

std::wstring CQvFilesIO::absoluteFileName(const std::wstring& name) const {
    return trv::toWide(joined(directory_, trv::fromWide(name)));
}

bool CQvFilesIO::isfileExists(const std::string& name) const {
    return trv::openForRead(joined(directory_, trv::fromNarrow(name)), file_mode::text) != nullptr;
}

bool CQvFilesIO::isfileExists(const std::wstring& name) const {
    return trv::openForRead(joined(directory_, trv::fromWide(name)), file_mode::text) != nullptr;
}

bool CQvFilesIO::copyFile(const std::string& source, const std::string& destination) {
    if (source == destination) return false;
    return copyBytes(trv::fromNarrow(source), trv::fromNarrow(destination));
}

bool CQvFilesIO::copyFile(const std::wstring& source, const std::wstring& destination) {
    if (source == destination) return false;
    return copyBytes(trv::fromWide(source), trv::fromWide(destination));
}
