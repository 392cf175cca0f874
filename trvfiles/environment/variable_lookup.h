#pragma once

/// @file
/// Looking up a variable, for the library's own sources.
///
/// Threads: as get_variable().

#include <string_view>

namespace trv {

/// get_variable() of a name whose length is known. REQUIRES: a terminator after the name.
const char* find_variable(std::string_view name);

}  // namespace trv
