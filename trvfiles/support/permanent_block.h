#pragma once

/// @file
/// The parts of the checked heap that only the library uses: an owner of a permanent block, and
/// resizing without a report.
///
/// Threads: one at a time.

#include <trvfiles/support/dynamic_storage.h>

#include <cstddef>
#include <memory>

namespace trv {

/// resize_permanent() without a report if there is no memory, for a caller that then tries a
/// smaller size.
void* try_resize_permanent(void* block, std::size_t size);

struct block_deleter {
    void operator()(void* block) const noexcept { _Wfree(block); }
};
/// Frees its block when it is destroyed, also if a host's handler throws.
using permanent_block = std::unique_ptr<void, block_deleter>;

}  // namespace trv
