#pragma once

/// @file
/// Where a program file that lies in an installation says that the installation is.

#include <string>

namespace trv {

/// X, written with "/", for a program file X/exe/msw/NAME of fewer than 512 characters; empty for
/// any other one. "exe" and "msw" may be in either case.
///
/// Threads: any.
std::string root_of_program(std::string program_file);

}  // namespace trv
