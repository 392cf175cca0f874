#pragma once

/// @file
/// The file that a save replaces: its attributes, and the links that lead to it.
///
/// Each function is defined in platform_targets_posix.cpp and in platform_targets_windows.cpp. A
/// path is a native one, as native_path() returns it.
///
/// Threads: any, if the arguments are not shared.

#include <string>

namespace trv::platform {

/// Gives a held file the attributes of another file: on POSIX permission bits, owner and group, and
/// on Linux extended attributes and the access control list; on Windows the attributes and the
/// access control list. What the system does not allow is left out, but no user gets more rights:
/// if the group cannot be kept, the new group gets no right that all others lack. Nothing happens
/// if `from` is missing or is not a regular file.
///
/// @param held  the descriptor of the file, as create_held() returns it
/// @return 0; the `errno` if the permission bits cannot be set
int copy_attributes(const char* from, int held);

/// Replaces the path of a symbolic link by the path to which the link leads in the end. That file
/// need not exist. Every other path is left unchanged; on Windows, a link to nothing as well.
///
/// @return 0; the `errno` if the system does not let this process follow the link, ELOOP if the
///         links do not end
int follow_links(std::string& path);

/// Whether anything has this name, a symbolic link that leads nowhere included.
bool is_name_taken(const char* path);

}  // namespace trv::platform
