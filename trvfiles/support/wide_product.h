#pragma once

/// @file
/// 128-bit products of 64-bit numbers, for hashing.
///
/// Threads: any.

#include <cstdint>

namespace trv {

/// folded_product() from four products of 32-bit halves, for compilers without a 128-bit type.
constexpr std::uint64_t folded_product_of_halves(std::uint64_t a, std::uint64_t b) {
    constexpr std::uint64_t half = 0xFFFFFFFF;
    const std::uint64_t low = (a & half) * (b & half);
    const std::uint64_t left = (a >> 32) * (b & half);
    const std::uint64_t right = (a & half) * (b >> 32);
    const std::uint64_t middle = (low >> 32) + (left & half) + (right & half);
    const std::uint64_t high =
        (a >> 32) * (b >> 32) + (left >> 32) + (right >> 32) + (middle >> 32);
    return high ^ (middle << 32 | (low & half));
}

/// The lower 64 bits of the product of two numbers, XOR its upper 64 bits. A change of any bit of
/// either number changes bits in all parts of the result.
constexpr std::uint64_t folded_product(std::uint64_t a, std::uint64_t b) {
#ifdef __SIZEOF_INT128__
    // With the product of halves, a lookup in an index of names takes 1.2 times as long.
    __extension__ using wide = unsigned __int128;
    const wide product = wide{a} * b;
    return static_cast<std::uint64_t>(product >> 64) ^ static_cast<std::uint64_t>(product);
#else
    return folded_product_of_halves(a, b);
#endif
}

}  // namespace trv
