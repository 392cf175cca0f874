#pragma once

/// @file
/// Files that several processes write at the same time: how one process holds a file alone, and
/// how a complete file takes the place of another one.
///
/// Each call is defined in platform_sharing_posix.cpp and in platform_sharing_windows.cpp; the
/// build takes one of them. A path is a native one, as native_path() returns it, unless it is said
/// otherwise.
///
/// Threads: any, if the arguments are not shared.

#include <trvfiles/support/platform.h>

#include <chrono>
#include <string>

namespace trv::platform {

/// How long an operation waits for other processes before it fails with ETIMEDOUT.
inline constexpr std::chrono::milliseconds max_lock_wait{10000};

/// Opens an existing file for reading and for writing over what it holds ("r+"), and locks it until
/// it is closed; other callers wait for that. Between reading and writing comes a call that sets
/// the position. On a file system without locks the file is not locked.
///
/// @param runtime_path  a path that need not be native
/// @param wait          the maximum time to wait for another caller
/// @return the file, or nullptr with the reason in `errno`, ETIMEDOUT if another caller holds it
/// for
///         too long
file_handle open_for_update(const char* runtime_path, file_mode mode,
                            std::chrono::milliseconds wait = max_lock_wait);

/// Creates an empty file which this process holds alone until it releases it. Other callers with
/// the same path wait for that, in this process as well.
///
/// What has the name already is removed first, unless it is a directory or a file that another
/// caller holds: the file of a process that was killed, a link, a FIFO. Nothing is followed, read
/// or written through such a name. On POSIX a file that cannot be locked, because its rights or the
/// file system do not allow it, counts as held until it has not changed for `wait`.
///
/// @param wait  the maximum time to wait for another caller
/// @return the file's descriptor; -1 with the reason in `errno`, ETIMEDOUT if another caller holds
///         the file for too long
int create_held(const char* path, std::chrono::milliseconds wait);

/// Opens a stream that writes to a held file. Closing the stream does not release the file.
///
/// @return the stream, or nullptr with the reason in `errno`
file_handle open_stream_of(int held, file_mode mode);

/// Gives a held file what belongs to another file besides its content: on POSIX permission bits,
/// owner and group, and on Linux extended attributes and the access control list; on Windows the
/// attributes and the access control list. What the system does not allow is left out, but nobody
/// gets more rights: if the group cannot be kept, its members have the rights of all others.
/// Nothing happens if `from` is missing or is not a regular file.
///
/// @return 0; the `errno` if the permission bits cannot be set
int copy_attributes(const char* from, int held);

/// What moving a file does with a file that has the new name.
enum class existing_file { replaced, refused };

/// Renames a held file in one step: whoever opens `to` gets the old file or the new one, whole. The
/// file stays held. On Windows a target that is read-only is not replaced, and one that is open in
/// another program is waited for during one second.
///
/// @return 0, or the `errno`: ENOENT if `from` is not the held file any more, EEXIST if anything
///         has the name `to` and is refused. After a failure both files are as before.
int move_held(int held, const char* from, const char* to, existing_file existing);

/// Ends what create_held() began.
void release_held(int held);

/// Ends what create_held() began and removes the file, if `path` still names it.
void remove_held(int held, const char* path);

/// Replaces the path of a symbolic link by the path to which the link leads in the end. That need
/// not exist. Every other path stays as it is; on Windows, a link to nothing as well.
///
/// @return 0; the `errno` if the system does not let this process follow the link, ELOOP if the
///         links do not end
int follow_links(std::string& path);

/// Whether anything has this name, a symbolic link that leads nowhere included.
bool is_name_taken(const char* path);

}  // namespace trv::platform
