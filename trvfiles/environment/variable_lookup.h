#pragma once

/// @file
/// Looking up a variable, for the library's own sources.
///
/// Threads: as get_variable().

#include <cstdint>
#include <string_view>

namespace trv {

/// get_variable() of a name whose length is known. REQUIRES: a terminator after the name.
const char* find_variable(std::string_view name);

/// How often lookups have called one of runtime_hooks so far, modulo 2^32. Only these calls can run
/// code of the host within a lookup that is not traced.
std::uint32_t hook_calls();

}  // namespace trv
