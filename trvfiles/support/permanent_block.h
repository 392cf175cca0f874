#pragma once

/// @file
/// A permanent block of the checked heap with an owner, and an attempt to resize one.

#include <trvfiles/support/dynamic_storage.h>

#include <cstddef>
#include <memory>

namespace trv {

/// resize_permanent() without a report if there is no memory, for callers that can do with less.
void* try_resize_permanent(void* block, std::size_t size);

struct block_deleter {
    void operator()(void* block) const noexcept { _Wfree(block); }
};
/// Freed on every way out, also when a host's handler throws.
using permanent_block = std::unique_ptr<void, block_deleter>;

}  // namespace trv
