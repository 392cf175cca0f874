#include <trvfiles/support/platform.h>

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string_view>
#include <system_error>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// A runtime path in the form of the system. A path without "\" is used unchanged and needs no
// memory: cleaning up after a failure must not fail.
class system_path {
public:
    explicit system_path(const char* path) : path_(path == nullptr ? "" : path) {
        if (std::strchr(path_, '\\') == nullptr) return;
        translated_ = native_path(path_);
        path_ = translated_.c_str();
    }
    system_path(const system_path&) = delete;
    system_path& operator=(const system_path&) = delete;

    const char* c_str() const { return path_; }

private:
    const char* path_;
    std::string translated_;
};

// Repeats an open that a signal interrupts. If there is no memory for the stream, fopen() does not
// create or empty the file. Every mode has an "e" (close-on-exec): a process that the host starts
// does not inherit the file.
file_handle open_stream(const char* path, const char* mode) {
    file_handle file;
    do {
        file.reset(std::fopen(path, mode));
    } while (file == nullptr && errno == EINTR);
    return file;
}

// fopen() succeeds for a directory, and only the first read would fail.
file_handle open_unless_directory(const char* path) {
    file_handle file = open_stream(path, "re");
    if (file == nullptr) return file;
    // If there is no status, the first read fails with the reason.
    struct stat status = {};
    ::fstat(::fileno(file.get()), &status);
    if (S_ISDIR(status.st_mode)) {
        file.reset();
        errno = EISDIR;
    }
    return file;
}

bool can_open(const char* path) {
    struct stat status = {};
    if (::stat(path, &status) != 0 || S_ISDIR(status.st_mode)) return false;
    // Opening a pipe waits for its writer, and closing it again ends a writer that waits for a
    // reader. So only the access right of a pipe is checked.
    if (S_ISFIFO(status.st_mode)) return ::faccessat(AT_FDCWD, path, R_OK, AT_EACCESS) == 0;
    int descriptor = -1;
    do {
        descriptor = ::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    // Another process holds a lease on the file: an open that waits succeeds.
    if (descriptor < 0) return errno == EWOULDBLOCK;
    ::close(descriptor);
    return true;
}

bool is_regular(const char* path) {
    struct stat status = {};
    return ::stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

int code_of(int result) {
    return result == 0 ? 0 : errno;
}

bool read_status(const char* runtime_path, struct stat& status) {
    return ::stat(system_path(runtime_path).c_str(), &status) == 0;
}

bool names_variable(const char* name) {
    return name != nullptr && *name != '\0' && std::strchr(name, '=') == nullptr;
}

struct directory_closer {
    void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};

struct stack_call {
    const std::function<void()>& work;
    std::exception_ptr thrown;
};

// An exception that leaves a thread ends the process, so it is stored for the caller.
void* run(void* argument) {
    auto& call = *static_cast<stack_call*>(argument);
    try {
        call.work();
    } catch (...) {
        call.thrown = std::current_exception();
    }
    return nullptr;
}

void require(int status, const char* what) {
    if (status != 0) throw std::system_error(status, std::generic_category(), what);
}

class thread_attributes {
public:
    thread_attributes() { require(::pthread_attr_init(&attributes_), "pthread_attr_init"); }
    ~thread_attributes() { ::pthread_attr_destroy(&attributes_); }
    thread_attributes(const thread_attributes&) = delete;
    thread_attributes& operator=(const thread_attributes&) = delete;

    pthread_attr_t* get() { return &attributes_; }

private:
    pthread_attr_t attributes_;
};

}  // namespace

bool narrow_text_is_utf8() {
    return true;
}

bool backslash_separates() {
    return false;
}

std::string native_path(const char* path) {
    std::string native = path == nullptr ? "" : path;
    std::replace(native.begin(), native.end(), '\\', '/');
    return native;
}

file_handle open_for_read(const std::filesystem::path& path, file_mode) {
    return open_unless_directory(path.c_str());
}

file_handle open_for_read(const char* runtime_path, file_mode) {
    return open_unless_directory(system_path(runtime_path).c_str());
}

bool can_open_for_read(const std::filesystem::path& path) {
    return can_open(path.c_str());
}

bool can_open_for_read(const char* runtime_path) {
    return can_open(system_path(runtime_path).c_str());
}

bool regular_file_exists(const std::filesystem::path& path) {
    return is_regular(path.c_str());
}

bool regular_file_exists(const char* runtime_path) {
    return is_regular(system_path(runtime_path).c_str());
}

file_handle open_for_write(const std::filesystem::path& path, file_mode) {
    return open_stream(path.c_str(), "we");
}

file_handle open_for_write(const char* runtime_path, file_mode) {
    return open_stream(system_path(runtime_path).c_str(), "we");
}

file_handle open_new(const std::filesystem::path& path, file_mode) {
    return open_stream(path.c_str(), "wxe");
}

file_handle open_for_append(const char* runtime_path, file_mode) {
    return open_stream(system_path(runtime_path).c_str(), "ae");
}

int sync_file(std::FILE* file) {
    if (std::fflush(file) != 0) return errno;
    int result = 0;
    do {
        result = ::fsync(::fileno(file));
    } while (result != 0 && errno == EINTR);
    // Pipes and character devices have no storage to wait for.
    const bool has_no_storage = result != 0 && errno == EINVAL;
    return has_no_storage ? 0 : code_of(result);
}

int remove_file(const char* runtime_path) {
    return code_of(::unlink(system_path(runtime_path).c_str()));
}

int remove_file(const std::filesystem::path& path) {
    return code_of(::unlink(path.c_str()));
}

bool path_exists(const char* runtime_path) {
    struct stat status = {};
    return read_status(runtime_path, status);
}

bool directory_exists(const char* runtime_path) {
    struct stat status = {};
    return read_status(runtime_path, status) && S_ISDIR(status.st_mode);
}

int create_directory(const char* runtime_path) {
    constexpr mode_t all_rights_of_the_mask = 0777;
    return code_of(::mkdir(system_path(runtime_path).c_str(), all_rights_of_the_mask));
}

std::vector<std::string> directory_entries(const char* runtime_path) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, directory_closer> directory(
        ::opendir(system_path(runtime_path).c_str()));
    if (directory == nullptr) return names;
    while (const dirent* entry = ::readdir(directory.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
    }
    return names;
}

bool read_identity(const char* runtime_path, file_identity& identity) {
    struct stat status = {};
    if (!read_status(runtime_path, status)) return false;
    const auto index = static_cast<std::uint64_t>(status.st_ino);
    identity.is_directory = S_ISDIR(status.st_mode);
    identity.volume = static_cast<std::uint32_t>(status.st_dev);
    identity.index_high = static_cast<std::uint32_t>(index >> 32U);
    identity.index_low = static_cast<std::uint32_t>(index);
    return true;
}

std::string current_directory() {
    std::error_code ignored;
    std::string directory = std::filesystem::current_path(ignored).string();
    std::replace(directory.begin(), directory.end(), '/', '\\');
    return directory;
}

std::string program_file() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored).string();
}

