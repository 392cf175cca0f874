#pragma once

/// @file
/// Files that several processes write at the same time: how a process holds a file exclusively, and
/// how a complete file replaces another one.
///
/// Each function is defined in platform_sharing_posix.cpp and in platform_sharing_windows.cpp. A
/// path is a native one, as native_path() returns it, unless the function says otherwise.
///
/// Threads: any, if the arguments are not shared.

#include <trvfiles/support/platform.h>

#include <chrono>
#include <string>

namespace trv::platform {

/// How long an operation waits for other processes before it fails with ETIMEDOUT.
inline constexpr std::chrono::milliseconds max_lock_wait{10000};

/// Opens an existing file for reading and for overwriting ("r+"), and locks it until it is closed;
/// other callers wait for that. Between reading and writing the caller has to set the position. On
/// a file system without locks the file is not locked.
///
/// @param runtime_path  a path that need not be native
/// @param wait          the maximum time to wait for another caller
/// @return the file, or nullptr with the reason in `errno`: ETIMEDOUT if another caller holds it
///         for too long
file_handle open_for_update(const char* runtime_path, file_mode mode,
                            std::chrono::milliseconds wait = max_lock_wait);

/// Creates an empty file and holds it exclusively until it is released. Other callers with the same
/// path wait for that, in this process as well.
///
/// If the name is taken by the file of a process that was killed, by a link or by a FIFO, that is
/// removed first and never followed, read or written. A directory and a file that another caller
/// holds stay. On POSIX a file that cannot be locked, because its rights or the file system do not
/// allow it, counts as held until it has not changed for `wait`.
///
/// @param wait  the maximum time to wait for another caller
/// @return the file's descriptor; -1 with the reason in `errno`, ETIMEDOUT if another caller holds
///         the file for too long
int create_held(const char* path, std::chrono::milliseconds wait);

/// Opens a stream that writes to a held file. Closing the stream does not release the file.
///
/// @return the stream, or nullptr with the reason in `errno`
file_handle open_stream_of(int held, file_mode mode);

/// Opens a stream that reads a held file from its beginning, without changing its bytes. Other
/// streams of the file have to be closed.
///
/// @return the stream, or nullptr with the reason in `errno`
file_handle open_reader_of(int held);

/// What move_held() does with an existing file of the new name.
enum class existing_file { replaced, refused };

/// Renames a held file in one step: a reader of `to` gets the complete old file or the complete new
/// one. The file stays held. On Windows a target that is read-only is not replaced, and one that is
/// open in another program is waited for during one second.
///
/// @return 0, or the `errno`: ENOENT if `from` is no longer the held file, EEXIST if the name `to`
///         is taken and `existing` is `refused`. After a failure both files are as before.
int move_held(int held, const char* from, const char* to, existing_file existing);

/// Releases a file that create_held() has created.
void release_held(int held);

/// Releases a file that create_held() has created and removes it if `path` still names it.
void remove_held(int held, const char* path);

}  // namespace trv::platform
