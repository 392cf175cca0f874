#pragma once

/// @file
/// Programs of the user's desktop.
///
/// The function is defined in platform_programs_posix.cpp and in platform_programs_windows.cpp; the
/// build takes the one of its system.
///
/// Threads: any, if the arguments are not shared.

#include <filesystem>
#include <string>

namespace trv::platform {

/// Opens a file with the program that the desktop has for it: on POSIX by "xdg-open", which is
/// looked for in PATH, on Windows by the shell. No command line is parsed. On POSIX the call
/// returns when xdg-open has ended, but after a few seconds at the latest: xdg-open may be the
/// browser itself.
///
/// @param file  absolute
/// @return empty; or why the file is not open, human-readable: "xdg-open: No such file or
///         directory"
std::string open_on_desktop(const std::filesystem::path& file);

}  // namespace trv::platform
