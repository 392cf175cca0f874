#pragma once

/// @file
/// Bytes as text of ASCII.
///
/// Threads: any.

#include <string>
#include <string_view>

namespace trv::cli {

/// Appends the bytes in base64. Bytes that are appended in several calls give the text of one call
/// if the number of bytes of each call but the last is a multiple of three.
void appendBase64(std::string& out, std::string_view bytes);

}  // namespace trv::cli
