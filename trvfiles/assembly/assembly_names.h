#pragma once

/// @file
/// The element and attribute names of assembly files, as the format spells them.

#include <cstddef>
#include <cstring>
#include <string_view>

namespace trv::names {

/// Whether a text is one of the names below. Its length is known to the compiler, which compares
/// without a call.
template <std::size_t size>
bool isName(std::string_view text, const char (&name)[size]) {
    return text.size() == size - 1 && std::memcmp(text.data(), name, size - 1) == 0;
}

inline constexpr char root[] = "ComponentInfo";
inline constexpr char version[] = "version";
inline constexpr char attributes[] = "Attributs";
inline constexpr char dimension[] = "Dimension";
inline constexpr char component[] = "Component";
inline constexpr char name[] = "name";
inline constexpr char comment[] = "comment";
inline constexpr char enabled[] = "enabled";
inline constexpr char translation[] = "Translation";
inline constexpr char orientation[] = "Orientation";
inline constexpr char vec1[] = "vec1";
inline constexpr char vec2[] = "vec2";
inline constexpr char vec3[] = "vec3";
inline constexpr char x[] = "x";
inline constexpr char y[] = "y";
inline constexpr char z[] = "z";
inline constexpr char data[] = "Data";
inline constexpr char number[] = "number";
inline constexpr char file[] = "File";

}  // namespace trv::names
