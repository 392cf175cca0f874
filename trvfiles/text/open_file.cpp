#include <trvfiles/text/open_file.h>
#include <trvfiles/text/path_resolution.h>
#include <trvfiles/text/text_conversion.h>

#include <QFile>

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

namespace trv {
namespace {

// Narrow names, where they can hold every path, come without the parting that a
// std::filesystem::path does.
template <class Open>
auto open(const QString& path, Open openPath) -> decltype(openPath(std::string())) {
    if (!platform::narrow_text_is_utf8()) {
        if (isOpenable(path)) return openPath(systemPath(path));
    } else if (std::string narrow; runtimePath(path, narrow)) {
        return openPath(narrow);
    }
    errno = ENOENT;
    return {};
}

// Whether Qt takes a name as the library does: on POSIX it applies the codec and the search paths
// that a host has set.
bool isForQtToOpen(const QString& path) {
    return !platform::narrow_text_is_utf8() || isResource(nativePath(path));
}

}  // namespace

platform::file_handle openForRead(const QString& path, platform::file_mode mode) {
    return open(path, [mode](const auto& name) { return platform::open_for_read(name, mode); });
}

platform::file_handle openForWrite(const QString& path, platform::file_mode mode) {
    return open(path, [mode](const auto& name) { return platform::open_for_write(name, mode); });
}

bool isReadable(const QString& path) {
    return open(path, [](const auto& name) { return platform::can_open_for_read(name); });
}

bool openForRead(const QString& path, platform::file_handle& handle, QFile& file, QString& reason) {
    constexpr QIODevice::OpenMode mode = QIODevice::ReadOnly;
    if (!isOpenable(path)) {
        reason = QStringLiteral("the name names no file");
        return false;
    }
    if (isForQtToOpen(path)) {
        file.setFileName(nativePath(path));
        if (file.open(mode)) return true;
        reason = file.errorString();
        return false;
    }
    handle = openForRead(path, platform::file_mode::binary);
    if (handle != nullptr && file.open(handle.get(), mode)) return true;
    reason = QString::fromStdString(std::generic_category().message(errno));
    return false;
}

bool openForWrite(const QString& path, platform::file_handle& handle, QFile& file) {
    constexpr QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    if (!isOpenable(path)) return false;
    if (!isForQtToOpen(path)) {
        handle = openForWrite(path, platform::file_mode::binary);
        return handle != nullptr && file.open(handle.get(), mode);
    }
    file.setFileName(nativePath(path));
    return file.open(mode);
}

}  // namespace trv
