#include <trvfiles/support/platform_sharing.h>

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <windows.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

using std::chrono::milliseconds;

constexpr milliseconds pause(5);

struct handle_closer {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const noexcept { ::CloseHandle(handle); }
};
using handle_owner = std::unique_ptr<HANDLE, handle_closer>;

// The number that the C library sets for these failures.
int code_of_error(DWORD error) {
    switch (error) {
        case ERROR_SUCCESS:
            return 0;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_INVALID_DRIVE:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
        case ERROR_FILENAME_EXCED_RANGE:
            return ENOENT;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_WRITE_PROTECT:
            return EACCES;
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS:
            return EEXIST;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return ENOSPC;
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY:
            return ENOMEM;
        case ERROR_TOO_MANY_OPEN_FILES:
            return EMFILE;
        default:
            return EINVAL;
    }
}

HANDLE handle_of(int held) {
    return reinterpret_cast<HANDLE>(::_get_osfhandle(held));
}

bool mark_removed(HANDLE file) {
    FILE_DISPOSITION_INFO removed = {};
    removed.DeleteFile = TRUE;
    return ::SetFileInformationByHandle(file, FileDispositionInfo, &removed, sizeof removed) != 0;
}

// Never follows a link under the name. Other processes can read the file, so that readers of its
// new name find it open for them, but cannot write to it or remove it.
HANDLE open_alone(const char* path) {
    return ::CreateFileA(path, GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr,
                         OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT,
                         nullptr);
}

// Whether the file is a regular one with a single name.
bool is_plain(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION information = {};
    return ::GetFileInformationByHandle(file, &information) != 0 &&
           (information.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 &&
           information.nNumberOfLinks < 2;
}

// Tries to open the file and to empty it.
//
// @return the system's number of the failure; ERROR_SHARING_VIOLATION if another caller holds the
//         file, or what had its name has been removed
DWORD try_to_hold(const char* path, handle_owner& file) {
    const HANDLE opened = open_alone(path);
    if (opened == INVALID_HANDLE_VALUE) return ::GetLastError();
    file.reset(opened);
    const bool was_plain = is_plain(opened);
    if (was_plain && ::SetEndOfFile(opened) != 0) return ERROR_SUCCESS;
    const DWORD error =
        was_plain || !mark_removed(opened) ? ::GetLastError() : ERROR_SHARING_VIOLATION;
    file.reset();
    return error;
}

std::wstring full_path(const char* path) {
    std::string full(::GetFullPathNameA(path, 0, nullptr, nullptr), '\0');
    full.resize(::GetFullPathNameA(path, static_cast<DWORD>(full.size()), full.data(), nullptr));
    const auto length = static_cast<int>(full.size());
    std::wstring wide(full.size(), L'\0');
    const int units = ::MultiByteToWideChar(CP_ACP, 0, full.data(), length, wide.data(), length);
    wide.resize(static_cast<std::size_t>(units));
    return wide;
}

// FILE_RENAME_INFO of Windows 10. The headers of older systems lack the flags.
struct rename_header {
    DWORD flags;
    HANDLE directory;
    DWORD name_length;
    wchar_t name[1];
};
constexpr DWORD replace_if_exists = 1;
constexpr DWORD posix_semantics = 2;
constexpr auto rename_with_flags = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);

DWORD rename_as(FILE_INFO_BY_HANDLE_CLASS kind, HANDLE file, const std::wstring& name,
                DWORD flags) {
    const std::size_t bytes = name.size() * sizeof(wchar_t);
    std::vector<char> block(sizeof(rename_header) + bytes);
    auto* header = new (block.data()) rename_header();
    header->flags = flags;
    header->name_length = static_cast<DWORD>(bytes);
    std::memcpy(block.data() + offsetof(rename_header, name), name.data(), bytes);
    const auto size = static_cast<DWORD>(block.size());
    const bool is_done = ::SetFileInformationByHandle(file, kind, block.data(), size) != 0;
    return is_done ? ERROR_SUCCESS : ::GetLastError();
}

