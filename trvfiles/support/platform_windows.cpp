#include <trvfiles/support/platform.h>

#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string_view>
#include <system_error>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// The C library ends the process if it gets an empty name.
file_handle open_nothing() {
    errno = ENOENT;
    return nullptr;
}

file_handle open_shared(const std::filesystem::path& path, const wchar_t* text_mode,
                        const wchar_t* binary_mode, file_mode mode) {
    if (path.empty()) return open_nothing();
    return file_handle(
        ::_wfsopen(path.c_str(), mode == file_mode::text ? text_mode : binary_mode, _SH_DENYNO));
}

file_handle open_shared(const char* path, const char* text_mode, const char* binary_mode,
                        file_mode mode) {
    if (path == nullptr || *path == '\0') return open_nothing();
    return file_handle(
        ::_fsopen(path, mode == file_mode::text ? text_mode : binary_mode, _SH_DENYNO));
}

// A stream that reads an open file. Readers share deleting, so that a save can replace the file
// that they read.
constexpr DWORD shared_reading = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

file_handle stream_of_reader(HANDLE opened, file_mode mode) {
    const int kind = mode == file_mode::text ? _O_TEXT : _O_BINARY;
    const int number =
        ::_open_osfhandle(reinterpret_cast<std::intptr_t>(opened), _O_RDONLY | _O_NOINHERIT | kind);
    if (number < 0) {
        ::CloseHandle(opened);
        return nullptr;
    }
    file_handle stream(::_fdopen(number, mode == file_mode::text ? "r" : "rb"));
    if (stream == nullptr) ::_close(number);
    return stream;
}

