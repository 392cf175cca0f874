#pragma once

/// @file
/// Paths and lists of paths as texts of the runtime: how they are joined, and how long they may be.
///
/// Threads: any.

#include <trvfiles/support/blanks.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trv {

/// Bytes of a buffer for a path or a list of directories, the terminator counted. A longer path is
/// never cut: it counts as the path of a missing file.
inline constexpr std::size_t path_buffer_size = 512;

inline bool fits_path_buffer(std::string_view path) {
    return path.size() < path_buffer_size;
}

/// The runtime's paths are separated by "/" and "\" on every system.
inline constexpr std::string_view path_separators = "/\\";

constexpr bool is_path_separator(char c) {
    return c == '/' || c == '\\';
}

inline std::string path_in(std::string_view directory, std::string_view file_name) {
    std::string path(directory);
    path += '\\';
    path += file_name;
    return path;
}

/// The directory without one "/" or "\" at its end.
inline std::string_view without_trailing_separator(std::string_view directory) {
    if (!directory.empty() && is_path_separator(directory.back())) directory.remove_suffix(1);
    return directory;
}

/// The elements as one list, with a ";" between each two.
inline std::string join_list(const std::vector<std::string>& elements) {
    std::string list;
    for (const std::string& element : elements) {
        if (&element != &elements.front()) list += ';';
        list += element;
    }
    return list;
}

}  // namespace trv
