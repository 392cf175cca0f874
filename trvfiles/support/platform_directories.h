#pragma once

/// @file
/// What is in a directory, and what a path leads to.
///
/// Each call is defined in platform_directories_posix.cpp and in platform_directories_windows.cpp;
/// the build takes the one of its system.
///
/// Threads: any, if the arguments are not shared.

#include <filesystem>
#include <vector>

namespace trv::platform {

enum class file_kind { none, directory, other };

/// What a path leads to, through links; `none` if there is nothing or if that cannot be asked.
file_kind kind_of(const std::filesystem::path& path);

/// A directory in another one, or a link that leads to a directory. A junction is a link.
struct subdirectory {
    /// As the system has it, on POSIX any bytes.
    std::filesystem::path::string_type name;
    bool is_link;
};

/// The directories in a directory, in no order. Hidden ones are left out: on POSIX those whose name
/// begins with ".". There are none if the directory cannot be read.
std::vector<subdirectory> subdirectories(const std::filesystem::path& directory);

/// The absolute path without links by which the system names what a path leads to, on Windows in
/// the form "\\?\C:\x"; empty if it leads nowhere. Two paths lead to one directory if their
/// canonical paths are equal.
std::filesystem::path canonical_path(const std::filesystem::path& path);

}  // namespace trv::platform
