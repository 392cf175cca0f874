#include <trvfiles/environment/name_hash.h>
#include <trvfiles/environment/name_index.h>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// Saves three rebuilds of a small index. A power of two: bucket_of() takes the low bits of a hash.
constexpr std::size_t min_nodes = 8;

}  // namespace

void name_index::reserve(std::uint32_t place) {
    if (place < nodes_.size()) return;
    std::size_t size = min_nodes;
    while (size <= place)
        size *= 2;
    // All trees are built anew, since a hash may belong to another bucket now. The size doubles, so
    // the time for all rebuilds together grows as n log n.
    nodes_.resize(size);
    for (node& bucket : nodes_)
        bucket.root = none;
    for (std::uint32_t kept = 0; kept < nodes_.size(); ++kept) {
        if (is_inside(kept)) add(kept, nodes_[kept].hash);
    }
}

void name_index::put(std::uint32_t place, std::uint32_t hash) noexcept {
    if (is_inside(place) && nodes_[place].hash == hash) return;
    remove(place);
    add(place, hash);
}

// Insertion into a treap by splitting. Descends to the first node of a lower priority and takes its
// position. The subtree of that node is split along one path: the nodes before the new one become
// its left side, the others its right side. Invariant of the loop: `before` and `after` are the
// open links of the two sides, and everything in the subtree `rest` belongs between them.
void name_index::add(std::uint32_t place, std::uint32_t hash) noexcept {
    std::uint32_t* link = &nodes_[bucket_of(hash)].root;
    if (*link != none) {
        const std::uint32_t priority = hash_place(place);
        while (*link != none && hash_place(*link) >= priority)
            link = link_towards(*link, hash, place);
    }
    std::uint32_t rest = *link;
    *link = place;
    node& added = nodes_[place];
    added.hash = hash;
    std::uint32_t* before = &added.left;
    std::uint32_t* after = &added.right;
    while (rest != none) {
        std::uint32_t* const next = link_towards(rest, hash, place);
        std::uint32_t*& side = next == &nodes_[rest].right ? before : after;
        *side = rest;
        side = next;
        rest = *next;
    }
    *before = none;
    *after = none;
}

// Removal from a treap by merging. The two subtrees of the node take its position: of their roots
// the one of higher priority comes first, and the other subtree goes on into that one's inner side.
void name_index::remove(std::uint32_t place) noexcept {
    if (!is_inside(place)) return;
    node& removed = nodes_[place];
    std::uint32_t* link = &nodes_[bucket_of(removed.hash)].root;
    while (*link != place)
        link = link_towards(*link, removed.hash, place);
    std::uint32_t left = removed.left;
    std::uint32_t right = removed.right;
    while (left != none && right != none) {
        const bool is_left_higher = hash_place(left) >= hash_place(right);
        std::uint32_t& higher = is_left_higher ? left : right;
        *link = higher;
        link = is_left_higher ? &nodes_[left].right : &nodes_[right].left;
        higher = *link;
    }
    *link = left != none ? left : right;
    removed.left = outside;
}

// The link of a node to the side on which a hash and a place belong.
std::uint32_t* name_index::link_towards(std::uint32_t from, std::uint32_t hash,
                                        std::uint32_t place) noexcept {
    node& visited = nodes_[from];
    return is_before(visited, from, hash, place) ? &visited.right : &visited.left;
}

}  // namespace trv
