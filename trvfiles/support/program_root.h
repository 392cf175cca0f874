#pragma once

/// @file
/// The installation that a program file belongs to.
///
/// Threads: any.

#include <string>

namespace trv {

/// X, written with "/", for a program file X/exe/msw/NAME of fewer than 512 characters; empty for
/// any other path. "exe" and "msw" may be in either case.
std::string root_of_program(std::string program_file);

}  // namespace trv
