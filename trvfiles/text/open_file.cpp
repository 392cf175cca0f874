#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/path_resolution.h>
#include <trvfiles/text/text_conversion.h>

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>

namespace trv {
namespace {

// Calls a function of the system with a path, with none for a path that names no file.
//
// A narrow name is used if it can hold every path: it takes fewer allocations than a
// std::filesystem::path, which also splits the name into its parts.
template <class Call>
auto callWithName(const QString& path, Call call) -> decltype(call(std::string())) {
    if (!platform::narrow_text_is_utf8()) {
        if (isOpenable(path)) return call(systemPath(path));
    } else if (std::string narrow; runtimePath(path, narrow)) {
        return call(narrow);
    }
    errno = ENOENT;
    return {};
}

// To be called while `errno` is that of the failure.
void setOpenFault(CFileFault* fault, const QString& path) {
    if (fault == nullptr) return;
    const int error = errno;
    set_system_fault(fault, error);
    if (isOpenable(path)) return;
    fault->cause = CFileFault::Cause::fileName;
    fault->reason = "not a valid file name";
}

// On Windows, and for a resource, Qt opens a file by its name. On POSIX it would apply the codec
// and the search paths that a host has set, so the library opens the file there.
bool isForQtToOpen(const QString& path) {
    return !platform::narrow_text_is_utf8() || isResource(nativePath(path));
}

bool passToQt(const platform::file_handle& handle, QFile& file, QIODevice::OpenMode mode,
              const QString& path, CFileFault* fault) {
    if (file.open(handle.get(), mode)) return true;
    setOpenFault(fault, path);
    return false;
}

}  // namespace

platform::file_handle openForRead(const QString& path, platform::file_mode mode,
                                  CFileFault* fault) {
    platform::file_handle handle = callWithName(
        path, [mode](const auto& name) { return platform::open_for_read(name, mode); });
    if (handle == nullptr) setOpenFault(fault, path);
    return handle;
}

platform::file_handle openForWrite(const QString& path, platform::file_mode mode,
                                   CFileFault* fault) {
    platform::file_handle handle = callWithName(
        path, [mode](const auto& name) { return platform::open_for_write(name, mode); });
    if (handle == nullptr) setOpenFault(fault, path);
    return handle;
}

bool isReadable(const QString& path) {
    return callWithName(path, [](const auto& name) { return platform::can_open_for_read(name); });
}

bool isRegularFile(const QString& path) {
    return callWithName(path, [](const auto& name) { return platform::regular_file_exists(name); });
}

bool openForRead(const QString& path, platform::file_handle& handle, QFile& file,
                 CFileFault* fault) {
    constexpr QIODevice::OpenMode mode = QIODevice::ReadOnly;
    if (!isOpenable(path) || !isForQtToOpen(path)) {
        handle = openForRead(path, platform::file_mode::binary, fault);
        return handle != nullptr && passToQt(handle, file, mode, path, fault);
    }
    file.setFileName(nativePath(path));
    if (file.open(mode) || fault == nullptr) return file.isOpen();
    // Qt does not report the system's error number, and on Windows its text is in the language of
    // the user. So the file is opened again without Qt. For a resource, which only Qt finds, its
    // text is used.
    const QString reason = file.errorString();
    const bool isAnswered = !isResource(nativePath(path)) &&
                            openForRead(path, platform::file_mode::binary, fault) == nullptr;
    if (!isAnswered) set_fault(fault, CFileFault::Cause::system, reason.toStdString());
    return false;
}

bool openForWrite(const QString& path, platform::file_handle& handle, QFile& file,
                  CFileFault* fault) {
    constexpr QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    if (!isOpenable(path) || !isForQtToOpen(path)) {
        handle = openForWrite(path, platform::file_mode::binary, fault);
        if (handle == nullptr) return false;
        // After a write that fails, a buffered stream drops a part of its bytes and can still write
        // those after them. Without a buffer the file holds the bytes up to the failure.
        static_cast<void>(std::setvbuf(handle.get(), nullptr, _IONBF, 0));
        return passToQt(handle, file, mode, path, fault);
    }
    file.setFileName(nativePath(path));
    if (file.open(mode) || fault == nullptr) return file.isOpen();
    // The system is not asked again for its number: that would truncate a file that it opens.
    set_fault(fault, CFileFault::Cause::system, file.errorString().toStdString());
    return false;
}

}  // namespace trv
