#pragma once

/// @file
/// Everything in which Windows and POSIX differ. Each call is defined in platform_posix.cpp and in
/// platform_windows.cpp; the build takes one of them.
///
/// A runtime path is a narrow text in which "/" and "\" both separate. Here, and nowhere else, it
/// meets the operating system: on POSIX each "\" becomes a "/" first, on Windows the text is taken
/// as it stands, in the process's ANSI code page. A null or an empty path names nothing: ENOENT.
///
/// Threads: any, as far as the arguments are not shared. The environment is the process's own: one
/// thread at a time.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace trv::platform {

/// Whether narrow text is UTF-8 in every locale. Otherwise it is in the process's ANSI code page.
bool narrow_text_is_utf8();

/// Whether the operating system itself takes "\" for a separator. Otherwise each one has to become
/// a "/" before a path goes to it.
bool backslash_separates();

/// A runtime path as the operating system takes it; empty for a null pointer.
std::string native_path(const char* path);

struct file_closer {
    void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};
using file_handle = std::unique_ptr<std::FILE, file_closer>;

/// In text mode, line ends are those of the system: CR LF on Windows, LF elsewhere.
enum class file_mode { text, binary };

/// Opens an existing file for reading; other processes may have it open too.
///
/// @return the file, or none with the reason in `errno`. A directory does not open: EISDIR.
file_handle open_for_read(const std::filesystem::path& path, file_mode mode);
file_handle open_for_read(const char* runtime_path, file_mode mode);
inline file_handle open_for_read(const std::string& runtime_path, file_mode mode) {
    return open_for_read(runtime_path.c_str(), mode);
}

/// Whether open_for_read() would open the file now. Answers at once: it does not wait for the
/// writer of a pipe, and leaves a pipe to its reader.
bool can_open_for_read(const std::filesystem::path& path);
bool can_open_for_read(const char* runtime_path);
inline bool can_open_for_read(const std::string& runtime_path) {
    return can_open_for_read(runtime_path.c_str());
}

/// Creates a file for writing, or cuts an existing one to nothing; other processes may have it open
/// too.
///
/// @return the file, or none with the reason in `errno`
file_handle open_for_write(const std::filesystem::path& path, file_mode mode);
file_handle open_for_write(const char* runtime_path, file_mode mode);
inline file_handle open_for_write(const std::string& runtime_path, file_mode mode) {
    return open_for_write(runtime_path.c_str(), mode);
}

/// Creates a file for writing if nothing has its name yet, a link that leads nowhere included.
///
/// @return the file, or nullptr with the reason in `errno`: EEXIST if the name is taken
file_handle open_new(const std::filesystem::path& path, file_mode mode);

/// Opens a file for writing behind its end, and creates it where it is missing.
///
/// @return the file, or none with the reason in `errno`
file_handle open_for_append(const char* runtime_path, file_mode mode);

/// Hands what is still buffered to the system, and waits until the system has it on the device.
///
/// @return 0, or the `errno` of the step that failed
int sync_file(std::FILE* file);

/// Removes a file; never a directory.
///
/// @return 0, or the `errno`
int remove_file(const char* runtime_path);
int remove_file(const std::filesystem::path& path);

/// Whether something of that name exists and its status can be read.
bool path_exists(const char* runtime_path);

/// Whether the path names a directory.
bool directory_exists(const char* runtime_path);

/// Creates one directory.
///
/// @return 0, or the `errno`
int create_directory(const char* runtime_path);

/// The names in a directory, hidden ones included, "." and ".." left out, in no order. None where
/// it cannot be read.
std::vector<std::string> directory_entries(const char* runtime_path);

/// What tells one file or directory from every other one of the machine.
struct file_identity {
    bool is_directory;
    std::uint32_t volume;
    std::uint32_t index_high;
    std::uint32_t index_low;
};

/// @param identity  written on success only
/// @return whether the path names something whose identity can be read
bool read_identity(const char* runtime_path, file_identity& identity);

/// The process's current directory as a runtime path, separated by "\"; empty where it has none.
std::string current_directory();

/// The path of the process's program file, as the system names it; empty where it has no name.
std::string program_file();

/// The value of an environment variable, or null where it is not set. It lives in the process's
/// environment until that variable changes. A null or an empty name, or one that holds "=", names
/// no variable.
const char* get_environment(const char* name);

/// Sets an environment variable. A null or an empty value removes it.
///
/// @return whether it is done; a name that names no variable is refused
bool set_environment(const char* name, const char* value);

/// An instant in local time, broken down.
std::tm local_time(std::time_t instant);

/// The arguments of the process without its own name, as the system has them: on POSIX those of
/// main(), on Windows those of the command line, of which main() gets what the code page can hold.
/// For programs.
std::vector<std::filesystem::path::string_type> program_arguments(int argc,
                                                                  const char* const* argv);

/// Makes the standard streams pass their bytes as they are, and a console take them for UTF-8 until
/// the process ends. For programs, before they print.
void prepare_console();

/// Stops in the debugger; without one, the process ends as at a breakpoint.
void breakpoint_trap();

/// Runs `work` to its end on a stack of its own of at least `bytes` bytes, and gives on what it
/// throws. For the few calls into other libraries that recurse more deeply than the caller's stack
/// may bear.
///
/// @throws std::system_error where the system refuses a further stack
void call_on_stack(std::size_t bytes, const std::function<void()>& work);

}  // namespace trv::platform
