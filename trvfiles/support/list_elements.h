#pragma once

/// @file
/// Texts that list directories, separated by ";" or ",". A run of separators counts as one.
///
/// Threads: any.

#include <algorithm>
#include <string_view>

namespace trv {

inline constexpr std::string_view list_separators = ";,";

/// Consumes the next element at the front of a list, blanks included. Elements are never empty.
///
/// @param rest     the rest of the list; begins after the element then
/// @param element  written if there is one
/// @return whether there is one
inline bool consume_list_element(std::string_view& rest, std::string_view& element) {
    const std::size_t begin = rest.find_first_not_of(list_separators);
    if (begin == std::string_view::npos) {
        rest = {};
        return false;
    }
    const std::size_t end = std::min(rest.find_first_of(list_separators, begin), rest.size());
    element = rest.substr(begin, end - begin);
    rest.remove_prefix(end);
    return true;
}

}  // namespace trv
