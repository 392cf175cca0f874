#pragma once

/// @file
/// The paths of configuration files: how they are joined, and how long they may be.
///
/// Threads: any.

#include <trvfiles/support/blanks.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trv {

/// Bytes of a path or a list of directories, the terminator counted. Longer paths are never cut:
/// they count as paths of missing files.
inline constexpr std::size_t configuration_path_size = 512;

inline bool fits_path_buffer(std::string_view path) {
    return path.size() < configuration_path_size;
}

inline std::string path_in(std::string_view directory, std::string_view file_name) {
    std::string path(directory);
    path += '\\';
    path += file_name;
    return path;
}

/// The directory without one "/" or "\" at its end.
inline std::string_view without_trailing_separator(std::string_view directory) {
    if (!directory.empty() && (directory.back() == '/' || directory.back() == '\\'))
        directory.remove_suffix(1);
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
