#pragma once

#include <algorithm>

namespace trv {

/// Copies three numbers; a null pointer on either side leaves everything as it is.
inline void copyVector(const double* from, double* to) {
    if (from != nullptr && to != nullptr) std::copy_n(from, 3, to);
}

}  // namespace trv
