#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/dom_tree.h>
#include <trvfiles/axis/axis_file.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/path_resolution.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <utility>

namespace {

using trv::HostPath;
using trv::platform::file_handle;
using trv::platform::file_mode;

QString resolved(const std::wstring& directory, const HostPath& name) {
    return trv::resolvedPath(trv::pathFromWide(directory), name);
}

// Only an assembly is read from a resource. The system would take ":/x" for a path in the current
// directory.
QString fileOnly(const QString& path) {
    return trv::isResource(path) ? QString() : path;
}

QString resolvedFile(const std::wstring& directory, const HostPath& name) {
    return fileOnly(resolved(directory, name));
}

bool exists(const std::wstring& directory, const HostPath& name) {
    const HostPath path = trv::absolutePath(trv::pathFromWide(directory), name);
    return trv::isReadable(fileOnly(path.openable()));
}

// The policy is set for each call, because a host may have set another one since the last call.
EFileIOStatus readAssembly(const QString& path, CTrvAssemblyData& data, CFileFault* fault) {
    trv::setInvalidDataPolicy();
    return CTrvAssemblyIO(path).read(data, fault);
}

EFileIOStatus writeAssembly(const QString& path, const CTrvAssemblyData& data, CFileFault* fault) {
    trv::setInvalidDataPolicy();
    return CTrvAssemblyIO(path).write(data, fault);
}

EFileIOStatus readContext(const QString& path, CMachineContextData& data, CFileFault* fault) {
    return CMachineContextIO(path).read(data, fault);
}

EFileIOStatus writeContext(const QString& path, const CMachineContextData& data,
                           CFileFault* fault) {
    return CMachineContextIO(path).write(data, nullptr, fault);
}

// What a host passes to take an axis. Nothing of it is written before the whole file is read.
struct AxisTarget {
    double* matrix;
    int& tag1;
    int& tag2;
    int& tag3;

