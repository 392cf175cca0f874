#pragma once

/// @file
/// Fields of fixed length: texts that are padded with blanks and have no terminator.
///
/// Threads: any.

#include <trvfiles/support/blanks.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace trv {

/// The text of a field, without its trailing blanks; a zero byte ends it as well. Empty if the
/// field is nullptr or the length is 0 or below.
inline std::string_view field_text(const char* field, std::int32_t length) {
    if (field == nullptr || length <= 0) return {};
    const auto width = static_cast<std::size_t>(length);
    const void* zero = std::memchr(field, '\0', width);
    const std::size_t end =
        zero == nullptr ? width : static_cast<std::size_t>(static_cast<const char*>(zero) - field);
    return trim_trailing({field, end});
}

/// Writes a text into a field and pads it with blanks. A text that is too long is cut. REQUIRES: a
/// length of at least 0; the text does not overlap the field.
inline void fill_field(char* field, std::int32_t length, std::string_view text) {
    const auto width = static_cast<std::size_t>(length);
    const std::size_t copied = text.copy(field, width);
    std::fill(field + copied, field + width, ' ');
}

}  // namespace trv
