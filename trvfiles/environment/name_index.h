#pragma once

/// @file
/// An index of names beside a list: which places of the list have a given name.
///
/// It stores hashes and not names: the owner of the list compares the names. The places of one hash
/// are visited in ascending order, whatever the order in which they were added and removed. So the
/// first hit is the one that a walk along the list would find. With n places in a bucket, also of
/// one hash, each call takes time that grows as log n for each place that it adds, removes or
/// visits.
///
/// Threads: one at a time, as the list.

#include <trvfiles/environment/stored_vector.h>

#include <cstddef>
#include <cstdint>

namespace trv {

/// A hash table whose buckets are treaps: binary search trees by hash and place that are heaps by a
/// keyed hash of the place. So each tree has the shape of one that was built in random order,
/// whatever the order of the changes.
class name_index {
public:
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    /// Makes room for a place, so that adding it cannot fail.
    ///
    /// @throws std::bad_alloc; the index is then as it was
    void reserve(std::uint32_t place);

    /// Adds a place, or moves it to this hash. REQUIRES: reserve() of it.
    void put(std::uint32_t place, std::uint32_t hash) noexcept;

    /// Removes a place; one that is not in the index is ignored.
    void remove(std::uint32_t place) noexcept;

    /// The first place of this hash for which `matches(place)` is true, or `none`.
    template <class Matches>
    std::uint32_t first(std::uint32_t hash, Matches matches) const {
        if (nodes_.empty()) return none;
        std::uint32_t place = first_from(0, hash);
        while (place != none && !matches(place))
            place = first_from(place + 1, hash);
        return place;
    }

private:
    struct node {
        std::uint32_t hash = 0;
        std::uint32_t left = outside;
        std::uint32_t right = none;
        // Of the bucket of this number, not of this node: one block holds both.
        std::uint32_t root = none;
    };
    // Instead of the left child: this place is not in the index.
    static constexpr std::uint32_t outside = none - 1;

    std::size_t bucket_of(std::uint32_t hash) const { return hash & (nodes_.size() - 1); }
    bool is_inside(std::uint32_t place) const {
        return place < nodes_.size() && nodes_[place].left != outside;
    }
    // The order of the trees.
    static bool is_before(const node& one, std::uint32_t one_place, std::uint32_t hash,
                          std::uint32_t place) {
        return one.hash < hash || (one.hash == hash && one_place < place);
    }

    // The first place of this hash that is not below `start`.
    std::uint32_t first_from(std::uint32_t start, std::uint32_t hash) const {
        std::uint32_t found = none;
        std::uint32_t place = nodes_[bucket_of(hash)].root;
        while (place != none) {
            const node& visited = nodes_[place];
            if (is_before(visited, place, hash, start)) {
                place = visited.right;
            } else {
                if (visited.hash == hash) found = place;
                place = visited.left;
            }
        }
        return found;
    }

    std::uint32_t* link_towards(std::uint32_t from, std::uint32_t hash,
                                std::uint32_t place) noexcept;
    void add(std::uint32_t place, std::uint32_t hash) noexcept;

    // As many as there are buckets, a power of two.
    stored_vector<node> nodes_;
};

}  // namespace trv
