#pragma once

#include <cstdio>
#include <cstdlib>

namespace trv::fuzz {

/// Ends the process, as a sanitizer does, if a law does not hold.
inline void require(bool holds, const char* law) {
    if (holds) return;
    std::fprintf(stderr, "broken law: %s\n", law);
    std::abort();
}

}  // namespace trv::fuzz
