#pragma once

/// @file
/// Structures of the C interface, which begin with their size.
///
/// Threads: any.

#include <trvfiles/c/refusal.h>

#include <cstddef>
#include <cstring>

namespace trv::c {

/// No version of a structure is larger. A size that was never set is mostly above it or below the
/// first version.
inline constexpr std::size_t maxStructSize = 4096;

/// Refuses a structure whose size is not that of a version.
template <class Struct>
void requireSized(const Struct* argument) {
    require(argument);
    require(argument->size >= sizeof(Struct) && argument->size <= maxStructSize,
            "the size of a structure is not set");
}

/// Fills a structure of the caller's, which may be of a later version.
template <class Struct>
void fill(Struct* target, Struct values) {
    requireSized(target);
    values.size = target->size;
    std::memset(static_cast<void*>(target), 0, values.size);
    std::memcpy(static_cast<void*>(target), &values, sizeof values);
}

}  // namespace trv::c
