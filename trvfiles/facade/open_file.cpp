#include <trvfiles/facade/open_file.h>
#include <trvfiles/facade/text_conversion.h>

#include <cerrno>
#include <string>

namespace trv {
namespace {

// Narrow names, where they can hold every path, come without the parting that a
// std::filesystem::path does.
template <class Open>
platform::file_handle open(const QString& path, Open openPath) {
    if (!platform::narrow_text_is_utf8()) {
        if (isOpenable(path)) return openPath(systemPath(path));
    } else if (std::string narrow; runtimePath(path, narrow)) {
        return openPath(narrow);
    }
    errno = ENOENT;
    return nullptr;
}

}  // namespace

platform::file_handle openForRead(const QString& path, platform::file_mode mode) {
    return open(path, [mode](const auto& name) { return platform::open_for_read(name, mode); });
}

platform::file_handle openForWrite(const QString& path, platform::file_mode mode) {
    return open(path, [mode](const auto& name) { return platform::open_for_write(name, mode); });
}

}  // namespace trv
