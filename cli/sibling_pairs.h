#pragma once

/// @file
/// Which children of a component correspond to which children of another one.
///
/// Threads: any.

#include <cli/assembly_outline.h>

#include <cstddef>
#include <vector>

namespace trv::cli {

/// A child of the first component and its counterpart, or one that has no counterpart.
struct SiblingPair {
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    /// Indices among the siblings. One of them may be `none`.
    std::size_t first;
    std::size_t second;
    /// Whether the counterpart has another place in the order of the siblings. A place that only
    /// changes because of added or removed siblings is not another one.
    bool isMoved;
};

/// Pairs the children of two components. Each child is in exactly one pair. The pairs are in the
/// order of the first component's children; children of the second one that have no counterpart are
/// before the next pair that is not moved.
///
/// If the children are equal one by one, apart from placements further below, the first belongs to
/// the first, and so on. Else they are paired by these criteria, one after the other:
///
/// 1. the same content, first in the same order, then in any order
/// 2. the same content except the placements, in the same order
/// 3. the same name and geometry file, then the same name, in the same order
/// 4. the same name, in any order, if it is unique among the siblings in both
/// 5. the same content except the name, in the same order; in any order if the component is renamed
///    and has a geometry file or a child
/// 6. the same geometry file, or for a component without one the same names of its children in any
///    order; the components themselves in the same order, then the renamed ones in any order
///
/// A component is renamed if only one of the lists has its name.
///
/// "In the same order" means a common subsequence of the children between two pairs that exist
/// already. Takes O(n log n) time: see commonSubsequence().
///
/// Guarantees that all children are pairs in their order if both lists are equal within the
/// tolerances of the comparison. If the lists are unequal, a child has no counterpart, a pair is
/// moved, or the components of a pair are unequal.
std::vector<SiblingPair> pairSiblings(const AssemblyOutline& firstOutline, const OutlineNode& first,
                                      const AssemblyOutline& secondOutline,
                                      const OutlineNode& second);

}  // namespace trv::cli
