#pragma once

/// @file
/// The functions in which Windows and POSIX differ. Each one is defined in platform_posix.cpp and
/// in platform_windows.cpp; the build compiles one of them. platform_sharing.h and
/// platform_targets.h declare further ones.
///
/// A runtime path is narrow text in which "/" and "\" both separate. Only these functions hand it
/// to the operating system: on POSIX each "\" becomes a "/" first, on Windows the text is passed on
/// unchanged, in the process's ANSI code page. A path that is nullptr or empty names nothing:
/// ENOENT.
///
/// Threads: any, if the arguments are not shared. The process has one environment: it is read and
/// set by one thread at a time.

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

/// Whether narrow text is UTF-8 in every locale. If not, it is in the process's ANSI code page.
bool narrow_text_is_utf8();

/// Whether "\" separates for the operating system. If not, each one has to become a "/" before the
/// system gets the path.
bool backslash_separates();

/// A runtime path in the form that the operating system takes; empty for nullptr.
std::string native_path(const char* path);

struct file_closer {
    void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};
using file_handle = std::unique_ptr<std::FILE, file_closer>;

/// In text mode, line ends are those of the system: CR LF on Windows, LF on POSIX.
enum class file_mode { text, binary };

/// Opens an existing file for reading; other processes may have it open too.
///
/// @return the file, or nullptr with the reason in `errno`: EISDIR for a directory
file_handle open_for_read(const std::filesystem::path& path, file_mode mode);
file_handle open_for_read(const char* runtime_path, file_mode mode);
inline file_handle open_for_read(const std::string& runtime_path, file_mode mode) {
    return open_for_read(runtime_path.c_str(), mode);
}

/// Whether open_for_read() would open the file now. Returns at once: it does not wait for the
/// writer of a pipe and does not open a pipe.
bool can_open_for_read(const std::filesystem::path& path);
bool can_open_for_read(const char* runtime_path);
inline bool can_open_for_read(const std::string& runtime_path) {
    return can_open_for_read(runtime_path.c_str());
}

/// Whether the path leads to a regular file: to no directory, pipe or device. Opens nothing.
bool regular_file_exists(const std::filesystem::path& path);
bool regular_file_exists(const char* runtime_path);
inline bool regular_file_exists(const std::string& runtime_path) {
    return regular_file_exists(runtime_path.c_str());
}

/// Creates a file for writing, or empties an existing one; other processes may have it open too.
///
/// @return the file, or nullptr with the reason in `errno`
file_handle open_for_write(const std::filesystem::path& path, file_mode mode);
file_handle open_for_write(const char* runtime_path, file_mode mode);
inline file_handle open_for_write(const std::string& runtime_path, file_mode mode) {
    return open_for_write(runtime_path.c_str(), mode);
}

/// Creates a file for writing if its name is not taken, not even by a link that leads nowhere.
///
/// @return the file, or nullptr with the reason in `errno`: EEXIST if the name is taken
file_handle open_new(const std::filesystem::path& path, file_mode mode);

/// Opens a file for writing at its end, and creates it if it is missing.
///
/// @return the file, or nullptr with the reason in `errno`
file_handle open_for_append(const char* runtime_path, file_mode mode);

/// Writes the stream's buffer and waits until the system has stored the file on its device.
///
/// @return 0, or the `errno` of the step that failed
int sync_file(std::FILE* file);

/// Removes a file. A directory is refused.
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

/// The names in a directory in no order, hidden ones included, without "." and "..". Empty if it
/// cannot be read.
std::vector<std::string> directory_entries(const char* runtime_path);

/// Identifies a file or a directory on this machine.
struct file_identity {
    bool is_directory;
    std::uint32_t volume;
    std::uint32_t index_high;
    std::uint32_t index_low;
};

/// @param identity  written on success only
/// @return whether the path names something whose identity can be read
bool read_identity(const char* runtime_path, file_identity& identity);

/// The process's current directory as a runtime path with "\"; empty if it has been removed.
std::string current_directory();

/// The path of the process's program file, as the system returns it; empty if it is not available.
std::string program_file();

/// The value of an environment variable; nullptr if it is not set. It is valid until that variable
/// changes. No variable has a name that is nullptr, empty or contains "=".
const char* get_environment(const char* name);

/// Sets an environment variable. A value that is nullptr or empty removes it.
///
/// @return false if the system refuses, or for a name that no variable can have
bool set_environment(const char* name, const char* value);

/// A point in time as local date and time.
std::tm local_time(std::time_t instant);

/// The arguments of the process without the program's name, in the system's encoding: on POSIX
/// those of main(); on Windows those of the command line in UTF-16, since main() gets them
/// converted to the code page. For programs.
std::vector<std::filesystem::path::string_type> program_arguments(int argc,
                                                                  const char* const* argv);

/// Sets the standard streams to binary mode, and a console to UTF-8 until the process ends. For
/// programs, before they print.
void prepare_console();

/// The columns of a terminal that does not say how many it has.
inline constexpr int default_columns = 80;

/// How many columns the terminal of a standard stream has; 0 if the stream is not a terminal. For
/// programs.
int terminal_columns(std::FILE* stream);

/// Raises a breakpoint trap: a debugger stops there; without one the process ends.
void breakpoint_trap();

/// Runs `work` to its end on a separate stack of at least `bytes` bytes. For calls into libraries
/// that may recurse more deeply than the caller's stack allows.
///
/// @throws what `work` throws; std::system_error if the system refuses the stack
void call_on_stack(std::size_t bytes, const std::function<void()>& work);

}  // namespace trv::platform
