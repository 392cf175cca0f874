#pragma once

/// @file
/// What two lists have in common, in the same order.
///
/// Threads: any.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace trv::cli {

/// The indices of equal elements of two lists.
struct IndexPair {
    std::size_t first;
    std::size_t second;
};

/// A common subsequence of two lists, as the indices of its elements, in ascending order.
///
/// It is a longest one if no key is more than 8 times in the second list, not counting the common
/// beginning and the common end of both lists. Each element is compared with at most 8 elements of
/// the second list, so a frequent key may give a shorter subsequence. Takes O(n log n) time and
/// O(n) memory for any lists.
std::vector<IndexPair> commonSubsequence(const std::vector<std::uint64_t>& first,
                                         const std::vector<std::uint64_t>& second);

/// For each key, pairs the first element of one list with the first one of the other list, the
/// second with the second, and so on. Takes O(n log n) time.
std::vector<IndexPair> equalElements(const std::vector<std::uint64_t>& first,
                                     const std::vector<std::uint64_t>& second);

}  // namespace trv::cli
