#pragma once

/// @file
/// Lines of a standard stream or of a text in memory, which may contain zero bytes.
///
/// Threads: any, if the stream is not shared.

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace trv {

/// Reads up to and including the next newline, at most `max` bytes, and appends a zero byte.
///
/// @param buffer  of at least `max` + 1 bytes
/// @return the number of bytes read. If they are fewer than `max` and do not end with a newline,
///         the file ends there or a read failed.
std::size_t read_line(std::FILE* stream, char* buffer, std::size_t max);

/// The same from a text, of which it removes what it has read.
std::size_t read_line(std::string_view& text, char* buffer, std::size_t max);

}  // namespace trv
