#pragma once

/// @file
/// The files that hold zone numbers: eight lower-case hexadecimal digits on one line.
///
/// Failures are reported through the fatal channel. If its handler returns, the result is nullopt.
///
/// Threads: one at a time, with the whole runtime.

#include <optional>
#include <string>

namespace trv {

/// The number of a zone, as its file holds it up to the 80th character, without trailing blanks.
std::optional<std::string> read_zone_number(const char* path);

/// Allocates the next number of the installation's counter. The file is locked meanwhile, so that
/// no two processes get the same number.
///
/// A text that is not a hexadecimal number counts as 0, and a number above ffffffff as ffffffff,
/// which is followed by 0. The file is overwritten and not truncated: the rest of a longer line
/// stays.
///
/// @param path  of the counter file, which has to exist
/// @return the new number
std::optional<std::string> allocate_zone_number(const char* path);

/// Creates the file of a new zone. It appears complete: a process that finds it reads the whole
/// number.
///
/// @return the number of the zone: `number`, or that of another process that has created the file
///         first
std::optional<std::string> create_zone_number(const char* path, const std::string& number);

}  // namespace trv