// With POSIX semantics, readers that share deleting keep the old file until they close it. Windows
// before 10 and some file systems do not have them; every reader then blocks the renaming.
DWORD rename_open_file(HANDLE file, const std::wstring& name, existing_file existing) {
    const DWORD flags = existing == existing_file::replaced ? replace_if_exists : 0;
    const DWORD error = rename_as(rename_with_flags, file, name, flags | posix_semantics);
    const bool is_unknown = error == ERROR_INVALID_PARAMETER || error == ERROR_NOT_SUPPORTED ||
                            error == ERROR_INVALID_FUNCTION;
    return is_unknown ? rename_as(FileRenameInfo, file, name, flags) : error;
}

file_handle open_copy_of(int held, int kind, const char* mode) {
    const HANDLE process = ::GetCurrentProcess();
    HANDLE copied = INVALID_HANDLE_VALUE;
    if (::DuplicateHandle(process, handle_of(held), process, &copied, 0, FALSE,
                          DUPLICATE_SAME_ACCESS) == 0) {
        errno = code_of_error(::GetLastError());
        return nullptr;
    }
    handle_owner copy(copied);
    const int number =
        ::_open_osfhandle(reinterpret_cast<std::intptr_t>(copied), _O_NOINHERIT | kind);
    if (number < 0) return nullptr;
    copy.release();
    file_handle stream(::_fdopen(number, mode));
    if (stream == nullptr) ::_close(number);
    return stream;
}

bool is_never_replaced(const char* path) {
    const DWORD attributes = ::GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0;
}

bool is_refusal(DWORD error) {
    return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
}

}  // namespace

file_handle open_for_update(const char* runtime_path, file_mode mode, milliseconds wait) {
    if (runtime_path == nullptr || *runtime_path == '\0') {
        errno = ENOENT;
        return nullptr;
    }
    const auto end = std::chrono::steady_clock::now() + wait;
    for (;;) {
        file_handle file(
            ::_fsopen(runtime_path, mode == file_mode::text ? "r+" : "r+b", _SH_DENYRW));
        if (file != nullptr || _doserrno != ERROR_SHARING_VIOLATION) return file;
        if (std::chrono::steady_clock::now() >= end) break;
        std::this_thread::sleep_for(pause);
    }
    errno = ETIMEDOUT;
    return nullptr;
}

int create_held(const char* path, milliseconds wait) {
    const auto end = std::chrono::steady_clock::now() + wait;
    handle_owner file;
    DWORD error = try_to_hold(path, file);
    while (error == ERROR_SHARING_VIOLATION && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(pause);
        error = try_to_hold(path, file);
    }
    if (error == ERROR_SUCCESS) {
        const int held = ::_open_osfhandle(reinterpret_cast<std::intptr_t>(file.get()),
                                           _O_NOINHERIT | _O_BINARY);
        if (held >= 0) {
            file.release();
            return held;
        }
        mark_removed(file.get());
        error = ERROR_TOO_MANY_OPEN_FILES;
    }
    errno = error == ERROR_SHARING_VIOLATION ? ETIMEDOUT : code_of_error(error);
    return -1;
}

file_handle open_stream_of(int held, file_mode mode) {
    return mode == file_mode::text ? open_copy_of(held, _O_TEXT, "w")
                                   : open_copy_of(held, _O_BINARY, "wb");
}

// The copy shares its position with the held file.
file_handle open_reader_of(int held) {
    if (::_lseeki64(held, 0, SEEK_SET) != 0) return nullptr;
    return open_copy_of(held, _O_BINARY, "rb");
}

int move_held(int held, const char* from, const char* to, existing_file existing) {
    // No other process can remove or rename the file, so `from` still names it.
    static_cast<void>(from);
    if (existing == existing_file::replaced && is_never_replaced(to)) return EACCES;
    constexpr std::chrono::seconds max_wait_for_other_programs(1);
    const auto end = std::chrono::steady_clock::now() + max_wait_for_other_programs;
    const std::wstring name = full_path(to);
    DWORD error = rename_open_file(handle_of(held), name, existing);
    while (is_refusal(error) && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(pause);
        error = rename_open_file(handle_of(held), name, existing);
    }
    return code_of_error(error);
}

void release_held(int held) {
    ::_close(held);
}

void remove_held(int held, const char* path) {
    static_cast<void>(path);
    mark_removed(handle_of(held));
    ::_close(held);
}

}  // namespace trv::platform
