#pragma once

/// @file
/// Work on many items in several threads, whose results are taken in order.

#include <cstddef>
#include <functional>

namespace trv::cli {

struct OrderedWork {
    /// The number of items.
    std::size_t count = 0;
    /// Called once for each item, in several threads at once.
    std::function<void(std::size_t item)> work;
    /// Called for each item after its work, in the thread of the caller, in the order of the items.
    std::function<void(std::size_t item)> take;
    /// Called in the thread of the caller while it waits, and before it takes the items that are
    /// done.
    std::function<void(std::size_t done)> wait;
};

/// Returns when all items are taken.
///
/// @param threads  at most so many; 1 uses that of the caller
/// @throws what a function throws; then no further item is begun
void runInOrder(const OrderedWork& work, unsigned threads);

}  // namespace trv::cli
