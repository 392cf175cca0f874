#pragma once

/// @file
/// Comparisons that ignore the case of the 26 ASCII letters. Every other byte compares exactly, in
/// every locale.
///
/// Threads: any.

#include <algorithm>
#include <string>
#include <string_view>

namespace trv {

constexpr char fold_case(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// The text in upper case. Texts that differ only in case have it in common.
inline std::string fold_case(std::string_view text) {
    std::string folded(text);
    for (char& c : folded)
        c = fold_case(c);
    return folded;
}

inline bool equal_ignoring_case(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return fold_case(a) == fold_case(b); });
}

}  // namespace trv
