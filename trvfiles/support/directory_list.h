#pragma once

/// @file
/// Texts that list directories, separated by ";" or ",". A run of separators counts as one.
///
/// Threads: any.

#include <string_view>

namespace trv {

inline constexpr std::string_view list_separators = ";,";

/// Takes the next element off the front of a list, blanks included. Elements are never empty.
///
/// @param rest     what is left of the list; moved behind the element
/// @param element  written where there is one
/// @return whether there is one
bool next_list_element(std::string_view& rest, std::string_view& element);

}  // namespace trv
