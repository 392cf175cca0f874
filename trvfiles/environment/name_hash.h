#pragma once

/// @file
/// Hashes of names and of places in a list, keyed with a secret of the process.
///
/// Names that share a hash cannot be prepared without the key. Every lookup among such names would
/// be a walk. The key is chosen at the first hash. So hashes differ from process to process:
/// nothing that is visible from outside may depend on them.
///
/// Threads: any.

#include <cstdint>
#include <functional>
#include <string_view>

namespace trv {

/// The hash of a name, byte for byte.
std::uint32_t hash_name(std::string_view name);

/// The hash that a name shares with all names that differ from it in the case of ASCII letters
/// alone.
std::uint32_t hash_name_ignoring_case(std::string_view name);

/// The hash of a place in a list.
std::uint32_t hash_place(std::uint32_t place);

struct hash_key {
    std::uint64_t start;
    std::uint64_t block;
    std::uint64_t end;
};

/// Makes a key from a source of random numbers. If the source throws, the key is made from the
/// clocks and from addresses instead: few bits of these are known outside of the process.
hash_key make_hash_key(const std::function<std::uint32_t()>& random);

}  // namespace trv