bool are_of_directory(DWORD attributes) {
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

int code_of_creation(DWORD error) {
    switch (error) {
        case ERROR_FILE_EXISTS:
            return EEXIST;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_FILENAME_EXCED_RANGE:
            return ENOENT;
        default:
            return EACCES;
    }
}

int code_of(int result) {
    return result == 0 ? 0 : errno;
}

bool names_variable(const char* name) {
    return name != nullptr && *name != '\0' && std::strchr(name, '=') == nullptr;
}

struct handle_closer {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const noexcept { ::CloseHandle(handle); }
};

struct search_closer {
    using pointer = HANDLE;
    void operator()(HANDLE search) const noexcept { ::FindClose(search); }
};

struct stack_call {
    const std::function<void()>& work;
    std::exception_ptr thrown;
};

// An exception that leaves a thread ends the process, so it is stored for the caller.
unsigned __stdcall run(void* argument) {
    auto& call = *static_cast<stack_call*>(argument);
    try {
        call.work();
    } catch (...) {
        call.thrown = std::current_exception();
    }
    return 0;
}

// The console understands the escape sequences of colours only in this mode.
void understand_colours() {
    const HANDLE output = ::GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (::GetConsoleMode(output, &mode) == 0) return;
    ::SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace

bool narrow_text_is_utf8() {
    return false;
}

bool backslash_separates() {
    return true;
}

std::string native_path(const char* path) {
    return path == nullptr ? "" : path;
}

file_handle open_for_read(const std::filesystem::path& path, file_mode mode) {
    if (are_of_directory(::GetFileAttributesW(path.c_str()))) {
        errno = EISDIR;
        return nullptr;
    }
    const HANDLE opened = ::CreateFileW(path.c_str(), GENERIC_READ, shared_reading, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened != INVALID_HANDLE_VALUE) return stream_of_reader(opened, mode);
    return open_shared(path, L"r", L"rb", mode);  // sets `errno`
}

file_handle open_for_read(const char* runtime_path, file_mode mode) {
    if (runtime_path == nullptr) return open_nothing();
    if (directory_exists(runtime_path)) {
        errno = EISDIR;
        return nullptr;
    }
    const HANDLE opened = ::CreateFileA(runtime_path, GENERIC_READ, shared_reading, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened != INVALID_HANDLE_VALUE) return stream_of_reader(opened, mode);
    return open_shared(runtime_path, "r", "rb", mode);  // sets `errno`
}

bool can_open_for_read(const std::filesystem::path& path) {
    return open_for_read(path, file_mode::binary) != nullptr;
}

bool can_open_for_read(const char* runtime_path) {
    return open_for_read(runtime_path, file_mode::binary) != nullptr;
}

bool regular_file_exists(const std::filesystem::path& path) {
    struct _stat64 status = {};
    return ::_wstat64(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool regular_file_exists(const char* runtime_path) {
    struct _stat64 status = {};
    return ::_stat64(native_path(runtime_path).c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

file_handle open_for_write(const std::filesystem::path& path, file_mode mode) {
    return open_shared(path, L"w", L"wb", mode);
}

file_handle open_for_write(const char* runtime_path, file_mode mode) {
    return open_shared(runtime_path, "w", "wb", mode);
}

file_handle open_new(const std::filesystem::path& path, file_mode mode) {
    // With this flag a link of that name is not followed: the name is taken, whatever the link
    // leads to.
    constexpr DWORD flags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT;
    const HANDLE created =
        ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                      CREATE_NEW, flags, nullptr);
    if (created == INVALID_HANDLE_VALUE) {
        errno = code_of_creation(::GetLastError());
        return nullptr;
    }
    const bool is_text = mode == file_mode::text;
    const int number = ::_open_osfhandle(reinterpret_cast<std::intptr_t>(created),
                                         _O_NOINHERIT | (is_text ? _O_TEXT : _O_BINARY));
    if (number < 0) {
        ::CloseHandle(created);
        return nullptr;
    }
    file_handle file(::_fdopen(number, is_text ? "w" : "wb"));
    if (file == nullptr) ::_close(number);
    return file;
}

file_handle open_for_append(const char* runtime_path, file_mode mode) {
    return open_shared(runtime_path, "a", "ab", mode);
}

int sync_file(std::FILE* file) {
    if (std::fflush(file) != 0) return errno;
    return code_of(::_commit(::_fileno(file)));
}

int remove_file(const char* runtime_path) {
    return code_of(::_unlink(native_path(runtime_path).c_str()));
}

int remove_file(const std::filesystem::path& path) {
    return code_of(::_wunlink(path.c_str()));
}

bool path_exists(const char* runtime_path) {
    struct _stat64 status = {};
    return ::_stat64(native_path(runtime_path).c_str(), &status) == 0;
}

bool directory_exists(const char* runtime_path) {
    return are_of_directory(::GetFileAttributesA(native_path(runtime_path).c_str()));
}

int create_directory(const char* runtime_path) {
    return code_of(::_mkdir(native_path(runtime_path).c_str()));
}

std::vector<std::string> directory_entries(const char* runtime_path) {
    std::vector<std::string> names;
    std::string pattern = native_path(runtime_path);
    if (pattern.empty()) return names;
    // After a ":" no separator is added: this is the current directory of the drive. "*.*" matches
    // every name, also one without a dot.
    if (std::string_view("/\\:").find(pattern.back()) == std::string_view::npos) pattern += '\\';
    pattern += "*.*";
    WIN32_FIND_DATAA entry = {};
    const HANDLE first = ::FindFirstFileA(pattern.c_str(), &entry);
    if (first == INVALID_HANDLE_VALUE) return names;
    const std::unique_ptr<HANDLE, search_closer> search(first);
    do {
        const std::string_view name = entry.cFileName;
        if (name != "." && name != "..") names.emplace_back(name);
    } while (::FindNextFileA(search.get(), &entry) != 0);
    return names;
}

bool read_identity(const char* runtime_path, file_identity& identity) {
    // Reading the identity takes no access right. Directories open only with the flag for backups.
    constexpr DWORD no_access = 0;
    const HANDLE opened =
        ::CreateFileA(native_path(runtime_path).c_str(), no_access,
                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (opened == INVALID_HANDLE_VALUE) return false;
    const std::unique_ptr<HANDLE, handle_closer> file(opened);
    BY_HANDLE_FILE_INFORMATION information = {};
    if (::GetFileInformationByHandle(file.get(), &information) == 0) return false;
    identity.is_directory = are_of_directory(information.dwFileAttributes);
    identity.volume = information.dwVolumeSerialNumber;
    identity.index_high = information.nFileIndexHigh;
    identity.index_low = information.nFileIndexLow;
    return true;
}

std::string current_directory() {
    struct releaser {
        void operator()(char* text) const noexcept { std::free(text); }
    };
    const std::unique_ptr<char, releaser> directory(::_getcwd(nullptr, 0));
    return native_path(directory.get());
}

std::string program_file() {
    constexpr DWORD max_name_size = 32768;
    std::string name(max_name_size, '\0');
    const DWORD length = ::GetModuleFileNameA(nullptr, name.data(), max_name_size);
    name.resize(length < max_name_size ? length : 0);
    return name;
}

const char* get_environment(const char* name) {
    return names_variable(name) ? std::getenv(name) : nullptr;
}

bool set_environment(const char* name, const char* value) {
    if (!names_variable(name)) return false;
    return ::_putenv_s(name, value == nullptr ? "" : value) == 0;
}

std::tm local_time(std::time_t instant) {
    std::tm broken_down = {};
    ::localtime_s(&broken_down, &instant);
    return broken_down;
}

std::vector<std::filesystem::path::string_type> program_arguments(int, const char* const*) {
    struct releaser {
        void operator()(LPWSTR* list) const noexcept { ::LocalFree(list); }
    };
    int count = 0;
    const std::unique_ptr<LPWSTR, releaser> list(::CommandLineToArgvW(::GetCommandLineW(), &count));
    if (list == nullptr) throw std::system_error(ENOMEM, std::generic_category(), "command line");
    return {list.get() + 1, list.get() + count};
}

void prepare_console() {
    for (std::FILE* stream : {stdin, stdout, stderr}) {
        if (::_fileno(stream) >= 0) ::_setmode(::_fileno(stream), _O_BINARY);
    }
    // The code page belongs to the console, which outlives the process.
    static UINT old_code_page = 0;
    old_code_page = ::GetConsoleOutputCP();
    if (old_code_page == 0) return;
    understand_colours();
    ::SetConsoleOutputCP(CP_UTF8);
    static_cast<void>(std::atexit([] { ::SetConsoleOutputCP(old_code_page); }));
}

int terminal_columns(std::FILE* stream) {
    const int descriptor = ::_fileno(stream);
    if (descriptor < 0 || ::_isatty(descriptor) == 0) return 0;
    const auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor));
    CONSOLE_SCREEN_BUFFER_INFO info = {};
    if (::GetConsoleScreenBufferInfo(handle, &info) == 0) return default_columns;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

void breakpoint_trap() {
    ::__debugbreak();
}

// The stack is that of a thread, which ends with the call.
void call_on_stack(std::size_t bytes, const std::function<void()>& work) {
    if (bytes > UINT_MAX)
        throw std::system_error(ENOMEM, std::generic_category(), "_beginthreadex");
    stack_call call{work, nullptr};
    // With the flag, the size is reserved. Without it, the size would be committed at once.
    const std::uintptr_t thread =
        ::_beginthreadex(nullptr, static_cast<unsigned>(bytes), run, &call,
                         STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == 0) throw std::system_error(errno, std::generic_category(), "_beginthreadex");
    const auto handle = reinterpret_cast<HANDLE>(thread);
    ::WaitForSingleObject(handle, INFINITE);
    ::CloseHandle(handle);
    if (call.thrown != nullptr) std::rethrow_exception(call.thrown);
}

}  // namespace trv::platform
