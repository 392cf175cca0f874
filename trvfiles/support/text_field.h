#pragma once

/// @file
/// Fields of fixed length: a text that is padded with blanks and not terminated.
///
/// Threads: any.

#include <trvfiles/support/blanks.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace trv {

/// The text of a field: what stands before its trailing blanks, and before a zero byte. Empty for
/// a null field and a length of 0 or below.
inline std::string_view field_text(const char* field, std::int32_t length) {
    if (field == nullptr || length <= 0) return {};
    const auto width = static_cast<std::size_t>(length);
    const void* zero = std::memchr(field, '\0', width);
    const std::size_t end =
        zero == nullptr ? width : static_cast<std::size_t>(static_cast<const char*>(zero) - field);
    return trim_trailing({field, end});
}

/// Puts a text into a field, cut to it if it is too long. Nothing is written to a field of length
/// 0. The text lies outside the field. REQUIRES: a length of at least 0.
inline void fill_field(char* field, std::int32_t length, std::string_view text) {
    const auto width = static_cast<std::size_t>(length);
    const std::size_t copied = text.copy(field, width);
    std::fill(field + copied, field + width, ' ');
}

}  // namespace trv
