#pragma once

/// @file
/// Static objects that can be read until the process ends.

#include <new>

namespace trv {

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
