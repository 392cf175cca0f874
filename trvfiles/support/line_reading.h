#pragma once

/// @file
/// Lines of a standard stream, with the zero bytes that may be in them.
///
/// Threads: any, as far as the stream is not shared.

#include <cstddef>
#include <cstdio>

namespace trv {

/// Reads up to and with the next newline, at most `most` bytes, and ends them with a zero byte.
///
/// @param buffer  of at least `most` + 1 bytes
/// @return how many bytes were read. Fewer than `most`, and no newline at the last place: the file
///         ends there, or a read failed.
std::size_t read_line(std::FILE* stream, char* buffer, std::size_t most);

}  // namespace trv
