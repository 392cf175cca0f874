#pragma once

/// @file
/// Calls to the system that tests need and the library does not. Each is defined in
/// system_posix.cpp and in system_windows.cpp; the build uses one of them.

#include <cstddef>

namespace trv::testing {

/// Sets an environment variable of this process to the empty text, which platform::set_environment
/// cannot do.
void setEmptyVariable(const char* name);

/// The number of open file descriptors of this process, or -1 if the system does not report it.
std::ptrdiff_t openDescriptors();

}  // namespace trv::testing
