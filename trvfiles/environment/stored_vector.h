#pragma once

/// @file
/// A std::vector in permanent blocks of the checked heap, so that its bytes are counted and capped.
///
/// Threads: one at a time, as the heap.

#include <trvfiles/support/dynamic_storage.h>

#include <cstddef>
#include <new>
#include <vector>

namespace trv {

template <class T>
struct permanent_allocator {
    using value_type = T;

    permanent_allocator() = default;
    template <class Other>
    // NOLINTNEXTLINE(google-explicit-constructor): containers convert allocators implicitly.
    permanent_allocator(const permanent_allocator<Other>&) noexcept {}

    /// @throws std::bad_alloc if the heap refuses the block
    T* allocate(std::size_t count) {
        void* block = allocate_permanent(count * sizeof(T));
        if (block == nullptr) throw std::bad_alloc();
        return static_cast<T*>(block);
    }
    void deallocate(T* block, std::size_t) noexcept { _Wfree(block); }

    template <class Other>
    bool operator==(const permanent_allocator<Other>&) const noexcept {
        return true;
    }
    template <class Other>
    bool operator!=(const permanent_allocator<Other>&) const noexcept {
        return false;
    }
};

template <class T>
using stored_vector = std::vector<T, permanent_allocator<T>>;

/// Makes room for `more` elements before the steps that must not fail. The capacity doubles, as
/// with push_back(): reserve() alone would make n single appends take time for the square of n.
template <class T>
void reserve_room(stored_vector<T>& elements, std::size_t more = 1) {
    const std::size_t needed = elements.size() + more;
    if (needed <= elements.capacity()) return;
    const std::size_t doubled = 2 * elements.capacity();
    elements.reserve(needed > doubled ? needed : doubled);
}

}  // namespace trv
