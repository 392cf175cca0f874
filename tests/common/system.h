#pragma once

/// @file
/// What tests ask of the system and the library does not. Each call is defined in system_posix.cpp
/// and in system_windows.cpp; the build takes one of them.

#include <cstddef>

namespace trv::testing {

/// Gives an environment variable of this process the empty text, which platform::set_environment
/// cannot do.
void setEmptyVariable(const char* name);

/// How many file descriptors this process holds, or -1 where the system does not tell.
std::ptrdiff_t openDescriptors();

}  // namespace trv::testing
