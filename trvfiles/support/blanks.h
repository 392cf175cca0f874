#pragma once

/// @file
/// The blanks of the runtime: the characters with codes 1 to 32, in every locale. Bytes from 128 on
/// and the zero byte are not blanks.
///
/// Threads: any.

#include <cstddef>
#include <string_view>

namespace trv {

constexpr bool is_blank(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code >= 1 && code <= 32;
}

constexpr std::string_view trim_leading(std::string_view text) {
    while (!text.empty() && is_blank(text.front()))
        text.remove_prefix(1);
    return text;
}

constexpr std::string_view trim_trailing(std::string_view text) {
    while (!text.empty() && is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

constexpr std::string_view trim(std::string_view text) {
    return trim_leading(trim_trailing(text));
}

/// Cuts the trailing blanks off a NUL-terminated text. nullptr is ignored.
inline void cut_trailing_blanks(char* text) {
    if (text == nullptr) return;
    const std::size_t kept = trim_trailing(std::string_view(text)).size();
    text[kept] = '\0';
}

}  // namespace trv