const char* get_environment(const char* name) {
    if (name == nullptr) return nullptr;
    const char* value = std::getenv(name);
    return value != nullptr && names_variable(name) ? value : nullptr;
}

bool set_environment(const char* name, const char* value) {
    if (!names_variable(name)) return false;
    // An empty value removes the variable on Windows, so it does here too.
    if (value == nullptr || *value == '\0') return ::unsetenv(name) == 0;
    return ::setenv(name, value, 1) == 0;
}

std::tm local_time(std::time_t instant) {
    std::tm broken_down = {};
    ::localtime_r(&instant, &broken_down);
    return broken_down;
}

std::vector<std::filesystem::path::string_type> program_arguments(int argc,
                                                                  const char* const* argv) {
    return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

void prepare_console() {}

int terminal_columns(std::FILE* stream) {
    const int descriptor = ::fileno(stream);
    if (descriptor < 0 || ::isatty(descriptor) == 0) return 0;
    winsize size = {};
    const bool isKnown = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? size.ws_col : default_columns;
}

void breakpoint_trap() {
    static_cast<void>(std::raise(SIGTRAP));
}

// The stack is that of a thread, which ends with the call.
void call_on_stack(std::size_t bytes, const std::function<void()>& work) {
    stack_call call{work, nullptr};
    thread_attributes attributes;
    const auto min_bytes = static_cast<std::size_t>(PTHREAD_STACK_MIN);
    require(::pthread_attr_setstacksize(attributes.get(), std::max(bytes, min_bytes)),
            "pthread_attr_setstacksize");
    pthread_t thread = {};
    require(::pthread_create(&thread, attributes.get(), run, &call), "pthread_create");
    ::pthread_join(thread, nullptr);
    if (call.thrown != nullptr) std::rethrow_exception(call.thrown);
}

}  // namespace trv::platform
