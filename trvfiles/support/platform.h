#pragma once

/// @file
/// Everything in which Windows and POSIX differ. Each call is defined in platform_posix.cpp and in
/// platform_windows.cpp; the build takes one of them.
///
/// Threads: any, as far as the arguments are not shared.

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>

namespace trv::platform {

/// Whether narrow text is UTF-8 in every locale. Otherwise it is in the process's ANSI code page.
bool narrow_text_is_utf8();

/// Whether the operating system itself takes "\" for a separator. Otherwise each one has to become
/// a "/" before a path goes to it.
bool backslash_separates();

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

/// Creates a file for writing, or cuts an existing one to nothing; other processes may have it open
/// too.
///
/// @return the file, or none with the reason in `errno`
file_handle open_for_write(const std::filesystem::path& path, file_mode mode);

/// Runs `work` to its end on a stack of its own of at least `bytes` bytes, and gives on what it
/// throws. For the few calls into other libraries that recurse more deeply than the caller's stack
/// may bear.
///
/// @throws std::system_error where the system refuses a further stack
void call_on_stack(std::size_t bytes, const std::function<void()>& work);

}  // namespace trv::platform
