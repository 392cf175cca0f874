#include <trvfiles/support/platform_directories.h>

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

struct handle_closer {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const noexcept { ::CloseHandle(handle); }
};
using handle = std::unique_ptr<HANDLE, handle_closer>;

struct search_closer {
    using pointer = HANDLE;
    void operator()(HANDLE search) const noexcept { ::FindClose(search); }
};

bool has(DWORD attributes, DWORD attribute) {
    return (attributes & attribute) != 0;
}

// Opens what a path leads to, to query its attributes; nullptr if it leads nowhere. The query takes
// no access right. Directories open only with the flag for backups.
handle open_to_query(const std::filesystem::path& path) {
    constexpr DWORD no_access = 0;
    const HANDLE opened = ::CreateFileW(
        path.c_str(), no_access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    return handle(opened == INVALID_HANDLE_VALUE ? nullptr : opened);
}

// There are reparse points that are not links, such as the placeholders of a cloud storage.
bool is_link(const WIN32_FIND_DATAW& entry) {
    return has(entry.dwFileAttributes, FILE_ATTRIBUTE_REPARSE_POINT) &&
           (entry.dwReserved0 == IO_REPARSE_TAG_SYMLINK ||
            entry.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}

}  // namespace

file_kind kind_of(const std::filesystem::path& path) {
    DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return file_kind::none;
    // These are the attributes of a link, not of what it leads to.
    if (has(attributes, FILE_ATTRIBUTE_REPARSE_POINT)) {
        const handle file = open_to_query(path);
        BY_HANDLE_FILE_INFORMATION information = {};
        if (file == nullptr || ::GetFileInformationByHandle(file.get(), &information) == 0)
            return file_kind::none;
        attributes = information.dwFileAttributes;
    }
    return has(attributes, FILE_ATTRIBUTE_DIRECTORY) ? file_kind::directory : file_kind::other;
}

std::vector<subdirectory> subdirectories(const std::filesystem::path& directory) {
    std::vector<subdirectory> found;
    WIN32_FIND_DATAW entry = {};
    const HANDLE first = ::FindFirstFileW((directory / L"*").c_str(), &entry);
    if (first == INVALID_HANDLE_VALUE) return found;
    const std::unique_ptr<HANDLE, search_closer> search(first);
    do {
        const std::wstring_view name = entry.cFileName;
        const bool is_shown = has(entry.dwFileAttributes, FILE_ATTRIBUTE_DIRECTORY) &&
                              !has(entry.dwFileAttributes, FILE_ATTRIBUTE_HIDDEN) && name != L"." &&
                              name != L"..";
        if (!is_shown) continue;
        if (is_link(entry) && kind_of(directory / name) != file_kind::directory) continue;
        found.push_back({entry.cFileName, is_link(entry)});
    } while (::FindNextFileW(search.get(), &entry) != 0);
    return found;
}

std::filesystem::path canonical_path(const std::filesystem::path& path) {
    const handle file = open_to_query(path);
    if (file == nullptr) return {};
    constexpr DWORD max_length = 32768;
    std::wstring canonical(max_length, L'\0');
    const DWORD length =
        ::GetFinalPathNameByHandleW(file.get(), canonical.data(), max_length, FILE_NAME_NORMALIZED);
    canonical.resize(length < max_length ? length : 0);
    return canonical;
}

}  // namespace trv::platform
