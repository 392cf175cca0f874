#pragma once

/// @file
/// The two forms of a text in a caller's buffer, and the space that a text needs in each.
///
/// Threads: any.

#include <trvfiles/export.h>

#include <cstddef>
#include <cstdint>

namespace trv {

/// How a text ends in a buffer.
enum string_format : std::uint32_t {
    STRING_FORMAT_F = 0,  ///< a field of fixed length, padded with blanks and not terminated
    STRING_FORMAT_C = 1,  ///< a NUL-terminated text
};

/// The bytes that a text of this length needs in a buffer of this format. Any other format needs
/// 65535, whatever the length.
TRV_EXPORT std::int64_t expansion_space(std::size_t length, std::uint32_t format);

/// "F", "C", or "<UnknownStringFormat>" for any other value.
TRV_EXPORT const char* string_format_name(std::uint32_t format);

}  // namespace trv