    void take(const trv::AxisContent& content) const {
        if (matrix != nullptr) std::copy(content.matrix.begin(), content.matrix.end(), matrix);
        if (content.tagCount > 0) tag1 = content.tags[0];
        if (content.tagCount > 1) tag2 = content.tags[1];
        if (content.tagCount > 2) tag3 = content.tags[2];
    }
};

EFileIOStatus readAxisOf(const QString& path, const AxisTarget& target, CFileFault* fault) {
    trv::AxisContent content;
    const EFileIOStatus status = trv::readAxisFile(path, content, fault);
    if (status == eFileIOSuccess) target.take(content);
    return status;
}

std::string axisText(const double* matrix, int tag1, int tag2, int tag3) {
    trv::AxisMatrix written = {};
    if (matrix != nullptr) std::copy_n(matrix, written.size(), written.begin());
    return trv::axisFileText(written, tag1, tag2, tag3);
}

EFileIOStatus writeAxisTo(const QString& path, const std::string& text, CFileFault* fault) {
    const EFileIOStatus status = trv::writeAxisFile(path, text, fault);
    // Hosts rely on the open alone: a full disk is not a failure.
    return status == eFileIOShortWrite ? eFileIOSuccess : status;
}

bool copyBytes(const HostPath& source, const HostPath& destination) {
    // The order is part of the interface: a missing source leaves an empty destination.
    const file_handle to = trv::openForWrite(destination.openable(), file_mode::binary);
    const file_handle from = trv::openForRead(source.openable(), file_mode::binary);
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
    : directory_(directory == nullptr ? std::wstring() : trv::widePath(directory)) {}
CQvFilesIO::CQvFilesIO(const std::string& directory) : directory_(trv::widePath(directory)) {}
// NOLINTNEXTLINE(modernize-pass-by-value): the signature is part of the interface.
CQvFilesIO::CQvFilesIO(const std::wstring& directory) : directory_(directory) {}

CQvFilesIO::CQvFilesIO(const CQvFilesIO& other) = default;
CQvFilesIO& CQvFilesIO::operator=(const CQvFilesIO& other) = default;
CQvFilesIO::~CQvFilesIO() = default;

// NOLINTNEXTLINE(performance-noexcept-move-constructor): the copy may run out of memory.
CQvFilesIO::CQvFilesIO(CQvFilesIO&& other) : CQvFilesIO(other.directory_) {}
// NOLINTNEXTLINE(performance-noexcept-move-constructor): the copy may run out of memory.
CQvFilesIO& CQvFilesIO::operator=(CQvFilesIO&& other) {
    return *this = std::as_const(other);
}

EFileIOStatus CQvFilesIO::readMachineContext(const char* name, CMachineContextData& data) {
    return readMachineContext(name, data, nullptr);
}

EFileIOStatus CQvFilesIO::readMachineContext(const char* name, CMachineContextData& data,
                                             CFileFault* fault) {
    return readContext(resolvedFile(directory_, trv::pathFromNarrow(name)), data, fault);
}

EFileIOStatus CQvFilesIO::readMachineContext(std::wstring name, CMachineContextData& data) {
    return readMachineContext(std::move(name), data, nullptr);
}

EFileIOStatus CQvFilesIO::readMachineContext(std::wstring name, CMachineContextData& data,
                                             CFileFault* fault) {
    return readContext(resolvedFile(directory_, trv::pathFromWide(name)), data, fault);
}

EFileIOStatus CQvFilesIO::sReadMachineContext(const std::wstring& path, CMachineContextData& data) {
    return sReadMachineContext(path, data, nullptr);
}

EFileIOStatus CQvFilesIO::sReadMachineContext(const std::wstring& path, CMachineContextData& data,
                                              CFileFault* fault) {
    return readContext(trv::pathFromWide(path).openable(), data, fault);
}

EFileIOStatus CQvFilesIO::sReadMachineContext(const char* path, CMachineContextData& data,
                                              CFileFault* fault) {
    return readContext(trv::pathFromNarrow(path).openable(), data, fault);
}

EFileIOStatus CQvFilesIO::writeMachineContext(const char* name, const CMachineContextData& data) {
    return writeMachineContext(name, data, nullptr);
}

EFileIOStatus CQvFilesIO::writeMachineContext(const char* name, const CMachineContextData& data,
                                              CFileFault* fault) {
    return writeContext(resolvedFile(directory_, trv::pathFromNarrow(name)), data, fault);
}

EFileIOStatus CQvFilesIO::writeMachineContext(std::wstring name, const CMachineContextData& data) {
    return writeMachineContext(std::move(name), data, nullptr);
}

EFileIOStatus CQvFilesIO::writeMachineContext(std::wstring name, const CMachineContextData& data,
                                              CFileFault* fault) {
    return writeContext(resolvedFile(directory_, trv::pathFromWide(name)), data, fault);
}

EFileIOStatus CQvFilesIO::sWriteMachineContext(const std::wstring& path,
                                               const CMachineContextData& data) {
    return sWriteMachineContext(path, data, nullptr);
}

EFileIOStatus CQvFilesIO::sWriteMachineContext(const std::wstring& path,
                                               const CMachineContextData& data, CFileFault* fault) {
    return writeContext(trv::pathFromWide(path).openable(), data, fault);
}

EFileIOStatus CQvFilesIO::sWriteMachineContext(const char* path, const CMachineContextData& data,
                                               CFileFault* fault) {
    return writeContext(trv::pathFromNarrow(path).openable(), data, fault);
}

EFileIOStatus CQvFilesIO::sReadMachineContextFromMemory(std::string_view bytes,
                                                        CMachineContextData& data,
                                                        CFileFault* fault) {
    return CMachineContextIO::readText(bytes, data, fault);
}

EFileIOStatus CQvFilesIO::sWriteMachineContextToMemory(std::string& bytes,
                                                       const CMachineContextData& data,
                                                       CFileFault* fault) {
    return CMachineContextIO::writeText(bytes, data, fault);
}

EFileIOStatus CQvFilesIO::readTrvAssembly(const char* name, CTrvAssemblyData& data) {
    return readTrvAssembly(name, data, nullptr);
}

EFileIOStatus CQvFilesIO::readTrvAssembly(const char* name, CTrvAssemblyData& data,
                                          CFileFault* fault) {
    return readAssembly(resolved(directory_, trv::pathFromNarrow(name)), data, fault);
}

EFileIOStatus CQvFilesIO::readTrvAssembly(std::wstring name, CTrvAssemblyData& data) {
    return readTrvAssembly(std::move(name), data, nullptr);
}

EFileIOStatus CQvFilesIO::readTrvAssembly(std::wstring name, CTrvAssemblyData& data,
                                          CFileFault* fault) {
    return readAssembly(resolved(directory_, trv::pathFromWide(name)), data, fault);
}

EFileIOStatus CQvFilesIO::sReadTrvAssembly(const std::wstring& path, CTrvAssemblyData& data) {
    return sReadTrvAssembly(path, data, nullptr);
}

EFileIOStatus CQvFilesIO::sReadTrvAssembly(const std::wstring& path, CTrvAssemblyData& data,
                                           CFileFault* fault) {
    return readAssembly(trv::pathFromWide(path).openable(), data, fault);
}

EFileIOStatus CQvFilesIO::sReadTrvAssembly(const char* path, CTrvAssemblyData& data,
                                           CFileFault* fault) {
    return readAssembly(trv::pathFromNarrow(path).openable(), data, fault);
}

EFileIOStatus CQvFilesIO::writeTrvAssembly(const char* name, const CTrvAssemblyData& data) {
    return writeTrvAssembly(name, data, nullptr);
}

EFileIOStatus CQvFilesIO::writeTrvAssembly(const char* name, const CTrvAssemblyData& data,
                                           CFileFault* fault) {
    return writeAssembly(resolved(directory_, trv::pathFromNarrow(name)), data, fault);
}

EFileIOStatus CQvFilesIO::writeTrvAssembly(std::wstring name, const CTrvAssemblyData& data) {
    return writeTrvAssembly(std::move(name), data, nullptr);
}

EFileIOStatus CQvFilesIO::writeTrvAssembly(std::wstring name, const CTrvAssemblyData& data,
                                           CFileFault* fault) {
    return writeAssembly(resolved(directory_, trv::pathFromWide(name)), data, fault);
}

EFileIOStatus CQvFilesIO::sWriteTrvAssembly(const std::wstring& path,
                                            const CTrvAssemblyData& data) {
    return sWriteTrvAssembly(path, data, nullptr);
}

EFileIOStatus CQvFilesIO::sWriteTrvAssembly(const std::wstring& path, const CTrvAssemblyData& data,
                                            CFileFault* fault) {
    return writeAssembly(trv::pathFromWide(path).openable(), data, fault);
}

EFileIOStatus CQvFilesIO::sWriteTrvAssembly(const char* path, const CTrvAssemblyData& data,
                                            CFileFault* fault) {
    return writeAssembly(trv::pathFromNarrow(path).openable(), data, fault);
}

EFileIOStatus CQvFilesIO::sReadTrvAssemblyFromMemory(std::string_view bytes, CTrvAssemblyData& data,
                                                     CFileFault* fault) {
    trv::setInvalidDataPolicy();
    return CTrvAssemblyIO::readBytes(bytes, data, fault);
}

EFileIOStatus CQvFilesIO::sWriteTrvAssemblyToMemory(std::string& bytes,
                                                    const CTrvAssemblyData& data,
                                                    CFileFault* fault) {
    return CTrvAssemblyIO::writeBytes(bytes, data, fault);
}

EFileIOStatus CQvFilesIO::readAxis(std::wstring fileName, double* matrix, int& tag1, int& tag2,
                                   int& tag3) {
    return readAxis(std::move(fileName), matrix, tag1, tag2, tag3, nullptr);
}

EFileIOStatus CQvFilesIO::readAxis(std::wstring fileName, double* matrix, int& tag1, int& tag2,
                                   int& tag3, CFileFault* fault) {
    return readAxisOf(resolvedFile(directory_, trv::pathFromWide(fileName)),
                      {matrix, tag1, tag2, tag3}, fault);
}

EFileIOStatus CQvFilesIO::readAxis(const char* fileName, double* matrix, int& tag1, int& tag2,
                                   int& tag3, CFileFault* fault) {
    return readAxisOf(resolvedFile(directory_, trv::pathFromNarrow(fileName)),
                      {matrix, tag1, tag2, tag3}, fault);
}

EFileIOStatus CQvFilesIO::writeAxis(std::wstring fileName, const double* matrix, int tag1, int tag2,
                                    int tag3) {
    return writeAxis(std::move(fileName), matrix, tag1, tag2, tag3, nullptr);
}

EFileIOStatus CQvFilesIO::writeAxis(std::wstring fileName, const double* matrix, int tag1, int tag2,
                                    int tag3, CFileFault* fault) {
    return writeAxisTo(resolvedFile(directory_, trv::pathFromWide(fileName)),
                       axisText(matrix, tag1, tag2, tag3), fault);
}

EFileIOStatus CQvFilesIO::writeAxis(const char* fileName, const double* matrix, int tag1, int tag2,
                                    int tag3, CFileFault* fault) {
    return writeAxisTo(resolvedFile(directory_, trv::pathFromNarrow(fileName)),
                       axisText(matrix, tag1, tag2, tag3), fault);
}

EFileIOStatus CQvFilesIO::sReadAxis(const std::wstring& path, double* matrix, int& tag1, int& tag2,
                                    int& tag3, CFileFault* fault) {
    return readAxisOf(trv::pathFromWide(path).openable(), {matrix, tag1, tag2, tag3}, fault);
}

EFileIOStatus CQvFilesIO::sReadAxis(const char* path, double* matrix, int& tag1, int& tag2,
                                    int& tag3, CFileFault* fault) {
    return readAxisOf(trv::pathFromNarrow(path).openable(), {matrix, tag1, tag2, tag3}, fault);
}

EFileIOStatus CQvFilesIO::sWriteAxis(const std::wstring& path, const double* matrix, int tag1,
                                     int tag2, int tag3, CFileFault* fault) {
    return writeAxisTo(trv::pathFromWide(path).openable(), axisText(matrix, tag1, tag2, tag3),
                       fault);
}

EFileIOStatus CQvFilesIO::sWriteAxis(const char* path, const double* matrix, int tag1, int tag2,
                                     int tag3, CFileFault* fault) {
    return writeAxisTo(trv::pathFromNarrow(path).openable(), axisText(matrix, tag1, tag2, tag3),
                       fault);
}

EFileIOStatus CQvFilesIO::sReadAxisFromMemory(std::string_view bytes, double* matrix, int& tag1,
                                              int& tag2, int& tag3, CFileFault* fault) {
    trv::AxisContent content;
    const EFileIOStatus status = trv::readAxisBytes(bytes, content, fault);
    if (status == eFileIOSuccess) AxisTarget{matrix, tag1, tag2, tag3}.take(content);
    return status;
}

EFileIOStatus CQvFilesIO::sWriteAxisToMemory(std::string& bytes, const double* matrix, int tag1,
                                             int tag2, int tag3, CFileFault* fault) {
    trv::clear_fault(fault);
    bytes = axisText(matrix, tag1, tag2, tag3);
    return eFileIOSuccess;
}

std::string CQvFilesIO::absoluteFileName(const std::string& name) const {
    const HostPath directory = trv::pathFromWide(directory_);
    return trv::toNarrow(trv::absolutePath(directory, trv::pathFromNarrow(name)).text);
}

std::wstring CQvFilesIO::absoluteFileName(const std::wstring& name) const {
    const HostPath directory = trv::pathFromWide(directory_);
    return trv::toWide(trv::absolutePath(directory, trv::pathFromWide(name)).text);
}

bool CQvFilesIO::isfileExists(const std::string& name) const {
    return exists(directory_, trv::pathFromNarrow(name));
}

bool CQvFilesIO::isfileExists(const std::wstring& name) const {
    return exists(directory_, trv::pathFromWide(name));
}

bool CQvFilesIO::copyFile(const std::string& source, const std::string& destination) {
    // Opening the destination would empty the source.
    if (source == destination) return false;
    return copyBytes(trv::pathFromNarrow(source), trv::pathFromNarrow(destination));
}

bool CQvFilesIO::copyFile(const std::wstring& source, const std::wstring& destination) {
    if (source == destination) return false;
    return copyBytes(trv::pathFromWide(source), trv::pathFromWide(destination));
}
