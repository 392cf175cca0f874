#pragma once

/// @file
/// What the records of assemblies share: copies of three numbers, and default values that can be
/// read until the process ends.

#include <algorithm>
#include <array>
#include <new>

namespace trv {

/// Copies three numbers; nullptr on either side leaves everything as it is.
inline void copyVector(const double* from, double* to) {
    if (from != nullptr && to != nullptr) std::copy_n(from, 3, to);
}

/// Three numbers as a value.
inline std::array<double, 3> arrayOf(const double (&vector)[3]) {
    return {vector[0], vector[1], vector[2]};
}

/// Holds a default-constructed object as long as the process lives, without allocating memory for
/// it. For static variables that a host may read from the destructor of a static object of its own,
/// which may run later than the destructors of ours.
template <class T>
class NeverDestroyed {
public:
    NeverDestroyed() { ::new (static_cast<void*>(storage_)) T; }
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;
    ~NeverDestroyed() = default;

    const T& get() const { return *std::launder(reinterpret_cast<const T*>(storage_)); }

private:
    alignas(T) unsigned char storage_[sizeof(T)];
};

}  // namespace trv
