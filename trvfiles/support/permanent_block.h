#pragma once

/// @file
/// A permanent block of the checked heap with an owner.

#include <trvfiles/support/dynamic_storage.h>

#include <memory>

namespace trv {

struct block_deleter {
    void operator()(void* block) const noexcept { _Wfree(block); }
};
/// Freed on every way out, also when a host's handler throws.
using permanent_block = std::unique_ptr<void, block_deleter>;

}  // namespace trv
