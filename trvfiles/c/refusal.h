#pragma once

/// @file
/// The exception by which the functions of the C interface end with a status and its reason.

#include <trvfiles/c/trvfiles.h>

#include <cstdint>
#include <string>
#include <utility>

namespace trv::c {

struct Refusal {
    std::int32_t status;
    /// Empty if the text of the status says enough.
    std::string reason = {};
};

inline Refusal badHandle() {
    return {TRVFILES_BAD_HANDLE};
}

inline Refusal badArgument(std::string reason) {
    return {TRVFILES_BAD_ARGUMENT, std::move(reason)};
}

/// Refuses an argument that is not in its range.
inline void require(bool holds, const char* reason) {
    if (!holds) throw badArgument(reason);
}

/// Refuses a null pointer.
inline void require(const void* argument) {
    require(argument != nullptr, "an argument is NULL");
}

}  // namespace trv::c
